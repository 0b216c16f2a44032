#ifndef TESSOLV_IO_FACET_GEOMETRY_H
#define TESSOLV_IO_FACET_GEOMETRY_H

#include <cmath>

// Vectors in space, as the formulas of facets need them.
namespace zeb::tessolv {

struct vector3 {
    double x, y, z;
};

inline vector3 operator-(const vector3& a, const vector3& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

inline vector3 operator/(const vector3& a, double divisor)
{
    return {a.x / divisor, a.y / divisor, a.z / divisor};
}

inline vector3 cross(const vector3& a, const vector3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline double dot(const vector3& a, const vector3& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline double length(const vector3& a)
{
    return std::sqrt(dot(a, a));
}

// The vector of length 1, or 0 0 0 where the length is 0.
inline vector3 unit_vector(const vector3& a)
{
    const double norm = length(a);
    return norm != 0 ? a / norm : vector3{0, 0, 0};
}

}  // namespace zeb::tessolv

#endif
