#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "io/stl_model.h"

using namespace zeb::tessolv;
using namespace test;

namespace {

constexpr bool both[] = {true, false};

const facet_corners one_facet = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};

// A facet that shares an edge with the first one, but for a gap.
facet_corners other_facet(double gap)
{
    return {{1, gap, 0}, {1, 1, 0}, {0, 1 + gap, 0}};
}

const std::string facet_head = " facet normal 0 0 1\n  outer loop\n";
const std::string facet_tail = "  endloop\n endfacet\n";
const std::string good_facet = facet_head + "vertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\n" + facet_tail;

}  // namespace

TEST(STLInput, SharesTwoNodesBetweenFacetsThatShareAnEdge)
{
    for (const bool ascii : both) {
        const stl_mesh m = read_stl(stl_bytes({one_facet, other_facet(0)}, ascii), ascii);
        EXPECT_EQ(m,
                  (stl_mesh{2, points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}}), columns({{0, 1, 2}, {1, 3, 2}})}));
    }
}

TEST(STLInput, MakesEightNodesOfACube)
{
    for (const bool ascii : both) {
        const stl_mesh m = read_stl(stl_bytes(cube_facets(0.5), ascii), ascii);
        EXPECT_EQ(m.code, 12);
        EXPECT_EQ(m.pos.cols, 8U);
        EXPECT_EQ(m.connect.cols, 12U);
    }
}

TEST(STLInput, ReadsBinaryWhateverTheHeaderSays)
{
    const std::string bytes = stl_binary({one_facet}, 1);
    ASSERT_EQ(bytes.substr(0, 5), "solid");
    EXPECT_EQ(read_stl(bytes, false).connect, columns({{0, 1, 2}}));
    EXPECT_EQ(read_stl(bytes, true), stl_mesh{});
}

TEST(STLInput, TakesTextForBinaryWhenAskedTo)
{
    const std::string text = stl_text({one_facet, one_facet, one_facet, one_facet});
    const stl_mesh m = read_stl(text, false);
    EXPECT_GT(m.pos.cols, 0U);
    EXPECT_EQ(m, stl_model_of(text, false));
    EXPECT_EQ(read_stl("solid a\nendsolid a\n", false), stl_mesh{-1}) << "the header is not complete";
}

TEST(STLInput, ReturnsNoTrianglesOfAnEmptySolid)
{
    for (const char* text : {"solid a\nendsolid a\n", "solid a\n", "solid", "\n", " "})
        EXPECT_EQ(read_stl(text, true), stl_mesh{}) << text;
    EXPECT_EQ(read_stl(stl_binary({}, 0), false), stl_mesh{});
}

TEST(STLInput, RefusesAFileWithoutFirstLineOrHeader)
{
    EXPECT_EQ(read_stl("", true), stl_mesh{-1});
    const std::string header = stl_binary({}, 0);
    ASSERT_EQ(header.size(), 84U);
    for (std::size_t n = 0; n < 84; ++n) EXPECT_EQ(read_stl(header.substr(0, n), false), stl_mesh{-1}) << n;
}

TEST(STLInput, EndsAtTextBehindTheThirdNumberOfACorner)
{
    const std::string before = "solid\n" + good_facet;
    const std::string odd_last = facet_head + "vertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0 x\n" + facet_tail;
    const std::string odd_first = facet_head + "vertex 0 0 0 x\nvertex 1 0 0\nvertex 0 1 0\n" + facet_tail;
    // The text takes the place of the line "endloop", so the line "endfacet" is met where a facet should begin.
    EXPECT_EQ(read_stl(before + odd_last + good_facet, true).code, 2);
    EXPECT_EQ(read_stl(before + odd_first + good_facet, true).code, 1);
}

