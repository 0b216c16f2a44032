#ifndef TESSOLV_SPATIAL_ELEMENT_MERGE_H
#define TESSOLV_SPATIAL_ELEMENT_MERGE_H

#include <cstdint>

#include <zeb/dense1D.h>
#include <zeb/dense2D.h>

#include "core/mesh_range.h"

namespace zeb::tessolv {

// Merges nodes that stand in one column of a matrix of the range, not farther apart than the tolerance after rounding
// to float, closest first. `nodes` are the distinct nodes of the range, columns of `pos`, which has 2 or 3 rows. With
// `repeatedly` further passes look at the columns as renumbered by those before, until one merges nothing.
// `new_IDs` has an entry for each column of `pos`, the node itself on entry, and leads in one step to the node that
// stays afterwards. The matrices are only read. `merges` is the number of nodes that were merged. False without memory.
[[nodiscard]] bool merge_within_elements(const dense2D<double>& pos, const matrix_range<dense2D<unsigned int>>& meshes,
                                         const dense1D<unsigned int>& nodes, double tolerance, bool repeatedly,
                                         unsigned int* new_IDs, std::uint64_t& merges);

}  // namespace zeb::tessolv

#endif
