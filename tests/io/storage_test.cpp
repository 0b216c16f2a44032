#include <gtest/gtest.h>

#include "io/calls.h"

using namespace test;

class StoredFileCall : public testing::TestWithParam<stored_call> {};

TEST_P(StoredFileCall, GivesTheSameForViewsSharedBuffersAndMemoryOfTheHost)
{
    expect_one_outcome(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Files, StoredFileCall, testing::ValuesIn(io_calls),
                         [](const auto& row) { return std::string(row.param.name); });
