#ifndef TESSOLV_BENCHMARKS_COMPARE_PROCESS_H
#define TESSOLV_BENCHMARKS_COMPARE_PROCESS_H

#include <string>
#include <vector>

#include "harness.h"

// Programs as a whole, from start to end.
namespace compare {

// Path of a program, empty when it is not installed.
std::string program(const std::string& name);

// Runs `command` without its output; false when it failed. `l` gets its time and its greatest memory.
bool run_process(const std::vector<std::string>& command, lap& l);

// Standard output of a command.
std::string output_of(const std::string& command);

}  // namespace compare

#endif
