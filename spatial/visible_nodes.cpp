#include "spatial/visible_nodes.h"

#include <algorithm>
#include <limits>

#include "core/scratch.h"
#include "spatial/kd_tree.h"

namespace zeb::tessolv {

template <int D>
bool find_visible_nodes(const dense2D<double>& pos, const dense1D<unsigned int>& nodes, dense1D<unsigned int>& visible)
{
    const bool has_nan = std::any_of(nodes.begin(), nodes.end(), [&](unsigned int node) {
        const point<D> x = position_of<D>(pos, node);
        return x != x;
    });
    if (!has_nan) return visible.shallow_copy(nodes);

    scratch<unsigned int> list;
    if (!list.allocate(nodes.size)) return false;
    std::copy(nodes.begin(), nodes.end(), list.begin());
    kd_tree<D> tree(pos);
    dense1D<unsigned int> found;
    if (!tree.insert(list) || !found.reserve(nodes.size)) return false;
    constexpr double infinity = std::numeric_limits<double>::infinity();
    tree.find_in_box({uniform_point<D>(-infinity), uniform_point<D>(infinity)}, found);
    return visible.shallow_copy(found);
}

template bool find_visible_nodes<2>(const dense2D<double>&, const dense1D<unsigned int>&, dense1D<unsigned int>&);
template bool find_visible_nodes<3>(const dense2D<double>&, const dense1D<unsigned int>&, dense1D<unsigned int>&);

}  // namespace zeb::tessolv
