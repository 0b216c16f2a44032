#ifndef TOOLS_FORMATS_VTU_SKELETON_H
#define TOOLS_FORMATS_VTU_SKELETON_H

#include <cstdint>
#include <string>
#include <vector>

#include "formats/source.h"

namespace tool {

// A VTU file without the contents of its arrays, which are large, and may be no XML at all where they are appended.
struct vtu_skeleton {
    struct range {
        std::uint64_t begin = 0;
        std::uint64_t end = 0;
    };

    std::string xml;              // each DataArray has its place in `contents` as the attribute "part"
    std::vector<range> contents;  // where the text of each DataArray stands in the file
    std::uint64_t appended = 0;   // the first byte behind the underscore of AppendedData; 0 without

    // Where a byte of `xml` stands in the file.
    std::uint64_t place_of(std::uint64_t xml_byte) const;

    // Stretches of `xml` that stand in one piece in the file: their first bytes here and there.
    struct stretch {
        std::uint64_t in_xml;
        std::uint64_t in_file;
    };
    std::vector<stretch> stretches;
};

// Throws `unreadable` for a file that ends too early.
vtu_skeleton cut_skeleton(const source& from);

}  // namespace tool

#endif
