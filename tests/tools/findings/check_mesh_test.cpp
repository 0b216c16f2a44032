#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "findings/rules.h"
#include "formats/format.h"
#include "tools/findings/mesh_by_hand.h"
#include "tools/program.h"
#include "tools/stl_files.h"

// Black-box tests of `tessolv check` on meshes that are no STL files.
namespace {

using nlohmann::json;
using test::mesh_by_hand;
using test::run_result;
using test::temporary_folder;
using test::tessolv;

const std::vector<test::place> corner{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {5, 5, 5}};

// A good and an inverted tetrahedron, of groups 7 and 8, and a node that nobody uses.
tool::mesh faulty()
{
    tool::mesh m = mesh_by_hand(corner).with(zeb::EL_TETRA4, {{0, 2, 1, 3}, {0, 1, 2, 3}});
    m.blocks[0].groups = {7, 8};
    m.blocks[0].numbers = tool::numbering(11, 2);
    return m;
}

const char* const sound_medit =
    "MeshVersionFormatted 2\nDimension 3\nVertices\n4\n0 0 0 1\n1 0 0 1\n0 1 0 1\n0 0 1 1\n"
    "Tetrahedra\n1\n1 2 3 4 1\nEnd\n";

struct check_mesh : testing::Test {
    temporary_folder folder;

    std::string file(const tool::mesh& m, const std::string& name) const
    {
        write_mesh(m, folder.path(name));
        return folder.path(name);
    }
};

TEST_F(check_mesh, TakesCoordinatesWhoseDistanceIsNoNumber)
{
    const tool::mesh m =
        mesh_by_hand({{1e308, 0, 0}, {-1e308, 0, 0}, {-1e308, 1e308, 0}}).with(zeb::EL_TRIA3, {{0, 1, 2}});
    write_mesh(m, folder.path("in.vtu"));
    const run_result result = tessolv({"check", "--quiet", folder.path("in.vtu")});
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out.find("coincident"), std::string::npos) << result.out;
}

TEST_F(check_mesh, GivesTheStatusOfTheVerdict)
{
    const std::string sound = folder.write("sound.mesh", sound_medit);
    EXPECT_EQ(tessolv({"check", "--quiet", sound}).out, sound + ": CLEAN: 1 tetrahedron\n");
    EXPECT_EQ(tessolv({"check", sound}).status, 0);
    const std::string bad = file(faulty(), "bad.msh");
    EXPECT_EQ(tessolv({"check", "--quiet", bad}).out,
              bad + ": NOT CLEAN: 1 duplicate element, 1 inverted element, 1 unused node\n");
    EXPECT_EQ(tessolv({"check", sound, bad}).status, 1);
    EXPECT_EQ(tessolv({"check", folder.write("cut.mesh", std::string(sound_medit).substr(0, 60))}).status, 3);
    EXPECT_EQ(tessolv({"check", sound, folder.path("none.mesh"), "--skip-unreadable"}).status, 0);
    EXPECT_EQ(tessolv({"check", sound, "--output", folder.path("out.vtk")}).status, 2);
    EXPECT_EQ(tessolv({"check", sound, "--profile", "none"}).status, 2);
    EXPECT_EQ(tessolv({"check", bad, "--extract", folder.path("none/bad.vtu")}).status, 4);
    EXPECT_EQ(tessolv({"check", bad, bad, "--extract", folder.path("bad.vtu")}).status, 2);
}

TEST_F(check_mesh, TellsFaultsAndRulesForPeople)
{
    const std::string out = tessolv({"check", file(faulty(), "bad.msh")}).out;
    for (const std::string line :
         {"  nodes                                      5\n", "  tetrahedra                                 2\n",
          "\n! 1 inverted element, 50 %: tetra 12; first at (0.25, 0.25, 0.25)\n",
          "\n! 1 unused node, 20 %: node 5; first at (5, 5, 5)\n",
          "\n  rules 'default': ", "\n    tetrahedra: bad below 0.02, poor below 0.1, good from 0.4 on\n"})
        EXPECT_NE(out.find(line), std::string::npos) << line << " is not in\n" << out;
}

