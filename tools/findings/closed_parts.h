#ifndef TOOLS_FINDINGS_CLOSED_PARTS_H
#define TOOLS_FINDINGS_CLOSED_PARTS_H

#include <cstdint>

#include "findings/face_list.h"
#include "mesh/mesh.h"

namespace tool {

// The connected parts of a surface that enclose a volume: no edge is open, has three or more elements, or lies between
// elements that turn against each other. Inside out are those of negative volume, unless they lie in an odd number of
// the others: such a part bounds a cavity, and rightly turns inward.
struct closed_parts {
    std::uint64_t count = 0;
    std::uint64_t inside_out = 0;
};

closed_parts closed_parts_of(const mesh& m, const face_list& faces, const mesh_parts& parts);

}  // namespace tool

#endif
