#include <chrono>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tools/program.h"
#include "tools/pseudo_terminal.h"
#include "tools/stl_files.h"

// What the program shows on a terminal: a line about the progress, and colours.
namespace {

using namespace std::chrono_literals;
using test::run_result;
using test::temporary_folder;
using test::terminal_result;
using test::tessolv;
using test::tessolv_on_terminal;

using strings = std::vector<std::string>;

const std::string part = test::binary_stl(test::tetrahedron);
const std::string erased = "\r\033[K";

TEST(Progress, TellsWhatIsReadAfterHalfASecondAndIsErased)
{
    const strings arguments{"info", "-", "--format", "stl"};
    const terminal_result result = tessolv_on_terminal(arguments, {.input = part, .until = "standard input"});
    EXPECT_EQ(result.status, 0);
    EXPECT_GE(result.waited, 500ms);
    EXPECT_EQ(result.screen.find(erased + "tessolv: reading standard input"), 0u) << result.screen;
    ASSERT_GE(result.screen.size(), erased.size());
    EXPECT_EQ(result.screen.substr(result.screen.size() - erased.size()), erased);
    EXPECT_NE(result.out.find("4 triangles"), std::string::npos) << result.out;
}

TEST(Progress, IsErasedBeforeACommandComplains)
{
    const strings arguments{"info", "-", "--format", "stl"};
    const terminal_result result = tessolv_on_terminal(arguments, {.input = "", .until = "standard input"});
    EXPECT_EQ(result.status, 3);
    EXPECT_NE(result.screen.find(erased + "tessolv: -: "), std::string::npos) << result.screen;
}

TEST(Progress, IsNotShownForShortWork)
{
    const temporary_folder folder;
    const std::string path = folder.write("part.stl", part);
    for (int attempt = 0; attempt < 20; ++attempt) {
        const terminal_result result = tessolv_on_terminal({"info", path});
        if (result.whole > 450ms) continue;
        EXPECT_EQ(result.screen, "");
        return;
    }
    GTEST_SKIP() << "this machine is too busy for a short run";
}

TEST(Progress, IsNotShownWithJsonOrQuietOrOnADumbTerminal)
{
    const strings arguments{"info", "-", "--format", "stl"};
    for (const std::string flag : {"--json", "--quiet"}) {
        strings all = arguments;
        all.push_back(flag);
        const terminal_result result = tessolv_on_terminal(all, {.input = part, .held = 900ms});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.screen, "") << flag;
    }
    EXPECT_EQ(tessolv_on_terminal(arguments, {.environment = {"TERM=dumb"}, .input = part, .held = 900ms}).screen, "");
}

struct colour_case {
    strings options;
    strings environment;
    bool on_terminal;
    bool coloured;
};

void PrintTo(const colour_case& c, std::ostream* out)
{
    *out << testing::PrintToString(c.options) << testing::PrintToString(c.environment) << c.on_terminal;
}

class Colour : public testing::TestWithParam<colour_case> {};

TEST_P(Colour, IsUsedWhereItIsWanted)
{
    const auto& [options, environment, on_terminal, coloured] = GetParam();
    const temporary_folder folder;
    for (const strings& more : {strings{}, strings{"--ids"}}) {
        strings arguments{"check", folder.write("part.stl", part)};
        arguments.insert(arguments.end(), options.begin(), options.end());
        arguments.insert(arguments.end(), more.begin(), more.end());
        std::string shown;
        if (on_terminal)
            shown = tessolv_on_terminal(arguments, {.environment = environment, .output_on_terminal = true}).screen;
        else
            shown = tessolv(arguments, {.environment = environment}).out;
        EXPECT_NE(shown.find("CLEAN"), std::string::npos);
        EXPECT_EQ(shown.find("\033[1") != std::string::npos, coloured) << shown;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Choices, Colour,
    testing::Values(colour_case{{}, {}, true, true}, colour_case{{}, {}, false, false},
                    colour_case{{}, {"NO_COLOR=1"}, true, false}, colour_case{{}, {"NO_COLOR="}, true, true},
                    colour_case{{}, {"TERM=dumb"}, true, false}, colour_case{{"--color=auto"}, {}, true, true},
                    colour_case{{"--color=auto"}, {}, false, false}, colour_case{{"--color=never"}, {}, true, false},
                    colour_case{{"--color=always"}, {}, false, true},
                    colour_case{{"--color", "always"}, {"NO_COLOR=1"}, false, true}));

TEST(ColourOption, TakesThreeWords)
{
    const run_result result = tessolv({"check", "part.stl", "--color=sometimes"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("--color"), std::string::npos) << result.err;
}

}  // namespace
