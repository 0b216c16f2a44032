#ifndef TESSOLV_QUALITY_LANES_H
#define TESSOLV_QUALITY_LANES_H

#include <cmath>
#include <cstddef>
#include <cstdint>

// How many numbers go side by side. Whatever depends on it lives in a namespace of its own, TESSOLV_LANES, so that one
// library can hold both: two, and four in the sources that are compiled for processors with AVX2.
#ifdef TESSOLV_FOUR_LANES
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
#ifdef TESSOLV_FOUR_LANES
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

inline lanes root(lanes a)
{
    lanes r{};
    for (std::size_t i = 0; i < lane_count; ++i) r[i] = std::sqrt(a[i]);
    return r;
}

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
