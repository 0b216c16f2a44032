#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tools/program.h"

// Every STL file of a folder of sample meshes, whose README.md has a table with the counts that must come out. The
// folder is named when the tests are configured: TESSOLV_SAMPLE_MESHES.

namespace {

const std::string folder = TESSOLV_SAMPLE_MESHES;

struct sample {
    std::string file, format, counts;
};
void PrintTo(const sample& row, std::ostream* out)
{
    *out << row.file;
}

std::vector<std::string> cells_of(const std::string& line)
{
    std::vector<std::string> cells;
    for (std::size_t begin = line.find('|'), end; (end = line.find('|', begin + 1)) != std::string::npos; begin = end)
        cells.push_back(line.substr(begin + 2, end - begin - 3));
    return cells;
}

std::vector<sample> rows_of_table()
{
    std::vector<sample> rows;
    std::ifstream table(folder + "/README.md");
    for (std::string line; !folder.empty() && std::getline(table, line);) {
        const std::vector<std::string> cells = cells_of(line);
        if (cells.size() == 7 && cells[2].starts_with("stl ")) rows.push_back({cells[0], cells[2], cells[5]});
    }
    return rows;
}

TEST(SampleMeshes, HaveATableOfStlFiles)
{
    if (folder.empty()) GTEST_SKIP() << "TESSOLV_SAMPLE_MESHES names no folder of sample meshes";
    ASSERT_TRUE(std::filesystem::exists(folder + "/README.md")) << folder;
    unsigned long files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        files += entry.path().extension() == ".stl" || entry.path().extension() == ".STL";
    EXPECT_EQ(rows_of_table().size(), files);
    EXPECT_GT(files, 0u);
}

class SampleMesh : public testing::TestWithParam<sample> {};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SampleMesh);

TEST_P(SampleMesh, GivesTheCountsOfTheTable)
{
    const sample& row = GetParam();
    const std::regex form(R"(facets read (\d+)(?: of (\d+) in the text)?; result (\d+), nodes (\d+)(?: \(.*\))?)"
                          R"((?:; edges \d+, free (\d+), >2 triangles (\d+), duplicate triangles (\d+))?)");
    std::smatch counts;
    ASSERT_TRUE(std::regex_match(row.counts, counts, form)) << row.counts;
    const auto count = [&](std::size_t group) { return counts[group].matched ? std::stoul(counts[group]) : 0; };
    const unsigned long read = count(1), triangles = count(3), nodes = count(4);
    const unsigned long in_file = counts[2].matched ? count(2) : read;

    const test::run_result result = test::tessolv({"check", "--json", folder + '/' + row.file});
    const auto object = nlohmann::json::parse(result.out);
    EXPECT_EQ(object["format"], row.format.starts_with("stl binary") ? "binary" : "ascii");
    EXPECT_EQ(object["facets_in_file"], in_file);
    EXPECT_EQ(object["facets_read"], read);
    EXPECT_EQ(object["triangles"], triangles);
    EXPECT_EQ(object["nodes"], nodes);
    EXPECT_EQ(object["merged_nodes"], 3 * read - nodes);
    EXPECT_EQ(object["degenerate"], read - triangles);
    EXPECT_EQ(object["free_edges"], count(5));
    EXPECT_EQ(object["nonmanifold_edges"], count(6));
    EXPECT_EQ(object["duplicates"], count(7));

    const bool clean = in_file == triangles && triangles != 0 && count(5) + count(6) + count(7) == 0;
    EXPECT_EQ(object["verdict"], clean ? "clean" : "not clean");
    EXPECT_EQ(result.status, clean ? 0 : 1);
}

INSTANTIATE_TEST_SUITE_P(Stl, SampleMesh, testing::ValuesIn(rows_of_table()), [](const auto& row) {
    return std::regex_replace(row.param.file, std::regex("[^A-Za-z0-9]"), "_");
});

}  // namespace
