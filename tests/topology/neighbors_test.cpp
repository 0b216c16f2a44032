#include <gtest/gtest.h>

#include <string>

#include "support/matrices.h"
#include "support/mesh_builders.h"
#include "support/random_meshes.h"
#include "support/slow_topology.h"
#include "support/small_stack.h"
#include "support/storage_forms.h"
#include "support/stored_call.h"

using namespace zeb::tessolv;
using namespace test;

namespace {

const dense2D<unsigned> before = columns({{77, 78}});  // what stands in an output that must stay untouched

dense2D<unsigned> neighbors_of(const dense2D<unsigned>& connect, element_type type, bool link_nonmanifold = false)
{
    dense2D<unsigned> neighbors;
    EXPECT_EQ(get_neighbors(connect, type, link_nonmanifold, neighbors), 0);
    return neighbors;
}

}  // namespace

TEST(GetNeighbors, LinksTwoTrianglesAcrossTheirCommonEdge)
{
    EXPECT_EQ(neighbors_of(columns({{0, 1, 2}, {2, 1, 3}}), EL_TRIA3), columns({{1, N, N}, {N, N, 0}}));
}

TEST(GetNeighbors, LeavesAnEdgeOfThreeTrianglesOpenUnlessLinkingIsAsked)
{
    const auto fan = columns({{4, 5, 0}, {4, 5, 1}, {4, 5, 2}});
    EXPECT_EQ(neighbors_of(fan, EL_TRIA3, false), columns({{N, N, N}, {N, N, N}, {N, N, N}}));
    EXPECT_EQ(neighbors_of(fan, EL_TRIA3, true), columns({{N, N, 2}, {N, N, 0}, {N, N, 0}}));
}

TEST(GetNeighbors, LinksTheFirstOfFourToTheLastAndTheOthersToTheFirst)
{
    const auto fan = columns({{4, 5, 0}, {1, 5, 4}, {5, 2, 4}, {4, 5, 3}});
    EXPECT_EQ(neighbors_of(fan, EL_TRIA3, false), filled(3, 4, N));
    EXPECT_EQ(neighbors_of(fan, EL_TRIA3, true), columns({{N, N, 3}, {0, N, N}, {N, 0, N}, {N, N, 0}}));
}

TEST(GetNeighbors, GivesATriangleOfAMixedMatrixNoFourthNeighbour)
{
    const auto mixed = columns({{0, 1, 2, N}, {0, 2, 3, 4}, {1, 5, 2, N}});
    EXPECT_EQ(neighbors_of(mixed, EL_FACE_MIX), columns({{2, 1, N, N}, {0, N, N, N}, {N, 0, N, N}}));
}

TEST(GetNeighbors, TreatsAMixedMatrixOfThreeRowsAsTriangles)
{
    EXPECT_EQ(neighbors_of(columns({{0, 1, 2}, {2, 1, 3}}), EL_FACE_MIX), columns({{1, N, N}, {N, N, 0}}));
}

TEST(GetNeighbors, MakesTwinsNeighboursAcrossEveryFace)
{
    EXPECT_EQ(neighbors_of(columns({{3, 9}, {9, 3}}), EL_EDGE2), columns({{1, 1}, {0, 0}}));
    EXPECT_EQ(neighbors_of(columns({{5, 6, 7}, {5, 6, 7}}), EL_TRIA3), columns({{1, 1, 1}, {0, 0, 0}}));
    EXPECT_EQ(neighbors_of(columns({{5, 6, 7, 8}, {8, 7, 6, 5}}), EL_TETRA4), columns({{1, 1, 1, 1}, {0, 0, 0, 0}}));
    EXPECT_EQ(neighbors_of(columns({{1, 2, 3, 4, 5, 6, 7, 8}, {1, 2, 3, 4, 5, 6, 7, 8}}), EL_HEXA8),
              columns({{1, 1, 1, 1, 1, 1}, {0, 0, 0, 0, 0, 0}}));
}

TEST(GetNeighbors, NumbersTheFacesOfALineByTheOppositeEnd)
{
    EXPECT_EQ(neighbors_of(columns({{0, 1}, {1, 2}, {3, 2}}), EL_EDGE2), columns({{1, N}, {2, 0}, {1, N}}));
}

