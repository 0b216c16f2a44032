#ifndef TOOLS_FORMATS_MEDIT_SECTIONS_H
#define TOOLS_FORMATS_MEDIT_SECTIONS_H

#include <string_view>

#include <tessolv/element_type.h>

namespace tool {

struct medit_section {
    std::string_view keyword;
    zeb::element_type type;
    std::string_view solution;  // keyword of values on these elements
};

// The order of the nodes is VTK's, but for the wedge, which is as gmsh has it.
inline constexpr medit_section medit_sections[] = {
    {"Edges", zeb::EL_EDGE2, "SolAtEdges"},
    {"EdgesP2", zeb::EL_EDGE3, ""},
    {"Triangles", zeb::EL_TRIA3, "SolAtTriangles"},
    {"Quadrilaterals", zeb::EL_QUAD4, "SolAtQuadrilaterals"},
    {"TrianglesP2", zeb::EL_TRIA6, ""},
    {"Tetrahedra", zeb::EL_TETRA4, "SolAtTetrahedra"},
    {"TetrahedraP2", zeb::EL_TETRA10, ""},
    {"Pyramids", zeb::EL_PYRAMID5, "SolAtPyramids"},
    {"Prisms", zeb::EL_WEDGE6, "SolAtPrisms"},
    {"Hexahedra", zeb::EL_HEXA8, "SolAtHexahedra"},
};

inline const medit_section* medit_section_of(zeb::element_type type)
{
    for (const medit_section& section : medit_sections)
        if (section.type == type) return &section;
    return nullptr;
}

}  // namespace tool

#endif