TEST_F(check_mesh, CallsAllOfThemAHundredPercent)
{
    const std::string all = file(mesh_by_hand(corner).with(zeb::EL_TETRA4, {{0, 1, 2, 3}}), "all.msh");
    EXPECT_NE(tessolv({"check", all}).out.find("\n! 1 inverted element, 100 %: tetra 1; "), std::string::npos);
}

TEST_F(check_mesh, TellsTheSameAsData)
{
    const json object = json::parse(tessolv({"check", "--json", file(faulty(), "bad.msh")}).out);
    EXPECT_EQ(object["format"], "gmsh");
    EXPECT_EQ(object["elements"], 2);
    EXPECT_EQ(object["verdict"], "not clean");
    EXPECT_EQ(object["problems"], json({"1 duplicate element", "1 inverted element", "1 unused node"}));
    EXPECT_EQ(object["kinds"]["tetra"]["quality"]["inverted"], 1);
    EXPECT_EQ(object["faults"][1]["code"], "inverted");
    EXPECT_EQ(object["faults"][1]["ids"], json::parse(R"({"tetra": [12]})"));
    EXPECT_EQ(object["faults"][1]["first_at"], json({0.25, 0.25, 0.25}));
    EXPECT_EQ(object["rules"]["faults"]["parts"], "note");
}

