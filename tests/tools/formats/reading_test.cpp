#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "errors.h"
#include "mesh/polygon.h"
#include "tools/formats/every_kind.h"
#include "tools/stl_files.h"

// Files as other programs write them, and what is in them.

namespace {

using namespace tool;
using namespace zeb;

std::vector<unsigned int> nodes_of(const mesh& m, std::size_t block, std::uint64_t element)
{
    const connectivity& c = m.blocks.at(block).connect;
    return {&c(0, element), &c(0, element) + c.rows};
}

using nodes = std::vector<unsigned int>;

TEST(Detection, GoesByContentAndNotByName)
{
    const auto found = [](const std::string& bytes, const std::string& name) {
        return std::string(input_format(source::of_bytes(bytes, name), {}).name);
    };
    const mesh tetra = test::two_elements(EL_TETRA4);
    for (const char* format : {"vtk", "vtu", "gmsh", "medit"})
        for (const bool ascii : {false, true})
            EXPECT_EQ(found(test::written(tetra, format, ascii), "part.stl"), format);
    const mesh surface = test::two_elements(EL_TRIA3);
    for (const char* format : {"stl", "obj"}) EXPECT_EQ(found(test::written(surface, format), "part.vtk"), format);
    EXPECT_EQ(found("\xEF\xBB\xBFv 0 0 0\n", "part"), "obj");
    EXPECT_EQ(found("   \n# remark\nMeshVersionFormatted 2\n", "part"), "medit");
    EXPECT_EQ(found("nothing that tells", "part.OBJ"), "obj");
    EXPECT_THROW(found("nothing that tells", "part"), unreadable);
    EXPECT_THROW(found("", "part.obj"), unreadable);
    EXPECT_THROW(found(std::string("\xFE\xFF\0v", 4), "part.obj"), unreadable);
    EXPECT_THROW(format_named("dxf"), wrong_usage);
}

TEST(ReadObj, CutsPolygonsAndKnowsGroupsContinuationsAndNegativeNumbers)
{
    const mesh m = test::read_bytes(
        "# a house\nmtllib a.mtl\nv 0 0 0\nv 1 0 0 1\nv 1 1 0 0.5 0.5 0.5\nv 0 1 0\nv 0.5 \\\n 2 0\n"
        "g roof\nf -5 -4 -3 -1 -2\ng walls of it\nusemtl x\nf 1/1/1 2 \\\n 3//4 4/7\nf 1 2 3\nl 1 2 3\np 5\n");
    ASSERT_EQ(m.pos.cols, 5u);
    EXPECT_EQ(m.pos(1, 4), 2.0);
    ASSERT_EQ(m.blocks.size(), 4u);
    EXPECT_EQ(m.blocks[0].type, EL_NODE);
    EXPECT_EQ(m.blocks[1].type, EL_EDGE2);
    EXPECT_EQ(m.blocks[1].size(), 2u);
    EXPECT_EQ(m.blocks[2].type, EL_TRIA3);
    EXPECT_EQ(m.blocks[2].size(), 4u);
    EXPECT_EQ(m.blocks[2].groups, (std::vector<std::int32_t>{1, 1, 1, 2}));
    EXPECT_EQ(m.blocks[2].numbers[0], 1u);
    EXPECT_EQ(m.blocks[2].numbers[2], 1u);
    EXPECT_EQ(m.blocks[2].numbers[3], 3u);
    EXPECT_EQ(nodes_of(m, 3, 0), (nodes{0, 1, 2, 3}));
    ASSERT_EQ(m.group_names.size(), 2u);
    EXPECT_EQ(m.group_names[1].name, "walls of it");
    EXPECT_EQ(m.notes, (std::vector<std::string>{"colours of nodes left out", "materials left out",
                                                 "1 polygon of five and more corners cut into triangles"}));
}

TEST(ReadMedit, TellsWhichSectionsItLeavesOutOnceEach)
{
    const mesh m = test::read_bytes_as(
        "MeshVersionFormatted 2\nDimension 3\nVertices\n3\n0 0 0 0\n1 0 0 0\n0 1 0 0\nTriangels\n1\n1 2 3 1\n"
        "Corners\n1\n2\nCorners\n1\n3\nEnd\n",
        "medit");
    EXPECT_EQ(m.notes, (std::vector<std::string>{"section 'Triangels' left out", "section 'Corners' left out"}));
    EXPECT_EQ(m.element_count(), 0u);
}

TEST(ReadObj, CarriesANumberThatNamesNoNode)
{
    const mesh m = test::read_bytes("v 0 0 0\nv 1 0 0\nf 1 2 7\nf 0 1 2\nf -9 1 2\n");
    EXPECT_EQ(faults_of(m).bad_indices.size(), 3u);
    EXPECT_THROW(require_sound(m), unreadable);
}

TEST(CutPolygon, CoversAConcaveOneOnceByTrianglesThatTurnItsWay)
{
    // An arrow: the fan of its first corner would leave it.
    const std::vector<std::array<double, 3>> arrow{{0, 0, 5}, {2, -2, 5}, {0.5, 0, 5}, {2, 2, 5}, {-1, 1, 5}};
    const auto triangles = cut_places(arrow, arrow.size());
    ASSERT_EQ(triangles.size(), 3u);
    const auto twice_area = [&](const std::array<unsigned int, 3>& t) {
        return (arrow[t[1]][0] - arrow[t[0]][0]) * (arrow[t[2]][1] - arrow[t[0]][1]) -
               (arrow[t[1]][1] - arrow[t[0]][1]) * (arrow[t[2]][0] - arrow[t[0]][0]);
    };
    double whole = 0;
    for (std::size_t i = 0; i < arrow.size(); ++i) {
        const auto& a = arrow[i];
        const auto& b = arrow[(i + 1) % arrow.size()];
        whole += a[0] * b[1] - a[1] * b[0];
    }
    double sum = 0;
    for (const auto& t : triangles) {
        EXPECT_GT(twice_area(t), 0);
        sum += twice_area(t);
    }
    EXPECT_NEAR(sum, whole, 1e-12);
}

TEST(ReadStl, TakesEverySolidWithItsName)
{
    const std::string two = "solid left half\n" + test::text_facets(test::tetrahedron) +
                            "endsolid left half\nsolid right\n" + test::text_facet({test::O, test::X, {0, 5, 0}}) +
                            "endsolid right\n";
    const mesh m = test::read_bytes(two);
    ASSERT_EQ(m.blocks.size(), 1u);
    EXPECT_EQ(m.blocks[0].size(), 5u);
    EXPECT_EQ(m.pos.cols, 5u);
    EXPECT_EQ(m.blocks[0].groups, (std::vector<std::int32_t>{1, 1, 1, 1, 2}));
    ASSERT_EQ(m.group_names.size(), 2u);
    EXPECT_EQ(m.group_names[0].name, "left half");
    EXPECT_EQ(m.group_names[1].name, "right");
    EXPECT_TRUE(m.faults.empty());
}

TEST(ReadStl, EndsAtAFacetThatItCannotReadUnlessThereAreSeveralSolids)
{
    std::string text = test::text_stl(test::tetrahedron);
    text.replace(text.find("vertex", 200), 6, "vertax");
    const auto facets_of = [](const mesh& m) { return std::pair(m.blocks.at(0).size(), m.faults.at(0).count); };
    const mesh m = test::read_bytes(text);
    EXPECT_EQ(facets_of(m), std::pair(1ul, 3ul));
    EXPECT_EQ(m.faults[0].code, "facets_not_read");
    EXPECT_EQ(m.facets->in_file, 4u);
    EXPECT_EQ(m.facets->why_not_read, "line 13 is not 'vertex' and three numbers");
    EXPECT_THROW(require_sound(m), unreadable);
    EXPECT_EQ(facets_of(test::read_bytes(text + "solid b\nendsolid b\n")), std::pair(3ul, 1ul));
    EXPECT_THROW(test::read_bytes_as("solid\nfacet normal 0 0 1\nouter loop\nvertex 0 0", "stl"), unreadable);
}

// What the library leaves out at once. Returns the number of triangles that are left.
std::uint64_t drop_collapsed(mesh& m)
{
    if (m.blocks.empty()) return 0;
    dense1D<unsigned int> new_numbers;
    zeb::tessolv::remove_degenerated(m.blocks[0].connect, new_numbers);
    zeb::tessolv::simplify(m.pos, m.blocks[0].connect);
    return m.blocks[0].connect.cols;
}

struct odd_text {
    const char* name;
    const char* from;  // what is replaced behind the first facet, or before where it stands there alone
    std::string to;
};
void PrintTo(const odd_text& row, std::ostream* out)
{
    *out << row.name;
}
class OddText : public testing::TestWithParam<odd_text> {};

// The library follows lines and letters to the word; other readers would take most of these.
TEST_P(OddText, IsReadAsFarAsTheLibraryDoes)
{
    const auto& [name, from, to] = GetParam();
    std::string text = test::text_stl(test::tetrahedron);
    std::size_t at = text.find(from, text.find("endfacet") + 8);
    if (at == text.npos) at = text.find(from);
    ASSERT_NE(at, text.npos);
    text.replace(at, std::string(from).size(), to);
    const test::temporary_folder folder;
    zeb::dense2D<double> pos;
    zeb::dense2D<unsigned int> connect;
    const int triangles = zeb::tessolv::STL_input(folder.write("a.stl", text).c_str(), pos, connect, true);
    mesh m = test::read_bytes_as(text, "stl");
    EXPECT_EQ(drop_collapsed(m), static_cast<unsigned>(triangles)) << text;
    if (triangles > 0) {
        EXPECT_EQ(m.pos, pos);
    }
}

INSTANTIATE_TEST_SUITE_P(
    ReadStl, OddText,
    testing::Values(odd_text{"ends_on_one_line", "endloop\n", "endloop "},
                    odd_text{"line_between_the_ends", "endloop\n", "endloop\n\n"},
                    odd_text{"blanks_behind_an_end", "endloop\n", "endloop" + std::string(300, ' ') + "\n"},
                    odd_text{"facet_behind_an_end", "endfacet\n", "endfacet "},
                    odd_text{"loop_on_the_line_of_a_vertex", "outer loop\n", "outer loop "},
                    odd_text{"no_loop", "outer loop\n", ""}, odd_text{"other_loop", "outer loop", "inner loops"},
                    odd_text{"facet_in_capitals", "facet", "FACET"}, odd_text{"normal_in_capitals", "normal", "Normal"},
                    odd_text{"vertex_in_capitals", "vertex", "VERTEX"},
                    odd_text{"end_in_capitals", "endloop", "ENDLOOP"}, odd_text{"plus", "vertex 0", "vertex +0"},
                    odd_text{"exponent_of_fortran", "vertex 0", "vertex 0d0"},
                    odd_text{"hexadecimal", "vertex 0", "vertex 0x0p0"},
                    odd_text{"no_exponent", "vertex 0", "vertex 0e"},
                    odd_text{"no_number", "vertex 0", "vertex nan(1)"}, odd_text{"words_together", "vertex ", "vertex"},
                    odd_text{"two_vertices_on_a_line", "\n      vertex", " vertex"},
                    odd_text{"four_vertices", "vertex", "vertex 0 0 0\n vertex"},
                    odd_text{"line_of_no_meaning", "endfacet\n", "endfacet\nwhat?\n"},
                    odd_text{"facets_behind_the_end", "endfacet\n", "endfacet\nendsolid\n"},
                    odd_text{"name_of_254_letters", "solid part\n", "solid " + std::string(248, 'x') + '\n'},
                    odd_text{"name_of_255_letters", "solid part\n", "solid " + std::string(249, 'x') + '\n'},
                    odd_text{"name_of_256_letters", "solid part\n", "solid " + std::string(250, 'x') + '\n'},
                    odd_text{"line_before_all", "solid part", "\nsolid part"},
                    odd_text{"mark_before_all", "solid part", "\xEF\xBB\xBFsolid part"},
                    odd_text{"another_first_line", "solid part", "shape"},
                    odd_text{"facet_in_the_name", "solid part", "solid facet normal"},
                    odd_text{"everything_in_the_first_line", "solid part\n", "solid part "}),
    [](const auto& row) { return std::string(row.param.name); });

// Corners that are equal, close, a weld apart from two others, or at no place at all.
std::vector<test::facet> spoiled_sheet(std::mt19937& random)
{
    const auto below = [&](unsigned n) { return static_cast<float>(random() % n); };
    std::vector<test::facet> facets;
    for (unsigned i = 0; i < 40; ++i) {
        const float x = below(4);
        const float y = below(4);
        facets.push_back({test::corner{x, y, 0}, {x + 1, y, 0}, {x, y + 1, 0}});
        for (test::corner& c : facets.back())
            if (random() % 3 == 0) c[random() % 2] += 0.01f * (below(9) - 4);
        if (random() % 20 == 0) facets.back()[0][2] = std::numeric_limits<float>::infinity();
        if (random() % 20 == 0) facets.back()[1][0] = std::numeric_limits<float>::quiet_NaN();
    }
    return facets;
}

TEST(ReadStl, GivesTheSurfaceOfTheLibrary)
{
    const test::temporary_folder folder;
    std::mt19937 random(5);
    unsigned welded = 0;
    for (int file = 0; file < 200; ++file) {
        const bool ascii = file % 2 == 0;
        const std::vector<test::facet> facets = spoiled_sheet(random);
        const std::string bytes = ascii ? test::text_stl(facets) : test::binary_stl(facets);
        zeb::dense2D<double> pos;
        zeb::dense2D<unsigned int> connect;
        ASSERT_GT(zeb::tessolv::STL_input(folder.write("a.stl", bytes).c_str(), pos, connect, ascii), 0);
        mesh m = test::read_bytes(bytes);
        drop_collapsed(m);
        ASSERT_EQ(m.blocks[0].connect, connect) << file;
        ASSERT_EQ(m.pos.cols, pos.cols);
        for (std::uint64_t i = 0; i < pos.cols; ++i)
            for (std::uint64_t k = 0; k < 3; ++k)
                ASSERT_TRUE(m.pos(k, i) == pos(k, i) || (std::isnan(m.pos(k, i)) && std::isnan(pos(k, i)))) << file;
        welded += pos.cols < 3 * facets.size();
    }
    EXPECT_GT(welded, 100u);
}

TEST(ReadStl, CountsFacetsThatABinaryFileAnnouncesAndLacks)
{
    std::string bytes = test::binary_stl(test::tetrahedron);
    bytes.resize(bytes.size() - 20);
    const mesh m = test::read_bytes(bytes);
    EXPECT_EQ(m.blocks[0].size(), 3u);
    ASSERT_EQ(m.faults.size(), 1u);
    EXPECT_EQ(m.faults[0].count, 1u);
}

TEST(ReadStl, WeldsAsTheLibraryDoes)
{
    // The corner of one facet lies a thousandth of the height away.
    std::vector<test::facet> facets = test::tetrahedron;
    facets[0][1][0] += 0.001f;
    const mesh near = test::read_bytes(test::binary_stl(facets));
    EXPECT_EQ(near.pos.cols, 4u);
    facets[0][1][0] += 0.1f;
    EXPECT_EQ(test::read_bytes(test::binary_stl(facets)).pos.cols, 5u);
}

TEST(ReadVtk, KnowsTheLayoutOfVersion51AndPolygonalData)
{
    const mesh m = test::read_bytes(
        "# vtk DataFile Version 5.1\nvtk output\nASCII\nDATASET POLYDATA\nPOINTS 5 float\n0 0 0 1 0 0 1 1 0\n0 1 0 0.5 "
        "2 0\n"
        "METADATA\nINFORMATION 0\n\nLINES 2 3\nOFFSETS vtktypeint64\n0 3 \nCONNECTIVITY vtktypeint64\n0 1 2\n"
        "POLYGONS 4 12\nOFFSETS vtktypeint64\n0 3 7 12\nCONNECTIVITY vtktypeint64\n0 1 2 0 1 2 3 0 1 2 4 3\n"
        "CELL_DATA 4\nSCALARS a%20name int 1\nLOOKUP_TABLE default\n5 6 7 8\nPOINT_DATA 5\nFIELD FieldData 2\n"
        "t 2 5 float\n1 2 3 4 5 6 7 8 9 10\nMETADATA\nINFORMATION 0\n\nnames 1 5 string\na\nb\nc\nd\ne\n");
    ASSERT_EQ(m.blocks.size(), 3u);
    EXPECT_EQ(m.blocks[0].type, EL_EDGE2);
    EXPECT_EQ(m.blocks[0].size(), 2u);
    EXPECT_EQ(m.blocks[1].type, EL_TRIA3);
    EXPECT_EQ(m.blocks[1].size(), 4u);
    EXPECT_EQ(m.blocks[2].type, EL_QUAD4);
    ASSERT_EQ(m.cell_fields.size(), 1u);
    EXPECT_EQ(m.cell_fields[0].name, "a name");
    EXPECT_EQ(m.cell_fields[0].values, (std::vector<double>{5, 5, 6, 8, 8, 8, 7}));
    ASSERT_EQ(m.point_fields.size(), 1u);
    EXPECT_EQ(m.point_fields[0].components, 2u);
}

TEST(ReadVtk, TurnsPixelsVoxelsAndStrips)
{
    const mesh m = test::read_bytes(
        "# vtk DataFile Version 2.0\nx\nASCII\nDATASET UNSTRUCTURED_GRID\nPOINTS 8 double\n"
        "0 0 0 1 0 0 0 1 0 1 1 0 0 0 1 1 0 1 0 1 1 1 1 1\nCELLS 4 23\n4 0 1 2 3\n8 0 1 2 3 4 5 6 7\n4 0 1 2 3\n3 5 6 "
        "7\n"
        "CELL_TYPES 4\n8\n11\n6\n2\n");
    ASSERT_EQ(m.blocks.size(), 4u);
    EXPECT_EQ(m.blocks[0].size(), 3u);
    EXPECT_EQ(nodes_of(m, 1, 0), (nodes{0, 1, 2}));
    EXPECT_EQ(nodes_of(m, 1, 1), (nodes{2, 1, 3}));
    EXPECT_EQ(nodes_of(m, 2, 0), (nodes{0, 1, 3, 2}));
    EXPECT_EQ(nodes_of(m, 3, 0), (nodes{0, 1, 3, 2, 4, 5, 7, 6}));
}

TEST(ReadGmsh, TakesEntitiesForGroupsWhereThereAreNoPhysicalOnes)
{
    const std::string file =
        "$MeshFormat\n2.2 0 8\n$EndMeshFormat\n$Comments\nnothing $EndNodes\n$EndComments\n$Nodes\n3\n10 0 0 0\n4 1 0 "
        "0\n7 0 1 0\n$EndNodes\n"
        "$Elements\n2\n5 2 2 0 3 10 4 7\n9 1 2 0 2 4 99\n$EndElements\n";
    const mesh m = test::read_bytes(file);
    ASSERT_EQ(m.blocks.size(), 2u);
    EXPECT_EQ(nodes_of(m, 1, 0), (nodes{0, 1, 2}));
    EXPECT_EQ(m.blocks[1].group(0), 3);
    EXPECT_EQ(m.blocks[1].numbers[0], 5u);
    EXPECT_EQ(nodes_of(m, 0, 0), (nodes{1, NONE_INDEX}));
    EXPECT_EQ(faults_of(m).bad_indices.size(), 1u);
}

TEST(ReadGmsh, DropsEntitiesOnceAPhysicalGroupIsSeen)
{
    const mesh m = test::read_bytes(
        "$MeshFormat\n2.2 0 8\n$EndMeshFormat\n$Nodes\n3\n1 0 0 0\n2 1 0 0\n3 0 1 0\n$EndNodes\n"
        "$Elements\n2\n1 2 2 0 3 1 2 3\n2 2 2 8 3 1 2 3\n$EndElements\n");
    EXPECT_EQ(m.blocks[0].group(0), 0);
    EXPECT_EQ(m.blocks[0].group(1), 8);
}

TEST(ReadMedit, TakesReferencesAndPassesOverOtherSections)
{
    const mesh m = test::read_bytes(
        "MeshVersionFormatted 1\nDimension\n2\n# a remark\nVertices 3\n0 0 5\n1d0 0 0\n0 1.5E+00 0\nTriangles\n1\n1 2 "
        "3 -4\n"
        "RequiredVertices 2\n1 2\nRidges\n1 1\nEdges 1 3 9 2\nEnd\n");
    EXPECT_EQ(m.pos.rows, 2u);
    EXPECT_EQ(m.pos(0, 1), 1.0);
    ASSERT_EQ(m.blocks.size(), 2u);
    EXPECT_EQ(m.blocks[1].group(0), -4);
    EXPECT_EQ(faults_of(m).bad_indices.size(), 1u);
    ASSERT_EQ(m.point_fields.size(), 1u);
    EXPECT_EQ(m.point_fields[0].values, (std::vector<double>{5, 0, 0}));
}

TEST(Numbers, AreThoseOfTheCRuntime)
{
    const auto x_of = [](const std::string& word) {
        return test::read_bytes_as("v " + word + " 0 0\n", "obj").pos(0, 0);
    };
    EXPECT_EQ(x_of("+1.5"), 1.5);
    EXPECT_EQ(x_of("-.5"), -0.5);
    EXPECT_EQ(x_of("1e400"), HUGE_VAL);
    EXPECT_EQ(x_of("-1e400"), -HUGE_VAL);
    EXPECT_EQ(x_of("0.1e400"), HUGE_VAL);
    EXPECT_EQ(x_of("1e-400"), 0.0);
    EXPECT_EQ(x_of("4.9e-324"), 4.9e-324);
    EXPECT_EQ(x_of("1.5D-3"), 1.5e-3);
    EXPECT_TRUE(std::isnan(x_of("nan")));
    for (const char* wrong : {"1.5x", "--1", "+-1", "0x", "1e", "e5", ".", "1d2d3", "1,5"})
        EXPECT_THROW(x_of(wrong), unreadable) << wrong;
}

TEST(Faults, NameWhatIsNoFiniteNumberAndTheLackOfElements)
{
    const mesh m = test::read_bytes("v 0 0 nan\nv 1 0 inf\nv 0 1 0\nf 1 2 3\n");
    EXPECT_EQ(faults_of(m).not_finite, (std::vector<std::uint64_t>{0, 1}));
    EXPECT_TRUE(faults_of(test::read_bytes("v 0 0 0\n")).no_element);
    EXPECT_FALSE(faults_of(test::two_elements(EL_TETRA4)).any());
}

}  // namespace
