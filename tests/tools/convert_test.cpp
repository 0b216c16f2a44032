#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tools/program.h"
#include "tools/stl_files.h"

// The commands info and convert, as a user runs them.

namespace {

using nlohmann::ordered_json;
using test::run_result;
using test::temporary_folder;
using test::tessolv;

const std::string one_tetrahedron =
    "MeshVersionFormatted 2\nDimension 3\nVertices\n4\n0 0 0 0\n1 0 0 0\n0 1 0 0\n0 0 1 0\nTetrahedra\n1\n1 2 3 4 "
    "6\nEnd\n";
const std::string solution = "MeshVersionFormatted 2\nDimension 3\nSolAtVertices\n4\n1 1\n0.5\n1\n1.5\n2\nEnd\n";

std::size_t files_in(const temporary_folder& folder)
{
    const std::filesystem::directory_iterator all(folder.path(""));
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

TEST(Info, TellsWhatAFileHolds)
{
    const temporary_folder folder;
    const std::string part = folder.write("part.mesh", one_tetrahedron);
    const run_result plain = tessolv({"info", part});
    EXPECT_EQ(plain.status, 0);
    EXPECT_EQ(plain.out, part +
                             ": MEDIT, 4 nodes, 1 element\n  1 tetrahedron\n  x from 0 to 1\n  y from 0 to 1\n"
                             "  z from 0 to 1\n  group 6, dimension 3, 1 element\n");
    const ordered_json object = ordered_json::parse(tessolv({"info", "--json", part}).out);
    EXPECT_EQ(object["format"], "medit");
    EXPECT_EQ(object["nodes"], 4);
    EXPECT_EQ(object["kinds"]["tetra"], 1);
    EXPECT_EQ(object["groups"][0]["number"], 6);
    EXPECT_EQ(object["bounding_box"]["max"], ordered_json({1, 1, 1}));
}

TEST(Info, NamesNoRangeOfAFieldWithoutAFiniteValue)
{
    const temporary_folder folder;
    const std::string part = folder.write("part.vtk",
                                          "# vtk DataFile Version 3.0\nx\nASCII\nDATASET UNSTRUCTURED_GRID\nPOINTS 1 "
                                          "double\n0 0 0\nCELLS 1 2\n1 0\nCELL_TYPES 1\n1\nCELL_DATA 1\nSCALARS "
                                          "heat double\nLOOKUP_TABLE default\nnan\n");
    const run_result plain = tessolv({"info", part});
    EXPECT_NE(plain.out.find("  cell field 'heat', 1 component, no finite value\n"), std::string::npos) << plain.out;
    EXPECT_EQ(ordered_json::parse(tessolv({"info", part, "--json"}).out)["cell_fields"][0]["min"], nullptr);
}

TEST(Info, GoesOnAfterAFileThatCannotBeRead)
{
    const temporary_folder folder;
    const std::string part = folder.write("part.mesh", one_tetrahedron);
    const std::string bad = folder.write("bad.mesh", one_tetrahedron.substr(0, 60));
    const run_result result = tessolv({"info", bad, part});
    EXPECT_EQ(result.status, 3);
    EXPECT_NE(result.err.find("bad.mesh: line "), std::string::npos) << result.err;
    EXPECT_NE(result.out.find("1 tetrahedron"), std::string::npos);
    EXPECT_EQ(tessolv({"info", "--skip-unreadable", bad, part}).status, 0);
}

TEST(Info, RefusesWhatIsNoMeshToWorkWith)
{
    const temporary_folder folder;
    const run_result result = tessolv({"info", folder.write("a.obj", "v 0 0 0\nv 1 0 0\nf 1 2 3\n")});
    EXPECT_EQ(result.status, 3);
    EXPECT_NE(result.err.find("triangle 1 names a node that is not there"), std::string::npos) << result.err;
}

TEST(Convert, WritesEveryFormatAndReadsItAgain)
{
    const temporary_folder folder;
    const std::string part = folder.write("part.mesh", one_tetrahedron);
    for (const std::string name : {"a.vtk", "a.vtu", "a.msh", "a.msh2", "a.mesh"}) {
        ASSERT_EQ(tessolv({"convert", part, "--output", folder.path(name)}).status, 0) << name;
        ASSERT_EQ(tessolv({"convert", folder.path(name), "--output", folder.path("back.mesh")}).status, 0) << name;
        const std::string back = test::read_file(folder.path("back.mesh"));
        EXPECT_NE(back.find("Tetrahedra\n1\n1 2 3 4 6\n"), std::string::npos) << name << '\n' << back;
    }
    EXPECT_EQ(files_in(folder), 7u) << "files were left beside the outputs";
}

TEST(Convert, GoesThroughStandardInputAndOutput)
{
    const temporary_folder folder;
    const std::string part = folder.write("part.mesh", one_tetrahedron);
    const run_result text = tessolv({"convert", part, "--output", "-", "--format", "vtk", "--ascii"});
    EXPECT_EQ(text.status, 0);
    EXPECT_TRUE(text.out.starts_with("# vtk DataFile Version 3.0\n"));
    const std::string pipe = std::string(TESSOLV_PROGRAM) + " convert - --output - --format gmsh <" + part + " | " +
                             TESSOLV_PROGRAM + " info - >" + folder.path("told");
    EXPECT_EQ(std::system(pipe.c_str()), 0);
    EXPECT_NE(test::read_file(folder.path("told")).find("-: Gmsh, 4 nodes, 1 element\n"), std::string::npos);
    EXPECT_EQ(tessolv({"convert", part, "--output", "-"}).status, 2);
}

TEST(Convert, OverwritesAnInputOnlyWhenForced)
{
    const temporary_folder folder;
    const std::string part = folder.write("part.mesh", one_tetrahedron);
    std::filesystem::create_hard_link(part, folder.path("other.mesh"));
    const run_result refused = tessolv({"convert", part, "--output", folder.path("other.mesh")});
    EXPECT_EQ(refused.status, 2);
    EXPECT_NE(refused.err.find("--force"), std::string::npos);
    EXPECT_EQ(test::read_file(part), one_tetrahedron);
    EXPECT_EQ(tessolv({"convert", part, "--output", part, "--format", "vtu", "--force"}).status, 0);
    EXPECT_TRUE(test::read_file(part).starts_with("<?xml"));
}

TEST(Convert, TellsWhatIsLostOnStandardErrorOnly)
{
    const temporary_folder folder;
    const std::string part = folder.write("part.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv -1 0.5 0\nf 1 2 3 4 5\n");
    const run_result told = tessolv({"convert", part, "--output", folder.path("a.stl")});
    EXPECT_EQ(told.status, 0);
    EXPECT_EQ(told.out, "");
    EXPECT_EQ(told.err, "tessolv: " + part + ": note: 1 polygon of five and more corners cut into triangles\n");
    EXPECT_EQ(tessolv({"convert", part, "--output", folder.path("a.stl"), "--quiet"}).err, "");
}

TEST(Convert, TellsOnceWhatItLeavesOutOfAnObj)
{
    const temporary_folder folder;
    const std::string part =
        folder.write("part.obj",
                     "mtllib a.mtl\nv 0 0 0 1 0 0\nv 1 0 0 1 0 0\nv 1 1 0 1 0 0.5\nv 0 1 0 1.0\nusemtl "
                     "red\nf 1 2 3\nusemtl blue\nf 1 3 4\n");
    EXPECT_EQ(
        tessolv({"convert", part, "--output", folder.path("a.stl")}).err,
        "tessolv: " + part + ": note: colours of nodes left out\ntessolv: " + part + ": note: materials left out\n");
    const std::string plain = folder.write("plain.obj", "v 0 0 0\nv 1 0 0 1 # weight\nv 1 1 0 # 1 2 3 4\nf 1 2 3\n");
    EXPECT_EQ(tessolv({"convert", plain, "--output", folder.path("a.stl")}).err, "");
}

TEST(Convert, TakesASecondFileForTheOutputThatIsMeant)
{
    const temporary_folder folder;
    const std::string part = folder.write("part.mesh", one_tetrahedron);
    const std::string hint = "tessolv: convert takes one FILE, not 2; to write b.vtu: --output b.vtu\n";
    EXPECT_EQ(tessolv({"convert", part, "b.vtu"}).err.find(hint), 0u);
    EXPECT_EQ(tessolv({"convert", part, "b.vtu"}).status, 2);
    EXPECT_NE(
        tessolv({"boundary", part, "b.vtu"}).err.find("boundary takes one FILE, not 2; to write b.vtu: --output b.vtu"),
        std::string::npos);
    for (const std::vector<std::string>& other :
         {std::vector<std::string>{"convert", part, "b.vtu", "--output", "c.vtu"},
          {"convert", part, "--bogus"},
          {"convert", part, "b.vtu", "c.vtu"}}) {
        const run_result result = tessolv(other);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err.find("to write"), std::string::npos) << result.err;
    }
}

TEST(Convert, TellsWhatBecomesOfTheNamesOfGroups)
{
    const temporary_folder folder;
    const std::string part = folder.write("part.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\ng plate\nf 1 2 3\n");
    EXPECT_EQ(
        tessolv({"convert", part, "--output", folder.path("a.vtk")}).err,
        "tessolv: " + folder.path("a.vtk") + ": note: VTK holds no names of groups: only their numbers are written\n");
    EXPECT_NE(tessolv({"info", folder.path("a.vtk")}).out.find("group 1, dimension 2, 1 element"), std::string::npos);
    EXPECT_EQ(tessolv({"convert", part, "--output", folder.path("a.vtu")}).err, "");
    EXPECT_NE(tessolv({"info", folder.path("a.vtu")}).out.find("group 1 'plate', dimension 2"), std::string::npos);
}

TEST(Convert, RefusesWhatTheFormatCannotHold)
{
    const temporary_folder folder;
    const std::string part = folder.write("part.mesh", one_tetrahedron);
    const run_result result = tessolv({"convert", part, "--output", folder.path("a.stl")});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.err,
              "tessolv: " + folder.path("a.stl") + ": STL cannot hold 1 tetrahedron; 'boundary' makes the surface\n");
    EXPECT_FALSE(std::filesystem::exists(folder.path("a.stl")));
    EXPECT_EQ(tessolv({"convert", part, "--output", "/dev/full", "--format", "vtk"}).status, 4);
    EXPECT_EQ(tessolv({"convert", part, "--output", folder.path("no/folder.vtk")}).status, 4);
    const run_result unknown = tessolv({"convert", part, "--output", folder.path("a.dxf")});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err.find("tessolv: " + folder.path("a.dxf") + ": no format has this suffix; --format takes one"),
              0u);
    EXPECT_EQ(tessolv({"convert", part}).status, 2);
}

