// Runs every operation once on a small input, for callgrind to count its instructions: see scripts/count-instructions.
#include <valgrind/callgrind.h>

#include <cstdio>
#include <string>

#include "growth/operations.h"

namespace compare {
namespace {

// Large enough to leave the shortcuts for small inputs, small enough for a simulated processor.
constexpr double size = 12e3;

void count_on()
{
    CALLGRIND_TOGGLE_COLLECT;
}
void count_off()
{
    CALLGRIND_TOGGLE_COLLECT;
}

void count(const operation& o, bool shuffled)
{
    const work run = o.prepare(size, shuffled);
    lap first(false, false), counted(false, false);
    run(first);  // what happens once in a process is not counted
    lap::entered = count_on;
    lap::left = count_off;
    CALLGRIND_ZERO_STATS;
    run(counted);
    const std::string name = std::string(o.name) + (o.has_order ? shuffled ? ", shuffled" : ", ordered" : "");
    CALLGRIND_DUMP_STATS_AT(name.c_str());
    lap::entered = lap::left = nullptr;
    if (!RUNNING_ON_VALGRIND) std::printf("%s\n", name.c_str());
}

}  // namespace
}  // namespace compare

int main()
{
    for (const auto& o : compare::operations()) {
        compare::count(o, false);
        if (o.has_order) compare::count(o, true);
    }
}
