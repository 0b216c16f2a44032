#ifndef TOOLS_FINDINGS_VECTORS_H
#define TOOLS_FINDINGS_VECTORS_H

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "mesh/mesh.h"

// Vectors in space, as the measures of elements need them.
namespace tool {

using vector = std::array<double, 3>;

// A node of a mesh in a plane lies at z = 0.
inline vector point_of(const mesh& m, unsigned int node)
{
    vector p{};
    for (std::uint64_t i = 0; i < std::min<std::uint64_t>(3, m.pos.rows); ++i) p[i] = m.pos(i, node);
    return p;
}

inline bool is_finite(const vector& p)
{
    return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]);
}

inline vector operator-(const vector& a, const vector& b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

inline double dot(const vector& a, const vector& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

inline double norm(const vector& a)
{
    return std::sqrt(dot(a, a));
}

inline vector cross(const vector& a, const vector& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// Also where the sum is beyond all numbers.
inline vector middle_of(const std::vector<vector>& p)
{
    vector middle{};
    for (const vector& v : p)
        for (std::size_t k = 0; k < 3; ++k) middle[k] += v[k] / static_cast<double>(p.size());
    return middle;
}

// Twice the vector area of a polygon seen from its first corner.
inline vector twice_area(const std::vector<vector>& p)
{
    vector sum{};
    for (std::size_t i = 2; i < p.size(); ++i) {
        const vector part = cross(p[i - 1] - p[0], p[i] - p[0]);
        for (std::size_t k = 0; k < 3; ++k) sum[k] += part[k];
    }
    return sum;
}

// The corners of an element, into room that serves many.
inline void place_corners(const mesh& m, const element_block& block, std::uint64_t e, std::vector<vector>& p)
{
    p.resize(zeb::VERTICES_PER_ELEMENT[block.type]);
    for (std::size_t i = 0; i < p.size(); ++i) p[i] = point_of(m, block.connect(i, e));
}

}  // namespace tool

#endif
