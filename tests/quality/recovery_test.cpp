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
