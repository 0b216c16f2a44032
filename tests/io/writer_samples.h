#ifndef TESTS_IO_WRITER_SAMPLES_H
#define TESTS_IO_WRITER_SAMPLES_H

#include <tessolv/tessolv.h>

#include "support/matrices.h"

// Meshes that the expected files are made of.

namespace test {

inline const zeb::dense2D<double> cube_and_one = points({{0, 0, 0},
                                                         {1, 0, 0},
                                                         {1, 1, 0},
                                                         {0, 1, 0},
                                                         {0, 0, 1},
                                                         {1, 0, 1},
                                                         {1, 1, 1},
                                                         {0, 1, 1},
                                                         {0.5, -0.25, 1234567.125}});

// A hexahedron, a tetrahedron, a wedge and a tetrahedron whose other entries mean nothing.
inline const zeb::dense2D<unsigned> mixed_solids =
    columns({{0, 1, 2, 3, 4, 5, 6, 7}, {0, 1, 3, 4, N, N, N, N}, {0, 1, 2, 4, 5, 6, N, N}, {1, 2, 3, 6, N, 7, 7, 7}});

// One element of the nodes first, first + 1, ...
inline zeb::dense2D<unsigned> counted_column(unsigned rows, unsigned first = 0)
{
    zeb::dense2D<unsigned> m(rows, 1);
    for (unsigned i = 0; i < rows; ++i) m(i, 0) = first + i;
    return m;
}

}  // namespace test

#endif
