#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include <tessolv/tessolv.h>

// A million random tensors, beside LAPACK called one by one.

using namespace zeb::tessolv;

namespace {

using tensor = symmetric_fixed<double, 3>;
constexpr std::size_t count = 1000000;

std::vector<tensor> random_tensors(unsigned int seed)
{
    std::mt19937 random(seed);
    std::normal_distribution<double> entry;
    std::vector<tensor> tensors(count);
    for (auto& M : tensors) {
        double A[3][3];
        for (auto& row : A)
            for (double& a : row) a = entry(random);
        for (std::size_t j = 0; j < 3; ++j)
            for (std::size_t i = 0; i <= j; ++i)
                M(i, j) = A[0][i] * A[0][j] + A[1][i] * A[1][j] + A[2][i] * A[2][j] + (i == j ? 1e-3 : 0.0);
    }
    return tensors;
}

const std::vector<tensor>& tensors()
{
    static const auto made = random_tensors(1);
    return made;
}

template <class Operation>
void measure(benchmark::State& state, Operation operation)
{
    for (auto _ : state)
        for (const auto& M : tensors()) operation(M);
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
}

void lapack(tensor M)
{
    double values[3], vectors[9], work[9];
    long info = 0;
    zeb::lapack::dspev('V', 'U', 3, M.data(), values, vectors, 3, work, info);
    benchmark::DoNotOptimize(values);
}

void eigen(const tensor& M)
{
    vector_fixed<double, 3> values;
    eigen_pairs(M, values, matrix_fixed<double, 3, 3>());
    benchmark::DoNotOptimize(values);
}

void validity(const tensor& M)
{
    benchmark::DoNotOptimize(is_valid_metric(M));
}

void intersection(const tensor& M)
{
    static const tensor other(2, 0.5, 1, 0.1, 0.2, 3);
    tensor smaller;
    minimum_metric(M, other, smaller);
    benchmark::DoNotOptimize(smaller);
}

void field_validity(benchmark::State& state)
{
    dense2D<float> field(6, count);
    for (std::size_t j = 0; j < count; ++j)
        for (std::size_t i = 0; i < 6; ++i) field(i, j) = static_cast<float>(tensors()[j][i]);
    for (auto _ : state) benchmark::DoNotOptimize(are_valid_metrics(field));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
}

BENCHMARK_CAPTURE(measure, lapack, lapack)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measure, eigen_pairs, eigen)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measure, is_valid_metric, validity)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measure, minimum_metric, intersection)->Unit(benchmark::kMillisecond);
BENCHMARK(field_validity)->Unit(benchmark::kMillisecond);

}  // namespace
