#ifndef TESSOLV_METRICS_CERTAIN_VALIDITY_H
#define TESSOLV_METRICS_CERTAIN_VALIDITY_H

namespace zeb::tessolv {

// Whether the packed tensor m is positive definite, and so far from singular that rounding and the least ratio of the
// eigenvalues need not be asked for: its least eigenvalue is more than 9e-13 of its norm n. Of numbers or of vectors of
// numbers side by side. What it leaves open, an anisotropy beyond a thousand or so among it, needs another look.
//
// The leading minors are computed to a few 1e-16 of n^2 and n^3. So if the second exceeds 1e-14 n^2 and the third 1e-12
// n^3 they are positive, and the least eigenvalue is the third, which is the product of all, over at most n^2. The bound
// of the first keeps n^6 above the least double; beyond the greatest, and with what is no number, nothing is certain.
template <class Number>
auto is_certainly_valid(const Number (&m)[6])
{
    const Number m01 = m[1] * m[1], m02 = m[3] * m[3], m12 = m[4] * m[4];
    const Number nn = m[0] * m[0] + m[2] * m[2] + m[5] * m[5] + 2.0 * (m01 + m02 + m12);
    const Number second = m[0] * m[2] - m01;
    const Number third =
        m[0] * (m[2] * m[5] - m12) + m[1] * (m[3] * m[4] - m[1] * m[5]) + m[3] * (m[1] * m[4] - m[3] * m[2]);
    return (m[0] > 1e-40) & (second > 1e-14 * nn) & (third > 0.0) & (third * third > 1e-24 * nn * nn * nn);
}

}  // namespace zeb::tessolv

#endif
