#include "metrics/symmetric_eigen.h"

#include <cmath>

#include <zeb/lapack/dspev.h>

namespace zeb::tessolv {

// The roots of x^2 - t x + d. Where one is the difference of nearly equal numbers it is replaced by d / t, which is
// good to the ratio of the two; d / t and not d over the other root is part of the interface.
vector_fixed<double, 2> eigenvalues(const symmetric_fixed<double, 2>& M)
{
    constexpr double cancelled = 1e-12;
    const double a = M[0], b = M[1], c = M[2];
    const double t = a + c, d = a * c - b * b, r = t * t - 4.0 * d;
    const double s = r >= 0.0 ? std::sqrt(r) : 0.0;
    double lower = (t - s) / 2.0;
    double upper = lower + s;
    if (std::abs(lower) < cancelled * std::abs(upper) && t > 0.0) lower = d / t;
    if (std::abs(upper) < cancelled * std::abs(lower) && !(t >= 0.0)) upper = d / t;
    return {lower, upper};
}

eigen_system<2> eigen_decomposition(const symmetric_fixed<double, 2>& M)
{
    constexpr double least_length = 1e-12;
    const double a = M[0], b = M[1], c = M[2];
    const auto values = eigenvalues(M);
    double x = values[0] - c, y = b;
    const double length = std::sqrt(x * x + y * y);
    if (length >= least_length) {
        x /= length;
        y /= length;
    } else {
        x = a > c ? 0.0 : 1.0;
        y = a > c ? 1.0 : 0.0;
    }
    return {values, {x, y, -y, x}};
}

vector_fixed<double, 3> eigenvalues(const symmetric_fixed<double, 3>& M)
{
    symmetric_fixed<double, 3> destroyed = M;
    vector_fixed<double, 3> values;
    double work[9];
    long info = 0;
    lapack::dspev('N', 'U', 3, destroyed.data(), values.data(), nullptr, 1, work, info);
    return values;
}

eigen_system<3> eigen_decomposition(const symmetric_fixed<double, 3>& M)
{
    symmetric_fixed<double, 3> destroyed = M;
    eigen_system<3> system;
    double work[9];
    long info = 0;
    lapack::dspev('V', 'U', 3, destroyed.data(), system.values.data(), system.vectors.data(), 3, work, info);
    return system;
}

}  // namespace zeb::tessolv
