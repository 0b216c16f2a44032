#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <utility>

#include "support/matrices.h"

using namespace zeb::tessolv;
using test::columns;
using test::indices;

namespace {

constexpr std::uint64_t huge = std::numeric_limits<std::uint64_t>::max();

TEST(Dense2D, HasItsFieldsInTheOrderOfTheInterface)
{
    using matrix = dense2D<double>;
    EXPECT_EQ(offsetof(matrix, buffer), 0u);
    EXPECT_EQ(offsetof(matrix, size), 8u);
    EXPECT_EQ(offsetof(matrix, offset), 16u);
    EXPECT_EQ(offsetof(matrix, rows), 24u);
    EXPECT_EQ(offsetof(matrix, cols), 32u);
    EXPECT_EQ(offsetof(matrix, ld), 40u);
    EXPECT_EQ(sizeof(matrix), 48u);
}

TEST(Dense2D, RowsWithoutColumnsAndColumnsWithoutRowsAreEmpty)
{
    dense2D<unsigned> m;
    ASSERT_TRUE(m.resize(3, 0));
    EXPECT_TRUE(m.empty());
    EXPECT_EQ(m.rows, 3u);
    ASSERT_TRUE(m.resize(0, 5));
    EXPECT_TRUE(m.empty());
    EXPECT_EQ(m.cols, 5u);
    EXPECT_EQ(m.size, 0u);
    EXPECT_GE(m.ld, m.rows);
}

TEST(Dense2D, IsStoredColumnByColumn)
{
    const auto m = columns({{1, 2}, {3, 4}, {5, 6}});
    EXPECT_EQ(m.rows, 2u);
    EXPECT_EQ(m.cols, 3u);
    EXPECT_EQ(m.size, 6u);
    EXPECT_EQ(m.ld, 2u);
    for (unsigned k = 0; k < 6; ++k) EXPECT_EQ(m.buffer->data[k], k + 1);
}

TEST(Dense2D, AColumnSeesWritesMadeThroughTheMatrixAndTheReverse)
{
    auto m = columns({{1, 2}, {3, 4}});
    auto c = m.col(1);
    c[0] = 30;
    m(1, 1) = 40;
    EXPECT_EQ(m, columns({{1, 2}, {30, 40}}));
    EXPECT_EQ(c, indices({30, 40}));
    EXPECT_EQ(c.offset, 2u);
}

TEST(Dense2D, ConstantMatricesHaveViewsToo)
{
    const auto m = columns({{1, 2, 3}, {4, 5, 6}});
    EXPECT_EQ(m.col(1), indices({4, 5, 6}));
    const auto block = m.sub_matrix(1, 0, 2, 2);
    EXPECT_EQ(block, columns({{2, 3}, {5, 6}}));
    EXPECT_EQ(block.ld, 3u);
    EXPECT_EQ(block.size, 4u);
    EXPECT_EQ(block.offset, 1u);
}

TEST(Dense2D, ResizeKeepsTheCommonBlockAndFillsTheRest)
{
    auto m = columns({{1, 2}, {3, 4}});
    ASSERT_TRUE(m.resize(3, 3, 9u));
    EXPECT_EQ(m, columns({{1, 2, 9}, {3, 4, 9}, {9, 9, 9}}));
    ASSERT_TRUE(m.resize(2, 4, 7u));
    EXPECT_EQ(m, columns({{1, 2}, {3, 4}, {9, 9}, {7, 7}}));
    ASSERT_TRUE(m.resize(4, 1, 5u));
    EXPECT_EQ(m, columns({{1, 2, 5, 5}}));
}

TEST(Dense2D, AMatrixThatLosesRowsInPlaceKeepsItsLeadingDimension)
{
    auto m = columns({{1, 2, 3}, {4, 5, 6}});
    const auto* block = m.buffer->data;
    ASSERT_TRUE(m.resize(2, 2));
    EXPECT_EQ(m.ld, 3u);
    EXPECT_EQ(m.buffer->data, block);
    EXPECT_EQ(m, columns({{1, 2}, {4, 5}}));
}

TEST(Dense2D, TheSameShapeOrFewerColumnsChangeTheFieldsOnly)
{
    auto m = columns({{1, 2}, {3, 4}, {5, 6}});
    dense2D<unsigned> other;
    other.shallow_copy(m);
    ASSERT_TRUE(m.resize(2, 3));
    ASSERT_TRUE(m.resize(2, 1));
    EXPECT_EQ(m.buffer, other.buffer);
    EXPECT_EQ(m.size, 2u);
    EXPECT_EQ(other, columns({{1, 2}, {3, 4}, {5, 6}}));
}

TEST(Dense2D, GrowingOrChangingTheRowsOfASharedMatrixDetachesIt)
{
    for (const auto& [rows, cols] : {std::pair{2u, 3u}, {3u, 2u}, {1u, 2u}, {1u, 5u}}) {
        auto m = columns({{1, 2}, {3, 4}});
        dense2D<unsigned> other;
        other.shallow_copy(m);
        ASSERT_TRUE(m.resize(rows, cols, 0u));
        EXPECT_NE(m.buffer, other.buffer) << rows << " x " << cols;
        EXPECT_EQ(other, columns({{1, 2}, {3, 4}}));
        EXPECT_EQ(m(0, 1), 3u);
        EXPECT_EQ(m.ld, rows);
        EXPECT_EQ(other.buffer->ref_count, 1);
    }
}

TEST(Dense2D, ShapesBeyondMemoryAreRefusedAndChangeNothing)
{
    auto m = columns({{1, 2}});
    EXPECT_FALSE(m.resize(huge, 2));
    EXPECT_FALSE(m.resize(huge / 2, 3, 0u));
    EXPECT_FALSE(m.resize(std::uint64_t{1} << 31, std::uint64_t{1} << 31));
    EXPECT_FALSE(m.reserve(huge, huge));
    EXPECT_FALSE(m.reserve(2, huge / 16));
    EXPECT_EQ(m, columns({{1, 2}}));
    EXPECT_TRUE(m.resize(huge, 0));
    EXPECT_EQ(m.rows, huge);
}

TEST(Dense2D, ReservedColumnsArePushedWithoutMoving)
{
    dense2D<unsigned> m;
    ASSERT_TRUE(m.reserve(3, 10));
    EXPECT_EQ(m.cols, 0u);
    const auto* block = m.buffer->data;
    for (unsigned j = 0; j < 10; ++j) ASSERT_TRUE(m.push_back(indices({j, j, j})));
    EXPECT_EQ(m.buffer->data, block);
    EXPECT_EQ(m(2, 9), 9u);
}

TEST(Dense2D, ReserveKeepsTheShapeOfAMatrixWithOtherRows)
{
    auto m = columns({{1, 2}, {3, 4}});
    ASSERT_TRUE(m.reserve(5, 100));
    EXPECT_GE(m.buffer->capacity, 500u);
    EXPECT_EQ(m, columns({{1, 2}, {3, 4}}));
}

TEST(Dense2D, PushingColumnsDoublesTheCapacityFromFourOn)
{
    dense2D<double> m;
    std::vector<std::uint64_t> capacities;
    for (int j = 0; j < 40; ++j) {
        ASSERT_TRUE(m.push_back(dense1D<double>(3, j)));
        const auto held = m.buffer->capacity / m.ld;
        if (capacities.empty() || capacities.back() != held) capacities.push_back(held);
    }
    EXPECT_EQ(capacities, (std::vector<std::uint64_t>{4, 8, 16, 32, 64}));
    for (int j = 0; j < 40; ++j) EXPECT_EQ(m(2, j), j);
}

TEST(Dense2D, PushingAColumnOfOtherLengthIsRefused)
{
    auto m = columns({{1, 2}});
    EXPECT_FALSE(m.push_back(indices({1, 2, 3})));
    EXPECT_EQ(m, columns({{1, 2}}));
    dense2D<unsigned> empty(3, 0);
    EXPECT_TRUE(empty.push_back(indices({1, 2})));
    EXPECT_EQ(empty, columns({{1, 2}}));
}

TEST(Dense2D, PushingAColumnOfTheMatrixItselfIsSafe)
{
    auto m = columns({{1, 2}});
    for (int k = 0; k < 20; ++k) ASSERT_TRUE(m.push_back(m.col(0)));
    EXPECT_EQ(m.cols, 21u);
    EXPECT_EQ(m(1, 20), 2u);
}

TEST(Dense2D, PushingOntoASharedMatrixLeavesTheOthersAlone)
{
    auto m = columns({{1, 2}, {3, 4}});
    dense2D<unsigned> other;
    other.shallow_copy(m);
    ASSERT_TRUE(m.push_back(indices({5, 6})));
    m(0, 0) = 10;
    EXPECT_EQ(other, columns({{1, 2}, {3, 4}}));
    EXPECT_EQ(m, columns({{10, 2}, {3, 4}, {5, 6}}));
}

TEST(Dense2D, PushingOntoAViewLeavesTheViewedMatrixAlone)
{
    auto m = columns({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
    auto view = m.sub_matrix(1, 0, 2, 2);
    ASSERT_TRUE(view.push_back(indices({50, 60})));
    EXPECT_EQ(view, columns({{2, 3}, {5, 6}, {50, 60}}));
    EXPECT_EQ(m, columns({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}));
}

TEST(Dense2D, CopiesAreDeepAndCompact)
{
    const auto m = columns({{1, 2, 3}, {4, 5, 6}});
    const auto view = m.sub_matrix(1, 0, 2, 2);
    const dense2D<unsigned> constructed(view);
    dense2D<unsigned> assigned;
    assigned = view;
    dense2D<unsigned> copied;
    EXPECT_TRUE(copied.copy(view));
    for (const dense2D<unsigned>* c : {&constructed, &std::as_const(assigned), &std::as_const(copied)}) {
        EXPECT_EQ(*c, columns({{2, 3}, {5, 6}}));
        EXPECT_EQ(c->ld, 2u);
        EXPECT_EQ(c->offset, 0u);
        EXPECT_EQ(c->buffer->ref_count, 1);
    }
}

TEST(Dense2D, CopiesOfEmptyMatricesKeepTheirShape)
{
    dense2D<unsigned> m;
    m.resize(3, 0);
    const dense2D<unsigned> copy(m);
    EXPECT_EQ(copy.rows, 3u);
    EXPECT_EQ(copy.cols, 0u);
}

TEST(Dense2D, ASharedBufferOutlivesTheLocalThatMadeIt)
{
    dense2D<double> out;
    {
        const dense2D<double> local(2, 3, 1.5);
        EXPECT_TRUE(out.shallow_copy(local));
    }
    EXPECT_EQ(out, dense2D<double>(2, 3, 1.5));
    EXPECT_EQ(out.buffer->ref_count, 1);
}

TEST(Dense2D, MovesStealExceptFromViews)
{
    auto m = columns({{1, 2, 3}, {4, 5, 6}});
    auto c = m.col(0);
    c[0] = 10;
    EXPECT_EQ(m(0, 0), 10u);

    dense2D<unsigned> target;
    target = m.sub_matrix(0, 0, 2, 2);
    EXPECT_NE(target.buffer, m.buffer);
    EXPECT_EQ(target, columns({{10, 2}, {4, 5}}));
    const auto* record = target.buffer;
    dense2D<unsigned> next;
    next = std::move(target);
    EXPECT_EQ(next.buffer, record);
    auto& same = next;
    next = std::move(same);
    next = same;
    EXPECT_TRUE(next.shallow_copy(same));
    EXPECT_EQ(next, columns({{10, 2}, {4, 5}}));
    EXPECT_EQ(next.buffer->ref_count, 1);
}

TEST(Dense2D, ClearEmptiesAndKeepsTheBuffer)
{
    auto m = columns({{1, 2}});
    const auto* record = m.buffer;
    m.clear();
    EXPECT_EQ(m.rows + m.cols + m.size, 0u);
    EXPECT_EQ(m.buffer, record);
}

TEST(Dense2D, ComparesShapeAndEntries)
{
    EXPECT_EQ(columns({{1, 2}}), test::as_padded_view(columns({{1, 2}}), 9u));
    EXPECT_NE(columns({{1, 2}}), columns({{1}, {2}}));
    EXPECT_NE(columns({{1, 2}}), columns({{1, 3}}));
    EXPECT_NE(dense2D<unsigned>(0, 5), dense2D<unsigned>(0, 4));
    EXPECT_EQ(dense2D<unsigned>(0, 5), dense2D<unsigned>(0, 5));
}

TEST(Dense2D, TakesMemoryOfTheHost)
{
    double memory[] = {1, 2, 3, 4, 5, 6};
    {
        dense2D<double> m;
        m.buffer = new dense_buffer<double>{memory, 0, 6, 0, 1};
        m.rows = m.ld = 3;
        m.cols = 2;
        m.size = 6;
        m(0, 1) = 40;
        const auto view = m.col(1);
        EXPECT_EQ(view[0], 40);
    }
    EXPECT_EQ(memory[3], 40);
}

}  // namespace