TEST(STLInput, IgnoresTrianglesWithoutAreaInTheTolerance)
{
    for (const bool ascii : both) {
        const facet_corners tiny = {{0, 0, 0}, {1e-6, 0, 0}, {2e-6, 0, 0}};
        const stl_mesh m = read_stl(stl_bytes({tiny, one_facet, other_facet(0.03)}, ascii), ascii);
        EXPECT_EQ(m.code, 2) << "the flat one is welded into one node";
        EXPECT_EQ(m.pos.cols, 4U);
    }
}

TEST(STLInput, WeldsUpToATwentiethOfTheLeastHeight)
{
    // The second facet has the least height, (1 - gap) / sqrt(2): gaps up to 0.034148 are closed.
    for (const bool ascii : both) {
        EXPECT_EQ(read_stl(stl_bytes({one_facet, other_facet(0.0341)}, ascii), ascii).pos.cols, 4U);
        EXPECT_EQ(read_stl(stl_bytes({one_facet, other_facet(0.0342)}, ascii), ascii).pos.cols, 6U);
        // A small facet far away lowers the tolerance for all.
        const facet_corners small = {{9, 9, 9}, {9.5, 9, 9}, {9, 9.5, 9}};
        EXPECT_EQ(read_stl(stl_bytes({one_facet, other_facet(0.0341), small}, ascii), ascii).pos.cols, 9U);
    }
}

TEST(STLInput, WeldsNothingWithoutAnyHeight)
{
    const facet_corners point = {{1, 1, 1}, {1, 1, 1}, {1, 1, 1}};
    const facet_corners line = {{0, 0, 0}, {1, 1, 1}, {2, 2, 2}};
    const facet_corners flat = {{0, 0, 0}, {0, 0, 0}, {1, 2, 3}};
    for (const bool ascii : both) {
        const stl_mesh m = read_stl(stl_bytes({point, line, flat, point}, ascii), ascii);
        EXPECT_EQ(m.code, 4);
        EXPECT_EQ(m.pos, points({{1, 1, 1},
                                 {1, 1, 1},
                                 {1, 1, 1},
                                 {0, 0, 0},
                                 {1, 1, 1},
                                 {2, 2, 2},
                                 {0, 0, 0},
                                 {0, 0, 0},
                                 {1, 2, 3},
                                 {1, 1, 1},
                                 {1, 1, 1},
                                 {1, 1, 1}}));
        EXPECT_EQ(m.connect, columns({{0, 1, 2}, {3, 4, 5}, {6, 7, 8}, {9, 10, 11}}));
    }
}

TEST(STLInput, KeepsTheCornersOfABrokenFacetOnlyWhenNothingIsWelded)
{
    const std::string corner = "vertex 5 6 7\n";
    EXPECT_EQ(read_stl("solid\n" + facet_head + corner + corner, true),
              (stl_mesh{0, points({{5, 6, 7}, {5, 6, 7}}), {}}));
    EXPECT_EQ(read_stl("solid\n" + good_facet + facet_head + corner + corner, true),
              (stl_mesh{1, points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}), columns({{0, 1, 2}})}));
    const std::string two = stl_binary({{{0, 0, 0}, {0, 0, 0}, {0, 0, 0}}, one_facet}, 2);
    EXPECT_EQ(read_stl(two.substr(0, 84 + 50 + 24), false).pos, points({{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}}));
    EXPECT_EQ(read_stl(two.substr(0, two.size() - 1), false).pos.cols, 6U);
    EXPECT_EQ(read_stl(two.substr(0, two.size() - 1), false).code, 1);
    const std::string turned = stl_binary({one_facet, one_facet}, 2);
    EXPECT_EQ(read_stl(turned.substr(0, turned.size() - 1), false).pos.cols, 3U);
}

TEST(STLInput, BelievesTheCountOnlyAsFarAsTheFileReaches)
{
    for (const std::uint32_t count : {2U, 3U, 0x7FFFFFFFU, 0xFFFFFFFFU})
        EXPECT_EQ(read_stl(stl_binary({one_facet, other_facet(0)}, count), false).code, 2) << count;
    EXPECT_EQ(read_stl(stl_binary({one_facet, other_facet(0)}, 1), false).code, 1) << "what follows is left alone";
    EXPECT_EQ(read_stl(stl_binary({one_facet, other_facet(0)}, 0), false), stl_mesh{});
}

