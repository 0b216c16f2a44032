#include "spatial/node_pairs.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace zeb::tessolv {

std::uint32_t rank_of(double distance)
{
    return std::isnan(distance) ? last_rank : std::bit_cast<std::uint32_t>(static_cast<float>(distance));
}

double distance_of(std::uint32_t rank)
{
    return std::bit_cast<float>(rank);
}

void sort_closest_first(scratch<node_pair>& pairs)
{
    const auto order = [](const node_pair& p) { return std::uint64_t{p.rank} << 32 | p.visit; };
    const auto earlier = [order](const node_pair& a, const node_pair& b) { return order(a) < order(b); };
    if (!std::is_sorted(pairs.begin(), pairs.end(), earlier)) std::sort(pairs.begin(), pairs.end(), earlier);
}

unsigned int follow(unsigned int* new_IDs, unsigned int node)
{
    unsigned int staying = new_IDs[node];
    while (new_IDs[staying] != staying) staying = new_IDs[staying];
    while (new_IDs[node] != staying) node = std::exchange(new_IDs[node], staying);
    return staying;
}

}  // namespace zeb::tessolv
