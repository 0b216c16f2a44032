#include <gtest/gtest.h>

#include "quality/calls.h"

using namespace test;

class StoredQualityCall : public testing::TestWithParam<stored_call> {};

TEST_P(StoredQualityCall, GivesTheSameForViewsSharedBuffersAndMemoryOfTheHost)
{
    expect_one_outcome(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Quality, StoredQualityCall, testing::ValuesIn(quality_calls),
                         [](const auto& row) { return std::string(row.param.name); });
