#include <gtest/gtest.h>

#include "support/matrices.h"

using namespace zeb::tessolv;
using test::as_padded_view;
using test::columns;
using test::filled;
using test::indices;
using test::N;

namespace {

TEST(UniqueIndices, ComeInTheOrderOfTheirFirstAppearanceWithoutNoneIndex)
{
    dense1D<unsigned> out;
    EXPECT_EQ(unique_indices(out, columns({{5, 2, 5}, {2, N, 7}})), 0);
    EXPECT_EQ(out, indices({5, 2, 7}));
}

TEST(UniqueIndices, CalledTwiceAppendsTheValuesTwice)
{
    const auto connect = columns({{5, 2, 5}, {2, N, 7}});
    dense1D<unsigned> out;
    ASSERT_EQ(unique_indices(out, connect), 0);
    ASSERT_EQ(unique_indices(out, connect), 0);
    EXPECT_EQ(out, indices({5, 2, 7, 5, 2, 7}));
}

TEST(UniqueIndices, OfARangeAreWalkedMatrixAfterMatrix)
{
    const dense2D<unsigned> matrices[] = {columns({{3, 1}}), filled(3, 0, 0u), filled(0, 4, 0u),
                                          columns({{1, 0, 3}, {9, 3, 8}})};
    auto out = indices({1});
    EXPECT_EQ(unique_indices(out, matrices, matrices + 4), 0);
    EXPECT_EQ(out, indices({1, 3, 1, 0, 9, 8}));
}

TEST(UniqueIndices, OfAnEmptyRangeOrMatrixAreNone)
{
    auto out = indices({4});
    const dense2D<unsigned>* null = nullptr;
    const auto connect = columns({{1}});
    EXPECT_EQ(unique_indices(out, null, null), 0);
    EXPECT_EQ(unique_indices(out, &connect, &connect), 0);
    EXPECT_EQ(unique_indices(out, dense2D<unsigned>()), 0);
    EXPECT_EQ(unique_indices(out, filled(3, 0, 0u)), 0);
    EXPECT_EQ(unique_indices(out, filled(0, 3, 0u)), 0);
    EXPECT_EQ(out, indices({4}));
}

TEST(UniqueIndices, RefuseARangeThatEndsBeforeItBegins)
{
    const dense2D<unsigned> matrices[] = {columns({{1}}), columns({{2}})};
    auto out = indices({4});
    EXPECT_EQ(unique_indices(out, matrices + 1, matrices), -3);
    EXPECT_EQ(out, indices({4}));
}

TEST(UniqueIndices, OfAViewLeaveOutWhatSurroundsIt)
{
    dense1D<unsigned> out;
    EXPECT_EQ(unique_indices(out, as_padded_view(columns({{5, 2, 5}, {2, N, 7}}), 99u)), 0);
    EXPECT_EQ(out, indices({5, 2, 7}));
}

TEST(UniqueIndices, ReachUpToTheLastIndexBelowNoneIndex)
{
    dense1D<unsigned> out;
    EXPECT_EQ(unique_indices(out, columns({{N - 1, 0, N}, {N - 2, N - 1, 0}})), 0);
    EXPECT_EQ(out, indices({N - 1, 0, N - 2}));
}

TEST(UniqueIndices, OfAListLeaveOutTheExcludedOnes)
{
    auto out = indices({6});
    EXPECT_EQ(unique_indices(out, indices({4, 6, 4, N, 1, 4000000000, 2}), indices({1, N, 1, 77, 4000000000})), 0);
    EXPECT_EQ(out, indices({6, 4, 6, 2}));
}

TEST(UniqueIndices, OfAListMayExcludeAll)
{
    dense1D<unsigned> out;
    const auto list = indices({4, 1, 4});
    EXPECT_EQ(unique_indices(out, list, list), 0);
    EXPECT_TRUE(out.empty());
    EXPECT_EQ(unique_indices(out, indices({N, N}), list), 0);
    EXPECT_EQ(unique_indices(out, dense1D<unsigned>(), list), 0);
    EXPECT_TRUE(out.empty());
}

TEST(UniqueIndices, MayBeAppendedToTheListTheyComeFrom)
{
    auto list = indices({4, 1, 4});
    EXPECT_EQ(unique_indices(list, list), 0);
    EXPECT_EQ(list, indices({4, 1, 4, 4, 1}));
    auto exclude = indices({1});
    EXPECT_EQ(unique_indices(exclude, list, exclude), 0);
    EXPECT_EQ(exclude, indices({1, 4}));
}

TEST(UniqueIndices, AppendedToAViewLeaveTheEntriesBehindItAlone)
{
    auto connect = columns({{5, 2}, {2, 7}});
    auto first_column = connect.col(0);
    EXPECT_EQ(unique_indices(first_column, connect), 0);
    EXPECT_EQ(first_column, indices({5, 2, 5, 2, 7}));
    EXPECT_EQ(connect, columns({{5, 2}, {2, 7}}));

    auto list = indices({1, 2, 3, 4});
    auto head = list.sub_vector(0, 2);
    EXPECT_EQ(unique_indices(head, list), 0);
    EXPECT_EQ(head, indices({1, 2, 1, 2, 3, 4}));
    EXPECT_EQ(list, indices({1, 2, 3, 4}));
}

TEST(UniqueIndices, UseRoomThatTheCallerHasReserved)
{
    dense1D<unsigned> out;
    ASSERT_TRUE(out.reserve(100));
    const unsigned* block = out.data();
    EXPECT_EQ(unique_indices(out, columns({{1, 2}, {3, 4}})), 0);
    EXPECT_EQ(out.data(), block);
    EXPECT_EQ(out, indices({1, 2, 3, 4}));
}

TEST(CountUniqueIndices, DoesNotCountNoneIndex)
{
    EXPECT_EQ(count_unique_indices(columns({{N, N}, {N, N}})), 0);
    EXPECT_EQ(count_unique_indices(columns({{5, 2, 5}, {2, N, 7}})), 3);
    EXPECT_EQ(count_unique_indices(columns({{N - 1, 0}})), 2);
    EXPECT_EQ(count_unique_indices(as_padded_view(columns({{5, 2, 5}, {2, N, 7}}), 99u)), 3);
}

TEST(CountUniqueIndices, CountsOverARangeOnce)
{
    const dense2D<unsigned> matrices[] = {columns({{3, 1}}), dense2D<unsigned>(), columns({{1, 0, 3}, {9, 3, 8}})};
    EXPECT_EQ(count_unique_indices(matrices, matrices + 3), 5);
    EXPECT_EQ(count_unique_indices(matrices, matrices), 0);
}

TEST(CountUniqueIndices, OfNothingIsZero)
{
    const dense2D<unsigned>* null = nullptr;
    EXPECT_EQ(count_unique_indices(null, null), 0);
    EXPECT_EQ(count_unique_indices(filled(0, 3, 0u)), 0);
    EXPECT_EQ(count_unique_indices(filled(3, 0, 0u)), 0);
}

TEST(CountUniqueIndices, RefusesAReversedRangeWithItsOwnCode)
{
    const dense2D<unsigned> matrices[] = {columns({{1}}), columns({{2}})};
    EXPECT_EQ(count_unique_indices(matrices + 2, matrices), -2);
}

}  // namespace
