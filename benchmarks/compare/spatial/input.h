#ifndef TESSOLV_BENCHMARKS_COMPARE_SPATIAL_INPUT_H
#define TESSOLV_BENCHMARKS_COMPARE_SPATIAL_INPUT_H

#include "meshes.h"

namespace compare {

// Points in the unit cube and places to search at, or for the weld a surface of separate facets.
struct spatial_input : mesh {
    dense2D<double> places;
    double half = 0.0;  // of the boxes: eight points are expected in each
    double tolerance = 0.0;

    vector_fixed<double, 3> place(std::uint64_t i) const { return {places(0, i), places(1, i), places(2, i)}; }
};

constexpr std::uint64_t probes = 1000;  // searches that tell whether a tree is what it should be

// Distances of the searches add up to the same in every tree; `closest` gives the squared one.
template <class Closest>
std::vector<double> sum_of_distances(const spatial_input& in, std::uint64_t count, Closest closest)
{
    double sum = 0.0;
    for (std::uint64_t i = 0; i < std::min(count, in.places.cols); ++i) sum += std::sqrt(closest(i));
    return {sum};
}

inline double squared_distance(const spatial_input& in, std::uint64_t place, std::uint64_t point)
{
    double sum = 0.0;
    for (std::uint64_t i = 0; i < 3; ++i) sum += std::pow(in.places(i, place) - in.pos(i, point), 2);
    return sum;
}

}  // namespace compare

#endif
