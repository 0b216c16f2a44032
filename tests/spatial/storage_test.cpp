#include <gtest/gtest.h>

#include "spatial/calls.h"

using namespace test;

class StoredSpatialCall : public testing::TestWithParam<stored_call> {};

TEST_P(StoredSpatialCall, GivesTheSameForViewsSharedBuffersAndMemoryOfTheHost)
{
    expect_one_outcome(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Detectors, StoredSpatialCall, testing::ValuesIn(detector_calls),
                         [](const auto& row) { return std::string(row.param.name); });
INSTANTIATE_TEST_SUITE_P(Merging, StoredSpatialCall, testing::ValuesIn(merge_calls),
                         [](const auto& row) { return std::string(row.param.name); });
