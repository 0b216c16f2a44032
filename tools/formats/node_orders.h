#ifndef TOOLS_FORMATS_NODE_ORDERS_H
#define TOOLS_FORMATS_NODE_ORDERS_H

#include <cstdint>
#include <span>

#include <tessolv/element_type.h>

namespace tool {

// Conventions of the local numbering of nodes. gmsh turns linear wedges when it writes a VTK file, but not those of 18
// nodes.
enum class node_order { library, vtk, gmsh, vtk_by_gmsh };

// Place k in a file of that convention holds the library's local node order[k]. Empty where both agree.
//
// The library's tetrahedron is positive when its nodes 0, 1, 2 turn clockwise seen from node 3, the mirror image of the
// others'; VTK's wedge is the mirror image of the library's and of gmsh's. Nodes on edges follow the library's edge
// tables, those on the quadrangles of a wedge lie opposite the edge on vertex 0, 1, 2 (docs/formats.md).
std::span<const std::uint8_t> order_of(node_order convention, zeb::element_type type);

// Brings the nodes of `count` elements, one column after the other, from the order of a file to the library's, and
// back, in place.
void to_library_order(node_order convention, zeb::element_type type, unsigned int* columns, std::uint64_t count);
void to_file_order(node_order convention, zeb::element_type type, unsigned int* columns, std::uint64_t count);

}  // namespace tool

#endif
