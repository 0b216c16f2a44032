#include <tessolv/metrics.h>

#include <algorithm>
#include <cmath>

#include "metrics/direct_spectrum.h"
#include "metrics/symmetric_eigen.h"

namespace zeb::tessolv {
namespace {

template <std::size_t N>
using tensor = symmetric_fixed<double, N>;

template <std::size_t N>
using square_matrix = matrix_fixed<double, N, N>;

// M = L L' with L lower triangular, row by row of L' from what remains of M. False at a pivot that is not greater than
// 0.
template <std::size_t N>
bool cholesky(tensor<N> M, square_matrix<N>& L)
{
    for (std::size_t k = 0; k < N; ++k) {
        const double pivot = M(k, k);
        if (!(pivot > 0.0)) return false;
        for (std::size_t i = k; i < N; ++i) L(i, k) = M(k, i) / std::sqrt(pivot);
        for (std::size_t j = k + 1; j < N; ++j)
            for (std::size_t i = k + 1; i <= j; ++i) M(i, j) -= M(k, i) * M(k, j) / pivot;
    }
    return true;
}

// L^-1 M L^-T by forward substitution from either side.
template <std::size_t N>
tensor<N> reduced(const tensor<N>& M, const square_matrix<N>& L)
{
    square_matrix<N> X;  // L^-1 M
    for (std::size_t j = 0; j < N; ++j) {
        for (std::size_t i = 0; i < N; ++i) {
            double sum = M(i, j);
            for (std::size_t k = 0; k < i; ++k) sum -= L(i, k) * X(k, j);
            X(i, j) = sum / L(i, i);
        }
    }
    tensor<N> C;  // X L^-T; its lower triangle is not needed but to find the upper one
    for (std::size_t i = 0; i < N; ++i) {
        double row[N];
        for (std::size_t j = 0; j < N; ++j) {
            double sum = X(i, j);
            for (std::size_t k = 0; k < j; ++k) sum -= row[k] * L(j, k);
            row[j] = sum / L(j, j);
            if (i <= j) C(i, j) = row[j];
        }
    }
    return C;
}

// In space the same with 7 divisions in place of 28, since there results need not repeat to the bit. The pivots are
// those of the general form: they decide.
struct cholesky_factor {
    square_matrix<3> L;
    double inverse[3];  // of the diagonal
};

bool cholesky(const tensor<3>& M, cholesky_factor& f)
{
    const double a = M(0, 0);
    const double b = M(1, 1) - M(0, 1) * M(0, 1) / a, bc = M(1, 2) - M(0, 1) * M(0, 2) / a;
    const double c = M(2, 2) - M(0, 2) * M(0, 2) / a - bc * bc / b;
    const double i = 1.0 / std::sqrt(a), j = 1.0 / std::sqrt(b), k = 1.0 / std::sqrt(c);
    f = {{a * i, M(0, 1) * i, M(0, 2) * i, 0, b * j, bc * j, 0, 0, c * k}, {i, j, k}};
    return a > 0.0 && b > 0.0 && c > 0.0;
}

tensor<3> reduced(const tensor<3>& M, const cholesky_factor& f)
{
    const auto& [L, inverse] = f;
    double X[3][3];  // L^-1 M
    for (std::size_t j = 0; j < 3; ++j) {
        X[0][j] = M(0, j) * inverse[0];
        X[1][j] = (M(1, j) - L(1, 0) * X[0][j]) * inverse[1];
        X[2][j] = (M(2, j) - L(2, 0) * X[0][j] - L(2, 1) * X[1][j]) * inverse[2];
    }
    tensor<3> C;
    for (std::size_t i = 0; i < 3; ++i) C(i, 0) = X[i][0] * inverse[0];
    for (std::size_t i = 1; i < 3; ++i) C(i, 1) = (X[i][1] - C(i, 0) * L(1, 0)) * inverse[1];
    C(2, 2) = (X[2][2] - C(2, 0) * L(2, 0) - C(2, 1) * L(2, 1)) * inverse[2];
    return C;
}

// Both tensors are diagonal in the directions P = L^-T W, W the eigenvectors of C = L^-1 M2 L^-T: there M1 has the
// eigenvalues 1 and M2 those of C, mu. The smaller size has the greater eigenvalue, so that the result is P^-T max(1, mu)
// P^-1 with P^-1 = W' L'. Neither P nor an inverse is formed: with sizes in a ratio of 1e4 that keeps all digits where
// the inverse of P leaves eight.
template <std::size_t N>
tensor<N> sum_over_directions(const tensor<N>& C, const square_matrix<N>& L)
{
    const auto [mu, W] = eigen_decomposition(C);
    tensor<N> result;
    for (std::size_t k = 0; k < N; ++k) {
        double direction[N] = {};  // column k of L W
        for (std::size_t i = 0; i < N; ++i)
            for (std::size_t j = 0; j <= i; ++j) direction[i] += L(i, j) * W(j, k);
        const double greater = std::max(1.0, mu[k]);
        for (std::size_t j = 0; j < N; ++j)
            for (std::size_t i = 0; i <= j; ++i) result(i, j) += greater * direction[i] * direction[j];
    }
    return result;
}

// Of a symmetric matrix of rank one, the column with the greatest entry on the diagonal.
vector_fixed<double, 3> greatest_column(const tensor<3>& M)
{
    std::size_t j = std::abs(M[2]) > std::abs(M[0]) ? 1 : 0;
    j = std::abs(M[5]) > std::abs(M(j, j)) ? 2 : j;
    return {M(0, j), M(1, j), M(2, j)};
}

// (C - mu I) w
vector_fixed<double, 3> shifted_product(const tensor<3>& C, double mu, const vector_fixed<double, 3>& w)
{
    return {(C[0] - mu) * w[0] + C[1] * w[1] + C[3] * w[2], C[1] * w[0] + (C[2] - mu) * w[1] + C[4] * w[2],
            C[3] * w[0] + C[4] * w[1] + (C[5] - mu) * w[2]};
}

double dot(const vector_fixed<double, 3>& a, const vector_fixed<double, 3>& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

// When all eigenvalues of C are on one side of 1 the result is M1 or M2. Otherwise one of them, mu, is alone on its side,
// and the result is M1 + (mu - 1) v v' or M2 + (1 - mu) v v' with v = L w, where the unit vector w spans the columns of
// (C - mu' I)(C - mu'' I), whose factors cancel the directions of the other two. Applied once more they cancel what the
// rounding of mu' and mu'' left, which is much where the three are of different magnitudes. The Rayleigh quotient of w
// then knows mu better than the spectrum does, within the doubt that this leaves: where mu and its neighbour are nearly
// equal beside the third, what w still has of the direction of the third may outweigh what mu lacks to 1.
tensor<3> intersection(const tensor<3>& M1, const tensor<3>& M2, const tensor<3>& C, const square_matrix<3>& L)
{
    direct_spectrum s;
    if (is_diagonal(C) || !solve_directly(C, s)) return sum_over_directions(C, L);
    double mu[3];
    for (std::size_t k = 0; k < 3; ++k) mu[k] = s.mean + s.roots[k];
    if (mu[0] >= 1.0) return M2;
    if (mu[2] <= 1.0) return M1;
    const bool greatest_alone = mu[1] <= 1.0;
    const std::size_t alone = greatest_alone ? 2 : 0, other = 2 - alone;
    auto w = greatest_column(product_of_shifted(s.deviation, s.roots[1], s.roots[other]));
    const double squared = dot(w, w);
    const double scale = squared > 0.0 ? 1.0 / squared : 0.0;
    for (double& component : w) component *= scale;
    w = shifted_product(C, mu[other], shifted_product(C, mu[1], w));
    const double length = dot(w, w), known = std::abs(mu[alone] - 1.0), doubt = 1e-15 * (mu[2] - mu[0]);
    const double excess = std::abs(dot(w, shifted_product(C, 1.0, w)));
    const double weight = length > 0.0 ? std::clamp(excess / length, known - doubt, known + doubt) / length : 0.0;
    const double v[] = {L(0, 0) * w[0], L(1, 0) * w[0] + L(1, 1) * w[1],
                        L(2, 0) * w[0] + L(2, 1) * w[1] + L(2, 2) * w[2]};
    tensor<3> result = greatest_alone ? M1 : M2;
    for (std::size_t j = 0; j < 3; ++j)
        for (std::size_t i = 0; i <= j; ++i) result(i, j) += weight * v[i] * v[j];
    return result;
}

// Whether products of two entries keep their digits, where `greatest` is the greatest entry on the diagonal. Otherwise
// both tensors are brought near 1 by the same power of two, of which the directions and mu know nothing.
bool squares_fit(double greatest)
{
    return greatest > 1e-140 && greatest < 1e140;
}

tensor<3> times_power_of_two(tensor<3> M, int exponent)
{
    for (double& m : M) m = std::ldexp(m, exponent);
    return M;
}

template <std::size_t N>
bool store_if_finite(const tensor<N>& result, tensor<N>& Mout)
{
    if (!is_finite(result)) return false;
    Mout = result;
    return true;
}

// Apart from the rest, which is faster so.
[[gnu::noinline]] bool minimum_near_1(const tensor<3>& M1, const tensor<3>& M2, double greatest, tensor<3>& Mout)
{
    if (!(greatest > 0.0)) return false;
    const int exponent = std::ilogb(greatest);
    tensor<3> result;
    return minimum_metric(times_power_of_two(M1, -exponent), times_power_of_two(M2, -exponent), result) &&
           store_if_finite(times_power_of_two(result, exponent), Mout);
}

}  // namespace

bool minimum_metric(const symmetric_fixed<double, 2>& M1, const symmetric_fixed<double, 2>& M2,
                    symmetric_fixed<double, 2>& Mout)
{
    square_matrix<2> L;
    if (!is_finite(M1) || !is_finite(M2) || !cholesky(M1, L)) return false;
    const auto C = reduced(M2, L);
    return is_finite(C) && store_if_finite(sum_over_directions(C, L), Mout);  // a size of 0 makes C infinite
}

bool minimum_metric(const symmetric_fixed<double, 3>& M1, const symmetric_fixed<double, 3>& M2,
                    symmetric_fixed<double, 3>& Mout)
{
    if (!is_finite(M1) || !is_finite(M2)) return false;
    const double greatest = std::max({M1[0], M1[2], M1[5]});
    if (!squares_fit(greatest)) return minimum_near_1(M1, M2, greatest, Mout);
    cholesky_factor f;
    if (!cholesky(M1, f)) return false;
    const auto C = reduced(M2, f);
    return is_finite(C) && store_if_finite(intersection(M1, M2, C, f.L), Mout);
}

}  // namespace zeb::tessolv
