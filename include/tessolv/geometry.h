#ifndef TESSOLV_GEOMETRY_H
#define TESSOLV_GEOMETRY_H

#include <tessolv/core.h>

namespace zeb {
namespace tessolv {

TESSOLV_API int inc_bounding_box(const dense2D<double>& pos, vector_fixed<double, 2>& min,
                                 vector_fixed<double, 2>& max);
TESSOLV_API int inc_bounding_box(const dense2D<double>& pos, const dense1D<unsigned int>& nodes,
                                 vector_fixed<double, 2>& min, vector_fixed<double, 2>& max);
TESSOLV_API int inc_bounding_box(const dense2D<double>& pos, const dense2D<unsigned int>& connect,
                                 vector_fixed<double, 2>& min, vector_fixed<double, 2>& max);
TESSOLV_API int inc_bounding_box(const dense2D<double>& pos, vector_fixed<double, 3>& min,
                                 vector_fixed<double, 3>& max);
TESSOLV_API int inc_bounding_box(const dense2D<double>& pos, const dense1D<unsigned int>& nodes,
                                 vector_fixed<double, 3>& min, vector_fixed<double, 3>& max);
TESSOLV_API int inc_bounding_box(const dense2D<double>& pos, const dense2D<unsigned int>& connect,
                                 vector_fixed<double, 3>& min, vector_fixed<double, 3>& max);

}  // namespace tessolv
}  // namespace zeb

#endif
