#include <gtest/gtest.h>

#include "support/matrices.h"

using namespace zeb::tessolv;
using test::as_padded_view;
using test::columns;
using test::filled;
using test::indices;
using test::N;
using test::points;

namespace {

// Nodes 0 .. n-1 in a row; the first coordinate is the old number.
dense2D<double> nodes_in_a_row(unsigned n)
{
    dense2D<double> pos(3, n, 0.5);
    for (unsigned j = 0; j < n; ++j) pos(0, j) = j;
    return pos;
}

TEST(Simplify, KeepsTheUsedNodesInTheOrderOfTheirFirstUse)
{
    auto pos = nodes_in_a_row(5);
    auto connect = columns({{4, 2, 3}});
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(simplify(pos, connect, new_IDs), 3);
    EXPECT_EQ(new_IDs, indices({N, N, 1, 2, 0}));
    EXPECT_EQ(connect, columns({{0, 1, 2}}));
    EXPECT_EQ(pos, points({{4, 0.5, 0.5}, {2, 0.5, 0.5}, {3, 0.5, 0.5}}));
}

TEST(Simplify, ChangesNothingWhenEveryNodeIsUsedEvenOutOfOrder)
{
    auto pos = nodes_in_a_row(3);
    const auto* block = pos.buffer->data;
    auto connect = columns({{2, 1, 0}});
    auto new_IDs = indices({7});
    EXPECT_EQ(simplify(pos, connect, new_IDs), 0);
    EXPECT_EQ(new_IDs, indices({0, 1, 2}));
    EXPECT_EQ(connect, columns({{2, 1, 0}}));
    EXPECT_EQ(pos, nodes_in_a_row(3));
    EXPECT_EQ(pos.buffer->data, block);
}

TEST(Simplify, LeavesNoNodeWhenNoneIsUsed)
{
    for (auto connect : {columns({{N, N}}), filled(3, 0, 0u), filled(0, 3, 0u), dense2D<unsigned>()}) {
        auto pos = nodes_in_a_row(2);
        const auto before = connect;
        dense1D<unsigned> new_IDs;
        EXPECT_EQ(simplify(pos, connect, new_IDs), 0);
        EXPECT_EQ(new_IDs, indices({N, N}));
        EXPECT_EQ(pos.rows, 3u);
        EXPECT_EQ(pos.cols, 0u);
        EXPECT_EQ(pos.size, 0u);
        EXPECT_EQ(connect, before);
    }
}

TEST(Simplify, OfNoNodesHasNothingToDo)
{
    for (auto pos : {dense2D<double>(), filled(3, 0, 0.0)}) {
        auto connect = columns({{N, N}});
        auto new_IDs = indices({7});
        EXPECT_EQ(simplify(pos, connect, new_IDs), 0);
        EXPECT_EQ(new_IDs.size, 0u);
    }
}

TEST(Simplify, RenumbersEveryMatrixOfARange)
{
    auto pos = nodes_in_a_row(7);
    dense2D<unsigned> meshes[] = {columns({{6, 1, N}}), dense2D<unsigned>(), columns({{3, 6}, {1, 5}})};
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(simplify(pos, meshes, meshes + 3, new_IDs), 4);
    EXPECT_EQ(new_IDs, indices({N, 1, N, 2, N, 3, 0}));
    EXPECT_EQ(meshes[0], columns({{0, 1, N}}));
    EXPECT_EQ(meshes[2], columns({{2, 0}, {1, 3}}));
    EXPECT_EQ(pos.cols, 4u);
    EXPECT_EQ(pos(0, 3), 5.0);
}

TEST(Simplify, GivesTheSameWithoutTheNewNumbers)
{
    auto pos = nodes_in_a_row(5);
    auto connect = columns({{4, 2, 3}});
    EXPECT_EQ(simplify(pos, connect), 3);
    EXPECT_EQ(connect, columns({{0, 1, 2}}));
    auto more = nodes_in_a_row(5);
    dense2D<unsigned> meshes[] = {columns({{4, 2}}), columns({{2, 3}})};
    EXPECT_EQ(simplify(more, meshes, meshes + 2), 3);
    EXPECT_EQ(meshes[1], columns({{1, 2}}));
    EXPECT_EQ(simplify(more, meshes + 2, meshes), -3);
    auto bad = columns({{4}});
    EXPECT_EQ(simplify(more, bad), -2);
}

TEST(Simplify, OfAnEmptyRangeOnlyEmptiesTheNewNumbers)
{
    auto pos = nodes_in_a_row(2);
    auto new_IDs = indices({7});
    dense2D<unsigned>* null = nullptr;
    EXPECT_EQ(simplify(pos, null, null, new_IDs), 0);
    EXPECT_EQ(new_IDs.size, 0u);
    EXPECT_EQ(pos, nodes_in_a_row(2));
}

TEST(Simplify, ChecksTheRangeThenTheIndices)
{
    auto pos = nodes_in_a_row(3);
    dense2D<unsigned> meshes[] = {columns({{0, 1}}), columns({{2, 3}})};
    auto new_IDs = indices({7});
    EXPECT_EQ(simplify(pos, meshes + 2, meshes, new_IDs), -3);
    EXPECT_EQ(new_IDs.size, 0u);
    new_IDs = indices({7});
    EXPECT_EQ(simplify(pos, meshes, meshes + 2, new_IDs), -2);
    EXPECT_EQ(new_IDs.size, 0u);
    auto largest = columns({{N - 1}});
    EXPECT_EQ(simplify(pos, largest, new_IDs), -2);
    EXPECT_EQ(pos, nodes_in_a_row(3));
    EXPECT_EQ(meshes[0], columns({{0, 1}}));
    EXPECT_EQ(meshes[1], columns({{2, 3}}));
}

TEST(Simplify, WritesConnectivitiesThroughViewsAndGivesCoordinatesANewBuffer)
{
    auto whole = columns({{9, 4, 2, 9}, {9, 2, 1, 9}});
    dense2D<unsigned> shared;
    shared.shallow_copy(whole);
    auto view = whole.sub_matrix(1, 0, 2, 2);
    auto pos = nodes_in_a_row(6);
    const auto old_nodes = pos.sub_matrix(0, 0, 3, 6);
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(simplify(pos, view, new_IDs), 3);
    EXPECT_EQ(whole, columns({{9, 0, 1, 9}, {9, 1, 2, 9}}));
    EXPECT_EQ(shared, whole);
    EXPECT_EQ(old_nodes, nodes_in_a_row(6));
    EXPECT_EQ(pos.buffer->ref_count, 1);
    EXPECT_EQ(new_IDs.buffer->ref_count, 1);
}

TEST(Simplify, RenumbersEntriesThatSeveralMatricesShareOnce)
{
    auto pos = nodes_in_a_row(6);
    dense2D<unsigned> meshes[4];
    meshes[0] = columns({{5, 3}, {3, 1}, {1, 5}});
    meshes[1].shallow_copy(meshes[0]);
    meshes[2].shallow_copy(meshes[0].sub_matrix(0, 1, 2, 2));
    meshes[3] = columns({{2}});
    EXPECT_EQ(simplify(pos, meshes, meshes + 4), 4);
    EXPECT_EQ(meshes[0], columns({{0, 1}, {1, 2}, {2, 0}}));
    EXPECT_EQ(meshes[1], meshes[0]);
    EXPECT_EQ(meshes[2], columns({{1, 2}, {2, 0}}));
    EXPECT_EQ(meshes[3], columns({{3}}));
}

TEST(Simplify, RenumbersOverlappingViewsOfOneMatrixOnce)
{
    auto pos = nodes_in_a_row(6);
    auto whole = columns({{5, 3}, {3, 1}, {1, 2}});
    dense2D<unsigned> meshes[2];
    meshes[0].shallow_copy(whole.sub_matrix(0, 0, 2, 2));
    meshes[1].shallow_copy(whole.sub_matrix(0, 1, 2, 2));
    EXPECT_EQ(simplify(pos, meshes, meshes + 2), 4);
    EXPECT_EQ(whole, columns({{0, 1}, {1, 2}, {2, 3}}));
}

TEST(Simplify, RenumbersInterleavedViewsOfOneMatrix)
{
    auto pos = nodes_in_a_row(6);
    auto whole = columns({{5, 3, 1}, {3, 2, 5}});
    dense2D<unsigned> meshes[2];
    meshes[0].shallow_copy(whole.sub_matrix(2, 0, 1, 2));
    meshes[1].shallow_copy(whole.sub_matrix(0, 0, 2, 2));
    EXPECT_EQ(simplify(pos, meshes, meshes + 2), 4);
    EXPECT_EQ(whole, columns({{1, 2, 0}, {2, 3, 1}}));
}

TEST(Simplify, MayPutTheNewNumbersWhereTheElementsAre)
{
    auto pos = nodes_in_a_row(6);
    auto connect = columns({{5, 3}, {3, 1}});
    auto new_IDs = connect.col(0);
    EXPECT_EQ(simplify(pos, connect, new_IDs), 3);
    EXPECT_EQ(connect, columns({{0, 1}, {1, 2}}));
    EXPECT_EQ(new_IDs, indices({N, 2, N, 1, N, 0}));
}

TEST(Simplify, TakesCoordinatesOfAnyRowsAndPadding)
{
    auto pos = as_padded_view(points({{0}, {1}, {2}}), 9.0);
    auto connect = columns({{2, 0}});
    EXPECT_EQ(simplify(pos, connect), 2);
    EXPECT_EQ(pos, points({{2}, {0}}));
    auto no_rows = filled(0, 4, 0.0);
    connect = columns({{3, 1}});
    EXPECT_EQ(simplify(no_rows, connect), 2);
    EXPECT_EQ(no_rows.rows, 0u);
    EXPECT_EQ(no_rows.cols, 2u);
    EXPECT_EQ(connect, columns({{0, 1}}));
}

TEST(CopyMesh, AppendsTheUsedNodesAndPutsTheElementsOnThem)
{
    auto pos = nodes_in_a_row(20);
    dense2D<unsigned> connect;
    EXPECT_EQ(copy_mesh(pos, connect, columns({{10, 12}})), 0);
    EXPECT_EQ(pos.cols, 22u);
    EXPECT_EQ(connect, columns({{20, 21}}));
    EXPECT_EQ(pos(0, 20), 10.0);
    EXPECT_EQ(pos(0, 21), 12.0);
    EXPECT_EQ(pos.sub_matrix(0, 0, 3, 20), nodes_in_a_row(20));
}

TEST(CopyMesh, NumbersTheNewNodesInTheOrderOfTheirFirstUse)
{
    auto pos = nodes_in_a_row(5);
    auto connect = columns({{1, 1, 1, 1}});
    EXPECT_EQ(copy_mesh(pos, connect, columns({{4, 2, 4}, {N, 2, 0}})), 0);
    EXPECT_EQ(connect, columns({{5, 6, 5}, {N, 6, 7}}));
    EXPECT_EQ(pos(0, 5), 4.0);
    EXPECT_EQ(pos(0, 6), 2.0);
    EXPECT_EQ(pos(0, 7), 0.0);
}

TEST(CopyMesh, KeepsTheOrderOfTheNodesWhenAllAreUsed)
{
    auto pos = nodes_in_a_row(3);
    dense2D<unsigned> connect;
    EXPECT_EQ(copy_mesh(pos, connect, columns({{2, 0, 1}})), 0);
    EXPECT_EQ(connect, columns({{5, 3, 4}}));
    EXPECT_EQ(pos.cols, 6u);
    EXPECT_EQ(pos.sub_matrix(0, 3, 3, 3), nodes_in_a_row(3));
}

TEST(CopyMesh, OfNoElementsAddsNoNodes)
{
    auto pos = nodes_in_a_row(3);
    auto connect = columns({{1}});
    EXPECT_EQ(copy_mesh(pos, connect, filled(4, 0, 0u)), 0);
    EXPECT_EQ(pos, nodes_in_a_row(3));
    EXPECT_EQ(connect.rows, 4u);
    EXPECT_EQ(connect.cols, 0u);
    dense2D<double> nothing;
    EXPECT_EQ(copy_mesh(nothing, connect, columns({{N}})), 0);
    EXPECT_EQ(connect, columns({{N}}));
    EXPECT_EQ(nothing.cols, 0u);
}

TEST(CopyMesh, RefusesAnIndexBeyondTheNodesAndTouchesNothing)
{
    auto pos = nodes_in_a_row(3);
    auto connect = columns({{1, 1}});
    EXPECT_EQ(copy_mesh(pos, connect, columns({{0, 3}})), -3);
    EXPECT_EQ(connect, columns({{1, 1}}));
    EXPECT_EQ(pos, nodes_in_a_row(3));
}

TEST(CopyMesh, MayReplaceTheElementsThatItCopies)
{
    auto pos = nodes_in_a_row(4);
    auto connect = columns({{3, 1}});
    dense2D<unsigned> shared;
    shared.shallow_copy(connect);
    EXPECT_EQ(copy_mesh(pos, connect, connect), 0);
    EXPECT_EQ(connect, columns({{4, 5}}));
    EXPECT_EQ(shared, columns({{3, 1}}));
    EXPECT_EQ(connect.buffer->ref_count, 1);
}

TEST(CopyMesh, ReadsViewsAndLeavesTheirSurroundingsAlone)
{
    auto whole = nodes_in_a_row(6);
    auto pos = whole.sub_matrix(0, 1, 2, 3);
    dense2D<unsigned> connect;
    EXPECT_EQ(copy_mesh(pos, connect, as_padded_view(columns({{2, 0}}), 1u)), 0);
    EXPECT_EQ(pos, points({{1, 0.5}, {2, 0.5}, {3, 0.5}, {3, 0.5}, {1, 0.5}}));
    EXPECT_EQ(connect, columns({{3, 4}}));
    EXPECT_EQ(whole, nodes_in_a_row(6));
}

}  // namespace
