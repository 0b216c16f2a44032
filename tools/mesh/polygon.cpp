#include "mesh/polygon.h"

#include <cmath>

namespace tool {
namespace {

using point = std::array<double, 2>;
using triangles = std::vector<std::array<unsigned int, 3>>;

// The polygon seen along the axis that its normal (M. Newell's, the sum over its edges) is closest to, so that it turns
// counter-clockwise.
std::vector<point> flattened(const std::vector<std::array<double, 3>>& places)
{
    std::array<double, 3> normal{};
    for (std::size_t i = 0; i < places.size(); ++i) {
        const auto& a = places[i];
        const auto& b = places[(i + 1) % places.size()];
        for (std::size_t k = 0; k < 3; ++k) {
            const std::size_t u = (k + 1) % 3;
            const std::size_t v = (k + 2) % 3;
            normal[k] += (a[u] - b[u]) * (a[v] + b[v]);
        }
    }
    std::size_t k = 0;
    for (std::size_t i = 1; i < 3; ++i)
        if (std::fabs(normal[i]) > std::fabs(normal[k])) k = i;
    std::vector<point> flat;
    for (const auto& p : places) flat.push_back({p[(k + 1) % 3] * (normal[k] < 0 ? -1.0 : 1.0), p[(k + 2) % 3]});
    return flat;
}

double turn(const point& a, const point& b, const point& c)
{
    return (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0]);
}

bool is_convex(const std::vector<point>& p)
{
    for (std::size_t i = 0; i < p.size(); ++i)
        if (!(turn(p[i], p[(i + 1) % p.size()], p[(i + 2) % p.size()]) >= 0)) return false;
    return true;
}

bool is_within(const point& p, const point& a, const point& b, const point& c)
{
    return turn(a, b, p) >= 0 && turn(b, c, p) >= 0 && turn(c, a, p) >= 0;
}

// Whether the corner at `i` of the rest can be cut off: it turns the right way and no other corner lies in it.
bool is_ear(const std::vector<point>& p, const std::vector<unsigned int>& rest, std::size_t i)
{
    const unsigned int a = rest[(i + rest.size() - 1) % rest.size()];
    const unsigned int b = rest[i];
    const unsigned int c = rest[(i + 1) % rest.size()];
    if (!(turn(p[a], p[b], p[c]) > 0)) return false;
    for (const unsigned int q : rest)
        if (q != a && q != b && q != c && is_within(p[q], p[a], p[b], p[c])) return false;
    return true;
}

void add_fan(const std::vector<unsigned int>& rest, triangles& result)
{
    for (std::size_t i = 2; i < rest.size(); ++i) result.push_back({rest[0], rest[i - 1], rest[i]});
}

}  // namespace

triangles cut_places(const std::vector<std::array<double, 3>>& places, std::size_t corners)
{
    constexpr std::size_t most_by_ears = 64;  // the time grows with the third power
    std::vector<unsigned int> rest(corners);
    for (unsigned int i = 0; i < corners; ++i) rest[i] = i;
    triangles result;
    if (places.size() == corners && corners > 3 && corners <= most_by_ears) {
        const std::vector<point> flat = flattened(places);
        for (bool found = !is_convex(flat); found && rest.size() > 3;) {
            std::size_t i = 0;
            while (i < rest.size() && !is_ear(flat, rest, i)) ++i;
            found = i < rest.size();
            if (!found) break;
            result.push_back({rest[(i + rest.size() - 1) % rest.size()], rest[i], rest[(i + 1) % rest.size()]});
            rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
    add_fan(rest, result);
    return result;
}

}  // namespace tool
