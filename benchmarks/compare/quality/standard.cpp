// The formula of the pyramid as one would write it down, element by element.
#include "meshes.h"

namespace compare {
namespace {

using point = std::array<double, 3>;

double dot(const point& a, const point& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

point edge(const mesh& m, unsigned int from, unsigned int to)
{
    return {m.pos(0, to) - m.pos(0, from), m.pos(1, to) - m.pos(1, from), m.pos(2, to) - m.pos(2, from)};
}

double corner(const point& u, const point& v, const point& w)
{
    const point c{u[1] * w[2] - u[2] * w[1], u[2] * w[0] - u[0] * w[2], u[0] * w[1] - u[1] * w[0]};
    const double lengths = std::sqrt(dot(u, u) * dot(v, v)) * std::sqrt(dot(w, w));
    if (!(lengths > 0.0)) return 0.0;
    const double value = std::sqrt(2.0) * dot(c, v) / lengths;
    return value > 1.0 || value < -1.0 ? 1.0 / value : value;
}

double pyramid(const mesh& m, std::uint64_t e)
{
    std::array<point, 4> to;
    for (unsigned int k = 0; k < 4; ++k) to[k] = edge(m, m.connect(4, e), m.connect(k, e));
    double sum = 0.0;
    double least = 1.0;
    for (unsigned int k = 0; k < 4; ++k) {
        const double x = corner(to[k], to[(k + 1) % 4], to[(k + 2) % 4]);
        sum += std::abs(x);
        least = std::min(least, x);
    }
    return sum / 4 * least;
}

void pyramids_one_by_one(const mesh& m, lap& l)
{
    if (m.type != EL_PYRAMID5) return l.decline();
    std::vector<double> values;
    l.timed([&] {
        values.resize(m.connect.cols);
        for (std::uint64_t e = 0; e < m.connect.cols; ++e) values[e] = pyramid(m, e);
    });
    double positive = 0.0;
    double sum = 0.0;
    for (const double q : values) positive += q > 0.0 ? 1.0 : 0.0, sum += q;
    l.answer({positive, sum});
}

const bool entered = enter<mesh>(
    {{"quality", "plain loop", "the same formula, element by element", "checks nothing", pyramids_one_by_one}});

}  // namespace
}  // namespace compare
