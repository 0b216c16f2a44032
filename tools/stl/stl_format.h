#ifndef TOOLS_STL_STL_FORMAT_H
#define TOOLS_STL_STL_FORMAT_H

#include <cstdint>

#include "input/input_file.h"

namespace tool {

enum class stl_format { ascii, binary };

const char* name_of(stl_format format);

// A binary file: 80 bytes of header, the number of facets, and 50 bytes a facet.
struct binary_layout {
    static constexpr std::uint64_t header_bytes = 84;
    static constexpr std::uint64_t facet_bytes = 50;

    std::uint64_t announced = 0;  // the number that the file gives
    std::uint64_t room = 0;       // whole facets that the file has bytes for
    bool fits = false;            // 84 + 50 x announced is the size of the file
};

// Of a file of at least 84 bytes.
binary_layout layout_of(const input_file& file);

// Text or binary? A binary file may begin with "solid", so its size decides first, then the content. Throws
// `unreadable` for what is neither.
stl_format detect_format(const input_file& file);

}  // namespace tool

#endif
