#ifndef TOOLS_FORMATS_STL_READ_H
#define TOOLS_FORMATS_STL_READ_H

#include "formats/source.h"
#include "mesh/mesh.h"

namespace tool {

// STL, text or binary. Corners are welded as the library's reader welds them; no triangle is dropped. Every solid of a
// text is a group with its name. Facets that cannot be read are a fault of the mesh.
bool is_stl(const source& from);
mesh read_stl(const source& from);

}  // namespace tool

#endif
