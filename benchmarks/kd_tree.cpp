#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

#include <tessolv/tessolv.h>

// Building a detector over random nodes, nodes of one position and of a line, and the two kinds of queries in it.

namespace {

using namespace zeb;
using namespace zeb::tessolv;

using point = vector_fixed<double, 3>;

dense2D<double> random_nodes(unsigned count)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> coordinate(0.0, 1.0);
    dense2D<double> pos(3, count);
    for (unsigned j = 0; j < count; ++j)
        for (unsigned i = 0; i < 3; ++i) pos(i, j) = coordinate(random);
    return pos;
}

dense2D<double> coincident_nodes(unsigned count)
{
    return {3, count, 0.5};
}

dense2D<double> nodes_of_a_line(unsigned count)
{
    dense2D<double> pos(3, count, 0.0);
    for (unsigned j = 0; j < count; ++j) pos(0, j) = j;
    return pos;
}

template <dense2D<double> (*nodes)(unsigned)>
void build(benchmark::State& state)
{
    const auto pos = nodes(static_cast<unsigned>(state.range(0)));
    for (auto _ : state) {
        node_detector detector(pos);
        benchmark::DoNotOptimize(detector.size());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <dense2D<double> (*nodes)(unsigned)>
void closest_to_points(benchmark::State& state)
{
    const auto pos = nodes(static_cast<unsigned>(state.range(0)));
    const node_detector detector(pos);
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> coordinate(0.0, 1.0);
    for (auto _ : state) {
        const point P(coordinate(random), coordinate(random), coordinate(random));
        benchmark::DoNotOptimize(detector.find_closest(P));
    }
    state.SetItemsProcessed(state.iterations());
}

template <dense2D<double> (*nodes)(unsigned)>
void closest_to_nodes(benchmark::State& state)
{
    const auto pos = nodes(static_cast<unsigned>(state.range(0)));
    const node_detector detector(pos);
    unsigned node = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(detector.find_closest(node));
        node = node + 1 < pos.cols ? node + 1 : 0;
    }
    state.SetItemsProcessed(state.iterations());
}

// Cubes of the size in which 8 of the nodes are expected.
void boxes_of_eight(benchmark::State& state)
{
    const auto pos = random_nodes(static_cast<unsigned>(state.range(0)));
    const node_detector detector(pos);
    const double half = 0.5 * std::cbrt(8.0 / static_cast<double>(state.range(0)));
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> coordinate(0.0, 1.0);
    dense1D<unsigned> hits;
    for (auto _ : state) {
        const double x = coordinate(random);
        const double y = coordinate(random);
        const double z = coordinate(random);
        hits.clear();
        detector.find_in_box(point(x - half, y - half, z - half), point(x + half, y + half, z + half), hits);
        benchmark::DoNotOptimize(hits.size);
    }
    state.SetItemsProcessed(state.iterations());
}

constexpr int million = 1000000;

BENCHMARK(build<random_nodes>)->Arg(million)->Unit(benchmark::kMillisecond);
BENCHMARK(build<coincident_nodes>)->Arg(million)->Unit(benchmark::kMillisecond);
BENCHMARK(build<nodes_of_a_line>)->Arg(million)->Unit(benchmark::kMillisecond);
BENCHMARK(closest_to_points<random_nodes>)->Arg(million);
BENCHMARK(closest_to_points<nodes_of_a_line>)->Arg(million);
BENCHMARK(closest_to_points<coincident_nodes>)->Arg(million);
BENCHMARK(closest_to_nodes<random_nodes>)->Arg(million);
BENCHMARK(boxes_of_eight)->Arg(million);

}  // namespace
