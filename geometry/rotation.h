#ifndef TESSOLV_GEOMETRY_ROTATION_H
#define TESSOLV_GEOMETRY_ROTATION_H

#include <cmath>

#include <zeb/fixed.h>

namespace zeb::tessolv {

// sin t / t and (1 - cos t) / t^2 of an angle t in radians.
struct rotation_coefficients {
    double a, b;
};

// Up to this angle, itself included, the closed forms lose digits to cancellation and the series take over.
constexpr double largest_series_angle = 0.2;

inline rotation_coefficients coefficients_of_angle(double t)
{
    if (t > largest_series_angle) return {std::sin(t) / t, (1.0 - std::cos(t)) / (t * t)};
    const double t2 = t * t, t4 = t2 * t2, t6 = t4 * t2, t8 = t4 * t4, t10 = t8 * t2;
    return {1.0 - t2 / 6.0 + t4 / 120.0 - t6 / 5040.0 + t8 / 362880.0 - t10 / 39916800.0,
            1.0 / 2.0 - t2 / 24.0 + t4 / 720.0 - t6 / 40320.0 + t8 / 3628800.0};
}

// The rotation by |r| radians about r, counter-clockwise by the right-hand rule: I + a K + b K^2 with K v = r x v
// (O. Rodrigues, 1840). K^2 = r r' - |r|^2 I is written out.
inline matrix_fixed<double, 3, 3> rotation_matrix(const vector_fixed<double, 3>& r)
{
    const double x = r[0], y = r[1], z = r[2];
    const double xx = x * x, yy = y * y, zz = z * z;
    const auto [a, b] = coefficients_of_angle(std::sqrt(xx + yy + zz));
    const double xy = b * (x * y), xz = b * (x * z), yz = b * (y * z);
    return {1.0 - b * (yy + zz), xy + a * z,          xz - a * y,            // column 0
            xy - a * z,          1.0 - b * (xx + zz), yz + a * x,            // column 1
            xz + a * y,          yz - a * x,          1.0 - b * (xx + yy)};  // column 2
}

}  // namespace zeb::tessolv

#endif
