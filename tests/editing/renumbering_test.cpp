#include <gtest/gtest.h>

#include "support/matrices.h"

using namespace zeb::tessolv;
using test::as_padded_view;
using test::columns;
using test::filled;
using test::indices;
using test::N;
using test::numbers;

namespace {

TEST(ChangeIndices, MapsIndicesOfTheTableAndLeavesOthers)
{
    auto ids = indices({2, 0, 3, N, 1, 4000000000});
    change_indices(ids, indices({7, N, 0}));
    EXPECT_EQ(ids, indices({0, 7, 3, N, N, 4000000000}));

    auto connect = columns({{2, 0}, {3, N}});
    change_indices(connect, indices({7, N, 0}));
    EXPECT_EQ(connect, columns({{0, 7}, {3, N}}));
}

TEST(ChangeIndices, WithAnEmptyTableLeavesEverythingUnchanged)
{
    auto ids = indices({2, 0});
    auto connect = columns({{2, 0}, {3, N}});
    change_indices(ids, dense1D<unsigned>());
    change_indices(connect, dense1D<unsigned>());
    EXPECT_EQ(ids, indices({2, 0}));
    EXPECT_EQ(connect, columns({{2, 0}, {3, N}}));
}

TEST(ChangeIndices, OfNothingDoesNothing)
{
    dense1D<unsigned> ids;
    auto no_columns = filled(3, 0, 0u);
    auto no_rows = filled(0, 3, 0u);
    change_indices(ids, indices({1}));
    change_indices(no_columns, indices({1}));
    change_indices(no_rows, indices({1}));
    EXPECT_TRUE(ids.empty());
    EXPECT_EQ(no_columns.rows, 3u);
    EXPECT_EQ(no_rows.cols, 3u);
}

TEST(ChangeIndices, WritesThroughViewsAndSharedBuffers)
{
    auto whole = columns({{0, 1, 0}, {1, 0, 1}, {0, 0, 0}});
    dense2D<unsigned> shared;
    shared.shallow_copy(whole);
    auto view = whole.sub_matrix(1, 0, 2, 2);
    change_indices(view, indices({8, 9}));
    EXPECT_EQ(whole, columns({{0, 9, 8}, {1, 8, 9}, {0, 0, 0}}));
    EXPECT_EQ(shared, whole);
    auto column = whole.col(2);
    change_indices(column, indices({5}));
    EXPECT_EQ(whole, columns({{0, 9, 8}, {1, 8, 9}, {5, 5, 5}}));
}

TEST(ChangeIndices, ReadsATableThatItWritesAsItWas)
{
    auto ids = indices({1, 2, 0});
    change_indices(ids, ids);
    EXPECT_EQ(ids, indices({2, 0, 1}));

    auto list = indices({3, 1, 2, 0});
    change_indices(list, list.sub_vector(1, 2));
    EXPECT_EQ(list, indices({3, 2, 2, 1}));

    auto connect = columns({{1, 2, 0}, {0, 1, 2}});
    change_indices(connect, connect.col(0));
    EXPECT_EQ(connect, columns({{2, 0, 1}, {1, 2, 0}}));
}

TEST(ChangeIndices, TakesATableBesideItInTheSameBuffer)
{
    auto list = indices({1, 0, 1, 6, 7});
    auto ids = list.sub_vector(0, 3);
    change_indices(ids, list.sub_vector(3, 2));
    EXPECT_EQ(list, indices({7, 6, 7, 6, 7}));
}

TEST(Permutation, MovesTheValueAtEachPositionToTheOneGiven)
{
    auto ids = indices({10, 20, 30});
    permutation(ids, indices({2, 0, 1}));
    EXPECT_EQ(ids, indices({20, 30, 10}));

    auto values = numbers({0.5, 1.5, -2.5});
    permutation(values, indices({2, 0, 1}));
    EXPECT_EQ(values, numbers({1.5, -2.5, 0.5}));
}

TEST(Permutation, ShorterThanTheValuesMovesTheFirstOnly)
{
    auto values = indices({10, 20, 30, 40});
    permutation(values, indices({3, 0}));
    EXPECT_EQ(values, indices({20, 20, 30, 10}));
}

TEST(Permutation, LongerThanTheValuesIsCutOff)
{
    auto values = indices({10, 20});
    permutation(values, indices({1, 0, 0, 1}));
    EXPECT_EQ(values, indices({20, 10}));
}

TEST(Permutation, OfSeveralEntriesForOnePositionTheLastWins)
{
    auto values = indices({10, 20, 30});
    permutation(values, indices({1, 2, 1}));
    EXPECT_EQ(values, indices({10, 30, 20}));
}

TEST(Permutation, AnEntryThatNamesItsOwnPositionNeverWrites)
{
    auto values = indices({10, 20});
    permutation(values, indices({1, 1}));
    EXPECT_EQ(values, indices({10, 10}));
}

TEST(Permutation, SkipsEntriesThatAreNoPosition)
{
    auto values = numbers({1, 2, 3});
    permutation(values, indices({N, 3, 0}));
    EXPECT_EQ(values, numbers({3, 2, 3}));
}

TEST(Permutation, OfNoValuesOrByNoEntriesChangesNothing)
{
    dense1D<unsigned> nothing;
    permutation(nothing, indices({0, 1}));
    EXPECT_TRUE(nothing.empty());
    auto values = numbers({1, 2});
    permutation(values, dense1D<unsigned>());
    EXPECT_EQ(values, numbers({1, 2}));
}

TEST(Permutation, GivesTheValuesABufferOfTheirOwn)
{
    auto whole = indices({1, 10, 20, 2});
    auto values = whole.sub_vector(1, 2);
    permutation(values, indices({1, 0}));
    EXPECT_EQ(values, indices({20, 10}));
    EXPECT_EQ(values.buffer->ref_count, 1);
    EXPECT_EQ(whole, indices({1, 10, 20, 2}));
}

TEST(Permutation, MayBeTheValuesThemselves)
{
    auto values = indices({1, 2, 0});
    permutation(values, values);
    EXPECT_EQ(values, indices({0, 1, 2}));
}

}  // namespace
