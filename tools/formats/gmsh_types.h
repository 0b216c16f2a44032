#ifndef TOOLS_FORMATS_GMSH_TYPES_H
#define TOOLS_FORMATS_GMSH_TYPES_H

#include <cstdint>

#include <tessolv/element_type.h>

namespace tool {

struct gmsh_type {
    int code;
    zeb::element_type type;
};

inline constexpr gmsh_type gmsh_types[] = {
    {15, zeb::EL_NODE},    {1, zeb::EL_EDGE2},      {8, zeb::EL_EDGE3},  {2, zeb::EL_TRIA3},    {9, zeb::EL_TRIA6},
    {3, zeb::EL_QUAD4},    {16, zeb::EL_QUAD8},     {10, zeb::EL_QUAD9}, {4, zeb::EL_TETRA4},   {11, zeb::EL_TETRA10},
    {7, zeb::EL_PYRAMID5}, {14, zeb::EL_PYRAMID14}, {6, zeb::EL_WEDGE6}, {13, zeb::EL_WEDGE18}, {5, zeb::EL_HEXA8},
    {17, zeb::EL_HEXA20},  {12, zeb::EL_HEXA27}};

inline zeb::element_type type_of_gmsh(std::int64_t code)
{
    for (const gmsh_type& t : gmsh_types)
        if (t.code == code) return t.type;
    return zeb::EL_NONE;
}

inline int gmsh_code_of(zeb::element_type type)
{
    for (const gmsh_type& t : gmsh_types)
        if (t.type == type) return t.code;
    return 0;
}

}  // namespace tool

#endif
