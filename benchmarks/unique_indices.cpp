#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <unordered_set>
#include <vector>

#include <tessolv/tessolv.h>

// The nodes of a million tetrahedra, six to a cell of a grid, numbered along the grid or at random.

using namespace zeb::tessolv;

namespace {

constexpr unsigned int cells = 55;
constexpr unsigned int side = cells + 1;

// Node numbers are multiples of `spacing`.
dense2D<unsigned int> tetrahedra(bool shuffled, unsigned int spacing)
{
    std::vector<unsigned int> number(side * side * side);
    std::iota(number.begin(), number.end(), 0u);
    if (shuffled) std::shuffle(number.begin(), number.end(), std::mt19937(1));
    // Around the diagonal from corner 0 to corner 7; bits 0, 1 and 2 of a corner are its steps along the axes.
    const unsigned int corners[6][4] = {{0, 1, 3, 7}, {0, 3, 2, 7}, {0, 2, 6, 7},
                                        {0, 6, 4, 7}, {0, 4, 5, 7}, {0, 5, 1, 7}};
    dense2D<unsigned int> connect(4, 6ull * cells * cells * cells);
    for (std::uint64_t e = 0; e < connect.cols; ++e) {
        const unsigned int cell = static_cast<unsigned int>(e / 6);
        const unsigned int origin = cell % cells + side * (cell / cells % cells + side * (cell / cells / cells));
        for (unsigned int i = 0; i < 4; ++i) {
            const unsigned int c = corners[e % 6][i];
            connect(i, e) = spacing * number[origin + (c & 1) + side * (c >> 1 & 1) + side * side * (c >> 2)];
        }
    }
    return connect;
}

void collect(benchmark::State& state, bool shuffled, unsigned int spacing)
{
    const auto connect = tetrahedra(shuffled, spacing);
    for (auto _ : state) {
        dense1D<unsigned int> nodes;
        if (unique_indices(nodes, connect) != 0 || nodes.size != side * side * side) state.SkipWithError("wrong nodes");
        benchmark::DoNotOptimize(nodes.data());
    }
}

void count(benchmark::State& state, bool shuffled)
{
    const auto connect = tetrahedra(shuffled, 1);
    for (auto _ : state) {
        if (count_unique_indices(connect) != side * side * side) state.SkipWithError("wrong count");
    }
}

void collect_with_standard_set(benchmark::State& state, bool shuffled)
{
    const auto connect = tetrahedra(shuffled, 1);
    for (auto _ : state) {
        std::unordered_set<unsigned int> seen;
        std::vector<unsigned int> nodes;
        for (std::uint64_t e = 0; e < connect.cols; ++e)
            for (std::uint64_t i = 0; i < 4; ++i)
                if (seen.insert(connect(i, e)).second) nodes.push_back(connect(i, e));
        benchmark::DoNotOptimize(nodes.data());
    }
}

BENCHMARK_CAPTURE(collect, ordered, false, 1u)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(collect, shuffled, true, 1u)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(collect, shuffled_and_far_apart, true, 20000u)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(count, ordered, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(count, shuffled, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(collect_with_standard_set, ordered, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(collect_with_standard_set, shuffled, true)->Unit(benchmark::kMillisecond);

}  // namespace
