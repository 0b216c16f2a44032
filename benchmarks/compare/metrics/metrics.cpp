// A million metric tensors: eigenvalues, validity, intersection.
#include "metrics/input.h"

// LAPACK as it is, without the hand-over of zeb::lapack.
extern "C" void dspev_(const char* jobz, const char* uplo, const int* n, double* ap, double* w, double* z,
                       const int* ldz, double* work, int* info);

namespace compare {
namespace {

using input = metrics_input;

std::vector<tensor> random_tensors(unsigned int seed)
{
    std::mt19937 random(seed);
    std::normal_distribution<double> entry;
    std::vector<tensor> tensors(static_cast<std::size_t>(1e6 / shrink));
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

// `spoilt`: every hundredth tensor is no metric.
input tensors_and_field(bool spoilt)
{
    input in{random_tensors(1), random_tensors(2), {}};
    in.field = dense2D<float>(6, in.tensors.size());
    for (std::size_t j = 0; j < in.tensors.size(); ++j)
        for (std::size_t i = 0; i < 6; ++i) in.field(i, j) = static_cast<float>(in.tensors[j][i]);
    for (std::size_t j = 50; spoilt && j < in.tensors.size(); j += 100) in.tensors[j](1, 1) *= -1.0;
    return in;
}

double weighted(const double* values)
{
    return values[0] + 2 * values[1] + 3 * values[2];
}

void eigenvalues(const input& in, lap& l)
{
    double sum = 0.0;
    l.timed([&] {
        vector_fixed<double, 3> values;
        for (const tensor& M : in.tensors) {
            eigen_pairs(M, values, {});
            sum += weighted(values.data());
        }
    });
    l.answer({sum});
}

double dspev_values(const tensor& M, double* values, char job)
{
    double vectors[9], work[9];
    tensor copy = M;
    const int n = 3;
    int info = 0;
    dspev_(&job, "U", &n, copy.data(), values, vectors, &n, work, &info);
    return weighted(values);
}

template <char Job>
void dspev_eigenvalues(const input& in, lap& l)
{
    double sum = 0.0;
    double values[3];
    l.timed([&] {
        for (const tensor& M : in.tensors) sum += dspev_values(M, values, Job);
    });
    l.answer({sum});
}

void validity(const input& in, lap& l)
{
    double valid = 0.0;
    l.timed([&] {
        for (const tensor& M : in.tensors) valid += is_valid_metric(M) ? 1.0 : 0.0;
    });
    l.answer({valid});
}

void dspev_validity(const input& in, lap& l)
{
    double valid = 0.0;
    double values[3];
    l.timed([&] {
        for (const tensor& M : in.tensors) {
            dspev_values(M, values, 'N');
            valid += values[0] > 0.0 && values[0] > 1e-24 * values[2] ? 1.0 : 0.0;
        }
    });
    l.answer({valid});
}

void field_validity(const input& in, lap& l)
{
    bool valid = false;
    l.timed([&] { valid = are_valid_metrics(in.field); });
    l.answer({valid ? 1.0 : 0.0});
}

void dspev_field(const input& in, lap& l)
{
    bool valid = true;
    double values[3];
    l.timed([&] {
        for (std::uint64_t j = 0; valid && j < in.field.cols; ++j) {
            tensor M;
            for (std::size_t i = 0; i < 6; ++i) M[i] = in.field(i, j);
            dspev_values(M, values, 'N');
            valid = values[0] > 0.0 && values[0] > 1e-24 * values[2];
        }
    });
    l.answer({valid ? 1.0 : 0.0});
}

void intersection(const input& in, lap& l)
{
    double sum = 0.0;
    l.timed([&] {
        tensor smaller;
        for (std::size_t j = 0; j < in.tensors.size(); ++j)
            if (minimum_metric(in.tensors[j], in.others[j], smaller)) sum += trace(smaller);
    });
    l.answer({sum});
}

cost once(const input& in, bool)
{
    return {.streamed = 48.0 * double(in.tensors.size())};
}
cost half(const input& in, bool)
{
    return {.streamed = 24.0 * double(in.field.cols)};
}
cost twice(const input& in, bool)
{
    return {.streamed = 96.0 * double(in.tensors.size())};
}

const std::vector<case_of<input>> cases{
    {"eigen-pairs", "1 M tensors", "weighted sum of the values", [](bool) { return tensors_and_field(false); }, once,
     false, 1e-12},
    {"validity", "1 M tensors", "valid tensors", [](bool) { return tensors_and_field(true); }, once, false},
    {"validity of a field", "1 M tensors of floats", "valid or not", [](bool) { return tensors_and_field(false); },
     half, false},
    {"intersection", "1 M pairs", "sum of the traces", [](bool) { return tensors_and_field(false); }, twice, false,
     1e-9},
};

const bool entered = enter<input>({
    {"eigen-pairs", ours, "eigen_pairs", "", eigenvalues},
    {"eigen-pairs", "LAPACK V", "dspev with vectors", "vectors too", dspev_eigenvalues<'V'>},
    {"eigen-pairs", "LAPACK N", "dspev without vectors", "", dspev_eigenvalues<'N'>},
    {"validity", ours, "is_valid_metric", "", validity},
    {"validity", "LAPACK", "dspev without vectors and the test of the ratio", "", dspev_validity},
    {"validity of a field", ours, "are_valid_metrics", "", field_validity},
    {"validity of a field", "LAPACK", "dspev without vectors and the test of the ratio", "", dspev_field},
    {"intersection", ours, "minimum_metric", "", intersection},
});

}  // namespace
}  // namespace compare

int main(int argc, char** argv)
{
    const compare::settings s(argc, argv);
    compare::report all("metrics", s);
    compare::measure_cases(all, "metrics", compare::cases);
    return all.agreed() ? 0 : 1;
}
