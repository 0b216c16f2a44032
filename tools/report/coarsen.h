#ifndef TOOLS_REPORT_COARSEN_H
#define TOOLS_REPORT_COARSEN_H

#include "report/drawing.h"

namespace tool {

// Brings a drawing down to at most so many triangles, see `draw`. `qualities` by place of the element.
void coarsen(drawing& d, const std::vector<double>& qualities, std::uint64_t most);

}  // namespace tool

#endif
