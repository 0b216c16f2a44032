#ifndef TESSOLV_QUALITY_LANES_H
#define TESSOLV_QUALITY_LANES_H

#include <cmath>
#include <cstddef>
#include <cstdint>

#ifdef TESSOLV_EIGHT_LANES
#include <immintrin.h>
#endif

// How many numbers go side by side. Whatever depends on it lives in a namespace of its own, TESSOLV_LANES, so that one
// library can hold all: two, four in the source that is compiled for processors with AVX2, eight in that for AVX-512.
#ifdef TESSOLV_EIGHT_LANES
#define TESSOLV_LANES eight_lanes
#elif defined(TESSOLV_FOUR_LANES)
#define TESSOLV_LANES four_lanes
#else
#define TESSOLV_LANES two_lanes
#endif

namespace zeb::tessolv::quality {
inline namespace TESSOLV_LANES {

// Numbers that go through a formula side by side, one element each: roots and divisions, which are most of the cost of
// a shape measure, come at the price of one. Each lane is computed as a double of its own would be, to the bit. Two is
// what every 64-bit processor of the usual families has without asking; four do not make roots cheaper, only what
// stands between them.
#ifdef TESSOLV_EIGHT_LANES
constexpr std::size_t lane_count = 8;
#elif defined(TESSOLV_FOUR_LANES)
constexpr std::size_t lane_count = 4;
#else
constexpr std::size_t lane_count = 2;
#endif
using lanes = double __attribute__((vector_size(lane_count * sizeof(double))));
using lane_mask = std::int64_t __attribute__((vector_size(lane_count * sizeof(double))));

inline lanes both(double value)
{
    return lanes{} + value;
}

// a where the condition holds, else b. Neither is evaluated lazily.
inline lanes select(lane_mask condition, lanes a, lanes b)
{
    return condition ? a : b;
}

inline bool any(lane_mask condition)
{
    std::int64_t found = 0;
    for (std::size_t i = 0; i < lane_count; ++i) found |= condition[i];
    return found != 0;
}

inline lanes magnitude(lanes a)
{
    return reinterpret_cast<lanes>(reinterpret_cast<lane_mask>(a) & INT64_MAX);
}

#ifdef TESSOLV_EIGHT_LANES
// For the masked forms of instructions; g++ 12 takes the others for reading what was never set.
constexpr __mmask8 all_lanes = 0xff;

// The very roots of the processor by multiplications, which leave its divider to the divisions (P. Markstein. IA-64 and
// Elementary Functions, 2000, chapter 9). From 14 bits the steps give g and h near root(a) and its half inverse, to 27
// bits and then, for g, to nearly all. What g lacks is c but for a part in 2^27; when g plus a little less and plus a
// little more than c round to the same number, so does the root. The few that do not, zero and what is near the ends of
// the range are left to the divider.
inline lanes root(lanes a)
{
    constexpr double doubt = 0x1p-24;
    const lanes half = both(0.5), y = _mm512_maskz_rsqrt14_pd(all_lanes, a);
    lanes g = a * y, h = half * y;
    lanes e = _mm512_fnmadd_pd(g, h, half);
    g = _mm512_fmadd_pd(g, e, g);
    h = _mm512_fmadd_pd(h, e, h);
    e = _mm512_fnmadd_pd(g, h, half);
    g = _mm512_fmadd_pd(g, e, g);
    const lanes c = lanes(_mm512_fnmadd_pd(g, g, a)) * h;
    const lanes r = _mm512_fmadd_pd(c, both(1.0 - doubt), g), s = _mm512_fmadd_pd(c, both(1.0 + doubt), g);
    const auto in_range = _mm512_cmp_pd_mask(a, both(0x1p-900), _CMP_GE_OQ);
    const auto certain = _mm512_mask_cmp_pd_mask(in_range, r, s, _CMP_EQ_OQ);
    return certain == all_lanes ? r : lanes(_mm512_maskz_sqrt_pd(all_lanes, a));
}
#else
inline lanes root(lanes a)
{
    lanes r{};
    for (std::size_t i = 0; i < lane_count; ++i) r[i] = std::sqrt(a[i]);
    return r;
}
#endif

inline lanes arc_cosine(lanes a)
{
    lanes r{};
    for (std::size_t i = 0; i < lane_count; ++i) r[i] = std::acos(a[i]);
    return r;
}

// The candidate if it is smaller (larger) than what stands; a NaN never takes its place.
inline lanes smaller(lanes standing, lanes candidate)
{
    return select(candidate < standing, candidate, standing);
}

inline lanes larger(lanes standing, lanes candidate)
{
    return select(candidate > standing, candidate, standing);
}

// Bounds leave a NaN alone.
inline lanes at_most(lanes a, double bound)
{
    return smaller(a, both(bound));
}

inline lanes within_unit_range(lanes a)
{
    return larger(at_most(a, 1.0), both(-1.0));
}

}  // namespace TESSOLV_LANES
}  // namespace zeb::tessolv::quality

#endif
