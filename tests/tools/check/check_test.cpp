#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tessolv/tessolv.h>
#include <nlohmann/json.hpp>

#include "tools/program.h"
#include "tools/stl_files.h"

#if defined(__SANITIZE_ADDRESS__)
#define SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SANITIZED 1
#endif
#endif

namespace {

using nlohmann::ordered_json;
using test::binary_facets;
using test::binary_header;
using test::binary_stl;
using test::book;
using test::facet;
using test::O;
using test::run_result;
using test::temporary_folder;
using test::tessolv;
using test::tetrahedron;
using test::text_facet;
using test::text_facets;
using test::text_stl;
using test::V;
using test::W;
using test::X;
using test::Y;
using test::Z;

using facets = std::vector<facet>;
using strings = std::vector<std::string>;

facets operator+(facets a, const facets& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

facets moved(facets all, float x)
{
    for (facet& f : all)
        for (test::corner& c : f) c[0] += x;
    return all;
}

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    return text.replace(text.find(from), from.size(), to);
}

// The object that the program prints for one file, and its exit status.
struct checked {
    ordered_json object;
    int status;
};

checked check_json(const std::string& bytes, const strings& more = {})
{
    const temporary_folder folder;
    strings arguments{"check", "--json", folder.write("part.stl", bytes)};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const run_result result = tessolv(arguments);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 1);
    return {ordered_json::parse(result.out), result.status};
}

// Right isosceles triangles score 2 sqrt(3) / (2 + 2 sqrt(2)).
constexpr double right_isosceles = 0.71743893521;

TEST(CheckJson, HasTheDocumentedFieldsInTheirOrder)
{
    const ordered_json object = check_json(binary_stl(tetrahedron)).object;
    strings fields;
    for (const auto& [field, value] : object.items()) fields.push_back(field);
    EXPECT_EQ(fields, (strings{"file",         "format",     "facets_in_file",    "facets_read",
                               "triangles",    "nodes",      "merged_nodes",      "degenerate",
                               "duplicates",   "free_edges", "nonmanifold_edges", "parts",
                               "bounding_box", "quality",    "verdict",           "problems",
                               "notes",        "elements",   "dimension",         "kinds",
                               "faces",        "free_faces", "nonmanifold_faces", "shortest_edge",
                               "faults",       "rules"}));
}

TEST(CheckJson, TellsAClosedTetrahedronWhole)
{
    auto [object, status] = check_json(binary_stl(moved(tetrahedron, 2)));
    EXPECT_EQ(status, 0);
    EXPECT_EQ(std::filesystem::path(object["file"].get<std::string>()).filename(), "part.stl");
    object.erase("file");
    EXPECT_NEAR(object["quality"]["min"].get<double>(), right_isosceles, 1e-10);
    EXPECT_NEAR(object["quality"]["mean"].get<double>(), (3 * right_isosceles + 1) / 4, 1e-10);
    EXPECT_NEAR(object["quality"]["max"].get<double>(), 1.0, 1e-10);
    EXPECT_EQ(object["quality"]["histogram"], ordered_json({0, 0, 0, 0, 0, 0, 0, 3, 0, 1}));
    EXPECT_EQ(object["kinds"]["triangle"]["quality"]["histogram"], object["quality"]["histogram"]);
    EXPECT_EQ(object["rules"]["profile"], "default");
    for (const char* const field : {"quality", "kinds", "rules"}) object.erase(field);
    EXPECT_EQ(object, ordered_json::parse(
                          R"({"format": "binary", "facets_in_file": 4, "facets_read": 4, "triangles": 4, "nodes": 4,
        "merged_nodes": 8, "degenerate": 0, "duplicates": 0, "free_edges": 0, "nonmanifold_edges": 0, "parts": 1,
        "bounding_box": {"min": [2.0, 0.0, 0.0], "max": [3.0, 1.0, 1.0]}, "verdict": "clean", "problems": [], "notes": [],
        "elements": 4, "dimension": 2, "faces": 6, "free_faces": 0, "nonmanifold_faces": 0, "shortest_edge": 1.0,
        "faults": []})"));
}

struct mesh_case {
    const char* name;
    facets surface;
    unsigned triangles, nodes, degenerate, duplicates, free_edges, nonmanifold_edges, parts;
};
void PrintTo(const mesh_case& row, std::ostream* out)
{
    *out << row.name;
}
class CheckCounts : public testing::TestWithParam<mesh_case> {};

void expect_counts(const ordered_json& object, const mesh_case& row)
{
    EXPECT_EQ(object["facets_in_file"], row.surface.size());
    EXPECT_EQ(object["facets_read"], row.surface.size());
    EXPECT_EQ(object["triangles"], row.triangles);
    EXPECT_EQ(object["nodes"], row.nodes);
    EXPECT_EQ(object["merged_nodes"], 3 * row.surface.size() - row.nodes);
    EXPECT_EQ(object["degenerate"], row.degenerate);
    EXPECT_EQ(object["duplicates"], row.duplicates);
    EXPECT_EQ(object["free_edges"], row.free_edges);
    EXPECT_EQ(object["nonmanifold_edges"], row.nonmanifold_edges);
    EXPECT_EQ(object["parts"], row.parts);
}

