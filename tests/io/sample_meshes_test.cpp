#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <sstream>
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

// The number that stands in the text behind the words, or before them.
std::optional<long> number_behind(const std::string& text, const std::string& words)
{
    const std::size_t found = text.find(words);
    if (found == std::string::npos) return std::nullopt;
    return std::stol(text.substr(found + words.size()));
}

std::optional<long> number_before(const std::string& text, const std::string& words)
{
    const std::size_t found = text.find(words);
    if (found == std::string::npos || found == 0) return std::nullopt;
    return std::stol(text.substr(text.find_last_not_of("0123456789", found - 1) + 1));
}

void expect_count(std::optional<long> expected, std::uint64_t found, const char* what)
{
    if (expected) {
        EXPECT_EQ(static_cast<long>(found), *expected) << what;
    }
}

void expect_behind(const sample& s, const char* words, std::uint64_t found)
{
    expect_count(number_behind(s.expected, words), found, words);
}

void expect_before(const sample& s, const char* words, std::uint64_t found)
{
    expect_count(number_before(s.expected, words), found, words);
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
    expect_behind(s, "edges ", found.edges);
    expect_behind(s, ", free ", found.free);
    for (const char* words : {">2 triangles ", ">2 faces "}) expect_behind(s, words, found.crowded);
    for (const char* words : {"duplicate triangles ", "duplicate faces "}) expect_behind(s, words, found.duplicates);
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
    expect_before(s, " distinct positions", distinct.size());
    expect_before(s, " near pairs", near);
}

void check_stl(const sample& s)
{
    const bool ascii = s.format.find("ascii") != std::string::npos;
    const std::string name = folder + "/" + s.file;
    const stl_mesh m = read_stl_file(name.c_str(), ascii);
    expect_behind(s, "result ", static_cast<std::uint64_t>(m.code));
    expect_behind(s, "nodes ", m.pos.cols);
    EXPECT_EQ(static_cast<std::uint64_t>(m.code), m.connect.cols);
    expect_edges(s, {&m.connect});

    stl_model model;
    std::FILE* f = std::fopen(name.c_str(), ascii ? "rt" : "rb");
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(ascii ? model.read_text(f) : model.read_binary(f), 0);
    std::fclose(f);
    expect_behind(s, "facets read ", model.facets());
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
    expect_behind(s, "code ", static_cast<std::uint64_t>(m.code));
    expect_behind(s, "v ", m.pos.cols);
    expect_behind(s, "vn ", m.normals.cols);
    expect_behind(s, "vt ", m.uvs.cols);
    expect_behind(s, "tria ", m.trias.cols);
    expect_behind(s, "quad ", m.quads.cols);
    expect_behind(s, "uvs rows ", m.uvs.rows);
    if (m.code == 0) expect_before(s, " faces skipped", face_lines(name) - m.trias.cols - m.quads.cols);
    expect_before(s, " corner numbers name no node", corners_without_node(m));
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
        ASSERT_TRUE(number_behind(s.expected, "result ") || number_behind(s.expected, "code ")) << "no numbers";
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
