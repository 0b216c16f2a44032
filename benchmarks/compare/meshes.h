#ifndef TESSOLV_BENCHMARKS_COMPARE_MESHES_H
#define TESSOLV_BENCHMARKS_COMPARE_MESHES_H

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

#include <tessolv/tessolv.h>

#include "harness.h"

// Inputs cut from grids: elements and nodes numbered along the grid, or both at random.
namespace compare {

using namespace zeb::tessolv;

inline int next_serial()
{
    static int last = 0;
    return ++last;
}

struct mesh {
    dense2D<double> pos;
    dense2D<unsigned int> connect;
    element_type type = EL_NONE;
    int serial = next_serial();
};

// What a peer makes of an input before it is measured, made once for all runs on that input.
template <class Made, class Make>
const Made& prepared(const mesh& m, Make make)
{
    static int serial = 0;
    static std::unique_ptr<Made> held;
    if (serial != m.serial) held = std::make_unique<Made>(make(m)), serial = m.serial;
    return *held;
}

using cell = std::vector<std::vector<unsigned int>>;  // elements in a grid cell, by its corners as in a hexahedron

struct shape {
    element_type type;
    cell elements;
};

inline const shape triangles{EL_TRIA3, {{0, 1, 2}, {0, 2, 3}}};
inline const shape quadrangles{EL_QUAD4, {{0, 1, 2, 3}}};
inline const shape tetrahedra{EL_TETRA4,
                              {{0, 2, 1, 6}, {0, 3, 2, 6}, {0, 7, 3, 6}, {0, 4, 7, 6}, {0, 5, 4, 6}, {0, 1, 5, 6}}};
inline const shape pyramids{EL_PYRAMID5, {{0, 1, 2, 3, 4}}};
inline const shape wedges{EL_WEDGE6, {{0, 1, 2, 4, 5, 6}, {0, 2, 3, 4, 6, 7}}};
inline const shape hexahedra{EL_HEXA8, {{0, 1, 2, 3, 4, 5, 6, 7}}};

// nx x ny x nz cells; nz = 0 makes a surface. Nodes lie on the unit grid, moved by up to a tenth.
inline mesh grid(const shape& s, unsigned int nx, unsigned int ny, unsigned int nz, bool shuffled,
                 unsigned int dimension = 3)
{
    const unsigned int row = nx + 1;
    const unsigned int layer = nz != 0 ? row * (ny + 1) : 0;
    const unsigned int nodes = row * (ny + 1) * (nz + 1);
    const unsigned int cells = nx * ny * std::max(nz, 1u);
    std::mt19937 random(1);
    std::vector<unsigned int> number(nodes), place(cells);
    std::iota(number.begin(), number.end(), 0u);
    std::iota(place.begin(), place.end(), 0u);
    if (shuffled) std::shuffle(number.begin(), number.end(), random);

    mesh m{dense2D<double>(dimension, nodes), {}, s.type};
    std::uniform_real_distribution<double> moved(-0.1, 0.1);
    for (unsigned int n = 0; n < nodes; ++n) {
        const std::array<unsigned int, 3> at{n % row, n / row % (ny + 1), n / row / (ny + 1)};
        for (unsigned int i = 0; i < dimension; ++i) m.pos(i, number[n]) = at[i] + moved(random);
    }

    const std::uint64_t count = std::uint64_t{cells} * s.elements.size();
    std::vector<std::uint64_t> order(count);
    std::iota(order.begin(), order.end(), std::uint64_t{0});
    if (shuffled) std::shuffle(order.begin(), order.end(), random);
    m.connect = dense2D<unsigned int>(s.elements.front().size(), count);
    for (std::uint64_t e = 0; e < count; ++e) {
        const auto& element = s.elements[e % s.elements.size()];
        const auto at = static_cast<unsigned int>(e / s.elements.size());
        const unsigned int o = at % nx + row * (at / nx % ny) + (nz != 0 ? at / nx / ny * layer : 0);
        const unsigned int corner[8]{o,         o + 1,         o + row + 1,         o + row,
                                     o + layer, o + layer + 1, o + layer + row + 1, o + layer + row};
        for (std::size_t i = 0; i < element.size(); ++i) m.connect(i, order[e]) = number[corner[element[i]]];
    }
    return m;
}

// About `count` elements in a grid as wide as high.
inline mesh surface(const shape& s, double count, bool shuffled, unsigned int dimension = 3)
{
    const auto n = static_cast<unsigned int>(std::sqrt(count / shrink / static_cast<double>(s.elements.size())) + 0.5);
    return grid(s, n, n, 0, shuffled, dimension);
}
inline mesh solid(const shape& s, double count, bool shuffled)
{
    const auto n = static_cast<unsigned int>(std::cbrt(count / shrink / static_cast<double>(s.elements.size())) + 0.5);
    return grid(s, n, n, n, shuffled);
}

// Corners of the local faces, as get_neighbors numbers them.
inline const cell& faces_of(element_type type)
{
    static const cell tria{{1, 2}, {2, 0}, {0, 1}};
    static const cell tetra{{1, 2, 3}, {2, 0, 3}, {1, 3, 0}, {2, 1, 0}};
    static const cell hexa{{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 4, 7, 3}, {1, 2, 6, 5}, {0, 1, 5, 4}, {3, 7, 6, 2}};
    return type == EL_TRIA3 ? tria : type == EL_TETRA4 ? tetra : hexa;
}

inline const unsigned int* entries(const dense2D<unsigned int>& m)
{
    return m.cols != 0 ? &m(0, 0) : nullptr;
}

}  // namespace compare

#endif
