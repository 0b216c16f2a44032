#ifndef TOOLS_CHECK_MESH_REPORT_H
#define TOOLS_CHECK_MESH_REPORT_H

#include <string>
#include <string_view>

#include "findings/examine.h"
#include "terminal.h"

namespace tool {

// A mesh with the verdict on it, to be shown.
struct mesh_report {
    std::string file;
    std::string format_name;   // "gmsh"
    std::string format_title;  // "Gmsh"
    const mesh& content;
    const examination& verdict;
    const rules& by;
    bool all_ids = false;  // of every fault, not the first ones alone
};

// For people: numbers, quality by kind, faults, the rules in force, the verdict in the last line.
std::string text_of(const mesh_report& report, const terminal& out);

// The last line alone.
std::string verdict_of(const mesh_report& report, const terminal& out);

// One line of JSON with the fields of docs/check-mesh.schema.json, a newline behind it.
std::string json_of(const mesh_report& report);

}  // namespace tool

#endif
