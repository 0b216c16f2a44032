#ifndef TOOLS_FINDINGS_DUPLICATES_H
#define TOOLS_FINDINGS_DUPLICATES_H

#include <cstdint>
#include <vector>

#include "mesh/mesh.h"

namespace tool {

bool names_a_node_twice(const unsigned int* nodes, std::uint64_t count);

// Places of the elements whose corners an earlier element of the same shape has, in whatever order; ascending.
std::vector<std::uint64_t> duplicates_of(const mesh& m);

}  // namespace tool

#endif
