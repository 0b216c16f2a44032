#include "stl/stl_text.h"

#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/classic_locale.h"
#include "tools/stl_files.h"

namespace {

using test::O;
using test::text_facet;
using test::X;
using test::Y;
using tool::scan_stop;

tool::text_scan scan(const std::string& text)
{
    tool::byte_source in(std::span(reinterpret_cast<const unsigned char*>(text.data()), text.size()));
    return tool::scan_text(in);
}

// The rule of the library's reader with the formatted scan of the C runtime itself.
unsigned long facets_by_the_runtime(const std::string& text)
{
    std::FILE* f = fmemopen(const_cast<char*>(text.data()), text.size(), "r");
    const test::classic_locale classic;
    char line[256];
    double x = 0, y = 0, z = 0;
    unsigned long facets = 0;
    const auto skip_lines = [&](int count) {
        while (count > 0 && std::fgets(line, sizeof line, f) != nullptr) --count;
        return count == 0;
    };
    const auto whole_facet = [&] {
        if (std::fscanf(f, "   facet normal %lg %lg %lg\n", &x, &y, &z) != 3 || !skip_lines(1)) return false;
        for (int corner = 0; corner < 3; ++corner)
            if (std::fscanf(f, "      vertex %lg %lg %lg\n", &x, &y, &z) != 3) return false;
        return skip_lines(2);
    };
    if (skip_lines(1))
        while (whole_facet()) ++facets;
    std::fclose(f);
    return facets;
}

const std::string one = text_facet({O, X, Y});

struct stop_case {
    const char* name;
    std::string text;
    unsigned long facets;
    scan_stop stop;
    unsigned long line;
};
class ScanText : public testing::TestWithParam<stop_case> {};

TEST_P(ScanText, StopsWhereTheReaderStops)
{
    const stop_case& row = GetParam();
    const tool::text_scan found = scan(row.text);
    EXPECT_EQ(found.facets, row.facets);
    EXPECT_EQ(found.stop, row.stop);
    EXPECT_EQ(found.line, row.line);
    EXPECT_EQ(facets_by_the_runtime(row.text), row.facets) << "the row itself is wrong";
}

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    return text.replace(text.find(from), from.size(), to);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ScanText,
    testing::Values(
        stop_case{"whole", "solid a\n" + one + one + "endsolid a\n", 2, scan_stop::end_of_solid, 16},
        stop_case{"empty_solid", "solid a\nendsolid a\n", 0, scan_stop::end_of_solid, 2},
        stop_case{"second_solid", "solid a\n" + one + "endsolid\nsolid b\n" + one + "endsolid\n", 1,
                  scan_stop::end_of_solid, 9},
        stop_case{"no_end", "solid a\n" + one, 1, scan_stop::end_of_file, 9},
        stop_case{"end_cut", "solid a\n" + one + "endso", 1, scan_stop::end_of_file, 9},
        stop_case{"name_alone", "solid a\n", 0, scan_stop::end_of_file, 2},
        stop_case{"capitals", "solid a\n" + one + "FACET NORMAL 0 0 1\n", 1, scan_stop::no_facet, 9},
        stop_case{"end_in_capitals", "solid a\n" + one + "ENDSOLID\n", 1, scan_stop::end_of_solid, 9},
        stop_case{"two_numbers_in_normal", "solid a\n" + replaced(one, "0 0 1", "0 0 \n") + "endsolid\n", 0,
                  scan_stop::no_facet, 2},
        stop_case{"word_in_vertex", "solid a\n" + one + replaced(one, "1 0 0", "1 o 0") + "endsolid\n", 1,
                  scan_stop::no_vertex, 12},
        stop_case{"fourth_number", "solid a\n" + replaced(one, "1 0 0", "1 0 0 7") + "endsolid\n", 0,
                  scan_stop::no_vertex, 5},
        stop_case{"two_corners", "solid a\n" + replaced(one, "      vertex 0 1 0\n", "") + one, 0, scan_stop::no_vertex,
                  6},
        stop_case{"cut_in_keyword", "solid a\n" + one + "  fac", 1, scan_stop::cut_short, 9},
        stop_case{"cut_in_normal", "solid a\n" + one + "facet normal 0 0", 1, scan_stop::cut_short, 9},
        stop_case{"cut_in_vertex", "solid a\n" + one.substr(0, one.find("0 1 0") + 3), 0, scan_stop::cut_short, 6},
        stop_case{"cut_before_endfacet", "solid a\n" + one.substr(0, one.find("endloop") + 7), 0, scan_stop::cut_short,
                  7},
        stop_case{"cut_behind_endfacet", "solid a\n" + one.substr(0, one.size() - 1), 1, scan_stop::end_of_file, 8},
        stop_case{"no_blank_needed", "solid a\nfacetnormal0 0 1\nx\nvertex0 0 0vertex1 0 0vertex0 1 0\ny\nz\n", 1,
                  scan_stop::end_of_file, 7},
        stop_case{"long_name", "solid " + std::string(300, 'n') + "\n" + one, 0, scan_stop::no_facet, 1}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ScanText, TakesANameOf254LettersAndRefusesALongerLine)
{
    const std::string name(254, 'n');
    EXPECT_EQ(scan(name + "\n" + one).facets, 1u);
    EXPECT_FALSE(scan(name + "\n" + one).first_line_too_long);
    EXPECT_EQ(scan(name + "nn\n" + one).facets, 0u);
    EXPECT_TRUE(scan(name + "nn\n" + one).first_line_too_long);
    EXPECT_EQ(facets_by_the_runtime(name + "\n" + one), 1u);
    EXPECT_EQ(facets_by_the_runtime(name + "nn\n" + one), 0u);
}

// Every short text over the characters that numbers are made of, as the last number of a normal.
TEST(ScanText, TakesTheNumbersThatTheRuntimeTakes)
{
    const std::string letters = "0.1e+xpnif ";
    const std::string begin = "s\nfacet normal 0 0 ";
    const std::string rest = "\nouter\nvertex 0 0 0 vertex 0 0 0 vertex 0 0 0\n1\n2\n";
    unsigned long accepted = 0;
    for (unsigned long code = 0; code < 11ul * 11 * 11 * 11 * 11; ++code) {
        std::string number;
        for (unsigned long left = code, k = 0; k < 5; ++k, left /= letters.size())
            number += letters[left % letters.size()];
        std::string text = begin;
        text.append(number).append(rest);
        const unsigned long expected = facets_by_the_runtime(text);
        ASSERT_EQ(scan(text).facets, expected) << '"' << number << '"';
        accepted += expected;
    }
    EXPECT_GT(accepted, 1000u);
}

TEST(ScanText, TakesWholeWordsAndLongNumbersAsTheRuntimeDoes)
{
    for (const std::string number :
         {"nan",      "NaN",  "+nan",  "-NAN",   "nan(1)", "nano",     "inf", "INFINITY", "infinit",
          "infinite", "-inf", "1e400", "1e-400", "0x1p3",  "0X1.8P-2", "0x",  "0x.",      "0x.8",
          "0xg",      "0x1p", "1e",    "1e+",    "1e+-1",  "1d5",      "1,5", "--1",      "+-1",
          "+.5",      "-.e1", ".",     "1.2.3",  "000",    "1_0",      "\v7", "1\r"}) {
        const std::string text =
            "s\nfacet normal 0 " + number + " 0\nouter\nvertex 0 0 0 vertex 0 0 0 vertex 0 0 0\n1\n2\n";
        EXPECT_EQ(scan(text).facets, facets_by_the_runtime(text)) << number;
    }
}

// Well-formed files with random damage: bytes changed, removed, doubled, the end cut off.
TEST(ScanText, AgreesWithTheRuntimeOnDamagedFiles)
{
    std::mt19937 random(7);
    const auto below = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
    const std::string bytes = std::string(" \n\r\tfacetnormlvx0123.e+-XN\xff", 27) + '\0';
    unsigned long stopped_early = 0;
    for (int file = 0; file < 20000; ++file) {
        std::string text = "solid a\n";
        for (std::size_t k = 0, n = below(4); k <= n; ++k) text += one;
        text += "endsolid a\n";
        for (std::size_t k = 0, n = below(4); k < n; ++k) {
            const std::size_t at = below(text.size());
            switch (below(4)) {
                case 0:
                    text[at] = bytes[below(bytes.size())];
                    break;
                case 1:
                    text.erase(at, 1 + below(12));
                    break;
                case 2:
                    text.insert(at, text.substr(below(text.size()), below(40)));
                    break;
                default:
                    text.insert(at, 1, bytes[below(bytes.size())]);
            }
        }
        if (below(4) == 0) text.resize(1 + below(text.size()));
        const tool::text_scan found = scan(text);
        ASSERT_EQ(found.facets, facets_by_the_runtime(text)) << text;
        stopped_early += found.stop != scan_stop::end_of_solid;
    }
    EXPECT_GT(stopped_early, 5000u);
}

// The file arrives in blocks; a facet may lie across their border.
TEST(ScanText, ReadsAFileLongerThanItsBlocks)
{
    const test::temporary_folder folder;
    std::string text = "solid long\n";
    for (int k = 0; k < 5000; ++k) text += one;
    const tool::input_file file(folder.write("long.stl", text + "endsolid\n"));
    tool::byte_source in(file);
    const tool::text_scan found = tool::scan_text(in);
    EXPECT_EQ(found.facets, 5000u);
    EXPECT_EQ(found.line, 35002u);
}

}  // namespace