TEST(GetNeighbors, StartsTheFacesOfAQuadrangleAtTheVertexOfTheirNumber)
{
    const auto cross = columns({{0, 1, 2, 3}, {1, 0, 10, 11}, {2, 1, 12, 13}, {3, 2, 14, 15}, {0, 3, 16, 17}});
    EXPECT_EQ(neighbors_of(cross, EL_QUAD4),
              columns({{1, 2, 3, 4}, {0, N, N, N}, {0, N, N, N}, {0, N, N, N}, {0, N, N, N}}));
}

TEST(GetNeighbors, PutsTheFaceOfATetrahedronOppositeItsVertex)
{
    const auto star = columns({{0, 1, 2, 3}, {1, 2, 3, 4}, {0, 2, 3, 5}, {0, 1, 3, 6}, {0, 1, 2, 7}});
    EXPECT_EQ(neighbors_of(star, EL_TETRA4),
              columns({{1, 2, 3, 4}, {N, N, N, 0}, {N, N, N, 0}, {N, N, N, 0}, {N, N, N, 0}}));
}

TEST(GetNeighbors, KnowsTheSixFacesOfAHexahedron)
{
    const auto star = columns({{0, 1, 2, 3, 4, 5, 6, 7},
                               {10, 11, 12, 13, 0, 3, 7, 4},
                               {20, 21, 22, 23, 1, 5, 6, 2},
                               {30, 31, 32, 33, 0, 4, 5, 1},
                               {40, 41, 42, 43, 3, 2, 6, 7},
                               {50, 51, 52, 53, 0, 1, 2, 3},
                               {60, 61, 62, 63, 7, 6, 5, 4}});
    const auto neighbors = neighbors_of(star, EL_HEXA8);
    EXPECT_EQ(neighbors.sub_matrix(0, 0, 6, 1), columns({{1, 2, 3, 4, 5, 6}}));
    EXPECT_EQ(neighbors.sub_matrix(0, 1, 6, 6), columns({{N, N, N, N, N, 0},
                                                         {N, N, N, N, N, 0},
                                                         {N, N, N, N, N, 0},
                                                         {N, N, N, N, N, 0},
                                                         {N, N, N, N, N, 0},
                                                         {N, N, N, N, N, 0}}));
}

TEST(GetNeighbors, ComparesVerticesNotTheirSum)
{
    // The same least vertex, greatest vertex and sum: 1 + 2 + 3 + 4 and 1 + 1 + 4 + 4.
    const auto hexas = columns({{1, 2, 3, 4, 20, 21, 22, 23}, {1, 1, 4, 4, 30, 31, 32, 33}});
    EXPECT_EQ(neighbors_of(hexas, EL_HEXA8), filled(6, 2, N));
    // 0 + 5 + 7 and 1 + 4 + 7.
    EXPECT_EQ(neighbors_of(columns({{0, 5, 7, 20}, {1, 4, 7, 30}}), EL_TETRA4), filled(4, 2, N));
}

TEST(GetNeighbors, PairsEqualFacesOfOneDegenerateElement)
{
    EXPECT_EQ(neighbors_of(columns({{1, 1, 2}}), EL_TRIA3), columns({{0, 0, N}}));
    EXPECT_EQ(neighbors_of(columns({{1, 1, 1}}), EL_TRIA3, false), columns({{N, N, N}}));
    EXPECT_EQ(neighbors_of(columns({{1, 1, 1}}), EL_TRIA3, true), columns({{0, 0, 0}}));
    EXPECT_EQ(neighbors_of(columns({{7, 7}, {8, 7}}), EL_EDGE2, true), columns({{1, 0}, {0, N}}));
}

