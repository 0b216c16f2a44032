#ifndef TOOLS_CHECK_SURFACE_JSON_REPORT_H
#define TOOLS_CHECK_SURFACE_JSON_REPORT_H

#include <string>

#include "check/surface_report.h"

namespace tool {

// One line of JSON with the fields of docs/check.schema.json, a newline behind it.
std::string json_line(const surface_report& report);

// The same for an input that gave no report: the fields between `file` and `verdict` are null.
std::string json_line_without_report(const std::string& file, const std::string& verdict, const std::string& reason);

}  // namespace tool

#endif
