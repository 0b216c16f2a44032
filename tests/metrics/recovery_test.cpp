#include <gtest/gtest.h>

#include "metrics/calls.h"
#include "support/recovery.h"

using namespace test;

class MetricsCall : public testing::TestWithParam<stored_call> {};

TEST_P(MetricsCall, SaysThatMemoryEndsAndSucceedsAfterwards)
{
    expect_recovery(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Memory, MetricsCall, testing::ValuesIn(metrics_calls),
                         [](const auto& row) { return std::string(row.param.name); });
