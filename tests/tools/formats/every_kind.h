#ifndef TESTS_TOOLS_FORMATS_EVERY_KIND_H
#define TESTS_TOOLS_FORMATS_EVERY_KIND_H

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "formats/format.h"
#include "mesh/mesh.h"

namespace test {

// The edges and quadrangles on which the further nodes of a quadratic element lie, by corners, in the library's order:
// its edge tables, then the faces, then the middle.
std::vector<std::vector<unsigned int>> further_nodes(zeb::element_type type);

// Two elements of one kind, positive in the library's sense and slightly deformed, so that no two nodes of an element
// can be exchanged unnoticed. Further nodes lie in the middle of their corners.
tool::mesh two_elements(zeb::element_type type);

// Elements of all these kinds in one mesh, with groups, names, fields on nodes and elements.
tool::mesh mesh_of(const std::vector<zeb::element_type>& types);

// The elements of a mesh by kind.
std::vector<std::pair<int, std::uint64_t>> counts(const tool::mesh& m);

// Whether every further node of the mesh lies in the middle of its corners, and the kind scores positive where it has a
// measure.
testing::AssertionResult is_well_ordered(const tool::mesh& m);

// Through memory: writes with the format of that name, and reads what the program finds it to be.
std::string written(const tool::mesh& m, const std::string& format, bool ascii = false);
tool::mesh read_bytes(const std::string& bytes);
tool::mesh read_bytes_as(const std::string& bytes, const std::string& format);

}  // namespace test

#endif
