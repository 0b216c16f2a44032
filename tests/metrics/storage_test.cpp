#include <gtest/gtest.h>

#include "metrics/calls.h"

using namespace test;

class StoredMetricsCall : public testing::TestWithParam<stored_call> {};

TEST_P(StoredMetricsCall, GivesTheSameForViewsSharedBuffersAndMemoryOfTheHost)
{
    expect_one_outcome(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Metrics, StoredMetricsCall, testing::ValuesIn(metrics_calls),
                         [](const auto& row) { return std::string(row.param.name); });
