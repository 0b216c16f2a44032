#include <gtest/gtest.h>

#include "quality/calls.h"
#include "support/recovery.h"

using namespace test;

class QualityCall : public testing::TestWithParam<stored_call> {};

TEST_P(QualityCall, SaysThatMemoryEndsAndSucceedsAfterwards)
{
    expect_recovery(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Memory, QualityCall, testing::ValuesIn(quality_calls),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Memory, RefusedQualityCallsNeedNone)
{
    using namespace zeb::tessolv;
    const dense2D<double> pos = quality_arguments::pos;
    const dense2D<unsigned> bad = columns({{0, 6}}), faces = quality_arguments::faces;
    const auto one_kind = types({zeb::EL_EDGE2}), no_kinds = types({});
    const auto sizes = quality_arguments::sizes;
    auto qualities = numbers({7});
    auto lengths = points({{7}});
    recording_histogram h;
    attempt run(1, true);
    EXPECT_EQ(run([&] { return shape_qualities(pos, bad, zeb::EL_HEXA20, qualities); }), -3);
    EXPECT_EQ(run([&] { return shape_qualities(pos, bad, zeb::EL_EDGE2, qualities); }), -2);
    EXPECT_EQ(run([&] { return shape_qualities(pos, &bad + 1, &bad, one_kind, qualities); }), -3);
    EXPECT_EQ(run([&] { return shape_qualities(pos, &bad, &bad + 1, no_kinds, h); }), -4);
    EXPECT_EQ(run([&] { return shape_qualities(pos, bad, zeb::EL_EDGE2, h); }), -2);
    EXPECT_EQ(run([&] { return edge_lengths(pos, bad, lengths); }), -2);
    EXPECT_EQ(run([&] { return edge_qualities(pos, bad, zeb::EL_EDGE2, sizes, h); }), -2);
    EXPECT_EQ(run([&] { return edge_qualities(pos, &bad, &bad + 1, no_kinds, sizes, h); }), -4);
    EXPECT_EQ(run([&] { return edge_qualities(pos, &bad, &bad + 1, one_kind, sizes, h); }), -2);
    EXPECT_EQ(qualities.size + lengths.size, 0u);
    EXPECT_EQ(h.vectors + h.single_values, 0);
}
