#ifndef TOOLS_CHECK_H
#define TOOLS_CHECK_H

#include <optional>
#include <string>
#include <vector>

#include "exit_status.h"
#include "stl_format.h"

namespace tool {

struct check_options {
    std::vector<std::string> files;
    std::optional<std::string> output;  // VTK file, for one input
    std::optional<stl_format> format;   // how to read, instead of by content
    bool json = false;
    bool quiet = false;
};

// tessolv check: reports on every file; the worst status counts.
exit_status check(const check_options& options);

}  // namespace tool

#endif
