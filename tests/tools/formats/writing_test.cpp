#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

#include <gtest/gtest.h>

#include "errors.h"
#include "formats/file_beside.h"
#include "tools/formats/every_kind.h"
#include "tools/stl_files.h"

namespace {

using namespace tool;
using namespace zeb;

const mesh& tetrahedra()
{
    static const mesh m = test::two_elements(EL_TETRA4);
    return m;
}

bool exists(const std::string& path)
{
    return access(path.c_str(), F_OK) == 0;
}

TEST(WriteMesh, ChoosesTheFormatByTheSuffixOrByName)
{
    const test::temporary_folder folder;
    for (const char* name : {"a.vtk", "a.vtu", "a.msh", "a.mesh"}) {
        write_mesh(tetrahedra(), folder.path(name));
        EXPECT_EQ(read_mesh(source::open(folder.path(name))).element_count(), 2u) << name;
    }
    write_mesh(tetrahedra(), folder.path("b.xyz"), "vtu");
    EXPECT_EQ(input_format(source::open(folder.path("b.xyz")), {}).name, "vtu");
    EXPECT_THROW(write_mesh(tetrahedra(), folder.path("c.xyz")), wrong_usage);
    EXPECT_THROW(write_mesh(tetrahedra(), "-"), wrong_usage);
}

TEST(WriteMesh, LeavesWhatWasThereWhenItFails)
{
    const test::temporary_folder folder;
    const std::string path = folder.write("kept.stl", "kept");
    EXPECT_THROW(write_mesh(tetrahedra(), path), unwritable);
    EXPECT_EQ(test::read_file(path), "kept");
    EXPECT_THROW(write_mesh(tetrahedra(), folder.path("new.stl")), unwritable);
    EXPECT_FALSE(exists(folder.path("new.stl")));
    EXPECT_THROW(write_mesh(tetrahedra(), folder.path("no/such/folder.vtk")), unwritable);
    EXPECT_THROW(write_mesh(tetrahedra(), "/dev/full", "vtk"), unwritable);
}

TEST(FileBeside, TakesItsPlaceOnlyWhenItIsCommitted)
{
    const test::temporary_folder folder;
    std::string beside;
    {
        const file_beside file(folder.path("a"));
        beside = file.name();
        EXPECT_TRUE(exists(beside));
    }
    EXPECT_FALSE(exists(beside));
    EXPECT_FALSE(exists(folder.path("a")));
    file_beside file(folder.path("a"));
    std::ofstream(file.name()) << "whole";
    file.commit();
    EXPECT_EQ(test::read_file(folder.path("a")), "whole");
    EXPECT_FALSE(exists(file.name() + "x"));
}

// As `cp` and the shell have it: a pipe stays one, and its writer waits for the reader.
TEST(WriteMesh, GoesThroughANamedPipe)
{
    const test::temporary_folder folder;
    const std::string pipe = folder.path("pipe.vtk");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::string read;
    std::thread reader([&] { read = test::read_file(pipe); });
    write_mesh(tetrahedra(), pipe);
    reader.join();
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
    EXPECT_EQ(read, test::written(tetrahedra(), "vtk"));
}

TEST(FileBeside, IsRemovedByASignal)
{
    const test::temporary_folder folder;
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        std::signal(SIGTERM, SIG_DFL);
        const file_beside file(folder.path("a"));
        if (exists(file.name())) raise(SIGTERM);
        _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path("")));
}

TEST(FileBeside, FollowsALinkAndKeepsTheRights)
{
    const test::temporary_folder folder;
    const std::string target = folder.write("target", "old");
    ASSERT_EQ(symlink(target.c_str(), folder.path("link").c_str()), 0);
    write_mesh(tetrahedra(), folder.path("link"), "vtk");
    EXPECT_TRUE(test::read_file(target).starts_with("# vtk"));
}

