#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tessolv/tessolv.h>
#include <nlohmann/json.hpp>

#include "tools/program.h"

// Every STL file of a folder of sample meshes, whose README.md has a table with the counts that must come out. The
// folder is named when the tests are configured: TESSOLV_SAMPLE_MESHES.

namespace {

const std::string folder = TESSOLV_SAMPLE_MESHES;

struct sample {
    std::string file, format, counts;
    bool has_several_solids;
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
        if (cells.size() == 7 && cells[2].starts_with("stl "))
            rows.push_back({cells[0], cells[2], cells[5], cells[4].find("2 solids") != std::string::npos});
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

// The number that follows these words in a cell of the table.
std::optional<unsigned long> number_after(const std::string& words, const std::string& cell)
{
    const std::size_t at = cell.find(words);
    if (at == std::string::npos) return std::nullopt;
    return std::stoul(cell.substr(at + words.size()));
}

// The counts of the table are those of the library's reader, which ends with the first solid; check takes all.
TEST(SampleMeshes, OfSeveralSolidsAreCheckedWhole)
{
    for (const sample& row : rows_of_table()) {
        if (!row.has_several_solids) continue;
        SCOPED_TRACE(row.file);
        const auto object = nlohmann::json::parse(test::tessolv({"check", "--json", folder + '/' + row.file}).out);
        const auto in_text = number_after(" of ", row.counts);
        ASSERT_TRUE(in_text);
        EXPECT_EQ(object["facets_in_file"], *in_text);
        EXPECT_EQ(object["facets_read"], *in_text);
        EXPECT_EQ(object["triangles"], *in_text);
        EXPECT_EQ(object["parts"], 2);
    }
}

std::vector<sample> rows_of_one_solid()
{
    std::vector<sample> rows = rows_of_table();
    std::erase_if(rows, [](const sample& row) { return row.has_several_solids; });
    return rows;
}

// Triangles of the library's reader whose height is below a 173rd of their longest side, more or less: 4 sqrt(3) times
// the area over the product of perimeter and longest side is below a hundredth.
unsigned long slivers(const std::string& path, bool ascii)
{
    zeb::dense2D<double> pos;
    zeb::dense2D<unsigned int> connect;
    EXPECT_GE(zeb::tessolv::STL_input(path.c_str(), pos, connect, ascii), 0);
    unsigned long count = 0;
    for (std::uint64_t t = 0; t < connect.cols; ++t) {
        double sides[3];
        for (std::uint64_t k = 0; k < 3; ++k) {
            const double* a = &pos(0, connect(k, t));
            const double* b = &pos(0, connect((k + 1) % 3, t));
            sides[k] = std::hypot(b[0] - a[0], b[1] - a[1], b[2] - a[2]);
        }
        std::ranges::sort(sides);
        const auto [c, b, a] = sides;  // W. Kahan. Miscalculating Area and Angles of a Needle-like Triangle. 2014.
        const double area = std::sqrt(std::max(0.0, (a + (b + c)) * (c - (a - b)) * (c + (a - b)) * (a + (b - c)))) / 4;
        count += 4 * std::sqrt(3.0) * area < 0.01 * (a + b + c) * a;
    }
    return count;
}

class SampleMesh : public testing::TestWithParam<sample> {};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SampleMesh);

TEST_P(SampleMesh, GivesTheCountsOfTheTable)
{
    const sample& row = GetParam();
    const auto read = number_after("facets read ", row.counts);
    const auto triangles = number_after("; result ", row.counts);
    const auto nodes = number_after(", nodes ", row.counts);
    const auto free_edges = number_after(", free ", row.counts);
    const auto nonmanifold = number_after(", >2 triangles ", row.counts);
    const auto duplicates = number_after(", duplicate triangles ", row.counts);
    ASSERT_TRUE(read && triangles && nodes) << row.counts;
    ASSERT_TRUE(*triangles == 0 || (free_edges && nonmanifold && duplicates)) << row.counts;
    const unsigned long in_file =
        number_after("facets read " + std::to_string(*read) + " of ", row.counts).value_or(*read);

    const test::run_result result = test::tessolv({"check", "--json", folder + '/' + row.file});
    const auto object = nlohmann::json::parse(result.out);
    EXPECT_EQ(object["format"], row.format.starts_with("stl binary") ? "binary" : "ascii");
    EXPECT_EQ(object["facets_in_file"], in_file);
    EXPECT_EQ(object["facets_read"], *read);
    EXPECT_EQ(object["triangles"], *triangles);
    EXPECT_EQ(object["nodes"], *nodes);
    EXPECT_EQ(object["merged_nodes"], 3 * *read - *nodes);
    EXPECT_EQ(object["degenerate"], *read - *triangles);
    EXPECT_EQ(object["free_edges"], free_edges.value_or(0));
    EXPECT_EQ(object["nonmanifold_edges"], nonmanifold.value_or(0));
    EXPECT_EQ(object["duplicates"], duplicates.value_or(0));

    const unsigned long bad = slivers(folder + '/' + row.file, object["format"] == "ascii");
    EXPECT_EQ(object["kinds"].empty() ? 0 : object["kinds"]["triangle"]["quality"]["bad"].get<unsigned long>(), bad);
    const unsigned long faults = free_edges.value_or(0) + nonmanifold.value_or(0) + duplicates.value_or(0) + bad;
    const bool clean = in_file == *triangles && *triangles != 0 && faults == 0;
    EXPECT_EQ(object["verdict"], clean ? "clean" : "not clean");
    EXPECT_EQ(result.status, clean ? 0 : 1);
}

std::string identifier_of(const std::string& file)
{
    std::string name = file;
    std::ranges::replace_if(
        name, [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Stl, SampleMesh, testing::ValuesIn(rows_of_one_solid()),
                         [](const auto& row) { return identifier_of(row.param.file); });

}  // namespace
