#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include <tessolv/tessolv.h>

// Welding a surface that came as a million separate facets, in order and shuffled; merging nodes that are far apart
// against the tolerance, close together, and all at one place.

namespace {

using namespace zeb;
using namespace zeb::tessolv;

struct mesh {
    dense2D<double> pos;
    dense2D<unsigned int> connect;
};

// A wavy n x n sheet with a node of its own for every corner of every triangle.
mesh soup(unsigned int n, bool shuffled)
{
    std::vector<unsigned int> facet(2 * n * n);
    std::iota(facet.begin(), facet.end(), 0u);
    if (shuffled) std::shuffle(facet.begin(), facet.end(), std::mt19937(1));
    mesh m{dense2D<double>(3, 3 * facet.size()), dense2D<unsigned int>(3, facet.size())};
    const auto at = [](unsigned int i, unsigned int j) {
        return std::array<double, 3>{0.1 * i, 0.1 * j, std::sin(0.03 * i) * std::cos(0.05 * j)};
    };
    for (std::uint64_t f = 0; f < facet.size(); ++f) {
        const unsigned int i = facet[f] / 2 % n;
        const unsigned int j = facet[f] / 2 / n;
        const std::array<std::array<double, 3>, 3> corners = facet[f] % 2 == 0
                                                                 ? std::array{at(i, j), at(i + 1, j), at(i + 1, j + 1)}
                                                                 : std::array{at(i, j), at(i + 1, j + 1), at(i, j + 1)};
        for (unsigned int k = 0; k < 3; ++k) {
            std::copy(corners[k].begin(), corners[k].end(), &m.pos(0, 3 * f + k));
            m.connect(k, f) = static_cast<unsigned int>(3 * f + k);
        }
    }
    return m;
}

void weld(benchmark::State& state, bool shuffled)
{
    const mesh m = soup(707, shuffled);
    constexpr double least_height = 0.07;
    for (auto _ : state) {
        state.PauseTiming();
        dense2D<unsigned int> connect = m.connect;
        dense1D<unsigned int> new_IDs;
        state.ResumeTiming();
        benchmark::DoNotOptimize(merge(m.pos, connect, new_IDs, 0.05 * least_height));
    }
}

dense2D<double> random_nodes(unsigned int count)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> coordinate(0.0, 1.0);
    dense2D<double> pos(3, count);
    for (unsigned int j = 0; j < count; ++j)
        for (unsigned int i = 0; i < 3; ++i) pos(i, j) = coordinate(random);
    return pos;
}

void merge_all(benchmark::State& state, const dense2D<double>& nodes, double tolerance)
{
    for (auto _ : state) {
        state.PauseTiming();
        dense2D<double> pos = nodes;
        state.ResumeTiming();
        benchmark::DoNotOptimize(merge(pos, tolerance));
    }
}

constexpr unsigned int million = 1000000;
constexpr double everything = std::numeric_limits<double>::infinity();

BENCHMARK_CAPTURE(weld, facets_in_order, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(weld, facets_shuffled, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(merge_all, far_apart, random_nodes(million), 1e-6)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(merge_all, as_far_as_the_tolerance, random_nodes(million), 0.01)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(merge_all, any_distance, random_nodes(million), everything)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(merge_all, coincident, dense2D<double>(3, million, 0.5), 1e-6)->Unit(benchmark::kMillisecond);

}  // namespace
