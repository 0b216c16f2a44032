#include <gtest/gtest.h>

#include "geometry/calls.h"

using namespace test;

class StoredGeometryCall : public testing::TestWithParam<stored_call> {};

TEST_P(StoredGeometryCall, GivesTheSameForViewsSharedBuffersAndMemoryOfTheHost)
{
    expect_one_outcome(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Geometry, StoredGeometryCall, testing::ValuesIn(geometry_calls),
                         [](const auto& row) { return std::string(row.param.name); });