TEST(GetNeighbors, LeavesFacesOpenWhoseVerticesAddUpToNoneIndexInMixedSurfacesAndHexahedra)
{
    const unsigned x = N - 10;  // 10 + x is NONE_INDEX
    EXPECT_EQ(neighbors_of(columns({{10, x, 3, N}, {x, 10, 4, N}}), EL_FACE_MIX), filled(4, 2, N));
    EXPECT_EQ(neighbors_of(columns({{10, x, 3, 5}, {x, 10, 4, N}}), EL_FACE_MIX), filled(4, 2, N));
    EXPECT_EQ(neighbors_of(columns({{10, x, 3}, {x, 10, 4}}), EL_FACE_MIX), columns({{N, N, 1}, {N, N, 0}}));
    EXPECT_EQ(neighbors_of(columns({{10, x, 3}, {x, 10, 4}}), EL_TRIA3), columns({{N, N, 1}, {N, N, 0}}));
    EXPECT_EQ(neighbors_of(columns({{10, x, 3, 6}, {x, 10, 4, 5}}), EL_QUAD4), columns({{1, N, N, N}, {0, N, N, N}}));
    // 10 + 11 + 12 + y wraps to NONE_INDEX.
    const unsigned y = N - 33;
    EXPECT_EQ(neighbors_of(columns({{10, 11, 12, y, 1, 2, 3, 4}, {y, 12, 11, 10, 5, 6, 7, 8}}), EL_HEXA8),
              filled(6, 2, N));
    EXPECT_EQ(neighbors_of(columns({{10, 11, y + 12, 1}, {10, 11, y + 12, 2}}), EL_TETRA4),
              columns({{N, N, N, 1}, {N, N, N, 0}}));
}

TEST(GetNeighbors, TakesIndicesUpToTheLargest)
{
    const unsigned m = 0xFFFFFFFE;
    EXPECT_EQ(neighbors_of(columns({{m, 0, m - 1}, {m - 1, m, 1}}), EL_TRIA3), columns({{N, 1, N}, {N, N, 0}}));
    EXPECT_EQ(neighbors_of(columns({{m, m, m, m}}), EL_TETRA4, true), columns({{0, 0, 0, 0}}));
    EXPECT_EQ(neighbors_of(columns({{m, 0}, {1, m}}), EL_EDGE2), columns({{N, 1}, {0, N}}));
}

TEST(GetNeighbors, LeavesAnEarlierResultUntouchedWhenThereAreNoElements)
{
    for (const auto& empty : {dense2D<unsigned>(), dense2D<unsigned>(3, 0), dense2D<unsigned>(0, 3)})
        for (const int type : {int{EL_NONE}, int{EL_TRIA3}, int{EL_HEXA20}, -5, 99}) {
            dense2D<unsigned> neighbors = before;
            EXPECT_EQ(get_neighbors(empty, static_cast<element_type>(type), true, neighbors), 0);
            EXPECT_EQ(neighbors, before);
        }
}

