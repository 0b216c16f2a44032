#ifndef TOOLS_FORMATS_OBJ_READ_H
#define TOOLS_FORMATS_OBJ_READ_H

#include <string_view>

#include "formats/source.h"
#include "mesh/mesh.h"

namespace tool {

// Wavefront OBJ: points, lines, triangles, quadrangles, and polygons, which are cut into triangles and told. The groups
// of the elements are those of the g lines, or of the o lines in a file without. Normals and texture coordinates come
// along as the point fields "normals" and "uv" where they belong to nodes, and are told to be left out elsewhere.
bool is_obj(std::string_view head);
mesh read_obj(const source& from);

}  // namespace tool

#endif
