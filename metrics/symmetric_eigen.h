#ifndef TESSOLV_METRICS_SYMMETRIC_EIGEN_H
#define TESSOLV_METRICS_SYMMETRIC_EIGEN_H

#include <algorithm>
#include <cmath>

#include <zeb/fixed.h>

namespace zeb::tessolv {

// Eigenvalues in ascending order, and the unit eigenvectors in the columns of the same order.
template <std::size_t N>
struct eigen_system {
    vector_fixed<double, N> values;
    matrix_fixed<double, N, N> vectors;
};

vector_fixed<double, 2> eigenvalues(const symmetric_fixed<double, 2>& M);
vector_fixed<double, 3> eigenvalues(const symmetric_fixed<double, 3>& M);

eigen_system<2> eigen_decomposition(const symmetric_fixed<double, 2>& M);
eigen_system<3> eigen_decomposition(const symmetric_fixed<double, 3>& M);

template <std::size_t N>
bool is_finite(const symmetric_fixed<double, N>& M)
{
    return std::all_of(M.begin(), M.end(), [](double m) { return std::isfinite(m); });
}

// Gauss elimination without pivoting of a symmetric matrix in place: S(k, j) becomes entry (k, j) of the upper factor,
// k <= j. False, with S as far as it got, at a pivot that is not greater than 0.
template <std::size_t N>
bool eliminate(symmetric_fixed<double, N>& S)
{
    for (std::size_t k = 0; k < N; ++k) {
        if (!(S(k, k) > 0.0)) return false;
        for (std::size_t j = k + 1; j < N; ++j)
            for (std::size_t i = k + 1; i <= j; ++i) S(i, j) -= S(k, i) * S(k, j) / S(k, k);
    }
    return true;
}

}  // namespace zeb::tessolv

#endif
