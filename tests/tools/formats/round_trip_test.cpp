#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include "errors.h"
#include "formats/medit_read.h"
#include "mesh/kinds.h"
#include "tools/formats/every_kind.h"

// What a format can hold comes back from it, number for number.

namespace {

using namespace tool;
using namespace zeb;

struct holder {
    const char* format;
    bool ascii;
    std::vector<element_type> kinds;
    bool fields;
    bool groups;
};

const std::vector<element_type> all_of_vtk{EL_NODE,    EL_EDGE2, EL_EDGE3,  EL_TRIA3,   EL_QUAD4,    EL_TRIA6,
                                           EL_QUAD8,   EL_QUAD9, EL_TETRA4, EL_TETRA10, EL_PYRAMID5, EL_WEDGE6,
                                           EL_WEDGE18, EL_HEXA8, EL_HEXA20, EL_HEXA27};
const std::vector<element_type> all_of_gmsh{EL_NODE,   EL_EDGE2,   EL_EDGE3,  EL_TRIA3,   EL_QUAD4,    EL_TRIA6,
                                            EL_QUAD8,  EL_QUAD9,   EL_TETRA4, EL_TETRA10, EL_PYRAMID5, EL_PYRAMID14,
                                            EL_WEDGE6, EL_WEDGE18, EL_HEXA8,  EL_HEXA20,  EL_HEXA27};
const std::vector<element_type> all_of_medit{EL_EDGE2,  EL_EDGE3,   EL_TRIA3,    EL_QUAD4,  EL_TRIA6,
                                             EL_TETRA4, EL_TETRA10, EL_PYRAMID5, EL_WEDGE6, EL_HEXA8};
const std::vector<element_type> all_of_obj{EL_NODE, EL_EDGE2, EL_TRIA3, EL_QUAD4};

const std::vector<holder> holders{{"vtk", false, all_of_vtk, true, true},     {"vtk", true, all_of_vtk, true, true},
                                  {"vtu", false, all_of_vtk, true, true},     {"vtu", true, all_of_vtk, true, true},
                                  {"gmsh", false, all_of_gmsh, true, true},   {"gmsh", true, all_of_gmsh, true, true},
                                  {"gmsh22", false, all_of_gmsh, true, true}, {"gmsh22", true, all_of_gmsh, true, true},
                                  {"medit", true, all_of_medit, false, true}, {"obj", true, all_of_obj, false, false}};

void expect_equal_blocks(const mesh& is, const mesh& was, const std::string& where)
{
    ASSERT_EQ(is.blocks.size(), was.blocks.size()) << where;
    EXPECT_EQ(is.pos, was.pos) << where;
    for (std::size_t b = 0; b < is.blocks.size(); ++b) {
        EXPECT_EQ(is.blocks[b].type, was.blocks[b].type) << where;
        EXPECT_EQ(is.blocks[b].connect, was.blocks[b].connect) << where << ", type " << is.blocks[b].type;
    }
}

void expect_equal_groups(const mesh& is, const mesh& was, const std::string& where)
{
    for (std::size_t b = 0; b < is.blocks.size(); ++b) EXPECT_EQ(is.blocks[b].groups, was.blocks[b].groups) << where;
}

void expect_equal_fields(const mesh& is, const mesh& was, const std::string& where)
{
    ASSERT_EQ(is.point_fields.size(), was.point_fields.size()) << where;
    ASSERT_EQ(is.cell_fields.size(), was.cell_fields.size()) << where;
    EXPECT_EQ(is.point_fields[0].name, was.point_fields[0].name) << where;
    EXPECT_EQ(is.point_fields[0].components, was.point_fields[0].components) << where;
    EXPECT_EQ(is.point_fields[0].values, was.point_fields[0].values) << where;
    EXPECT_EQ(is.cell_fields[0].name, was.cell_fields[0].name) << where;
    EXPECT_EQ(is.cell_fields[0].values, was.cell_fields[0].values) << where;
}

std::string name_of(const holder& h)
{
    return std::string(h.format) + (h.ascii ? " as text" : " as bytes");
}

TEST(RoundTrip, KeepsEveryKindThatAFormatHolds)
{
    for (const holder& h : holders) {
        for (const element_type type : h.kinds) {
            const mesh was = test::two_elements(type);
            const mesh is = test::read_bytes(test::written(was, h.format, h.ascii));
            expect_equal_blocks(is, was, name_of(h));
            EXPECT_TRUE(test::is_well_ordered(is)) << name_of(h);
            if (h.groups) expect_equal_groups(is, was, name_of(h));
            if (h.fields) expect_equal_fields(is, was, name_of(h));
        }
    }
}

TEST(RoundTrip, KeepsAllKindsOfOneFileTogether)
{
    for (const holder& h : holders) {
        const mesh was = test::mesh_of(h.kinds);
        const mesh is = test::read_bytes(test::written(was, h.format, h.ascii));
        expect_equal_blocks(is, was, name_of(h));
        if (h.groups) expect_equal_groups(is, was, name_of(h));
        if (h.fields) expect_equal_fields(is, was, name_of(h));
    }
}

// Writers and readers go on by some hundreds or thousands of elements at a time.
mesh of_many_elements(const std::vector<element_type>& kinds)
{
    mesh m = test::mesh_of(kinds);
    std::mt19937 random(3);
    std::uint64_t first = 1;
    m.cell_fields.clear();
    m.point_fields.resize(1);
    m.point_fields[0] = {"height", 1, number_kind::real64, std::vector<double>(40000)};
    resize(m.pos, 3, 40000);
    for (std::uint64_t j = 0; j < m.pos.cols; ++j) {
        for (std::uint64_t i = 0; i < 3; ++i) m.pos(i, j) = static_cast<double>(i + 3 * j) / 4;
        m.point_fields[0].values[j] = static_cast<double>(j);
    }
    m.node_numbers = numbering(1, m.pos.cols);
    for (element_block& block : m.blocks) {
        constexpr std::uint64_t count = 2100;
        block.connect = connectivity(block.connect.rows, count);
        for (std::uint64_t e = 0; e < count; ++e)
            for (std::uint64_t k = 0; k < block.connect.rows; ++k)
                block.connect(k, e) = static_cast<unsigned int>(random() % m.pos.cols);
        block.groups.assign(count, 4);
        block.numbers = numbering(first, count);
        first += count;
    }
    m.cell_fields.push_back({"load", 1, number_kind::real64, std::vector<double>(first - 1)});
    for (double& value : m.cell_fields[0].values) value = static_cast<double>(random()) / 7;
    return m;
}

TEST(RoundTrip, KeepsManyElementsOfEveryKind)
{
    for (const holder& h : holders) {
        mesh was = of_many_elements(h.kinds);
        const mesh is = test::read_bytes(test::written(was, h.format, h.ascii));
        expect_equal_blocks(is, was, name_of(h));
        if (h.groups) expect_equal_groups(is, was, name_of(h));
        if (h.fields) expect_equal_fields(is, was, name_of(h));
    }
}

TEST(RoundTrip, KeepsManyNumbersThatDoNotFollowEachOther)
{
    mesh was = of_many_elements({EL_TETRA4, EL_HEXA8});
    was.blocks[0].groups[17] = 9;
    for (element_block& block : was.blocks) {
        numbering numbers;
        for (std::uint64_t e = 0; e < block.size(); ++e) numbers.push_back(block.numbers[e] * 3);
        block.numbers = numbers;
    }
    for (const char* format : {"gmsh", "gmsh22"}) {
        const mesh is = test::read_bytes(test::written(was, format));
        std::vector<std::uint64_t> found;
        std::vector<std::uint64_t> wanted;
        for (std::uint64_t e = 0; e < 2100; ++e) {
            found.push_back(is.blocks[0].numbers[e]);
            wanted.push_back(was.blocks[0].numbers[e]);
            EXPECT_EQ(is.blocks[1].numbers[e], was.blocks[1].numbers[e]) << format;
        }
        // Version 4.1 has the elements of one group after those of another.
        std::ranges::sort(found);
        EXPECT_EQ(found, wanted) << format;
    }
}

TEST(RoundTrip, LeadsThroughEveryPairOfFormats)
{
    for (const holder& first : holders) {
        for (const holder& second : holders) {
            for (const element_type type : first.kinds) {
                if (std::ranges::find(second.kinds, type) == second.kinds.end()) continue;
                const mesh was = test::two_elements(type);
                const mesh between = test::read_bytes(test::written(was, first.format, first.ascii));
                const mesh is = test::read_bytes(test::written(between, second.format, second.ascii));
                expect_equal_blocks(is, was, name_of(first) + ", " + name_of(second));
                if (first.groups && second.groups)
                    expect_equal_groups(is, was, name_of(first) + ", " + name_of(second));
                if (first.fields && second.fields)
                    expect_equal_fields(is, was, name_of(first) + ", " + name_of(second));
            }
        }
    }
}

TEST(RoundTrip, IsRefusedWithTheKindsThatAFormatDoesNotHold)
{
    for (const holder& h : holders) {
        for (const kind_info& kind : all_kinds()) {
            if (std::ranges::find(h.kinds, kind.type) != h.kinds.end()) continue;
            EXPECT_THROW(test::written(test::two_elements(kind.type), h.format, h.ascii), unwritable)
                << name_of(h) << ' ' << kind.name;
        }
    }
}

TEST(RoundTrip, KeepsTheNamesOfGroupsInGmshFiles)
{
    for (const char* format : {"gmsh", "gmsh22"}) {
        for (const bool ascii : {false, true}) {
            const mesh is = test::read_bytes(test::written(test::two_elements(EL_TETRA4), format, ascii));
            const group_name* named = find_group_name(is, 3, 4);
            ASSERT_NE(named, nullptr);
            EXPECT_EQ(named->name, "inner part");
            EXPECT_EQ(find_group_name(is, 3, 9), nullptr);
        }
    }
}

TEST(RoundTrip, KeepsTheNamesOfGroupsInVtuFiles)
{
    mesh was = test::mesh_of({EL_TRIA3, EL_TETRA4});
    was.group_names = {{3, 4, "a <b> & \"c\""}, {-1, 9, "anywhere"}};
    for (const bool ascii : {false, true}) {
        const mesh is = test::read_bytes(test::written(was, "vtu", ascii));
        ASSERT_EQ(is.group_names.size(), 2u);
        EXPECT_EQ(find_group_name(is, 3, 4)->name, "a <b> & \"c\"");
        EXPECT_EQ(find_group_name(is, 2, 4), nullptr);
        EXPECT_EQ(find_group_name(is, 2, 9)->name, "anywhere");
    }
}

TEST(RoundTrip, WritesBlanksForControlCharactersOfGroupNamesInVtuFiles)
{
    mesh was = test::mesh_of({EL_TETRA4});
    was.group_names = {{3, 4, "a\x01z\n."}};
    EXPECT_EQ(find_group_name(test::read_bytes(test::written(was, "vtu", true)), 3, 4)->name, "a z .");
}

// Data of the whole mesh that other programs write is no name of a group.
TEST(RoundTrip, TakesOnlyGroupsThatThereAreForNames)
{
    mesh was = test::mesh_of({EL_TETRA4});
    was.group_names = {{3, 4, "cycle"}};
    const std::string bytes = test::written(was, "vtu", true);
    const auto names = [&](const std::string& from, const std::string& to) {
        std::string other = bytes;
        other.replace(other.find(from), from.size(), to);
        return test::read_bytes(other).group_names.size();
    };
    EXPECT_EQ(names(">4 3<", "> 4 3 <"), 1u);
    EXPECT_EQ(names(">4 3<", ">5 3<"), 0u);
    EXPECT_EQ(names(">4 3<", ">4 2<"), 0u);
    EXPECT_EQ(names("Int32\" Name=\"cycle\" NumberOfTuples=\"2\"", "Float64\" Name=\"cycle\" NumberOfTuples=\"2\""),
              0u);
    EXPECT_EQ(names("NumberOfTuples=\"2\" format=\"ascii\">4 3<", "NumberOfTuples=\"3\" format=\"ascii\">4 3 1<"), 0u);
}

TEST(RoundTrip, KeepsFieldsWhoseNamesHaveBrackets)
{
    mesh was = test::two_elements(EL_TETRA4);
    was.point_fields[0].name = "a > b <c>";
    const std::string bytes = test::written(was, "vtu", true);
    EXPECT_EQ(test::read_bytes(bytes).point_fields[0].name, "a > b <c>");
    // Writers are free to escape brackets that close.
    for (const std::string name : {"Name='a > b &lt;c>'", "Name=\"a &gt; b &lt;c&gt;\""}) {
        const std::size_t begin = bytes.find("Name=\"a ");
        const std::size_t end = bytes.find('"', begin + 6) + 1;
        const mesh is = test::read_bytes(bytes.substr(0, begin) + name + bytes.substr(end));
        EXPECT_EQ(is.point_fields[0].name, "a > b <c>") << name;
    }
}

TEST(RoundTrip, KeepsNumbersOfNodesAndElementsInGmshFiles)
{
    mesh was = test::two_elements(EL_TETRA4);
    was.node_numbers = numbering();
    for (const std::uint64_t number : {70, 3, 12, 5, 100000, 8, 9, 1}) was.node_numbers.push_back(number);
    was.blocks[0].numbers = numbering();
    was.blocks[0].numbers.push_back(44);
    was.blocks[0].numbers.push_back(2);
    for (const char* format : {"gmsh", "gmsh22"}) {
        for (const bool ascii : {false, true}) {
            const mesh is = test::read_bytes(test::written(was, format, ascii));
            expect_equal_blocks(is, was, format);
            expect_equal_fields(is, was, format);
            for (std::uint64_t j = 0; j < 8; ++j) EXPECT_EQ(is.node_numbers[j], was.node_numbers[j]);
            EXPECT_EQ(is.blocks[0].numbers[0], 44u);
            EXPECT_EQ(is.blocks[0].numbers[1], 2u);
        }
    }
}

TEST(RoundTrip, KeepsTwoDimensionsInMedit)
{
    mesh was = test::two_elements(EL_TRIA3);
    coordinates flat(2, was.pos.cols);
    for (std::uint64_t j = 0; j < flat.cols; ++j)
        for (std::uint64_t i = 0; i < 2; ++i) flat(i, j) = was.pos(i, j);
    was.pos = flat;
    expect_equal_blocks(test::read_bytes(test::written(was, "medit")), was, "medit");
    EXPECT_EQ(test::read_bytes(test::written(was, "vtu")).pos.rows, 3u);
}

TEST(RoundTrip, KeepsFieldsOnNodesInASolution)
{
    mesh was = test::two_elements(EL_TETRA4);
    mesh is = test::read_bytes(test::written(was, "medit"));
    read_medit_solution(source::of_bytes(test::written(was, "sol")), is);
    ASSERT_EQ(is.point_fields.size(), 1u);
    EXPECT_EQ(is.point_fields[0].values, was.point_fields[0].values);
    EXPECT_EQ(is.point_fields[0].components, 3u);
}

TEST(RoundTrip, KeepsTheTrianglesOfAnStlText)
{
    const mesh was = test::two_elements(EL_TRIA3);
    const mesh is = test::read_bytes(test::written(was, "stl", true));
    ASSERT_EQ(is.blocks.size(), 1u);
    EXPECT_EQ(is.pos, was.pos);
    EXPECT_EQ(is.blocks[0].connect, was.blocks[0].connect);
    ASSERT_EQ(is.group_names.size(), 2u);
    EXPECT_EQ(is.group_names[0].name, "inner part");
    EXPECT_EQ(is.group_names[1].name, "group_9");
    EXPECT_EQ(is.blocks[0].groups, (std::vector<std::int32_t>{1, 2}));
}

TEST(RoundTrip, KeepsTheTrianglesOfABinaryStlTo32Bits)
{
    const mesh was = test::two_elements(EL_TRIA3);
    const mesh is = test::read_bytes(test::written(was, "stl"));
    ASSERT_EQ(is.blocks.size(), 1u);
    EXPECT_EQ(is.blocks[0].connect, was.blocks[0].connect);
    for (std::uint64_t j = 0; j < was.pos.cols; ++j)
        for (std::uint64_t i = 0; i < 3; ++i)
            EXPECT_EQ(is.pos(i, j), static_cast<double>(static_cast<float>(was.pos(i, j))));
}

TEST(RoundTrip, KeepsNormalsAndTextureInObj)
{
    mesh was = test::two_elements(EL_TRIA3);
    was.point_fields[0].name = "normals";
    was.point_fields.push_back({"uv", 2, number_kind::real64, std::vector<double>(12, 0.1)});
    const mesh is = test::read_bytes(test::written(was, "obj"));
    ASSERT_EQ(is.point_fields.size(), 2u);
    EXPECT_EQ(is.point_fields[0].name, "normals");
    EXPECT_EQ(is.point_fields[0].values, was.point_fields[0].values);
    EXPECT_EQ(is.point_fields[1].values, was.point_fields[1].values);
}

TEST(RoundTrip, KeepsHowFieldsAreStored)
{
    mesh was = test::two_elements(EL_TETRA4);
    was.cell_fields.push_back({"count", 1, number_kind::integer, {-3, 1e9}});
    was.cell_fields.push_back({"small", 1, number_kind::real32, {0.1f, 3e38f}});
    for (const char* format : {"vtk", "vtu"}) {
        for (const bool ascii : {false, true}) {
            const mesh is = test::read_bytes(test::written(was, format, ascii));
            ASSERT_EQ(is.cell_fields.size(), 3u);
            for (std::size_t k = 1; k < 3; ++k) {
                EXPECT_EQ(is.cell_fields[k].kind, was.cell_fields[k].kind) << format;
                if (k == 1 || !ascii) {
                    EXPECT_EQ(is.cell_fields[k].values, was.cell_fields[k].values) << format;
                }
            }
        }
    }
}

}  // namespace
