#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tools/program.h"
#include "tools/stl_files.h"

// Outputs are whole or not there, and never in the place of an input or of each other.
namespace {

using test::run_result;
using test::temporary_folder;
using test::tessolv;

using strings = std::vector<std::string>;
using files = std::map<std::string, std::string>;

files files_in(const temporary_folder& folder)
{
    files all;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path("")))
        all[entry.path().filename()] = test::read_file(entry.path());
    return all;
}

// A sheet of 2 x size x size triangles whose columns of squares lie a millionth apart.
std::string torn_sheet(int size = 40)
{
    std::vector<test::facet> facets;
    for (int i = 0; i < size; ++i) {
        for (int j = 0; j < size; ++j) {
            const auto x = static_cast<float>(i) * 1.000001f;
            const auto y = static_cast<float>(j);
            const test::corner a{x, y, 0}, b{x + 1, y, 0}, c{x + 1, y + 1, 0}, d{x, y + 1, 0};
            facets.insert(facets.end(), {{a, b, c}, {a, c, d}});
        }
    }
    return test::binary_stl(facets);
}

struct writing_case {
    strings arguments;  // of the program, after the input
    strings outputs;    // that it writes
};

void PrintTo(const writing_case& c, std::ostream* out)
{
    *out << testing::PrintToString(c.arguments);
}

class EveryWriter : public testing::TestWithParam<writing_case> {};

