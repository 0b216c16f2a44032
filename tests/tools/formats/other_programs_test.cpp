#include <cstdio>
#include <cstdlib>
#include <fstream>

#include <gtest/gtest.h>

#include "tools/formats/every_kind.h"
#include "tools/stl_files.h"

// What gmsh, meshio and VTK write is read, and what is written is read by them. Each part is skipped, and says so,
// where its program is not there.

namespace {

using namespace tool;
using namespace zeb;

const std::string scripts = TESTS_SCRIPTS;

bool runs(const std::string& command)
{
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

// The Python of the system, which sees its packages.
const std::string python = "/usr/bin/python3";

bool has_module(const char* module)
{
    return runs(python + " -c 'import " + module + "'");
}

bool has_gmsh()
{
    return runs("gmsh --version");
}

const char* block_with_everything = R"(
Point(1)={0,0,0,0.5}; Point(2)={1,0,0,0.5}; Point(3)={1,1,0,0.5}; Point(4)={0,1,0,0.5}; Point(5)={2,0,0,0.5}; Point(6)={2,1,0,0.5};
Line(1)={1,2}; Line(2)={2,3}; Line(3)={3,4}; Line(4)={4,1}; Line(5)={2,5}; Line(6)={5,6}; Line(7)={6,3};
Curve Loop(1)={1,2,3,4}; Plane Surface(1)={1}; Curve Loop(2)={5,6,7,-2}; Plane Surface(2)={2};
Transfinite Surface{1}; Recombine Surface{1};
Extrude {0,0,1} {Surface{1}; Layers{2}; Recombine;}
Extrude {0,0,1} {Surface{2}; Layers{2}; Recombine;}
Point(207)={3,0,0,0.5}; Point(208)={4,0,0,0.5}; Point(209)={3,1,0,0.5}; Point(210)={3,0,1,0.5};
Line(300)={207,208}; Line(301)={208,209}; Line(302)={209,207}; Line(303)={207,210}; Line(304)={208,210}; Line(305)={209,210};
Curve Loop(100)={300,301,302}; Plane Surface(100)={100}; Curve Loop(101)={300,304,-303}; Plane Surface(101)={101};
Curve Loop(102)={301,305,-304}; Plane Surface(102)={102}; Curve Loop(103)={302,303,-305}; Plane Surface(103)={103};
Surface Loop(100)={100,101,102,103}; Volume(100)={100};
)";
const char* groups_of_tip = "Physical Volume(\"tip\", 6) = {100}; Physical Surface(\"base\", 8) = {100};\n";
const char* group_of_blocks = "Physical Volume(\"blocks\", 5) = {1, 2};\n";

// The elements of a mesh by kind.
std::vector<std::pair<int, std::uint64_t>> counts(const mesh& m)
{
    std::vector<std::pair<int, std::uint64_t>> result;
    for (const element_block& block : m.blocks) result.emplace_back(block.type, block.size());
    return result;
}

class GmshFiles : public testing::Test {
protected:
    void SetUp() override
    {
        if (!has_gmsh()) GTEST_SKIP() << "there is no gmsh";
        folder.write("block.geo", std::string(block_with_everything) + groups_of_tip + group_of_blocks);
    }

    mesh made(const std::string& options, const std::string& name) const
    {
        EXPECT_TRUE(runs("cd " + folder.path("") + " && gmsh -3 block.geo " + options + " -o " + name)) << options;
        return read_mesh(source::open(folder.path(name)));
    }

