#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include "findings/examine.h"
#include "findings/words_of_ids.h"
#include "formats/digits.h"
#include "tools/findings/mesh_by_hand.h"

// Edges that a format with few digits would close.
namespace {

using test::mesh_by_hand;

// A number as the writers put it: by the C library, or in single precision.
std::string written(const std::string& writer, double value)
{
    const char* format = writer == "stl"                     ? nullptr
                         : writer == "the library's ensight" ? "%.5e"
                         : writer == "the library's obj"     ? "%.8e"
                         : writer == "the library's vtk"     ? "%.6f"
                                                             : "%.6e";
    char text[64];
    std::snprintf(text, sizeof text, format != nullptr ? format : "%a",
                  format != nullptr ? value : static_cast<double>(static_cast<float>(value)));
    return text;
}

TEST(Digits, KeepApartWhatLiesFurtherThanTheSpacingAndNothingElse)
{
    EXPECT_EQ(tool::writers_of_few_digits().size(), 6u);
    for (const tool::digits_of_writer& writer : tool::writers_of_few_digits()) {
        for (const double x : {0.0390625, 1.5, 250.0, 3e5}) {
            const double spacing = writer.spacing(x);
            EXPECT_NE(written(writer.name, x), written(writer.name, x - 1.01 * spacing)) << writer.name << ' ' << x;
            EXPECT_EQ(written(writer.name, x), written(writer.name, x - 0.4 * spacing)) << writer.name << ' ' << x;
        }
    }
}

TEST(Digits, OfNoPlaceAtAllHaveNoSpacing)
{
    for (const tool::digits_of_writer& writer : tool::writers_of_few_digits())
        EXPECT_EQ(writer.spacing(0) == 0, writer.of != tool::digits_of_writer::kind::behind_point) << writer.name;
}

// Two triangles on an edge of length 9e-6 in a mesh of the size 10.
tool::mesh with_a_short_edge()
{
    return mesh_by_hand({{0, 0, 0}, {0, 9e-6, 0}, {9, 0, 0}, {-9, 0, 0}}).with(zeb::EL_TRIA3, {{0, 2, 1}, {0, 1, 3}});
}

TEST(LostEdges, AreToldForEveryWriterWithTooFewDigits)
{
    const tool::examination verdict = examine(with_a_short_edge(), tool::rules_of_profile("default"));
    ASSERT_EQ(verdict.lost.size(), 1u);
    EXPECT_EQ(verdict.lost[0].count, 1u);
    EXPECT_EQ(words_of(verdict.lost[0]),
              "1 edge below 1e-05, which the library's ensight (6 digits) does not keep apart");
}

TEST(LostEdges, AreNoFinding)
{
    const tool::mesh m = mesh_by_hand({{0, 0, 0}, {0, 1e-7, 0}, {1e-7, 0, 0}}).with(zeb::EL_TRIA3, {{0, 2, 1}});
    const tool::examination verdict = examine(m, tool::rules_of_profile("default"));
    EXPECT_TRUE(verdict.is_clean());
    ASSERT_EQ(verdict.lost.size(), 1u);
    EXPECT_EQ(verdict.lost[0].writer->name, std::string("the library's vtk"));
    EXPECT_EQ(verdict.lost[0].count, 3u);
}

TEST(LostEdges, AreNotLookedForWhenShortEdgesAreOff)
{
    const tool::rules off =
        tool::rules_from_json(R"({"faults": {"short_edge": "off"}})", tool::rules_of_profile("default"));
    EXPECT_TRUE(examine(with_a_short_edge(), off).lost.empty());
}

}  // namespace
