#ifndef TESSOLV_METRICS_SYMMETRIC_EIGEN_H
#define TESSOLV_METRICS_SYMMETRIC_EIGEN_H

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

// In 3-D by LAPACK, but for diagonal tensors, whose axes are exact.
eigen_system<2> eigen_decomposition(const symmetric_fixed<double, 2>& M);
eigen_system<3> eigen_decomposition(const symmetric_fixed<double, 3>& M);

// To 1e-14 of the greatest magnitude, which in all but odd cases is many times faster by direct formulas than by LAPACK.
vector_fixed<double, 3> direct_eigenvalues(const symmetric_fixed<double, 3>& M);

inline bool is_diagonal(const symmetric_fixed<double, 3>& M)
{
    return M[1] == 0.0 && M[3] == 0.0 && M[4] == 0.0;
}

// A single comparison, since 0 times infinity or what is no number is no number.
template <std::size_t N>
bool is_finite(const symmetric_fixed<double, N>& M)
{
    double zero = 0.0;
    for (const double m : M) zero += 0.0 * m;
    return zero == 0.0;
}

}  // namespace zeb::tessolv

#endif
