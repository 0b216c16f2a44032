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

// In 2-D the roots of the characteristic polynomial, in 3-D those that LAPACK gives: what decides about a tensor.
vector_fixed<double, 2> eigenvalues(const symmetric_fixed<double, 2>& M);
vector_fixed<double, 3> eigenvalues(const symmetric_fixed<double, 3>& M);

// In 3-D to 1e-14 of the greatest magnitude, which in all but odd cases is faster by direct formulas than by LAPACK.
eigen_system<2> eigen_decomposition(const symmetric_fixed<double, 2>& M);
eigen_system<3> eigen_decomposition(const symmetric_fixed<double, 3>& M);

// The very values of the decomposition, without the vectors and without a branch to sort them.
vector_fixed<double, 3> decomposed_eigenvalues(const symmetric_fixed<double, 3>& M);

template <std::size_t N>
bool is_finite(const symmetric_fixed<double, N>& M)
{
    return std::all_of(M.begin(), M.end(), [](double m) { return std::isfinite(m); });
}

}  // namespace zeb::tessolv

#endif