TEST(STLInput, TakesTheKeywordsAsTheyAreAndTheBlanksAsTheyCome)
{
    const auto facets_of = [](const std::string& text) { return read_stl(text, true).code; };
    EXPECT_EQ(facets_of("x\nfacetnormal0 0 1\n\nouter\nvertex0 0 0vertex1 0 0\tvertex\n0\n1\n0\nendloop\nendfacet"), 1);
    EXPECT_EQ(facets_of("x\r\n\r\nfacet \v\f normal 0 0 1\r\nouter loop\r\n vertex 0 0 0\r\nvertex 1 0 0\r\n\r\nvertex "
                        "0 1 0\r\nx\r\ny\r\n"),
              1);
    EXPECT_EQ(facets_of("x\nFACET NORMAL 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nx\ny\n"), 0);
    EXPECT_EQ(facets_of("x\nfacet normal 0 0 1\nouter loop\nVertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nx\ny\n"), 0);
    EXPECT_EQ(facets_of("x\nfacet normal 0 0 \nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nx\ny\n"), 0);
    EXPECT_EQ(facets_of("x\nfacet normal 0 0 1\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nx\ny\n"), 0);
    EXPECT_EQ(
        facets_of("x\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nendloop endfacet\n"),
        0);
    EXPECT_EQ(facets_of("x\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nx\n\n"), 1);
    EXPECT_EQ(facets_of(good_facet), 0) << "the first line is the name, whatever it says";
    EXPECT_EQ(facets_of("solid\n" + good_facet + "endsolid\nsolid\n" + good_facet), 1) << "one solid is read";
}

TEST(STLInput, ReadsLinesInPiecesOf255Characters)
{
    for (const std::size_t length : {253U, 254U, 255U, 256U, 300U, 509U, 510U, 600U}) {
        SCOPED_TRACE(length);
        const std::string name = std::string(length, 's') + "\n" + good_facet;
        EXPECT_EQ(read_stl(name, true), stl_model_of(name, true));
        EXPECT_EQ(read_stl(name, true).code, length <= 255 ? 1 : 0);
        const std::string blanks = std::string(length, ' ') + "\n" + good_facet;
        EXPECT_EQ(read_stl(blanks, true).code, 1) << "what is left of the line is white space";
        const std::string loop =
            "solid\n facet normal 0 0 1\n" + std::string(length, 'o') + good_facet.substr(good_facet.find('\n'));
        EXPECT_EQ(read_stl(loop, true), stl_model_of(loop, true));
    }
    // 255 characters and the rest of the line are the two lines behind the corners.
    const std::string long_end = "solid\n" + facet_head + "vertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\n" +
                                 std::string(300, 'e') + "\n" + good_facet;
    EXPECT_EQ(read_stl(long_end, true).code, 2);
    EXPECT_EQ(read_stl(long_end, true), stl_model_of(long_end, true));
}

TEST(STLInput, ReadsNumbersInEveryFormOfTheRuntime)
{
    const auto first_node = [](const std::string& numbers) {
        return read_stl("s\n" + facet_head + "vertex " + numbers + "\n", true);
    };
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const auto node = [](double x, double y, double z) { return stl_mesh{0, points({{x, y, z}}), {}}; };
    EXPECT_EQ(first_node("+1 -2. .5e1"), node(1, -2, 5));
    EXPECT_EQ(first_node("0x1p4 0X.8 -0x1p-1074"), node(16, .5, -4.9406564584124654e-324));
    EXPECT_EQ(first_node("inf -INFINITY infinity"), node(infinity, -infinity, infinity));
    EXPECT_EQ(first_node("nan -nan 1e400"), node(NAN, -NAN, infinity));
    EXPECT_EQ(first_node("1e-400 1e 1.5e+"), node(0, 1, 1.5));
    EXPECT_EQ(first_node("1.5.5.5"), node(1.5, .5, .5));
    EXPECT_EQ(first_node("1-2+3"), node(1, -2, 3));
    for (const char* bad : {"1 2", "1 2 x", "1 2 0x", "1 2 infi", "1 2 na", "1 2 -", "1 2 .", "1,2 3 4", "nan(1) 2 3"})
        EXPECT_EQ(first_node(bad), stl_mesh{}) << bad;
}

