#ifndef TESSOLV_BENCHMARKS_COMPARE_METRICS_INPUT_H
#define TESSOLV_BENCHMARKS_COMPARE_METRICS_INPUT_H

#include "meshes.h"

namespace compare {

using tensor = symmetric_fixed<double, 3>;

struct metrics_input {
    std::vector<tensor> tensors, others;
    dense2D<float> field;
};

inline double trace(const tensor& M)
{
    return M(0, 0) + M(1, 1) + M(2, 2);
}

}  // namespace compare

#endif
