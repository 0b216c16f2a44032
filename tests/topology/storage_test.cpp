#include <gtest/gtest.h>

#include "topology/calls.h"

using namespace test;

class StoredTopologyCall : public testing::TestWithParam<stored_call> {};

TEST_P(StoredTopologyCall, GivesTheSameForViewsSharedBuffersAndMemoryOfTheHost)
{
    expect_one_outcome(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Topology, StoredTopologyCall, testing::ValuesIn(topology_calls),
                         [](const auto& row) { return std::string(row.param.name); });
