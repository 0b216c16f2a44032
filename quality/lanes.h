#ifndef TESSOLV_QUALITY_LANES_H
#define TESSOLV_QUALITY_LANES_H

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace zeb::tessolv::quality {

// Two numbers that go through a formula side by side, one element each: roots and divisions, which are most of the cost
// of a shape measure, come at the price of one. Each lane is computed as a double of its own would be, to the bit. Two
// is what every 64-bit processor of the usual families has without asking; more lanes do not make roots cheaper.
constexpr std::size_t lane_count = 2;
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

}  // namespace zeb::tessolv::quality

#endif
