#ifndef TESSOLV_CORE_INDEX_RUNS_H
#define TESSOLV_CORE_INDEX_RUNS_H

#include <algorithm>
#include <cstdint>

// What is asked of all indices of a mesh before anything is done with them, at the speed of memory: each is one function
// over contiguous entries, with a version for wider vectors where the processor has them.
namespace zeb::tessolv {

// Whether all are below n.
bool run_is_below(const unsigned int* run, std::uint64_t count, unsigned int n);

// Whether all are below n or NONE_INDEX.
bool run_is_below_or_none(const unsigned int* run, std::uint64_t count, unsigned int n);

// How many are NONE_INDEX.
std::uint64_t missing_in_run(const unsigned int* run, std::uint64_t count);

// Lowers `least` to the least of them and raises `beyond` to one more than the largest: NONE_INDEX + 1 is 0 and never
// counts.
void widen_by_run(const unsigned int* run, std::uint64_t count, unsigned int& least, unsigned int& beyond);

// The same for few entries.
inline void widen(const unsigned int* entries, std::uint64_t count, unsigned int& least, unsigned int& beyond)
{
    for (std::uint64_t i = 0; i < count; ++i) {
        least = std::min(least, entries[i]);
        beyond = std::max(beyond, entries[i] + 1u);
    }
}

}  // namespace zeb::tessolv

#endif
