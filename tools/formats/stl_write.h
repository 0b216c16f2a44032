#ifndef TOOLS_FORMATS_STL_WRITE_H
#define TOOLS_FORMATS_STL_WRITE_H

#include "formats/format.h"

namespace tool {

// STL, binary or text, of the triangles and quadrangles of a mesh, these cut in two. A text has a solid for each group;
// a binary file has one solid and 32-bit coordinates.
void write_stl(const mesh& m, sink& to, const write_options& options);

}  // namespace tool

#endif
