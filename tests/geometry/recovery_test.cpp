#include <gtest/gtest.h>

#include "geometry/calls.h"
#include "support/recovery.h"

using namespace test;

class GeometryCall : public testing::TestWithParam<stored_call> {};

TEST_P(GeometryCall, SaysThatMemoryEndsAndSucceedsAfterwards)
{
    expect_recovery(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Memory, GeometryCall, testing::ValuesIn(geometry_calls),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Memory, RefusedGeometryCallsNeedNone)
{
    using namespace zeb::tessolv;
    using geometry_arguments::vec2, geometry_arguments::vec3;
    const dense2D<double> plane = geometry_arguments::plane, space = geometry_arguments::space;
    const dense2D<unsigned> bad = columns({{0, 3}}), good = columns({{0, 1}});
    const dense1D<unsigned> list = indices({0, 3});
    dense2D<unsigned> out = columns({{7}});
    vec2 flat_min(5, 5), flat_max(5, 5);
    vec3 min(5, 5, 5), max(5, 5, 5);
    attempt run(1, true);
    EXPECT_EQ(run([&] { return inc_bounding_box(plane, min, max); }), -1);
    EXPECT_EQ(run([&] { return inc_bounding_box(space, list, flat_min, flat_max); }), -1);
    EXPECT_EQ(run([&] { return inc_bounding_box(space, list, min, max); }), -2);
    EXPECT_EQ(run([&] { return inc_bounding_box(plane, bad, flat_min, flat_max); }), -2);
    EXPECT_EQ(run([&] { return clip(space, bad, vec3(), vec3(), out); }), -2);
    EXPECT_EQ(run([&] { return clip(space, good, vec3(), vec3(), out); }), -4);
    EXPECT_EQ(run([&] { return clip(space, good, vec3(), vec3(0, 0, 1), out); }), -5);
    EXPECT_EQ(out, columns({{7}}));
    EXPECT_EQ(flat_min, vec2(5, 5));
    EXPECT_EQ(max, vec3(5, 5, 5));
}
