#include "stl/stl_words.h"

#include <string>

#include <gtest/gtest.h>

namespace {

tool::text_words count(const std::string& text)
{
    tool::byte_source in(std::span(reinterpret_cast<const unsigned char*>(text.data()), text.size()));
    return tool::count_words(in);
}

TEST(CountWords, CountsFacetsWhereverALineBeginsWithOne)
{
    EXPECT_EQ(count("solid\n facet normal 0 0 1\n\tFACET NORMAL 0 0 1\nfacet\nendfacet\n").facets, 3u);
    EXPECT_EQ(count("solid\rfacet normal\rfacet normal\r").facets, 2u);
}

TEST(CountWords, CountsFacetsWithinALineBeforeNormalOnly)
{
    EXPECT_EQ(count("solid a facet normal 0 0 1 outer loop endloop endfacet facet Normal 1 0 0 endsolid").facets, 2u);
    EXPECT_EQ(count("solid multi facet lens\n").facets, 0u);
    EXPECT_EQ(count("solid facets normal\n").facets, 0u);
}

TEST(CountWords, CountsKeywordsWithoutABlankBetweenThem)
{
    EXPECT_EQ(count("solid\nfacetnormal0 0 1\n").facets, 1u);
}

TEST(CountWords, TakesAFacetAndItsNormalOnceWhenTheyStandOnTwoLines)
{
    EXPECT_EQ(count("solid\nfacet\nnormal 0 0 1\n").facets, 1u);
}

TEST(CountWords, CountsSolidsAndTheirEnds)
{
    const tool::text_words words = count("solid a\nendsolid a\n SOLID b\nendsolid b\n");
    EXPECT_EQ(words.solids, 2u);
    EXPECT_EQ(words.ends, 2u);
    EXPECT_TRUE(words.begins_with_solid);
    EXPECT_TRUE(words.last_solid_ends);
    EXPECT_EQ(words.bytes_after_end, 0u);
    EXPECT_FALSE(words.is_one_line);
}

TEST(CountWords, TakesACarriageReturnForTheEndOfALine)
{
    const tool::text_words words = count("solid a\rfacet\rendsolid a\rsolid b\r");
    EXPECT_EQ(words.facets, 1u);
    EXPECT_EQ(words.solids, 2u);
    EXPECT_EQ(words.ends, 1u);
    EXPECT_FALSE(words.is_one_line);
}

TEST(CountWords, SeesThatTheLastSolidIsOpen)
{
    EXPECT_FALSE(count("solid a\nendsolid a\nsolid b\n").last_solid_ends);
}

TEST(CountWords, MeasuresWhatFollowsTheLastEnd)
{
    EXPECT_EQ(count("solid\nendsolid a b c\n\n  \n").bytes_after_end, 0u);
    EXPECT_EQ(count("solid\nendsolid\n junk\nmore\n").bytes_after_end, 10u);
    EXPECT_EQ(count("solid\nendsolid\njunk\nsolid\nendsolid\n").bytes_after_end, 0u);
}

TEST(CountWords, PassesOverAByteOrderMark)
{
    EXPECT_TRUE(count("\xEF\xBB\xBFsolid a\n").begins_with_solid);
    EXPECT_FALSE(count("solidity\n").begins_with_solid);
    EXPECT_TRUE(count("solidity\n").is_one_line);
}

TEST(CountWords, FindsNothingInAnEmptyText)
{
    const tool::text_words words = count("");
    EXPECT_EQ(words.facets + words.solids + words.ends + words.bytes_after_end, 0u);
    EXPECT_FALSE(words.begins_with_solid);
}

}  // namespace
