#ifndef TESSOLV_GEOMETRY_H
#define TESSOLV_GEOMETRY_H

#include <tessolv/core.h>

/// \file
/// Coordinates in place: boxes around nodes.

namespace zeb {
namespace tessolv {

/// Enlarges the box [min, max] so that it holds every node. The box is never reset: start with min = +infinity and
/// max = -infinity, or go on with an earlier box. A NaN coordinate leaves its direction as it was.
/// @param pos              exactly 2 rows in the 2-D form, 3 in the 3-D form; without columns the box stays.
/// @param[in,out] min,max  corners of the box, in the unit of `pos`; untouched on failure.
/// @return 0; -1 rows of `pos`.
/// @note One pass, no working storage. No shared state.
TESSOLV_API int inc_bounding_box(const dense2D<double>& pos, vector_fixed<double, 2>& min,
                                 vector_fixed<double, 2>& max);

/// The same for the listed nodes; NONE_INDEX in the list is skipped.
/// @return 0, at once for an empty list; -1 rows of `pos`; -2 another index that is no column of `pos`.
TESSOLV_API int inc_bounding_box(const dense2D<double>& pos, const dense1D<unsigned int>& nodes,
                                 vector_fixed<double, 2>& min, vector_fixed<double, 2>& max);

/// The same for the nodes of a connectivity. One that names no node at all gives 0 at once.
TESSOLV_API int inc_bounding_box(const dense2D<double>& pos, const dense2D<unsigned int>& connect,
                                 vector_fixed<double, 2>& min, vector_fixed<double, 2>& max);

/// The three forms in 3-D.
TESSOLV_API int inc_bounding_box(const dense2D<double>& pos, vector_fixed<double, 3>& min,
                                 vector_fixed<double, 3>& max);
/// The same for the listed nodes.
TESSOLV_API int inc_bounding_box(const dense2D<double>& pos, const dense1D<unsigned int>& nodes,
                                 vector_fixed<double, 3>& min, vector_fixed<double, 3>& max);
/// The same for the nodes of a connectivity.
TESSOLV_API int inc_bounding_box(const dense2D<double>& pos, const dense2D<unsigned int>& connect,
                                 vector_fixed<double, 3>& min, vector_fixed<double, 3>& max);

}  // namespace tessolv
}  // namespace zeb

#endif
