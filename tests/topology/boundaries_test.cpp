#include <gtest/gtest.h>

#include <string>

#include "support/matrices.h"
#include "support/random_meshes.h"
#include "support/slow_topology.h"
#include "support/storage_forms.h"

using namespace zeb::tessolv;
using namespace test;

namespace {

const dense2D<unsigned> before = columns({{77, 78}});

}  // namespace

struct lone_element {
    const char* name;
    element_type type;
    dense2D<unsigned> connect, faces;  // one element, and what it must list when nothing touches it
};
class LoneElement : public testing::TestWithParam<lone_element> {};

TEST_P(LoneElement, ListsItsFacesInLocalOrder)
{
    const auto& [name, type, connect, faces] = GetParam();
    dense2D<unsigned> boundaries;
    ASSERT_EQ(get_boundaries(connect, filled(faces.cols, 1, N), type, boundaries), 0);
    EXPECT_EQ(boundaries, faces);
}

INSTANTIATE_TEST_SUITE_P(
    GetBoundaries, LoneElement,
    testing::Values(
        lone_element{"Edge", EL_EDGE2, columns({{7, 9}}), columns({{9}, {7}})},
        lone_element{"Triangle", EL_TRIA3, columns({{0, 1, 2}}), columns({{1, 2}, {2, 0}, {0, 1}})},
        lone_element{"Quadrangle", EL_QUAD4, columns({{5, 6, 7, 8}}), columns({{5, 6}, {6, 7}, {7, 8}, {8, 5}})},
        lone_element{"QuadrangleOfAMix", EL_FACE_MIX, columns({{5, 6, 7, 8}}),
                     columns({{5, 6}, {6, 7}, {7, 8}, {8, 5}})},
        lone_element{"TriangleOfAMix", EL_FACE_MIX, columns({{0, 1, 2, N}}), columns({{1, 2}, {2, 0}, {0, 1}, {N, N}})},
        lone_element{"Tetrahedron", EL_TETRA4, columns({{0, 1, 2, 3}}),
                     columns({{1, 2, 3}, {2, 0, 3}, {1, 3, 0}, {2, 1, 0}})},
        lone_element{"Hexahedron", EL_HEXA8, columns({{0, 1, 2, 3, 4, 5, 6, 7}}),
                     columns({{0, 3, 7, 4}, {1, 5, 6, 2}, {0, 4, 5, 1}, {3, 2, 6, 7}, {0, 1, 2, 3}, {7, 6, 5, 4}})}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(GetBoundaries, GivesTwoRowsAndNoColumnsForAClosedSurface)
{
    const auto tetrahedron = columns({{1, 2, 3}, {2, 0, 3}, {1, 3, 0}, {2, 1, 0}});
    dense2D<unsigned> neighbors;
    dense2D<unsigned> boundaries = before;
    ASSERT_EQ(get_neighbors(tetrahedron, EL_TRIA3, false, neighbors), 0);
    EXPECT_EQ(get_boundaries(tetrahedron, neighbors, EL_TRIA3, boundaries), 0);
    EXPECT_EQ(boundaries.rows, 2u);
    EXPECT_EQ(boundaries.cols, 0u);
    EXPECT_EQ(boundaries.size, 0u);
}

TEST(GetBoundaries, GivesTheSquareAroundTwoTriangles)
{
    const auto square = columns({{0, 1, 2}, {0, 2, 3}});
    dense2D<unsigned> neighbors, boundaries;
    ASSERT_EQ(get_neighbors(square, EL_TRIA3, false, neighbors), 0);
    EXPECT_EQ(get_boundaries(square, neighbors, EL_TRIA3, boundaries), 0);
    EXPECT_EQ(boundaries, columns({{1, 2}, {0, 1}, {2, 3}, {3, 0}}));
}

TEST(GetBoundaries, CountsTheMissingFourthFacesOfTrianglesAndLeavesTheirColumnsAtTheEnd)
{
    const auto mixed = columns({{0, 1, 2, N}, {0, 2, 3, 4}, {1, 5, 2, N}});
    const auto neighbors = columns({{2, 1, N, N}, {0, N, N, N}, {N, 0, N, N}});
    dense2D<unsigned> boundaries;
    EXPECT_EQ(get_boundaries(mixed, neighbors, EL_FACE_MIX, boundaries), 0);
    EXPECT_EQ(boundaries, columns({{0, 1}, {2, 3}, {3, 4}, {4, 0}, {5, 2}, {1, 5}, {N, N}, {N, N}}));
}

TEST(GetBoundaries, LooksOnlyWhetherThereIsANeighbour)
{
    dense2D<unsigned> boundaries;
    EXPECT_EQ(get_boundaries(columns({{4, 5, 6}}), columns({{12345, N, 0xFFFFFFFE}}), EL_TRIA3, boundaries), 0);
    EXPECT_EQ(boundaries, columns({{6, 4}}));
}

TEST(GetBoundaries, LeavesAnEarlierResultUntouchedWhenThereAreNoElements)
{
    for (const auto& empty : {dense2D<unsigned>(), dense2D<unsigned>(3, 0), dense2D<unsigned>(0, 3)}) {
        dense2D<unsigned> boundaries = before;
        EXPECT_EQ(get_boundaries(empty, columns({{1}}), EL_HEXA20, boundaries), 0);
        EXPECT_EQ(boundaries, before);
    }
}

namespace {

enum class output { untouched, emptied };

struct refusal {
    const char* name;
    int type;
    dense2D<unsigned> connect, neighbors;
    int code;
    output state;
};

class RefusedBoundaries : public testing::TestWithParam<refusal> {};

const dense2D<unsigned> none;

const std::vector<refusal> refusals{
    {"BadIndex", EL_TRIA3, columns({{0, 1, N}}), filled(3, 1, N), -1, output::untouched},
    {"BadIndexBeforeTheShapeOfNeighbors", EL_TRIA3, columns({{0, 1, N}}), none, -1, output::untouched},
    {"BadIndexBeforeTheType", EL_PYRAMID5, columns({{0, 1, N, 3, 4}}), none, -1, output::untouched},
    {"RowsOfAnotherKind", EL_TETRA4, filled(3, 1, 0u), filled(4, 1, N), -1, output::untouched},
    {"NoKind", EL_NONE, filled(1, 1, 0u), filled(1, 1, N), -1, output::untouched},
    {"EdgeMix", EL_EDGE_MIX, filled(2, 1, 0u), filled(2, 1, N), -1, output::untouched},
    {"BeyondTheEnumeration", 21, filled(2, 1, 0u), filled(2, 1, N), -1, output::untouched},
    {"BelowTheEnumeration", -1, filled(2, 1, 0u), filled(2, 1, N), -1, output::untouched},
    {"Node", EL_NODE, columns({{0}}), filled(1, 1, N), -2, output::untouched},
    {"SolidMix", EL_SOLID_MIX, columns({{0, 1, 2, 3}}), filled(4, 1, N), -2, output::untouched},
    {"Pyramid", EL_PYRAMID5, filled(5, 1, 0u), filled(5, 1, N), -2, output::untouched},
    {"PyramidOf14", EL_PYRAMID14, filled(14, 1, 0u), filled(5, 1, N), -2, output::untouched},
    {"Wedge", EL_WEDGE6, filled(6, 1, 0u), filled(5, 1, N), -2, output::untouched},
    {"WedgeOf18", EL_WEDGE18, filled(18, 1, 0u), filled(5, 1, N), -2, output::untouched},
    {"TypeBeforeTheShapeOfNeighbors", EL_WEDGE6, filled(6, 1, 0u), none, -2, output::untouched},
    {"HexahedronOf20", EL_HEXA20, filled(20, 1, 0u), filled(6, 1, N), -2, output::untouched},
    {"QuadraticLine", EL_EDGE3, filled(3, 1, 0u), filled(2, 1, N), -1, output::emptied},
    {"QuadraticTriangle", EL_TRIA6, filled(6, 1, 0u), filled(3, 1, N), -1, output::emptied},
    {"QuadrangleOf8", EL_QUAD8, filled(8, 1, 0u), filled(4, 1, N), -1, output::emptied},
    {"QuadrangleOf9", EL_QUAD9, filled(9, 1, 0u), filled(4, 1, N), -1, output::emptied},
    {"QuadraticTetrahedron", EL_TETRA10, filled(10, 1, 0u), filled(4, 1, N), -1, output::emptied},
    {"HexahedronOf27", EL_HEXA27, filled(27, 1, 0u), filled(6, 1, N), -1, output::emptied},
    {"MixOf3Rows", EL_FACE_MIX, columns({{0, 1, 2}}), filled(3, 1, N), -1, output::emptied},
    {"RowsBeforeTheShapeOfNeighbors", EL_TRIA6, filled(6, 1, 0u), none, -1, output::emptied},
    {"MoreNeighborsThanElements", EL_TRIA3, columns({{0, 1, 2}}), filled(3, 2, N), -2, output::emptied},
    {"NeighborsOfOtherRows", EL_TRIA3, columns({{0, 1, 2}}), filled(4, 1, N), -2, output::emptied},
    {"NoNeighbors", EL_TRIA3, columns({{0, 1, 2}}), none, -2, output::emptied},
    {"NeighborsOfAHexahedronWithTheRowsOfItsNodes", EL_HEXA8, filled(8, 1, 0u), filled(8, 1, N), -2, output::emptied},
};

}  // namespace

TEST_P(RefusedBoundaries, GiveTheirCodeAndLeaveTheOutputAsStated)
{
    const refusal& row = GetParam();
    dense2D<unsigned> boundaries = before;
    EXPECT_EQ(get_boundaries(row.connect, row.neighbors, static_cast<element_type>(row.type), boundaries), row.code);
    if (row.state == output::untouched) {
        EXPECT_EQ(boundaries, before);
    } else {
        EXPECT_EQ(boundaries.size, 0u);
        EXPECT_EQ(boundaries.rows, 0u);
        EXPECT_EQ(boundaries.cols, 0u);
    }
}

INSTANTIATE_TEST_SUITE_P(GetBoundaries, RefusedBoundaries, testing::ValuesIn(refusals),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(GetBoundaries, ReadsInputsAsTheyWereWhenTheOutputIsOneOfThem)
{
    const auto triangles = columns({{0, 1, 2}, {2, 1, 3}});
    const auto links = columns({{1, N, N}, {N, N, 0}});
    const auto expected = columns({{2, 0}, {0, 1}, {1, 3}, {3, 2}});

    dense2D<unsigned> connect = triangles;
    EXPECT_EQ(get_boundaries(connect, links, EL_TRIA3, connect), 0);
    EXPECT_EQ(connect, expected);

    dense2D<unsigned> neighbors = links;
    EXPECT_EQ(get_boundaries(triangles, neighbors, EL_TRIA3, neighbors), 0);
    EXPECT_EQ(neighbors, expected);

    dense2D<unsigned> all = columns({{N - 1, 0, 1}});
    EXPECT_EQ(get_boundaries(all, all, EL_TRIA3, all), 0);
    EXPECT_EQ(all.cols, 0u);
}

TEST(GetBoundaries, LeavesInputsAloneThatShareTheBufferOfTheOutput)
{
    const auto triangles = columns({{0, 1, 2}, {2, 1, 3}});
    dense2D<unsigned> connect = triangles;
    dense2D<unsigned> boundaries = connect.sub_matrix(0, 0, 3, 2);
    EXPECT_EQ(get_boundaries(connect, filled(3, 2, N), EL_TRIA3, boundaries), 0);
    EXPECT_EQ(boundaries.cols, 6u);
    EXPECT_EQ(connect, triangles);
    EXPECT_EQ(boundaries.buffer->ref_count, 1);
}

TEST(GetBoundaries, AgreesWithThePlainListOnRandomMeshesHoweverTheyAreStored)
{
    struct kind {
        element_type type;
        std::uint64_t rows, faces;
    };
    constexpr kind kinds[] = {{EL_EDGE2, 2, 2},    {EL_TRIA3, 3, 3},  {EL_QUAD4, 4, 4},
                              {EL_FACE_MIX, 4, 4}, {EL_TETRA4, 4, 4}, {EL_HEXA8, 8, 6}};
    dice random(21);
    for (int trial = 0; trial < 3000; ++trial) {
        const auto [type, rows, faces] = random.one_of(kinds);
        const auto connect = random_elements(random, type, rows, 1 + random.below(20), 1 + random.below(20));
        dense2D<unsigned> neighbors;
        if (random.one_in(2)) {
            ASSERT_EQ(get_neighbors(connect, type, random.one_in(2), neighbors), 0);
        } else {
            neighbors = random_elements(random, EL_NODE, faces, connect.cols, 5);
            for (std::uint64_t e = 0; e < connect.cols; ++e) neighbors(random.below(unsigned(faces)), e) = N;
        }
        const auto expected = slow::boundaries(connect, neighbors, type);
        const auto elements = storage_forms(connect, N);
        const auto links = storage_forms(neighbors, N);
        const std::size_t a = random.below(4), b = random.below(4);
        dense2D<unsigned> boundaries;
        ASSERT_EQ(get_boundaries(elements[a].matrix, links[b].matrix, type, boundaries), 0);
        ASSERT_EQ(boundaries, expected) << "trial " << trial << ": " << elements[a].name << ", " << links[b].name;
    }
}
