#ifndef TESSOLV_METRICS_DIRECT_SPECTRUM_H
#define TESSOLV_METRICS_DIRECT_SPECTRUM_H

#include <algorithm>
#include <cmath>

#include <zeb/fixed.h>

namespace zeb::tessolv {

// A symmetric tensor as mean I + deviation, where the deviation has the trace 0 but for rounding, with the eigenvalues of
// the deviation in ascending order.
struct direct_spectrum {
    double mean;
    symmetric_fixed<double, 3> deviation;
    vector_fixed<double, 3> roots;
};

// The root of x^3 - 3 x = 2 r that lies apart from the others, for r from -1 to 1: 2 cos(acos(r) / 3) for positive r.
// Newton's method from a cubic that is off by 8e-5 at most: the errors are 6e-9 and below rounding. A dozen dependent
// operations are what a tensor costs, so the start is worth its third coefficient: it saves a third division.
inline double outer_root(double r)
{
    const double a = std::min(std::abs(r), 1.0);
    double x = (1.7321327 + 0.3306607 * a) + (a * a) * (0.0186394 * a - 0.0813824);
    for (int step = 0; step < 2; ++step) x = (2.0 / 3.0) * (x * x * x + a) / (x * x - 1.0);
    return std::copysign(x, r);
}

// Sum of the squares of all nine entries.
inline double squared_norm(const symmetric_fixed<double, 3>& M)
{
    return (M[0] * M[0] + M[2] * M[2] + M[5] * M[5]) + 2.0 * (M[1] * M[1] + M[3] * M[3] + M[4] * M[4]);
}

inline double determinant(const symmetric_fixed<double, 3>& M)
{
    return M[0] * (M[2] * M[5] - M[4] * M[4]) + M[1] * (M[3] * M[4] - M[1] * M[5]) + M[3] * (M[1] * M[4] - M[3] * M[2]);
}

// (M - x I)(M - y I), symmetric like its factors.
inline symmetric_fixed<double, 3> product_of_shifted(const symmetric_fixed<double, 3>& M, double x, double y)
{
    const double a = M[0] - x, b = M[2] - x, c = M[5] - x;
    const double p = M[0] - y, q = M[2] - y, r = M[5] - y;
    const double m01 = M[1] * M[1], m02 = M[3] * M[3], m12 = M[4] * M[4];
    return {a * p + (m01 + m02),          M[1] * (a + q) + M[3] * M[4], b * q + (m01 + m12),
            M[3] * (a + r) + M[1] * M[4], M[4] * (b + r) + M[1] * M[3], c * r + (m02 + m12)};
}

// Good to a few roundings of the greatest eigenvalue, equal eigenvalues or not. With 6 p^2 the squared norm of the
// deviation B, the eigenvalue that lies apart from the others is beta = p x, x a root of x^3 - 3 x = det B / p^3 (O. K.
// Smith. Communications of the ACM 4(4), 1961). The other two are -beta/2 -+ h. Nearly equal ones must not be taken from
// the polynomial, which knows h to half of the digits only, but (B + beta/2 I)(B - beta I) has no part along the first
// direction and is of the size of h across it: its squared norm is h^2 (9/2 beta^2 + 2 h^2), where h^2 = 3 p^2 - 3/4
// beta^2 is exact enough.
//
// False where magnitudes might leave the range of double, and for what is no number.
inline bool solve_directly(const symmetric_fixed<double, 3>& M, direct_spectrum& s)
{
    s.mean = (M[0] + M[2] + M[5]) * (1.0 / 3.0);
    s.deviation = M;
    for (std::size_t k = 0; k < 3; ++k) s.deviation(k, k) -= s.mean;
    const double pp = squared_norm(s.deviation) * (1.0 / 6.0), p = std::sqrt(pp);
    const double beta = p * outer_root(determinant(s.deviation) / (2.0 * p * pp));
    const double across = squared_norm(product_of_shifted(s.deviation, -0.5 * beta, beta));
    const double h = std::sqrt(across / (3.0 * (beta * beta) + 6.0 * pp));
    const double lower = -0.5 * beta - h, upper = h - 0.5 * beta;
    s.roots = {std::min(beta, lower), beta < 0.0 ? lower : upper, std::max(beta, upper)};
    return pp > 1e-100 && pp < 1e100;
}

}  // namespace zeb::tessolv

#endif
