#include "metrics/symmetric_eigen.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <zeb/lapack/dspev.h>

#include "metrics/direct_spectrum.h"

namespace zeb::tessolv {
namespace {

void sort_ascending(eigen_system<3>& system)
{
    const auto order = [&system](std::size_t i, std::size_t j) {
        if (!(system.values[j] < system.values[i])) return;
        std::swap(system.values[i], system.values[j]);
        for (std::size_t k = 0; k < 3; ++k) std::swap(system.vectors(k, i), system.vectors(k, j));
    };
    order(0, 1);
    order(1, 2);
    order(0, 1);
}

eigen_system<3> axes_of_diagonal(const symmetric_fixed<double, 3>& M)
{
    eigen_system<3> system{{M[0], M[2], M[5]}, {1, 0, 0, 0, 1, 0, 0, 0, 1}};
    sort_ascending(system);
    return system;
}

}  // namespace

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
    if (std::sqrt(x * x + y * y) < least_length) {
        x = a > c ? 0.0 : 1.0;
        y = a > c ? 1.0 : 0.0;
    } else if (a > c) {
        // The same direction from the other row: here lower - c is what rounding left of nearly equal numbers, which of
        // a diagonal tensor with entries of 1e4 can be enough to exchange the axes.
        x = -std::abs(b);
        y = std::copysign(a - values[0], b);
    }
    const double length = std::sqrt(x * x + y * y);
    x /= length;
    y /= length;
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
    if (is_diagonal(M)) return axes_of_diagonal(M);
    eigen_system<3> system;
    symmetric_fixed<double, 3> destroyed = M;
    double work[9];
    long info = 0;
    lapack::dspev('V', 'U', 3, destroyed.data(), system.values.data(), system.vectors.data(), 3, work, info);
    return system;
}

vector_fixed<double, 3> direct_eigenvalues(const symmetric_fixed<double, 3>& M)
{
    direct_spectrum s;
    if (is_diagonal(M) || !solve_directly(M, s)) return eigen_decomposition(M).values;
    return {s.mean + s.roots[0], s.mean + s.roots[1], s.mean + s.roots[2]};
}

}  // namespace zeb::tessolv
