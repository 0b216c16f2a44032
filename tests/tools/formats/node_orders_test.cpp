#include "formats/node_orders.h"

#include <algorithm>
#include <set>

#include <gtest/gtest.h>

#include "mesh/kinds.h"
#include "tools/formats/every_kind.h"

namespace {

using namespace tool;

TEST(EveryKind, OfTheseTestsIsWellOrderedItself)
{
    for (const kind_info& kind : all_kinds())
        EXPECT_TRUE(test::is_well_ordered(test::two_elements(kind.type))) << kind.name;
}

TEST(NodeOrders, ArePermutations)
{
    for (const node_order convention : {node_order::vtk, node_order::gmsh, node_order::vtk_by_gmsh}) {
        for (const kind_info& kind : all_kinds()) {
            const auto order = order_of(convention, kind.type);
            if (order.empty()) continue;
            EXPECT_EQ(order.size(), kind.nodes) << kind.name;
            EXPECT_EQ(std::set<int>(order.begin(), order.end()).size(), order.size()) << kind.name;
            EXPECT_EQ(*std::ranges::max_element(order) + 1u, order.size()) << kind.name;
        }
    }
}

TEST(NodeOrders, LeadThereAndBack)
{
    for (const node_order convention : {node_order::vtk, node_order::gmsh, node_order::vtk_by_gmsh}) {
        for (const kind_info& kind : all_kinds()) {
            const mesh m = test::two_elements(kind.type);
            connectivity turned = m.blocks[0].connect;
            to_file_order(convention, kind.type, &turned(0, 0), 2);
            EXPECT_EQ(turned == m.blocks[0].connect, order_of(convention, kind.type).empty()) << kind.name;
            to_library_order(convention, kind.type, &turned(0, 0), 2);
            EXPECT_EQ(turned, m.blocks[0].connect) << kind.name;
        }
    }
}

// The tables of the formats' manuals, by corners in the numbering of the file.
struct documented {
    node_order convention;
    zeb::element_type type;
    std::vector<std::vector<unsigned int>> further;
};

TEST(NodeOrders, PutFurtherNodesWhereTheFormatsHaveThem)
{
    using namespace zeb;
    const std::vector<documented> table{
        {node_order::vtk, EL_TRIA6, {{0, 1}, {1, 2}, {2, 0}}},
        {node_order::vtk, EL_TETRA10, {{0, 1}, {1, 2}, {2, 0}, {0, 3}, {1, 3}, {2, 3}}},
        {node_order::vtk,
         EL_WEDGE18,
         {{0, 1},
          {1, 2},
          {2, 0},
          {3, 4},
          {4, 5},
          {5, 3},
          {0, 3},
          {1, 4},
          {2, 5},
          {0, 1, 4, 3},
          {1, 2, 5, 4},
          {2, 0, 3, 5}}},
        {node_order::gmsh, EL_TETRA10, {{0, 1}, {1, 2}, {2, 0}, {0, 3}, {2, 3}, {1, 3}}},
        {node_order::gmsh,
         EL_PYRAMID14,
         {{0, 1}, {0, 3}, {0, 4}, {1, 2}, {1, 4}, {2, 3}, {2, 4}, {3, 4}, {0, 1, 2, 3}}},
        {node_order::gmsh,
         EL_WEDGE18,
         {{0, 1},
          {0, 2},
          {0, 3},
          {1, 2},
          {1, 4},
          {2, 5},
          {3, 4},
          {3, 5},
          {4, 5},
          {0, 1, 4, 3},
          {0, 2, 5, 3},
          {1, 2, 5, 4}}},
        {node_order::gmsh,
         EL_HEXA20,
         {{0, 1}, {0, 3}, {0, 4}, {1, 2}, {1, 5}, {2, 3}, {2, 6}, {3, 7}, {4, 5}, {4, 7}, {5, 6}, {6, 7}}},
    };
    for (const documented& row : table) {
        const mesh m = test::two_elements(row.type);
        connectivity file = m.blocks[0].connect;
        to_file_order(row.convention, row.type, &file(0, 0), 2);
        const unsigned int corners = zeb::VERTICES_PER_ELEMENT[row.type];
        for (std::size_t k = 0; k < row.further.size(); ++k) {
            for (std::uint64_t i = 0; i < 3; ++i) {
                double middle = 0;
                for (const unsigned int c : row.further[k])
                    middle += m.pos(i, file(c, 0)) / static_cast<double>(row.further[k].size());
                EXPECT_NEAR(m.pos(i, file(corners + k, 0)), middle, 1e-12) << row.type << " further node " << k;
            }
        }
    }
}

// Twice the volume of the corners 0, 1, 2 and the first one behind them: positive where these turn counter-clockwise
// seen from there.
double turning(const mesh& m, const unsigned int* n, unsigned int apex)
{
    double e[3][3];
    for (std::uint64_t i = 0; i < 3; ++i) {
        e[0][i] = m.pos(i, n[1]) - m.pos(i, n[0]);
        e[1][i] = m.pos(i, n[2]) - m.pos(i, n[0]);
        e[2][i] = m.pos(i, n[apex]) - m.pos(i, n[0]);
    }
    return e[0][0] * (e[1][1] * e[2][2] - e[1][2] * e[2][1]) - e[0][1] * (e[1][0] * e[2][2] - e[1][2] * e[2][0]) +
           e[0][2] * (e[1][0] * e[2][1] - e[1][1] * e[2][0]);
}

TEST(NodeOrders, TurnTetrahedraAndTheWedgesOfVtk)
{
    const auto turned = [](node_order convention, zeb::element_type type) {
        const mesh m = test::two_elements(type);
        connectivity file = m.blocks[0].connect;
        to_file_order(convention, type, &file(0, 0), 2);
        return turning(m, &file(0, 0), 3) > 0;
    };
    EXPECT_TRUE(turned(node_order::vtk, zeb::EL_TETRA4));
    EXPECT_TRUE(turned(node_order::gmsh, zeb::EL_TETRA4));
    EXPECT_TRUE(turned(node_order::gmsh, zeb::EL_TETRA10));
    EXPECT_FALSE(turned(node_order::vtk, zeb::EL_WEDGE6));
    EXPECT_TRUE(turned(node_order::gmsh, zeb::EL_WEDGE6));
    EXPECT_FALSE(turned(node_order::vtk, zeb::EL_WEDGE18));
    EXPECT_TRUE(turned(node_order::gmsh, zeb::EL_WEDGE18));
}

}  // namespace
