#ifndef TESSOLV_SPATIAL_NODE_PAIRS_H
#define TESSOLV_SPATIAL_NODE_PAIRS_H

#include <cstdint>

#include "core/scratch.h"

// Pairs of nodes within the tolerance, and the order in which they merge: the closest first, equally close ones as they
// were collected. Distances are rounded to float for that.
namespace zeb::tessolv {

// The bits of a distance as a float: ordered as distances are, and a NaN, from infinite coordinates, stands last.
std::uint32_t rank_of(double distance);
constexpr std::uint32_t last_rank = 0x7FC00000;

// The distance that `rank` stands for, rounded to float.
double distance_of(std::uint32_t rank);

struct node_pair {
    std::uint32_t rank;    // of the distance
    unsigned int visit;    // number of the visit that found it
    unsigned int visitor;  // the node that stays
    unsigned int target;   // the node, or the place, that is merged into it
};

// The order among pairs of one visit at one distance is left open: each of them asks only whether its visitor, which
// none of them changes, and its own target are free.
void sort_closest_first(scratch<node_pair>& pairs);

// The node that a node has become: where its entries lead to, new_IDs[r] = r. They lead there in one step afterwards.
unsigned int follow(unsigned int* new_IDs, unsigned int node);

}  // namespace zeb::tessolv

#endif