TEST_F(check_mesh, NamesTenItemsOrAll)
{
    std::vector<test::place> places{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (int i = 0; i < 12; ++i) places.push_back({0, 0, 2.0 + i});
    const std::string path = file(mesh_by_hand(places).with(zeb::EL_TETRA4, {{0, 2, 1, 3}}), "unused.msh");
    EXPECT_NE(tessolv({"check", path}).out.find(": node 5 6 7 8 9 10 11 12 13 14 ...; first at (0, 0, 2)\n"),
              std::string::npos);
    EXPECT_NE(tessolv({"check", "--ids", path}).out.find(": node 5 6 7 8 9 10 11 12 13 14 15 16; first"),
              std::string::npos);
    EXPECT_EQ(json::parse(tessolv({"check", "--json", path}).out)["faults"][0]["ids"]["node"].size(), 10u);
    EXPECT_EQ(json::parse(tessolv({"check", "--json", "--ids", path}).out)["faults"][0]["ids"]["node"].size(), 12u);
}

TEST_F(check_mesh, ExtractsWhatIsAtFault)
{
    const std::string bad = folder.path("bad.vtu");
    EXPECT_EQ(tessolv({"check", "--quiet", file(faulty(), "faulty.msh"), "--extract", bad}).status, 1);
    const tool::mesh m = tool::read_mesh(tool::source::open(bad));
    ASSERT_EQ(m.blocks.size(), 2u);
    EXPECT_EQ(m.blocks[0].type, zeb::EL_NODE);
    EXPECT_EQ(m.blocks[1].type, zeb::EL_TETRA4);
    EXPECT_EQ(m.pos.cols, 5u);
    EXPECT_EQ(m.blocks[1].group(0), 8);
    ASSERT_EQ(m.cell_fields.size(), 3u);
    EXPECT_EQ(m.cell_fields[0].name, "fault");
    EXPECT_EQ(m.cell_fields[0].values,
              (std::vector<double>{double(tool::fault::unused_node), double(tool::fault::duplicate)}));
    EXPECT_EQ(m.cell_fields[1].name, "quality");
    EXPECT_LT(m.cell_fields[1].values[1], 0);
    EXPECT_EQ(m.cell_fields[2].name, "number");
    EXPECT_EQ(m.cell_fields[2].values, (std::vector<double>{5, 12}));
}

TEST_F(check_mesh, TakesTheRulesOfAFile)
{
    const std::string bad = file(faulty(), "bad.msh");
    const std::string lenient =
        folder.write("rules.json", R"({"faults": {"duplicate": "off", "inverted": "note", "unused_node": "off"}})");
    EXPECT_EQ(tessolv({"check", bad, "--rules", lenient}).status, 0);
    EXPECT_EQ(tessolv({"check", bad, "--rules", folder.write("wrong.json", "{")}).status, 2);
    EXPECT_EQ(tessolv({"check", bad, "--rules", folder.path("none.json")}).status, 3);
}

TEST_F(check_mesh, TakesTheDistanceOfCoincidentNodesInTheUnitOfTheMesh)
{
    const std::vector<test::place> torn{{0, 0, 0}, {4, 0, 0}, {0, 3, 0}, {4, 0.01, 0}, {0, 3.01, 0}, {4, 3, 0}};
    const std::string path = file(mesh_by_hand(torn).with(zeb::EL_TRIA3, {{0, 1, 2}, {3, 5, 4}}), "torn.vtu");
    EXPECT_EQ(tessolv({"check", "--quiet", path}).status, 0);
    EXPECT_EQ(tessolv({"check", "--quiet", "--tolerance", "0.009", path}).status, 0);
    const run_result wide = tessolv({"check", "--quiet", "--tolerance", "0.011", path});
    EXPECT_EQ(wide.out, path + ": NOT CLEAN: 2 coincident nodes\n");
    const json rules = json::parse(tessolv({"check", "--json", "--tolerance", "0.01", path}).out)["rules"];
    EXPECT_NEAR(rules["coincident"].get<double>(), 0.01 / std::hypot(4, 3.01), 1e-15);
    for (const std::string wrong : {"-1", "nan"})
        EXPECT_EQ(tessolv({"check", path, "--tolerance", wrong}).status, 2) << wrong;
}

TEST_F(check_mesh, JudgesAnStlFileLikeAnyOther)
{
    const std::string open = folder.write("open.stl", test::binary_stl({test::tetrahedron[0]}));
    const std::string verdict = open + ": NOT CLEAN: 3 free edges\n";
    EXPECT_EQ(tessolv({"check", "--quiet", open}).out, verdict);
    EXPECT_EQ(tessolv({"check", "--quiet", "--profile", "default", open}).out, verdict);
    const std::string lenient = folder.write("rules.json", R"({"faults": {"open_edge_of_stl": "note"}})");
    EXPECT_EQ(tessolv({"check", "--quiet", "--rules", lenient, open}).out, open + ": CLEAN: 1 triangle, 1 part\n");
    EXPECT_EQ(tessolv({"check", "--quiet", "--tolerance", "1.1", open}).out,
              open + ": NOT CLEAN: 2 coincident nodes, 3 free edges\n");
}

TEST_F(check_mesh, FindsSliversInAnStlFileToo)
{
    const test::corner low{0.5f, -0.001f, 0};
    const std::string path = folder.write("sliver.stl", test::binary_stl({{test::O, low, test::X}}));
    const run_result result = tessolv({"check", "--quiet", path});
    EXPECT_EQ(result.out, path + ": NOT CLEAN: 1 triangle of bad quality, 3 free edges\n");
}

TEST_F(check_mesh, ExtractsCollapsedFacetsWithTheirNumbers)
{
    std::vector<test::facet> all = test::tetrahedron;
    all.insert(all.begin() + 1, test::facet{test::X, test::X, test::Y});
    const std::string path = folder.write("part.stl", test::binary_stl(all));
    EXPECT_EQ(tessolv({"check", "--quiet", path, "--extract", folder.path("bad.vtu")}).status, 1);
    const tool::mesh m = tool::read_mesh(tool::source::open(folder.path("bad.vtu")));
    ASSERT_EQ(m.element_count(), 1u);
    EXPECT_EQ(m.cell_fields[0].values, std::vector<double>{double(tool::fault::repeated_node)});
    EXPECT_EQ(m.cell_fields[2].values, std::vector<double>{2});
}

TEST_F(check_mesh, ExtractsNothingFromACleanMesh)
{
    const std::string sound = folder.write("sound.mesh", sound_medit);
    const std::string bad = folder.path("bad.vtu");
    const run_result result = tessolv({"check", sound, "--extract", bad});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "tessolv: " + bad + ": note: not written: no element and no node is at fault\n");
    EXPECT_EQ(tessolv({"check", "--quiet", sound, "--extract", bad}).err, "");
    EXPECT_FALSE(std::filesystem::exists(bad));
}

