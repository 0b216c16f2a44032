#ifndef TOOLS_FORMATS_MEDIT_WRITE_H
#define TOOLS_FORMATS_MEDIT_WRITE_H

#include "formats/format.h"

namespace tool {

// MEDIT meshes, with the groups as references; fields have their own file.
void write_medit(const mesh& m, sink& to, const write_options& options);

// MEDIT solutions: the point fields of 1, 2 or 3, and 3 or 6 components.
void write_medit_solution(const mesh& m, sink& to, const write_options& options);

}  // namespace tool

#endif
