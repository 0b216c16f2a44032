#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "io/stl_model.h"
#include "io/wavefront_obj_model.h"

// Files that other people made. TESTS_SAMPLE_MESHES names a folder of them whose README.md has a table of what the
// readers must find; it does not belong to the sources, and without it there is nothing to be tested.

using namespace zeb::tessolv;
using namespace test;

namespace {

const std::string folder = TESTS_SAMPLE_MESHES;

struct sample {
    std::string file;      // in the folder
    std::string format;    // "stl ascii", "stl binary" or "obj", and remarks
    std::string expected;  // counts in words
};

std::string trimmed(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// Rows "| file | origin | format | bytes | what is special | what the reader gives | checksum |" of one kind of format.
std::vector<sample> samples(const std::string& kind)
{
    std::vector<sample> found;
    std::ifstream readme(folder + "/README.md");
    for (std::string line; std::getline(readme, line);) {
        std::vector<std::string> cells;
        std::istringstream row(line);
        for (std::string cell; std::getline(row, cell, '|');) cells.push_back(trimmed(cell));
        if (cells.size() >= 8 && cells[3].rfind(kind, 0) == 0 && cells[1].find('/') != std::string::npos)
            found.push_back({cells[1], cells[3], cells[6]});
    }
    return found;
}

std::size_t files_of_extension(const std::string& extension)
{
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        std::string found = entry.path().extension();
        for (char& c : found) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        count += found == extension;
    }
    return count;
}

// The number that stands in the text where the pattern has its group.
std::optional<long> number_in(const std::string& text, const std::string& pattern)
{
    std::smatch match;
    if (!std::regex_search(text, match, std::regex(pattern))) return std::nullopt;
    return std::stol(match[1]);
}

void expect_count(const sample& s, const std::string& pattern, std::uint64_t found)
{
    if (const auto expected = number_in(s.expected, pattern)) {
        EXPECT_EQ(static_cast<long>(found), *expected) << pattern;
    }
}

struct edge_counts {
    std::uint64_t edges = 0, free = 0, crowded = 0, duplicates = 0;
};

edge_counts count_edges(const std::vector<const dense2D<unsigned>*>& meshes)
{
    std::map<std::pair<unsigned, unsigned>, int> faces_of;
    std::map<std::multiset<unsigned>, int> same;
    edge_counts found;
    for (const dense2D<unsigned>* m : meshes)
        for (std::uint64_t j = 0; j < m->cols; ++j) {
            std::multiset<unsigned> nodes;
            for (std::uint64_t i = 0; i < m->rows; ++i) {
                const unsigned a = (*m)(i, j);
                const unsigned b = (*m)((i + 1) % m->rows, j);
                ++faces_of[std::minmax(a, b)];
                nodes.insert(a);
            }
            found.duplicates += same[nodes]++ > 0;
        }
    for (const auto& [edge, faces] : faces_of) {
        ++found.edges;
        found.free += faces == 1;
        found.crowded += faces > 2;
    }
    return found;
}

void expect_edges(const sample& s, const std::vector<const dense2D<unsigned>*>& meshes)
{
    const edge_counts found = count_edges(meshes);
    expect_count(s, "edges ([0-9]+), free", found.edges);
    expect_count(s, ", free ([0-9]+),", found.free);
    expect_count(s, ">2 [a-z]+ ([0-9]+),", found.crowded);
    expect_count(s, "duplicate [a-z]+ ([0-9]+)", found.duplicates);
}

// Positions that differ, and pairs of them within the distance.
void expect_near_pairs(const sample& s, const stl_model& model)
{
    const std::set<std::vector<double>> distinct(model.nodes().begin(), model.nodes().end());
    const double tolerance = 0.05 * model.least_height();
    std::uint64_t near = 0;
    for (auto a = distinct.begin(); a != distinct.end(); ++a)
        for (auto b = std::next(a); b != distinct.end() && (*b)[0] - (*a)[0] <= tolerance; ++b) {
            const double dx = (*b)[0] - (*a)[0], dy = (*b)[1] - (*a)[1], dz = (*b)[2] - (*a)[2];
            near += std::sqrt(dx * dx + dy * dy + dz * dz) <= tolerance;
        }
    expect_count(s, "([0-9]+) distinct positions", distinct.size());
    expect_count(s, "([0-9]+) near pairs", near);
}

void check_stl(const sample& s)
{
    const bool ascii = s.format.find("ascii") != std::string::npos;
    const std::string name = folder + "/" + s.file;
    const stl_mesh m = read_stl_file(name.c_str(), ascii);
    expect_count(s, "result (-?[0-9]+)", static_cast<std::uint64_t>(m.code));
    expect_count(s, "nodes ([0-9]+)", m.pos.cols);
    EXPECT_EQ(static_cast<std::uint64_t>(m.code), m.connect.cols);
    expect_edges(s, {&m.connect});

    stl_model model;
    std::FILE* f = std::fopen(name.c_str(), ascii ? "rt" : "rb");
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(ascii ? model.read_text(f) : model.read_binary(f), 0);
    std::fclose(f);
    expect_count(s, "facets read ([0-9]+)", model.facets());
    expect_near_pairs(s, model);
    EXPECT_TRUE(m == model.welded());
}

std::uint64_t face_lines(const std::string& name)
{
    std::uint64_t count = 0;
    std::ifstream file(name);
    for (std::string line, word; std::getline(file, line); word.clear()) {
        std::istringstream(line) >> word;
        count += word == "f";
    }
    return count;
}

std::uint64_t corners_without_node(const obj_mesh& m)
{
    std::uint64_t count = 0;
    for (const dense2D<unsigned>* faces : {&m.trias, &m.quads})
        for (std::uint64_t j = 0; j < faces->cols; ++j)
            for (std::uint64_t i = 0; i < faces->rows; ++i) count += (*faces)(i, j) >= m.pos.cols;
    return count;
}

void check_obj(const sample& s)
{
    const std::string name = folder + "/" + s.file;
    const obj_mesh m = read_file(name.c_str());
    expect_count(s, "code (-?[0-9]+)", static_cast<std::uint64_t>(m.code));
    expect_count(s, "v ([0-9]+)", m.pos.cols);
    expect_count(s, "vn ([0-9]+)", m.normals.cols);
    expect_count(s, "vt ([0-9]+)", m.uvs.cols);
    expect_count(s, "tria ([0-9]+)", m.trias.cols);
    expect_count(s, "quad ([0-9]+)", m.quads.cols);
    expect_count(s, "uvs rows ([0-9]+)", m.uvs.rows);
    if (m.code == 0) expect_count(s, "([0-9]+) faces skipped", face_lines(name) - m.trias.cols - m.quads.cols);
    expect_count(s, "([0-9]+) corner numbers name no node", corners_without_node(m));
    if (s.expected.find("every corner names a node") != std::string::npos) {
        EXPECT_EQ(corners_without_node(m), 0U);
    }
    expect_edges(s, {&m.trias, &m.quads});

    std::ifstream file(name, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    EXPECT_TRUE(m == model_of(bytes));
}

void check_all(const char* kind, const char* extension, void (*check)(const sample&))
{
    const std::vector<sample> all = samples(kind);
    ASSERT_GT(all.size(), 0U) << "no rows of \"" << kind << "\" in the table";
    EXPECT_EQ(all.size(), files_of_extension(extension)) << "every file has a row";
    for (const sample& s : all) {
        SCOPED_TRACE(s.file + ": " + s.expected);
        ASSERT_TRUE(number_in(s.expected, "(?:result|code) (-?[0-9]+)")) << "a row without numbers";
        check(s);
    }
}

const char* const no_folder = "no folder of sample meshes: set TESSOLV_SAMPLE_MESHES when configuring";

}  // namespace

TEST(SampleMeshes, GiveTheCountsOfTheTableAsSTL)
{
    if (folder.empty()) GTEST_SKIP() << no_folder;
    check_all("stl", ".stl", check_stl);
}

TEST(SampleMeshes, GiveTheCountsOfTheTableAsWavefrontOBJ)
{
    if (folder.empty()) GTEST_SKIP() << no_folder;
    check_all("obj", ".obj", check_obj);
}
