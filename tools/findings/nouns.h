#ifndef TOOLS_FINDINGS_NOUNS_H
#define TOOLS_FINDINGS_NOUNS_H

#include <cstdint>
#include <string>

#include "findings/rules.h"

namespace tool {

// What the faults of a mesh are called: its faces are edges where it is a surface, and an STL file has triangles.
struct nouns {
    bool of_stl = false;
    int dimension = 3;

    // "1 inverted element", "3 edges of three or more triangles".
    std::string counted(std::uint64_t count, fault which) const;
};

}  // namespace tool

#endif
