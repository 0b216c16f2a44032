#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <type_traits>
#include <utility>

#include "support/matrices.h"

using namespace zeb::tessolv;
using test::indices;
using test::numbers;

namespace {

constexpr std::uint64_t huge = std::numeric_limits<std::uint64_t>::max();

TEST(DenseBuffer, HasItsFieldsInTheOrderOfTheInterface)
{
    using record = dense_buffer<double>;
    EXPECT_EQ(offsetof(record, data), 0u);
    EXPECT_EQ(offsetof(record, ref_count), 8u);
    EXPECT_EQ(offsetof(record, capacity), 16u);
    EXPECT_EQ(offsetof(record, align_shift), 24u);
    EXPECT_EQ(offsetof(record, external), 25u);
    EXPECT_TRUE(std::is_aggregate_v<record>);
    EXPECT_TRUE((std::is_same_v<decltype(record::ref_count), std::int32_t>));
}

TEST(Dense1D, HasItsFieldsInTheOrderOfTheInterface)
{
    EXPECT_EQ(offsetof(dense1D<float>, buffer), 0u);
    EXPECT_EQ(offsetof(dense1D<float>, size), 8u);
    EXPECT_EQ(offsetof(dense1D<float>, offset), 16u);
    EXPECT_EQ(sizeof(dense1D<float>), 24u);
}

TEST(Dense1D, StartsEmptyWithoutABuffer)
{
    const dense1D<double> v;
    EXPECT_EQ(v.buffer, nullptr);
    EXPECT_EQ(v.size, 0u);
    EXPECT_TRUE(v.empty());
    EXPECT_EQ(v.begin(), v.end());
}

TEST(Dense1D, BracesWithANumberAndAValueFill)
{
    const dense1D<double> v{4, 0.5};
    EXPECT_EQ(v, numbers({0.5, 0.5, 0.5, 0.5}));
    EXPECT_FALSE((std::is_convertible_v<std::uint64_t, dense1D<double>>));
}

TEST(Dense1D, PushBackGrowsAsTheInterfaceSays)
{
    // Capacity when a value finds the vector full at capacities 0, 1, 2, ... (4-byte values: a slack of 2).
    const unsigned expected4[] = {4, 4, 5, 6, 8, 10, 12, 14, 16};
    const unsigned expected8[] = {4, 4, 4, 6, 8, 10, 12, 14, 16};
    for (unsigned full = 0; full < 9; ++full) {
        dense1D<unsigned> u(full, 0u);
        dense1D<double> d(full, 0.0);
        if (full != 0) {
            u.buffer->capacity = full;  // the block holds more; what counts is that the record says it is full
            d.buffer->capacity = full;
        }
        u.push_back(7u);
        d.push_back(7.0);
        EXPECT_EQ(u.buffer->capacity, expected4[full]) << full;
        EXPECT_EQ(d.buffer->capacity, expected8[full]) << full;
    }
}

TEST(Dense1D, GrowthBeyond64BitsDropsThePushedValueAndKeepsTheSize)
{
    struct full_vector {
        std::uint64_t capacity, size;
    };
    // Twice the capacity, twice its bytes, and the entries needed do not fit in 64 bits.
    for (const auto& [capacity, size] : {full_vector{huge / 2 + 1, huge / 2 + 1}, full_vector{huge / 8, huge / 8},
                                         full_vector{4, huge - 1}, full_vector{4, huge / 8}}) {
        double memory[4] = {1, 2, 3, 4};
        dense1D<double> v;
        v.buffer = new dense_buffer<double>{memory, 1, capacity, 0, 1};
        v.size = size;
        v.push_back(5);
        EXPECT_EQ(v.size, size);
        EXPECT_EQ(v.buffer->data, memory);
        EXPECT_EQ(v.buffer->capacity, capacity);
        EXPECT_EQ(v.buffer->external, 1);
    }
}

TEST(Dense1D, TheFirstPushMakesRoomForFour)
{
    dense1D<unsigned> v;
    v.push_back(9);
    EXPECT_EQ(v.buffer->capacity, 4u);
    EXPECT_EQ(v.buffer->ref_count, 1);
    EXPECT_EQ(v, indices({9}));
}

TEST(Dense1D, PushBackKeepsOrderAndValues)
{
    dense1D<int> v;
    for (int i = 0; i < 1000; ++i) v.push_back(i * i);
    ASSERT_EQ(v.size, 1000u);
    for (int i = 0; i < 1000; ++i) ASSERT_EQ(v[i], i * i);
}

TEST(Dense1D, PushingAValueOfTheVectorOntoItselfIsSafe)
{
    dense1D<double> v(1, 3.25);
    for (int i = 0; i < 40; ++i) v.push_back(v[0]);
    EXPECT_EQ(v, dense1D<double>(41, 3.25));
}

TEST(Dense1D, PushBackDoesNotDetachAndSharersSeeTheNewBlock)
{
    dense1D<unsigned> v = indices({1, 2, 3});
    dense1D<unsigned> shared;
    shared.shallow_copy(v);
    while (v.size < 64) v.push_back(static_cast<unsigned>(v.size));
    EXPECT_EQ(v.buffer, shared.buffer);
    v[0] = 77;
    EXPECT_EQ(shared, indices({77, 2, 3}));
}

TEST(Dense1D, ResizeKeepsEntriesAndFillsOnlyNewOnes)
{
    dense1D<unsigned> v = indices({4, 5, 6});
    ASSERT_TRUE(v.resize(5, 9u));
    EXPECT_EQ(v, indices({4, 5, 6, 9, 9}));
    ASSERT_TRUE(v.resize(2));
    EXPECT_EQ(v, indices({4, 5}));
    ASSERT_TRUE(v.resize(3, v[0]));
    EXPECT_EQ(v, indices({4, 5, 4}));
}

TEST(Dense1D, ResizeWithAnEntryOfItselfAsValueIsSafeWhenTheBlockMoves)
{
    dense1D<unsigned> v = indices({4, 5});
    ASSERT_TRUE(v.resize(5000, v[1]));
    EXPECT_EQ(v[4999], 5u);
}

TEST(Dense1D, GrowingASharedVectorDetachesIt)
{
    dense1D<unsigned> v = indices({1, 2});
    dense1D<unsigned> other;
    other.shallow_copy(v);
    ASSERT_TRUE(v.resize(4, 0u));
    EXPECT_NE(v.buffer, other.buffer);
    EXPECT_EQ(v.buffer->ref_count, 1);
    EXPECT_EQ(other.buffer->ref_count, 1);
    v[0] = 50;
    EXPECT_EQ(other, indices({1, 2}));
}

TEST(Dense1D, ShrinkingASharedVectorKeepsSharing)
{
    dense1D<unsigned> v = indices({1, 2, 3});
    dense1D<unsigned> other;
    other.shallow_copy(v);
    ASSERT_TRUE(v.resize(1));
    EXPECT_EQ(v.buffer, other.buffer);
    EXPECT_EQ(other.size, 3u);
}

TEST(Dense1D, SizesBeyondMemoryAreRefusedAndChangeNothing)
{
    dense1D<double> v = numbers({1, 2});
    EXPECT_FALSE(v.resize(huge));
    EXPECT_FALSE(v.resize(huge, 0.0));
    EXPECT_FALSE(v.resize(huge / 8));
    EXPECT_FALSE(v.resize(std::uint64_t{1} << 60));
    EXPECT_FALSE(v.reserve(huge));
    EXPECT_FALSE(v.reserve(8, huge));
    EXPECT_EQ(v, numbers({1, 2}));
    EXPECT_TRUE(dense1D<double>(huge / 8).empty());
    EXPECT_TRUE(dense1D<double>(huge / 8, 1.0).empty());
}

TEST(Dense1D, ReserveGivesRoomWithoutChangingTheVectorAndNeverShrinks)
{
    dense1D<unsigned> v = indices({1});
    ASSERT_TRUE(v.reserve(100));
    EXPECT_GE(v.buffer->capacity, 100u);
    EXPECT_EQ(v, indices({1}));
    const auto* block = v.buffer->data;
    ASSERT_TRUE(v.reserve(3, 1));
    ASSERT_TRUE(v.resize(100));
    EXPECT_EQ(v.buffer->data, block);
}

TEST(Dense1D, CopiesAreDeepAndStartAtOffsetZero)
{
    dense1D<unsigned> whole = indices({1, 2, 3, 4});
    const dense1D<unsigned> view = whole.sub_vector(1, 2);
    const dense1D<unsigned> constructed(view);
    dense1D<unsigned> assigned;
    assigned = view;
    dense1D<unsigned> copied;
    EXPECT_TRUE(copied.copy(view));
    for (const dense1D<unsigned>* v : {&constructed, &std::as_const(assigned), &std::as_const(copied)}) {
        EXPECT_EQ(*v, indices({2, 3}));
        EXPECT_EQ(v->offset, 0u);
        EXPECT_NE(v->buffer, whole.buffer);
        EXPECT_EQ(v->buffer->ref_count, 1);
    }
    EXPECT_EQ(whole.buffer->ref_count, 2);
}

TEST(Dense1D, ViewsReadAndWriteTheViewedVector)
{
    dense1D<unsigned> v = indices({1, 2, 3, 4});
    auto view = v.sub_vector(2, 2);
    view[0] = 30;
    v[3] = 40;
    EXPECT_EQ(v, indices({1, 2, 30, 40}));
    EXPECT_EQ(view, indices({30, 40}));
    EXPECT_EQ(view.offset, 2u);
}

TEST(Dense1D, AssigningToAViewDetachesItFromTheViewedVector)
{
    dense1D<unsigned> v = indices({1, 2, 3, 4});
    auto view = v.sub_vector(0, 2);
    view = indices({8, 9});
    EXPECT_EQ(v, indices({1, 2, 3, 4}));
    EXPECT_EQ(view, indices({8, 9}));
}

TEST(Dense1D, ASharedBufferOutlivesTheLocalThatMadeIt)
{
    dense1D<unsigned> out;
    {
        const dense1D<unsigned> local = indices({5, 6});
        EXPECT_TRUE(out.shallow_copy(local));
        EXPECT_EQ(out.buffer->ref_count, 2);
    }
    EXPECT_EQ(out.buffer->ref_count, 1);
    EXPECT_EQ(out, indices({5, 6}));
}

TEST(Dense1D, SelfAssignmentAndSelfSharingAreSafe)
{
    dense1D<unsigned> v = indices({1, 2});
    auto& same = v;
    v = same;
    EXPECT_TRUE(v.copy(same));
    EXPECT_TRUE(v.shallow_copy(same));
    v = std::move(same);
    EXPECT_EQ(v, indices({1, 2}));
    EXPECT_EQ(v.buffer->ref_count, 1);
}

TEST(Dense1D, MoveConstructionStealsSoThatAViewStaysAView)
{
    dense1D<unsigned> v = indices({1, 2, 3});
    dense1D<unsigned> view = v.sub_vector(1, 2);
    dense1D<unsigned> moved(std::move(view));
    moved[0] = 20;
    EXPECT_EQ(v[1], 20u);
    EXPECT_EQ(v.buffer->ref_count, 2);
}

TEST(Dense1D, MoveAssignmentStealsFromASoleOwnerAndCopiesFromAView)
{
    dense1D<unsigned> source = indices({1, 2, 3});
    const auto* block = source.buffer;
    dense1D<unsigned> target = indices({9});
    target = std::move(source);
    EXPECT_EQ(target.buffer, block);
    EXPECT_EQ(target, indices({1, 2, 3}));

    dense1D<unsigned> copy;
    copy = target.sub_vector(0, 2);
    EXPECT_NE(copy.buffer, target.buffer);
    EXPECT_EQ(copy, indices({1, 2}));
}

TEST(Dense1D, TakesMemoryOfTheHostAndNeverFreesIt)
{
    double memory[] = {1, 2, 3, 4};
    {
        dense1D<double> v;
        v.buffer = new dense_buffer<double>{memory, 0, 4, 0, 1};
        ++v.buffer->ref_count;
        v.size = 4;
        v[1] = 20;
        dense1D<double> deep(v);
        EXPECT_EQ(deep.buffer->external, 0);
        EXPECT_NE(deep.data(), memory);
    }
    EXPECT_EQ(memory[1], 20);
}

TEST(Dense1D, CountsTheFirstContainerOfAHandedOverRecordThatNobodyCounted)
{
    double memory[] = {1, 2, 3, 4};
    dense1D<double> v;
    v.buffer = new dense_buffer<double>{memory, 0, 4, 0, 1};
    v.size = 4;
    {
        const auto view = v.sub_vector(1, 2);
        EXPECT_EQ(v.buffer->ref_count, 2);
    }
    EXPECT_EQ(v.buffer->ref_count, 1);
    EXPECT_EQ(v, numbers({1, 2, 3, 4}));
}

TEST(Dense1D, GrowthLeavesTheMemoryOfTheHostAndClearsItsMark)
{
    double memory[] = {1, 2};
    dense1D<double> v;
    v.buffer = new dense_buffer<double>{memory, 1, 2, 0, 1};
    v.size = 2;
    v.push_back(3);
    EXPECT_EQ(v.buffer->external, 0);
    EXPECT_EQ(v, numbers({1, 2, 3}));
    v[0] = 10;
    EXPECT_EQ(memory[0], 1);
}

TEST(Dense1D, ClearKeepsTheBuffer)
{
    dense1D<unsigned> v = indices({1, 2, 3});
    const auto* record = v.buffer;
    v.clear();
    EXPECT_EQ(v.size, 0u);
    EXPECT_EQ(v.buffer, record);
}

TEST(Dense1D, EntriesAreReachedByBothKindsOfBrackets)
{
    dense1D<unsigned> v = indices({1, 2, 3});
    const auto& constant = v;
    v(1) = 7;
    EXPECT_EQ(v[1], 7u);
    EXPECT_EQ(constant(1), constant[1]);
    EXPECT_EQ(*constant.data(), 1u);
    EXPECT_TRUE(v != indices({1, 2, 3}));
}

}  // namespace