namespace {

enum class output { untouched, emptied };

struct refusal {
    const char* name;
    int type;
    dense2D<unsigned> connect;
    int code;
    output state;
};

class RefusedNeighbors : public testing::TestWithParam<refusal> {};

const std::vector<refusal> refusals{
    {"NoneIndexInAPureKind", EL_TRIA3, columns({{0, 1, N}}), -1, output::untouched},
    {"NoneIndexInRow0OfAMix", EL_FACE_MIX, columns({{N, 1, 2, 3}}), -1, output::untouched},
    {"NoneIndexInAMixOf3Rows", EL_FACE_MIX, columns({{0, 1, N}}), -1, output::untouched},
    {"MixOf5Rows", EL_FACE_MIX, filled(5, 1, 0u), -1, output::untouched},
    {"RowsOfAnotherKind", EL_TETRA4, filled(3, 2, 0u), -1, output::untouched},
    {"CornersUnderAQuadraticType", EL_TRIA6, filled(3, 2, 0u), -1, output::untouched},
    {"NoKind", EL_NONE, filled(1, 1, 0u), -1, output::untouched},
    {"EdgeMix", EL_EDGE_MIX, filled(2, 1, 0u), -1, output::untouched},
    {"BelowTheEnumeration", -1, filled(3, 1, 0u), -1, output::untouched},
    {"BeyondTheEnumeration", 21, filled(3, 1, 0u), -1, output::untouched},
    {"QuadraticLine", EL_EDGE3, columns({{0, 1, 2}}), -1, output::emptied},
    {"QuadraticTriangle", EL_TRIA6, columns({{0, 1, 2, 3, 4, 5}}), -1, output::emptied},
    {"QuadrangleOf8", EL_QUAD8, filled(8, 2, 1u), -1, output::emptied},
    {"QuadrangleOf9", EL_QUAD9, filled(9, 2, 1u), -1, output::emptied},
    {"QuadraticTetrahedron", EL_TETRA10, filled(10, 1, 0u), -1, output::emptied},
    {"HexahedronOf27", EL_HEXA27, filled(27, 1, 0u), -1, output::emptied},
    {"Node", EL_NODE, columns({{0}}), -2, output::untouched},
    {"SolidMix", EL_SOLID_MIX, columns({{0, 1, 2, 3}}), -2, output::untouched},
    {"PyramidOf5", EL_PYRAMID5, columns({{0, 1, 2, 3, 4}}), -2, output::untouched},
    {"PyramidOf14", EL_PYRAMID14, filled(14, 1, 0u), -2, output::untouched},
    {"WedgeOf6", EL_WEDGE6, columns({{0, 1, 2, 3, 4, 5}}), -2, output::untouched},
    {"WedgeOf18", EL_WEDGE18, filled(18, 1, 0u), -2, output::untouched},
    {"HexahedronOf20", EL_HEXA20, filled(20, 1, 0u), -2, output::untouched},
    {"BadIndexInAKindWithoutFaces", EL_PYRAMID5, columns({{0, 1, N, 3, 4}}), -1, output::untouched},
    {"BadIndexInAQuadraticKind", EL_TRIA6, columns({{0, 1, 2, 3, 4, N}}), -1, output::untouched},
};

}  // namespace

