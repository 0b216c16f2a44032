#ifndef TESTS_SPATIAL_DETECTOR_SAMPLES_H
#define TESTS_SPATIAL_DETECTOR_SAMPLES_H

#include <algorithm>

#include "support/matrices.h"

// Small sets of nodes, and answers of detectors as lists to compare.

namespace test {

using point2 = zeb::vector_fixed<double, 2>;
using point3 = zeb::vector_fixed<double, 3>;

constexpr unsigned long none = 4294967295ul;

inline const zeb::dense2D<double> square = points({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
inline const zeb::dense2D<double> corner = points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}});

template <class Point>
zeb::dense1D<unsigned> in_box(const zeb::tessolv::node_detector& detector, const Point& a, const Point& b)
{
    zeb::dense1D<unsigned> nodes;
    detector.find_in_box(a, b, nodes);
    return nodes;
}

inline zeb::dense1D<unsigned> sorted(zeb::dense1D<unsigned> nodes)
{
    std::sort(nodes.begin(), nodes.end());
    return nodes;
}

}  // namespace test

#endif
