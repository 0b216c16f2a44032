#include <tessolv/metrics.h>

#include <algorithm>
#include <cmath>

#include "metrics/certain_validity.h"
#include "metrics/symmetric_eigen.h"

namespace zeb::tessolv {
namespace {

// Sizes may differ by a factor of 1e12 between directions.
constexpr double least_ratio = 1e-24;

// The eigenvalue that belongs to a size; 0 for what is no size.
double eigenvalue_of_size(double h)
{
    return h > 0.0 ? 1.0 / (h * h) : 0.0;
}

template <std::size_t N>
symmetric_fixed<double, N> isotropic(double mu)
{
    symmetric_fixed<double, N> M;
    for (std::size_t k = 0; k < N; ++k) M(k, k) = mu;
    return M;
}

double dot(const double* a, const double* b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

template <std::size_t N>
bool has_valid_eigenvalues(const symmetric_fixed<double, N>& M)
{
    const auto values = eigenvalues(M);
    if (!std::all_of(values.begin(), values.end(), [](double v) { return v > 0.0; })) return false;
    const auto [least, greatest] = std::minmax_element(values.begin(), values.end());
    return *least > least_ratio * *greatest;
}

// Whether Gauss elimination of M + shift I meets positive pivots alone.
bool has_positive_pivots(const symmetric_fixed<double, 3>& M, double shift)
{
    const double a = M[0] + shift, inverse_a = 1.0 / a;
    const double b = M[2] + shift - M[1] * M[1] * inverse_a;
    const double bc = M[4] - M[1] * M[3] * inverse_a;
    const double c = M[5] + shift - M[3] * M[3] * inverse_a - bc * bc / b;
    return a > 0.0 && b > 0.0 && c > 0.0;
}

enum class verdict { valid, invalid, doubtful };

// The same answer from two eliminations wherever the least eigenvalue is farther from 0 than rounding can reach.
//
// `bound` is at least the norm of M. Elimination is backward stable to a few 1e-16 of it (N. J. Higham. Accuracy and
// Stability of Numerical Algorithms. SIAM 2002, theorems 10.3 and 10.7), and so are computed eigenvalues. So if M less
// the shift has positive pivots alone, the least computed eigenvalue is greater than 0.9 shift, far beyond the least
// ratio; if M and the shift have another one, it is less than -0.9 shift. Entries that are not finite are doubtful, and
// so are magnitudes whose products might leave the range.
verdict judge_by_pivots(const symmetric_fixed<double, 3>& M)
{
    const double bound =
        std::abs(M[0]) + std::abs(M[2]) + std::abs(M[5]) + 2.0 * (std::abs(M[1]) + std::abs(M[3]) + std::abs(M[4]));
    if (!(bound > 1e-100 && bound < 1e100)) return verdict::doubtful;
    const double shift = 1e-12 * bound;
    if (has_positive_pivots(M, -shift)) return verdict::valid;
    return has_positive_pivots(M, shift) ? verdict::doubtful : verdict::invalid;
}

}  // namespace

void metric_iso_to_aniso(double h, symmetric_fixed<double, 2>& M)
{
    M = isotropic<2>(eigenvalue_of_size(h));
}

void metric_iso_to_aniso(double h, symmetric_fixed<double, 3>& M)
{
    M = isotropic<3>(eigenvalue_of_size(h));
}

void metric_iso_to_aniso2d(double h, const matrix_fixed<double, 3, 2>& B, symmetric_fixed<double, 2>& M)
{
    const double mu = eigenvalue_of_size(h);
    const double *b0 = B.data(), *b1 = b0 + 3;
    M = mu == 0.0 ? symmetric_fixed<double, 2>()
                  : symmetric_fixed<double, 2>(mu * dot(b0, b0), mu * dot(b0, b1), mu * dot(b1, b1));
}

void metric_aniso3d_to_aniso2d(const symmetric_fixed<double, 3>& M3, const matrix_fixed<double, 3, 2>& B,
                               symmetric_fixed<double, 2>& M2)
{
    const double *b0 = B.data(), *b1 = b0 + 3;
    double Mb0[3], Mb1[3];
    for (std::size_t i = 0; i < 3; ++i) {
        const double row[] = {M3(i, 0), M3(i, 1), M3(i, 2)};
        Mb0[i] = dot(row, b0);
        Mb1[i] = dot(row, b1);
    }
    M2 = {dot(b0, Mb0), dot(b0, Mb1), dot(b1, Mb1)};
}

// `vectors` is the callee's own, part of the interface: nothing that is stored there reaches the caller.
void eigen_pairs(const symmetric_fixed<double, 2>& M, vector_fixed<double, 2>& values, matrix_fixed<double, 2, 2>)
{
    values = eigenvalues(M);
}

void eigen_pairs(const symmetric_fixed<double, 3>& M, vector_fixed<double, 3>& values, matrix_fixed<double, 3, 3>)
{
    values = direct_eigenvalues(M);
}

bool is_valid_metric(const symmetric_fixed<double, 2>& M)
{
    return is_finite(M) && has_valid_eigenvalues(M);
}

bool is_valid_metric(const symmetric_fixed<double, 3>& M)
{
    const double entries[] = {M[0], M[1], M[2], M[3], M[4], M[5]};
    if (is_certainly_valid(entries)) return true;
    const verdict certain = judge_by_pivots(M);
    return certain == verdict::doubtful ? is_finite(M) && has_valid_eigenvalues(M) : certain == verdict::valid;
}

}  // namespace zeb::tessolv
