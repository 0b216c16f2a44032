#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <random>
#include <vector>

#include <tessolv/tessolv.h>

// Two million triangles or a million other elements, cut from a grid of slightly moved nodes that are numbered along
// the grid or at random.

using namespace zeb::tessolv;

namespace {

using cell = std::vector<std::vector<unsigned int>>;  // elements in a grid cell, by its corners as in a hexahedron

const cell triangles{{0, 1, 2}, {0, 2, 3}};
const cell quadrangles{{0, 1, 2, 3}};
const cell tetrahedra{{0, 2, 1, 6}, {0, 3, 2, 6}, {0, 7, 3, 6}, {0, 4, 7, 6}, {0, 5, 4, 6}, {0, 1, 5, 6}};
const cell pyramids{{0, 1, 2, 3, 4}};
const cell wedges{{0, 1, 2, 4, 5, 6}, {0, 2, 3, 4, 6, 7}};
const cell hexahedra{{0, 1, 2, 3, 4, 5, 6, 7}};

struct mesh {
    dense2D<double> pos;
    dense2D<unsigned int> connect;
};

// n x n cells in a number of layers; a surface has none.
mesh grid(unsigned int n, unsigned int layers, unsigned int dimension, const cell& elements, bool shuffled)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> moved(-0.1, 0.1);
    std::vector<unsigned int> number((n + 1) * (n + 1) * (layers + 1));
    std::iota(number.begin(), number.end(), 0u);
    if (shuffled) std::shuffle(number.begin(), number.end(), random);

    mesh m{
        dense2D<double>(dimension, number.size()),
        dense2D<unsigned int>(elements.front().size(), std::uint64_t{n} * n * std::max(layers, 1u) * elements.size())};
    for (unsigned int node = 0; node < number.size(); ++node) {
        const std::array<unsigned int, 3> place{node % (n + 1), node / (n + 1) % (n + 1), node / (n + 1) / (n + 1)};
        for (unsigned int i = 0; i < dimension; ++i) m.pos(i, number[node]) = place[i] + moved(random);
    }
    std::uint64_t e = 0;
    for (unsigned int k = 0; k < std::max(layers, 1u); ++k)
        for (unsigned int j = 0; j < n; ++j)
            for (unsigned int i = 0; i < n; ++i) {
                const unsigned int low = i + (n + 1) * (j + (n + 1) * k);
                const unsigned int high = low + (layers != 0 ? (n + 1) * (n + 1) : 0);
                const std::array<unsigned int, 8> corner{low,  low + 1,  low + n + 2,  low + n + 1,
                                                         high, high + 1, high + n + 2, high + n + 1};
                for (const auto& element : elements) {
                    for (std::size_t r = 0; r < element.size(); ++r) m.connect(r, e) = number[corner[element[r]]];
                    ++e;
                }
            }
    return m;
}

void measure(benchmark::State& state, unsigned int n, unsigned int layers, unsigned int dimension, const cell& elements,
             element_type type)
{
    const mesh m = grid(n, layers, dimension, elements, state.range(0) != 0);
    for (auto _ : state) {
        dense1D<double> qualities;
        if (shape_qualities(m.pos, m.connect, type, qualities) != 0) state.SkipWithError("refused");
        benchmark::DoNotOptimize(qualities.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(m.connect.cols));
}

void numberings(benchmark::internal::Benchmark* b)
{
    b->ArgName("shuffled")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(measure, triangles_2d, 1000, 0, 2, triangles, EL_TRIA3)->Apply(numberings);
BENCHMARK_CAPTURE(measure, triangles_3d, 1000, 0, 3, triangles, EL_TRIA3)->Apply(numberings);
BENCHMARK_CAPTURE(measure, quadrangles_2d, 1000, 0, 2, quadrangles, EL_QUAD4)->Apply(numberings);
BENCHMARK_CAPTURE(measure, quadrangles_3d, 1000, 0, 3, quadrangles, EL_QUAD4)->Apply(numberings);
BENCHMARK_CAPTURE(measure, tetrahedra, 41, 99, 3, tetrahedra, EL_TETRA4)->Apply(numberings);
BENCHMARK_CAPTURE(measure, pyramids, 100, 100, 3, pyramids, EL_PYRAMID5)->Apply(numberings);
BENCHMARK_CAPTURE(measure, wedges, 71, 99, 3, wedges, EL_WEDGE6)->Apply(numberings);
BENCHMARK_CAPTURE(measure, hexahedra, 100, 100, 3, hexahedra, EL_HEXA8)->Apply(numberings);

}  // namespace