TEST(FileBeside, MakesWhatALinkLeadsTo)
{
    const test::temporary_folder folder;
    ASSERT_EQ(symlink("further", folder.path("link").c_str()), 0);
    ASSERT_EQ(symlink("target", folder.path("further").c_str()), 0);
    write_mesh(tetrahedra(), folder.path("link"), "vtk");
    EXPECT_TRUE(test::read_file(folder.path("target")).starts_with("# vtk"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link")));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("further")));
    ASSERT_EQ(symlink("round", folder.path("round").c_str()), 0);
    EXPECT_THROW(write_mesh(tetrahedra(), folder.path("round"), "vtk"), unwritable);
    ASSERT_EQ(symlink("no/folder", folder.path("nowhere").c_str()), 0);
    EXPECT_THROW(write_mesh(tetrahedra(), folder.path("nowhere"), "vtk"), unwritable);
}

TEST(Lossy, LeavesOutTheNodesThatNobodyHasAnyMore)
{
    mesh m = test::mesh_of({EL_TRIA3, EL_TRIA6});
    const std::uint64_t all = m.pos.cols;
    // One node between corners is a corner of the linear triangles too.
    m.blocks[0].connect(0, 0) = m.blocks[1].connect(3, 0);
    for (const char* format : {"obj", "medit"}) {
        const bool is_held = std::string_view(format) == "medit";
        std::vector<std::string> notes;
        write_options options;
        options.lossy = true;
        options.notes = &notes;
        std::string bytes;
        sink to(bytes);
        format_named(format).write(m, to, options);
        to.commit();
        const mesh is = test::read_bytes(bytes);
        EXPECT_EQ(is.pos.cols, is_held ? all : all - 5) << format;
        EXPECT_EQ(std::ranges::count(notes, "5 nodes between corners left out"), is_held ? 0 : 1) << format;
        EXPECT_FALSE(faults_of(is).any());
        for (std::uint64_t i = 0; i < 3; ++i)
            EXPECT_EQ(is.pos(i, is.blocks[0].connect(0, 0)), m.pos(i, m.blocks[1].connect(3, 0))) << format;
    }
}

TEST(Lossy, WritesCornersAndTellsWhatIsLeftOut)
{
    std::vector<std::string> notes;
    write_options options;
    options.lossy = true;
    options.notes = &notes;
    std::string bytes;
    sink to(bytes);
    format_named("medit").write(test::mesh_of({EL_TETRA4, EL_WEDGE18}), to, options);
    to.commit();
    const mesh is = test::read_bytes(bytes);
    ASSERT_EQ(is.blocks.size(), 2u);
    EXPECT_EQ(is.blocks[1].type, EL_WEDGE6);
    EXPECT_NE(std::ranges::find(notes, "2 wedges of 18 nodes written by their corners"), notes.end());
}

// What goes wrong in writing a mesh of these kinds.
std::string refusal_of(const char* format, std::initializer_list<element_type> kinds, bool lossy = false)
{
    write_options options;
    options.lossy = lossy;
    try {
        std::string bytes;
        sink to(bytes);
        format_named(format).write(test::mesh_of(kinds), to, options);
        return "written";
    } catch (const unwritable& told) {
        return told.what();
    }
}

TEST(Refusal, NamesTheWayToASurfaceOnlyWhereTheFormatHoldsNoSolids)
{
    EXPECT_EQ(refusal_of("vtu", {EL_PYRAMID14}), "VTU cannot hold 2 pyramids of 14 nodes; --lossy writes what it can");
    EXPECT_EQ(refusal_of("obj", {EL_HEXA8}), "OBJ cannot hold 2 hexahedra; 'boundary' makes the surface");
    EXPECT_EQ(refusal_of("obj", {EL_TRIA3, EL_HEXA8}),
              "OBJ cannot hold 2 hexahedra; --lossy writes what it can, 'boundary' makes the surface");
    EXPECT_EQ(refusal_of("obj", {EL_HEXA8, EL_TETRA4}, true),
              "OBJ can hold none of the elements; 'boundary' makes the surface");
}

TEST(LowerDimensions, AreLeftOutWhereAFormatHasNoPlaceForThem)
{
    std::vector<std::string> notes;
    write_options options;
    options.notes = &notes;
    std::string bytes;
    sink to(bytes);
    format_named("stl").write(test::mesh_of({EL_NODE, EL_EDGE2, EL_TRIA3}), to, options);
    to.commit();
    EXPECT_EQ(test::read_bytes(bytes).element_count(), 2u);
    EXPECT_NE(std::ranges::find(notes, "2 lines left out"), notes.end());
}

TEST(Digits, AreTheFewestThatReadBack)
{
    mesh m = test::two_elements(EL_TRIA3);
    m.pos(0, 0) = 0.1;
    m.pos(1, 0) = 1.0 / 3.0;
    m.pos(2, 0) = -0.0;
    m.pos(0, 1) = 5e-324;
    m.pos(1, 1) = 1.7976931348623157e308;
    const std::string text = test::written(m, "obj");
    EXPECT_NE(text.find("v 0.1 0.3333333333333333 -0\nv 5e-324 1.7976931348623157e+308 "), text.npos)
        << text.substr(0, 200);
    EXPECT_EQ(test::read_bytes(text).pos, m.pos);
}

TEST(LibraryWriter, GetsTheLibrarysOwnOrder)
{
    const test::temporary_folder folder;
    write_options options;
    options.library = true;
    for (const element_type type : {EL_TETRA4, EL_HEXA8, EL_TRIA6, EL_TETRA10, EL_HEXA27}) {
        const mesh m = test::two_elements(type);
        write_mesh(m, folder.path("a.vtk"), {}, options);
        const mesh is = read_mesh(source::open(folder.path("a.vtk")));
        ASSERT_EQ(is.blocks.size(), 1u) << type;
        EXPECT_EQ(is.blocks[0].type, type);
        EXPECT_EQ(is.blocks[0].connect, m.blocks[0].connect) << type;
    }
}

TEST(LibraryWriter, WritesTheBytesOfTheLibrary)
{
    const test::temporary_folder folder;
    write_options options;
    options.library = true;
    const mesh& m = tetrahedra();
    write_mesh(m, folder.path("a.mesh"), {}, options);
    dense1D<unsigned int> references(2);
    references[0] = 4;
    references[1] = 9;
    ASSERT_EQ(
        zeb::tessolv::medit_output(folder.path("b.mesh").c_str(), m.pos, m.blocks[0].connect, EL_TETRA4, references),
        0);
    EXPECT_EQ(test::read_file(folder.path("a.mesh")), test::read_file(folder.path("b.mesh")));
    write_mesh(m, folder.path("a.case"), {}, options);
    ASSERT_EQ(zeb::tessolv::ensight_output(folder.path("b.geo").c_str(), m.pos, m.blocks[0].connect, EL_TETRA4), 0);
    EXPECT_EQ(test::read_file(folder.path("a.geo")), test::read_file(folder.path("b.geo")));
    EXPECT_NE(test::read_file(folder.path("a.case")).find("model: a.geo\n"), std::string::npos);
}

TEST(LibraryWriter, LeavesNoGeometryWithoutItsCase)
{
    const test::temporary_folder folder;
    write_options options;
    options.library = true;
    std::filesystem::create_directory(folder.path("a.case"));
    EXPECT_THROW(write_mesh(tetrahedra(), folder.path("a.geo"), {}, options), unwritable);
    EXPECT_FALSE(exists(folder.path("a.geo")));
}

TEST(LibraryWriter, IsNotAskedForWhatItRefuses)
{
    const test::temporary_folder folder;
    write_options options;
    options.library = true;
    EXPECT_THROW(write_mesh(test::two_elements(EL_PYRAMID5), folder.path("a.vtk"), {}, options), unwritable);
    EXPECT_FALSE(exists(folder.path("a.vtk")));
    EXPECT_THROW(write_mesh(tetrahedra(), folder.path("a.stl"), {}, options), unwritable);
    EXPECT_THROW(write_mesh(tetrahedra(), folder.path("a.vtu"), {}, options), wrong_usage);
    EXPECT_THROW(write_mesh(tetrahedra(), folder.path("a.case")), wrong_usage);
}

}  // namespace
