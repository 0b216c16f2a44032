#include <gtest/gtest.h>

#include <limits>

#include "spatial/calls.h"
#include "support/recovery.h"

using namespace test;

class SpatialCall : public testing::TestWithParam<stored_call> {};

TEST_P(SpatialCall, SaysThatMemoryEndsAndSucceedsAfterwards)
{
    expect_recovery(GetParam());
}

INSTANTIATE_TEST_SUITE_P(DetectorMemory, SpatialCall, testing::ValuesIn(detector_calls),
                         [](const auto& row) { return std::string(row.param.name); });
INSTANTIATE_TEST_SUITE_P(MergeMemory, SpatialCall, testing::ValuesIn(merge_calls),
                         [](const auto& row) { return std::string(row.param.name); });

// Only the two-matrix forms work on copies, and only the nodes of matrices are gathered before their indices are checked.
TEST(MergeMemory, IsNotAskedForByRefusedCalls)
{
    using namespace zeb::tessolv;
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    dense2D<double> pos = points({{0, 0}, {0, 0}}), line = points({{0}, {1}});
    dense2D<unsigned> connect = columns({{0, 1}});
    dense1D<unsigned> new_IDs;
    const auto nodes = indices({0, 1}), beyond = indices({2});
    attempt run(1, true);
    EXPECT_EQ(run([&] { return merge(line, nodes, new_IDs, 1.0); }), -1);
    EXPECT_EQ(run([&] { return merge(pos, nodes, new_IDs, nan); }), -4);
    EXPECT_EQ(run([&] { return merge(pos, nodes, beyond, new_IDs, 1.0); }), -2);
    EXPECT_EQ(run([&] { return merge(line, connect, new_IDs, 1.0); }), -1);
    EXPECT_EQ(run([&] { return merge(pos, &connect + 1, &connect, 1.0); }), -3);
    EXPECT_EQ(run([&] { return merge(pos, connect, nan); }), -5);
    EXPECT_EQ(run([&] { return merge(pos, connect, 1.0, 3); }), -6);
    EXPECT_EQ(run([&] { return merge(line, 1.0); }), -1);
    EXPECT_EQ(run([&] { return merge(pos, nan); }), -3);
    EXPECT_FALSE(run.failed());
    EXPECT_EQ(connect, columns({{0, 1}}));
    EXPECT_EQ(pos, points({{0, 0}, {0, 0}}));
}