TEST(Convert, BringsASolutionAlong)
{
    const temporary_folder folder;
    const std::string part = folder.write("part.mesh", one_tetrahedron);
    const std::string values = folder.write("part.sol", solution);
    ASSERT_EQ(tessolv({"convert", part, "--sol", values, "--output", folder.path("a.vtu")}).status, 0);
    const ordered_json object = ordered_json::parse(tessolv({"info", "--json", folder.path("a.vtu")}).out);
    EXPECT_EQ(object["point_fields"][0]["max"], 2.0);
    ASSERT_EQ(tessolv({"convert", folder.path("a.vtu"), "--output", folder.path("back.sol")}).status, 0);
    EXPECT_NE(test::read_file(folder.path("back.sol")).find("SolAtVertices\n4\n1 1\n0.5\n1\n1.5\n2\n"),
              std::string::npos);
    EXPECT_EQ(tessolv({"convert", part, "--sol", part, "--output", folder.path("b.vtu")}).status, 0);
    EXPECT_EQ(tessolv({"convert", part, "--sol", folder.path("none"), "--output", folder.path("b.vtu")}).status, 3);
}

TEST(Convert, RunsTheLibrarysOwnWriters)
{
    const temporary_folder folder;
    const std::string part = folder.write("part.mesh", one_tetrahedron);
    ASSERT_EQ(tessolv({"convert", part, "--writer", "library", "--output", folder.path("a.case")}).status, 0);
    EXPECT_TRUE(std::filesystem::exists(folder.path("a.geo")));
    ASSERT_EQ(tessolv({"convert", part, "--writer", "library", "--output", folder.path("a.vtk")}).status, 0);
    EXPECT_NE(test::read_file(folder.path("a.vtk")).find("Generated by ZEB"), std::string::npos);
    EXPECT_EQ(tessolv({"convert", part, "--writer", "library", "--output", folder.path("a.vtu")}).status, 2);
    EXPECT_EQ(tessolv({"convert", part, "--writer", "mine", "--output", folder.path("a.vtu")}).status, 2);
}

TEST(Help, OfEveryCommandHasTheTableOfStatuses)
{
    for (const std::string command : {"info", "convert", "check"}) {
        const run_result result = tessolv({command, "--help"});
        EXPECT_EQ(result.status, 0);
        EXPECT_NE(result.out.find("Exit status:"), std::string::npos) << command;
        EXPECT_NE(tessolv({"--help"}).out.find("  " + command), std::string::npos);
    }
}

}  // namespace
