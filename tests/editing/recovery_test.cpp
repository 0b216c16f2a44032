#include <gtest/gtest.h>

#include "editing/calls.h"
#include "support/recovery.h"

using namespace test;

class EditingCall : public testing::TestWithParam<stored_call> {};

TEST_P(EditingCall, SaysThatMemoryEndsAndSucceedsAfterwards)
{
    expect_recovery(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Memory, EditingCall, testing::ValuesIn(editing_calls),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Memory, RefusedEditingCallsNeedNone)
{
    using namespace zeb::tessolv;
    dense2D<double> pos = points({{0, 1}});
    dense2D<unsigned> connect = columns({{0, 1, 2}}), out = columns({{7}});
    dense1D<unsigned> list = indices({5}), other = indices({6});
    attempt run(1, true);
    EXPECT_EQ(run([&] { return unique_indices(list, &connect + 1, &connect); }), -3);
    EXPECT_EQ(run([&] { return count_unique_indices(&connect + 1, &connect); }), -2);
    EXPECT_EQ(run([&] { return append(out, connect, list); }), -1);
    EXPECT_EQ(run([&] { return append(connect, connect, list); }), -3);
    EXPECT_EQ(run([&] { return append(out, &connect + 1, &connect); }), -2);
    EXPECT_EQ(run([&] { return append(out, connect); }), -1);
    EXPECT_EQ(run([&] { return copy_mesh(pos, out, connect); }), -3);
    EXPECT_EQ(list, indices({5}));
    EXPECT_EQ(out, columns({{7}}));
    EXPECT_EQ(run([&] { return get_IDs(connect, out, list, other, true); }), -2);
    EXPECT_EQ(list.size + other.size, 0u);
    EXPECT_EQ(run([&] { return simplify(pos, &connect + 1, &connect, list); }), -3);
    EXPECT_EQ(run([&] { return simplify(pos, connect, list); }), -2);
    EXPECT_EQ(connect, columns({{0, 1, 2}}));
    EXPECT_EQ(pos, points({{0, 1}}));
}
