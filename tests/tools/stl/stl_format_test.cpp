#include "stl/stl_format.h"

#include <cstdint>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "errors.h"
#include "tools/stl_files.h"

namespace {

using test::binary_facets;
using test::binary_header;
using test::binary_stl;
using test::tetrahedron;
using test::text_stl;

// "ascii", "binary", or what stands in the way.
std::string detect(const std::string& bytes)
{
    const test::temporary_folder folder;
    try {
        return tool::name_of(tool::detect_format(tool::input_file(folder.write("file", bytes))));
    } catch (const tool::unreadable& error) {
        return error.what();
    }
}

const std::string neither = "is no STL file: neither text with facets nor a binary header with facets behind it";

struct format_case {
    const char* name;
    std::string bytes;
    std::string format;
};
class DetectFormat : public testing::TestWithParam<format_case> {};

TEST_P(DetectFormat, ByTheSizeAndTheContent)
{
    EXPECT_EQ(detect(GetParam().bytes), GetParam().format);
}

std::string truncated(const std::string& bytes, std::size_t size)
{
    return bytes.substr(0, size);
}

std::string random_bytes(unsigned seed, std::size_t size)
{
    std::mt19937 random(seed);
    std::string bytes;
    while (bytes.size() < size) bytes += static_cast<char>(random() & 0xFF);
    return bytes;
}

std::string prose(const std::string& begin)
{
    std::string text = begin;
    for (int k = 0; k < 40; ++k) text += "Steel is an alloy of iron and carbon.\n";
    return text;
}

INSTANTIATE_TEST_SUITE_P(
    Binary, DetectFormat,
    testing::Values(format_case{"plain", binary_stl(tetrahedron), "binary"},
                    format_case{"begins_with_solid", binary_stl(tetrahedron, "solid part"), "binary"},
                    format_case{"begins_like_a_whole_text",
                                binary_stl(tetrahedron, "solid a\nfacet normal 0 0 1\nouter loop\n"), "binary"},
                    format_case{"cut_in_a_zero_normal", truncated(binary_stl(tetrahedron), 88), "binary"},
                    format_case{"no_facets", binary_header("", 0), "binary"},
                    format_case{"bytes_after_the_end", binary_stl(tetrahedron) + "trailing bytes", "binary"},
                    format_case{"bytes_after_no_facets", binary_header("empty", 0) + "tail", "binary"},
                    format_case{"many_bytes_after_the_end", binary_stl(tetrahedron) + random_bytes(3, 5000), "binary"},
                    format_case{"number_of_facets_left_at_0", binary_header("stream", 0) + binary_facets(tetrahedron),
                                "binary"},
                    format_case{"cut_in_a_facet", truncated(binary_stl(tetrahedron, "solid part"), 200), "binary"},
                    format_case{"cut_in_the_first_facet", truncated(binary_stl(tetrahedron), 120), "binary"},
                    format_case{"cut_behind_the_header", truncated(binary_stl(tetrahedron), 84), "binary"}),
    [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Text, DetectFormat,
    testing::Values(format_case{"plain", text_stl(tetrahedron), "ascii"},
                    format_case{"empty_solid", "solid a\nendsolid a\n", "ascii"},
                    format_case{"zero_bytes_behind_an_empty_solid", "solid a\nendsolid a\n" + std::string(100, '\0'),
                                "ascii"},
                    format_case{"one_line", "solid a\n", "ascii"},
                    format_case{"capitals", "SOLID A\nFACET NORMAL 0 0 1\n", "ascii"},
                    format_case{"blank_in_front", "  " + text_stl(tetrahedron), "ascii"},
                    format_case{"cut_in_the_first_facet", truncated(text_stl(tetrahedron), 40), "ascii"},
                    format_case{"odd_first_line", "# made by hand\n" + text_stl(tetrahedron).substr(11), "ascii"},
                    format_case{"zero_byte_in_the_name",
                                std::string("solid a\0b\n", 10) + text_stl(tetrahedron).substr(11), "ascii"},
                    format_case{"byte_order_mark", "\xEF\xBB\xBF" + text_stl(tetrahedron), "ascii"},
                    format_case{"name_in_utf8", "solid \xE6\x9C\x88\n" + text_stl(tetrahedron).substr(11), "ascii"}),
    [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(
    NoStl, DetectFormat,
    testing::Values(format_case{"empty", "", "is empty"}, format_case{"prose", prose("Steel.\n"), neither},
                    format_case{"prose_about_solids", prose("Solid advice:\n"), neither},
                    format_case{"header_of_another_kind", "TZif2" + binary_header(std::string(3, '\1'), 0) + "tail",
                                neither},
                    format_case{"text_whose_bytes_could_be_numbers", std::string(400, '0'), neither},
                    format_case{"short_prose", "hello\n", neither},
                    format_case{"random_bytes", random_bytes(1, 5000), neither},
                    format_case{"few_random_bytes", random_bytes(2, 50), neither},
                    format_case{"zeros_and_a_large_number", binary_header("", 1000) + std::string(5000, '\0'), neither},
                    format_case{"small_integers",
                                binary_header("", 100) +
                                    [] {
                                        std::string words;
                                        for (char k = 1; k < 100; ++k) words += std::string{k, '\0', '\0', '\0'};
                                        return words;
                                    }(),
                                neither}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(DetectFormat, TakesNoRandomFileForAnStl)
{
    for (unsigned seed = 100; seed < 600; ++seed) EXPECT_EQ(detect(random_bytes(seed, 85 + seed)), neither) << seed;
}

TEST(LayoutOf, ComparesTheAnnouncedFacetsWithTheRoomForThem)
{
    const test::temporary_folder folder;
    const auto layout = [&](const std::string& bytes) {
        return tool::layout_of(tool::input_file(folder.write("file", bytes)));
    };

    EXPECT_TRUE(layout(binary_stl(tetrahedron)).fits);
    EXPECT_EQ(layout(binary_stl(tetrahedron)).announced, 4u);
    EXPECT_EQ(layout(binary_stl(tetrahedron)).room, 4u);

    const auto hostile = layout(binary_header("", 0xFFFFFFFF) + std::string(99, 'x'));
    EXPECT_FALSE(hostile.fits);
    EXPECT_EQ(hostile.announced, 4294967295u);
    EXPECT_EQ(hostile.room, 1u);
}

}  // namespace
