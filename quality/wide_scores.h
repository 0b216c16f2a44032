#ifndef TESSOLV_QUALITY_WIDE_SCORES_H
#define TESSOLV_QUALITY_WIDE_SCORES_H

#include <cstdint>

#include <zeb/dense2D.h>

#include "core/processor.h"

namespace zeb::tessolv::quality {

// Scores the elements [first, last) of a matrix; qualities[e] is that of element e.
using score_function = void(const dense2D<double>& pos, const dense2D<unsigned int>& connect, std::uint64_t first,
                            std::uint64_t last, double* qualities);

// The measures; of surface elements one in the plane and one in space.
struct score_functions {
    score_function *tetrahedra, *pyramids, *wedges, *hexahedra;
    score_function *triangles[2], *quadrangles[2];
};

// With the very results of one another. Four need AVX2, eight AVX-512.
extern const score_functions two_at_a_time, four_at_a_time, eight_at_a_time;

// The fastest of each measure on this processor.
inline score_functions widest_scores()
{
    score_functions widest = has_avx512() ? eight_at_a_time : two_at_a_time;
    // Twice as slow with wide registers in use: the arc cosine of the C runtime is not made for them.
    widest.quadrangles[1] = two_at_a_time.quadrangles[1];
    if (has_avx512() || !has_avx2()) return widest;
    widest.tetrahedra = four_at_a_time.tetrahedra;
    widest.wedges = four_at_a_time.wedges;
    widest.hexahedra = four_at_a_time.hexahedra;
    return widest;
}

}  // namespace zeb::tessolv::quality

#endif
