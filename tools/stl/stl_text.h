#ifndef TOOLS_STL_STL_TEXT_H
#define TOOLS_STL_STL_TEXT_H

#include <cstdint>
#include <functional>

#include "input/byte_source.h"

namespace tool {

enum class scan_stop {
    end_of_solid,  // "endsolid" where a facet could begin
    end_of_file,   // after a whole facet
    cut_short,     // the file ends within a facet
    no_facet,      // no "facet normal" with three numbers
    no_vertex      // no "vertex" with three numbers
};

// How far the library's reader gets in a text file.
struct text_scan {
    std::uint64_t facets = 0;  // with three whole corners and the two lines after them
    scan_stop stop = scan_stop::end_of_file;
    std::uint64_t line = 1;  // where it stops
    bool first_line_too_long = false;
};

// Follows the reader's rule: one line for the name, then facets until one fails. The nine coordinates of each whole
// facet are handed over, if they are wanted.
text_scan scan_text(byte_source& in, const std::function<void(const double*)>& take = {});

}  // namespace tool

#endif