TEST_F(check_mesh, RefusesANameThatTellsNoFormatWhateverTheVerdict)
{
    const std::string sound = folder.write("sound.mesh", sound_medit);
    for (const std::string& mesh : {sound, file(faulty(), "bad.msh"), folder.path("none.mesh")}) {
        for (const std::string& output : {folder.path("bad.foo"), std::string("-")}) {
            const run_result result = tessolv({"check", mesh, "--extract", output});
            EXPECT_EQ(result.status, 2) << mesh;
            EXPECT_EQ(result.out, "");
            EXPECT_EQ(result.err.find("tessolv: " + output + ": "), 0U) << result.err;
        }
    }
}

TEST_F(check_mesh, TellsTheVerdictAlsoWhereItsOutputCannotBeWritten)
{
    const std::string bad = file(faulty(), "bad.msh");
    const run_result result = tessolv({"check", "--json", bad, "--extract", folder.path("none/bad.vtu")});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(json::parse(result.out)["verdict"], "not clean");
}

TEST_F(check_mesh, HasALineOfJsonForEveryInput)
{
    const std::string sound = folder.write("sound.mesh", sound_medit);
    const std::string cut = folder.write("cut.mesh", std::string(sound_medit).substr(0, 60));
    const auto verdict = [&](std::vector<std::string> arguments, int status) {
        arguments.insert(arguments.begin(), {"check", "--json"});
        const run_result result = tessolv(arguments);
        EXPECT_EQ(result.status, status) << result.err;
        return json::parse(result.out)["verdict"];
    };
    EXPECT_EQ(verdict({cut}, 3), "unreadable");
    EXPECT_EQ(verdict({cut, "--skip-unreadable"}, 0), "unreadable");
    EXPECT_EQ(verdict({folder.path("none.mesh")}, 3), "unreadable");
    EXPECT_EQ(verdict({sound, "--ascii"}, 3), "unreadable");
    EXPECT_EQ(verdict({sound, "--output", folder.path("out.vtk")}, 2), "failed");
    EXPECT_EQ(verdict({sound, "--extract", sound}, 0), "clean");
}

TEST_F(check_mesh, TakesTheProfileOfTheCommandLineBeforeThatOfTheRules)
{
    const std::string path = folder.write("open.stl", test::binary_stl({test::tetrahedron[0]}));
    const std::string rules = folder.write("rules.json", R"({"profile": "solver", "faults": {"parts": "off"}})");
    const auto in_force = [&](std::vector<std::string> more) {
        more.insert(more.begin(), {"check", "--json", path, "--rules", rules});
        return json::parse(tessolv(more).out)["rules"];
    };
    EXPECT_EQ(in_force({})["profile"], "solver");
    const json chosen = in_force({"--profile", "closed"});
    EXPECT_EQ(chosen["profile"], "closed");
    EXPECT_EQ(chosen["faults"]["inside_out"], "finding");
    EXPECT_EQ(chosen["faults"]["parts"], "off");
}

// The two commands measure the same edges.
TEST_F(check_mesh, AgreesWithEdgesOnTheShortestOne)
{
    const std::vector<test::place> places{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 1, 0}};
    const std::string path = file(mesh_by_hand(places).with(zeb::EL_TRIA3, {{0, 1, 2}, {1, 3, 2}, {0, 0, 1}}), "m.vtu");
    const json edges = json::parse(tessolv({"edges", "--json", path}).out);
    EXPECT_EQ(edges["min"], 0);
    EXPECT_EQ(edges["edges"], 5);
    EXPECT_EQ(json::parse(tessolv({"check", "--json", path}).out)["shortest_edge"], edges["min"]);
    EXPECT_NE(tessolv({"check", path}).out.find("\n  shortest edge 0: 1 edge without length\n"), std::string::npos);
}

}  // namespace
