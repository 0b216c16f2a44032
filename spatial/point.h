#ifndef TESSOLV_SPATIAL_POINT_H
#define TESSOLV_SPATIAL_POINT_H

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include <zeb/dense2D.h>

#include "core/columns.h"

// Positions in 2 or 3 dimensions and the arithmetic that searching and merging share. Comparisons stand as they are
// written: with a NaN they are all false.
namespace zeb::tessolv {

template <int D>
using point = std::array<double, D>;

template <int D>
point<D> uniform_point(double value)
{
    point<D> x;
    x.fill(value);
    return x;
}

// Position of node j, which is a column of `pos`, which has D rows.
template <int D>
point<D> position_of(const dense2D<double>& pos, std::uint64_t j)
{
    point<D> x;
    std::copy_n(column(pos, j), D, x.begin());
    return x;
}

// Summed in the order x, y, z: results are compared to the bit.
template <std::size_t D>
double squared_distance(const std::array<double, D>& a, const std::array<double, D>& b)
{
    double sum = (a[0] - b[0]) * (a[0] - b[0]);
    for (std::size_t d = 1; d < D; ++d) sum += (a[d] - b[d]) * (a[d] - b[d]);
    return sum;
}

template <std::size_t D>
double distance(const std::array<double, D>& a, const std::array<double, D>& b)
{
    return std::sqrt(squared_distance(a, b));
}

// Spreads the bits of some words. Of numbers in a lattice only the high bits differ: each word is folded down before the
// next one comes in.
template <std::size_t N>
std::uint64_t hash_of(const std::array<std::uint64_t, N>& words)
{
    constexpr std::uint64_t odd = 0x9E3779B97F4A7C15u;  // 2^64 / the golden ratio
    std::uint64_t hash = 0;
    for (const std::uint64_t word : words) {
        hash = (hash ^ word) * odd;
        hash ^= hash >> 32;
    }
    hash *= odd;
    return hash ^ (hash >> 29);
}

// Equal positions, also where one has the zero of the other sign, have equal hashes.
template <std::size_t D>
std::uint64_t hash_of(const std::array<double, D>& x)
{
    std::array<std::uint64_t, D> words;
    for (std::size_t d = 0; d < D; ++d) words[d] = std::bit_cast<std::uint64_t>(x[d] + 0.0);
    return hash_of(words);
}

// An axis-aligned box; its sides belong to it.
template <int D>
struct box {
    point<D> lower;
    point<D> upper;

    bool contains(const point<D>& x) const
    {
        bool inside = true;
        for (int d = 0; d < D; ++d) inside &= lower[d] <= x[d] && x[d] <= upper[d];
        return inside;
    }

    // What is in the box is not closer to P, also as distance() rounds: each step of it grows with the coordinate.
    double distance_to(const point<D>& P) const
    {
        point<D> nearest;
        for (int d = 0; d < D; ++d) nearest[d] = P[d] < lower[d] ? lower[d] : upper[d] < P[d] ? upper[d] : P[d];
        return distance(nearest, P);
    }

    bool meets(const box& other) const
    {
        bool common = true;
        for (int d = 0; d < D; ++d) common &= lower[d] <= other.upper[d] && other.lower[d] <= upper[d];
        return common;
    }
};

template <int D>
box<D> box_around(const point<D>& centre, double half_width)
{
    box<D> b;
    for (int d = 0; d < D; ++d) {
        b.lower[d] = centre[d] - half_width;
        b.upper[d] = centre[d] + half_width;
    }
    return b;
}

}  // namespace zeb::tessolv

#endif
