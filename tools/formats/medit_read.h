#ifndef TOOLS_FORMATS_MEDIT_READ_H
#define TOOLS_FORMATS_MEDIT_READ_H

#include <string_view>

#include "formats/source.h"
#include "mesh/mesh.h"

namespace tool {

// MEDIT meshes as text. The reference of an element is its group, references of nodes are the point field "medit:ref".
// Elements are numbered within their section.
bool is_medit(std::string_view head);
mesh read_medit(const source& from);

// Adds the values of a MEDIT solution as fields of the mesh that it belongs to.
bool is_medit_solution(std::string_view head);
void read_medit_solution(const source& from, mesh& m);
// A solution by itself is no mesh: throws `unreadable` and says what to do.
mesh refuse_medit_solution(const source& from);

}  // namespace tool

#endif
