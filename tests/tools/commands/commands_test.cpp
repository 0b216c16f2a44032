#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "formats/format.h"
#include "tools/findings/mesh_by_hand.h"
#include "tools/program.h"
#include "tools/stl_files.h"

// Black-box tests of the commands that work on a mesh: a file in, a file out.
namespace {

using nlohmann::json;
using test::mesh_by_hand;
using test::nodes;
using test::place;
using test::run_result;
using test::temporary_folder;
using test::tessolv;

using strings = std::vector<std::string>;
using values = std::vector<double>;

struct commands : testing::Test {
    temporary_folder folder;

    std::string file(const tool::mesh& m, const std::string& name = "in.vtu") const
    {
        write_mesh(m, folder.path(name));
        return folder.path(name);
    }

    // Runs `tessolv COMMAND in.vtu --output out.vtu --json MORE` and reads what it wrote.
    struct outcome {
        json told;
        tool::mesh mesh;
    };
    outcome run(const std::string& command, const tool::mesh& m, const strings& more = {}) const
    {
        strings arguments{command, file(m), "--output", folder.path("out.vtu"), "--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const run_result result = tessolv(arguments);
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.status, 0);
        if (result.status != 0) return {};
        return {json::parse(result.out), tool::read_mesh(tool::source::open(folder.path("out.vtu")))};
    }
};

std::vector<nodes> elements_of(const tool::mesh& m, std::size_t block = 0)
{
    std::vector<nodes> all;
    if (block >= m.blocks.size()) return all;
    const tool::connectivity& connect = m.blocks[block].connect;
    for (std::uint64_t e = 0; e < connect.cols; ++e) all.emplace_back(&connect(0, e), &connect(0, e) + connect.rows);
    return all;
}

values cell_values(const tool::mesh& m, const std::string& name)
{
    for (const tool::field& f : m.cell_fields)
        if (f.name == name) return f.values;
    return {};
}

const place O{0, 0, 0}, X{1, 0, 0}, Y{0, 1, 0}, Z{0, 0, 1}, XY{1, 1, 0};

// Two triangles of a square whose nodes on the diagonal are two each, 1e-3 apart, with a field on the nodes.
tool::mesh torn_square()
{
    tool::mesh m = mesh_by_hand({O, X, XY, {1e-3, 0, 0}, {1, 1.001, 0}, Y}).with(zeb::EL_TRIA3, {{0, 1, 2}, {3, 4, 5}});
    m.blocks[0].groups = {4, 9};
    m.point_fields.push_back({"heat", 1, tool::number_kind::real64, {0, 1, 2, 3, 4, 5}});
    m.cell_fields.push_back({"force", 1, tool::number_kind::real64, {10, 20}});
    return m;
}

TEST_F(commands, WeldMakesOneNodeAndKeepsGroupsAndFields)
{
    const auto [told, m] = run("weld", torn_square(), {"--tolerance", "0.01"});
    EXPECT_EQ(told["merged"], 2);
    EXPECT_EQ(told["nodes"], 6);
    EXPECT_NEAR(told["largest_distance"].get<double>(), 1e-3, 1e-12);
    EXPECT_EQ(elements_of(m), (std::vector<nodes>{{0, 1, 2}, {0, 2, 3}}));
    EXPECT_EQ(m.point_fields[0].values, (values{0, 1, 2, 5}));
    EXPECT_EQ(cell_values(m, "force"), (values{10, 20}));
    EXPECT_EQ(m.blocks[0].groups, (std::vector<std::int32_t>{4, 9}));
}

TEST_F(commands, WeldTakesToleranceAbsoluteOrRelative)
{
    EXPECT_EQ(run("weld", torn_square()).told["merged"], 0);
    EXPECT_EQ(run("weld", torn_square(), {"--tolerance", "0.0008"}).told["merged"], 0);
    EXPECT_EQ(run("weld", torn_square(), {"--tolerance", "0.0008", "--relative", "box"}).told["merged"], 2);
    EXPECT_EQ(run("weld", torn_square(), {"--tolerance", "0.0008", "--relative", "edge"}).told["merged"], 0);
    EXPECT_EQ(run("weld", torn_square(), {"--tolerance", "0.002", "--relative", "edge"}).told["merged"], 2);
}

TEST_F(commands, WeldKeepsToElementsOrToPartsWhenAsked)
{
    // The second triangle has two corners that coincide with each other, and one with a corner of the first.
    const tool::mesh m =
        mesh_by_hand({O, X, Y, {1e-3, 0, 0}, {0, -1, 0}, {0, -1.001, 0}}).with(zeb::EL_TRIA3, {{0, 1, 2}, {3, 4, 5}});
    EXPECT_EQ(run("weld", m, {"--tolerance", "0.01"}).told["merged"], 2);
    const auto within = run("weld", m, {"--tolerance", "0.01", "--within-elements"});
    EXPECT_EQ(elements_of(within.mesh), (std::vector<nodes>{{0, 1, 2}, {3, 4, 4}}));
    EXPECT_EQ(within.told["collapsed_elements"], 1);
    const auto across = run("weld", m, {"--tolerance", "0.01", "--across-parts"});
    EXPECT_EQ(elements_of(across.mesh), (std::vector<nodes>{{0, 1, 2}, {0, 3, 4}}));
}

TEST_F(commands, WeldAcrossManyPartsJoinsEachPlaceOnce)
{
    // Eleven triangles around O, each with three nodes of its own.
    std::vector<place> places;
    std::vector<nodes> triangles;
    for (unsigned i = 0; i < 11; ++i) {
        const double x = 1 + i;
        for (const place& p : {O, place{x, 1, 0}, place{x, 1, 1}}) places.push_back(p);
        triangles.push_back({3 * i, 3 * i + 1, 3 * i + 2});
    }
    const auto [told, m] =
        run("weld", mesh_by_hand(places).with(zeb::EL_TRIA3, triangles), {"--tolerance", "0.1", "--across-parts"});
    EXPECT_EQ(told["merged"], 10);
    for (const nodes& triangle : elements_of(m)) EXPECT_EQ(triangle[0], elements_of(m)[0][0]);
}

TEST_F(commands, WeldWritesTheMapOfNodes)
{
    const std::string map = folder.path("map.csv");
    EXPECT_EQ(tessolv({"weld", file(torn_square(), "in.msh"), "--tolerance", "0.01", "--map", map}).status, 0);
    const std::string text = test::read_file(map);
    EXPECT_EQ(text.substr(0, text.find('\n') + 1), "old,new,distance\n");
    EXPECT_NE(text.find("\n4,1,0.001\n"), std::string::npos) << text;
    EXPECT_EQ(std::ranges::count(text, '\n'), 3);
}

TEST_F(commands, CleanRemovesWhatIsAskedFor)
{
    tool::mesh m = mesh_by_hand({O, X, Y, Z, XY, {2, 0, 0}})
                       .with(zeb::EL_TRIA3, {{0, 1, 2}, {2, 0, 1}, {1, 1, 2}, {0, 1, 5}, {1, 4, 2}});
    m.cell_fields.push_back({"force", 1, tool::number_kind::real64, {1, 2, 3, 4, 5}});
    const auto all = run("clean", m);
    EXPECT_EQ(all.told["degenerate"], 2);
    EXPECT_EQ(all.told["duplicates"], 1);
    EXPECT_EQ(all.told["unused_nodes"], 2);
    EXPECT_EQ(elements_of(all.mesh), (std::vector<nodes>{{0, 1, 2}, {1, 3, 2}}));
    EXPECT_EQ(cell_values(all.mesh, "force"), (values{1, 5}));
    EXPECT_EQ(run("clean", m, {"--duplicates"}).mesh.element_count(), 4u);
    EXPECT_EQ(run("clean", m, {"--degenerate"}).mesh.element_count(), 3u);
    EXPECT_EQ(run("clean", m, {"--unused"}).mesh.pos.cols, 5u);
}

// The unit cube with a pyramid on it.
tool::mesh house()
{
    tool::mesh m = mesh_by_hand({O, X, XY, Y, Z, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}, {0.5, 0.5, 2}})
                       .with(zeb::EL_PYRAMID5, {{4, 5, 6, 7, 8}}, 3)
                       .with(zeb::EL_HEXA8, {{0, 1, 2, 3, 4, 5, 6, 7}}, 5);
    return m;
}

