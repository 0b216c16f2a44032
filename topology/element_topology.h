#ifndef TESSOLV_TOPOLOGY_ELEMENT_TOPOLOGY_H
#define TESSOLV_TOPOLOGY_ELEMENT_TOPOLOGY_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

#include <tessolv/element_type.h>

// Local faces and edges of the elements, by the corner vertices (drawn in docs/elements.md). Row k of `faces` is local
// face k, that is row k of a neighbours matrix; its vertices stand in the order in which a boundary lists them. The
// rows of `edges` stand in the order in which edges are first seen.
namespace zeb::tessolv {

template <std::size_t Rows, std::size_t Width>
using node_table = std::array<std::array<unsigned char, Width>, Rows>;

struct edge2 {
    static constexpr unsigned int nodes = 2;
    static constexpr node_table<2, 1> faces{{{1}, {0}}};
    static constexpr node_table<1, 2> edges{{{0, 1}}};
};

struct tria3 {
    static constexpr unsigned int nodes = 3;
    static constexpr node_table<3, 2> faces{{{1, 2}, {2, 0}, {0, 1}}};
    static constexpr node_table<3, 2> edges = faces;
};

struct quad4 {
    static constexpr unsigned int nodes = 4;
    static constexpr node_table<4, 2> faces{{{0, 1}, {1, 2}, {2, 3}, {3, 0}}};
    static constexpr node_table<4, 2> edges = faces;
};

// Triangles and quadrangles in one matrix. The tables are those of its largest elements: see faces_of, edges_of.
struct face_mix : quad4 {};

struct tetra4 {
    static constexpr unsigned int nodes = 4;
    static constexpr node_table<4, 3> faces{{{1, 2, 3}, {2, 0, 3}, {1, 3, 0}, {2, 1, 0}}};
    static constexpr node_table<6, 2> edges{{{1, 2}, {2, 0}, {0, 1}, {0, 3}, {1, 3}, {2, 3}}};
};

struct pyramid5 {
    static constexpr unsigned int nodes = 5;
    static constexpr node_table<8, 2> edges{{{0, 4}, {1, 4}, {2, 4}, {3, 4}, {0, 1}, {1, 2}, {2, 3}, {3, 0}}};
};

struct wedge6 {
    static constexpr unsigned int nodes = 6;
    static constexpr node_table<9, 2> edges{{{0, 3}, {1, 4}, {2, 5}, {1, 2}, {2, 0}, {0, 1}, {4, 5}, {5, 3}, {3, 4}}};
};

struct hexa8 {
    static constexpr unsigned int nodes = 8;
    static constexpr node_table<6, 4> faces{
        {{0, 3, 7, 4}, {1, 5, 6, 2}, {0, 4, 5, 1}, {3, 2, 6, 7}, {0, 1, 2, 3}, {7, 6, 5, 4}}};
    static constexpr node_table<12, 2> edges{
        {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6}, {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}}};
};

// Vertices of a face of the element.
template <class Element>
constexpr std::size_t face_width = Element::faces.front().size();

namespace detail {

// The rows of a table that an element with these nodes has.
template <class Element, std::size_t Rows, std::size_t Width>
constexpr auto rows_of(const node_table<Rows, Width>& table, const node_table<3, 2>& of_triangle,
                       const unsigned int* nodes)
{
    using rows = std::span<const std::array<unsigned char, Width>>;
    if constexpr (std::is_same_v<Element, face_mix>) {
        return nodes[3] == NONE_INDEX ? rows(of_triangle) : rows(table);
    } else {
        return std::span(table);  // of fixed length, so that loops unroll
    }
}

}  // namespace detail

// Local faces of the element with these nodes: in a mixed matrix its shape decides.
template <class Element>
constexpr auto faces_of(const unsigned int* nodes)
{
    return detail::rows_of<Element>(Element::faces, tria3::faces, nodes);
}

// Local edges of the element with these nodes.
template <class Element>
constexpr auto edges_of(const unsigned int* nodes)
{
    return detail::rows_of<Element>(Element::edges, tria3::edges, nodes);
}

// Puts two entries in ascending order, without a branch: on shuffled meshes it would be mispredicted every other time.
constexpr void put_in_order(unsigned int& a, unsigned int& b)
{
    const unsigned int less = a < b ? a : b;
    b = a < b ? b : a;
    a = less;
}

// Global numbers of the vertices in one row of a table, ascending.
template <std::size_t Width>
constexpr std::array<unsigned int, Width> sorted_vertices(const unsigned int* nodes,
                                                          const std::array<unsigned char, Width>& row)
{
    static_assert(Width <= 4);
    std::array<unsigned int, Width> v{};
    for (std::size_t i = 0; i < Width; ++i) v[i] = nodes[row[i]];
    // The shortest sorting networks.
    if constexpr (Width >= 2) put_in_order(v[0], v[1]);
    if constexpr (Width == 3) {
        put_in_order(v[1], v[2]);
        put_in_order(v[0], v[1]);
    } else if constexpr (Width == 4) {
        put_in_order(v[2], v[3]);
        put_in_order(v[0], v[2]);
        put_in_order(v[1], v[3]);
        put_in_order(v[1], v[2]);
    }
    return v;
}

// The type under which the elements of a matrix have their edges: a mixed matrix of 3 rows holds triangles alone, and
// has no row that could say so.
constexpr element_type effective_type(element_type type, std::uint64_t rows)
{
    return type == EL_FACE_MIX && rows == 3 ? EL_TRIA3 : type;
}

// Calls visit(Element()) for the corners of this kind of element; `otherwise` for kinds without tables, to which
// EL_HEXA20 belongs on purpose (part of the interface).
template <class Result, class Visit>
Result visit_element(element_type type, Result otherwise, Visit visit)
{
    switch (type) {
        case EL_EDGE2:
        case EL_EDGE3:
            return visit(edge2());
        case EL_FACE_MIX:
            return visit(face_mix());
        case EL_TRIA3:
        case EL_TRIA6:
            return visit(tria3());
        case EL_QUAD4:
        case EL_QUAD8:
        case EL_QUAD9:
            return visit(quad4());
        case EL_TETRA4:
        case EL_TETRA10:
            return visit(tetra4());
        case EL_PYRAMID5:
        case EL_PYRAMID14:
            return visit(pyramid5());
        case EL_WEDGE6:
        case EL_WEDGE18:
            return visit(wedge6());
        case EL_HEXA8:
        case EL_HEXA27:
            return visit(hexa8());
        default:
            return otherwise;
    }
}

// The same for the kinds that have neighbours: pyramids and wedges have none here.
template <class Result, class Visit>
Result visit_faced_element(element_type type, Result otherwise, Visit visit)
{
    return visit_element(type, otherwise, [&](auto element) {
        if constexpr (requires { element.faces; }) {
            return visit(element);
        } else {
            return otherwise;
        }
    });
}

}  // namespace zeb::tessolv

#endif
