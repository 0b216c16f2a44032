#include <benchmark/benchmark.h>

#include <random>

#include <tessolv/tessolv.h>

// The nodes of a million tetrahedra, moved in place.

using namespace zeb::tessolv;

namespace {

using vec3 = vector_fixed<double, 3>;

template <class Transform>
void measure(benchmark::State& state, Transform transform)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> coordinate(-1.0, 1.0);
    dense2D<double> pos(3, 176400);
    for (std::uint64_t j = 0; j < pos.cols; ++j)
        for (std::uint64_t i = 0; i < 3; ++i) pos(i, j) = coordinate(random);
    for (auto _ : state) benchmark::DoNotOptimize(transform(pos));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(pos.cols));
}

int turned(dense2D<double>& pos)
{
    return rotate(pos, vec3(0.1, 0.2, 0.3), vec3(0.3, -0.2, 0.5));
}

int moved(dense2D<double>& pos)
{
    return translate(pos, vec3(0.1, 0.2, 0.3));
}

BENCHMARK_CAPTURE(measure, rotate, turned)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measure, translate, moved)->Unit(benchmark::kMillisecond);

}  // namespace
