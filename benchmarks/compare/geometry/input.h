#ifndef TESSOLV_BENCHMARKS_COMPARE_GEOMETRY_INPUT_H
#define TESSOLV_BENCHMARKS_COMPARE_GEOMETRY_INPUT_H

#include "meshes.h"

namespace compare {

struct geometry_input : mesh {
    vector_fixed<double, 3> C, N{1.0, 0.3, 0.2};  // the plane; C is the centre of the rotation too
    double angle = 0.7;                           // about z
};

inline std::vector<double> sums(const double* pos, std::uint64_t count)
{
    std::vector<double> sum(3);
    for (std::uint64_t i = 0; i < 3 * count; ++i) sum[i % 3] += pos[i];
    return sum;
}

}  // namespace compare

#endif
