#ifndef TOOLS_FORMATS_VTK_WRITE_H
#define TOOLS_FORMATS_VTK_WRITE_H

#include "formats/format.h"

namespace tool {

// VTK legacy, as binary or as text, in the layout 3.0 that every reader knows: quadratic cells whole, groups as the
// cell field "group", every field by its name.
void write_vtk(const mesh& m, sink& to, const write_options& options);

}  // namespace tool

#endif
