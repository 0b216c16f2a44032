#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include <tessolv/tessolv.h>

// The topology of a million tetrahedra or hexahedra, or two million triangles, cut from a grid. Nodes and elements are
// numbered along the grid or both at random.

using namespace zeb::tessolv;

namespace {

using cell = std::vector<std::vector<unsigned int>>;  // elements in a grid cell, by its corners as in a hexahedron

const cell triangles{{0, 1, 2}, {0, 2, 3}};
const cell tetrahedra{{0, 1, 2, 6}, {0, 2, 3, 6}, {0, 3, 7, 6}, {0, 7, 4, 6}, {0, 4, 5, 6}, {0, 5, 1, 6}};
const cell hexahedra{{0, 1, 2, 3, 4, 5, 6, 7}};

dense2D<unsigned int> grid(unsigned int nx, unsigned int ny, unsigned int nz, const cell& elements)
{
    const unsigned int row = nx + 1;
    const unsigned int layer = nz != 0 ? row * (ny + 1) : 0;
    const unsigned int layers = std::max(nz, 1u);
    dense2D<unsigned int> connect(elements.front().size(), std::uint64_t{nx} * ny * layers * elements.size());
    std::uint64_t e = 0;
    for (unsigned int z = 0; z < layers; ++z)
        for (unsigned int y = 0; y < ny; ++y)
            for (unsigned int x = 0; x < nx; ++x) {
                const unsigned int o = z * layer + y * row + x;
                const unsigned int corners[8]{o,         o + 1,         o + row + 1,         o + row,
                                              o + layer, o + layer + 1, o + layer + row + 1, o + layer + row};
                for (const auto& element : elements) {
                    for (std::size_t i = 0; i < element.size(); ++i) connect(i, e) = corners[element[i]];
                    ++e;
                }
            }
    return connect;
}

dense2D<unsigned int> in_random_order(const dense2D<unsigned int>& connect)
{
    std::mt19937 random(1);
    const unsigned int* const entries = &connect(0, 0);
    std::vector<unsigned int> number(*std::max_element(entries, entries + connect.size) + 1);
    std::vector<std::uint64_t> order(connect.cols);
    std::iota(number.begin(), number.end(), 0u);
    std::iota(order.begin(), order.end(), 0u);
    std::shuffle(number.begin(), number.end(), random);
    std::shuffle(order.begin(), order.end(), random);
    dense2D<unsigned int> result(connect.rows, connect.cols);
    for (std::uint64_t e = 0; e < connect.cols; ++e)
        for (std::uint64_t i = 0; i < connect.rows; ++i) result(i, e) = number[connect(i, order[e])];
    return result;
}

struct sample {
    element_type type;
    unsigned int nx, ny, nz;
    const cell& elements;
};

const sample tria{EL_TRIA3, 1000, 1000, 0, triangles};
const sample tetra{EL_TETRA4, 55, 55, 55, tetrahedra};
const sample large_tetra{EL_TETRA4, 100, 100, 100, tetrahedra};
const sample hexa{EL_HEXA8, 100, 100, 100, hexahedra};

dense2D<unsigned int> mesh_of(const sample& s, const benchmark::State& state)
{
    const auto connect = grid(s.nx, s.ny, s.nz, s.elements);
    return state.range(0) != 0 ? in_random_order(connect) : connect;
}

void finish(benchmark::State& state, const dense2D<unsigned int>& connect)
{
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(connect.cols));
}

void neighbors(benchmark::State& state, const sample& s)
{
    const auto connect = mesh_of(s, state);
    for (auto _ : state) {
        dense2D<unsigned int> found;
        if (get_neighbors(connect, s.type, false, found) != 0) state.SkipWithError("refused");
        benchmark::DoNotOptimize(found.buffer);
    }
    finish(state, connect);
}

void neighbors_and_boundary(benchmark::State& state, const sample& s)
{
    const auto connect = mesh_of(s, state);
    for (auto _ : state) {
        dense2D<unsigned int> found;
        dense2D<unsigned int> open;
        if (get_neighbors(connect, s.type, false, found) != 0 || get_boundaries(connect, found, s.type, open) != 0)
            state.SkipWithError("refused");
        benchmark::DoNotOptimize(open.buffer);
    }
    finish(state, connect);
}

void boundary(benchmark::State& state, const sample& s)
{
    const auto connect = mesh_of(s, state);
    dense2D<unsigned int> found;
    get_neighbors(connect, s.type, false, found);
    for (auto _ : state) {
        dense2D<unsigned int> open;
        if (get_boundaries(connect, found, s.type, open) != 0) state.SkipWithError("refused");
        benchmark::DoNotOptimize(open.buffer);
    }
    finish(state, connect);
}

void ancestors(benchmark::State& state, const sample& s)
{
    const auto connect = mesh_of(s, state);
    for (auto _ : state) {
        dense1D<unsigned int> found;
        if (get_ancestors(connect, found) != 0) state.SkipWithError("refused");
        benchmark::DoNotOptimize(found.buffer);
    }
    finish(state, connect);
}

void connected_parts(benchmark::State& state, const sample& s)
{
    const auto connect = mesh_of(s, state);
    dense2D<unsigned int> found;
    get_neighbors(connect, s.type, false, found);
    for (auto _ : state) {
        dense1D<unsigned int> elements;
        dense1D<unsigned int> offsets;
        get_connex_parts(found, elements, offsets);
        benchmark::DoNotOptimize(elements.buffer);
    }
    finish(state, connect);
}

void edges(benchmark::State& state, const sample& s)
{
    const auto connect = mesh_of(s, state);
    for (auto _ : state) {
        dense2D<unsigned int> found;
        if (copy_edges(connect, s.type, found) != 0) state.SkipWithError("refused");
        benchmark::DoNotOptimize(found.buffer);
    }
    finish(state, connect);
}

void numberings(benchmark::internal::Benchmark* b)
{
    b->ArgName("shuffled")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(neighbors, triangles, tria)->Apply(numberings);
BENCHMARK_CAPTURE(neighbors, tetrahedra, tetra)->Apply(numberings);
BENCHMARK_CAPTURE(neighbors, hexahedra, hexa)->Apply(numberings);
BENCHMARK_CAPTURE(neighbors, six_million_tetrahedra, large_tetra)->Apply(numberings);
BENCHMARK_CAPTURE(neighbors_and_boundary, tetrahedra, tetra)->Apply(numberings);
BENCHMARK_CAPTURE(neighbors_and_boundary, hexahedra, hexa)->Apply(numberings);
BENCHMARK_CAPTURE(boundary, tetrahedra, tetra)->Apply(numberings);
BENCHMARK_CAPTURE(ancestors, tetrahedra, tetra)->Apply(numberings);
BENCHMARK_CAPTURE(connected_parts, triangles, tria)->Apply(numberings);
BENCHMARK_CAPTURE(connected_parts, tetrahedra, tetra)->Apply(numberings);
BENCHMARK_CAPTURE(edges, triangles, tria)->Apply(numberings);
BENCHMARK_CAPTURE(edges, tetrahedra, tetra)->Apply(numberings);
BENCHMARK_CAPTURE(edges, hexahedra, hexa)->Apply(numberings);

}  // namespace
