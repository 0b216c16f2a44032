#include "io/block_split.h"

#include <array>
#include <span>

namespace zeb::tessolv {
namespace {

constexpr std::array face_shapes = {EL_TRIA3, EL_QUAD4};
constexpr std::array solid_shapes = {EL_TETRA4, EL_WEDGE6, EL_HEXA8};

std::span<const element_type> shapes_of(element_type type)
{
    if (type == EL_FACE_MIX) return face_shapes;
    if (type == EL_SOLID_MIX) return solid_shapes;
    return {};
}

}  // namespace

bool split_matrix(const dense2D<unsigned int>& connect, element_type type, std::uint64_t source,
                  column_selection selection, scratch<pure_block>& blocks)
{
    if (connect.rows * connect.cols == 0) return true;
    const std::span<const element_type> shapes = shapes_of(type);
    if (shapes.empty()) {
        const std::uint64_t count = selection.columns == nullptr ? connect.cols : selection.count;
        return blocks.push_back({&connect, type, false, connect.rows, count, source, selection});
    }
    std::array<std::uint64_t, 9>
        elements_of{};  // by number of nodes; check_IDs has seen to it that there are at most 8
    for_each_column(connect, selection,
                    [&](std::uint64_t j) { ++elements_of[valid_nodes(column(connect, j), connect.rows)]; });
    for (const element_type shape : shapes) {
        const std::uint64_t nodes = NODES_PER_ELEMENT[shape];
        const std::uint64_t count = elements_of[nodes];
        if (count != 0 && !blocks.push_back({&connect, shape, true, nodes, count, source, selection})) return false;
    }
    return true;
}

bool split_blocks(const mesh_range& mesh, scratch<pure_block>& blocks)
{
    for (std::size_t k = 0; k < mesh.length(); ++k)
        if (!split_matrix(mesh.first[k], mesh.type_of(k), k, {}, blocks)) return false;
    return true;
}

}  // namespace zeb::tessolv
