#ifndef TOOLS_CHECK_REPORT_H
#define TOOLS_CHECK_REPORT_H

#include <string>

#include "findings/examine.h"
#include "terminal.h"

namespace tool {

// A mesh with the verdict on it, to be shown.
struct mesh_report {
    std::string file;
    std::string format_name;   // "gmsh"; of STL files "ascii" or "binary"
    std::string format_title;  // "Gmsh", "text STL"
    const mesh& content;
    const examination& verdict;
    const rules& by;
    bool all_ids = false;  // of every fault, not the first ones alone
};

// For people: numbers, quality by kind with histograms, faults, the rules in force, the verdict in the last line.
std::string text_of(const mesh_report& report, const terminal& out);

// The last line alone: "part.stl: NOT CLEAN: 3 free edges".
std::string verdict_of(const mesh_report& report, const terminal& out);

// One line of JSON with the fields of docs/check.schema.json, a newline behind it.
std::string json_of(const mesh_report& report);

// The same for a file that there is no report on: the verdict is "unreadable" or "failed".
std::string json_without_report(const std::string& file, const std::string& verdict, const std::string& reason);

}  // namespace tool

#endif
