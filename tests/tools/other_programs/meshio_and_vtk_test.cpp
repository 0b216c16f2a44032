#include <gtest/gtest.h>

#include "formats/format.h"
#include "mesh/kinds.h"
#include "mesh/mesh.h"
#include "tools/formats/every_kind.h"
#include "tools/other_programs/program.h"

// What meshio and VTK write is read, and what is written is read by them. A program that crashes over our files fails a
// test; one that is not there skips it.

namespace {

using namespace tool;
using namespace zeb;

// A script of the folder reads ours and writes it again; what comes back is compared.
void expect_same_after(const std::string& script, const std::string& module, const std::vector<std::string>& ours,
                       const std::vector<std::string>& theirs, const std::vector<element_type>& kinds)
{
    if (!test::has_module(module)) GTEST_SKIP() << "there is no " << module << " for the Python of the system";
    const test::temporary_folder folder;
    for (const std::string& from : ours) {
        for (const std::string& to : theirs) {
            for (const bool ascii : {false, true}) {
                mesh was = test::mesh_of(kinds);
                was.point_fields[0].name = "speed";  // meshio writes no blanks
                was.group_names = {{info_of(kinds.back()).dimension, 4, "inner part"}};
                write_options options;
                options.ascii = ascii;
                write_mesh(was, folder.path("ours." + from), {}, options);
                const test::outcome done = test::run_script(script, {"ours." + from, "theirs." + to}, folder);
                ASSERT_TRUE(done.succeeded()) << ascii << done.said;
                const mesh is = read_mesh(source::open(folder.path("theirs." + to)));
                EXPECT_EQ(is.pos, was.pos) << from << ' ' << to;
                ASSERT_EQ(test::counts(is), test::counts(was)) << from << ' ' << to;
                for (std::size_t b = 0; b < is.blocks.size(); ++b)
                    EXPECT_EQ(is.blocks[b].connect, was.blocks[b].connect)
                        << from << ' ' << to << " type " << is.blocks[b].type;
                if (module == "vtk" && from == "vtu" && to.ends_with("vtu")) {
                    ASSERT_EQ(is.group_names.size(), 1u) << to;
                    EXPECT_EQ(find_group_name(is, was.group_names[0].dimension, 4)->name, "inner part") << to;
                }
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
    if (!test::has_module("vtk")) GTEST_SKIP() << "there is no vtk for the Python of the system";
    const test::temporary_folder folder;
    for (const element_type type : {EL_TETRA4, EL_PYRAMID5, EL_WEDGE6, EL_HEXA8}) {
        write_mesh(test::two_elements(type), folder.path("a.vtu"));
        const test::outcome done = test::run_script("vtk_faces_point_outwards.py", {"a.vtu"}, folder);
        EXPECT_TRUE(done.succeeded()) << type << done.said;
    }
}

TEST(MeshioAndOurs, AgreeOnMeditAndGmshFiles)
{
    if (!test::has_module("meshio")) GTEST_SKIP() << "there is no meshio for the Python of the system";
    const test::temporary_folder folder;
    const mesh was = test::mesh_of({EL_TRIA3, EL_QUAD4, EL_TETRA4, EL_PYRAMID5, EL_WEDGE6, EL_HEXA8});
    for (const std::string from : {"mesh", "msh"}) {
        for (const std::string to : {"mesh", "msh"}) {
            write_mesh(was, folder.path("ours." + from));
            const test::outcome done = test::run_script("meshio_again.py", {"ours." + from, "theirs." + to}, folder);
            ASSERT_TRUE(done.succeeded()) << done.said;
            const mesh is = read_mesh(source::open(folder.path("theirs." + to)));
            EXPECT_EQ(is.pos, was.pos) << from << to;
            ASSERT_EQ(test::counts(is), test::counts(was)) << from << to;
            for (std::size_t b = 0; b < is.blocks.size(); ++b)
                EXPECT_EQ(is.blocks[b].connect, was.blocks[b].connect) << from << to;
        }
    }
}

TEST(MeshioAndOurs, AgreeOnSurfaces)
{
    if (!test::has_module("meshio")) GTEST_SKIP() << "there is no meshio for the Python of the system";
    const test::temporary_folder folder;
    const mesh was = test::two_elements(EL_TRIA3);
    for (const std::string from : {"stl", "obj"}) {
        for (const bool ascii : {false, true}) {
            write_options options;
            options.ascii = ascii;
            write_mesh(was, folder.path("ours." + from), {}, options);
            for (const std::string to : {"stl", "obj"}) {
                const test::outcome done =
                    test::run_script("meshio_again.py", {"ours." + from, "theirs." + to}, folder);
                ASSERT_TRUE(done.succeeded()) << done.said;
                EXPECT_EQ(read_mesh(source::open(folder.path("theirs." + to))).element_count(), 2u) << from << to;
            }
        }
    }
}

TEST(VtkAndOurs, AgreeOnSurfaces)
{
    if (!test::has_module("vtk")) GTEST_SKIP() << "there is no vtk for the Python of the system";
    const test::temporary_folder folder;
    const mesh was = test::two_elements(EL_TRIA3);
    write_options text;
    text.ascii = true;
    write_mesh(was, folder.path("bytes.stl"));
    write_mesh(was, folder.path("text.stl"), {}, text);
    write_mesh(was, folder.path("ours.obj"));
    const test::outcome done = test::run_script("vtk_surface.py", {"bytes.stl", "text.stl", "ours.obj"}, folder);
    ASSERT_TRUE(done.succeeded()) << done.said;
    for (const char* line : {"bytes.stl 6 2\n", "text.stl 6 2\n", "ours.obj 6 2\n"})
        EXPECT_NE(done.said.find(line), done.said.npos) << done.said;
}

}  // namespace
