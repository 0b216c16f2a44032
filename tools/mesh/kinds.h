#ifndef TOOLS_MESH_KINDS_H
#define TOOLS_MESH_KINDS_H

#include <cstdint>
#include <span>
#include <string>

#include <tessolv/element_type.h>

namespace tool {

// A kind of elements, for people and for tables.
struct kind_info {
    zeb::element_type type;
    const char* name;  // one word, also in data: "tetra10"
    const char* one;   // "tetrahedron of 10 nodes"
    const char* many;
    unsigned int nodes;
    int dimension;
    zeb::element_type linear;  // the kind of its corners alone
};

// All kinds that a mesh holds, in the order of zeb::element_type.
std::span<const kind_info> all_kinds();

// Of a kind that a mesh holds.
const kind_info& info_of(zeb::element_type type);

// "3 tetrahedra".
std::string counted_elements(std::uint64_t count, zeb::element_type type);

}  // namespace tool

#endif
