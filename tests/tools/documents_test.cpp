#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tools/program.h"
#include "tools/stl_files.h"

// The manual page and the completions name what the help names: every command and every option.
namespace {

using test::temporary_folder;
using test::tessolv;

using words = std::set<std::string>;

std::vector<std::string> commands_of_help()
{
    std::istringstream help(tessolv({"--help"}).out);
    std::vector<std::string> commands;
    bool listed = false;
    for (std::string line; std::getline(help, line);) {
        if (listed && line.empty()) break;
        if (listed) commands.push_back(line.substr(2, line.find(' ', 2) - 2));
        if (line == "Commands:") listed = true;
    }
    return commands;
}

words options_of_help(const std::string& command)
{
    const std::string help = tessolv({command, "--help"}).out;
    words options;
    const std::regex at_line(R"(\n  (-[a-z],)?(--[a-z-]+))");
    for (std::sregex_iterator at(help.begin(), help.end(), at_line), end; at != end; ++at) {
        options.insert((*at)[2]);
        if ((*at)[1].matched) options.insert((*at)[1].str().substr(0, 2));
    }
    return options;
}

struct shell_result {
    int status;
    std::string out;
};

shell_result shell(const std::string& command)
{
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) throw std::runtime_error("no shell");
    std::string out;
    std::array<char, 4096> bytes{};
    while (const std::size_t got = fread(bytes.data(), 1, bytes.size(), pipe)) out.append(bytes.data(), got);
    const int state = pclose(pipe);
    return {WIFEXITED(state) ? WEXITSTATUS(state) : -1, out};
}

bool is_there(const std::string& program)
{
    return shell("command -v " + program + " 2>&1").status == 0;
}

// Up to the next line that begins like this one.
std::string section(const std::string& text, const std::string& begin, const std::string& next)
{
    const std::size_t from = text.find(begin);
    if (from == std::string::npos) return {};
    return text.substr(from, text.find(next, from + begin.size()) - from);
}

struct documents : testing::Test {
    temporary_folder folder;
    std::vector<std::string> commands = commands_of_help();

    std::string document(const std::string& kind) const
    {
        const test::run_result result = tessolv({"document", kind});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, "");
        return result.out;
    }

    // What bash offers for the last of these words.
    words completed(const std::string& line) const
    {
        const std::string script = folder.write("completion", document("bash"));
        const shell_result result =
            shell("cd '" + folder.path("") + "' && bash -c 'source " + script + "; COMP_WORDS=(" + line +
                  "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); " +
                  "_tessolv; ((${#COMPREPLY[@]})) && printf \"%s\\n\" \"${COMPREPLY[@]}\"' 2>&1");
        words offered;
        std::istringstream lines(result.out);
        for (std::string one; std::getline(lines, one);) offered.insert(one);
        return offered;
    }
};

TEST_F(documents, HelpNamesWhatIsToBeFound)
{
    EXPECT_GE(commands.size(), 12u);
    EXPECT_TRUE(options_of_help("weld").contains("--across-parts"));
    EXPECT_TRUE(options_of_help("weld").contains("-h"));
}

// What a message advises must be there: in the command that was run, or in one that the message names.
TEST_F(documents, MessagesAdviseOnlyOptionsThatThereAre)
{
    const std::string solid = folder.write("solid.mesh",
                                           "MeshVersionFormatted 2\nDimension 3\nVertices\n5\n0 0 0 0\n1 0 0 0\n"
                                           "0 1 0 0\n0 0 1 0\n9 9 9 0\nTetrahedra\n2\n1 2 3 4 6\n1 2 2 4 6\nEnd\n");
    const std::string values =
        folder.write("values.sol", "MeshVersionFormatted 2\nDimension 3\nSolAtVertices\n5\n1 1\n1\n2\n3\n4\n5\nEnd\n");
    const std::vector<std::vector<std::string>> calls{{"check", solid, "--extract", folder.path("a.stl")},
                                                      {"check", solid, "--extract", folder.path("a.xyz")},
                                                      {"check", solid, "--extract", folder.path("a.case")},
                                                      {"check", solid, "--extract", "-"},
                                                      {"check", solid, "--extract", solid},
                                                      {"check", solid, "--output", folder.path("a.vtk")},
                                                      {"check", solid, "--format", "none"},
                                                      {"check", values},
                                                      {"info", values},
                                                      {"info", solid, "--format", "none"},
                                                      {"clean", values},
                                                      {"clean", solid, "--input-format", "none"},
                                                      {"clean", solid, "--output", folder.path("a.stl")},
                                                      {"clean", solid, "--output", folder.path("a.xyz")},
                                                      {"clean", solid, "--output", folder.path("a.case")},
                                                      {"clean", solid, "--output", "-"},
                                                      {"clean", solid, "--output", solid},
                                                      {"report", solid, "--output", solid},
                                                      {"neighbors", solid, "--list", solid},
                                                      {"weld", solid, "--map", solid},
                                                      {"convert", solid, "b.vtu"}};
    const std::regex option("--[a-z-]+");
    const std::regex command("'([a-z]+)'");
    for (const std::vector<std::string>& call : calls) {
        const test::run_result result = tessolv(call);
        ASSERT_GE(result.status, 2) << testing::PrintToString(call);
        const std::string text = section(result.err, "", "\nTry ");
        words known = options_of_help(call[0]);
        for (std::sregex_iterator at(text.begin(), text.end(), command), end; at != end; ++at)
            known.merge(options_of_help((*at)[1]));
        for (std::sregex_iterator at(text.begin(), text.end(), option), end; at != end; ++at)
            EXPECT_TRUE(known.contains(at->str())) << text;
    }
    EXPECT_NE(tessolv({"clean", solid, "--input-format", "none"}).err.find("--input-format none:"), std::string::npos);
}

