#ifndef TOOLS_FORMATS_VTU_READ_H
#define TOOLS_FORMATS_VTU_READ_H

#include <string_view>

#include "formats/source.h"
#include "mesh/mesh.h"

namespace tool {

// VTU: unstructured grids in VTK's XML, as text, base64 or raw bytes, inline or appended, plain or packed by zlib. The
// pieces of a file are put together.
bool is_vtu(std::string_view head);
mesh read_vtu(const source& from);

}  // namespace tool

#endif
