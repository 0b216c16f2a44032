#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <iterator>
#include <random>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "io/stl_model.h"
#include "support/comma_locale.h"
#include "support/open_files.h"
#include "support/small_stack.h"

using namespace zeb::tessolv;
using namespace test;

namespace {

constexpr bool both[] = {true, false};

// Facets of several forms of number, name and line.
const std::string odd_text =
    "solid \xC3\xA9t\xC3\xA9\r\n"
    "   facet normal 0.577350 -5.773503e-01 +.5\r\n outer loop\r\n  vertex 0 0 0\r\n  vertex 1.0e+000 0 0\r\n"
    "  vertex 0 1 0\r\n endloop\r\n endfacet\r\n"
    "facet normal nan inf 0x1p0\nouter loop\nvertex 1 0 0\nvertex 1 1.00 0\nvertex 0 .01 1e400\nendloop\nendfacet\n"
    "facet normal 0 0 0\nouter loop\nvertex 1 0 0\nvertex 1 1 0\nvertex 0 1 0.01\nendloop\nendfacet\n"
    "facet normal 0 0 1 outer loop\n\n vertex 2 2 2 vertex 2 2 2 vertex 3 2 2 endloop\nendfacet\n"
    "endsolid\n";

void damage(std::string& bytes, std::mt19937& random)
{
    static const std::string pieces[] = {"\n",
                                         " ",
                                         "\r\n",
                                         "-",
                                         "1",
                                         "x",
                                         ".",
                                         "e",
                                         "e+",
                                         "0x",
                                         "nan",
                                         "inf",
                                         "vertex",
                                         "facet",
                                         "normal",
                                         "1e999",
                                         std::string(1, '\0'),
                                         std::string(260, ' '),
                                         std::string(300, 'y')};
    const std::size_t at = random() % bytes.size();
    switch (random() % 5) {
        case 0:
            bytes[at] = static_cast<char>(random());
            break;
        case 1:
            bytes.insert(at, pieces[random() % std::size(pieces)]);
            break;
        case 2:
            bytes.erase(at, random() % 20);
            break;
        case 3:
            bytes.insert(at, bytes.substr(random() % bytes.size(), random() % 60));
            break;
        default:
            bytes[at] = "0123456789.-+e \n"[random() % 16];
    }
    if (bytes.empty()) bytes = "s";
}

}  // namespace

TEST(STLInput, ReadsAFileCutAtEachByte)
{
    const std::string binary = stl_binary(cube_facets(1), 12);
    for (const std::string& text : {odd_text, stl_text(cube_facets(1))})
        for (std::size_t n = 0; n <= text.size(); ++n)
            EXPECT_EQ(read_stl(text.substr(0, n), true), stl_model_of(text.substr(0, n), true))
                << "cut behind byte " << n;
    for (std::size_t n = 0; n <= binary.size(); ++n)
        EXPECT_EQ(read_stl(binary.substr(0, n), false), stl_model_of(binary.substr(0, n), false))
            << "cut behind byte " << n;
}

TEST(STLInput, ReadsDamagedTextByTheRules)
{
    std::mt19937 random(1);
    int shortened = 0;
    for (int k = 0; k < 3000; ++k) {
        std::string text = k % 2 == 0 ? odd_text : stl_text(cube_facets(k));
        for (std::size_t n = random() % 4; n > 0; --n) damage(text, random);
        const stl_mesh m = read_stl(text, true);
        shortened += m.code != (k % 2 == 0 ? 3 : 12);
        ASSERT_EQ(m, stl_model_of(text, true)) << text;
    }
    EXPECT_GT(shortened, 300);
    EXPECT_LT(shortened, 2700);
}

TEST(STLInput, ReadsDamagedBinaryByTheRules)
{
    std::mt19937 random(2);
    for (int k = 0; k < 2200; ++k) {
        std::string bytes = stl_binary(cube_facets(k + 1), 12);
        for (std::size_t n = random() % 4; n > 0; --n) damage(bytes, random);
        ASSERT_EQ(read_stl(bytes, false), stl_model_of(bytes, false));
    }
}

TEST(STLInput, ReadsFilesOfManyBlocks)
{
    // A strip whose facets share their nodes exactly, in text of lines of many lengths.
    std::mt19937 random(3);
    std::vector<facet_corners> facets;
    for (int k = 0; k < 3000; ++k) {
        const double x = k;
        facets.push_back({{x, 0, 0}, {x + 1, 0, 0}, {x, 1, 0}});
        facets.push_back({{x + 1, 0, 0}, {x + 1, 1, 0}, {x, 1, 0}});
    }
    std::string text = stl_text(facets);
    for (int k = 0; k < 2000; ++k) {
        const std::size_t word = text.find("vertex ", random() % text.size());
        if (word != std::string::npos) text.insert(word + 6, std::string(random() % 200, ' '));
    }
    const stl_mesh expected = stl_model_of(text, true);
    EXPECT_EQ(expected.code, 6000);
    EXPECT_EQ(expected.pos.cols, 6002U);
    EXPECT_TRUE(read_stl(text, true) == expected);
    EXPECT_TRUE(read_stl(stl_binary(facets, 6000), false) == expected);
    text.insert(text.size() / 2, "y");
    EXPECT_TRUE(read_stl(text, true) == stl_model_of(text, true));
}

