#ifndef TOOLS_FORMATS_OBJ_WRITE_H
#define TOOLS_FORMATS_OBJ_WRITE_H

#include "formats/format.h"

namespace tool {

// Wavefront OBJ: points, lines, triangles and quadrangles, groups by g lines, the point fields "normals" and "uv".
void write_obj(const mesh& m, sink& to, const write_options& options);

}  // namespace tool

#endif
