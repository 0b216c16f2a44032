#ifndef TESSOLV_SPATIAL_WIDE_PARTITION_H
#define TESSOLV_SPATIAL_WIDE_PARTITION_H

#include "spatial/rough_node.h"

namespace zeb::tessolv {

// Where nodes that are dealt to two sides come from, and where they go.
template <int D>
struct dealing {
    const rough_node<D>* next;
    rough_node<D>* left;  // at or before `next`, in the same run of nodes
    rough_node<D>* right;
};

// Deals nodes before `end` four at a time, what is less than c in dimension d to the left and what is greater to the
// right. Stops where fewer than four are left, and before four of which one is neither. For processors with
// has_avx512().
void deal_by_four(dealing<3>& nodes, const rough_node<3>* end, int d, float c);

}  // namespace zeb::tessolv

#endif
