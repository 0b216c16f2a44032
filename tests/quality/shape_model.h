#ifndef TESTS_QUALITY_SHAPE_MODEL_H
#define TESTS_QUALITY_SHAPE_MODEL_H

#include <array>
#include <cmath>
#include <vector>

// The shape qualities once more: one element at a time, written out in full from the formulas, step by step, with plain
// numbers and branches. Slow, and sharing nothing with the library.

namespace test::model {

using spot = std::array<double, 3>;

inline double triangle_2d(const spot& p0, const spot& p1, const spot& p2)
{
    const double l01 = std::sqrt((p0[0] - p1[0]) * (p0[0] - p1[0]) + (p0[1] - p1[1]) * (p0[1] - p1[1]));
    const double l02 = std::sqrt((p0[0] - p2[0]) * (p0[0] - p2[0]) + (p0[1] - p2[1]) * (p0[1] - p2[1]));
    const double l12 = std::sqrt((p1[0] - p2[0]) * (p1[0] - p2[0]) + (p1[1] - p2[1]) * (p1[1] - p2[1]));
    double longest = l01;
    if (l02 > longest) longest = l02;
    if (l12 > longest) longest = l12;
    const double divisor = (l01 + l02 + l12) * longest;
    if (!(divisor > 0)) return 0;
    const double area2 = (p1[0] - p0[0]) * (p2[1] - p0[1]) - (p1[1] - p0[1]) * (p2[0] - p0[0]);
    const double q = area2 / divisor * 3.4641016151377544;
    if (q > 1) return 1;
    if (q < -1) return -1;
    return q;
}

inline double triangle_3d(const spot& p0, const spot& p1, const spot& p2)
{
    double l[3];
    const spot* ends[3][2] = {{&p0, &p1}, {&p0, &p2}, {&p1, &p2}};
    for (int k = 0; k < 3; ++k) {
        double sum = 0;
        for (int i = 0; i < 3; ++i) {
            const double d = (*ends[k][0])[i] - (*ends[k][1])[i];
            sum = sum + d * d;
        }
        l[k] = std::sqrt(sum);
    }
    double longest = l[0];
    if (l[1] > longest) longest = l[1];
    if (l[2] > longest) longest = l[2];
    const double divisor = (l[0] + l[1] + l[2]) * longest;
    if (!(divisor > 0)) return 0;
    const double ax = p0[0] - p2[0], ay = p0[1] - p2[1], az = p0[2] - p2[2];
    const double bx = p1[0] - p2[0], by = p1[1] - p2[1], bz = p1[2] - p2[2];
    const double nx = ay * bz - az * by, ny = az * bx - ax * bz, nz = ax * by - ay * bx;
    const double area2 = std::sqrt(nx * nx + ny * ny + nz * nz);
    const double q = area2 / divisor * 3.4641016151377544;
    return q > 1 ? 1 : q;
}

inline double quadrangle_2d(const std::array<spot, 4>& p)
{
    double ex[4], ey[4], l[4];
    for (int k = 0; k < 4; ++k) {
        ex[k] = p[(k + 1) % 4][0] - p[k][0];
        ey[k] = p[(k + 1) % 4][1] - p[k][1];
        l[k] = std::sqrt(ex[k] * ex[k] + ey[k] * ey[k]);
    }
    double m = 1, sum = 0;
    for (int k = 0; k < 4; ++k) {
        const int before = k == 0 ? 3 : k - 1;
        double s = ex[before] * ey[k] - ey[before] * ex[k];
        const double product = l[before] * l[k];
        if (product > 0) s = s / product;
        if (s < m) m = s;
        sum = sum + std::fabs(s);
    }
    double q = (sum / 4) * m;
    double shortest = l[0], longest = l[0];
    for (int k = 1; k < 4; ++k) {
        if (l[k] < shortest) shortest = l[k];
        if (l[k] > longest) longest = l[k];
    }
    if (longest > 0) q = q * std::sqrt(shortest / longest);
    if (q > 1) q = 1;
    if (q < -1) q = -1;
    return q;
}

inline double opening(const spot& n, const spot& o)
{
    const double ln = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
    const double lo = std::sqrt(o[0] * o[0] + o[1] * o[1] + o[2] * o[2]);
    if (!(ln * lo > 0)) return 0;
    double c = (n[0] * o[0] + n[1] * o[1] + n[2] * o[2]) / (ln * lo);
    if (c > 1) c = 1;
    if (c < -1) c = -1;
    return 1 - std::acos(c) * 0.3183098861837907;
}

inline double quadrangle_3d(const std::array<spot, 4>& p)
{
    spot e[4], n[4];
    double l[4];
    for (int k = 0; k < 4; ++k) {
        for (int i = 0; i < 3; ++i) e[k][i] = p[(k + 1) % 4][i] - p[k][i];
        l[k] = std::sqrt(e[k][0] * e[k][0] + e[k][1] * e[k][1] + e[k][2] * e[k][2]);
    }
    double m = 1, sum = 0;
    for (int k = 0; k < 4; ++k) {
        const spot& a = e[(k + 3) % 4];
        const spot& b = e[k];
        n[k] = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
        double s = std::sqrt(n[k][0] * n[k][0] + n[k][1] * n[k][1] + n[k][2] * n[k][2]);
        const double product = l[(k + 3) % 4] * l[k];
        if (product != 0) s = s / product;
        if (s < m) m = s;
        sum = sum + s;
    }
    double q = (sum / 4) * m;
    double shortest = l[0], longest = l[0];
    for (int k = 1; k < 4; ++k) {
        if (l[k] < shortest) shortest = l[k];
        if (l[k] > longest) longest = l[k];
    }
    if (longest > 0) q = q * std::sqrt(shortest / longest);
    if (q > 1) q = 1;
    const double w13 = opening(n[1], n[3]);
    const double w02 = opening(n[0], n[2]);
    double warp = 0;
    if (w13 > 0 && w02 > 0) warp = std::sqrt(w02 * w13);
    return q * warp;
}

inline double tetra_term(const spot& a, const spot& b)
{
    const double aa = a[0] * a[0] + a[1] * a[1] + a[2] * a[2];
    const double bb = b[0] * b[0] + b[1] * b[1] + b[2] * b[2];
    const double ab = a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
    const double argument = aa * bb - ab * ab;
    return argument > 0 ? std::sqrt(argument) : 0;
}

inline double tetra_measure(const spot& p0, const spot& p1, const spot& p2, const spot& apex)
{
    spot a, b, c, ab, ac, bc;
    for (int i = 0; i < 3; ++i) {
        a[i] = p0[i] - apex[i];
        b[i] = p1[i] - apex[i];
        c[i] = p2[i] - apex[i];
        ab[i] = a[i] - b[i];
        ac[i] = a[i] - c[i];
        bc[i] = b[i] - c[i];
    }
    const double volume =
        (a[1] * b[2] - a[2] * b[1]) * c[0] + (a[2] * b[0] - a[0] * b[2]) * c[1] + (a[0] * b[1] - a[1] * b[0]) * c[2];
    double faces = 0;
    faces = faces + tetra_term(a, b);
    faces = faces + tetra_term(c, a);
    faces = faces + tetra_term(c, b);
    faces = faces + tetra_term(ab, ac);
    double longest = a[0] * a[0] + a[1] * a[1] + a[2] * a[2];
    for (const spot& v : {b, c, ab, ac, bc}) {
        const double square = v[0] * v[0] + v[1] * v[1] + v[2] * v[2];
        if (square > longest) longest = square;
    }
    const double divisor = std::sqrt(longest) * faces;
    if (!(divisor > 0)) return 0;
    const double t = volume * 4.89897948556 / divisor;
    if (t > 1) return 1;
    if (t < -1) return -1;
    return t;
}

inline double tetrahedron(const std::array<spot, 4>& p)
{
    double q = tetra_measure(p[0], p[1], p[2], p[3]);
    if (std::fabs(q) >= 1e-9) return q;
    for (int j = 0; j < 3; ++j) {
        double r = tetra_measure(p[(j + 1) % 4], p[(j + 2) % 4], p[(j + 3) % 4], p[j]);
        if (j != 1) r = -r;
        if (!(r >= 0) && q > 0) q = 0;
        if (r > 0 && !(q >= 0)) q = 0;
        if (std::fabs(r) < std::fabs(q)) q = r;
    }
    return q;
}

inline double corner_seen_from(const spot& apex, const spot& pa, const spot& pb, const spot& pc)
{
    const double ux = pa[0] - apex[0], uy = pa[1] - apex[1], uz = pa[2] - apex[2];
    const double vx = pb[0] - apex[0], vy = pb[1] - apex[1], vz = pb[2] - apex[2];
    const double wx = pc[0] - apex[0], wy = pc[1] - apex[1], wz = pc[2] - apex[2];
    const double t = (uy * wz - uz * wy) * vx + (uz * wx - ux * wz) * vy + (ux * wy - uy * wx) * vz;
    const double uu = ux * ux + uy * uy + uz * uz;
    const double vv = vx * vx + vy * vy + vz * vz;
    const double ww = wx * wx + wy * wy + wz * wz;
    const double product = std::sqrt(uu * vv) * std::sqrt(ww);
    return product == 0 ? t : (1.4142135623730951 * t) / product;
}

inline double four_corners(const spot& apex, const std::array<spot, 4>& f)
{
    double m = 1, sum = 0;
    for (int k = 0; k < 4; ++k) {
        double x = corner_seen_from(apex, f[k], f[(k + 1) % 4], f[(k + 2) % 4]);
        if (x > 1)
            x = 1 / x;
        else if (x < -1)
            x = 1 / x;
        if (x < m) m = x;
        sum = sum + std::fabs(x);
    }
    return (sum / 4) * m;
}

inline double pyramid(const std::array<spot, 5>& p)
{
    return four_corners(p[4], {p[0], p[1], p[2], p[3]});
}

struct volume_and_lengths {
    double volume, product;
};

inline volume_and_lengths three_edges(const spot& a, const spot& b, const spot& c, const spot& d)
{
    spot u, v, w;
    for (int i = 0; i < 3; ++i) {
        u[i] = a[i] - d[i];
        v[i] = b[i] - d[i];
        w[i] = c[i] - d[i];
    }
    const double t =
        (u[1] * v[2] - u[2] * v[1]) * w[0] + (u[2] * v[0] - u[0] * v[2]) * w[1] + (u[0] * v[1] - u[1] * v[0]) * w[2];
    const double lu = std::sqrt(u[0] * u[0] + u[1] * u[1] + u[2] * u[2]);
    const double lv = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    const double lw = std::sqrt(w[0] * w[0] + w[1] * w[1] + w[2] * w[2]);
    return {t, lu * lv * lw};
}

inline double wedge(const std::array<spot, 6>& p)
{
    const int corner[6][4] = {{1, 2, 3, 0}, {4, 5, 0, 3}, {2, 0, 4, 1}, {5, 3, 1, 4}, {0, 1, 5, 2}, {3, 4, 2, 5}};
    double m = 1, sum = 0;
    for (int k = 0; k < 6; ++k) {
        const auto [t, product] = three_edges(p[corner[k][0]], p[corner[k][1]], p[corner[k][2]], p[corner[k][3]]);
        double x = product > 0 ? t / product : t;
        x = (k % 2 == 0 ? 1.1547005383792517 : -1.1547005383792517) * x;
        if (x > 1 || x < -1) x = 1 / x;
        if (x < m) m = x;
        sum = sum + std::fabs(x);
    }
    const double corner_score = (sum / 6) * m;

    spot g;
    for (int i = 0; i < 3; ++i) g[i] = (p[0][i] + p[1][i] + p[2][i] + p[3][i] + p[4][i] + p[5][i]) / 6;
    m = 1;
    sum = 0;
    for (int k = 0; k < 2; ++k) {
        double x = -std::sqrt(1.5) * (k == 0 ? tetra_measure(p[0], p[1], p[2], g) : tetra_measure(p[3], p[5], p[4], g));
        if (x > 1) x = 1 / x;
        if (x < m) m = x;
        sum = sum + std::fabs(x);
    }
    const std::array<spot, 4> faces[3] = {{p[2], p[1], p[4], p[5]}, {p[5], p[3], p[0], p[2]}, {p[0], p[3], p[4], p[1]}};
    for (const auto& face : faces) {
        double x = four_corners(g, face) * 1.1909722222222228;
        if (x > 1) x = 1 / x;
        if (x < m) m = x;
        sum = sum + std::fabs(x);
    }
    const double face_score = sum * 0.2 * m;
    return face_score < corner_score ? face_score : corner_score;
}

inline double hexahedron(const std::array<spot, 8>& p)
{
    const int next[8][3] = {{1, 3, 4}, {2, 0, 5}, {3, 1, 6}, {0, 2, 7}, {7, 5, 0}, {4, 6, 1}, {5, 7, 2}, {6, 4, 3}};
    double m = 1, sum = 0;
    for (int c = 0; c < 8; ++c) {
        const auto [t, product] = three_edges(p[next[c][0]], p[next[c][1]], p[next[c][2]], p[c]);
        double x = t;
        if (x > 0) x = x / product;
        if (x > 1) x = 1;
        if (x < m) m = x;
        sum = sum + std::fabs(x);
    }
    const double corner_score = (sum / 8) * m;

    spot g;
    for (int i = 0; i < 3; ++i)
        g[i] = (p[0][i] + p[1][i] + p[2][i] + p[3][i] + p[4][i] + p[5][i] + p[6][i] + p[7][i]) / 8;
    const std::array<spot, 4> faces[6] = {{p[0], p[3], p[7], p[4]}, {p[1], p[5], p[6], p[2]}, {p[0], p[4], p[5], p[1]},
                                          {p[3], p[2], p[6], p[7]}, {p[0], p[1], p[2], p[3]}, {p[7], p[6], p[5], p[4]}};
    m = 1;
    sum = 0;
    for (const auto& face : faces) {
        double x = four_corners(g, face) * 1.1851851851851851;
        if (x > 1) x = 1 / x;
        if (x < m) m = x;
        sum = sum + std::fabs(x);
    }
    const double face_score = (sum * 0.16666666666666666) * m;
    return face_score < corner_score ? face_score : corner_score;
}

}  // namespace test::model

#endif
