#ifndef TOOLS_STL_STL_SURVEY_H
#define TOOLS_STL_STL_SURVEY_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "input/input_file.h"
#include "stl/stl_format.h"

namespace tool {

// What a file says by itself, before any geometry.
struct stl_survey {
    stl_format format = stl_format::binary;
    std::uint64_t solids = 1;          // of a text
    std::uint64_t facets_in_file = 0;  // text: by the word "facet"; binary: the number in the header
    std::uint64_t facets_read = 0;     // those with three whole corners that the library's reader takes
    std::string why_not_read;          // what becomes of the others; empty when there are none
    std::vector<std::string> notes;
};

// Reads the file as `format` says, or as its content does. Throws `unreadable`.
stl_survey survey_stl(const input_file& file, std::optional<stl_format> format);

}  // namespace tool

#endif
