#ifndef TESTS_SUPPORT_GOLDEN_H
#define TESTS_SUPPORT_GOLDEN_H

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace test {

// The bytes of an expected file of tests/golden.
inline std::string golden(const std::string& name)
{
    std::ifstream file(std::string(TESTS_GOLDEN) + "/" + name, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << "there is no expected file " << name;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace test

#endif
