#include "findings/duplicates.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <span>
#include <tuple>

#include "mesh/kinds.h"

namespace tool {
namespace {

struct shape {
    std::array<unsigned int, 8> corners;  // ascending; NONE_INDEX behind the last
    std::uint64_t place;
};

// The elements of one shape, in lots of the same lowest corner.
std::vector<shape> shapes_of(const mesh& m, zeb::element_type linear)
{
    std::vector<shape> shapes;
    std::uint64_t first = 0;
    for (const element_block& block : m.blocks) {
        const std::uint64_t corners = zeb::VERTICES_PER_ELEMENT[block.type];
        for (std::uint64_t e = 0; e < block.size() && info_of(block.type).linear == linear; ++e) {
            shape& s = shapes.emplace_back();
            s.corners.fill(zeb::NONE_INDEX);
            std::copy_n(&block.connect(0, e), corners, s.corners.begin());
            std::sort(s.corners.begin(), s.corners.begin() + static_cast<std::ptrdiff_t>(corners));
            s.place = first + e;
        }
        first += block.size();
    }
    return shapes;
}

// Numbers of the shapes, ordered by their corners, then by place.
std::vector<std::uint32_t> ordered(const std::vector<shape>& shapes, std::uint64_t nodes)
{
    std::vector<std::uint32_t> first(nodes + 2, 0);
    for (const shape& s : shapes) ++first[s.corners[0] + std::size_t{2}];
    std::partial_sum(first.begin(), first.end(), first.begin());
    std::vector<std::uint32_t> order(shapes.size());
    for (std::uint32_t i = 0; i < shapes.size(); ++i) order[first[shapes[i].corners[0] + std::size_t{1}]++] = i;
    const auto key = [&](std::uint32_t i) { return std::tie(shapes[i].corners, shapes[i].place); };
    for (std::uint64_t node = 0; node < nodes; ++node)
        std::ranges::sort(order.begin() + first[node], order.begin() + first[node + 1], {}, key);
    return order;
}

}  // namespace

bool names_a_node_twice(const unsigned int* nodes, std::uint64_t count)
{
    for (std::uint64_t i = 1; i < count; ++i)
        if (std::find(nodes, nodes + i, nodes[i]) != nodes + i) return true;
    return false;
}

std::vector<std::uint64_t> duplicates_of(const mesh& m)
{
    std::vector<std::uint64_t> places;
    for (const kind_info& kind : all_kinds()) {
        if (kind.linear != kind.type) continue;
        const std::vector<shape> shapes = shapes_of(m, kind.type);
        const std::vector<std::uint32_t> order = ordered(shapes, m.pos.cols);
        for (std::size_t i = 1; i < order.size(); ++i)
            if (shapes[order[i]].corners == shapes[order[i - 1]].corners) places.push_back(shapes[order[i]].place);
    }
    std::ranges::sort(places);
    return places;
}

}  // namespace tool
