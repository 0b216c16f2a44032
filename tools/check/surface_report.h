#ifndef TOOLS_CHECK_SURFACE_REPORT_H
#define TOOLS_CHECK_SURFACE_REPORT_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "check/surface_numbers.h"
#include "input/input_file.h"
#include "stl/stl_survey.h"

namespace tool {

// The surface of a file as the library reads it: welded and cleaned.
struct surface {
    zeb::dense2D<double> pos;
    zeb::dense2D<unsigned int> connect;
};

// All that is said about one STL file.
struct surface_report {
    std::string file;
    stl_survey survey;
    surface_numbers numbers;
    std::uint64_t merged_nodes = 0;  // 3 x facets read - nodes
    std::uint64_t degenerate = 0;    // facets read - triangles
    std::vector<std::string> problems;
    std::vector<std::string> notes;

    bool is_clean() const { return problems.empty(); }
};

// Reads and measures one file; the surface is handed out for further use. Throws `unreadable`, `internal_error`,
// std::bad_alloc.
surface_report inspect(const std::string& path, const input_file& file, std::optional<stl_format> format,
                       surface& result);

}  // namespace tool

#endif
