#ifndef TOOLS_FORMATS_VTU_WRITE_H
#define TOOLS_FORMATS_VTU_WRITE_H

#include "formats/format.h"

namespace tool {

// VTU with its arrays packed by zlib and appended as raw bytes, or as text. Groups are the cell field "group".
void write_vtu(const mesh& m, sink& to, const write_options& options);

}  // namespace tool

#endif
