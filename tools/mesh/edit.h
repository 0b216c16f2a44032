#ifndef TOOLS_MESH_EDIT_H
#define TOOLS_MESH_EDIT_H

#include <cstdint>
#include <vector>

#include "mesh/mesh.h"

namespace tool {

// Keeps the elements whose flag is set (one for each, block after block), with their groups, numbers and values.
// Blocks without elements go.
void keep_elements(mesh& m, const std::vector<bool>& keep);

// Which nodes the elements use. Numbers that name no node are passed over.
std::vector<bool> used_nodes(const mesh& m);

// Keeps the nodes whose flag is set, in their order, with their numbers and values, and renumbers the elements. Every
// node that an element uses is kept.
void keep_nodes(mesh& m, const std::vector<bool>& keep);

// The values of a field for every element become a new cell field; one of that name is replaced.
void set_cell_field(mesh& m, field f);

// Numbers of the nodes and elements in their file as values.
field node_number_field(const mesh& m);
field element_number_field(const mesh& m);

// The items are numbered as they stand, from 1 on.
void number_anew(mesh& m);

}  // namespace tool

#endif