TEST_P(EveryWriter, LeavesNoHalfWrittenFileWhenASignalEndsIt)
{
    const auto& [arguments, outputs] = GetParam();
    const temporary_folder whole;
    strings all{arguments[0], whole.write("in.stl", torn_sheet())};
    all.insert(all.end(), arguments.begin() + 1, arguments.end());
    const run_result undisturbed = tessolv(all, {.working_directory = whole.path("")});
    ASSERT_LE(undisturbed.status, 1) << undisturbed.err;
    const files wanted = files_in(whole);
    ASSERT_EQ(wanted.size(), outputs.size() + 1);
    for (const std::string& output : outputs) {
        const temporary_folder folder;
        all[1] = folder.write("in.stl", torn_sheet());
        const std::uint64_t too_short = wanted.at(output).size() - 1;
        const run_result result = tessolv(all, {.file_size = too_short, .working_directory = folder.path("")});
        EXPECT_EQ(result.status, 128 + SIGXFSZ) << result.err;
        const files left = files_in(folder);
        EXPECT_EQ(left, (files{{"in.stl", wanted.at("in.stl")}})) << output;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Commands, EveryWriter,
    testing::Values(writing_case{{"convert", "--output", "out.vtu"}, {"out.vtu"}},
                    writing_case{{"convert", "--output", "out.msh"}, {"out.msh"}},
                    writing_case{{"convert", "--output", "out.vtk", "--writer", "library"}, {"out.vtk"}},
                    writing_case{{"check", "--output", "out.vtk"}, {"out.vtk"}},
                    writing_case{{"check", "--extract", "bad.mesh"}, {"bad.mesh"}},
                    writing_case{{"quality", "--output", "out.vtu"}, {"out.vtu"}},
                    writing_case{{"clean", "--output", "out.mesh"}, {"out.mesh"}},
                    writing_case{{"boundary", "--output", "out.mesh"}, {"out.mesh"}},
                    writing_case{{"edges", "--output", "out.mesh"}, {"out.mesh"}},
                    writing_case{{"parts", "--output", "out.mesh"}, {"out.mesh"}},
                    writing_case{{"transform", "--scale", "2", "--output", "out.mesh"}, {"out.mesh"}},
                    writing_case{{"clip", "--point", "9", "0", "0", "--normal", "1", "0", "0", "--output", "out.mesh"},
                                 {"out.mesh"}},
                    writing_case{{"neighbors", "--list", "list.csv", "--output", "out.vtu"}, {"list.csv", "out.vtu"}},
                    writing_case{{"weld", "--tolerance", "1e-3", "--map", "map.csv", "--output", "out.mesh"},
                                 {"map.csv", "out.mesh"}}),
    [](const auto& row) { return row.param.arguments[0] + std::to_string(row.index); });

TEST(Outputs, AreNotLeftHalfWrittenByAnInterrupt)
{
    const temporary_folder input;
    const std::string path = input.write("in.stl", torn_sheet(250));
    for (int attempt = 0; attempt < 10; ++attempt) {
        const temporary_folder folder;
        const run_result result = tessolv({"convert", path, "--output", folder.path("out.mesh"), "--ascii"},
                                          {.interrupted_in = folder.path("")});
        if (result.status == 0) continue;  // it was done before
        EXPECT_EQ(result.status, 128 + SIGINT);
        EXPECT_TRUE(files_in(folder).empty());
        return;
    }
    ADD_FAILURE() << "the program was never seen writing";
}

TEST(Outputs, OfEveryKindOverwriteAnInputOnlyWhenForced)
{
    const temporary_folder folder;
    const std::string sheet = torn_sheet();
    const std::string path = folder.write("in.stl", sheet);
    std::filesystem::create_symlink(path, folder.path("link.csv"));
    for (const strings& arguments :
         {strings{"weld", path, "--map", path}, strings{"weld", path, "--map", folder.path("link.csv")},
          strings{"neighbors", path, "--list", path}, strings{"check", path, "--extract", path}}) {
        const run_result result = tessolv(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_NE(result.err.find("is the input file"), std::string::npos) << result.err;
        EXPECT_EQ(test::read_file(path), sheet) << testing::PrintToString(arguments);
    }
    EXPECT_EQ(tessolv({"neighbors", path, "--list", path, "--force"}).status, 0);
    EXPECT_EQ(test::read_file(path).find("element,"), 0u);
}

TEST(Outputs, DoNotShareAPlace)
{
    const temporary_folder folder;
    const std::string path = folder.write("in.stl", torn_sheet());
    const std::string out = folder.path("out.vtu");
    for (const strings& arguments :
         {strings{"weld", path, "--map", out, "--output", out}, strings{"weld", path, "--map", "-", "--json"},
          strings{"neighbors", path, "--list", "-", "--json"},
          strings{"convert", path, "--output", "-", "--format", "vtu", "--json"}}) {
        const run_result result = tessolv(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err.find("two outputs"), std::string::npos) << result.err;
        EXPECT_FALSE(std::filesystem::exists(out));
    }
}

TEST(Outputs, OnStandardOutputHaveNoWordsBetweenThem)
{
    const temporary_folder folder;
    const std::string path = folder.write("in.stl", torn_sheet());
    const run_result result = tessolv({"weld", path, "--map", "-"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out.find("old,new,distance\n"), 0u);
    EXPECT_EQ(result.out.find("merged"), std::string::npos);
    EXPECT_NE(result.err.find("merged"), std::string::npos);
}

TEST(Outputs, AreWrittenIntoAPipeInItsPlace)
{
    const temporary_folder folder;
    const std::string pipe = folder.path("pipe.vtk");
    const std::string path = folder.write("in.stl", test::binary_stl(test::tetrahedron));
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int other_end = open(pipe.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    for (const strings& arguments :
         {strings{"check", path, "--output", pipe}, strings{"convert", path, "--writer", "library", "--output", pipe},
          strings{"convert", path, "--ascii", "--output", pipe}}) {
        EXPECT_EQ(tessolv(arguments).status, 0) << testing::PrintToString(arguments);
        EXPECT_TRUE(std::filesystem::is_fifo(pipe));
        std::string text(5000, '\0');
        const ssize_t got = read(other_end, text.data(), text.size());
        EXPECT_GT(got, 0);
        text.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
        EXPECT_NE(text.find("POINTS 4 double"), std::string::npos) << text;
    }
    close(other_end);
}

TEST(SeveralFiles, AreMeasuredOneAfterTheOther)
{
    const temporary_folder folder;
    const std::string path = folder.write("in.stl", torn_sheet());
    const std::string none = folder.path("none.stl");
    for (const std::string command : {"info", "quality", "check"}) {
        const run_result result = tessolv({command, path, none, path, "--json"});
        EXPECT_EQ(result.status, 3);
        EXPECT_EQ(std::ranges::count(result.out, '\n'), 3) << result.out;
        EXPECT_NE(result.err.find(none), std::string::npos);
        EXPECT_EQ(tessolv({command, path, none, "--skip-unreadable"}).status, command == "check" ? 1 : 0);
        EXPECT_EQ(tessolv({command, path, "--quiet"}).out.empty(), command != "check");
    }
    EXPECT_EQ(tessolv({"quality", path, path, "--output", folder.path("out.vtu")}).status, 2);
    EXPECT_FALSE(std::filesystem::exists(folder.path("out.vtu")));
}

}  // namespace
