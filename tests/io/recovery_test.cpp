#include <gtest/gtest.h>

#include "io/calls.h"
#include "support/recovery.h"

using namespace test;

class FileCall : public testing::TestWithParam<stored_call> {};

TEST_P(FileCall, SaysThatMemoryEndsAndSucceedsAfterwards)
{
    expect_recovery(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Memory, FileCall, testing::ValuesIn(io_calls),
                         [](const auto& row) { return std::string(row.param.name); });