TEST_P(RefusedNeighbors, GiveTheirCodeAndLeaveTheOutputAsStated)
{
    const refusal& row = GetParam();
    for (const bool link_nonmanifold : {false, true}) {
        dense2D<unsigned> neighbors = before;
        EXPECT_EQ(get_neighbors(row.connect, static_cast<element_type>(row.type), link_nonmanifold, neighbors),
                  row.code);
        if (row.state == output::untouched) {
            EXPECT_EQ(neighbors, before);
        } else {
            EXPECT_TRUE(is_empty_throughout(neighbors));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(GetNeighbors, RefusedNeighbors, testing::ValuesIn(refusals),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(GetNeighbors, AcceptsTheCornersOfAQuadraticMeshUnderTheLinearType)
{
    const auto quadratic = columns({{0, 1, 2, 10, 11, 12}, {2, 1, 3, 13, 14, 10}});
    EXPECT_EQ(neighbors_of(quadratic.sub_matrix(0, 0, 3, 2), EL_TRIA3), columns({{1, N, N}, {N, N, 0}}));
}

TEST(GetNeighbors, ReadsTheElementsAsTheyWereWhenTheOutputIsTheSameObject)
{
    auto connect = columns({{0, 1, 2}, {2, 1, 3}});
    EXPECT_EQ(get_neighbors(connect, EL_TRIA3, false, connect), 0);
    EXPECT_EQ(connect, columns({{1, N, N}, {N, N, 0}}));

    auto refused = filled(6, 2, 1u);
    EXPECT_EQ(get_neighbors(refused, EL_TRIA6, false, refused), -1);
    EXPECT_TRUE(is_empty_throughout(refused));
}

TEST(GetNeighbors, LeavesTheElementsAloneWhenTheOutputSharesTheirBuffer)
{
    const auto elements = columns({{0, 1, 2}, {2, 1, 3}});
    dense2D<unsigned> connect = elements;
    dense2D<unsigned> neighbors;
    neighbors.shallow_copy(connect);
    EXPECT_EQ(get_neighbors(connect, EL_TRIA3, false, neighbors), 0);
    EXPECT_EQ(neighbors, columns({{1, N, N}, {N, N, 0}}));
    EXPECT_EQ(connect, elements);
    EXPECT_EQ(neighbors.buffer->ref_count, 1);
}

namespace {

struct faced_kind {
    element_type type;
    std::uint64_t rows;
};
constexpr faced_kind faced_kinds[] = {{EL_EDGE2, 2},    {EL_TRIA3, 3},  {EL_QUAD4, 4}, {EL_FACE_MIX, 3},
                                      {EL_FACE_MIX, 4}, {EL_TETRA4, 4}, {EL_HEXA8, 8}};
constexpr unsigned first_nodes[] = {0, 1000, 0x7FFFFFF0, 0xFFFFFFE0};  // the last with nodes up to 0xFFFFFFFD

}  // namespace

TEST(GetNeighbors, AgreesWithComparingAllFacesOnRandomMeshes)
{
    dice random(11);
    for (int trial = 0; trial < 6000; ++trial) {
        const auto [type, rows] = random.one_of(faced_kinds);
        const auto connect =
            random_elements(random, type, rows, 1 + random.below(30), 1 + random.below(30), random.one_of(first_nodes));
        const bool link_nonmanifold = random.one_in(2);
        SCOPED_TRACE(testing::Message() << "trial " << trial << ", type " << type);
        ASSERT_EQ(neighbors_of(connect, type, link_nonmanifold), slow::neighbors(connect, type, link_nonmanifold))
            << testing::PrintToString(connect);
    }
}

TEST(GetNeighbors, AgreesWithComparingAllFacesWhenIndicesAreThin)
{
    dice random(12);
    constexpr unsigned nodes[] = {0, 1, 5, 0x10000, 0x10001, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFD, 0xFFFFFFFE};
    for (int trial = 0; trial < 2000; ++trial) {
        const auto [type, rows] = random.one_of(faced_kinds);
        dense2D<unsigned> connect(rows, 1 + random.below(20));
        for (std::uint64_t e = 0; e < connect.cols; ++e)
            for (std::uint64_t i = 0; i < rows; ++i) connect(i, e) = random.one_of(nodes);
        const bool link_nonmanifold = random.one_in(2);
        SCOPED_TRACE(testing::Message() << "trial " << trial << ", type " << type);
        ASSERT_EQ(neighbors_of(connect, type, link_nonmanifold), slow::neighbors(connect, type, link_nonmanifold))
            << testing::PrintToString(connect);
    }
}

TEST(GetNeighbors, DoesNotDependOnHowTheElementsAreStored)
{
    dice random(13);
    for (int trial = 0; trial < 300; ++trial) {
        const auto [type, rows] = random.one_of(faced_kinds);
        const auto connect = random_elements(random, type, rows, 1 + random.below(20), 1 + random.below(12));
        const auto expected = slow::neighbors(connect, type, true);
        for (const auto& form : storage_forms(connect, random.one_in(2) ? N : 0u)) {
            EXPECT_EQ(neighbors_of(form.matrix, type, true), expected) << form.name;
            EXPECT_EQ(form.matrix, connect) << form.name;
        }
        for (auto& form : storage_forms(before, N)) {
            EXPECT_EQ(get_neighbors(connect, type, true, form.matrix), 0);
            EXPECT_EQ(form.matrix, expected) << form.name;
            EXPECT_EQ(form.matrix.buffer->ref_count, 1) << form.name;
        }
    }
}

namespace {

struct large_mesh {
    const char* name;
    element_type type;
    dense2D<unsigned> connect;
};

// Many elements all of which have vertex 0 and, in the second kind of fan, vertex 1 too.
dense2D<unsigned> fan(unsigned rows, unsigned elements, unsigned common)
{
    dense2D<unsigned> connect(rows, elements, 0);
    for (unsigned e = 0; e < elements; ++e)
        for (unsigned i = 0; i < rows; ++i) connect(i, e) = i < common ? i : 2 + e + i - common;
    return connect;
}

// Elements that share vertex 0 and nothing else, but for the last ones, which are the first ones again.
dense2D<unsigned> star(unsigned rows, unsigned elements, unsigned repeated)
{
    dense2D<unsigned> connect(rows, elements, 0);
    for (unsigned e = 0; e < elements; ++e)
        for (unsigned i = 1; i < rows; ++i) connect(i, e) = e % (elements - repeated) * (rows - 1) + i;
    return connect;
}

// Edges that all add up to one number.
dense2D<unsigned> pairs_of_one_sum(unsigned elements)
{
    dense2D<unsigned> connect(3, elements);
    for (unsigned e = 0; e < elements; ++e) {
        connect(0, e) = 3 * elements + e;
        connect(1, e) = 3 * elements - e;
        connect(2, e) = e % 1000;
    }
    return connect;
}

dense2D<unsigned> spread(dense2D<unsigned> connect, unsigned factor)
{
    for (std::uint64_t e = 0; e < connect.cols; ++e)
        for (std::uint64_t i = 0; i < connect.rows; ++i) connect(i, e) *= factor;
    return connect;
}

class LargeMesh : public testing::TestWithParam<large_mesh> {};

}  // namespace

TEST_P(LargeMesh, AgreesWithAMapOfFaces)
{
    const large_mesh& mesh = GetParam();
    for (const bool link_nonmanifold : {false, true})
        EXPECT_EQ(neighbors_of(mesh.connect, mesh.type, link_nonmanifold),
                  slow::neighbors_by_map(mesh.connect, mesh.type, link_nonmanifold));
}

INSTANTIATE_TEST_SUITE_P(GetNeighbors, LargeMesh,
                         testing::Values(large_mesh{"Tetrahedra", EL_TETRA4, tetra_grid(12)},
                                         large_mesh{"ShuffledTetrahedra", EL_TETRA4, shuffled(tetra_grid(12), 1)},
                                         large_mesh{"ManyShuffledTetrahedra", EL_TETRA4, shuffled(tetra_grid(16), 7)},
                                         large_mesh{"Hexahedra", EL_HEXA8, shuffled(hexa_grid(16), 2)},
                                         large_mesh{"Triangles", EL_TRIA3, shuffled(tria_grid(80), 3)},
                                         large_mesh{"Quadrangles", EL_QUAD4, shuffled(quad_grid(80), 4)},
                                         large_mesh{"ThinNumbers", EL_TETRA4,
                                                    spread(shuffled(tetra_grid(10), 5), 3000000)},
                                         large_mesh{"TrianglesOnOneVertex", EL_TRIA3, fan(3, 40000, 1)},
                                         large_mesh{"TrianglesOnOneEdge", EL_TRIA3, fan(3, 40000, 2)},
                                         large_mesh{"TetrahedraOnOneVertex", EL_TETRA4, fan(4, 50000, 1)},
                                         large_mesh{"TrianglesWithNothingElse", EL_TRIA3, star(3, 40000, 100)},
                                         large_mesh{"TetrahedraWithNothingElse", EL_TETRA4, star(4, 30000, 16000)},
                                         large_mesh{"LinesOnOneVertex", EL_EDGE2, fan(2, 100000, 1)},
                                         large_mesh{"OneTriangleManyTimes", EL_TRIA3, fan(3, 40000, 3)},
                                         large_mesh{"EdgesOfOneSum", EL_TRIA3, pairs_of_one_sum(40000)}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(GetNeighbors, LinksMutuallyInAManifoldMesh)
{
    const auto connect = shuffled(tetra_grid(8), 6);
    const auto neighbors = neighbors_of(connect, EL_TETRA4);
    for (std::uint64_t e = 0; e < neighbors.cols; ++e)
        for (std::uint64_t k = 0; k < 4; ++k) {
            if (neighbors(k, e) == N) continue;
            const auto back = neighbors.col(neighbors(k, e));
            EXPECT_EQ(std::count(back.begin(), back.end(), e), 1);
        }
    EXPECT_EQ(std::count(neighbors.buffer->data, neighbors.buffer->data + neighbors.size, N), 6 * 8 * 8 * 2);
}

TEST(GetNeighbors, RunsOnASmallStack)
{
    const auto connect = fan(3, 100000, 1);
    dense2D<unsigned> neighbors;
    int code = 1;
    run_on_small_stack([&] { code = get_neighbors(connect, EL_TRIA3, false, neighbors); });
    EXPECT_EQ(code, 0);
    EXPECT_EQ(neighbors.cols, 100000u);
}