TEST_F(documents, ManualHasEveryCommandAndOption)
{
    const std::string manual = document("man");
    for (const std::string& command : commands) {
        const std::string part = section(manual, ".SS " + command + "\n", "\n.SS ");
        for (std::string option : options_of_help(command)) {
            option = std::regex_replace(option, std::regex("-"), "\\-");
            EXPECT_NE(part.find("\\fB" + option + "\\fR"), std::string::npos) << command << ' ' << option;
        }
    }
    for (const std::string title : {"NAME", "SYNOPSIS", "DESCRIPTION", "COMMANDS", "EXIT STATUS", "ENVIRONMENT"})
        EXPECT_NE(manual.find("\n.SH " + title + '\n'), std::string::npos) << title;
}

TEST_F(documents, ManualIsCleanRoff)
{
    if (!is_there("groff")) GTEST_SKIP() << "groff is not installed";
    const std::string file = folder.write("tessolv.1", document("man"));
    const shell_result result = shell("groff -man -ww -z -Tascii " + file + " 2>&1");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
}

TEST_F(documents, BashKnowsTheCommands)
{
    words expected(commands.begin(), commands.end());
    expected.insert({"--help", "-h", "--version"});
    EXPECT_EQ(completed("tessolv \"\""), expected);
    EXPECT_EQ(completed("tessolv ch"), words{"check"});
}

TEST_F(documents, BashKnowsTheOptionsOfEachCommand)
{
    EXPECT_EQ(shell("bash -n " + folder.write("script", document("bash")) + " 2>&1").out, "");
    for (const std::string& command : commands)
        EXPECT_EQ(completed("tessolv " + command + " -"), options_of_help(command)) << command;
    EXPECT_EQ(completed("tessolv check --pro"), words{"--profile"});
}

TEST_F(documents, BashKnowsTheValuesOfAnOption)
{
    EXPECT_EQ(completed("tessolv check --profile \"\""), (words{"default", "solver", "shell", "closed"}));
    EXPECT_EQ(completed("tessolv weld a.vtu --relative b"), words{"box"});
    EXPECT_EQ(completed("tessolv weld a.vtu --color = \"\""), completed("tessolv weld a.vtu --color \"\""));
    EXPECT_EQ(completed("tessolv weld a.vtu --color = al"), words{"always"});
    EXPECT_TRUE(completed("tessolv convert --format v").contains("vtu"));
    EXPECT_EQ(completed("tessolv quality --bins \"\""), words{});
}

TEST_F(documents, BashCompletesFiles)
{
    folder.write("a part.stl", "");
    EXPECT_EQ(completed("tessolv info a"), words{"a part.stl"});
    EXPECT_EQ(completed("tessolv check --extract a"), words{"a part.stl"});
    EXPECT_EQ(completed("tessolv weld --output = a"), words{"a part.stl"});
}

TEST_F(documents, ZshHasEveryCommandAndOption)
{
    const std::string script = document("zsh");
    EXPECT_EQ(script.find("#compdef tessolv\n"), 0u);
    for (const std::string& command : commands) {
        EXPECT_NE(script.find("\n        '" + command + ':'), std::string::npos) << command;
        const std::string part = section(script, "\n        " + command + ") _arguments", ";;\n");
        for (const std::string& option : options_of_help(command))
            EXPECT_TRUE(part.find('\'' + option + '[') != std::string::npos ||
                        part.find('\'' + option + "=[") != std::string::npos)
                << command << ' ' << option;
    }
    if (!is_there("zsh")) GTEST_SKIP() << "zsh is not installed";
    const shell_result result = shell("zsh -n " + folder.write("_tessolv", script) + " 2>&1");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
}

TEST_F(documents, AreOfThreeKinds)
{
    EXPECT_EQ(tessolv({"document", "fish"}).status, 2);
    EXPECT_EQ(tessolv({"document"}).status, 2);
    EXPECT_EQ(tessolv({"--help"}).out.find("document"), std::string::npos);
}

}  // namespace
