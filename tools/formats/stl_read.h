#ifndef TOOLS_FORMATS_STL_READ_H
#define TOOLS_FORMATS_STL_READ_H

#include "formats/source.h"
#include "mesh/mesh.h"
#include "stl/stl_format.h"

namespace tool {

// STL, text or binary, as the library reads it: corners are welded as there, and of a text with one solid everything
// from the first facet on that is not as it should be is left. The library ends with the first solid; here all are read,
// and with several such a facet is passed over. No triangle is dropped: those that collapsed have a node twice. Every
// solid of a text is a group with its name. Facets that cannot be read are a fault of the mesh.
bool is_stl(const source& from);
mesh read_stl(const source& from);
// As text or as binary, whatever the content says.
mesh read_stl_as(const source& from, stl_format format);

}  // namespace tool

#endif
