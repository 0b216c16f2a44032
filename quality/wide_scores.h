#ifndef TESSOLV_QUALITY_WIDE_SCORES_H
#define TESSOLV_QUALITY_WIDE_SCORES_H

#include <cstdint>

#include <zeb/dense2D.h>

namespace zeb::tessolv::quality {

// Scores the elements [first, last) of a matrix; qualities[e] is that of element e.
using score_function = void(const dense2D<double>& pos, const dense2D<unsigned int>& connect, std::uint64_t first,
                            std::uint64_t last, double* qualities);

// The measures; of surface elements one in the plane and one in space.
struct score_functions {
    score_function *tetrahedra, *pyramids, *wedges, *hexahedra;
    score_function *triangles[2], *quadrangles[2];
};

// With the very results of one another. Four may be called only where has_four_lanes() says so, eight likewise.
extern const score_functions two_at_a_time, four_at_a_time, eight_at_a_time;

inline bool has_four_lanes()
{
#if defined(__x86_64__) && !defined(TESSOLV_BASELINE_ONLY)
    return __builtin_cpu_supports("avx2") != 0;
#else
    return false;
#endif
}

inline bool has_eight_lanes()
{
#if defined(__x86_64__) && !defined(TESSOLV_BASELINE_ONLY)
    return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512dq") != 0 &&
           __builtin_cpu_supports("avx512vl") != 0;
#else
    return false;
#endif
}

// The fastest of each measure on this processor.
inline score_functions widest_scores()
{
    score_functions widest = has_eight_lanes() ? eight_at_a_time : two_at_a_time;
    // Twice as slow with wide registers in use: the arc cosine of the C runtime is not made for them.
    widest.quadrangles[1] = two_at_a_time.quadrangles[1];
    if (has_eight_lanes() || !has_four_lanes()) return widest;
    widest.tetrahedra = four_at_a_time.tetrahedra;
    widest.wedges = four_at_a_time.wedges;
    widest.hexahedra = four_at_a_time.hexahedra;
    return widest;
}

}  // namespace zeb::tessolv::quality

#endif
