#ifndef TOOLS_COMMANDS_WELD_H
#define TOOLS_COMMANDS_WELD_H

#include <cstdint>
#include <vector>

#include "mesh/mesh.h"

namespace tool {

// Which nodes may become one.
enum class weld_scope { anywhere, within_elements, across_parts };

struct weld_result {
    std::vector<std::uint32_t> survivor;  // of each old node
    std::vector<double> distances;        // of each old node from its survivor
    std::uint64_t merged = 0;
    double tolerance = 0;
};

// Makes one node of those that lie within the tolerance and drops the others with their values. Elements stay, also if
// they lose a corner by it. Nodes that no element uses are left alone.
weld_result weld_nodes(mesh& m, double tolerance, weld_scope scope);

}  // namespace tool

#endif
