#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/matrices.h"
#include "support/mesh_builders.h"
#include "support/random_meshes.h"
#include "support/slow_topology.h"
#include "support/small_stack.h"
#include "support/storage_forms.h"

using namespace zeb::tessolv;
using namespace test;

namespace {

dense2D<unsigned> edges_of(const dense2D<unsigned>& connect, element_type type)
{
    dense2D<unsigned> edges;
    EXPECT_EQ(copy_edges(connect, type, edges), 0);
    return edges;
}

dense2D<unsigned> as_matrix(const std::vector<std::pair<unsigned, unsigned>>& edges)
{
    dense2D<unsigned> m(2, edges.size());
    for (std::size_t j = 0; j < edges.size(); ++j) {
        m(0, j) = edges[j].first;
        m(1, j) = edges[j].second;
    }
    return m;
}

int copy_edges(const std::vector<dense2D<unsigned>>& matrices, const std::vector<int>& kinds, dense2D<unsigned>& edges)
{
    return zeb::tessolv::copy_edges(matrices.data(), matrices.data() + matrices.size(), types(kinds), edges);
}

}  // namespace

TEST(CopyEdges, ListsTheCommonEdgeOfTwoTrianglesOnce)
{
    EXPECT_EQ(edges_of(columns({{0, 1, 2}, {2, 1, 3}}), EL_TRIA3), columns({{1, 2}, {0, 2}, {0, 1}, {1, 3}, {2, 3}}));
}

TEST(CopyEdges, AppendsTheSameEdgesAgainInASecondCall)
{
    const auto triangle = columns({{4, 2, 9}});
    dense2D<unsigned> edges = columns({{8, 7}});
    EXPECT_EQ(copy_edges(triangle, EL_TRIA3, edges), 0);
    EXPECT_EQ(copy_edges(triangle, EL_TRIA3, edges), 0);
    EXPECT_EQ(edges, columns({{8, 7}, {2, 9}, {4, 9}, {2, 4}, {2, 9}, {4, 9}, {2, 4}}));
}

TEST(CopyEdges, FindsNoEdgesInHexahedraOf20NodesAndInMixedSolids)
{
    EXPECT_EQ(edges_of(filled(20, 2, 1u), EL_HEXA20).size, 0u);
    EXPECT_EQ(edges_of(columns({{0, 1, 2, 3, 4, 5, 6, 7}}), EL_SOLID_MIX).size, 0u);
    EXPECT_EQ(edges_of(columns({{0}}), EL_NODE).size, 0u);

    dense2D<unsigned> edges = columns({{8, 7}});
    EXPECT_EQ(copy_edges(filled(20, 2, 1u), EL_HEXA20, edges), 0);
    EXPECT_EQ(edges, columns({{8, 7}}));
}

TEST(CopyEdges, UsesTheCornersOfAQuadraticTriangleOnly)
{
    EXPECT_EQ(edges_of(columns({{0, 1, 2, 3, 4, 5}}), EL_TRIA6), edges_of(columns({{0, 1, 2}}), EL_TRIA3));
}

TEST(CopyEdges, TakesADegenerateEdgeForAnEdge)
{
    EXPECT_EQ(edges_of(columns({{5, 5}, {5, 6}}), EL_EDGE2), columns({{5, 5}, {5, 6}}));
    EXPECT_EQ(edges_of(columns({{3, 3, 4}}), EL_TRIA3), columns({{3, 4}, {3, 3}}));
}

TEST(CopyEdges, ListsATriangleOfAMixedMatrixByTheOrderOfTriangles)
{
    EXPECT_EQ(edges_of(columns({{0, 1, 2, N}, {0, 2, 3, 4}}), EL_FACE_MIX),
              columns({{1, 2}, {0, 2}, {0, 1}, {2, 3}, {3, 4}, {0, 4}}));
    EXPECT_EQ(edges_of(columns({{0, 1, 2}}), EL_FACE_MIX), columns({{1, 2}, {0, 2}, {0, 1}}));
}

