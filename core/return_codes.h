#ifndef TESSOLV_CORE_RETURN_CODES_H
#define TESSOLV_CORE_RETURN_CODES_H

#include <cstdint>
#include <limits>
#include <new>
#include <utility>

#include <tessolv/element_type.h>

// What the integer results of the public functions mean, and the two ways a 64-bit count leaves the library.
namespace zeb::tessolv {

constexpr int success = 0;
constexpr int out_of_memory = -199;

// The k-th argument, counted from 1, is not valid.
constexpr int bad_argument(int k)
{
    return -k;
}

// A count as a result: beyond the range of int it saturates.
constexpr int as_result(std::uint64_t count)
{
    constexpr std::uint64_t most = std::numeric_limits<int>::max();
    return static_cast<int>(count < most ? count : most);
}

// A number of columns as the bound of an index: no index reaches NONE_INDEX.
constexpr unsigned int as_bound(std::uint64_t columns)
{
    return columns < NONE_INDEX ? static_cast<unsigned int>(columns) : NONE_INDEX;
}

// Runs the body of a public function that uses standard containers: exhausted memory becomes `otherwise`.
template <class Body, class Result = int>
Result guarded(Body&& body, Result otherwise = out_of_memory) noexcept
{
    try {
        return std::forward<Body>(body)();
    } catch (...) {
        return otherwise;
    }
}

}  // namespace zeb::tessolv

#endif
