#include <gtest/gtest.h>

#include "editing/calls.h"

using namespace test;

class StoredEditingCall : public testing::TestWithParam<stored_call> {};

TEST_P(StoredEditingCall, GivesTheSameForViewsSharedBuffersAndMemoryOfTheHost)
{
    expect_one_outcome(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Editing, StoredEditingCall, testing::ValuesIn(editing_calls),
                         [](const auto& row) { return std::string(row.param.name); });