TEST(CopyEdges, TakesIndicesUpToTheLargest)
{
    const unsigned m = 0xFFFFFFFE;
    EXPECT_EQ(edges_of(columns({{m, 0, m}, {0, m - 1, m}}), EL_TRIA3),
              columns({{0, m}, {m, m}, {m - 1, m}, {0, m - 1}}));
}

struct lone_kind {
    const char* name;
    element_type type;
    std::uint64_t rows;
    dense2D<unsigned> edges;
};
class EdgesOfOneElement : public testing::TestWithParam<lone_kind> {};

// Node i of the element has the number 50 - i, so that every edge has to be turned.
TEST_P(EdgesOfOneElement, AreThoseOfItsCornersInLocalOrder)
{
    const lone_kind& kind = GetParam();
    dense2D<unsigned> element(kind.rows, 1);
    for (unsigned i = 0; i < kind.rows; ++i) element(i, 0) = 50 - i;
    dense2D<unsigned> expected(2, kind.edges.cols);
    for (std::uint64_t k = 0; k < kind.edges.cols; ++k) {
        expected(0, k) = 50 - std::max(kind.edges(0, k), kind.edges(1, k));
        expected(1, k) = 50 - std::min(kind.edges(0, k), kind.edges(1, k));
    }
    EXPECT_EQ(edges_of(element, kind.type), expected);
}

namespace {

const auto line = columns({{0, 1}});
const auto triangle = columns({{1, 2}, {2, 0}, {0, 1}});
const auto quadrangle = columns({{0, 1}, {1, 2}, {2, 3}, {3, 0}});
const auto tetrahedron = columns({{1, 2}, {2, 0}, {0, 1}, {0, 3}, {1, 3}, {2, 3}});
const auto pyramid = columns({{0, 4}, {1, 4}, {2, 4}, {3, 4}, {0, 1}, {1, 2}, {2, 3}, {3, 0}});
const auto wedge = columns({{0, 3}, {1, 4}, {2, 5}, {1, 2}, {2, 0}, {0, 1}, {4, 5}, {5, 3}, {3, 4}});
const auto hexahedron =
    columns({{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6}, {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}});

}  // namespace

