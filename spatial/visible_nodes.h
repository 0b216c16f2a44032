#ifndef TESSOLV_SPATIAL_VISIBLE_NODES_H
#define TESSOLV_SPATIAL_VISIBLE_NODES_H

#include <zeb/dense1D.h>
#include <zeb/dense2D.h>

namespace zeb::tessolv {

// The nodes, distinct columns of `pos`, that boxes in a search tree over them can find. These are all of them, in a
// shallow copy, unless a coordinate is NaN: then the node itself is in no box, and the nodes below its record are not
// found where the NaN is the coordinate that the record splits. False without memory.
template <int D>
[[nodiscard]] bool find_visible_nodes(const dense2D<double>& pos, const dense1D<unsigned int>& nodes,
                                      dense1D<unsigned int>& visible);

}  // namespace zeb::tessolv

#endif
