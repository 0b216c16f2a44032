#include <array>
#include <map>
#include <tuple>

#include <gtest/gtest.h>

#include "formats/format.h"
#include "mesh/mesh.h"
#include "tools/formats/every_kind.h"
#include "tools/other_programs/program.h"

// What gmsh writes is read, and what is written is read by gmsh. One process of gmsh meshes once and writes every file,
// so that all of them hold the same mesh.

namespace {

using namespace tool;
using namespace zeb;

const char* block_of_all_kinds = R"(
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
Physical Volume("tip", 6) = {100}; Physical Surface("base", 8) = {100};
Mesh 3;
)";

// Wedges and second-order hexahedra are no part of the MEDIT files: gmsh leaves them out or writes them in a form of its
// own. It tells triangles of six nodes there by the order that is set.
const char* with_blocks = "Physical Volume(\"blocks\", 5) = {1, 2};\n";
const char* without_blocks = "Physical Volume(5) -= {1, 2}; Mesh.ElementOrder=2;\n";

// In the order that is set, under names that begin with it.
std::string every_format(const std::string& order)
{
    std::string script;
    for (const std::string bytes : {"0", "1"}) {
        script += "Mesh.Binary=" + bytes + ";\nSave \"" + order + bytes + ".vtk\";\n";
        for (const std::string version : {"2.2", "4.1"}) {
            script += "Mesh.MshFileVersion=" + version + ";\n";
            script += "Save \"" + order + bytes + version + ".msh\";\n";
        }
    }
    return script;
}

class GmshFiles : public testing::Test {
protected:
    void SetUp() override
    {
        if (!test::has_gmsh()) GTEST_SKIP() << "there is no gmsh";
        std::string geometry = block_of_all_kinds;  // appended to: GCC 12 warns of a sum without need
        geometry.append("Save \"1.mesh\";\n").append(with_blocks).append(every_format("1")).append("SetOrder 2;\n");
        geometry.append(every_format("2")).append(without_blocks).append("Save \"2.mesh\";\n");
        folder.write("all.geo", geometry);
        const test::outcome made = run("all.geo");
        if (made.signal != 0) GTEST_SKIP() << "gmsh crashed over a geometry: " << made.said;
        ASSERT_TRUE(made.succeeded()) << made.said;
    }

    test::outcome run(const std::string& script) const
    {
        return test::run({"gmsh", script, "-parse_and_exit"}, folder);
    }

    mesh read(const std::string& name) const { return read_mesh(source::open(folder.path(name))); }

    test::temporary_folder folder;
};

// gmsh writes sixteen digits in texts.
void expect_same_mesh(const mesh& is, const mesh& was, const std::string& name)
{
    ASSERT_EQ(is.pos.cols, was.pos.cols) << name;
    for (std::uint64_t j = 0; j < is.pos.cols; ++j)
        for (std::uint64_t i = 0; i < 3; ++i) ASSERT_NEAR(is.pos(i, j), was.pos(i, j), 1e-15) << name << " node " << j;
    ASSERT_EQ(test::counts(is), test::counts(was)) << name;
    for (std::size_t b = 0; b < is.blocks.size(); ++b) {
        EXPECT_EQ(is.blocks[b].connect, was.blocks[b].connect) << name << " type " << is.blocks[b].type;
        EXPECT_EQ(is.blocks[b].groups, was.blocks[b].groups) << name << " type " << is.blocks[b].type;
    }
}

// A mesh by the numbers that nodes and elements have in the file, whatever their order.
struct numbered_mesh {
    using element = std::tuple<int, std::int32_t, std::vector<std::uint64_t>>;  // kind, group, nodes

    explicit numbered_mesh(const mesh& m)
    {
        for (std::uint64_t j = 0; j < m.pos.cols; ++j)
            nodes[m.node_numbers[j]] = {m.pos(0, j), m.pos(1, j), m.pos(2, j)};
        for (const element_block& block : m.blocks)
            for (std::uint64_t e = 0; e < block.size(); ++e) {
                element& is = elements[block.numbers[e]];
                is = {block.type, block.group(e), {}};
                for (std::uint64_t k = 0; k < block.connect.rows; ++k)
                    std::get<2>(is).push_back(m.node_numbers[block.connect(k, e)]);
            }
    }

    std::map<std::uint64_t, std::array<double, 3>> nodes;
    std::map<std::uint64_t, element> elements;
};

void expect_same_numbers(const mesh& is, const mesh& was, const std::string& name)
{
    const numbered_mesh a(is);
    const numbered_mesh b(was);
    EXPECT_TRUE(a.elements == b.elements) << name;
    ASSERT_EQ(a.nodes.size(), b.nodes.size()) << name;
    for (const auto& [number, p] : b.nodes) {
        ASSERT_TRUE(a.nodes.contains(number)) << name << " node " << number;
        for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(a.nodes.at(number)[i], p[i], 1e-15) << name;
    }
}

