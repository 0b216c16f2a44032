#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include <tessolv/tessolv.h>

// Clipping a million tetrahedra and moving their nodes, numbered along the grid or at random.

using namespace zeb::tessolv;

namespace {

constexpr unsigned int cells = 55;
constexpr unsigned int side = cells + 1;

struct mesh {
    dense2D<double> pos;
    dense2D<unsigned int> connect;
};

mesh tetrahedra(bool shuffled)
{
    std::vector<unsigned int> number(side * side * side);
    std::iota(number.begin(), number.end(), 0u);
    if (shuffled) std::shuffle(number.begin(), number.end(), std::mt19937(1));
    mesh m{dense2D<double>(3, number.size()), dense2D<unsigned int>(4, 6ull * cells * cells * cells)};
    for (unsigned int n = 0; n < number.size(); ++n) {
        m.pos(0, number[n]) = n % side;
        m.pos(1, number[n]) = n / side % side;
        m.pos(2, number[n]) = n / side / side;
    }
    // Around the diagonal from corner 0 to corner 7; bits 0, 1 and 2 of a corner are its steps along the axes.
    const unsigned int corners[6][4] = {{0, 1, 3, 7}, {0, 3, 2, 7}, {0, 2, 6, 7},
                                        {0, 6, 4, 7}, {0, 4, 5, 7}, {0, 5, 1, 7}};
    for (std::uint64_t e = 0; e < m.connect.cols; ++e) {
        const auto cell = static_cast<unsigned int>(e / 6);
        const unsigned int origin = cell % cells + side * (cell / cells % cells + side * (cell / cells / cells));
        for (unsigned int i = 0; i < 4; ++i) {
            const unsigned int c = corners[e % 6][i];
            m.connect(i, e) = number[origin + (c & 1) + side * (c >> 1 & 1) + side * side * (c >> 2)];
        }
    }
    return m;
}

const vector_fixed<double, 3> middle(27.5, 27.5, 27.5);

void clip_in_half(benchmark::State& state, bool shuffled)
{
    const mesh m = tetrahedra(shuffled);
    for (auto _ : state) {
        dense2D<unsigned int> kept;
        if (clip(m.pos, m.connect, middle, {1.0, 0.3, 0.2}, kept) != 0) state.SkipWithError("refused");
        benchmark::DoNotOptimize(kept.buffer);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(m.connect.cols));
}

void rotate_all(benchmark::State& state)
{
    mesh m = tetrahedra(false);
    for (auto _ : state) benchmark::DoNotOptimize(rotate(m.pos, middle, {0.1, 0.2, 0.3}));
}

void rotate_used(benchmark::State& state, bool shuffled)
{
    mesh m = tetrahedra(shuffled);
    for (auto _ : state) benchmark::DoNotOptimize(rotate(m.pos, middle, {0.1, 0.2, 0.3}, m.connect));
}

void bounding_box(benchmark::State& state)
{
    const mesh m = tetrahedra(false);
    for (auto _ : state) {
        vector_fixed<double, 3> low, high;
        benchmark::DoNotOptimize(inc_bounding_box(m.pos, low, high));
    }
}

BENCHMARK_CAPTURE(clip_in_half, ordered, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(clip_in_half, shuffled, true)->Unit(benchmark::kMillisecond);
BENCHMARK(rotate_all)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(rotate_used, ordered, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(rotate_used, shuffled, true)->Unit(benchmark::kMillisecond);
BENCHMARK(bounding_box)->Unit(benchmark::kMillisecond);

}  // namespace