TEST(STLInput, ReadsWordsAndBlanksLongerThanABlock)
{
    const std::string blanks(300000, ' ');
    const std::string zeros(300000, '0');
    const std::string facet = "facet" + blanks + "normal " + zeros + " -" + zeros + ".5 1e" + zeros + "1" + blanks +
                              "\nouter loop\n vertex 0." + zeros + "1e300001 0 0 vertex" + blanks + "2" + blanks +
                              "1 1 vertex " + zeros + "1 0 2" + blanks + "endloop\nendfacet\n";
    const std::string text = "solid\n" + facet + blanks + facet;
    const stl_mesh m = read_stl(text, true);
    EXPECT_EQ(m, (stl_mesh{2, points({{1, 0, 0}, {2, 1, 1}, {1, 0, 2}}), columns({{0, 1, 2}, {0, 1, 2}})}));
    EXPECT_EQ(m, stl_model_of(text, true));
}

TEST(STLInput, PassesOverALineOfThirtyMegabytes)
{
    const temporary_file file("solid");
    {
        const std::string piece(1000000, 'x');
        std::FILE* f = std::fopen(file.name(), "ab");
        for (int k = 0; k < 30; ++k) std::fwrite(piece.data(), 1, piece.size(), f);
        std::fclose(f);
    }
    EXPECT_EQ(read_stl_file(file.name(), true), stl_mesh{}) << "its second piece begins no facet";
}

// -- what the system may have in store

TEST(STLInput, LeavesNothingInTheOutputsWhenThereIsNoFile)
{
    const temporary_file missing;
    for (const bool ascii : both)
        for (const char* name :
             {static_cast<const char*>(nullptr), "", missing.name(), "/tmp", "/dev/null", "/dev/null/x"})
            EXPECT_EQ(read_stl_file(name, ascii), stl_mesh{-1}) << (name != nullptr ? name : "null");
}

TEST(STLInput, RefusesAFileWhoseBeginningCannotBeRead)
{
    // The memory of the process at address 0: it opens, and its reading fails.
    for (const bool ascii : both) EXPECT_EQ(read_stl_file("/proc/self/mem", ascii), stl_mesh{-1});
}

TEST(STLInput, DoesNotWaitForAFifoThatNobodyWritesTo)
{
    const temporary_file fifo;
    ASSERT_EQ(mkfifo(fifo.name(), 0600), 0);
    for (const bool ascii : both) EXPECT_EQ(read_stl_file(fifo.name(), ascii), stl_mesh{-1});
}

TEST(STLInput, ReadsAFifoWhoseWriterTakesItsTime)
{
    for (const bool ascii : both) {
        const std::string bytes = stl_bytes(cube_facets(1), ascii);
        const temporary_file fifo;
        ASSERT_EQ(mkfifo(fifo.name(), 0600), 0);
        const int writer = open(fifo.name(), O_RDWR);
        ASSERT_GE(writer, 0);
        std::thread late([&] {
            for (std::size_t at = 0; at < bytes.size(); at += 500) {
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
                EXPECT_GT(write(writer, bytes.data() + at, std::min<std::size_t>(500, bytes.size() - at)), 0);
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            close(writer);
        });
        const stl_mesh m = read_stl_file(fifo.name(), ascii);
        late.join();
        EXPECT_EQ(m.code, 12);
        EXPECT_EQ(m.pos.cols, 8U);
    }
}

TEST(STLInput, IsTheSameInEveryLocale)
{
    const stl_mesh expected = read_stl(odd_text, true);
    const comma_locale changed;
    EXPECT_EQ(read_stl(odd_text, true), expected);
}

TEST(STLInput, ClosesTheFileOnEveryReturn)
{
    const temporary_file text(odd_text);
    const temporary_file empty("");
    const std::ptrdiff_t before = open_files();
    for (const bool ascii : both)
        for (const char* name : {text.name(), empty.name(), "/tmp", "/proc/self/mem"}) read_stl_file(name, ascii);
    EXPECT_EQ(open_files(), before);
}

TEST(STLInput, MakesDoWithASmallStack)
{
    const temporary_file text(odd_text + std::string(1000, '7'));
    const temporary_file binary(stl_binary(cube_facets(1), 12));
    stl_mesh from_text, from_binary;
    run_on_small_stack([&] {
        from_text = read_stl_file(text.name(), true);
        from_binary = read_stl_file(binary.name(), false);
    });
    EXPECT_EQ(from_text.code, 3) << "the last facet has two equal corners";
    EXPECT_EQ(from_binary.code, 12);
}
