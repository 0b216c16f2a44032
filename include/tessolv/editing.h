#ifndef TESSOLV_EDITING_H
#define TESSOLV_EDITING_H

#include <tessolv/core.h>

namespace zeb {
namespace tessolv {

TESSOLV_API int unique_indices(dense1D<unsigned int>& out, const dense1D<unsigned int>& in,
                               const dense1D<unsigned int>& exclude);
TESSOLV_API int unique_indices(dense1D<unsigned int>& out, const dense1D<unsigned int>& in);
TESSOLV_API int unique_indices(dense1D<unsigned int>& out, const dense2D<unsigned int>* first,
                               const dense2D<unsigned int>* last);
TESSOLV_API int unique_indices(dense1D<unsigned int>& out, const dense2D<unsigned int>& connect);
TESSOLV_API int count_unique_indices(const dense2D<unsigned int>* first, const dense2D<unsigned int>* last);
TESSOLV_API int count_unique_indices(const dense2D<unsigned int>& connect);
TESSOLV_API void change_indices(dense1D<unsigned int>& ids, const dense1D<unsigned int>& new_IDs);
TESSOLV_API void change_indices(dense2D<unsigned int>& connect, const dense1D<unsigned int>& new_IDs);
TESSOLV_API void permutation(dense1D<unsigned int>& values, const dense1D<unsigned int>& perm);
TESSOLV_API void permutation(dense1D<double>& values, const dense1D<unsigned int>& perm);
TESSOLV_API int get_IDs(const dense1D<unsigned int>& ids1, const dense1D<unsigned int>& ids2,
                        dense1D<unsigned int>& pos_in_1, dense1D<unsigned int>& pos_in_2);
TESSOLV_API int get_IDs(const dense2D<unsigned int>& connect1, const dense2D<unsigned int>& connect2,
                        dense1D<unsigned int>& pos_in_1, dense1D<unsigned int>& pos_in_2, bool strict);

TESSOLV_API int append(dense2D<double>& A, const dense2D<double>& B, const dense1D<unsigned int>& cols);
TESSOLV_API int append(dense2D<unsigned int>& A, const dense2D<unsigned int>& B, const dense1D<unsigned int>& cols);
TESSOLV_API int append(dense2D<double>& A, const dense2D<double>* first, const dense2D<double>* last);
TESSOLV_API int append(dense2D<unsigned int>& A, const dense2D<unsigned int>* first, const dense2D<unsigned int>* last);
TESSOLV_API int append(dense2D<double>& A, const dense2D<double>& B);
TESSOLV_API int append(dense2D<unsigned int>& A, const dense2D<unsigned int>& B);
TESSOLV_API int simplify(dense2D<double>& pos, dense2D<unsigned int>* first, dense2D<unsigned int>* last,
                         dense1D<unsigned int>& new_IDs);
TESSOLV_API int simplify(dense2D<double>& pos, dense2D<unsigned int>& connect, dense1D<unsigned int>& new_IDs);
TESSOLV_API int simplify(dense2D<double>& pos, dense2D<unsigned int>& connect);
TESSOLV_API int simplify(dense2D<double>& pos, dense2D<unsigned int>* first, dense2D<unsigned int>* last);
TESSOLV_API int copy_mesh(dense2D<double>& pos, dense2D<unsigned int>& connect,
                          const dense2D<unsigned int>& connect_src);
TESSOLV_API int remove_degenerated(dense2D<unsigned int>& connect, dense1D<unsigned int>& new_IDs);

}  // namespace tessolv
}  // namespace zeb

#endif
