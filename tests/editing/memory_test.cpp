#include <gtest/gtest.h>

#include "support/failing_memory.h"
#include "support/matrices.h"

// Every request for memory that an operation makes is refused in turn: the result is -199 with the outputs as stated,
// or the whole result where the operation has another way, and nothing in between.
using namespace zeb::tessolv;
using test::columns;
using test::indices;
using test::N;
using test::points;

namespace {

TEST(UniqueIndices, OfARangeWithoutMemoryLeaveTheListAsItWas)
{
    const dense2D<unsigned> matrices[] = {columns({{5, 2, 5}, {2, N, 7}}), columns({{4000000000, 9}})};
    test::for_each_failure([&](test::attempt& attempt) {
        auto out = indices({8});
        const int code = attempt([&] { return unique_indices(out, matrices, matrices + 2); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(out, attempt.failed() ? indices({8}) : indices({8, 5, 2, 7, 4000000000, 9}));
    });
    const auto connect = columns({{5, 2, 5}});
    test::for_each_failure([&](test::attempt& attempt) {
        auto whole = indices({8, 1, 2, 3});
        auto out = whole.sub_vector(0, 1);
        const int code = attempt([&] { return unique_indices(out, connect); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(out, attempt.failed() ? indices({8}) : indices({8, 5, 2}));
        EXPECT_EQ(whole, indices({8, 1, 2, 3}));
    });
}

TEST(UniqueIndices, OfAListWithoutMemoryAreAllOrNoneAndZero)
{
    const auto exclude = indices({1});
    for (const unsigned large : {7u, 4000000000u}) {
        const auto in = indices({5, 1, large, 5});
        test::for_each_failure([&](test::attempt& attempt) {
            auto out = indices({8});
            EXPECT_EQ(attempt([&] { return unique_indices(out, in, exclude); }), 0);
            EXPECT_EQ(out, attempt.failed() ? indices({8}) : indices({8, 5, large}));
        });
    }
}

TEST(UniqueIndices, ThatAreManyAndFarApartAreAllOrNone)
{
    dense2D<unsigned> connect(2, 10000);
    for (unsigned j = 0; j < connect.cols; ++j) {
        connect(0, j) = 400000 * j;
        connect(1, j) = 400000 * (j / 2);
    }
    test::for_each_failure([&](test::attempt& attempt) {
        dense1D<unsigned> out;
        const int code = attempt([&] { return unique_indices(out, connect); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(out.size, attempt.failed() ? 0 : 10000u);
        for (unsigned j = 0; j < out.size; ++j) ASSERT_EQ(out[j], 400000 * j);
    });
    test::for_each_failure([&](test::attempt& attempt) {
        const int count = attempt([&] { return count_unique_indices(connect); });
        EXPECT_EQ(count, attempt.failed() ? -199 : 10000);
    });
}

TEST(UniqueIndices, NeverAskForMemoryByTheLargestIndex)
{
    const auto connect = columns({{N - 1, 0, N}, {N - 2, 5, 0}});
    dense1D<unsigned> out;
    const test::failing_memory memory(0, false);
    EXPECT_EQ(unique_indices(out, connect), 0);
    EXPECT_EQ(count_unique_indices(connect), 4);
    EXPECT_LT(memory.largest_request(), 4096u);
}

TEST(UniqueIndices, OfAnEmptyRangeNeedNoMemory)
{
    const test::failing_memory memory(1, true);
    dense1D<unsigned> out;
    const dense2D<unsigned>* null = nullptr;
    EXPECT_EQ(unique_indices(out, null, null), 0);
    EXPECT_EQ(count_unique_indices(null, null), 0);
    EXPECT_FALSE(memory.triggered());
}

TEST(CountUniqueIndices, WithoutMemorySaysSo)
{
    for (const auto& connect : {columns({{5, 2, 5}}), columns({{4000000000, 2}, {2, 1}})}) {
        test::for_each_failure([&](test::attempt& attempt) {
            const int count = attempt([&] { return count_unique_indices(connect); });
            EXPECT_EQ(count, attempt.failed() ? -199 : connect.cols + 1);
        });
    }
}

TEST(ChangeIndices, OnlyNeedsMemoryForATableThatItWrites)
{
    auto ids = indices({1, 0});
    auto connect = columns({{1, 0}});
    const auto table = indices({5, 6});
    {
        const test::failing_memory memory(1, true);
        change_indices(ids, table);
        change_indices(connect, table);
        EXPECT_FALSE(memory.triggered());
    }
    EXPECT_EQ(ids, indices({6, 5}));
    EXPECT_EQ(connect, columns({{6, 5}}));
    test::for_each_failure([](test::attempt& attempt) {
        auto own = indices({1, 2, 0});
        attempt([&] { change_indices(own, own); });
        EXPECT_EQ(own, attempt.failed() ? indices({1, 2, 0}) : indices({2, 0, 1}));
    });
    test::for_each_failure([](test::attempt& attempt) {
        auto own = columns({{1, 0}, {2, 1}});
        const auto column = own.col(0);
        attempt([&] { change_indices(own, column); });
        EXPECT_EQ(own, attempt.failed() ? columns({{1, 0}, {2, 1}}) : columns({{0, 1}, {2, 0}}));
    });
}

TEST(Permutation, WithoutMemoryHasNoEffect)
{
    const auto perm = indices({1, 2, 0});
    test::for_each_failure([&](test::attempt& attempt) {
        auto values = indices({10, 20, 30});
        attempt([&] { permutation(values, perm); });
        EXPECT_EQ(values, attempt.failed() ? indices({10, 20, 30}) : indices({30, 10, 20}));
    });
    test::for_each_failure([&](test::attempt& attempt) {
        auto values = test::numbers({1, 2, 3});
        attempt([&] { permutation(values, perm); });
        EXPECT_EQ(values, attempt.failed() ? test::numbers({1, 2, 3}) : test::numbers({3, 1, 2}));
    });
}

TEST(GetIDs, WithoutMemoryEmptiesBothOutputs)
{
    const auto ids1 = indices({4, 5, 4}), ids2 = indices({4, 6});
    test::for_each_failure([&](test::attempt& attempt) {
        auto pos_in_1 = indices({7}), pos_in_2 = indices({7});
        const int code = attempt([&] { return get_IDs(ids1, ids2, pos_in_1, pos_in_2); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(pos_in_1, attempt.failed() ? indices({}) : indices({2, N}));
        EXPECT_EQ(pos_in_2, attempt.failed() ? indices({}) : indices({N, N, 0}));
    });
    const auto connect1 = columns({{1, 2, 3}, {4, 5, 6}}), connect2 = columns({{4, 5, 6}});
    for (const bool strict : {true, false}) {
        test::for_each_failure([&](test::attempt& attempt) {
            auto pos_in_1 = indices({7}), pos_in_2 = indices({7});
            const int code = attempt([&] { return get_IDs(connect1, connect2, pos_in_1, pos_in_2, strict); });
            EXPECT_EQ(code, attempt.failed() ? -199 : 0);
            EXPECT_EQ(pos_in_1, attempt.failed() ? indices({}) : indices({1}));
            EXPECT_EQ(pos_in_2, attempt.failed() ? indices({}) : indices({N, 0}));
        });
    }
}

TEST(Append, WithoutMemoryLeavesTheMatrixAsItWas)
{
    const auto B = points({{3, 4}, {5, 6}});
    const auto list = indices({1, 0});
    test::for_each_failure([&](test::attempt& attempt) {
        auto A = points({{1, 2}});
        const int code = attempt([&] { return append(A, B); });
        EXPECT_TRUE(code == 0 || (code == -199 && attempt.failed()));
        EXPECT_EQ(A, code == 0 ? points({{1, 2}, {3, 4}, {5, 6}}) : points({{1, 2}}));
    });
    test::for_each_failure([&](test::attempt& attempt) {
        auto A = points({{1, 2}});
        const auto shared = A.sub_matrix(0, 0, 2, 1);
        const int code = attempt([&] { return append(A, B, list); });
        EXPECT_TRUE(code == 0 || (code == -199 && attempt.failed()));
        EXPECT_EQ(A, code == 0 ? points({{1, 2}, {5, 6}, {3, 4}}) : points({{1, 2}}));
        EXPECT_EQ(shared, points({{1, 2}}));
    });
    test::for_each_failure([&](test::attempt& attempt) {
        dense2D<double> A(0, 1);
        const int code = attempt([&] { return append(A, B, list); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(A, code == 0 ? points({{0, 0}, {5, 6}, {3, 4}}) : dense2D<double>(0, 1));
    });
}

TEST(Append, WithNoMemoryAtAllSaysSo)
{
    auto A = columns({{1, 2, 3, 4}});
    const auto B = columns({{5, 6, 7, 8}});
    int of_other = 0, of_itself = 0;
    {
        const test::failing_memory memory(1, true);
        of_other = append(A, B);
        of_itself = append(A, A);
    }
    EXPECT_EQ(of_other, -199);
    EXPECT_EQ(of_itself, -199);
    EXPECT_EQ(A, columns({{1, 2, 3, 4}}));
}

TEST(Append, TakesTheExactRoomWhereTwiceIsNotToBeHad)
{
    auto A = columns({{1, 2, 3, 4}});
    const auto B = columns({{5, 6, 7, 8}});
    test::attempt first_refused(1, false);
    EXPECT_EQ(first_refused([&] { return append(A, B); }), 0);
    EXPECT_TRUE(first_refused.failed());
    EXPECT_EQ(A, columns({{1, 2, 3, 4}, {5, 6, 7, 8}}));
}

TEST(Simplify, WithoutMemoryOnlyEmptiesTheNewNumbers)
{
    const auto nodes = points({{0, 1}, {2, 3}, {4, 5}});
    test::for_each_failure([&](test::attempt& attempt) {
        auto pos = nodes;
        dense2D<unsigned> meshes[] = {columns({{2, 0}}), columns({{0, 2}})};
        auto new_IDs = indices({7});
        const int code = attempt([&] { return simplify(pos, meshes, meshes + 2, new_IDs); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 2);
        EXPECT_EQ(new_IDs, attempt.failed() ? indices({}) : indices({1, N, 0}));
        EXPECT_EQ(pos, attempt.failed() ? nodes : points({{4, 5}, {0, 1}}));
        EXPECT_EQ(meshes[0], attempt.failed() ? columns({{2, 0}}) : columns({{0, 1}}));
        EXPECT_EQ(meshes[1], attempt.failed() ? columns({{0, 2}}) : columns({{1, 0}}));
    });
    test::for_each_failure([&](test::attempt& attempt) {  // matrices that share their entries
        auto pos = nodes;
        dense2D<unsigned> meshes[2] = {columns({{2, 0}}), {}};
        meshes[1].shallow_copy(meshes[0]);
        const int code = attempt([&] { return simplify(pos, meshes, meshes + 2); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 2);
        EXPECT_EQ(pos, attempt.failed() ? nodes : points({{4, 5}, {0, 1}}));
        EXPECT_EQ(meshes[1], attempt.failed() ? columns({{2, 0}}) : columns({{0, 1}}));
    });
    test::for_each_failure([&](test::attempt& attempt) {  // every node in use
        auto pos = nodes;
        auto connect = columns({{2, 0, 1}});
        auto new_IDs = indices({7});
        const int code = attempt([&] { return simplify(pos, connect, new_IDs); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(new_IDs, attempt.failed() ? indices({}) : indices({0, 1, 2}));
    });
}

TEST(CopyMesh, WithoutMemoryTouchesNothing)
{
    const auto nodes = points({{0, 1}, {2, 3}, {4, 5}});
    for (const auto& source : {columns({{2, 0}}), columns({{2, 0}, {1, N}})}) {
        const bool all_used = source.cols == 2;
        test::for_each_failure([&](test::attempt& attempt) {
            auto pos = nodes;
            auto connect = columns({{1}});
            const int code = attempt([&] { return copy_mesh(pos, connect, source); });
            EXPECT_TRUE(code == 0 || (code == -199 && attempt.failed()));
            EXPECT_EQ(pos.cols, code != 0 ? 3u : all_used ? 6u : 5u);
            EXPECT_EQ(connect, code != 0 ? columns({{1}}) : all_used ? columns({{5, 3}, {4, N}}) : columns({{3, 4}}));
        });
    }
}

TEST(RemoveDegenerated, WithoutMemoryTouchesNothing)
{
    for (const std::uint64_t rows : {3u, 12u}) {
        test::for_each_failure([&](test::attempt& attempt) {
            dense2D<unsigned> connect(rows, 2, 7);
            for (unsigned i = 0; i < rows; ++i) connect(i, 1) = i;
            const auto before = connect;
            auto new_IDs = indices({9});
            const int code = attempt([&] { return remove_degenerated(connect, new_IDs); });
            EXPECT_EQ(code, attempt.failed() ? -199 : 1);
            EXPECT_EQ(connect, attempt.failed() ? before : before.sub_matrix(0, 1, rows, 1));
            EXPECT_EQ(new_IDs, attempt.failed() ? indices({9}) : indices({N, 0}));
        });
    }
}

TEST(RemoveDegenerated, NeedsNoMemoryPerElement)
{
    auto connect = test::filled(12, 1000, 7u);
    dense1D<unsigned> new_IDs;
    const test::failing_memory memory(6, true);
    EXPECT_EQ(remove_degenerated(connect, new_IDs), 1000);
    EXPECT_FALSE(memory.triggered());
}

}  // namespace
