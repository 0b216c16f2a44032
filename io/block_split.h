#ifndef TESSOLV_IO_BLOCK_SPLIT_H
#define TESSOLV_IO_BLOCK_SPLIT_H

#include <cstdint>

#include "core/columns.h"
#include "core/mesh_range.h"
#include "core/scratch.h"

namespace zeb::tessolv {

// Some columns of a matrix in the order in which they are to be written; by default all of them as they stand.
struct column_selection {
    const std::uint64_t* columns = nullptr;
    std::uint64_t count = 0;
};

// Elements of one pure type: a whole matrix, or the columns of one shape of a mixed one. Nothing is copied, the matrix
// must outlive the block.
struct pure_block {
    const dense2D<unsigned int>* matrix;
    element_type type;
    bool one_of_a_mix;
    std::uint64_t nodes;   // of each element, from row 0 on
    std::uint64_t count;   // elements
    std::uint64_t source;  // position of the matrix in the mesh
    column_selection selection;
};

template <class Visit>
void for_each_column(const dense2D<unsigned int>& matrix, column_selection selection, Visit visit)
{
    if (selection.columns == nullptr)
        for (std::uint64_t j = 0; j < matrix.cols; ++j) visit(j);
    else
        for (std::uint64_t k = 0; k < selection.count; ++k) visit(selection.columns[k]);
}

// Calls visit(j) for the column j of every element of the block, in order.
template <class Visit>
void for_each_element(const pure_block& block, Visit visit)
{
    if (!block.one_of_a_mix) return for_each_column(*block.matrix, block.selection, visit);
    for_each_column(*block.matrix, block.selection, [&](std::uint64_t j) {
        if (valid_nodes(column(*block.matrix, j), block.matrix->rows) == block.nodes) visit(j);
    });
}

// Appends the blocks of one matrix that check_IDs accepts under its type: none when it is empty, the matrix itself when
// its type is pure, otherwise one for each shape that occurs: triangles, quadrangles; tetrahedra, wedges, hexahedra.
// Other shapes are left out. False without memory.
[[nodiscard]] bool split_matrix(const dense2D<unsigned int>& connect, element_type type, std::uint64_t source,
                                column_selection selection, scratch<pure_block>& blocks);

// Appends the blocks of all matrices of a mesh, matrix after matrix. False without memory.
[[nodiscard]] bool split_blocks(const mesh_range& mesh, scratch<pure_block>& blocks);

}  // namespace zeb::tessolv

#endif
