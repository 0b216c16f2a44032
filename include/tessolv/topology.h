#ifndef TESSOLV_TOPOLOGY_H
#define TESSOLV_TOPOLOGY_H

#include <tessolv/core.h>

namespace zeb {
namespace tessolv {

TESSOLV_API int get_neighbors(const dense2D<unsigned int>& connect, element_type type, bool link_nonmanifold,
                              dense2D<unsigned int>& neighbors);

TESSOLV_API int get_boundaries(const dense2D<unsigned int>& connect, const dense2D<unsigned int>& neighbors,
                               element_type type, dense2D<unsigned int>& boundaries);

TESSOLV_API int get_ancestors(const dense2D<unsigned int>& connect, dense1D<unsigned int>& ancestors);

TESSOLV_API int get_connex_parts(const dense2D<unsigned int>& neighbors, dense1D<unsigned int>& elements,
                                 dense1D<unsigned int>& offsets);

TESSOLV_API int get_connex_parts(dense2D<unsigned int>& connect, dense2D<unsigned int>& neighbors,
                                 dense1D<unsigned int>& offsets);

TESSOLV_API int copy_edges(const dense2D<unsigned int>& connect, element_type type, dense2D<unsigned int>& edges);

TESSOLV_API int copy_edges(const dense2D<unsigned int>* first, const dense2D<unsigned int>* last,
                           const dense1D<int>& types, dense2D<unsigned int>& edges);

}  // namespace tessolv
}  // namespace zeb

#endif
