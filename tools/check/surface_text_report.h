#ifndef TOOLS_CHECK_SURFACE_TEXT_REPORT_H
#define TOOLS_CHECK_SURFACE_TEXT_REPORT_H

#include <string>

#include "check/surface_report.h"
#include "terminal.h"

namespace tool {

// "part.stl: NOT CLEAN: 3 free edges", with a newline.
std::string verdict_line(const surface_report& report, const terminal& out);

// The report for a person: counts, box, quality with its histogram, notes, and the verdict as the last line.
std::string text_report(const surface_report& report, const terminal& out);

}  // namespace tool

#endif
