#ifndef TOOLS_CHECK_CHECK_H
#define TOOLS_CHECK_CHECK_H

#include <optional>
#include <string>
#include <vector>

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

    // STL files are judged like any other mesh.
    bool is_general() const { return profile || rules_file || extract || ids || shared.tolerance; }
};

// What --profile and --rules say. Throws `failure`.
rules rules_in_force(const check_options& options);

// Whether the facets of the file are told, as the library's own reader takes them, instead of a mesh of any kind.
bool is_told_by_facets(const std::string& path, const check_options& options);

// tessolv check: reports on every file; the worst status counts.
exit_status check(const check_options& options);

}  // namespace tool

#endif
