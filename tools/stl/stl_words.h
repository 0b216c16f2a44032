#ifndef TOOLS_STL_STL_WORDS_H
#define TOOLS_STL_STL_WORDS_H

#include <cstdint>

#include "input/byte_source.h"

namespace tool {

// The words that give a text STL its structure, counted to the end of the file, whether a reader would get to them or
// not. Capitals count as well, and a carriage return ends a line.
struct text_words {
    std::uint64_t facets = 0;           // "facet" at the beginning of a line, or anywhere before "normal"
    std::uint64_t solids = 0;           // lines that begin with "solid"
    std::uint64_t ends = 0;             // lines that begin with "endsolid"
    std::uint64_t bytes_after_end = 0;  // from the first word behind the last "endsolid" line on
    bool begins_with_solid = false;
    bool last_solid_ends = false;
    bool is_one_line = true;
};

text_words count_words(byte_source& in);

}  // namespace tool

#endif
