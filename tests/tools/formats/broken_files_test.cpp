#include <random>

#include <gtest/gtest.h>

#include "errors.h"
#include "tools/formats/every_kind.h"
#include "tools/stl_files.h"

// Files that were cut, that count wrongly, that hold what is not supported: a reason with its place, and nothing worse.

namespace {

using namespace tool;
using namespace zeb;

struct sample {
    std::string name;
    std::string format;
    std::string bytes;
};

std::vector<sample> samples()
{
    std::vector<sample> list;
    mesh solid = test::mesh_of({EL_TRIA3, EL_TETRA4, EL_HEXA8});
    for (const char* format : {"vtk", "vtu", "gmsh", "gmsh22", "medit"})
        for (const bool ascii : {false, true})
            list.push_back(
                {format + std::string(ascii ? " text" : " bytes"), format, test::written(solid, format, ascii)});
    const mesh surface = test::mesh_of({EL_TRIA3, EL_QUAD4});
    list.push_back({"obj", "obj", test::written(surface, "obj")});
    list.push_back({"stl text", "stl", test::written(surface, "stl", true)});
    list.push_back({"stl bytes", "stl", test::written(surface, "stl")});
    return list;
}

// Whether the reader takes the bytes; whatever it throws must be a reason with a place or a whole file.
bool reads(const sample& s, const std::string& bytes, std::uint64_t& elements)
{
    try {
        const mesh m = test::read_bytes_as(bytes, s.format);
        elements = m.faults.empty() ? m.element_count() : 0;
        return true;
    } catch (const unreadable& reason) {
        EXPECT_NE(std::string(reason.what()), "");
        return false;
    }
}

TEST(CutFile, IsRefusedOrHoldsAllItsElementsWhereverItIsCut)
{
    for (const sample& s : samples()) {
        std::uint64_t whole = 0;
        ASSERT_TRUE(reads(s, s.bytes, whole)) << s.name;
        for (std::size_t length = 0; length < s.bytes.size(); ++length) {
            std::uint64_t elements = 0;
            if (!reads(s, s.bytes.substr(0, length), elements)) continue;
            // Lines and facets say nothing of how many there are.
            const bool counted = s.format != "obj" && s.name != "stl text";
            if (counted && elements != 0) {
                EXPECT_EQ(elements, whole) << s.name << " cut at " << length;
            }
        }
    }
}

TEST(CutFile, NamesALineOrAByte)
{
    for (const sample& s : samples()) {
        if (s.format == "obj" || s.format == "stl") continue;
        try {
            test::read_bytes_as(s.bytes.substr(0, s.bytes.size() / 2), s.format);
            ADD_FAILURE() << s.name;
        } catch (const unreadable& reason) {
            const std::string text = reason.what();
            EXPECT_TRUE(text.starts_with("line ") || text.starts_with("byte ")) << s.name << ": " << text;
        }
    }
}

// Bytes changed, dropped, doubled: whatever comes out, it ends, and within memory.
TEST(SpoiltFile, IsReadOrRefused)
{
    std::mt19937 random(20);
    std::uint64_t read = 0;
    std::uint64_t refused = 0;
    for (const sample& s : samples()) {
        for (int round = 0; round < 400; ++round) {
            std::string bytes = s.bytes;
            for (unsigned int change = random() % 4 + 1; change > 0 && !bytes.empty(); --change) {
                const std::size_t at = random() % bytes.size();
                switch (random() % 5) {
                    case 0:
                        bytes[at] = static_cast<char>(random());
                        break;
                    case 1:
                        bytes.erase(at, random() % 20);
                        break;
                    case 2:
                        bytes.insert(at, bytes.substr(random() % bytes.size(), random() % 30));
                        break;
                    case 3:
                        bytes[at] = static_cast<char>('0' + random() % 10);
                        break;
                    default:
                        bytes.insert(at, "99999999999");
                        break;
                }
            }
            std::uint64_t elements = 0;
            (reads(s, bytes, elements) ? read : refused) += 1;
        }
    }
    EXPECT_GT(read, 0u);
    EXPECT_GT(refused, 0u);
}

struct wrong_file {
    const char* name;
    const char* format;
    std::string bytes;
    const char* reason;
};

const std::string vtk_head = "# vtk DataFile Version 3.0\nx\nASCII\nDATASET UNSTRUCTURED_GRID\n";
const std::string gmsh_head = "$MeshFormat\n2.2 0 8\n$EndMeshFormat\n";
const std::string three_nodes = "$Nodes\n3\n1 0 0 0\n2 1 0 0\n3 0 1 0\n$EndNodes\n";

TEST(WrongFile, IsRefusedWithItsReason)
{
    const std::vector<wrong_file> table{
        {"more points than bytes", "vtk", vtk_head + "POINTS 4000000000000 double\n0 0 0\n",
         "line 6: the file is too short for 12000000000000 numbers of coordinates"},
        {"points beyond 64 bits", "vtk", vtk_head + "POINTS 99999999999999999999 double\n",
         "line 5: '99999999999999999999' where the number of points should be"},
        {"cell list", "vtk", vtk_head + "POINTS 1 double\n0 0 0\nCELLS 1 3\n1 0 0\n",
         "line 8: the list of cells does not add up"},
        {"polyhedron", "vtk", vtk_head + "POINTS 1 double\n0 0 0\nCELLS 1 2\n1 0\nCELL_TYPES 1\n42\n",
         "cell 0 is of type 42 (polyhedron), which is not supported"},
        {"triangle of one node", "vtk", vtk_head + "POINTS 1 double\n0 0 0\nCELLS 1 2\n1 0\nCELL_TYPES 1\n5\n",
         "cell 0 of type 5 has 1 node"},
        {"corners of more nodes, before further ones", "vtk",
         "# vtk DataFile Version 2.0\nGenerated by ZEB Tessolv(TM).\nASCII\nDATASET UNSTRUCTURED_GRID\nPOINTS 1 "
         "double\n"
         "0 0 0\nCELLS 2 19\n10 0 0 0 0 0 0 0 0 0 0\n7 0 0 0 0 0 0 0\nCELL_TYPES 2\n12\n2\n",
         "cell 0 of type 12 has 10 nodes"},
        {"word", "vtk", vtk_head + "POINTS 1 double\n0 zero 0\n", "line 6: 'zero' where coordinates should be"},
        {"structured", "vtk", "# vtk DataFile Version 3.0\nx\nASCII\nDATASET STRUCTURED_POINTS\n",
         "line 4: a dataset of kind STRUCTURED_POINTS, which holds no mesh of elements"},
        {"wedge of 15 nodes", "gmsh", gmsh_head + three_nodes + "$Elements\n1\n7 18 0 1 2 3\n$EndElements\n",
         "line 12: element 7 is of type 18 (wedge of 15 nodes), which is not supported"},
        {"nodes twice", "gmsh", gmsh_head + "$Nodes\n2\n1 0 0 0\n1 1 0 0\n$EndNodes\n",
         "line 7: node 1 is given twice"},
        {"version", "gmsh", "$MeshFormat\n4 0 8\n$EndMeshFormat\n", "line 2: version 4, where 2.2 or 4.1 should be"},
        {"elements", "gmsh", gmsh_head + three_nodes + "$Elements\n888888888888\n1 2 0 1 2 3\n$EndElements\n",
         "line 12: the file is too short for 888888888888 elements"},
        {"no end", "medit", "MeshVersionFormatted 2\nDimension 3\nVertices 1\n0 0 0 0\n",
         "line 5: the file ends before the word End"},
        {"dimension", "medit", "MeshVersionFormatted 2\nDimension 7\nEnd\n", "line 2: a dimension of 7"},
        {"short node", "obj", "v 0 0 0\nv 1 0\nf 1 2 1\n", "line 2: the line ends where a coordinate should be"},
        {"corner", "obj", "v 0 0 0\nf 1 1 x\n", "line 2: 'x' is no corner of an element"},
        {"two corners", "obj", "v 0 0 0\nf 1 1\n", "line 2: a face of 2 corners"},
        {"lonely solution", "sol", "MeshVersionFormatted 2\nDimension 3\nSolAtVertices 0\nEnd\n",
         "holds values for a mesh and no mesh: name it with --sol beside its mesh"},
        {"image data", "vtu", "<VTKFile type=\"ImageData\"><ImageData/></VTKFile>",
         "a VTK file of type 'ImageData', which holds no mesh of elements"},
        {"compressor", "vtu",
         "<VTKFile type=\"UnstructuredGrid\" compressor=\"vtkLZ4DataCompressor\"><UnstructuredGrid/></VTKFile>",
         "compression by vtkLZ4DataCompressor, which is not supported"},
    };
    for (const wrong_file& row : table) {
        try {
            test::read_bytes_as(row.bytes, row.format);
            ADD_FAILURE() << row.name << " was read";
        } catch (const unreadable& reason) {
            EXPECT_STREQ(reason.what(), row.reason) << row.name;
        }
    }
}

TEST(EmptySection, OfABinaryFileIsRead)
{
    mesh m = test::two_elements(EL_TETRA4);
    m.blocks.clear();
    m.cell_fields.clear();
    m.point_fields.clear();
    resize(m.pos, 3, 0);
    m.node_numbers = numbering();
    for (const char* format : {"gmsh", "gmsh22", "vtk", "vtu"}) {
        const mesh is = test::read_bytes(test::written(m, format));
        EXPECT_EQ(is.element_count(), 0u) << format;
        EXPECT_EQ(is.pos.cols, 0u) << format;
    }
}

TEST(WrongFile, ThatIsPackedIsNamedSo)
{
    const std::pair<std::string, const char*> table[] = {
        {"\x1F\x8B\x08", "is packed by gzip: unpack it first"},
        {"BZh9", "is packed by bzip2: unpack it first"},
        {std::string("\xFD\x37zXZ\0", 6), "is packed by xz: unpack it first"},
        {"PK\x03\x04", "is packed by zip: unpack it first"},
    };
    for (const auto& [bytes, reason] : table) {
        try {
            input_format(source::of_bytes(bytes, "part.msh"), {});
            ADD_FAILURE() << reason;
        } catch (const unreadable& told) {
            EXPECT_STREQ(told.what(), reason);
        }
    }
}

TEST(WrongFile, WithZeroBytesEnds)
{
    for (const char* format : {"vtk", "vtu", "gmsh", "medit", "obj", "stl"}) {
        const sample s{format, format, {}};
        std::uint64_t elements = 0;
        reads(s, std::string(1000, '\0'), elements);
        reads(s, "v \0 0 0\n" + std::string(10, '\0') + "solid", elements);
    }
}

}  // namespace
