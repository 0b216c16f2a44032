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

// "line 7: ..." or "byte 312: ...".
bool names_a_place(const std::string& reason)
{
    if (!reason.starts_with("line ") && !reason.starts_with("byte ")) return false;
    const std::size_t end = reason.find_first_not_of("0123456789", 5);
    return end > 5 && end != reason.npos && reason.compare(end, 2, ": ") == 0;
}

// Whether the reader takes the bytes; whatever it throws must be a reason with a place or a whole file.
bool reads(const sample& s, const std::string& bytes, std::uint64_t& elements)
{
    try {
        const mesh m = test::read_bytes_as(bytes, s.format);
        elements = m.faults.empty() ? m.element_count() : 0;
        return true;
    } catch (const unreadable& reason) {
        EXPECT_TRUE(s.format == "stl" || names_a_place(reason.what())) << s.name << ": " << reason.what();
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
            EXPECT_TRUE(names_a_place(reason.what())) << s.name << ": " << reason.what();
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

const std::string vtu_head = "<VTKFile type=\"UnstructuredGrid\" version=\"1.0\"><UnstructuredGrid>";
const std::string vtu_tail = "</UnstructuredGrid></VTKFile>";
const std::string one_point =
    "<Piece NumberOfPoints=\"1\" NumberOfCells=\"0\"><Points><DataArray type=\"Float64\" NumberOfComponents=\"3\" "
    "format=\"ascii\">0 0 0</DataArray></Points>";
const std::string inline_points =
    "<Points><DataArray type=\"Float64\" NumberOfComponents=\"3\" Name=\"Points\" format=\"binary\">GAAAAA*A"
    "</DataArray></Points></Piece>";

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
         "line 10: cell 0 is of type 42 (polyhedron), which is not supported"},
        {"triangle of one node", "vtk", vtk_head + "POINTS 1 double\n0 0 0\nCELLS 1 2\n1 0\nCELL_TYPES 1\n5\n",
         "line 10: cell 0 of type 5 has 1 node"},
        {"cells without types", "vtk", vtk_head + "POINTS 1 double\n0 0 0\nCELLS 1 2\n1 0\nCELL_TYPES 0\n",
         "line 10: 1 cell and 0 types"},
        {"offsets of more nodes than there are", "vtk",
         vtk_head + "POINTS 1 double\n0 0 0\nCELLS 2 1\nOFFSETS vtktypeint64\n0 3\nCONNECTIVITY vtktypeint64\n0\n"
                    "CELL_TYPES 1\n5\n",
         "line 13: the cells want 3 nodes and have 1"},
        {"strip of two nodes", "vtk",
         "# vtk DataFile Version 3.0\nx\nASCII\nDATASET POLYDATA\nPOINTS 1 double\n0 0 0\nLINES 1 3\n2 0 0\n"
         "TRIANGLE_STRIPS 1 3\n2 0 0\n",
         "line 10: cell 1 of type 6 has 2 nodes"},
        {"section in bytes", "vtk",
         "# vtk DataFile Version 3.0\nx\nBINARY\nDATASET UNSTRUCTURED_GRID\nPOINTS 0 double\nCOLOURS 1\n",
         "byte 85: 'COLOURS' is no section of a VTK file"},
        {"corners of more nodes, before further ones", "vtk",
         "# vtk DataFile Version 2.0\nGenerated by ZEB Tessolv(TM).\nASCII\nDATASET UNSTRUCTURED_GRID\nPOINTS 1 "
         "double\n"
         "0 0 0\nCELLS 2 19\n10 0 0 0 0 0 0 0 0 0 0\n7 0 0 0 0 0 0 0\nCELL_TYPES 2\n12\n2\n",
         "line 11: cell 0 of type 12 has 10 nodes"},
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
        {"quadrangles of second order", "medit",
         "MeshVersionFormatted 2\nDimension 2\nVertices 1\n0 0 0\nQuadrilaterals\n1\n1 1 1 1 1 1 1 1 1 5\nEnd\n",
         "line 7: Quadrilaterals of 9 nodes are not supported, of 4 they are"},
        {"numbers too many", "medit",
         "MeshVersionFormatted 2\nDimension 2\nVertices 1\n0 0 0\nEdges\n2\n1 1 5\n1 1 5\n7 # rest\nEnd\n",
         "line 9: more numbers than the section should have"},
        {"vertices too many", "medit", "MeshVersionFormatted 2\nDimension 2\nVertices 1\n0 0 0\n0 0 0\nEnd\n",
         "line 5: more numbers than the section should have"},
        {"hexahedra of second order", "medit",
         "MeshVersionFormatted 2\nDimension 3\nVertices 1\n0 0 0 0\nHexahedraQ2\n1\n",
         "line 5: hexahedra of 27 nodes (section HexahedraQ2) are not supported in MEDIT files"},
        {"dimension", "medit", "MeshVersionFormatted 2\nDimension 7\nEnd\n", "line 2: a dimension of 7"},
        {"short node", "obj", "v 0 0 0\nv 1 0\nf 1 2 1\n", "line 2: the line ends where a coordinate should be"},
        {"corner", "obj", "v 0 0 0\nf 1 1 x\n", "line 2: 'x' is no corner of an element"},
        {"two corners", "obj", "v 0 0 0\nf 1 1\n", "line 2: a face of 2 corners"},
        {"lonely solution", "sol", "MeshVersionFormatted 2\nDimension 3\nSolAtVertices 0\nEnd\n",
         "holds values for a mesh and no mesh: 'convert', among others, takes it by --sol beside its mesh"},
        {"image data", "vtu", "<VTKFile type=\"ImageData\"><ImageData/></VTKFile>",
         "byte 0: a VTK file of type 'ImageData', which holds no mesh of elements"},
        {"compressor", "vtu",
         "<VTKFile type=\"UnstructuredGrid\" compressor=\"vtkLZ4DataCompressor\"><UnstructuredGrid/></VTKFile>",
         "byte 0: compression by vtkLZ4DataCompressor, which is not supported"},
        {"no count of points", "vtu", vtu_head + "\n<!-- a -->\n<Piece NumberOfCells=\"0\"/>" + vtu_tail,
         "byte 77: a Piece without its NumberOfPoints"},
        {"unclosed tag", "vtu", vtu_head + "<DataArray Name=\"a\">0</DataArray><a></b>" + vtu_tail,
         "byte 103: the XML cannot be read: Start-end tags mismatch"},
        {"field in one piece", "vtu",
         vtu_head + one_point + "</Piece>" + one_point +
             "<PointData><DataArray type=\"Int8\" Name=\"a\" format=\"ascii\">1</DataArray></PointData></Piece>" +
             vtu_tail,
         "byte 368: field 'a' is not the same in every piece"},
        {"bad letter", "vtu", vtu_head + "<Piece NumberOfPoints=\"1\" NumberOfCells=\"0\">" + inline_points + vtu_tail,
         "byte 202: what is no base64 text (array 'Points')"},
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

// A zlib block that was hit, in an array that stands behind others.
TEST(WrongFile, NamesTheArrayAndTheByteOfCompressedData)
{
    std::string bytes = test::written(test::mesh_of({EL_TETRA4}), "vtu");
    const std::size_t at = bytes.find("<AppendedData");
    const std::size_t name = bytes.find("Name=\"speed of it\"");
    ASSERT_NE(name, bytes.npos);
    const std::size_t offset = std::stoul(bytes.substr(bytes.find("offset=\"", name) + 8));
    const std::size_t first = bytes.find('_', at) + 1 + offset;
    for (std::size_t i = first + 40; i < first + 60; ++i) bytes[i] = '\x55';
    try {
        test::read_bytes_as(bytes, "vtu");
        ADD_FAILURE();
    } catch (const unreadable& reason) {
        const std::string text = reason.what();
        EXPECT_NE(text.find(": compressed data that cannot be read (array 'speed of it')"), text.npos) << text;
        ASSERT_TRUE(text.starts_with("byte ")) << text;
        EXPECT_GT(std::stoul(text.substr(5)), first) << text;
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
