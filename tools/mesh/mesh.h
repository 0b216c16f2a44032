#ifndef TOOLS_MESH_MESH_H
#define TOOLS_MESH_MESH_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <tessolv/tessolv.h>

#include "mesh/numbering.h"

namespace tool {

using coordinates = zeb::dense2D<double>;
using connectivity = zeb::dense2D<unsigned int>;

// The elements of one kind. Their nodes stand in the library's order and orientation, whatever the file has. A node
// number that is not below the number of nodes names no node: such a mesh can be reported on, not worked with.
struct element_block {
    zeb::element_type type = zeb::EL_NONE;  // never a mixed kind
    connectivity connect;
    std::vector<std::int32_t> groups;  // reference number of each element; empty when all are 0
    numbering numbers;                 // of the elements in the file: one entry per column

    std::uint64_t size() const { return connect.cols; }
    std::int32_t group(std::uint64_t element) const { return groups.empty() ? 0 : groups[element]; }
};

// How the values of a field were stored, and are written again.
enum class number_kind { real64, real32, integer };

// Values on the nodes, or on the elements block after block: `components` numbers an item, item after item.
struct field {
    std::string name;
    unsigned int components = 1;
    number_kind kind = number_kind::real64;
    std::vector<double> values;
};

// A solid or a group: its number is what element_block::groups holds.
struct group_name {
    int dimension = -1;  // of its elements: 0 to 3, -1 where the format does not say
    std::int32_t number = 0;
    std::string name;
};

// What is wrong in the file although a mesh could be read, such as facets that were not read.
struct reading_fault {
    std::string code;  // a word for data: "facets_not_read"
    std::uint64_t count = 0;
    std::string text;  // for people
};

// What an STL file says of itself.
struct facet_counts {
    bool ascii = false;
    std::uint64_t in_file = 0;  // announced by the header, or by the word "facet"
    std::uint64_t read = 0;
    std::uint64_t dropped = 0;      // of those read: collapsed ones that the mesh does not have any more
    std::string why_not_read = {};  // of the first that was not; empty when all were
};

// The fault of the facets that were not read.
reading_fault unread_facets(const facet_counts& facets);

// A mesh as a file has it. Nothing in it is checked against the rest but for the sizes: see faults_of.
struct mesh {
    coordinates pos;                    // 2 or 3 rows, one column per node
    std::vector<element_block> blocks;  // one for each kind, in the order of zeb::element_type, none empty
    numbering node_numbers;             // of the nodes in the file
    std::vector<field> point_fields;
    std::vector<field> cell_fields;
    std::vector<group_name> group_names;
    std::vector<reading_fault> faults;
    std::vector<std::string> notes;  // what the reader had to do: polygons that were cut, for example
    std::string title;
    std::optional<facet_counts> facets;  // of an STL file

    std::uint64_t element_count() const;
    bool has_groups() const;
};

// What can be read as a mesh and is none to work with.
struct mesh_faults {
    struct element {
        std::size_t block;
        std::uint64_t column;
    };
    std::vector<element> bad_indices;       // elements that name a node that is not there
    std::vector<std::uint64_t> not_finite;  // nodes with a coordinate that is no finite number
    bool no_element = false;

    bool any() const { return !bad_indices.empty() || !not_finite.empty() || no_element; }
};

mesh_faults faults_of(const mesh& m);

// For every command but `check`: throws `unreadable` with the first fault in words.
void require_sound(const mesh& m);

// The name of a group, if the file has one for it.
const group_name* find_group_name(const mesh& m, int dimension, std::int32_t number);

// The blocks as the library's operations take them. The matrices share the memory of the mesh.
struct block_range {
    std::vector<connectivity> connect;
    zeb::dense1D<int> types;

    const connectivity* begin() const { return connect.data(); }
    const connectivity* end() const { return connect.data() + connect.size(); }
};

block_range range_of(const mesh& m);

// Sizes a matrix of the library, or throws std::bad_alloc.
template <class Matrix>
void resize(Matrix& matrix, std::uint64_t rows, std::uint64_t cols)
{
    if (!matrix.resize(rows, cols)) throw std::bad_alloc();
}

}  // namespace tool

#endif