    test::temporary_folder folder;
};

TEST_F(GmshFiles, AreReadInEveryVersionAndOrder)
{
    for (const std::string order : {"-order 1", "-order 2"}) {
        const mesh first = made(order + " -format msh22", "a.msh");
        ASSERT_GE(first.blocks.size(), 3u);
        EXPECT_TRUE(test::is_well_ordered(first)) << order;
        EXPECT_EQ(find_group_name(first, 3, 6)->name, "tip");
        for (const std::string options : {" -format msh22 -bin", " -format msh41", " -format msh41 -bin"}) {
            const mesh m = made(order + options, "b.msh");
            EXPECT_EQ(counts(m), counts(first)) << options;
            EXPECT_EQ(m.pos.cols, first.pos.cols) << options;
            EXPECT_TRUE(test::is_well_ordered(m)) << order << options;
            for (std::size_t b = 0; b < m.blocks.size(); ++b)
                EXPECT_EQ(m.blocks[b].groups, first.blocks[b].groups) << options;
        }
    }
}

TEST_F(GmshFiles, OfOtherFormatsAreReadWithTheSameOrientation)
{
    for (const std::string order : {"-order 1", "-order 2"}) {
        const mesh first = made(order + " -format msh41", "a.msh");
        for (const std::string options : {" -format vtk", " -format vtk -bin"}) {
            const mesh m = made(order + options, "a.vtk");
            EXPECT_EQ(counts(m), counts(first)) << order << options;
            EXPECT_TRUE(test::is_well_ordered(m)) << order << options;
        }
    }
    // Without wedges and second-order hexahedra, which gmsh leaves out of a MEDIT file or writes in a form of its own.
    folder.write("block.geo", std::string(block_with_everything) + groups_of_tip);
    for (const std::string order : {"-order 1", "-order 2"})
        EXPECT_TRUE(test::is_well_ordered(made(order + " -format mesh", "a.mesh"))) << order;
}

TEST_F(GmshFiles, AreReadByGmshAsTheyWere)
{
    for (const std::string order : {"-order 1", "-order 2"}) {
        const mesh was = made(order + " -format msh41", "a.msh");
        for (const char* format : {"gmsh", "gmsh22"}) {
            for (const bool ascii : {false, true}) {
                write_options options;
                options.ascii = ascii;
                write_mesh(was, folder.path("ours.msh"), format, options);
                ASSERT_TRUE(runs("cd " + folder.path("") + " && gmsh ours.msh -0 -format msh41 -o theirs.msh"))
                    << format;
                const mesh is = read_mesh(source::open(folder.path("theirs.msh")));
                EXPECT_EQ(counts(is), counts(was)) << format << order;
                EXPECT_EQ(is.pos.cols, was.pos.cols) << format << order;
                EXPECT_TRUE(test::is_well_ordered(is)) << format << order;
            }
        }
    }
}

// A script of the folder reads ours and writes it again; what comes back is compared.
void expect_same_after(const std::string& script, const std::string& module, const std::vector<std::string>& ours,
                       const std::vector<std::string>& theirs, const std::vector<element_type>& kinds)
{
    if (!has_module(module.c_str())) GTEST_SKIP() << "there is no " << module << " for " << python;
    const test::temporary_folder folder;
    for (const std::string& from : ours) {
        for (const std::string& to : theirs) {
            for (const bool ascii : {false, true}) {
                mesh was = test::mesh_of(kinds);
                was.point_fields[0].name = "speed";  // meshio writes no blanks
                write_options options;
                options.ascii = ascii;
                write_mesh(was, folder.path("ours." + from), {}, options);
                ASSERT_TRUE(runs(python + ' ' + scripts + '/' + script + ' ' + folder.path("ours." + from) + ' ' +
                                 folder.path("theirs." + to)))
                    << from << ' ' << to << ' ' << ascii;
                const mesh is = read_mesh(source::open(folder.path("theirs." + to)));
                EXPECT_EQ(is.pos, was.pos) << from << ' ' << to;
                ASSERT_EQ(counts(is), counts(was)) << from << ' ' << to;
                for (std::size_t b = 0; b < is.blocks.size(); ++b)
                    EXPECT_EQ(is.blocks[b].connect, was.blocks[b].connect)
                        << from << ' ' << to << " type " << is.blocks[b].type;
                ASSERT_EQ(is.point_fields.size(), was.point_fields.size()) << from << ' ' << to;
                EXPECT_EQ(is.point_fields[0].values, was.point_fields[0].values) << from << ' ' << to;
            }
        }
    }
}

TEST(MeshioAndOurs, AgreeOnVtkFiles)
{
    expect_same_after("meshio_again.py", "meshio", {"vtk", "vtu"}, {"vtk", "vtu"},
                      {EL_EDGE2, EL_TRIA3, EL_QUAD4, EL_TRIA6, EL_QUAD8, EL_TETRA4, EL_TETRA10, EL_PYRAMID5, EL_WEDGE6,
                       EL_HEXA8, EL_HEXA20, EL_HEXA27});
}

TEST(VtkAndOurs, AgreeOnVtkFiles)
{
    expect_same_after("vtk_again.py", "vtk", {"vtk", "vtu"},
                      {"2.vtk", "51.vtk", "vtu", "ascii.vtu", "raw.vtu", "plain.vtu"},
                      {EL_EDGE2, EL_EDGE3, EL_TRIA3, EL_QUAD4, EL_TRIA6, EL_QUAD8, EL_QUAD9, EL_TETRA4, EL_TETRA10,
                       EL_PYRAMID5, EL_WEDGE6, EL_WEDGE18, EL_HEXA8, EL_HEXA20, EL_HEXA27});
}

TEST(VtkAndOurs, AgreeOnTheVolumeOfSolids)
{
    if (!has_module("vtk")) GTEST_SKIP() << "there is no vtk for " << python;
    const test::temporary_folder folder;
    for (const element_type type : {EL_TETRA4, EL_PYRAMID5, EL_WEDGE6, EL_HEXA8}) {
        write_mesh(test::two_elements(type), folder.path("a.vtu"));
        EXPECT_TRUE(runs(python + ' ' + scripts + "/vtk_faces_point_outwards.py " + folder.path("a.vtu"))) << type;
    }
}

TEST(MeshioAndOurs, AgreeOnMeditAndGmshFiles)
{
    if (!has_module("meshio")) GTEST_SKIP() << "there is no meshio for " << python;
    const test::temporary_folder folder;
    const mesh was = test::mesh_of({EL_TRIA3, EL_QUAD4, EL_TETRA4, EL_PYRAMID5, EL_WEDGE6, EL_HEXA8});
    for (const std::string from : {"mesh", "msh"}) {
        for (const std::string to : {"mesh", "msh"}) {
            write_mesh(was, folder.path("ours." + from));
            ASSERT_TRUE(runs(python + ' ' + scripts + "/meshio_again.py " + folder.path("ours." + from) + ' ' +
                             folder.path("theirs." + to)))
                << from << to;
            const mesh is = read_mesh(source::open(folder.path("theirs." + to)));
            EXPECT_EQ(is.pos, was.pos) << from << to;
            ASSERT_EQ(counts(is), counts(was)) << from << to;
            for (std::size_t b = 0; b < is.blocks.size(); ++b)
                EXPECT_EQ(is.blocks[b].connect, was.blocks[b].connect) << from << to;
        }
    }
}

TEST(MeshioAndOurs, AgreeOnSurfaces)
{
    if (!has_module("meshio")) GTEST_SKIP() << "there is no meshio for " << python;
    const test::temporary_folder folder;
    const mesh was = test::two_elements(EL_TRIA3);
    for (const std::string from : {"stl", "obj"}) {
        for (const bool ascii : {false, true}) {
            write_options options;
            options.ascii = ascii;
            write_mesh(was, folder.path("ours." + from), {}, options);
            for (const std::string to : {"stl", "obj"}) {
                ASSERT_TRUE(runs(python + ' ' + scripts + "/meshio_again.py " + folder.path("ours." + from) + ' ' +
                                 folder.path("theirs." + to)))
                    << from << to;
                EXPECT_EQ(read_mesh(source::open(folder.path("theirs." + to))).element_count(), 2u) << from << to;
            }
        }
    }
}

}  // namespace