INSTANTIATE_TEST_SUITE_P(
    CopyEdges, EdgesOfOneElement,
    testing::Values(lone_kind{"Edge2", EL_EDGE2, 2, line}, lone_kind{"Edge3", EL_EDGE3, 3, line},
                    lone_kind{"Tria3", EL_TRIA3, 3, triangle}, lone_kind{"Tria6", EL_TRIA6, 6, triangle},
                    lone_kind{"FaceMixOf3Rows", EL_FACE_MIX, 3, triangle},
                    lone_kind{"FaceMixOf4Rows", EL_FACE_MIX, 4, quadrangle},
                    lone_kind{"Quad4", EL_QUAD4, 4, quadrangle}, lone_kind{"Quad8", EL_QUAD8, 8, quadrangle},
                    lone_kind{"Quad9", EL_QUAD9, 9, quadrangle}, lone_kind{"Tetra4", EL_TETRA4, 4, tetrahedron},
                    lone_kind{"Tetra10", EL_TETRA10, 10, tetrahedron}, lone_kind{"Pyramid5", EL_PYRAMID5, 5, pyramid},
                    lone_kind{"Pyramid14", EL_PYRAMID14, 14, pyramid}, lone_kind{"Wedge6", EL_WEDGE6, 6, wedge},
                    lone_kind{"Wedge18", EL_WEDGE18, 18, wedge}, lone_kind{"Hexa8", EL_HEXA8, 8, hexahedron},
                    lone_kind{"Hexa27", EL_HEXA27, 27, hexahedron}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(CopyEdges, ListsAnEdgeOfTwoMatricesOnce)
{
    dense2D<unsigned> edges;
    EXPECT_EQ(copy_edges({columns({{3, 4}}), columns({{4, 3, 0}}), dense2D<unsigned>(), columns({{0, 3}})},
                         {EL_EDGE2, EL_TRIA3, EL_TETRA4, EL_EDGE2}, edges),
              0);
    EXPECT_EQ(edges, columns({{3, 4}, {0, 3}, {0, 4}}));
}

TEST(CopyEdges, LeavesTheOutputUntouchedForAnEmptyMatrixWhateverItsShape)
{
    const auto three_rows = filled(3, 2, 5u);
    for (const auto& empty : {dense2D<unsigned>(), dense2D<unsigned>(3, 0), dense2D<unsigned>(0, 3)}) {
        dense2D<unsigned> edges = three_rows;
        EXPECT_EQ(copy_edges(empty, EL_TRIA3, edges), 0);
        EXPECT_EQ(edges, three_rows);
        dense2D<unsigned> nothing;
        EXPECT_EQ(copy_edges(empty, static_cast<element_type>(-3), nothing), 0);
        EXPECT_EQ(nothing.rows, 0u);
    }
}

TEST(CopyEdges, GivesAnEmptyOutputTwoRowsForARangeWithoutEdges)
{
    for (const auto& empty : {dense2D<unsigned>(), dense2D<unsigned>(5, 0), dense2D<unsigned>(0, 5)}) {
        dense2D<unsigned> edges = empty;
        EXPECT_EQ(copy_edges(nullptr, nullptr, dense1D<int>(), edges), 0);
        EXPECT_EQ(edges.rows, 2u);
        EXPECT_EQ(edges.cols, 0u);
        edges = empty;
        EXPECT_EQ(copy_edges({dense2D<unsigned>(), filled(20, 1, 0u)}, {EL_TRIA3, EL_HEXA20}, edges), 0);
        EXPECT_EQ(edges.rows, 2u);
        EXPECT_EQ(edges.cols, 0u);
        edges = empty;
        EXPECT_EQ(copy_edges(columns({{3, 1}}), EL_EDGE2, edges), 0);
        EXPECT_EQ(edges, columns({{1, 3}}));
    }
}

TEST(CopyEdges, ReportsTheFirstFaultOfOneMatrixAndLeavesTheOutput)
{
    struct fault {
        int type;
        dense2D<unsigned> connect, edges;
        int code;
    };
    const auto two_rows = columns({{1, 2}});
    const auto three_rows = columns({{1, 2, 3}});
    const auto good = columns({{0, 1, 2}});
    const auto bad = columns({{0, 1, N}});
    const std::vector<fault> faults{{EL_TRIA3, bad, two_rows, -1},
                                    {EL_TRIA3, good, three_rows, -3},
                                    {EL_TRIA3, bad, three_rows, -1},
                                    {EL_TETRA4, good, two_rows, -1},
                                    {EL_NONE, good, two_rows, -1},
                                    {EL_EDGE_MIX, two_rows, two_rows, -1},
                                    {-1, good, two_rows, -1},
                                    {21, good, two_rows, -1},
                                    {EL_HEXA20, filled(20, 1, 0u), three_rows, -3},
                                    {EL_HEXA20, filled(20, 1, N), three_rows, -1},
                                    {EL_TRIA6, good, two_rows, -1}};
    for (const fault& f : faults) {
        dense2D<unsigned> edges = f.edges;
        EXPECT_EQ(copy_edges(f.connect, static_cast<element_type>(f.type), edges), f.code) << f.type;
        EXPECT_EQ(edges, f.edges);
    }
}

TEST(CopyEdges, ReportsTheFirstFaultOfARangeAndLeavesTheOutput)
{
    const std::vector<dense2D<unsigned>> good{columns({{0, 1, 2}}), columns({{0, 1}})};
    const std::vector<dense2D<unsigned>> bad{columns({{0, 1, 2}}), columns({{0, N}})};
    const auto two = types({EL_TRIA3, EL_EDGE2}), one = types({EL_TRIA3}), wrong = types({EL_TRIA3, 21});
    const auto two_rows = columns({{1, 2}});
    const auto three_rows = columns({{1, 2, 3}});
    const auto code = [](const std::vector<dense2D<unsigned>>& m, bool reversed, const dense1D<int>& kinds,
                         const dense2D<unsigned>& edges_before) {
        dense2D<unsigned> edges = edges_before;
        const auto* first = m.data();
        const auto* last = first + m.size();
        const int result = reversed ? zeb::tessolv::copy_edges(last, first, kinds, edges)
                                    : zeb::tessolv::copy_edges(first, last, kinds, edges);
        EXPECT_EQ(edges, edges_before);
        return result;
    };
    EXPECT_EQ(code(good, true, two, two_rows), -2);
    EXPECT_EQ(code(good, false, one, two_rows), -3);
    EXPECT_EQ(code(good, false, two, three_rows), -4);
    EXPECT_EQ(code(bad, false, two, two_rows), -1);
    EXPECT_EQ(code(good, false, wrong, two_rows), -1);

    EXPECT_EQ(code(good, true, one, two_rows), -2);
    EXPECT_EQ(code(good, true, two, three_rows), -2);
    EXPECT_EQ(code(bad, true, two, two_rows), -2);
    EXPECT_EQ(code(good, false, one, three_rows), -3);
    EXPECT_EQ(code(bad, false, one, two_rows), -3);
    EXPECT_EQ(code(bad, false, two, three_rows), -4);
    EXPECT_EQ(code({}, false, one, two_rows), -3);
    EXPECT_EQ(code({}, false, types({}), three_rows), -4);
}

TEST(CopyEdges, ReadsTheElementsAsTheyWereWhenTheOutputIsOneOfThem)
{
    auto lines = columns({{5, 4}, {4, 5}, {6, 5}});
    EXPECT_EQ(copy_edges(lines, EL_EDGE2, lines), 0);
    EXPECT_EQ(lines, columns({{5, 4}, {4, 5}, {6, 5}, {4, 5}, {5, 6}}));

    std::vector<dense2D<unsigned>> range{columns({{1, 2, 3}}), columns({{3, 1}, {9, 8}})};
    const auto kinds = types({EL_TRIA3, EL_EDGE2});
    EXPECT_EQ(zeb::tessolv::copy_edges(range.data(), range.data() + 2, kinds, range[1]), 0);
    EXPECT_EQ(range[1], columns({{3, 1}, {9, 8}, {2, 3}, {1, 3}, {1, 2}, {8, 9}}));
}

TEST(CopyEdges, LeavesAloneWhatSharesTheBufferOfTheOutput)
{
    const auto lines = columns({{5, 4}, {6, 5}});
    dense2D<unsigned> connect = lines;
    dense2D<unsigned> edges = connect.sub_matrix(0, 0, 2, 1);
    EXPECT_EQ(copy_edges(connect, EL_EDGE2, edges), 0);
    EXPECT_EQ(edges, columns({{5, 4}, {4, 5}, {5, 6}}));
    EXPECT_EQ(connect, lines);
    EXPECT_EQ(edges.buffer->ref_count, 1);
}

TEST(CopyEdges, AgreesWithASetOfEdgesOnRandomRangesHoweverTheyAreStored)
{
    struct kind {
        element_type type;
        std::uint64_t rows;
    };
    constexpr kind kinds[] = {{EL_NODE, 1},     {EL_EDGE2, 2},    {EL_EDGE3, 3},      {EL_FACE_MIX, 3},
                              {EL_FACE_MIX, 4}, {EL_TRIA3, 3},    {EL_TRIA6, 6},      {EL_QUAD4, 4},
                              {EL_QUAD8, 8},    {EL_QUAD9, 9},    {EL_SOLID_MIX, 8},  {EL_TETRA4, 4},
                              {EL_TETRA10, 10}, {EL_PYRAMID5, 5}, {EL_PYRAMID14, 14}, {EL_WEDGE6, 6},
                              {EL_WEDGE18, 18}, {EL_HEXA8, 8},    {EL_HEXA20, 20},    {EL_HEXA27, 27}};
    constexpr unsigned first_nodes[] = {0, 500, 0xFFFFFFC0};
    dice random(51);
    for (int trial = 0; trial < 3000; ++trial) {
        std::vector<dense2D<unsigned>> matrices, stored;
        std::vector<int> matrix_types;
        std::vector<std::vector<stored_matrix<unsigned>>> all_forms;
        const unsigned nodes = 1 + random.below(40), first = random.one_of(first_nodes);
        for (unsigned k = random.below(5); k > 0; --k) {
            const auto [type, rows] = random.one_of(kinds);
            matrices.push_back(random_elements(random, type, rows, random.below(12), nodes, first));
            matrix_types.push_back(type);
            all_forms.push_back(storage_forms(matrices.back(), N));
            stored.emplace_back().shallow_copy(all_forms.back()[random.below(4)].matrix);
        }
        const auto expected = as_matrix(slow::edges(matrices, matrix_types));
        dense2D<unsigned> edges;
        ASSERT_EQ(copy_edges(stored, matrix_types, edges), 0) << "trial " << trial;
        ASSERT_EQ(edges, expected) << "trial " << trial;
        if (matrices.size() == 1 && !matrices[0].empty()) {
            ASSERT_EQ(edges_of(stored[0], static_cast<element_type>(matrix_types[0])), expected) << "trial " << trial;
        }
        for (auto& form : storage_forms(columns({{3, 2}, {1, 0}}), N)) {
            ASSERT_EQ(copy_edges(stored, matrix_types, form.matrix), 0);
            ASSERT_EQ(form.matrix.cols, 2 + expected.cols);
            EXPECT_EQ(form.matrix.sub_matrix(0, 0, 2, 2), columns({{3, 2}, {1, 0}})) << form.name;
            EXPECT_EQ(form.matrix.sub_matrix(0, 2, 2, expected.cols), expected) << form.name;
        }
    }
}

TEST(CopyEdges, AgreesWithASetOfEdgesOnLargeMeshes)
{
    const auto tetrahedra = shuffled(tetra_grid(15), 1);
    EXPECT_EQ(edges_of(tetrahedra, EL_TETRA4), as_matrix(slow::edges({tetrahedra}, {EL_TETRA4})));
    const auto hexahedra = hexa_grid(20);
    EXPECT_EQ(edges_of(hexahedra, EL_HEXA8), as_matrix(slow::edges({hexahedra}, {EL_HEXA8})));
    auto thin = shuffled(tria_grid(60), 2);
    for (std::uint64_t e = 0; e < thin.cols; ++e)
        for (std::uint64_t i = 0; i < 3; ++i) thin(i, e) *= 1000000;
    EXPECT_EQ(edges_of(thin, EL_TRIA3), as_matrix(slow::edges({thin}, {EL_TRIA3})));
}

TEST(CopyEdges, AgreesWithASetOfEdgesHoweverManyEdgesANodeHas)
{
    struct kind {
        element_type type;
        std::uint64_t rows;
    };
    constexpr kind kinds[] = {{EL_EDGE2, 2}, {EL_FACE_MIX, 4}, {EL_TRIA3, 3}, {EL_TETRA4, 4}, {EL_HEXA8, 8}};
    constexpr unsigned first_nodes[] = {0, 500, 0xFFFFFF00};
    dice random(52);
    for (int trial = 0; trial < 1000; ++trial) {
        const auto [type, rows] = random.one_of(kinds);
        const unsigned nodes = 1 + random.below(200), first = random.one_of(first_nodes);
        const auto elements = random_elements(random, type, rows, 1 + random.below(4 * nodes), nodes, first);
        ASSERT_EQ(edges_of(elements, type), as_matrix(slow::edges({elements}, {type}))) << "trial " << trial;
    }
}

TEST(CopyEdges, CopesWithAHundredThousandEdgesOnOneNode)
{
    constexpr unsigned n = 100000;
    dense2D<unsigned> star(2, 2 * n);
    for (unsigned e = 0; e < n; ++e) {
        star(0, e) = star(1, n + e) = 0;
        star(1, e) = star(0, n + e) = n - e;
    }
    dense2D<unsigned> edges;
    run_on_small_stack([&] { copy_edges(star, EL_EDGE2, edges); });
    EXPECT_EQ(edges, star.sub_matrix(0, 0, 2, n));
}
