#ifndef TESSOLV_QUALITY_POINTS_H
#define TESSOLV_QUALITY_POINTS_H

#include <array>
#include <cstddef>

#include "quality/lanes.h"

// Points and vectors of the plane and of space. Sums run over x, y, z in this order.
namespace zeb::tessolv::quality {
inline namespace TESSOLV_LANES {

template <std::size_t D>
using point = std::array<lanes, D>;

template <std::size_t D, std::size_t N>
using corners = std::array<point<D>, N>;

template <std::size_t D>
point<D> operator-(const point<D>& a, const point<D>& b)
{
    point<D> difference;
    for (std::size_t i = 0; i < D; ++i) difference[i] = a[i] - b[i];
    return difference;
}

template <std::size_t D>
lanes dot(const point<D>& a, const point<D>& b)
{
    lanes sum = a[0] * b[0];
    for (std::size_t i = 1; i < D; ++i) sum += a[i] * b[i];
    return sum;
}

template <std::size_t D>
lanes length(const point<D>& a)
{
    return root(dot(a, a));
}

inline lanes cross(const point<2>& a, const point<2>& b)
{
    return a[0] * b[1] - a[1] * b[0];
}

inline point<3> cross(const point<3>& a, const point<3>& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

template <std::size_t N>
point<3> mean(const corners<3, N>& p)
{
    point<3> sum = p[0];
    for (std::size_t k = 1; k < N; ++k)
        for (std::size_t i = 0; i < 3; ++i) sum[i] += p[k][i];
    for (lanes& coordinate : sum) coordinate /= both(N);
    return sum;
}

}  // namespace TESSOLV_LANES
}  // namespace zeb::tessolv::quality

#endif