TEST_P(CheckCounts, AreThoseOfTheMeshInBothFormats)
{
    const mesh_case& row = GetParam();
    const bool clean = row.degenerate + row.duplicates + row.free_edges + row.nonmanifold_edges == 0;
    for (const std::string& bytes : {binary_stl(row.surface), text_stl(row.surface)}) {
        const auto [object, status] = check_json(bytes);
        expect_counts(object, row);
        EXPECT_EQ(object["verdict"], clean ? "clean" : "not clean");
        EXPECT_EQ(object["problems"].empty(), clean);
        EXPECT_EQ(status, clean ? 0 : 1);
    }
}

const facets bow_tie{{O, X, Y}, {O, W, V}};                                   // meet in a node alone
const facets fins{{O, X, Y}, {O, X, Z}, {O, X, W}, {O, X, V}};                // four triangles on one edge
const facets leaf_first{{X, Z, {2, 0, 1}}, {O, X, W}, {O, X, Y}, {O, X, Z}};  // the part begins away from the edge
const facets slit{{O, X, Y}, {test::corner{1, 0.2f, 0}, {1, 1, 0}, Y}};

INSTANTIATE_TEST_SUITE_P(
    Meshes, CheckCounts,
    testing::Values(mesh_case{"one_triangle", {{O, X, Y}}, 1, 3, 0, 0, 3, 0, 1},
                    mesh_case{"tetrahedron", tetrahedron, 4, 4, 0, 0, 0, 0, 1},
                    mesh_case{"two_tetrahedra", tetrahedron + moved(tetrahedron, 5), 8, 8, 0, 0, 0, 0, 2},
                    mesh_case{"three_triangles_on_an_edge", book, 3, 5, 0, 0, 6, 1, 1},
                    mesh_case{"four_triangles_on_an_edge", fins, 4, 6, 0, 0, 8, 1, 1},
                    mesh_case{"three_triangles_on_an_edge_from_a_leaf", leaf_first, 4, 6, 0, 0, 7, 1, 1},
                    mesh_case{"triangles_on_a_node", bow_tie, 2, 5, 0, 0, 6, 0, 2},
                    mesh_case{"duplicate_as_it_is", tetrahedron + facets{{O, Y, X}}, 5, 4, 0, 1, 0, 3, 1},
                    mesh_case{"duplicate_rotated", tetrahedron + facets{{Y, X, O}}, 5, 4, 0, 1, 0, 3, 1},
                    mesh_case{"duplicate_turned_over", tetrahedron + facets{{X, Y, O}}, 5, 4, 0, 1, 0, 3, 1},
                    mesh_case{"the_same_three_times", {{O, X, Y}, {Y, O, X}, {O, Y, X}}, 3, 3, 0, 2, 0, 3, 1},
                    mesh_case{"a_triangle_and_its_back", {{O, X, Y}, {O, Y, X}}, 2, 3, 0, 1, 0, 0, 1},
                    mesh_case{"degenerate", tetrahedron + facets{{X, X, Y}, {Z, Z, Z}}, 4, 4, 2, 0, 0, 0, 1},
                    mesh_case{"gap_wider_than_the_weld", slit, 2, 5, 0, 0, 6, 0, 2}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Check, WeldsWithATwentiethOfTheLeastHeight)
{
    // Two right triangles of height 0.5 and 1 along the longest side; corners 0.02 apart are one node, 0.03 apart are
    // not.
    const auto nodes = [](float gap) {
        const facets pair{{O, X, Y}, {test::corner{1 + gap, 0, 0}, {1 + gap, 1, 0}, {0, 1, 0}}};
        return check_json(binary_stl(pair)).object["nodes"];
    };
    EXPECT_EQ(nodes(0.02f), 4);
    EXPECT_EQ(nodes(0.06f), 5);
}

TEST(Check, LeavesTrianglesWithoutHeightApart)
{
    const auto [object, status] = check_json(binary_stl({{X, X, X}, {O, X, {2, 0, 0}}}));
    expect_counts(object, {"", {{}, {}}, 2, 6, 0, 0, 6, 0, 2});
    EXPECT_EQ(object["quality"]["histogram"], ordered_json({2, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(object["notes"], ordered_json({"2 separate parts", "3 edges too short for single precision",
                                             "no corners coincide: nothing was welded"}));
    EXPECT_EQ(status, 1);
}

TEST(Check, LeavesOutTheCornersOfAnIncompleteFacet)
{
    const std::string whole = text_facet({X, X, X});
    const auto object = check_json("solid\n" + whole + whole.substr(0, whole.find("endloop"))).object;
    EXPECT_EQ(object["facets_in_file"], 2);
    EXPECT_EQ(object["facets_read"], 1);
    EXPECT_EQ(object["nodes"], 3);
    EXPECT_EQ(object["merged_nodes"], 0);
}

// Triangles and nodes are those of the library's own reader, for one solid.
void expect_the_counts_of_the_library(const strings& files, const char* format)
{
    strings arguments{"check", "--json", format};
    arguments.insert(arguments.end(), files.begin(), files.end());
    std::istringstream lines(tessolv(arguments).out);
    unsigned long compared = 0;
    unsigned long unreadable = 0;
    std::size_t file = 0;
    for (std::string line; std::getline(lines, line); ++file) {
        const auto object = ordered_json::parse(line);
        ASSERT_EQ(object["file"], files[file]);
        if (object["notes"].dump().find("solids in the file") != std::string::npos) continue;  // read beyond the first
        zeb::dense2D<double> pos;
        zeb::dense2D<unsigned int> connect;
        const int triangles =
            zeb::tessolv::STL_input(files[file].c_str(), pos, connect, std::string(format) == "--ascii");
        zeb::tessolv::simplify(pos, connect);
        if (object["verdict"] == "unreadable") {
            ASSERT_LE(triangles, 0) << test::read_file(files[file]);
            ++unreadable;
            continue;
        }
        ASSERT_EQ(object["triangles"], triangles) << test::read_file(files[file]);
        ASSERT_EQ(object["nodes"], triangles == 0 ? 0 : pos.cols) << test::read_file(files[file]);
        ASSERT_EQ(object["facets_read"], triangles + object["degenerate"].get<int>());
        ++compared;
    }
    ASSERT_EQ(file, files.size());
    EXPECT_GT(compared, unreadable);
}

TEST(Check, CountsTheFacetsThatTheLibraryReadsFromDamagedTexts)
{
    const temporary_folder folder;
    std::mt19937 random(11);
    const auto below = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
    const std::string bytes = " \n\r\tfacetnormlvx0.e+-NFI";
    const std::string flat = replaced(text_facet({O, O, O}), "normal 0 0 1", "normal 0 0 0");
    const std::string flat_ones = "solid a\n" + flat + flat + flat + "endsolid a\n";
    const std::string solid = text_stl(tetrahedron);
    strings files;
    for (int file = 0; file < 2000; ++file) {
        std::string text = file % 2 == 0 ? flat_ones : solid;
        for (std::size_t k = 0, n = 1 + below(3); k < n; ++k) {
            const std::size_t at = below(text.size());
            switch (below(3)) {
                case 0:
                    text[at] = bytes[below(bytes.size())];
                    break;
                case 1:
                    text.erase(at, 1 + below(40));
                    break;
                default:
                    text.insert(at, 1 + below(300), bytes[below(bytes.size())]);
            }
        }
        if (below(4) == 0) text.resize(1 + below(text.size()));
        files.push_back(folder.write(std::to_string(file), text.empty() ? "x" : text));
    }
    expect_the_counts_of_the_library(files, "--ascii");
}

TEST(Check, CountsTheFacetsThatTheLibraryReadsFromBinariesOfEveryLength)
{
    const temporary_folder folder;
    const std::string whole = binary_stl({{O, O, O}, {O, O, O}, {O, O, O}}) + std::string(60, '\0');
    strings files;
    for (std::size_t size = 84; size <= whole.size(); ++size)
        files.push_back(folder.write(std::to_string(size), whole.substr(0, size)));
    expect_the_counts_of_the_library(files, "--binary");
}

struct file_case {
    const char* name;
    std::string bytes;
    unsigned in_file, read;
    strings problems, notes;
};
void PrintTo(const file_case& row, std::ostream* out)
{
    *out << row.name;
}
class CheckFile : public testing::TestWithParam<file_case> {};

TEST_P(CheckFile, SaysWhatIsOddAboutIt)
{
    const file_case& row = GetParam();
    const auto [object, status] = check_json(row.bytes);
    EXPECT_EQ(object["facets_in_file"], row.in_file);
    EXPECT_EQ(object["facets_read"], row.read);
    EXPECT_EQ(object["problems"].get<strings>(), row.problems);
    EXPECT_EQ(object["notes"].get<strings>(), row.notes);
    EXPECT_EQ(status, row.problems.empty() ? 0 : 1);
}

const std::string whole_text = text_stl(tetrahedron);
const std::string whole_binary = binary_stl(tetrahedron);
const std::string open = "solid part\n" + text_facets(tetrahedron);

std::string cut(const std::string& bytes, std::size_t left_out)
{
    return bytes.substr(0, bytes.size() - left_out);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, CheckFile,
    testing::Values(file_case{"plain", whole_text, 4, 4, {}, {}},
                    file_case{"second_solid",
                              whole_text + text_stl({{O, X, Y}}),
                              5,
                              5,
                              {"1 duplicate triangle", "3 edges of three or more triangles"},
                              {"2 solids in the file"}},
                    file_case{"second_solid_cut",
                              cut(whole_text + text_stl({{O, X, Y}, {X, Y, Z}}), 60),
                              6,
                              5,
                              {"1 facet not read (line 42: the file ends where a coordinate should be)",
                               "1 duplicate triangle", "3 edges of three or more triangles"},
                              {"2 solids in the file", "no 'endsolid' at the end"}},
                    file_case{
                        "second_solid_empty", whole_text + "solid b\nendsolid b\n", 4, 4, {}, {"2 solids in the file"}},
                    file_case{"in_capitals",
                              open + "  FACET NORMAL 0 0 1\nendsolid\n",
                              5,
                              4,
                              {"1 facet not read (line 30 is not 'facet normal' and three numbers)"},
                              {}},
                    file_case{"malformed_vertex",
                              open + replaced(text_facet({O, X, Y}), "1 0 0", "1 o 0") + "endsolid\n",
                              5,
                              4,
                              {"1 facet not read (line 33 is not 'vertex' and three numbers)"},
                              {}},
                    file_case{"cut_in_a_facet",
                              open + "facet normal 0 0 1\n outer loop\n vertex 0 0",
                              5,
                              4,
                              {"1 facet not read (the file is cut short within a facet, in line 32)"},
                              {"no 'endsolid' at the end"}},
                    file_case{"cut_behind_a_facet", open, 4, 4, {}, {"no 'endsolid' at the end"}},
                    file_case{"long_name",
                              "solid " + std::string(300, 'x') + "\n" + text_facets(tetrahedron) + "endsolid\n",
                              4,
                              0,
                              {"4 facets not read (the first line is longer than 255 characters)", "no triangle"},
                              {}},
                    file_case{"bytes_after_the_end", whole_text + "\njunk\n", 4, 4, {}, {"5 bytes after the end"}},
                    file_case{"odd_first_line",
                              replaced(whole_text, "solid", "SHAPE"),
                              4,
                              4,
                              {},
                              {"the text does not begin with 'solid'"}},
                    file_case{"empty_solid", "solid a\nendsolid a\n", 0, 0, {"no triangle"}, {}},
                    file_case{"windows_line_ends",
                              [] {
                                  std::string text;
                                  for (const char c : whole_text) text += c == '\n' ? "\r\n" : std::string(1, c);
                                  return text;
                              }(),
                              4,
                              4,
                              {},
                              {}}),
    [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Binaries, CheckFile,
    testing::Values(file_case{"plain", whole_binary, 4, 4, {}, {}},
                    file_case{"solid_header",
                              binary_stl(tetrahedron, "solid part"),
                              4,
                              4,
                              {},
                              {"the header begins with 'solid' like that of a text file"}},
                    file_case{"bytes_after_the_end", whole_binary + "x", 4, 4, {}, {"1 byte after the end"}},
                    file_case{"cut_in_the_last_attribute",
                              cut(binary_stl(tetrahedron + facets{{O, X, Y}}), 1),
                              5,
                              4,
                              {"1 facet not read (the file is cut short at 333 bytes)"},
                              {}},
                    file_case{"cut_behind_the_header",
                              binary_header("part", 4),
                              4,
                              0,
                              {"4 facets not read (the file is cut short at 84 bytes)", "no triangle"},
                              {}},
                    file_case{"announces_too_many",
                              binary_header("part", 100000) + binary_facets(tetrahedron),
                              100000,
                              4,
                              {"99996 facets not read (the file is cut short at 284 bytes)"},
                              {}},
                    file_case{"announces_none",
                              binary_header("part", 0) + binary_facets(tetrahedron),
                              0,
                              0,
                              {"no triangle"},
                              {"200 bytes after the end"}},
                    file_case{"no_facets", binary_header("part", 0), 0, 0, {"no triangle"}, {}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Check, ListsEveryProblemOfAMesh)
{
    const facets spoilt = tetrahedron + facets{{X, X, Y}, {O, X, Y}} + moved({{O, X, Y}}, 9);
    EXPECT_EQ(check_json(binary_stl(spoilt) + "xx").object["problems"].get<strings>(),
              (strings{"1 degenerate triangle", "1 duplicate triangle", "3 free edges",
                       "3 edges of three or more triangles"}));
}

TEST(CheckJson, WritesNullForWhatIsNoNumber)
{
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const auto object = check_json(binary_stl({{test::corner{nan, 0, 0}, {nan, 1, 0}, {nan, 0, infinity}}})).object;
    EXPECT_EQ(object["bounding_box"], ordered_json::parse(R"({"min": [null, 0.0, 0.0], "max": [null, 1.0, null]})"));
    EXPECT_EQ(object["triangles"], 1);
    EXPECT_EQ(object["problems"].front(), "3 nodes without a finite place");
}

TEST(Check, RefusesAClosedSurfaceThatReachesInfinity)
{
    facets closed = tetrahedron;
    for (auto& triangle : closed)
        for (auto& place : triangle)
            if (place == X) place[0] = std::numeric_limits<float>::infinity();
    const auto object = check_json(binary_stl(closed)).object;
    EXPECT_EQ(object["problems"], ordered_json({"1 node without a finite place"}));
    EXPECT_EQ(object["verdict"], "not clean");
}

TEST(CheckJson, WritesNullForTheMeasuresOfNoTriangle)
{
    const auto object = check_json(binary_header("", 0)).object;
    EXPECT_TRUE(object["bounding_box"].is_null());
    EXPECT_EQ(object["quality"],
              ordered_json::parse(
                  R"({"min": null, "mean": null, "max": null, "histogram": [0, 0, 0, 0, 0, 0, 0, 0, 0, 0]})"));
    EXPECT_EQ(object["parts"], 0);
}

TEST(CheckJson, StaysValidWhateverTheNameOfTheFile)
{
    const temporary_folder folder;
    for (const std::string name : {"\xFF\xFE.stl", "a\"b\\c.stl", "line\nbreak.stl", "[a].stl", "{x}.stl", "'q'.stl",
                                   " .stl", "\xE6\x9C\x88.stl"}) {
        const run_result result = tessolv({"check", "--json", folder.write(name, whole_binary)});
        EXPECT_EQ(result.status, 0) << name << result.err;
        EXPECT_TRUE(ordered_json::accept(result.out)) << result.out;
        EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 1);
    }
}

TEST(CheckJson, GivesAnObjectForAFileThatCannotBeReadToo)
{
    const temporary_folder folder;
    const run_result result =
        tessolv({"check", "--json", folder.path("missing.stl"), folder.write("part.stl", whole_binary)});
    EXPECT_EQ(result.status, 3);
    const auto end_of_line = result.out.find('\n') + 1;
    const auto missing = ordered_json::parse(result.out.substr(0, end_of_line));
    const auto part = ordered_json::parse(result.out.substr(end_of_line));
    EXPECT_EQ(missing["verdict"], "unreadable");
    EXPECT_EQ(missing["problems"], ordered_json({"No such file or directory"}));
    EXPECT_TRUE(missing["triangles"].is_null());
    EXPECT_EQ(missing.size(), 17u);
    EXPECT_EQ(part["verdict"], "clean");
}

TEST(CheckText, EndsWithTheVerdict)
{
    const temporary_folder folder;
    const std::string clean = folder.write("clean.stl", whole_binary);
    const std::string broken = folder.write("broken.stl", binary_stl(book));
    const run_result result = tessolv({"check", clean, broken});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.out.find('\n' + clean + ": CLEAN: 4 triangles, 1 part, closed\n"), std::string::npos)
        << result.out;
    EXPECT_TRUE(result.out.ends_with('\n' + broken + ": NOT CLEAN: 6 free edges, 1 edge of three or more triangles\n"))
        << result.out;
}

TEST(CheckText, IsATableOfCountsTheBoxTheQualityAndNotes)
{
    const temporary_folder folder;
    const facets spoilt = tetrahedron + facets{{X, X, Y}, {O, X, Y}} + moved(book, 4);
    const std::string path = folder.write("part.stl", binary_stl(spoilt) + "x");
    const std::string expected = R"(part.stl  (binary STL)

  facets in the file                         9
  facets read                                9
  triangles                                  8
  nodes                                      9   18 corners merged
  connected parts                            2
! degenerate triangles                       1
! duplicate triangles                        1
! free edges                                 6
! edges of three or more triangles           4

  bounding box           min            max           size
    x                      0              5              5
    y                     -1              1              2
    z                      0              1              1
  shortest edge 1, 1/5.477 of the diagonal

  quality                         min     mean      max inverted      bad     poor     fair     good
  triangles                    0.7174   0.7528   1.0000        0        0        0        0        8

  quality of the triangles
    0.0 - 0.1         0
    0.1 - 0.2         0
    0.2 - 0.3         0
    0.3 - 0.4         0
    0.4 - 0.5         0
    0.5 - 0.6         0
    0.6 - 0.7         0
    0.7 - 0.8         7  ##################################################
    0.8 - 0.9         0
    0.9 - 1.0         1  #######

! 1 degenerate triangle, 11 %: triangle 5; first at (0.66667, 0.33333, 0)
! 1 duplicate triangle, 12 %: triangle 6; first at (0.33333, 0.33333, 0)
! 6 free edges, 46 %: triangle 7 8 9; first at (4, 0.5, 0)
! 4 edges of three or more triangles, 31 %: triangle 1 2 3 4 6 7 8 9; first at (0, 0.5, 0)
  note: 2 separate parts
  note: 1 byte after the end
  rules 'default': coincident within 1e-09 of the diagonal, too short below 1e-07 of the largest coordinate
    triangles: bad below 0.01, poor below 0.2, good from 0.5 on
    findings: not_read no_element bad_index not_finite repeated_node duplicate degenerate inverted bad_quality unused_node coincident_node nonmanifold open_edge_of_stl
    notes: open_edge turned_neighbour inside_out parts poor_quality short_edge

part.stl: NOT CLEAN: 1 degenerate triangle, 1 duplicate triangle, 6 free edges, 4 edges of three or more triangles
)";
    EXPECT_EQ(tessolv({"check", "part.stl"}, {.working_directory = folder.path("")}).out, expected);
}

TEST(CheckText, MarksFacetsThatWereNotRead)
{
    const temporary_folder folder;
    const std::string path = folder.write("cut.stl", binary_header("part", 5) + binary_facets(tetrahedron));
    const std::string out = tessolv({"check", path}).out;
    EXPECT_NE(out.find("\n! facets read                                4   the file is cut short at 284 bytes\n"),
              std::string::npos)
        << out;
}

TEST(CheckText, SaysWhereTheFirstFaultLies)
{
    const temporary_folder folder;
    const std::string out = tessolv({"check", folder.write("a.stl", binary_stl(book))}).out;
    EXPECT_NE(out.find("\n! 6 free edges, 86 %: triangle 1 2 3; first at (0, 0.5, 0)\n"), std::string::npos) << out;
    EXPECT_NE(out.find(", 14 %: triangle 1 2 3; first at (0.5, 0, 0)\n"), std::string::npos) << out;
}

TEST(CheckText, DrawsTheHistogramInPlainCharacters)
{
    const temporary_folder folder;
    const std::string path = folder.write("a.stl", whole_binary);
    const std::string out = tessolv({"check", path}, {.environment = {"COLUMNS=64"}}).out;
    EXPECT_NE(out.find("\n    0.7 - 0.8         3  " + std::string(40, '#') + "\n"), std::string::npos) << out;
    EXPECT_NE(out.find("\n    0.9 - 1.0         1  " + std::string(13, '#') + "\n"), std::string::npos) << out;
    EXPECT_NE(out.find("\n    0.0 - 0.1         0\n"), std::string::npos) << out;
}

TEST(CheckText, DrawsBlocksWhereTheLocaleHasThemAndTheLineIsWide)
{
    const temporary_folder folder;
    const std::string path = folder.write("a.stl", whole_binary);
    const std::string blocks = tessolv({"check", path}, {.environment = {"LC_ALL=C.UTF-8"}}).out;
    EXPECT_NE(blocks.find("\u2588"), std::string::npos) << blocks;
    EXPECT_EQ(blocks.find('#'), std::string::npos);
    const std::string narrow = tessolv({"check", path}, {.environment = {"LC_ALL=C.UTF-8", "COLUMNS=40"}}).out;
    EXPECT_EQ(narrow.find("\u2588"), std::string::npos);
    EXPECT_NE(narrow.find("################\n"), std::string::npos) << narrow;
}

TEST(CheckText, UsesNoColourInAFile)
{
    const temporary_folder folder;
    EXPECT_EQ(tessolv({"check", folder.write("a.stl", binary_stl(book))}).out.find('\033'), std::string::npos);
}

TEST(CheckText, KeepsControlCharactersOfNamesFromTheTerminal)
{
    const temporary_folder folder;
    const run_result read = tessolv({"check", folder.write("a\033[2J.stl", whole_binary)});
    EXPECT_EQ(read.out.find('\033'), std::string::npos);
    EXPECT_EQ(tessolv({"check", folder.path("b\033[2J.stl")}).err.find('\033'), std::string::npos);
}

TEST(CheckQuiet, PrintsOneLineAFile)
{
    const temporary_folder folder;
    const std::string clean = folder.write("clean.stl", whole_binary);
    const std::string broken = folder.write("broken.stl", binary_stl(book));
    const run_result result = tessolv({"check", "--quiet", broken, clean});
    EXPECT_EQ(result.out, broken + ": NOT CLEAN: 6 free edges, 1 edge of three or more triangles\n" + clean +
                              ": CLEAN: 4 triangles, 1 part, closed\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 1);
}

TEST(CheckFormat, IsReadAsTheOptionSays)
{
    auto [as_text, text_status] = check_json(text_stl(tetrahedron), {"--ascii"});
    EXPECT_EQ(as_text["format"], "ascii");
    EXPECT_EQ(as_text["facets_read"], 4);
    EXPECT_EQ(text_status, 0);
    auto [as_binary, binary_status] = check_json(whole_text, {"--binary"});
    EXPECT_EQ(as_binary["format"], "binary");
    EXPECT_GT(as_binary["facets_in_file"], 1000000);
    EXPECT_EQ(as_binary["facets_read"], (whole_text.size() - 84) / 50);
    EXPECT_EQ(binary_status, 1);
}

TEST(CheckFormat, IsOfStlFilesAlone)
{
    const temporary_folder folder;
    const std::string medit = folder.write("a.mesh",
                                           "MeshVersionFormatted 2\nDimension 3\nVertices\n3\n0 0 0 1\n1 0 0 1\n"
                                           "0 1 0 1\nTriangles\n1\n1 2 3 1\nEnd\n");
    for (const char* const option : {"--ascii", "--binary"}) {
        const run_result result = tessolv({"check", option, medit});
        EXPECT_EQ(result.status, 3);
        EXPECT_NE(result.err.find("is no STL file"), std::string::npos) << result.err;
    }
    const run_result binary = tessolv({"check", "--ascii", folder.write("a.stl", whole_binary)});
    EXPECT_EQ(binary.status, 3);  // no facet and no end
    EXPECT_NE(binary.err.find("no whole facet and no end"), std::string::npos) << binary.err;
}

// A file, standard input, `--profile` and `convert` go one way.
TEST(Check, TellsTheSameWhicheverWayTheFacetsCome)
{
    const temporary_folder folder;
    const std::string damaged =
        open + replaced(text_facet({O, X, Y}), "1 0 0", "1 o 0") + text_facet({O, X, Y}) + "endsolid\n";
    const std::string path = folder.write("part.stl", damaged);
    auto from_file = check_json(damaged).object;
    EXPECT_EQ(from_file["facets_read"], 4);
    for (const strings& arguments : std::vector<strings>{{"check", "--json", "-"},
                                                         {"check", "--json", path, "--profile", "default"},
                                                         {"check", "--json", path, "--ascii"}}) {
        const bool piped = arguments.back() == "-";
        const run_result result = piped ? tessolv(arguments, {.standard_input = path}) : tessolv(arguments);
        auto object = ordered_json::parse(result.out);
        object["file"] = from_file["file"];
        EXPECT_EQ(object, from_file);
    }
    const std::string reason = from_file["problems"][0].get<std::string>();
    EXPECT_EQ(tessolv({"convert", path, "--output", folder.path("out.vtu")}).err,
              "tessolv: " + path + ": " + reason + "\n");
}

TEST(CheckOutput, IsTheWeldedSurface)
{
    const temporary_folder folder;
    const std::string vtk = folder.path("part.vtk");
    const run_result result = tessolv({"check", folder.write("part.stl", whole_binary), "--output", vtk});
    EXPECT_EQ(result.status, 0);
    const std::string written = test::read_file(vtk);
    EXPECT_NE(written.find("\nPOINTS 4 double\n"), std::string::npos) << written;
    EXPECT_NE(written.find("\nCELLS 4 16\n"), std::string::npos) << written;
}

TEST(CheckOutput, IsTheFileOfTheLibraryItself)
{
    const temporary_folder folder;
    const facets near{{O, X, Y}, {test::corner{1.01f, 0, 0}, {1, 1, 0}, {0, 1.01f, 0}}, {X, X, Y}};
    for (const std::string& bytes : {text_stl(tetrahedron + moved(book, 3)), binary_stl(near)}) {
        const std::string path = folder.write("part.stl", bytes);
        zeb::dense2D<double> pos;
        zeb::dense2D<unsigned int> connect;
        zeb::tessolv::STL_input(path.c_str(), pos, connect, bytes.starts_with("solid"));
        zeb::tessolv::vtk_output(folder.path("library.vtk").c_str(), pos, connect, zeb::EL_TRIA3);
        tessolv({"check", path, "--output", folder.path("part.vtk")});
        EXPECT_EQ(test::read_file(folder.path("part.vtk")), test::read_file(folder.path("library.vtk")));
    }
}

TEST(CheckOutput, IsWrittenForAFaultyAndForAnEmptyMeshToo)
{
    const temporary_folder folder;
    const std::string vtk = folder.path("part.vtk");
    EXPECT_EQ(tessolv({"check", folder.write("a.stl", binary_stl(book)), "--output", vtk}).status, 1);
    EXPECT_NE(test::read_file(vtk).find("\nCELLS 3 12\n"), std::string::npos);
    EXPECT_EQ(tessolv({"check", folder.write("b.stl", binary_header("", 0)), "--output", vtk}).status, 1);
    EXPECT_NE(test::read_file(vtk).find("\nCELLS 0 0\n"), std::string::npos) << test::read_file(vtk);
}

TEST(CheckOutput, NeverOverwritesTheInput)
{
    const temporary_folder folder;
    const std::string part = folder.write("part.stl", whole_binary);
    std::filesystem::create_symlink("part.stl", folder.path("symbolic.vtk"));
    std::filesystem::create_hard_link(part, folder.path("hard.vtk"));
    const std::string name = std::filesystem::path(folder.path("")).parent_path().filename();
    for (const std::string& output : {part, folder.path("./part.stl"), folder.path("../" + name + "/part.stl"),
                                      folder.path("symbolic.vtk"), folder.path("hard.vtk"), std::string("part.stl")}) {
        const run_result result = tessolv({"check", part, "--output", output}, {.working_directory = folder.path("")});
        EXPECT_EQ(result.status, 2) << output;
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err.find("never overwritten"), std::string::npos) << result.err;
        EXPECT_EQ(test::read_file(part), whole_binary) << output;
    }
    const run_result linked = tessolv({"check", folder.path("symbolic.vtk"), "--output", part});
    EXPECT_EQ(linked.status, 2);
    EXPECT_EQ(test::read_file(part), whole_binary);
}

TEST(CheckStatus, IsTheHighestOfAllFiles)
{
    const temporary_folder folder;
    const std::string clean = folder.write("clean.stl", whole_binary);
    const std::string broken = folder.write("broken.stl", binary_stl(book));
    const std::string prose = folder.write("prose.txt", "Not a surface at all.\n");
    EXPECT_EQ(tessolv({"check", clean, clean}).status, 0);
    EXPECT_EQ(tessolv({"check", broken, clean}).status, 1);
    EXPECT_EQ(tessolv({"check", broken, prose, clean}).status, 3);
}

TEST(CheckStatus, IsThreeForWhatCannotBeReadAndSaysWhy)
{
    const temporary_folder folder;
    std::filesystem::create_directory(folder.path("folder.stl"));
    ASSERT_EQ(mkfifo(folder.path("pipe.stl").c_str(), 0600), 0);
    const std::vector<std::pair<std::string, std::string>> cases{
        {folder.path("missing.stl"), "No such file or directory"},
        {folder.path("folder.stl"), "is a directory"},
        {folder.path("pipe.stl"), "is not a regular file"},
        {"/dev/null", "is not a regular file"},
        {folder.write("empty.stl", ""), "is empty"},
        {folder.write("prose.stl", "Not a surface at all.\n"), "is no STL file"},
        {folder.write("picture.stl", "\x89PNG\r\n\x1A\n" + std::string(200, '\xA5')), "is no STL file"},
        {folder.write("part.stl", whole_binary) + "/x", "Not a directory"}};
    for (const auto& [path, reason] : cases) {
        const run_result result = tessolv({"check", path});
        EXPECT_EQ(result.status, 3) << path;
        EXPECT_EQ(result.out, "");
        EXPECT_TRUE(result.err.starts_with(std::string("tessolv: ").append(path).append(": ").append(reason)))
            << result.err;
    }
    EXPECT_EQ(tessolv({"check", ""}).status, 3);
    EXPECT_EQ(tessolv({"check", "--binary", folder.write("short.stl", "solid\n")}).status, 3);
    EXPECT_EQ(tessolv({"check", "--ascii", folder.path("empty.stl")}).status, 3);
}

TEST(CheckStatus, IsTwoForWrongUsage)
{
    const temporary_folder folder;
    const std::string part = folder.write("part.stl", whole_binary);
    for (const strings& arguments : std::vector<strings>{{},
                                                         {"check"},
                                                         {"mend", part},
                                                         {"check", "--wrong", part},
                                                         {"check", part, "--output"},
                                                         {"check", part, "--ascii", "--binary"},
                                                         {"check", part, part, "--output", folder.path("out.vtk")}}) {
        const run_result result = tessolv(arguments);
        EXPECT_EQ(result.status, 2) << testing::PrintToString(arguments);
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err, "");
    }
    EXPECT_FALSE(std::filesystem::exists(folder.path("out.vtk")));
}

TEST(CheckStatus, IsFourWhenTheOutputCannotBeWritten)
{
    const temporary_folder folder;
    const std::string part = folder.write("part.stl", whole_binary);
    for (const std::string& output : {folder.path("no/such/folder.vtk"), std::string("/dev/full"), folder.path("")}) {
        const run_result result = tessolv({"check", part, "--output", output});
        EXPECT_EQ(result.status, 4) << output;
        EXPECT_EQ(result.err.find("tessolv: " + output + ": cannot be written"), 0u) << result.err;
    }
    EXPECT_EQ(tessolv({"check", folder.write("a.stl", binary_stl(book)), "--output", "/dev/full"}).status, 4);
}

TEST(CheckStatus, IsFourWhenStandardOutputIsFull)
{
    const temporary_folder folder;
    const std::string part = folder.write("part.stl", whole_binary);
    for (const strings& arguments :
         std::vector<strings>{{"check", part}, {"check", "--json", part}, {"--version"}, {"--help"}}) {
        const run_result result = tessolv(arguments, {.standard_output = "/dev/full"});
        EXPECT_EQ(result.status, 4) << testing::PrintToString(arguments);
        EXPECT_EQ(result.err, "tessolv: standard output: No space left on device\n");
    }
}

TEST(CheckStatus, IsFiveWithoutMemory)
{
#ifdef SANITIZED
    GTEST_SKIP() << "the address sanitizer needs more address space than the limit of this test";
#endif
    // Three million facets want some 250 megabytes; the file itself is a hole on the disk.
    const temporary_folder folder;
    const std::string part = folder.write("large.stl", binary_header("large", 3000000));
    std::filesystem::resize_file(part, 84 + 50ull * 3000000);
    const run_result result = tessolv({"check", "--json", part}, {.memory = 128ull << 20});
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(result.err, "tessolv: " + part + ": out of memory\n");
    EXPECT_EQ(ordered_json::parse(result.out)["verdict"], "failed");
}

TEST(Program, TellsTheVersionOfTheLibrary)
{
    const run_result result = tessolv({"--version"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "tessolv 3.9.3\n");
}

TEST(Program, NamesEveryOptionAndGivesExamplesInTheHelpOfCheck)
{
    const run_result result = tessolv({"check", "--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    for (const std::string word : {"FILE", "--output", "--json", "--ascii", "--binary", "--quiet", "--help", "--color",
                                   "Examples:", "tessolv check part.stl --output part.vtk", "Exit status:"})
        EXPECT_NE(result.out.find(word), std::string::npos) << word << " is not in\n" << result.out;
}

TEST(Program, NamesItsCommandsInItsHelp)
{
    const run_result result = tessolv({"--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    for (const std::string word : {"\n  check ", "COMMAND FILE...", "--help", "--version", "--output", "Exit status:"})
        EXPECT_NE(result.out.find(word), std::string::npos) << word << " is not in\n" << result.out;
}

}  // namespace
