#include "metrics/symmetric_eigen.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <zeb/lapack/dspev.h>

namespace zeb::tessolv {
namespace {

using vec3 = vector_fixed<double, 3>;

double dot(const vec3& a, const vec3& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

vec3 cross(const vec3& a, const vec3& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

vec3 scaled(const vec3& a, double by)
{
    return {a[0] * by, a[1] * by, a[2] * by};
}

vec3 combined(double x, const vec3& a, double y, const vec3& b)
{
    return {x * a[0] + y * b[0], x * a[1] + y * b[1], x * a[2] + y * b[2]};
}

vec3 column(const symmetric_fixed<double, 3>& M, std::size_t j)
{
    return {M(0, j), M(1, j), M(2, j)};
}

vec3 product(const symmetric_fixed<double, 3>& M, const vec3& v)
{
    return {dot(column(M, 0), v), dot(column(M, 1), v), dot(column(M, 2), v)};
}

// The longest of three vectors, of unit length.
vec3 direction_of_longest(const vec3 (&vectors)[3])
{
    const double squares[] = {dot(vectors[0], vectors[0]), dot(vectors[1], vectors[1]), dot(vectors[2], vectors[2])};
    std::size_t longest = squares[1] > squares[0] ? 1 : 0;
    longest = squares[2] > squares[longest] ? 2 : longest;
    return scaled(vectors[longest], 1.0 / std::sqrt(squares[longest]));
}

// Two unit vectors that make an orthonormal frame with w (T. Duff et al. Building an orthonormal basis, revisited.
// Journal of Computer Graphics Techniques 6(1), 2017).
void complete_frame(const vec3& w, vec3& u, vec3& v)
{
    const double sign = std::copysign(1.0, w[2]);
    const double a = -1.0 / (sign + w[2]), b = w[0] * w[1] * a;
    u = {1.0 + sign * w[0] * w[0] * a, sign * b, -sign * w[0]};
    v = {b, sign + w[1] * w[1] * a, -w[1]};
}

// The root of x^3 - 3 x = 2 r that lies apart from the others, for r from -1 to 1: 2 cos(acos(r) / 3) for positive r.
// Newton's method from a parabola that is off by 3e-3 at most: the errors are 7e-6, 4e-11 and below rounding.
double outer_root(double r)
{
    const double a = std::min(std::abs(r), 1.0);
    double x = 1.7320508 + a * (0.3333333 - 0.0653841 * a);
    for (int step = 0; step < 3; ++step) x = (2.0 / 3.0) * (x * x * x + a) / (x * x - 1.0);
    return std::copysign(x, r);
}

// Three orthonormal directions that are eigenvectors but for rounding, in ascending order of the eigenvalues likewise.
// The eigenvalue that lies apart from the others comes from the characteristic polynomial of B = (M - q I) / p, whose
// eigenvalues have the mean 0 and the mean square 2 (O. K. Smith. Communications of the ACM 4(4), 1961). Its direction
// is perpendicular to two columns of B - beta I, and what is left is a plane problem, which is solved without
// cancellation (after D. Eberly. A robust eigensolver for 3 x 3 symmetric matrices, 2014).
void find_directions(const symmetric_fixed<double, 3>& M, vec3 (&w)[3])
{
    const double q = (M[0] + M[2] + M[5]) / 3.0;
    auto B = M;
    for (std::size_t k = 0; k < 3; ++k) B(k, k) -= q;
    const double on = B[0] * B[0] + B[2] * B[2] + B[5] * B[5], off = B[1] * B[1] + B[3] * B[3] + B[4] * B[4];
    const double inverse_p = 1.0 / std::sqrt((on + 2.0 * off) / 6.0);
    for (double& b : B) b *= inverse_p;
    const double r = dot(column(B, 0), cross(column(B, 1), column(B, 2))) / 2.0;

    auto shifted = B;
    const double beta = outer_root(r);
    for (std::size_t k = 0; k < 3; ++k) shifted(k, k) -= beta;
    const vec3 x = column(shifted, 0), y = column(shifted, 1), z = column(shifted, 2);
    const vec3 outer = direction_of_longest({cross(x, y), cross(y, z), cross(z, x)});

    vec3 u, v;
    complete_frame(outer, u, v);
    const vec3 Bv = product(B, v);
    const double b = dot(u, Bv), half = (dot(u, product(B, u)) - dot(v, Bv)) / 2.0;
    const double s = std::sqrt(half * half + b * b) + std::abs(half);
    const double length = std::sqrt(s * s + b * b);
    const double c = length > 0.0 ? s / length : 1.0, t = length > 0.0 ? std::copysign(1.0, half) * b / length : 0.0;

    const std::size_t least_inner = beta > 0.0 ? 0 : 1, first = std::signbit(half) ? 0 : 1;
    w[2 - 2 * least_inner] = outer;
    w[least_inner + first] = combined(c, u, t, v);
    w[least_inner + 1 - first] = combined(-t, u, c, v);
}

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

bool is_diagonal(const symmetric_fixed<double, 3>& M)
{
    return M[1] == 0.0 && M[3] == 0.0 && M[4] == 0.0;
}

eigen_system<3> axes_of_diagonal(const symmetric_fixed<double, 3>& M)
{
    eigen_system<3> system{{M[0], M[2], M[5]}, {1, 0, 0, 0, 1, 0, 0, 0, 1}};
    sort_ascending(system);
    return system;
}

// The eigenvalues are the Rayleigh quotients of the directions. False where the residuals are too long for them to be
// exact to 1e-14 of the greatest: then magnitudes left the range of the formulas. A NaN is too long.
bool solve_directly(const symmetric_fixed<double, 3>& M, eigen_system<3>& system)
{
    constexpr double certain = 2e-15;
    vec3 w[3];
    find_directions(M, w);
    double residuals = 0.0, magnitude = 0.0;  // sums of squares
    for (std::size_t k = 0; k < 3; ++k) {
        const vec3 image = product(M, w[k]);
        const double value = dot(w[k], image);
        const vec3 residual = combined(1.0, image, -value, w[k]);
        residuals += dot(residual, residual);
        magnitude += value * value;
        system.values[k] = value;
        std::copy_n(w[k].begin(), 3, system.vectors.data() + 3 * k);
    }
    sort_ascending(system);
    return residuals <= certain * certain * magnitude && magnitude > 1e-200 && magnitude < 1e200;
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
    if (solve_directly(M, system)) return system;
    symmetric_fixed<double, 3> destroyed = M;
    double work[9];
    long info = 0;
    lapack::dspev('V', 'U', 3, destroyed.data(), system.values.data(), system.vectors.data(), 3, work, info);
    return system;
}

}  // namespace zeb::tessolv
