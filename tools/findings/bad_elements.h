#ifndef TOOLS_FINDINGS_BAD_ELEMENTS_H
#define TOOLS_FINDINGS_BAD_ELEMENTS_H

#include "findings/examine.h"

namespace tool {

// The elements that faults of the level `finding` are in, and unused and coincident nodes as points, with the fields
// "fault" (place in the list of all faults), "quality" and "number" (in the file). What names a node that is not there,
// or has no finite place, is left out; `left_out` counts it.
mesh bad_elements(const mesh& m, const examination& verdict, std::uint64_t& left_out);

}  // namespace tool

#endif
