#ifndef TOOLS_FORMATS_GMSH_INPUT_H
#define TOOLS_FORMATS_GMSH_INPUT_H

#include <array>
#include <cstdint>
#include <map>
#include <utility>

#include "formats/cursor.h"
#include "formats/number_stream.h"
#include "mesh/builder.h"
#include "mesh/number_index.h"

namespace tool {

// The numbers of a Gmsh file, which are words or bytes, and what its sections fill.
class gmsh_input {
public:
    explicit gmsh_input(const source& from) : in(from) {}

    std::int64_t integer(const char* what) { return binary ? stored(scalar_type::int32, what) : in.integer(what); }
    std::int64_t large(const char* what) { return binary ? stored(scalar_type::int64, what) : in.integer(what); }
    double real(const char* what);
    void integers(std::int64_t* to, std::uint64_t n, scalar_type type, const char* what);
    void reals(double* to, std::uint64_t n, const char* what);

    // A count of items of which each has so many numbers and bytes at least. Fails when the file cannot hold them.
    std::uint64_t count(std::int64_t announced, std::uint64_t numbers, std::uint64_t bytes, const char* what);

    // Makes node numbers findable, once all nodes are there.
    void index_nodes();
    // Columns of the nodes of one element, from the numbers of the file.
    void take_element(zeb::element_type type, std::int32_t group, std::int64_t number, const std::int64_t* nodes);
    zeb::element_type known_type(std::int64_t code, std::int64_t element) const;

    cursor in;
    bool binary = false;
    bool reversed = false;  // the bytes of numbers
    mesh result;
    growing_matrix<double> pos{3};
    mesh_builder elements;
    bool has_nodes = false;
    bool has_elements = false;
    bool has_physical_groups = false;

private:
    std::int64_t stored(scalar_type type, const char* what);

    number_index nodes_;
};

// The sections that differ between the versions.
void read_gmsh2_nodes(gmsh_input& input);
void read_gmsh2_elements(gmsh_input& input);

using gmsh_entities =
    std::map<std::pair<std::int64_t, std::int64_t>, std::int32_t>;  // (dimension, tag) to physical group
void read_gmsh4_entities(gmsh_input& input, gmsh_entities& entities);
void read_gmsh4_nodes(gmsh_input& input);
void read_gmsh4_elements(gmsh_input& input, const gmsh_entities& entities);

}  // namespace tool

#endif
