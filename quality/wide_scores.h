#ifndef TESSOLV_QUALITY_WIDE_SCORES_H
#define TESSOLV_QUALITY_WIDE_SCORES_H

#include <zeb/dense2D.h>

namespace zeb::tessolv::quality {

// Solids four at a time, with the very results of two at a time: less is done between their roots and divisions (1 M
// wedges: 103 ms against 77, hexahedra 121 against 93, tetrahedra 17 against 14). Pyramids and surfaces gain nothing.
// Only where has_wide_lanes() says so may these be called.
using wide_score = void(const dense2D<double>& pos, const dense2D<unsigned int>& connect, double* qualities);
wide_score score_tetrahedra_four_at_a_time;
wide_score score_wedges_four_at_a_time;
wide_score score_hexahedra_four_at_a_time;

inline bool has_wide_lanes()
{
#if defined(__x86_64__) && !defined(TESSOLV_BASELINE_ONLY)
    return __builtin_cpu_supports("avx2") != 0;
#else
    return false;
#endif
}

}  // namespace zeb::tessolv::quality

#endif
