#include <tessolv/metrics.h>

#include <algorithm>
#include <cmath>

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

// Both tensors are diagonal in the directions P = L^-T W, W the eigenvectors of L^-1 M2 L^-T: there M1 has the
// eigenvalues 1 and M2 those of the reduced tensor, mu. The smaller size has the greater eigenvalue, so that the result
// is P^-T max(1, mu) P^-1 with P^-1 = W' L'. Neither P nor an inverse is formed: with sizes in a ratio of 1e4 that
// keeps all digits where the inverse of P leaves eight.
template <std::size_t N>
bool intersect(const tensor<N>& M1, const tensor<N>& M2, tensor<N>& Mout)
{
    square_matrix<N> L;
    if (!is_finite(M1) || !is_finite(M2) || !cholesky(M1, L)) return false;
    const tensor<N> C = reduced(M2, L);
    if (!is_finite(C)) return false;  // a size of 0
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
    if (!is_finite(result)) return false;
    Mout = result;
    return true;
}

}  // namespace

bool minimum_metric(const symmetric_fixed<double, 2>& M1, const symmetric_fixed<double, 2>& M2,
                    symmetric_fixed<double, 2>& Mout)
{
    return intersect(M1, M2, Mout);
}

bool minimum_metric(const symmetric_fixed<double, 3>& M1, const symmetric_fixed<double, 3>& M2,
                    symmetric_fixed<double, 3>& Mout)
{
    return intersect(M1, M2, Mout);
}

}  // namespace zeb::tessolv
