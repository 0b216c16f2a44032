#ifndef TOOLS_FORMATS_GMSH_READ_H
#define TOOLS_FORMATS_GMSH_READ_H

#include <string_view>

#include "formats/source.h"
#include "mesh/mesh.h"

namespace tool {

// Gmsh files of the versions 2 and 4.1, text and binary. The group of an element is its physical group; in a file
// without any, the number of the geometric entity that it lies on.
bool is_gmsh(std::string_view head);
mesh read_gmsh(const source& from);

}  // namespace tool

#endif
