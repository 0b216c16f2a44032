#include <gtest/gtest.h>

#include "support/matrices.h"

using namespace zeb::tessolv;
using test::as_padded_view;
using test::columns;
using test::filled;
using test::indices;
using test::N;

namespace {

// What get_IDs says about two lists or two matrices.
struct answer {
    dense1D<unsigned> pos_in_1 = indices({77});
    dense1D<unsigned> pos_in_2 = indices({88, 99});
};

answer match(const dense1D<unsigned>& ids1, const dense1D<unsigned>& ids2)
{
    answer found;
    EXPECT_EQ(get_IDs(ids1, ids2, found.pos_in_1, found.pos_in_2), 0);
    return found;
}

answer match(const dense2D<unsigned>& connect1, const dense2D<unsigned>& connect2, bool strict)
{
    answer found;
    EXPECT_EQ(get_IDs(connect1, connect2, found.pos_in_1, found.pos_in_2, strict), 0);
    return found;
}

bool one_element_matches(const std::vector<unsigned>& a, const std::vector<unsigned>& b, bool strict)
{
    const auto found = match(columns({a}), columns({b}), strict);
    EXPECT_EQ(found.pos_in_1, found.pos_in_2);
    return found.pos_in_1 == indices({0});
}

TEST(GetIDsOfLists, FindsThePositionsInBothDirections)
{
    const auto found = match(indices({10, 30, 20}), indices({20, 5, 10, 40}));
    EXPECT_EQ(found.pos_in_1, indices({2, N, 0, N}));
    EXPECT_EQ(found.pos_in_2, indices({2, N, 0}));
}

TEST(GetIDsOfLists, ReportsTheLastPositionOfAValuePresentTwiceInTheFirst)
{
    const auto found = match(indices({7, 3, 7}), indices({7}));
    EXPECT_EQ(found.pos_in_1, indices({2}));
    EXPECT_EQ(found.pos_in_2, indices({N, N, 0}));
}

TEST(GetIDsOfLists, ReportsTheLastPositionOfAValuePresentTwiceInTheSecond)
{
    const auto found = match(indices({7, 3}), indices({7, 7, 8}));
    EXPECT_EQ(found.pos_in_1, indices({0, 0, N}));
    EXPECT_EQ(found.pos_in_2, indices({1, N}));
}

TEST(GetIDsOfLists, NeverMatchesNoneIndex)
{
    const auto found = match(indices({N, 1, N}), indices({N, N - 1, 1}));
    EXPECT_EQ(found.pos_in_1, indices({N, N, 1}));
    EXPECT_EQ(found.pos_in_2, indices({N, 2, N}));
}

TEST(GetIDsOfLists, SizesAndFillsTheOutputsOfEmptyLists)
{
    const auto no_second = match(indices({1, 2}), dense1D<unsigned>());
    EXPECT_TRUE(no_second.pos_in_1.empty());
    EXPECT_EQ(no_second.pos_in_2, indices({N, N}));
    const auto no_first = match(dense1D<unsigned>(), indices({1, 2, 3}));
    EXPECT_EQ(no_first.pos_in_1, indices({N, N, N}));
    EXPECT_TRUE(no_first.pos_in_2.empty());
}

TEST(GetIDsOfLists, MayWriteOverItsInputs)
{
    auto ids1 = indices({10, 30, 20});
    auto ids2 = indices({20, 5});
    EXPECT_EQ(get_IDs(ids1, ids2, ids1, ids2), 0);
    EXPECT_EQ(ids1, indices({2, N}));
    EXPECT_EQ(ids2, indices({N, N, 0}));

    auto whole = indices({4, 5, 6, 7});
    auto view = whole.sub_vector(1, 2);
    dense1D<unsigned> other;
    EXPECT_EQ(get_IDs(whole, indices({6}), view, other), 0);
    EXPECT_EQ(view, indices({2}));
    EXPECT_EQ(whole, indices({4, 5, 6, 7}));
}

TEST(GetIDsOfElements, StrictTakesColumnsAsTheyStand)
{
    EXPECT_TRUE(one_element_matches({1, 2, 3}, {1, 2, 3}, true));
    EXPECT_FALSE(one_element_matches({1, 2, 3}, {2, 3, 1}, true));
    EXPECT_FALSE(one_element_matches({1, 2, 3}, {3, 2, 1}, true));
}

TEST(GetIDsOfElements, NotStrictTakesRotationsInEitherDirection)
{
    EXPECT_TRUE(one_element_matches({1, 2, 3}, {1, 2, 3}, false));
    EXPECT_TRUE(one_element_matches({1, 2, 3}, {2, 3, 1}, false));
    EXPECT_TRUE(one_element_matches({1, 2, 3}, {3, 2, 1}, false));
    EXPECT_TRUE(one_element_matches({1, 2, 3, 4}, {2, 1, 4, 3}, false));
    EXPECT_FALSE(one_element_matches({1, 2, 3, 4}, {1, 3, 2, 4}, false));
    EXPECT_FALSE(one_element_matches({1, 1, 4, 4}, {1, 2, 3, 4}, false));
}

TEST(GetIDsOfElements, NotStrictSeesThroughARepeatedLargestEntry)
{
    EXPECT_TRUE(one_element_matches({5, 5, 1, 2}, {5, 1, 2, 5}, false));
    EXPECT_TRUE(one_element_matches({5, 1, 5, 2}, {5, 2, 5, 1}, false));
    EXPECT_TRUE(one_element_matches({5, 1, 5, 2, 5, 3}, {5, 3, 5, 2, 5, 1}, false));
    EXPECT_FALSE(one_element_matches({5, 5, 1, 2}, {5, 1, 5, 2}, false));
    EXPECT_TRUE(one_element_matches({1, 2, 3, N}, {2, 1, N, 3}, false));
}

TEST(GetIDsOfElements, OfOneRowAreComparedAsTheyAre)
{
    const auto found = match(columns({{4}, {9}}), columns({{9}, {N}}), false);
    EXPECT_EQ(found.pos_in_1, indices({1, N}));
    EXPECT_EQ(found.pos_in_2, indices({N, 0}));
}

TEST(GetIDsOfElements, OfSeveralThatMatchReportsTheLastAndMarksThemAll)
{
    const auto found = match(columns({{1, 2}, {3, 4}, {2, 1}, {1, 2}}), columns({{2, 1}, {7, 8}, {1, 2}}), false);
    EXPECT_EQ(found.pos_in_1, indices({3, N, 3}));
    EXPECT_EQ(found.pos_in_2, indices({2, N, 2, 2}));
    const auto strict = match(columns({{1, 2}, {3, 4}, {2, 1}, {1, 2}}), columns({{2, 1}, {7, 8}, {1, 2}}), true);
    EXPECT_EQ(strict.pos_in_1, indices({2, N, 3}));
    EXPECT_EQ(strict.pos_in_2, indices({2, N, 0, 2}));
}

TEST(GetIDsOfElements, RefusesDifferentRowsAndEmptiesTheOutputs)
{
    for (const bool strict : {true, false}) {
        for (const auto& other : {columns({{1, 2}}), dense2D<unsigned>(), filled(2, 0, 0u), filled(0, 2, 0u)}) {
            answer found;
            EXPECT_EQ(get_IDs(columns({{1, 2, 3}}), other, found.pos_in_1, found.pos_in_2, strict), -2);
            EXPECT_EQ(found.pos_in_1.size, 0u);
            EXPECT_EQ(found.pos_in_2.size, 0u);
        }
    }
}

TEST(GetIDsOfElements, WithoutColumnsMatchesNothing)
{
    for (const bool strict : {true, false}) {
        const auto found = match(filled(3, 0, 0u), columns({{1, 2, 3}, {4, 5, 6}}), strict);
        EXPECT_EQ(found.pos_in_1, indices({N, N}));
        EXPECT_TRUE(found.pos_in_2.empty());
        const auto nothing = match(dense2D<unsigned>(), dense2D<unsigned>(), strict);
        EXPECT_TRUE(nothing.pos_in_1.empty());
        EXPECT_TRUE(nothing.pos_in_2.empty());
    }
}

TEST(GetIDsOfElements, WithoutRowsAllMatch)
{
    for (const bool strict : {true, false}) {
        const auto found = match(filled(0, 2, 0u), filled(0, 3, 0u), strict);
        EXPECT_EQ(found.pos_in_1, indices({1, 1, 1}));
        EXPECT_EQ(found.pos_in_2, indices({2, 2}));
    }
}

TEST(GetIDsOfElements, ReadsViewsAndLeavesThemAlone)
{
    const auto connect1 = as_padded_view(columns({{1, 2, 3}, {4, 5, 6}}), 1u);
    const auto connect2 = as_padded_view(columns({{6, 5, 4}}), 2u);
    const auto found = match(connect1, connect2, false);
    EXPECT_EQ(found.pos_in_1, indices({1}));
    EXPECT_EQ(found.pos_in_2, indices({N, 0}));
    EXPECT_EQ(connect1, columns({{1, 2, 3}, {4, 5, 6}}));
}

TEST(GetIDsOfElements, MayWriteIntoAViewOfAnInput)
{
    auto connect = columns({{1, 2, 3}, {4, 5, 6}});
    auto column = connect.col(0);
    dense1D<unsigned> other;
    EXPECT_EQ(get_IDs(connect, connect, column, other, true), 0);
    EXPECT_EQ(column, indices({0, 1}));
    EXPECT_EQ(connect, columns({{1, 2, 3}, {4, 5, 6}}));
}

// Quadratic time in these columns would be hours.
TEST(GetIDsOfElements, OfOneSumCostNoMoreThanOthers)
{
    const unsigned count = 300000;
    dense2D<unsigned> connect1(3, count), connect2(3, count);
    for (unsigned j = 0; j < count; ++j) {
        const unsigned nodes[] = {j, 2 * count - j, 5 * count};
        for (unsigned i = 0; i < 3; ++i) {
            connect1(i, j) = nodes[i];
            connect2(2 - i, count - 1 - j) = nodes[i];
        }
    }
    const auto found = match(connect1, connect2, false);
    for (unsigned j = 0; j < count; ++j) ASSERT_EQ(found.pos_in_1[j], count - 1 - j);
    EXPECT_EQ(found.pos_in_2, found.pos_in_1);
}

TEST(GetIDsOfElements, TheSameColumnManyTimesCostsNoMoreThanOthers)
{
    const unsigned count = 300000;
    const auto found = match(filled(4, count, 7u), filled(4, count, 7u), false);
    EXPECT_EQ(found.pos_in_1, dense1D<unsigned>(count, count - 1));
    EXPECT_EQ(found.pos_in_2, dense1D<unsigned>(count, count - 1));
}

// A rotation found by trial would be quadratic in the rows.
TEST(GetIDsOfElements, MayHaveManyRows)
{
    const std::uint64_t rows = 400000;
    auto a = filled(rows, 1, 3u);
    auto b = filled(rows, 1, 3u);
    a(0, 0) = 4;
    b(rows / 2, 0) = 4;
    EXPECT_EQ(match(a, b, false).pos_in_1, indices({0}));
    b(rows / 2 + 1, 0) = 5;
    a(rows - 1, 0) = 5;
    EXPECT_EQ(match(a, b, false).pos_in_1, indices({0}));
    a(rows - 2, 0) = 5;
    EXPECT_EQ(match(a, b, false).pos_in_1, indices({N}));
}

}  // namespace
