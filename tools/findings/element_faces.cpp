#include "findings/element_faces.h"

#include <array>

#include "mesh/kinds.h"

namespace tool {
namespace {

constexpr std::array<local_face, 2> of_line{{{1, {1}}, {1, {0}}}};
constexpr std::array<local_face, 3> of_triangle{{{2, {1, 2}}, {2, {2, 0}}, {2, {0, 1}}}};
constexpr std::array<local_face, 4> of_quadrangle{{{2, {0, 1}}, {2, {1, 2}}, {2, {2, 3}}, {2, {3, 0}}}};
constexpr std::array<local_face, 4> of_tetrahedron{{{3, {3, 2, 1}}, {3, {3, 0, 2}}, {3, {0, 3, 1}}, {3, {0, 1, 2}}}};
constexpr std::array<local_face, 5> of_pyramid{
    {{4, {3, 2, 1, 0}}, {3, {0, 1, 4}}, {3, {1, 2, 4}}, {3, {2, 3, 4}}, {3, {3, 0, 4}}}};
constexpr std::array<local_face, 5> of_wedge{
    {{3, {2, 1, 0}}, {3, {3, 4, 5}}, {4, {0, 1, 4, 3}}, {4, {1, 2, 5, 4}}, {4, {2, 0, 3, 5}}}};
constexpr std::array<local_face, 6> of_hexahedron{
    {{4, {4, 7, 3, 0}}, {4, {2, 6, 5, 1}}, {4, {1, 5, 4, 0}}, {4, {7, 6, 2, 3}}, {4, {3, 2, 1, 0}}, {4, {4, 5, 6, 7}}}};

}  // namespace

std::span<const local_face> faces_of(zeb::element_type type)
{
    switch (info_of(type).linear) {
        case zeb::EL_EDGE2:
            return of_line;
        case zeb::EL_TRIA3:
            return of_triangle;
        case zeb::EL_QUAD4:
            return of_quadrangle;
        case zeb::EL_TETRA4:
            return of_tetrahedron;
        case zeb::EL_PYRAMID5:
            return of_pyramid;
        case zeb::EL_WEDGE6:
            return of_wedge;
        case zeb::EL_HEXA8:
            return of_hexahedron;
        default:
            return {};
    }
}

zeb::element_type type_of_face(unsigned int width)
{
    constexpr zeb::element_type types[] = {zeb::EL_NONE, zeb::EL_NODE, zeb::EL_EDGE2, zeb::EL_TRIA3, zeb::EL_QUAD4};
    return types[width];
}

}  // namespace tool
