#include <gtest/gtest.h>

#include <string>

#include "io/c_file.h"
#include "support/temporary_file.h"

namespace {

using namespace zeb::tessolv;
using test::temporary_file;

TEST(CFile, IsNotOpenWithoutAName)
{
    EXPECT_FALSE(c_file(nullptr, "w").is_open());
    EXPECT_FALSE(c_file("", "w").is_open());
    EXPECT_FALSE(c_file("/", "w").is_open());
}

TEST(CFile, ClosesOnce)
{
    const temporary_file name;
    c_file file(name.name(), "w");
    ASSERT_TRUE(file.is_open());
    EXPECT_TRUE(file.close());
    EXPECT_FALSE(file.is_open());
    EXPECT_TRUE(file.close());
}

// What a writer makes of texts of many lengths across the borders of its blocks.
TEST(BlockWriter, KeepsTheOrderOfAllBytes)
{
    const temporary_file name;
    std::string expected;
    {
        c_file file(name.name(), "wb");
        block_writer out(file.stream());
        ASSERT_TRUE(out.allocate());
        for (std::size_t n = 0; expected.size() < 5 * file_block; n = (n * 7 + 1) % 1013) {
            const std::string text(n, static_cast<char>('a' + n % 26));
            out.put(text);
            expected += text;
            char* at = out.room(n + 1);
            *at++ = '\n';
            out.advance(at);
            expected += '\n';
        }
        EXPECT_TRUE(out.finish());
        EXPECT_TRUE(file.close());
    }
    EXPECT_EQ(name.bytes() == expected, true);
}

TEST(BlockWriter, RepeatsATextAcrossBlocks)
{
    for (const std::string text : {"x", "12\n", "13\n2\n"})
        for (const std::uint64_t count : {0ul, 1ul, 87381ul, 87382ul, 300000ul}) {
            const temporary_file name;
            c_file file(name.name(), "w");
            block_writer out(file.stream());
            ASSERT_TRUE(out.allocate());
            out.put("begin");
            out.put_repeated(text, count);
            out.put("end");
            EXPECT_TRUE(out.finish());
            EXPECT_TRUE(file.close());
            std::string expected = "begin";
            for (std::uint64_t k = 0; k < count; ++k) expected += text;
            EXPECT_EQ(name.bytes() == expected + "end", true) << count << " times " << text;
        }
}

TEST(BlockWriter, TakesTextsOfAWholeBlock)
{
    const temporary_file name;
    const std::string block(file_block, 'b');
    c_file file(name.name(), "w");
    block_writer out(file.stream());
    ASSERT_TRUE(out.allocate());
    out.put("a");
    out.put(block);
    out.put(block);
    out.put("c");
    EXPECT_TRUE(out.finish());
    EXPECT_TRUE(file.close());
    EXPECT_EQ(name.bytes() == "a" + block + block + "c", true);
}

TEST(BlockWriter, RemembersAWriteThatFailed)
{
    c_file file("/dev/full", "w");
    ASSERT_TRUE(file.is_open());
    block_writer out(file.stream());
    ASSERT_TRUE(out.allocate());
    out.put_repeated("x", 2 * file_block);
    out.put("the rest");
    EXPECT_FALSE(out.finish());
    EXPECT_FALSE(out.finish());
}

}  // namespace
