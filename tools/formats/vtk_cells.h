#ifndef TOOLS_FORMATS_VTK_CELLS_H
#define TOOLS_FORMATS_VTK_CELLS_H

#include <cstdint>
#include <string>
#include <vector>

#include "formats/number_stream.h"
#include "mesh/builder.h"
#include "mesh/mesh.h"

namespace tool {

// The codes of VTK for the kinds of cells that a mesh holds; 0 for those without one.
unsigned int vtk_code_of(zeb::element_type type);

// Programs that write VTK files in their own way. The library puts the further nodes of a quadratic element into a cell
// of points behind that of its corners; gmsh leaves wedges of 18 nodes as it has them, the mirror image of VTK's.
enum class vtk_dialect { standard, library, gmsh };

// The cells of a VTK file as they stand there, legacy or XML.
struct vtk_cells {
    growing_matrix<unsigned int> nodes{1};  // of all cells
    std::vector<unsigned int> sizes;        // number of nodes of each cell
    std::vector<std::uint8_t> types;        // codes

    // Where the file begins to list the cells from `first` on: for messages.
    struct list {
        std::uint64_t first;
        std::string place;
    };
    std::vector<list> lists;
    void begin_list(const cursor& where) { lists.push_back({sizes.size(), where.place()}); }
    // Fails at the list that this cell stands in.
    [[noreturn]] void fail(std::uint64_t cell, const std::string& reason) const;

    // `count` numbers: the size and the nodes of every cell.
    void read_list(number_stream& in, std::uint64_t cells, std::uint64_t numbers, const cursor& where);
    // The end of every cell within the nodes; with `leading_zero` its beginning too.
    void read_offsets(number_stream& in, std::uint64_t count, bool leading_zero, const cursor& where);
    void read_nodes(number_stream& in, std::uint64_t count);
};

// Makes the blocks of a mesh and uses the cells up: polygons, strips and the like are cut and told. Element numbers count from 0, as in VTK.
// Throws `unreadable` for cells of a type that a mesh cannot hold, or of a wrong size.
void assemble(vtk_cells&& cells, vtk_dialect dialect, mesh& result);

// Takes the cell field that holds the groups out of the fields, if there is one.
void take_groups(mesh& result);

}  // namespace tool

#endif
