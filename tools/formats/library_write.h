#ifndef TOOLS_FORMATS_LIBRARY_WRITE_H
#define TOOLS_FORMATS_LIBRARY_WRITE_H

#include "formats/format.h"

namespace tool {

// What the library itself writes: vtk, medit, ensight, stl, obj. EnSight geometry gets a .case file beside it; either
// may be named. What a writer leaves out is noted. Throws `wrong_usage` for other formats, `unwritable` for elements
// that a writer refuses.
void write_by_library(const mesh& m, std::string_view format, const std::string& path, const write_options& options);

}  // namespace tool

#endif
