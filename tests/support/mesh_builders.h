#ifndef TESTS_SUPPORT_MESH_BUILDERS_H
#define TESTS_SUPPORT_MESH_BUILDERS_H

#include <algorithm>
#include <initializer_list>
#include <numeric>
#include <random>
#include <vector>

#include <tessolv/tessolv.h>

// Meshes of any size on a grid of n x n or n x n x n cells.
namespace test {

namespace detail {

inline void append_element(std::vector<unsigned>& entries, const unsigned* corner,
                           std::initializer_list<unsigned> local)
{
    for (const unsigned i : local) entries.push_back(corner[i]);
}

inline zeb::dense2D<unsigned> as_columns(const std::vector<unsigned>& entries, std::uint64_t rows)
{
    zeb::dense2D<unsigned> m(rows, entries.size() / rows);
    if (!entries.empty()) std::copy(entries.begin(), entries.end(), &m(0, 0));
    return m;
}

// Calls visit(corners) for every cell: 4 in a plane, counter-clockwise, or 8 in space.
template <class Visit>
void for_each_cell(unsigned n, unsigned dimensions, Visit visit)
{
    const unsigned w = n + 1;
    for (unsigned z = 0; z < (dimensions == 3 ? n : 1); ++z)
        for (unsigned y = 0; y < n; ++y)
            for (unsigned x = 0; x < n; ++x) {
                const unsigned o = (z * w + y) * w + x;
                const unsigned u = o + w * w;
                const unsigned corners[8] = {o, o + 1, o + w + 1, o + w, u, u + 1, u + w + 1, u + w};
                visit(corners);
            }
}

}  // namespace detail

inline zeb::dense2D<unsigned> quad_grid(unsigned n)
{
    std::vector<unsigned> entries;
    detail::for_each_cell(n, 2, [&](const unsigned* c) { detail::append_element(entries, c, {0, 1, 2, 3}); });
    return detail::as_columns(entries, 4);
}

// Two triangles a cell.
inline zeb::dense2D<unsigned> tria_grid(unsigned n)
{
    std::vector<unsigned> entries;
    detail::for_each_cell(n, 2, [&](const unsigned* c) { detail::append_element(entries, c, {0, 1, 2, 0, 2, 3}); });
    return detail::as_columns(entries, 3);
}

inline zeb::dense2D<unsigned> hexa_grid(unsigned n)
{
    std::vector<unsigned> entries;
    detail::for_each_cell(n, 3, [&](const unsigned* c) {
        detail::append_element(entries, c, {0, 1, 2, 3, 4, 5, 6, 7});
    });
    return detail::as_columns(entries, 8);
}

// Six tetrahedra a cell, all around its diagonal from corner 0 to corner 6.
inline zeb::dense2D<unsigned> tetra_grid(unsigned n)
{
    std::vector<unsigned> entries;
    detail::for_each_cell(n, 3, [&](const unsigned* c) {
        detail::append_element(entries, c, {0, 1, 2, 6, 0, 2, 3, 6, 0, 3, 7, 6, 0, 7, 4, 6, 0, 4, 5, 6, 0, 5, 1, 6});
    });
    return detail::as_columns(entries, 4);
}

// The same mesh with its nodes renumbered at random, and its elements in random order.
inline zeb::dense2D<unsigned> shuffled(const zeb::dense2D<unsigned>& connect, unsigned seed)
{
    std::mt19937 engine(seed);
    unsigned nodes = 0;
    for (std::uint64_t e = 0; e < connect.cols; ++e)
        for (std::uint64_t i = 0; i < connect.rows; ++i) nodes = std::max(nodes, connect(i, e) + 1);
    std::vector<unsigned> new_node(nodes);
    std::vector<std::uint64_t> order(connect.cols);
    std::iota(new_node.begin(), new_node.end(), 0u);
    std::iota(order.begin(), order.end(), 0u);
    std::shuffle(new_node.begin(), new_node.end(), engine);
    std::shuffle(order.begin(), order.end(), engine);
    zeb::dense2D<unsigned> result(connect.rows, connect.cols);
    for (std::uint64_t e = 0; e < connect.cols; ++e)
        for (std::uint64_t i = 0; i < connect.rows; ++i) result(i, e) = new_node[connect(i, order[e])];
    return result;
}

}  // namespace test

#endif
