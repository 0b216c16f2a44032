#ifndef TESSOLV_SPATIAL_ROUGH_NODE_H
#define TESSOLV_SPATIAL_ROUGH_NODE_H

#include <algorithm>
#include <array>
#include <cmath>

#include "spatial/point.h"

namespace zeb::tessolv {

// A node and where it is in a frame, in floats: they are half as much to move as coordinates, and which of two is less
// they tell rightly unless they are equal.
template <int D>
struct rough_node {
    std::array<float, D> u;
    unsigned int node;
};

// An origin and a unit. Differences, products and floats are rounded without changing places, so u grows with x; where
// it is no number it compares with nothing.
template <int D>
struct frame {
    point<D> origin{};
    double units = 0;  // in the unit of coordinates, not negative

    point<D> place(const point<D>& x) const
    {
        point<D> u;
        for (int d = 0; d < D; ++d) u[d] = (x[d] - origin[d]) * units;
        return u;
    }

    rough_node<D> rough(const point<D>& x, unsigned int node) const
    {
        const point<D> u = place(x);
        rough_node<D> made{{}, node};
        for (int d = 0; d < D; ++d) made.u[d] = static_cast<float>(u[d]);
        return made;
    }
};

// What positions are bounded by, and whether all of them are numbers whose squares neither overflow nor vanish.
template <int D>
struct extent {
    static constexpr double extreme = 1e100;

    box<D> bounds{uniform_point<D>(std::numeric_limits<double>::infinity()),
                  uniform_point<D>(-std::numeric_limits<double>::infinity())};
    bool is_moderate = true;

    void include(const point<D>& x)
    {
        for (int d = 0; d < D; ++d) {
            bounds.lower[d] = std::min(bounds.lower[d], x[d]);
            bounds.upper[d] = std::max(bounds.upper[d], x[d]);
            is_moderate &= std::abs(x[d]) < extreme;
        }
    }
};

}  // namespace zeb::tessolv

#endif
