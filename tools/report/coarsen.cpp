#include "report/coarsen.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <tuple>

// Vertex clustering: J. Rossignac, P. Borrel. Multi-resolution 3D approximations for rendering complex scenes.
// Modeling in Computer Graphics, Springer 1993.
namespace tool {
namespace {

using cells = std::vector<std::uint64_t>;

// The cell of each node in a grid of so many cells along each side of [-1, 1].
cells cells_of(const drawing& d, std::uint64_t along)
{
    cells result(d.places.size() / 3);
    const double width = static_cast<double>(along) / 2;
    for (std::size_t i = 0; i < result.size(); ++i) {
        std::uint64_t cell = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            const double at = (static_cast<double>(d.places[3 * i + k]) + 1) * width;
            cell = cell * along + std::min(along - 1, static_cast<std::uint64_t>(std::max(0.0, at)));
        }
        result[i] = cell;
    }
    return result;
}

bool stays(const std::uint32_t* corners, const cells& of)
{
    const std::uint64_t a = of[corners[0]];
    const std::uint64_t b = of[corners[1]];
    const std::uint64_t c = of[corners[2]];
    return a != b && b != c && c != a;
}

std::uint64_t count_of(const drawing& d, const cells& of)
{
    std::uint64_t count = 0;
    for (std::size_t t = 0; t < d.sides.size(); ++t) count += stays(&d.corners[3 * t], of);
    return count;
}

// The finest grid that leaves at most so many triangles; 0 when none does.
std::uint64_t finest_grid(const drawing& d, std::uint64_t most)
{
    std::uint64_t few = 0;
    std::uint64_t many = 1 << 14;
    while (many - few > 1 + few / 64) {
        const std::uint64_t middle = (few + many) / 2;
        (count_of(d, cells_of(d, middle)) <= most ? few : many) = middle;
    }
    return few;
}

// The nodes of each cell become one in their middle. Returns the new number of each node.
std::vector<std::uint32_t> merge_nodes(drawing& d, const cells& of)
{
    std::vector<std::uint32_t> order(of.size());
    std::iota(order.begin(), order.end(), 0u);
    std::ranges::sort(order, {}, [&](std::uint32_t i) { return std::pair(of[i], i); });
    std::vector<std::uint32_t> number(of.size());
    std::vector<float> places;
    for (std::size_t first = 0, last = 0; first < order.size(); first = last) {
        std::array<double, 3> sum{};
        for (; last < order.size() && of[order[last]] == of[order[first]]; ++last) {
            for (std::size_t k = 0; k < 3; ++k)
                sum[k] += static_cast<double>(d.places[3 * std::size_t{order[last]} + k]);
            number[order[last]] = static_cast<std::uint32_t>(places.size() / 3);
        }
        for (const double s : sum) places.push_back(static_cast<float>(s / static_cast<double>(last - first)));
    }
    d.places = std::move(places);
    return number;
}

// What is left of the triangles, in their order: of equal ones that of least quality.
std::vector<std::uint32_t> chosen(const drawing& d, const std::vector<bool>& keep, const std::vector<double>& qualities)
{
    const auto key = [&](std::uint32_t t) {
        std::array<std::uint32_t, 3> c{d.corners[3 * std::size_t{t}], d.corners[3 * std::size_t{t} + 1],
                                       d.corners[3 * std::size_t{t} + 2]};
        std::ranges::sort(c);
        const double q = qualities[d.elements[t]];
        return std::tuple(c, std::isnan(q) ? 2 : q, t);
    };
    std::vector<std::uint32_t> order;
    for (std::uint32_t t = 0; t < keep.size(); ++t)
        if (keep[t]) order.push_back(t);
    std::ranges::sort(order, {}, key);
    const auto same = [&](std::uint32_t a, std::uint32_t b) { return std::get<0>(key(a)) == std::get<0>(key(b)); };
    order.erase(std::unique(order.begin(), order.end(), same), order.end());
    std::ranges::sort(order);
    return order;
}

template <class Value>
void keep_items(std::vector<Value>& values, const std::vector<std::uint32_t>& items, std::size_t width)
{
    std::size_t to = 0;
    for (const std::uint32_t item : items)
        for (std::size_t k = 0; k < width; ++k) values[to++] = values[width * item + k];
    values.resize(to);
    values.shrink_to_fit();
}

}  // namespace

void coarsen(drawing& d, const std::vector<double>& qualities, std::uint64_t most)
{
    if (d.triangle_count() <= most) return;
    std::vector<bool> keep(d.triangle_count(), false);
    if (const std::uint64_t along = finest_grid(d, most); along != 0) {
        const cells of = cells_of(d, along);
        for (std::size_t t = 0; t < keep.size(); ++t) keep[t] = stays(&d.corners[3 * t], of);
        const std::vector<std::uint32_t> number = merge_nodes(d, of);
        for (auto* indices : {&d.corners, &d.ends, &d.points})
            for (std::uint32_t& i : *indices) i = number[i];
        d.coarse = 2 * d.box.scale / static_cast<double>(along);
    }
    const std::vector<std::uint32_t> items = chosen(d, keep, qualities);
    keep_items(d.corners, items, 3);
    keep_items(d.sides, items, 1);
    keep_items(d.elements, items, 1);
    keep_items(d.patches, items, 1);
}

}  // namespace tool
