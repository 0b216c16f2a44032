#ifndef TESTS_SPATIAL_SPREAD_NODES_H
#define TESTS_SPATIAL_SPREAD_NODES_H

#include <cmath>

#include "spatial/random_points.h"

// Hundreds of nodes, as they are spread in meshes and where rounding matters.

namespace test {

enum class spread { random, lattice, fine_lattice, far_lattice, off_lattice, flat, sphere, clusters, tiny, count };

inline double spread_coordinate(random_source& random, spread kind)
{
    switch (kind) {
        case spread::lattice:
            return random.below(9);
        case spread::fine_lattice:
            return 0.1 * random.below(9);
        case spread::far_lattice:
            return 1e9 + 1e-6 * random.below(9);  // a step is a few units of the last place
        case spread::off_lattice:
            return random.below(9) + 0x1p-50 * random.below(3);
        case spread::clusters:
            return random.below(3) + 0.01 * random.real();
        case spread::tiny:
            return 1e-90 * random.below(9);
        default:
            return random.real();
    }
}

inline std::vector<double> spread_position(random_source& random, spread kind, unsigned rows)
{
    std::vector<double> x(rows);
    for (double& value : x) value = spread_coordinate(random, kind);
    if (kind == spread::flat) x.back() = 0.25;
    if (kind == spread::sphere) {
        double square = 0;
        for (double& value : x) {
            value -= 0.5;
            square += value * value;
        }
        for (double& value : x) value /= std::sqrt(square);
    }
    return x;
}

inline zeb::dense2D<double> spread_points(random_source& random, spread kind, unsigned rows, unsigned cols)
{
    zeb::dense2D<double> pos(rows, cols);
    for (unsigned j = 0; j < cols; ++j) {
        const std::vector<double> x = spread_position(random, kind, rows);
        for (unsigned i = 0; i < rows; ++i) pos(i, j) = x[i];
    }
    return pos;
}

}  // namespace test

#endif
