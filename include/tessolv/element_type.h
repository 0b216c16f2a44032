#ifndef TESSOLV_ELEMENT_TYPE_H
#define TESSOLV_ELEMENT_TYPE_H

#include <cstdint>

#include <tessolv/export.h>

namespace zeb {

/// The kinds of finite elements. A connectivity matrix holds one element per column; its rows are the nodes of the
/// element, corner vertices first. The three mixed kinds have no node count of their own: their shape is told by the
/// place of the first NONE_INDEX in the column (see check_IDs).
enum element_type : int {
    EL_NONE = 0,
    EL_NODE = 1,
    EL_EDGE_MIX = 2,  ///< edges by their two vertices; refused by check_IDs when not empty
    EL_EDGE2 = 3,
    EL_EDGE3 = 4,
    EL_FACE_MIX = 5,  ///< linear triangles and quadrangles in 3 or 4 rows
    EL_TRIA3 = 6,
    EL_QUAD4 = 7,
    EL_TRIA6 = 8,
    EL_QUAD8 = 9,
    EL_QUAD9 = 10,
    EL_SOLID_MIX = 11,  ///< linear tetrahedra, wedges and hexahedra in 4, 6 or 8 rows
    EL_TETRA4 = 12,
    EL_TETRA10 = 13,
    EL_PYRAMID5 = 14,
    EL_PYRAMID14 = 15,
    EL_WEDGE6 = 16,
    EL_WEDGE18 = 17,
    EL_HEXA8 = 18,
    EL_HEXA20 = 19,
    EL_HEXA27 = 20
};

/// No node, no element, no neighbour.
constexpr unsigned int NONE_INDEX = 0xFFFFFFFFu;

/// Nodes of an element, by element_type; 0 for the mixed kinds. Read without a bound check: values 0 to 20 only.
TESSOLV_API extern const std::uint32_t NODES_PER_ELEMENT[21];

/// Corner vertices of an element, by element_type. Read without a bound check: values 0 to 20 only.
TESSOLV_API extern const std::uint32_t VERTICES_PER_ELEMENT[21];

}  // namespace zeb

#endif
