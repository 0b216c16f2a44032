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
