#include "mesh/kinds.h"

#include <algorithm>
#include <array>

#include "errors.h"
#include "words.h"

namespace tool {
namespace {

using namespace zeb;

constexpr std::array<kind_info, 17> kinds{{
    {EL_NODE, "vertex", "point", "points", 1, 0, EL_NODE},
    {EL_EDGE2, "line", "line", "lines", 2, 1, EL_EDGE2},
    {EL_EDGE3, "line3", "line of 3 nodes", "lines of 3 nodes", 3, 1, EL_EDGE2},
    {EL_TRIA3, "triangle", "triangle", "triangles", 3, 2, EL_TRIA3},
    {EL_QUAD4, "quad", "quadrangle", "quadrangles", 4, 2, EL_QUAD4},
    {EL_TRIA6, "triangle6", "triangle of 6 nodes", "triangles of 6 nodes", 6, 2, EL_TRIA3},
    {EL_QUAD8, "quad8", "quadrangle of 8 nodes", "quadrangles of 8 nodes", 8, 2, EL_QUAD4},
    {EL_QUAD9, "quad9", "quadrangle of 9 nodes", "quadrangles of 9 nodes", 9, 2, EL_QUAD4},
    {EL_TETRA4, "tetra", "tetrahedron", "tetrahedra", 4, 3, EL_TETRA4},
    {EL_TETRA10, "tetra10", "tetrahedron of 10 nodes", "tetrahedra of 10 nodes", 10, 3, EL_TETRA4},
    {EL_PYRAMID5, "pyramid", "pyramid", "pyramids", 5, 3, EL_PYRAMID5},
    {EL_PYRAMID14, "pyramid14", "pyramid of 14 nodes", "pyramids of 14 nodes", 14, 3, EL_PYRAMID5},
    {EL_WEDGE6, "wedge", "wedge", "wedges", 6, 3, EL_WEDGE6},
    {EL_WEDGE18, "wedge18", "wedge of 18 nodes", "wedges of 18 nodes", 18, 3, EL_WEDGE6},
    {EL_HEXA8, "hexahedron", "hexahedron", "hexahedra", 8, 3, EL_HEXA8},
    {EL_HEXA20, "hexahedron20", "hexahedron of 20 nodes", "hexahedra of 20 nodes", 20, 3, EL_HEXA8},
    {EL_HEXA27, "hexahedron27", "hexahedron of 27 nodes", "hexahedra of 27 nodes", 27, 3, EL_HEXA8},
}};

}  // namespace

std::span<const kind_info> all_kinds()
{
    return kinds;
}

const kind_info& info_of(element_type type)
{
    const auto* found = std::ranges::find(kinds, type, &kind_info::type);
    if (found == kinds.end()) throw internal_error("a mesh with elements of type " + std::to_string(int{type}));
    return *found;
}

std::string counted_elements(std::uint64_t count, element_type type)
{
    const kind_info& kind = info_of(type);
    return counted(count, kind.one, kind.many);
}

}  // namespace tool
