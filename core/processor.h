#ifndef TESSOLV_CORE_PROCESSOR_H
#define TESSOLV_CORE_PROCESSOR_H

// Vectors that are wider than those of every processor of the kind: a function may have a version for them beside the
// plain one, with the very same results, compiled for its target alone and called where the processor has them.

#if defined(__x86_64__) && !defined(TESSOLV_BASELINE_ONLY)
#define TESSOLV_WIDE_VECTORS
#endif

namespace zeb::tessolv {

inline bool has_avx2()
{
#ifdef TESSOLV_WIDE_VECTORS
    return __builtin_cpu_supports("avx2") != 0;
#else
    return false;
#endif
}

// With the extensions for doubles and for shorter vectors, which all but the first processors have.
inline bool has_avx512()
{
#ifdef TESSOLV_WIDE_VECTORS
    return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512dq") != 0 &&
           __builtin_cpu_supports("avx512vl") != 0;
#else
    return false;
#endif
}

}  // namespace zeb::tessolv

#endif