TEST_F(GmshFiles, AreReadInEveryVersionAndOrder)
{
    for (const std::string order : {"1", "2"}) {
        const mesh first = read(order + "02.2.msh");
        EXPECT_EQ(first.blocks.size(), 4u);
        EXPECT_TRUE(test::is_well_ordered(first)) << order;
        ASSERT_NE(find_group_name(first, 3, 6), nullptr);
        EXPECT_EQ(find_group_name(first, 3, 6)->name, "tip");
        for (const std::string name : {"12.2.msh", "04.1.msh", "14.1.msh"})
            expect_same_mesh(read(order + name), first, order + name);
    }
}

TEST_F(GmshFiles, OfOtherFormatsAreReadWithTheSameOrientation)
{
    for (const std::string order : {"1", "2"}) {
        const mesh first = read(order + "02.2.msh");
        for (const std::string name : {"0.vtk", "1.vtk"}) {
            const mesh m = read(order + name);
            EXPECT_EQ(test::counts(m), test::counts(first)) << order << name;
            EXPECT_TRUE(test::is_well_ordered(m)) << order << name;
        }
        const mesh tip = read(order + ".mesh");
        EXPECT_EQ(tip.blocks.size(), 2u) << order;
        EXPECT_TRUE(test::is_well_ordered(tip)) << order;
    }
}

TEST_F(GmshFiles, AreReadByGmshAsTheyWere)
{
    std::string script = "Mesh.MshFileVersion=4.1;\n";
    std::vector<std::pair<std::string, std::string>> pairs;
    for (const std::string order : {"1", "2"}) {
        const mesh was = read(order + "14.1.msh");
        for (const std::string format : {"gmsh", "gmsh22"}) {
            for (const bool ascii : {false, true}) {
                write_options options;
                options.ascii = ascii;
                const std::string name = order + format + (ascii ? "text" : "bytes") + ".msh";
                write_mesh(was, folder.path("our" + name), format, options);
                script += "Merge \"our" + name + "\"; Save \"their" + name + "\"; NewModel;\n";
                pairs.emplace_back(order + "14.1.msh", "their" + name);
            }
        }
    }
    folder.write("again.geo", script);
    const test::outcome done = run("again.geo");
    ASSERT_TRUE(done.succeeded()) << done.said;
    EXPECT_EQ(done.said.find("Error"), done.said.npos) << done.said;
    EXPECT_EQ(pairs.size(), 8u);
    for (const auto& [first, last] : pairs) expect_same_numbers(read(last), read(first), last + '\n' + done.said);
}

// MEDIT files, of which gmsh passes over pyramids and wedges, and the triangles of STL files.
TEST_F(GmshFiles, OfOtherFormatsAreReadByGmsh)
{
    std::string script = "Mesh.MshFileVersion=4.1;\n";
    const std::vector<element_type> linear{EL_TRIA3, EL_QUAD4, EL_TETRA4, EL_HEXA8};
    write_mesh(test::mesh_of(linear), folder.path("ours.mesh"));
    write_mesh(test::mesh_of({EL_TRIA6, EL_TETRA10}), folder.path("ours2.mesh"));
    write_options text;
    text.ascii = true;
    write_mesh(test::two_elements(EL_TRIA3), folder.path("text.stl"), {}, text);
    write_mesh(test::two_elements(EL_TRIA3), folder.path("bytes.stl"));
    for (const std::string name : {"ours.mesh", "ours2.mesh", "text.stl", "bytes.stl"})
        script += "Merge \"" + name + "\"; Save \"" + name + ".msh\"; NewModel;\n";
    folder.write("again.geo", script);
    const test::outcome done = run("again.geo");
    ASSERT_TRUE(done.succeeded()) << done.said;
    for (const std::string name : {"ours.mesh", "ours2.mesh"}) {
        const mesh was = read(name);
        const mesh is = read(name + ".msh");
        EXPECT_EQ(test::counts(is), test::counts(was)) << name << done.said;
        EXPECT_EQ(is.pos.cols, was.pos.cols) << name;
        EXPECT_TRUE(test::is_well_ordered(is)) << name;
    }
    for (const std::string name : {"text.stl", "bytes.stl"}) {
        const mesh is = read(name + ".msh");
        ASSERT_EQ(is.blocks.size(), 1u) << name << done.said;
        EXPECT_EQ(is.blocks[0].type, EL_TRIA3) << name;
        EXPECT_EQ(is.element_count(), 2u) << name;
        EXPECT_EQ(is.pos.cols, 6u) << name;
    }
}

}  // namespace