TEST(STLInput, NeverWeldsNodesThatAreNotANumber)
{
    const std::string odd = facet_head + "vertex nan 0 0\nvertex 1 0 0\nvertex 0 1 0\n" + facet_tail;
    const std::string infinite = facet_head + "vertex inf 0 0\nvertex 1 0 0\nvertex 0 1 0\n" + facet_tail;
    EXPECT_EQ(read_stl("s\n" + odd + odd, true).pos.cols, 6U) << "there is no height";
    const stl_mesh m = read_stl("s\n" + odd + good_facet + odd + infinite, true);
    EXPECT_EQ(m.code, 4);
    EXPECT_EQ(m.pos.cols, 6U) << "two of no value, one infinite and the three of the good facet";
    EXPECT_EQ(m, stl_model_of("s\n" + odd + good_facet + odd + infinite, true));
}

TEST(STLInput, ReplacesOutputsThatShareTheirBuffer)
{
    for (const bool ascii : both) {
        const temporary_file file(stl_bytes({one_facet}, ascii));
        dense2D<double> pos = points({{9, 9, 9}, {8, 8, 8}});
        dense2D<unsigned int> connect = columns({{3, 3, 3}});
        dense2D<double> other_pos;
        dense2D<unsigned int> other_connect;
        other_pos.shallow_copy(pos);
        other_connect.shallow_copy(connect);
        ASSERT_EQ(STL_input(file.name(), pos, connect, ascii), 1);
        EXPECT_EQ(other_pos, points({{9, 9, 9}, {8, 8, 8}}));
        EXPECT_EQ(other_connect, columns({{3, 3, 3}}));
        EXPECT_EQ(pos.buffer->ref_count, 1);
        EXPECT_EQ(connect.buffer->ref_count, 1);
    }
}

TEST(STLInput, ReadsBackWhatIsWritten)
{
    std::mt19937 random(3);
    for (int k = 0; k < 300; ++k) {
        // Far apart, and no facet is too flat: the weld finds exactly the nodes that were written.
        dense2D<double> pos(3, 12);
        for (unsigned int j = 0; j < 12; ++j) {
            pos(0, j) = 10 * j;
            pos(1, j) = 10 * (j * j % 7) + 0.01 * static_cast<double>(random() % 100);
            pos(2, j) = 10 * (j * 5 % 11) + 0.01 * static_cast<double>(random() % 100);
        }
        dense2D<unsigned int> connect(3, 8);
        for (unsigned int j = 0; j < 8; ++j) {
            const unsigned int first = static_cast<unsigned int>(random() % 10);
            for (unsigned int i = 0; i < 3; ++i) connect(i, j) = first + i;
        }
        for (const bool ascii : both) {
            const temporary_file file;
            ASSERT_EQ(STL_output(file.name(), pos, connect, ascii), 0);
            const stl_mesh m = read_stl_file(file.name(), ascii);
            ASSERT_EQ(m.code, 8);
            for (unsigned int j = 0; j < 8; ++j)
                for (unsigned int i = 0; i < 3; ++i)
                    for (unsigned int c = 0; c < 3; ++c)
                        ASSERT_NEAR(m.pos(c, m.connect(i, j)), pos(c, connect(i, j)), 1e-4);
        }
    }
}
