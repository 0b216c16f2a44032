#include "check/surface_numbers.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <span>
#include <string>
#include <tuple>
#include <vector>

#include "errors.h"

namespace tool {
namespace {

using zeb::dense1D;
using zeb::dense2D;
using zeb::NONE_INDEX;
namespace library = zeb::tessolv;

point middle_of(const dense2D<double>& pos, std::span<const unsigned> nodes)
{
    point middle = {};
    for (const unsigned node : nodes)
        for (std::size_t i = 0; i < 3; ++i) middle[i] += pos(i, node) / static_cast<double>(nodes.size());
    return middle;
}

// Side `face` of triangle `triangle`, which lies opposite its vertex of that number.
struct side {
    unsigned low;  // its two nodes
    unsigned high;
    unsigned triangle;
    unsigned face;
};

// Sides across which no single neighbour lies, those of the same edge together, in the order of the triangles.
std::vector<side> open_sides(const dense2D<unsigned>& connect, const dense2D<unsigned>& neighbors)
{
    std::vector<side> sides;
    for (unsigned t = 0; t < connect.cols; ++t) {
        for (unsigned face = 0; face < 3; ++face) {
            if (neighbors(face, t) != NONE_INDEX) continue;
            const auto [low, high] = std::minmax({connect((face + 1) % 3, t), connect((face + 2) % 3, t)});
            sides.push_back({low, high, t, face});
        }
    }
    std::ranges::sort(sides, {}, [](const side& s) { return std::tie(s.low, s.high, s.triangle); });
    return sides;
}

void link_in_a_ring(std::span<const side> edge, dense2D<unsigned>& neighbors)
{
    for (std::size_t i = 0; i < edge.size(); ++i)
        neighbors(edge[i].face, edge[i].triangle) = edge[(i + 1) % edge.size()].triangle;
}

struct first_fault {
    fault_count& fault;
    side first{0, 0, NONE_INDEX, 0};

    void add(const side& s)
    {
        ++fault.count;
        if (s.triangle < first.triangle) first = s;
    }
    void locate(const dense2D<double>& pos) const
    {
        if (fault.count != 0) fault.first_at = middle_of(pos, std::array{first.low, first.high});
    }
};

// Counts the edges of one and of three or more triangles, and links the latter: each triangle of such an edge to the
// next, the last to the first. So whoever follows the links from one triangle comes to all of its part, whichever it
// begins with; the links of get_neighbors lead from the first triangle to the last only.
void take_open_edges(const dense2D<double>& pos, const dense2D<unsigned>& connect, dense2D<unsigned>& neighbors,
                     surface_numbers& numbers)
{
    const std::vector<side> sides = open_sides(connect, neighbors);
    first_fault free{numbers.free_edges};
    first_fault nonmanifold{numbers.nonmanifold_edges};
    for (auto at = sides.begin(); at != sides.end();) {
        const auto next =
            std::find_if(at, sides.end(), [&](const side& s) { return s.low != at->low || s.high != at->high; });
        const std::span<const side> edge(at, next);
        if (edge.size() == 1) {
            free.add(edge.front());
        } else {
            nonmanifold.add(edge.front());
            link_in_a_ring(edge, neighbors);
        }
        at = next;
    }
    free.locate(pos);
    nonmanifold.locate(pos);
}

std::uint64_t count_parts(const dense2D<unsigned>& neighbors)
{
    dense1D<unsigned> triangles;
    dense1D<unsigned> offsets;
    checked(library::get_connex_parts(neighbors, triangles, offsets), "get_connex_parts");
    if (triangles.size != neighbors.cols) throw std::bad_alloc();  // told by its outputs alone
    return offsets.size - 1;
}

// Of equal triangles the last one stands for all of them.
fault_count count_duplicates(const dense2D<double>& pos, const dense2D<unsigned>& connect)
{
    dense1D<unsigned> last_equal;
    dense1D<unsigned> unused;
    checked(library::get_IDs(connect, connect, last_equal, unused, false), "get_IDs");
    fault_count duplicates;
    for (unsigned t = 0; t < connect.cols; ++t) {
        if (last_equal[t] == t) continue;
        if (duplicates.count++ == 0) duplicates.first_at = middle_of(pos, connect.col(t));
    }
    return duplicates;
}

quality_summary summarise_quality(const dense2D<double>& pos, const dense2D<unsigned>& connect)
{
    zeb::misc::histogram collected(0.0, 1.0, quality_summary::bins);
    checked(library::shape_qualities(pos, connect, zeb::EL_TRIA3, collected), "shape_qualities");
    const dense1D<unsigned> bins = collected.bins();
    if (bins.size != quality_summary::bins) throw std::bad_alloc();

    quality_summary quality{collected.minimum(), collected.mean(), collected.maximum(), {}, collected.not_a_number()};
    std::ranges::copy(bins, quality.histogram.begin());
    quality.histogram.front() += collected.below();  // a rounding error beyond the range
    quality.histogram.back() += collected.above();
    return quality;
}

bounding_box box_of(const dense2D<double>& pos)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    zeb::vector_fixed<double, 3> min(infinity, infinity, infinity);
    zeb::vector_fixed<double, 3> max(-infinity, -infinity, -infinity);
    checked(library::inc_bounding_box(pos, min, max), "inc_bounding_box");
    return {{min[0], min[1], min[2]}, {max[0], max[1], max[2]}};
}

std::uint64_t count_not_finite(const dense2D<double>& pos)
{
    std::uint64_t count = 0;
    for (std::uint64_t j = 0; j < pos.cols; ++j)
        count += !std::isfinite(pos(0, j)) || !std::isfinite(pos(1, j)) || !std::isfinite(pos(2, j));
    return count;
}

}  // namespace

surface_numbers measure_surface(const dense2D<double>& pos, const dense2D<unsigned>& connect)
{
    surface_numbers numbers;
    numbers.triangles = connect.cols;
    numbers.nodes = pos.cols;
    if (connect.empty()) return numbers;

    dense2D<unsigned> neighbors;
    checked(library::get_neighbors(connect, zeb::EL_TRIA3, false, neighbors), "get_neighbors");
    take_open_edges(pos, connect, neighbors, numbers);
    numbers.parts = count_parts(neighbors);
    numbers.duplicates = count_duplicates(pos, connect);
    numbers.nodes_not_finite = count_not_finite(pos);
    numbers.box = box_of(pos);
    numbers.quality = summarise_quality(pos, connect);
    return numbers;
}

}  // namespace tool
