#ifndef TESSOLV_BENCHMARKS_COMPARE_TOPOLOGY_INPUT_H
#define TESSOLV_BENCHMARKS_COMPARE_TOPOLOGY_INPUT_H

#include "meshes.h"

namespace compare {

struct topology_input : mesh {
    dense2D<unsigned int> neighbors;  // for operations that start from them

    explicit topology_input(mesh m) : mesh(std::move(m))
    {
        if (get_neighbors(connect, type, false, neighbors) != 0) std::abort();
    }
};

}  // namespace compare

#endif
