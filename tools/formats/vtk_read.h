#ifndef TOOLS_FORMATS_VTK_READ_H
#define TOOLS_FORMATS_VTK_READ_H

#include <string_view>

#include "formats/source.h"
#include "mesh/mesh.h"

namespace tool {

// VTK legacy files, text and binary, of the layouts 1.0 to 5.1: unstructured grids and polygonal data.
bool is_vtk(std::string_view head);
mesh read_vtk(const source& from);

}  // namespace tool

#endif
