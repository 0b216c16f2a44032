#ifndef TESTS_SPATIAL_RANDOM_POINTS_H
#define TESTS_SPATIAL_RANDOM_POINTS_H

#include <limits>
#include <random>
#include <vector>

#include <tessolv/tessolv.h>

// Coordinates and node lists in which coincident nodes and equal distances are common.

namespace test {

class random_source {
public:
    explicit random_source(unsigned seed) : engine_(seed) {}

    unsigned below(unsigned n) { return static_cast<unsigned>(engine_() % n); }
    bool one_in(unsigned n) { return below(n) == 0; }
    double real() { return static_cast<double>(engine_()) / 4294967296.0; }

private:
    std::mt19937 engine_;
};

// A point of a small lattice, some of them a little off it; rarely a coordinate that is no number or not finite.
inline double random_coordinate(random_source& random, unsigned side, bool odd_values)
{
    static const double steps[] = {1.0, 0.1, 1.0 / 3.0};
    const double step = steps[side % 3];
    const double x = step * random.below(side);
    if (odd_values && random.one_in(12)) {
        static const double odd[] = {std::numeric_limits<double>::quiet_NaN(),
                                     std::numeric_limits<double>::infinity(),
                                     -std::numeric_limits<double>::infinity(),
                                     -0.0,
                                     1e300,
                                     1e-200};
        return odd[random.below(6)];
    }
    return random.one_in(8) ? x + 1e-3 * random.below(3) : x;
}

inline zeb::dense2D<double> random_points(random_source& random, unsigned rows, unsigned cols, bool odd_values)
{
    const unsigned side = 1 + random.below(6);
    zeb::dense2D<double> pos(rows, cols);
    for (unsigned j = 0; j < cols; ++j)
        for (unsigned i = 0; i < rows; ++i) pos(i, j) = random_coordinate(random, side, odd_values);
    return pos;
}

// Many points: on a fine lattice, in clusters within clusters, on a line, or at a few places.
inline zeb::dense2D<double> many_random_points(random_source& random, unsigned rows, unsigned cols, bool odd_values)
{
    if (random.one_in(4)) return random_points(random, rows, cols, odd_values);
    const unsigned kind = random.below(3), side = 8 + random.below(60);
    zeb::dense2D<double> pos(rows, cols, 0.5);
    for (unsigned j = 0; j < cols; ++j)
        for (unsigned i = 0; i < (kind == 2 ? 1 : rows); ++i) {
            double& x = pos(i, j) = random_coordinate(random, side, odd_values);
            for (double scale = 0.25; kind == 1 && scale > 1e-9; scale /= 8) x += scale * random.below(2);
        }
    return pos;
}

inline std::vector<unsigned> random_nodes(random_source& random, unsigned count, unsigned bound)
{
    std::vector<unsigned> nodes(bound != 0 ? count : 0);
    for (unsigned& node : nodes) node = random.below(bound);
    return nodes;
}

}  // namespace test

#endif
