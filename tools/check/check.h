#ifndef TOOLS_CHECK_CHECK_H
#define TOOLS_CHECK_CHECK_H

#include <optional>
#include <string>
#include <vector>

#include "check/report.h"
#include "commands/files.h"
#include "commands/options.h"
#include "exit_status.h"
#include "findings/rules.h"
#include "stl/stl_format.h"

namespace tool {

struct check_options {
    shared_options shared;
    std::optional<stl_format> stl;  // how to read an STL file, instead of by content
    std::optional<std::string> profile;
    std::optional<std::string> rules_file;
    std::optional<std::string> extract;  // file for the elements at fault, for one input
    bool ids = false;
};

// What --profile and --rules say. Throws `failure`.
rules rules_in_force(const check_options& options);

// Reads an input, an STL file as --ascii and --binary say. Throws `failure`.
loaded load_to_check(const std::string& path, const check_options& options);

// What `check` tells of an input; everything must outlive it.
mesh_report report_on(const loaded& input, const std::string& path, const examination& verdict, const rules& by,
                      bool all_ids);

// The line of --json for an input that could not be judged.
std::string json_of_failure(const std::string& path, const failure& failed);

// tessolv check: reports on every file; the worst status counts.
exit_status check(const check_options& options);

}  // namespace tool

#endif
