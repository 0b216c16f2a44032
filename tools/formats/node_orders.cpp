#include "formats/node_orders.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace tool {
namespace {

using namespace zeb;

struct row {
    node_order convention;
    element_type type;
    std::vector<std::uint8_t> order;
};

const std::vector<row> rows{
    {node_order::vtk, EL_TRIA6, {0, 1, 2, 5, 3, 4}},
    {node_order::vtk, EL_TETRA4, {0, 2, 1, 3}},
    {node_order::vtk, EL_TETRA10, {0, 2, 1, 3, 5, 4, 6, 7, 9, 8}},
    {node_order::vtk, EL_WEDGE6, {0, 2, 1, 3, 5, 4}},
    {node_order::vtk, EL_WEDGE18, {0, 2, 1, 3, 5, 4, 10, 9, 11, 13, 12, 14, 6, 8, 7, 16, 15, 17}},
    {node_order::vtk_by_gmsh, EL_TRIA6, {0, 1, 2, 5, 3, 4}},
    {node_order::vtk_by_gmsh, EL_TETRA4, {0, 2, 1, 3}},
    {node_order::vtk_by_gmsh, EL_TETRA10, {0, 2, 1, 3, 5, 4, 6, 7, 9, 8}},
    {node_order::vtk_by_gmsh, EL_WEDGE6, {0, 2, 1, 3, 5, 4}},
    {node_order::vtk_by_gmsh, EL_WEDGE18, {0, 1, 2, 3, 4, 5, 11, 9, 10, 14, 12, 13, 6, 7, 8, 17, 15, 16}},
    {node_order::gmsh, EL_TRIA6, {0, 1, 2, 5, 3, 4}},
    {node_order::gmsh, EL_TETRA4, {0, 2, 1, 3}},
    {node_order::gmsh, EL_TETRA10, {0, 2, 1, 3, 5, 4, 6, 7, 8, 9}},
    {node_order::gmsh, EL_PYRAMID14, {0, 1, 2, 3, 4, 9, 12, 5, 10, 6, 11, 7, 8, 13}},
    {node_order::gmsh, EL_WEDGE18, {0, 1, 2, 3, 4, 5, 11, 10, 6, 9, 7, 8, 14, 13, 12, 17, 16, 15}},
    {node_order::gmsh, EL_HEXA20, {0, 1, 2, 3, 4, 5, 6, 7, 8, 11, 16, 9, 17, 10, 18, 19, 12, 15, 13, 14}},
    {node_order::gmsh, EL_HEXA27, {0,  1,  2,  3,  4,  5,  6,  7,  8,  11, 16, 9,  17, 10,
                                   18, 19, 12, 15, 13, 14, 24, 22, 20, 21, 23, 25, 26}},
};

// Of kinds of four nodes tetrahedra alone have another order: their second and third node are exchanged.
void turn_tetrahedra(unsigned int* columns, std::uint64_t count)
{
    for (unsigned int* const end = columns + 4 * count; columns != end; columns += 4) std::swap(columns[1], columns[2]);
}

}  // namespace

std::span<const std::uint8_t> order_of(node_order convention, element_type type)
{
    for (const row& r : rows)
        if (r.convention == convention && r.type == type) return r.order;
    return {};
}

void to_library_order(node_order convention, element_type type, unsigned int* columns, std::uint64_t count)
{
    const std::span<const std::uint8_t> order = order_of(convention, type);
    if (order.size() == 4) return turn_tetrahedra(columns, count);
    std::array<unsigned int, 27> file{};
    for (std::uint64_t e = 0; !order.empty() && e < count; ++e, columns += order.size()) {
        std::copy_n(columns, order.size(), file.begin());
        for (std::size_t k = 0; k < order.size(); ++k) columns[order[k]] = file[k];
    }
}

void to_file_order(node_order convention, element_type type, unsigned int* columns, std::uint64_t count)
{
    const std::span<const std::uint8_t> order = order_of(convention, type);
    if (order.size() == 4) return turn_tetrahedra(columns, count);
    std::array<unsigned int, 27> library{};
    for (std::uint64_t e = 0; !order.empty() && e < count; ++e, columns += order.size()) {
        std::copy_n(columns, order.size(), library.begin());
        for (std::size_t k = 0; k < order.size(); ++k) columns[k] = library[order[k]];
    }
}

}  // namespace tool