TEST_F(commands, BoundaryIsTheSurfaceOfASolidSeenFromOutside)
{
    const auto [told, m] = run("boundary", house());
    EXPECT_EQ(told["faces"], 9);
    EXPECT_EQ(told["kinds"], json::parse(R"({"triangle": 4, "quad": 5})"));
    EXPECT_EQ(m.blocks[0].groups, std::vector<std::int32_t>(4, 3));
    EXPECT_EQ(m.blocks[1].groups, std::vector<std::int32_t>(5, 5));
    EXPECT_EQ(cell_values(m, "element"), (values{0, 0, 0, 0, 1, 1, 1, 1, 1}));
    EXPECT_EQ(tessolv({"check", folder.path("out.vtu"), "--profile", "closed"}).status, 0);
}

// A cube two of whose upper nodes are one.
TEST_F(commands, BoundaryOfACollapsedElementHasTriangles)
{
    const tool::mesh cube =
        mesh_by_hand({O, X, XY, Y, Z, {1, 0, 1}, {0.5, 1, 1}}).with(zeb::EL_HEXA8, {{0, 1, 2, 3, 4, 5, 6, 6}}, 5);
    const run_result told = tessolv({"boundary", file(cube), "--output", folder.path("out.vtu"), "--json"});
    EXPECT_EQ(told.status, 0);
    EXPECT_EQ(json::parse(told.out)["kinds"], json::parse(R"({"triangle": 2, "quad": 4})"));
    EXPECT_NE(told.err.find("note: 2 quadrangles with a node twice are triangles"), told.err.npos) << told.err;
    const tool::mesh m = tool::read_mesh(tool::source::open(folder.path("out.vtu")));
    EXPECT_EQ(elements_of(m, 0), (std::vector<nodes>{{6, 2, 3}, {4, 5, 6}}));
    EXPECT_EQ(cell_values(m, "element"), (values{0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(json::parse(tessolv({"boundary", folder.path("out.vtu"), "--json"}).out)["faces"], 0);
    EXPECT_EQ(tessolv({"boundary", file(cube), "--quiet"}).err, "");
}

TEST_F(commands, BoundaryOfASurfaceIsItsOpenEdges)
{
    const auto [told, m] = run("boundary", mesh_by_hand({O, X, XY, Y}).with(zeb::EL_TRIA3, {{0, 1, 2}, {0, 2, 3}}));
    EXPECT_EQ(elements_of(m), (std::vector<nodes>{{1, 2}, {0, 1}, {2, 3}, {3, 0}}));
    EXPECT_EQ(told["faces"], 4);
}

TEST_F(commands, BoundaryGivesFacesOfThreeElementsWhenAsked)
{
    const tool::mesh book =
        mesh_by_hand({O, X, Y, Z, {0, -1, 0}}).with(zeb::EL_TRIA3, {{0, 1, 2}, {0, 1, 3}, {0, 1, 4}});
    EXPECT_EQ(elements_of(run("boundary", book, {"--nonmanifold"}).mesh), (std::vector<nodes>{{0, 1}}));
}

tool::mesh two_parts()
{
    return mesh_by_hand({O, X, Y, XY, {5, 0, 0}, {6, 0, 0}, {5, 1, 0}})
        .with(zeb::EL_EDGE2, {{4, 5}})
        .with(zeb::EL_TRIA3, {{0, 1, 2}, {4, 5, 6}, {1, 3, 2}});
}

TEST_F(commands, PartsAreNumberedAndTold)
{
    const auto [told, m] = run("parts", two_parts());
    ASSERT_EQ(told["parts"].size(), 2u);
    EXPECT_EQ(told["parts"][0]["elements"], 2);
    EXPECT_EQ(told["parts"][1]["elements"], 2);
    EXPECT_EQ(told["parts"][1]["bounding_box"]["min"], json({5.0, 0.0, 0.0}));
    EXPECT_EQ(cell_values(m, "part"), (values{2, 1, 2, 1}));
}

TEST_F(commands, PartsAreWrittenAlone)
{
    EXPECT_EQ(elements_of(run("parts", two_parts(), {"--select", "1"}).mesh),
              (std::vector<nodes>{{0, 1, 2}, {1, 3, 2}}));
    EXPECT_EQ(run("parts", two_parts(), {"--select", "2"}).mesh.pos.cols, 3u);
    EXPECT_EQ(run("parts", two_parts(), {"--select", "1,2"}).mesh.element_count(), 4u);
    EXPECT_EQ(run("parts", two_parts(), {"--largest"}).mesh.pos.cols, 4u);
    EXPECT_EQ(tessolv({"parts", file(two_parts()), "--select", "3", "--output", folder.path("o.vtu")}).status, 2);
}

TEST_F(commands, QualityCountsEachKind)
{
    const double right = 0.71743893521;  // 2 sqrt(3) / (2 + 2 sqrt(2))
    const tool::mesh m =
        mesh_by_hand({O, X, XY, Y}).with(zeb::EL_TRIA3, {{0, 1, 2}}).with(zeb::EL_QUAD4, {{0, 1, 2, 3}});
    const auto [told, written] = run("quality", m, {"--range", "0.5", "0.9", "--bins", "4"});
    EXPECT_EQ(told["kinds"][0]["kind"], "triangle");
    EXPECT_NEAR(told["kinds"][0]["min"].get<double>(), right, 1e-10);
    EXPECT_NEAR(told["kinds"][0]["quantiles"][2]["value"].get<double>(), right, 1e-10);
    EXPECT_EQ(told["kinds"][0]["histogram"], json({0, 0, 1, 0}));
    EXPECT_EQ(told["kinds"][1]["above"], 1);
    EXPECT_NEAR(cell_values(written, "quality")[0], right, 1e-10);
    EXPECT_EQ(cell_values(written, "quality")[1], 1.0);
}

TEST_F(commands, QualityShowsInvertedHexahedraAsMinusOne)
{
    const tool::mesh m = mesh_by_hand({O, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}, {0, 0, 2}, {2, 0, 2}, {2, 2, 2}, {0, 2, 2}})
                             .with(zeb::EL_HEXA8, {{4, 5, 6, 7, 0, 1, 2, 3}});
    const auto [told, written] = run("quality", m);
    EXPECT_EQ(told["kinds"][0]["inverted"], 1);
    EXPECT_EQ(told["kinds"][0]["min"], -1.0);
    EXPECT_EQ(cell_values(written, "quality"), (values{-1}));
}

TEST_F(commands, EdgesAreAMeshOfLinesWithTheirLengths)
{
    const tool::mesh m = mesh_by_hand({O, X, XY, {0, 2, 0}}).with(zeb::EL_TRIA3, {{0, 1, 2}, {0, 2, 3}});
    const auto [told, written] = run("edges", m);
    EXPECT_EQ(told["edges"], 5);
    EXPECT_EQ(told["min"], 1.0);
    EXPECT_EQ(told["max"], 2.0);
    EXPECT_EQ(elements_of(written), (std::vector<nodes>{{1, 2}, {0, 2}, {0, 1}, {2, 3}, {0, 3}}));
    EXPECT_EQ(cell_values(written, "length")[4], 2.0);
}

TEST_F(commands, NeighborsMeetWhateverTheirKinds)
{
    const auto [told, m] = run("neighbors", house());
    EXPECT_EQ(told["links"], 1);
    EXPECT_EQ(told["free_faces"], 9);
    EXPECT_EQ(cell_values(m, "neighbours"), (values{1, 1}));
    const std::string list = tessolv({"neighbors", folder.path("in.vtu"), "--quiet", "--list", "-"}).out;
    EXPECT_EQ(list, "element,neighbours across its faces\npyramid 0,hexahedron 1,,,,\nhexahedron 1,,,,,,pyramid 0\n");
}

TEST_F(commands, WriteBothOutputsOrNone)
{
    const std::string path = file(house());
    const std::string table = folder.path("table.csv");
    const std::string out = folder.path("o.vtu");
    for (const auto& [command, option] : {std::pair("neighbors", "--list"), std::pair("weld", "--map")}) {
        EXPECT_EQ(tessolv({command, path, option, table, "--output", folder.path("none/o.vtu")}).status, 4);
        EXPECT_EQ(tessolv({command, path, option, table, "--output", folder.path("o.stl")}).status, 4);
        EXPECT_FALSE(std::filesystem::exists(table)) << command;
        EXPECT_EQ(tessolv({command, path, option, folder.path("none/t.csv"), "--output", out}).status, 4);
        EXPECT_EQ(tessolv({command, path, option, "/dev/full", "--output", out}).status, 4);
        EXPECT_FALSE(std::filesystem::exists(out)) << command;
    }
}

TEST_F(commands, TransformScalesThenTurnsThenMoves)
{
    const tool::mesh m = mesh_by_hand({O, X, Y}).with(zeb::EL_TRIA3, {{0, 1, 2}});
    const tool::mesh moved =
        run("transform", m, {"--scale", "2", "--angle", "90", "--axis", "0", "0", "5", "--translate", "10", "-1", "3"})
            .mesh;
    EXPECT_NEAR(moved.pos(0, 1), 10, 1e-12);
    EXPECT_NEAR(moved.pos(1, 1), 1, 1e-12);
    EXPECT_NEAR(moved.pos(0, 2), 8, 1e-12);
    EXPECT_NEAR(moved.pos(1, 2), -1, 1e-12);
    EXPECT_EQ(moved.pos(2, 0), 3);
    const tool::mesh about = run("transform", m, {"--scale", "3", "--centre", "1", "0", "0"}).mesh;
    EXPECT_EQ(about.pos(0, 0), -2);
    EXPECT_EQ(about.pos(0, 1), 1);
}

TEST_F(commands, TransformLeavesAPlaneMeshInItsPlane)
{
    tool::write_mesh(mesh_by_hand({O, X, Y}, 2).with(zeb::EL_TRIA3, {{0, 1, 2}}), folder.path("in.mesh"));
    const auto rows = [&](const strings& more) {
        strings arguments{"transform", folder.path("in.mesh"), "--output", folder.path("out.mesh"), "--quiet"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        EXPECT_EQ(tessolv(arguments).status, 0);
        return tool::read_mesh(tool::source::open(folder.path("out.mesh"))).pos.rows;
    };
    EXPECT_EQ(rows({"--translate", "1", "0", "0"}), 2u);
    EXPECT_EQ(rows({"--translate", "1", "0", "2"}), 3u);
}

TEST_F(commands, NumbersBeyondAllUseAreWrongUsage)
{
    const std::string path = file(torn_square());
    const std::string out = folder.path("out.vtu");
    for (const strings& wrong : {strings{"transform", "--scale", "1e308", "--translate", "1e308", "0", "0"},
                                 {"transform", "--translate", "1e300", "1e300", "1e300"},
                                 {"transform", "--scale", "1e-330"},
                                 {"transform", "--scale", "1e999"},
                                 {"transform", "--angle", "inf", "--axis", "0", "0", "1"},
                                 {"transform", "--angle", "90", "--axis", "0", "nan", "1"},
                                 {"transform", "--centre", "0", "inf", "0"},
                                 {"weld", "--tolerance", "inf"},
                                 {"weld", "--tolerance", "nan"},
                                 {"weld", "--tolerance", "-1"},
                                 {"weld", "--tolerance", "1e308", "--relative", "box"},
                                 {"clip", "--point", "inf", "0", "0", "--normal", "1", "0", "0"},
                                 {"clip", "--point", "0", "0", "0", "--normal", "1", "nan", "0"},
                                 {"clip", "--point", "0", "0", "0", "--normal", "0", "0", "0"},
                                 {"quality", "--range", "0", "inf"},
                                 {"quality", "--range", "nan", "1"},
                                 {"quality", "--range", "-1e308", "1e308"},
                                 {"quality", "--bins", "0"},
                                 {"parts", "--select", "-1"}}) {
        strings arguments{wrong[0], path, "--output", out};
        arguments.insert(arguments.end(), wrong.begin() + 1, wrong.end());
        const run_result result = tessolv(arguments);
        EXPECT_EQ(result.status, 2) << testing::PrintToString(wrong) << result.err;
        EXPECT_NE(result.err, "");
        EXPECT_EQ(result.out, "") << testing::PrintToString(wrong);
        EXPECT_FALSE(std::filesystem::exists(out)) << testing::PrintToString(wrong);
    }
}

TEST_F(commands, DirectionsCountWhateverTheirLength)
{
    const tool::mesh m = mesh_by_hand({O, X, Y}).with(zeb::EL_TRIA3, {{0, 1, 2}});
    for (const std::string length : {"1e-320", "1e-15", "1e300"}) {
        const tool::mesh turned = run("transform", m, {"--angle", "450", "--axis", "0", "0", length}).mesh;
        EXPECT_NEAR(turned.pos(1, 1), 1, 1e-12) << length;
        EXPECT_NEAR(turned.pos(0, 2), -1, 1e-12) << length;
        EXPECT_EQ(run("clip", m, {"--point", "0", "0", "-1", "--normal", "0", "0", length}).told["kept"], 1) << length;
    }
}

TEST_F(commands, TransformRefusesWhatDoesNotGoTogether)
{
    const std::string path = file(torn_square());
    for (const strings& wrong : {strings{"--angle", "3"},
                                 {"--axis", "0", "0", "1"},
                                 {"--scale", "0"},
                                 {"--angle", "3", "--axis", "0", "0", "0"},
                                 {"--translate", "1", "2"},
                                 {"--scale", "nan"}}) {
        strings arguments{"transform", path};
        arguments.insert(arguments.end(), wrong.begin(), wrong.end());
        EXPECT_EQ(tessolv(arguments).status, 2) << wrong[0];
    }
}

TEST_F(commands, ClipKeepsWhatLiesOnOneSideOfAPlane)
{
    const auto [told, m] = run("clip", two_parts(), {"--point", "4.5", "0", "0", "--normal", "1", "0", "0"});
    EXPECT_EQ(told["elements"], 4);
    EXPECT_EQ(told["kept"], 2);
    EXPECT_EQ(m.pos.cols, 3u);
    EXPECT_EQ(elements_of(m, 0), (std::vector<nodes>{{0, 1}}));
    EXPECT_EQ(elements_of(m, 1), (std::vector<nodes>{{0, 1, 2}}));
    const auto other = run("clip", two_parts(), {"--point", "4.5", "0", "0", "--normal", "-1", "0", "0"});
    EXPECT_EQ(elements_of(other.mesh), (std::vector<nodes>{{0, 1, 2}, {1, 3, 2}}));
    const strings nothing{"clip", folder.path("in.vtu"), "--point", "9", "0", "0", "--normal", "1", "0", "0"};
    EXPECT_EQ(tessolv(nothing).status, 0);
    strings written = nothing;
    written.insert(written.end(), {"--output", folder.path("nothing.vtu")});
    EXPECT_EQ(tessolv(written).status, 4);
    EXPECT_EQ(tessolv({"clip", folder.path("in.vtu"), "--point", "9", "0", "0"}).status, 2);
}

class EveryCommand : public testing::TestWithParam<const char*> {};

TEST_P(EveryCommand, RefusesWhatIsNoMeshToWorkWith)
{
    const temporary_folder folder;
    const std::string command = GetParam();
    const std::string text = "MeshVersionFormatted 2\nDimension 3\nVertices\n3\n0 0 0 1\n1 0 0 1\n0 1 0 1\n";
    const std::string head = text + "Triangles\n1\n";
    for (const std::string& bytes : {text + "End\n", head + "1 2 9 1\nEnd\n", head + "1 2", std::string("none")}) {
        const run_result result = tessolv({command, folder.write("bad.mesh", bytes)});
        EXPECT_EQ(result.status, 3) << bytes << result.err;
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err, "");
        const run_result told = tessolv({command, folder.path("bad.mesh"), "--json"});
        EXPECT_EQ(told.err, result.err);
        const json line = json::parse(told.out);
        EXPECT_EQ(line["file"], folder.path("bad.mesh"));
        EXPECT_EQ("tessolv: " + folder.path("bad.mesh") + ": " + line["error"].get<std::string>() + '\n', result.err);
        EXPECT_EQ(line["status"], 3);
    }
    EXPECT_EQ(tessolv({command, folder.path("none.mesh")}).status, 3);
    EXPECT_EQ(tessolv({command}).status, 2);
}

TEST_P(EveryCommand, OverwritesNoInputWithoutForce)
{
    const temporary_folder folder;
    const std::string path = folder.path("in.vtu");
    write_mesh(two_parts(), path);
    const std::string bytes = test::read_file(path);
    EXPECT_EQ(tessolv({GetParam(), path, "--output", path}).status, 2);
    EXPECT_EQ(test::read_file(path), bytes);
    const std::string nowhere = folder.path("none/out.vtu");
    EXPECT_EQ(tessolv({GetParam(), path, "--output", nowhere}).status, 4);
    const json line = json::parse(tessolv({GetParam(), path, "--output", nowhere, "--json"}).out);
    EXPECT_EQ(line["file"], path);
    EXPECT_EQ(line["status"], 4);
    EXPECT_NE(line["error"].get<std::string>().find(nowhere), std::string::npos);
    EXPECT_EQ(tessolv({GetParam(), path, "--output", path, "--force"}).status, 0);
}

TEST_P(EveryCommand, SpeaksOnStandardOutputUnlessQuiet)
{
    const temporary_folder folder;
    const std::string path = folder.path("in.vtu");
    write_mesh(two_parts(), path);
    const run_result result = tessolv({GetParam(), path});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_NE(result.out.find(path), std::string::npos);
    EXPECT_EQ(tessolv({GetParam(), path, "--quiet"}).out, "");
    EXPECT_EQ(tessolv({GetParam(), path, "--output", "-", "--format", "vtu", "--quiet"}).out.substr(0, 5), "<?xml");
    const std::string help = tessolv({GetParam(), "--help"}).out;
    for (const std::string word : {"--output", "--json", "--quiet", "--force", "Exit status:"})
        EXPECT_NE(help.find(word), std::string::npos) << word;
}

INSTANTIATE_TEST_SUITE_P(Mesh, EveryCommand,
                         testing::Values("boundary", "clean", "edges", "neighbors", "parts", "quality", "transform",
                                         "weld"),
                         [](const auto& row) { return std::string(row.param); });

}  // namespace
