#include <gtest/gtest.h>

#include "support/matrices.h"

using namespace zeb::tessolv;
using test::columns;
using test::filled;
using test::indices;
using test::N;

namespace {

bool is_removed(const std::vector<unsigned>& nodes)
{
    auto connect = columns({nodes});
    dense1D<unsigned> new_IDs;
    const int removed = remove_degenerated(connect, new_IDs);
    EXPECT_EQ(connect.cols, removed == 0 ? 1u : 0u);
    EXPECT_EQ(connect.rows, nodes.size());
    EXPECT_EQ(new_IDs, indices({removed == 0 ? 0 : N}));
    return removed == 1;
}

TEST(RemoveDegenerated, RemovesATriangleThatUsesANodeTwice)
{
    EXPECT_TRUE(is_removed({5, 5, 7}));
    EXPECT_TRUE(is_removed({5, 7, 5}));
    EXPECT_TRUE(is_removed({7, 5, 5}));
    EXPECT_FALSE(is_removed({5, 6, 7}));
}

TEST(RemoveDegenerated, KeepsATriangleOfAMixedFaceMatrix)
{
    EXPECT_FALSE(is_removed({1, 2, 3, N}));
}

TEST(RemoveDegenerated, DoesNotMindThatNoneIndexRepeats)
{
    EXPECT_FALSE(is_removed({1, 2, 3, 4, N, N, N, N}));
    EXPECT_FALSE(is_removed({N, N, N}));
    EXPECT_TRUE(is_removed({N, 2, N, 2}));
    EXPECT_FALSE(is_removed({1, 2, 3, 4, 5, 6, 7, 8, 9, N, N, N}));
    EXPECT_TRUE(is_removed({1, 2, 3, 4, 5, 6, 7, 8, 1, N, N, N}));
}

TEST(RemoveDegenerated, LooksAtAllRowsWhateverTheirNumber)
{
    for (unsigned rows = 2; rows <= 40; ++rows) {
        for (unsigned i = 0; i < rows; ++i) {
            std::vector<unsigned> nodes(rows);
            for (unsigned k = 0; k < rows; ++k) nodes[k] = 3 * k;
            ASSERT_FALSE(is_removed(nodes)) << rows;
            nodes[i] = nodes[rows - 1 - i] = 500;
            ASSERT_EQ(is_removed(nodes), i != rows - 1 - i) << rows << " rows, " << i;
        }
    }
    EXPECT_FALSE(is_removed({7}));
    std::vector<unsigned> nodes(1000);
    for (unsigned k = 0; k < 1000; ++k) nodes[k] = 1000 - k;
    EXPECT_FALSE(is_removed(nodes));
    nodes[999] = 1000;
    EXPECT_TRUE(is_removed(nodes));
}

TEST(RemoveDegenerated, MovesTheOthersUpInOrderAndNumbersThem)
{
    auto connect = columns({{1, 1}, {1, 2}, {3, 3}, {4, 4}, {2, 1}, {5, 6}, {7, 7}});
    auto new_IDs = indices({9, 9});
    EXPECT_EQ(remove_degenerated(connect, new_IDs), 4);
    EXPECT_EQ(connect, columns({{1, 2}, {2, 1}, {5, 6}}));
    EXPECT_EQ(new_IDs, indices({N, 0, N, N, 1, 2, N}));
}

TEST(RemoveDegenerated, OfEmptyMatricesRemovesNothing)
{
    auto new_IDs = indices({9, 9});
    auto no_columns = filled(3, 0, 0u);
    EXPECT_EQ(remove_degenerated(no_columns, new_IDs), 0);
    EXPECT_EQ(no_columns.rows, 3u);
    EXPECT_EQ(new_IDs.size, 0u);
    auto no_rows = filled(0, 3, 0u);
    EXPECT_EQ(remove_degenerated(no_rows, new_IDs), 0);
    EXPECT_EQ(no_rows.cols, 3u);
    EXPECT_EQ(new_IDs, indices({0, 1, 2}));
    auto tall = filled(std::uint64_t{1} << 60, 0, 0u);
    EXPECT_EQ(remove_degenerated(tall, new_IDs), 0);
}

TEST(RemoveDegenerated, WritesThroughViewsAndLeavesTheirSurroundingsAlone)
{
    auto whole = columns({{8, 8, 8, 8}, {8, 1, 1, 8}, {8, 2, 3, 8}, {8, 4, 4, 8}, {8, 5, 6, 8}});
    auto view = whole.sub_matrix(1, 1, 2, 4);
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(remove_degenerated(view, new_IDs), 2);
    EXPECT_EQ(view, columns({{2, 3}, {5, 6}}));
    EXPECT_EQ(view.buffer, whole.buffer);
    EXPECT_EQ(whole.sub_matrix(0, 0, 4, 3), columns({{8, 8, 8, 8}, {8, 2, 3, 8}, {8, 5, 6, 8}}));
    for (unsigned j = 0; j < 5; ++j) EXPECT_EQ(whole(0, j) + whole(3, j), 16u);
}

TEST(RemoveDegenerated, MayPutTheNewNumbersWhereTheElementsAre)
{
    auto connect = columns({{1, 1}, {2, 3}});
    auto new_IDs = connect.col(0);
    EXPECT_EQ(remove_degenerated(connect, new_IDs), 1);
    EXPECT_EQ(connect, columns({{2, 3}}));
    EXPECT_EQ(new_IDs, indices({N, 0}));
}

}  // namespace
