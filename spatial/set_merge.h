#ifndef TESSOLV_SPATIAL_SET_MERGE_H
#define TESSOLV_SPATIAL_SET_MERGE_H

#include <cstdint>

#include <zeb/dense1D.h>
#include <zeb/dense2D.h>

namespace zeb::tessolv {

// Merges nodes of `targets` into nodes of `visitors`, two lists of distinct columns of `pos`, which has 2 or 3 rows;
// they may be one object. Each visitor in turn collects the targets in the box of half-width `tolerance` around it and
// makes pairs with those, other than itself, that are not farther than the tolerance; a single target in the box is
// passed over. Then the pairs are applied closest first, each if both nodes are still free.
// `new_IDs` has an entry for each column, the node itself on entry; the entries of the visitors lead in one step to the
// node that stays afterwards. `merges` is the number of nodes that were merged. False without memory.
// `most` is how many neighbours are looked at before the work is divided; it does not change the outcome.
[[nodiscard]] bool merge_closest_first(const dense2D<double>& pos, const dense1D<unsigned int>& visitors,
                                       const dense1D<unsigned int>& targets, double tolerance, std::uint64_t most,
                                       unsigned int* new_IDs, std::uint64_t& merges);

// Enough for a few neighbours of every node.
constexpr std::uint64_t usual_most(std::uint64_t nodes)
{
    return 16 * nodes + 65536;
}

}  // namespace zeb::tessolv

#endif
