#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <limits>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <tessolv/tessolv.h>

#include "io/writer_samples.h"
#include "support/fault_pairs.h"
#include "support/golden.h"
#include "support/matrices.h"
#include "support/open_files.h"
#include "support/temporary_file.h"

using namespace zeb::tessolv;
using namespace test;

namespace {

const dense2D<double> plane = points({{0, 0}, {1, 0}, {1, 1}, {0, 1}, {2.5, 1.0 / 3.0}});

// The file behind its vertices.
std::string sections(const std::string& bytes)
{
    const std::size_t vertices = bytes.find("Vertices\n");
    return vertices == std::string::npos ? bytes : bytes.substr(bytes.find("\n\n", vertices) + 2);
}

std::string written_sections(const dense2D<unsigned>& connect, element_type type)
{
    const temporary_file file;
    EXPECT_EQ(medit_output(file.name(), cube_and_one, connect, type), 0);
    return sections(file.bytes());
}

TEST(MeditOutput, WritesSectionsByTypeAndSplitsMixedMatrices)
{
    const std::array<dense2D<unsigned>, 5> matrices = {columns({{0, 1, 2, 4}, {8, 1, 2, 6}}),
                                                       columns({{0, 1, 2, 3, 4, 5}}), mixed_solids,
                                                       columns({{0, 1, 8}}), columns({{0, 1, 2, 3, 4}})};
    const temporary_file file;
    EXPECT_EQ(medit_output(file.name(), cube_and_one, matrices.data(), matrices.data() + matrices.size(),
                           types({EL_TETRA4, EL_TRIA6, EL_SOLID_MIX, EL_EDGE3, EL_PYRAMID5})),
              0);
    EXPECT_EQ(file.bytes(), golden("kinds.mesh"));
}

TEST(MeditOutput, CountsNodesFromOneAndEndsALineWithTheReference)
{
    EXPECT_EQ(written_sections(columns({{0, 1, 2}}), EL_TRIA3), "Triangles\n1\n1 2 3 0 \n\nEnd\n");
}

TEST(MeditOutput, WritesOnlyTheCornersOfQuadraticElements)
{
    EXPECT_EQ(written_sections(columns({{0, 1, 2, 3, 4, 5}}), EL_TRIA6), "Triangles\n1\n1 2 3 0 \n\nEnd\n");
    EXPECT_EQ(written_sections(columns({{0, 1, 2, 3, 4, 5, 6, 7, 8}}), EL_QUAD9),
              "Quadrilaterals\n1\n1 2 3 4 0 \n\nEnd\n");
}

TEST(MeditOutput, OfWedgesPyramidsAndNodesHasVerticesOnly)
{
    const temporary_file file;
    EXPECT_EQ(medit_output(file.name(), points({{-1.5}, {1e100}}), columns({{0, 1, 2, 3, 4, 5}}), EL_WEDGE6), 0);
    EXPECT_EQ(file.bytes(), golden("line.mesh"));
    EXPECT_EQ(written_sections(columns({{0, 1, 2, 3, 4, 5}}), EL_WEDGE6), "End\n");
    EXPECT_EQ(written_sections(columns({{0, 1, 2, 3, 4}}), EL_PYRAMID5), "End\n");
    EXPECT_EQ(written_sections(columns({{0}}), EL_NODE), "End\n");
    EXPECT_EQ(written_sections(columns({{0, 1, 2, 3, 4, 5, N, N}}), EL_SOLID_MIX), "End\n");
}

TEST(MeditOutput, GivesEveryTypeASectionOfItsOwnInTheOrderOfTheTypes)
{
    const std::array<dense2D<unsigned>, 6> matrices = {
        columns({{0, 1, 2, 3, 4, 5}}), columns({{0, 1, 2, 3}}), columns({{0, 1, 2}}),
        columns({{0, 1, 2}}),          columns({{0, 1}}),       columns({{6, 7, 8}, {3, 4, 5}})};
    const temporary_file file;
    ASSERT_EQ(medit_output(file.name(), cube_and_one, matrices.data(), matrices.data() + matrices.size(),
                           types({EL_TRIA6, EL_QUAD4, EL_TRIA3, EL_EDGE3, EL_EDGE2, EL_TRIA3})),
              0);
    EXPECT_EQ(sections(file.bytes()),
              "Edges\n1\n1 2 4 \n\n"
              "Edges\n1\n1 2 3 \n\n"
              "Triangles\n3\n1 2 3 2 \n7 8 9 5 \n4 5 6 5 \n\n"
              "Quadrilaterals\n1\n1 2 3 4 1 \n\n"
              "Triangles\n1\n1 2 3 0 \n\n"
              "End\n");
}

TEST(MeditOutput, GivesTwoMatricesTheReferencesZeroAndOne)
{
    const temporary_file file;
    ASSERT_EQ(medit_output(file.name(), cube_and_one, columns({{0, 1}}), columns({{2, 3}}), EL_EDGE2, EL_EDGE2), 0);
    EXPECT_EQ(sections(file.bytes()), "Edges\n2\n1 2 0 \n3 4 1 \n\nEnd\n");
}

TEST(MeditOutput, CountsEmptyMatricesInReferences)
{
    const temporary_file file;
    ASSERT_EQ(medit_output(file.name(), cube_and_one, dense2D<unsigned>(0, 3), columns({{2, 3}}),
                           static_cast<element_type>(-5), EL_EDGE2),
              0);
    EXPECT_EQ(sections(file.bytes()), "Edges\n1\n3 4 1 \n\nEnd\n");
}

TEST(MeditOutput, AcceptsCoordinatesOfOneRow)
{
    const temporary_file file;
    EXPECT_EQ(medit_output(file.name(), points({{-1.5}, {1e100}}), nullptr, nullptr, types({})), 0);
    EXPECT_EQ(file.bytes(), golden("line.mesh"));
}

TEST(MeditOutput, DoesNotCompareIndicesWithTheNumberOfNodes)
{
    EXPECT_EQ(written_sections(columns({{100, 0x7FFFFFFE}, {0x7FFFFFFF, 0xFFFFFFFE}}), EL_EDGE2),
              "Edges\n2\n101 2147483647 0 \n-2147483648 -1 0 \n\nEnd\n");
}

TEST(MeditOutputByReference, OrdersElementsByReferenceThenByColumn)
{
    const dense2D<unsigned> faces = columns({{0, 1, 2, N}, {1, 4, 2, N}, {3, 4, 0, N}, {3, 2, 1, 0}});
    const temporary_file file;
    EXPECT_EQ(medit_output(file.name(), as_padded_view(plane, 9.0), as_padded_view(faces, 9u), EL_FACE_MIX,
                           indices({40, 2, N, 2})),
              0);
    EXPECT_EQ(file.bytes(), golden("references.mesh"));

    const temporary_file edges;
    EXPECT_EQ(medit_output(edges.name(), plane, columns({{0, 1}, {1, 2}, {2, 3}, {3, 0}, {1, 3}}), EL_EDGE2,
                           indices({5, 0, 5, 0, 3})),
              0);
    EXPECT_EQ(sections(edges.bytes()), "Edges\n5\n2 3 0 \n4 1 0 \n2 4 3 \n1 2 5 \n3 4 5 \n\nEnd\n");
}

TEST(MeditOutputByReference, WritesNoFileForAnEmptyConnectivity)
{
    const temporary_file file;
    for (const dense2D<unsigned>& nothing : {dense2D<unsigned>(), dense2D<unsigned>(0, 4), dense2D<unsigned>(3, 0)})
        EXPECT_EQ(medit_output(file.name(), dense2D<double>(), nothing, EL_NONE, indices({1, 2, 3})), 0);
    EXPECT_EQ(medit_output(nullptr, plane, dense2D<unsigned>(), EL_TRIA3, indices({})), 0);
    EXPECT_FALSE(std::filesystem::exists(file.name()));
}

TEST(MeditOutputByReference, WritesVerticesOnlyWhenNoElementHasAReference)
{
    const temporary_file file;
    EXPECT_EQ(medit_output(file.name(), plane, columns({{0, 1, 2}, {1, 2, 3}}), EL_TRIA3, indices({N, N})), 0);
    EXPECT_EQ(sections(file.bytes()), "End\n");
    EXPECT_NE(file.bytes().find("Vertices\n5\n"), std::string::npos);
}

TEST(MeditOutputByReference, DoesNotLookAtElementsWithoutAReference)
{
    const temporary_file file;
    EXPECT_EQ(medit_output(file.name(), plane, columns({{0, N, 2}, {1, 2, 3}}), EL_TRIA3, indices({N, 7})), 0);
    EXPECT_EQ(sections(file.bytes()), "Triangles\n1\n2 3 4 7 \n\nEnd\n");
    EXPECT_EQ(medit_output(file.name(), plane, columns({{0, N, 2}, {1, 2, 3}}), EL_TRIA3, indices({7, N})), -3);
    EXPECT_EQ(medit_output(file.name(), plane, columns({{0, N, 2}, {1, 2, 3}}), EL_TRIA3, indices({7, 7})), -3);
    EXPECT_EQ(medit_output(file.name(), plane, columns({{0, 1}}), static_cast<element_type>(99), indices({N})), 0);
    EXPECT_EQ(sections(file.bytes()), "End\n");
}

// The greatest memory in KiB that a process of its own had while it wrote 64 edges of given references.
long memory_to_write(const dense1D<unsigned>& refs)
{
    const dense2D<unsigned> edges = filled(2, 64, 1u);
    const pid_t child = fork();
    if (child == 0) _exit(medit_output("/dev/null", plane, edges, EL_EDGE2, refs) == 0 ? 0 : 1);
    int status = -1;
    rusage usage{};
    EXPECT_EQ(wait4(child, &status, 0, &usage), child);
    EXPECT_EQ(status, 0);
    return usage.ru_maxrss;
}

TEST(MeditOutputByReference, NeedsNoMoreMemoryForLargeReferences)
{
    dense1D<unsigned> near(64), far(64);
    for (unsigned j = 0; j < 64; ++j) {
        near[j] = 63 - j;
        far[j] = (63 - j) << 18;  // 2 MiB of a table of 8 bytes for each reference lie between two of them
    }
    EXPECT_LT(memory_to_write(far), memory_to_write(near) + 32 * 1024);
}

TEST(MeditOutputByReference, OrdersLargeReferencesLikeSmallOnes)
{
    const temporary_file file;
    ASSERT_EQ(medit_output(file.name(), plane, columns({{0, 1}, {1, 2}, {2, 3}, {3, 0}, {1, 3}}), EL_EDGE2,
                           indices({200000000, 0, 200000000, N, 7})),
              0);
    EXPECT_EQ(sections(file.bytes()), "Edges\n4\n2 3 0 \n2 4 7 \n1 2 200000000 \n3 4 200000000 \n\nEnd\n");
}

struct referenced_call {
    temporary_file file;
    const char* name = file.name();
    dense2D<double> pos = plane;
    dense2D<unsigned> connect = columns({{0, 1, 2}, {2, 3, 4}});
    dense1D<unsigned> refs = indices({4, 0});
    element_type type = EL_TRIA3;
};

TEST(MeditOutputByReference, FindsFaultsInTheirOrderAndTouchesNoFile)
{
    const fault_table<referenced_call> table{
        {"no elements", 0, [](referenced_call& call) { call.connect = {}; }},
        {"no columns", 0, [](referenced_call& call) { call.connect = filled(3, 0, 0u); }},
        {"no rows", 0, [](referenced_call& call) { call.connect = filled(0, 2, 0u); }},
        {"no references", -5, [](referenced_call& call) { call.refs.resize(0); }},
        {"a reference too many", -5, [](referenced_call& call) { call.refs.resize(3, 1u); }},
        {"no coordinates", -2, [](referenced_call& call) { call.pos = {}; }},
        {"four rows", -2, [](referenced_call& call) { call.pos = filled(4, 5, 0.0); }},
        {"wrong rows", -3,
         [](referenced_call& call) {
             call.connect = columns({{0, 1}, {2, 3}});
         }},
        {"none in a pure matrix", -3, [](referenced_call& call) { call.connect(1, 1) = N; }},
        {"type 21", -3, [](referenced_call& call) { call.type = static_cast<element_type>(21); }},
        {"no file name", -1, [](referenced_call& call) { call.name = nullptr; }},
        {"missing directory", -1, [](referenced_call& call) { call.name = "/no such directory/file"; }},
    };
    expect_codes_in_order(table, [](const referenced_call& call) {
        const int code = medit_output(call.name, call.pos, call.connect, call.type, call.refs);
        EXPECT_FALSE(std::filesystem::exists(call.file.name()));
        return code;
    });
    const referenced_call good;
    EXPECT_EQ(medit_output(good.name, good.pos, good.connect, good.type, good.refs), 0);
    EXPECT_EQ(medit_output("/dev/full", good.pos, good.connect, good.type, good.refs), -1);
}

TEST(MeditTensor, WritesOneLineForEachNode)
{
    const dense2D<float> M =
        matrix_of<float>({{1.0f, 0.0f, 4.0f, -0.25f, 0.0f, 0.01f}, {16777216.0f, 1.0f, 2.0f, 3.0f, 4.0f, 5.0f}});
    const temporary_file file;
    EXPECT_EQ(medit_tensor(file.name(), as_padded_view(M, 7.0f)), 0);
    EXPECT_EQ(file.bytes(), golden("space.sol"));
}

TEST(MeditTensor, WritesWhatIsNotANumber)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const dense2D<float> M =
        matrix_of<float>({{1.0f, 0.0f, 0.1f}, {std::numeric_limits<float>::quiet_NaN(), infinity, -infinity}});
    const temporary_file file;
    EXPECT_EQ(medit_tensor(file.name(), M), 0);
    EXPECT_EQ(file.bytes(), golden("plane.sol"));
}

TEST(MeditTensor, WritesAHeaderForNoNodes)
{
    const temporary_file file;
    EXPECT_EQ(medit_tensor(file.name(), dense2D<float>(3, 0)), 0);
    EXPECT_EQ(file.bytes(), "2 3 0 2\n");
    EXPECT_EQ(medit_tensor(file.name(), dense2D<float>(6, 0)), 0);
    EXPECT_EQ(file.bytes(), "3 6 0 3\n");
}

TEST(MeditTensor, LeavesAnEmptyFileForOtherRows)
{
    for (const std::uint64_t rows : {0, 1, 2, 4, 5, 7}) {
        const temporary_file file("from before");
        EXPECT_EQ(medit_tensor(file.name(), dense2D<float>(rows, 2, 0.0f)), -2);
        EXPECT_TRUE(std::filesystem::exists(file.name()));
        EXPECT_EQ(file.bytes(), "");
    }
}

TEST(MeditTensor, ReportsAFileThatCannotBeWrittenBeforeTheRows)
{
    for (const char* name : {static_cast<const char*>(nullptr), "", "/", "/no such directory/file"}) {
        EXPECT_EQ(medit_tensor(name, dense2D<float>(3, 2, 0.0f)), -1);
        EXPECT_EQ(medit_tensor(name, dense2D<float>(4, 2, 0.0f)), -1);
    }
    EXPECT_EQ(medit_tensor("/dev/full", dense2D<float>(3, 2, 0.0f)), -1);
    EXPECT_EQ(medit_tensor("/dev/full", dense2D<float>(3, 20000, 0.0f)), -1);
}

TEST(MeditTensor, AndTheFormByReferenceCloseTheirFiles)
{
    const temporary_file file;
    const auto before = open_files();
    for (const char* name : {file.name(), "/dev/full"}) {
        medit_output(name, plane, columns({{0, 1, 2}}), EL_TRIA3, indices({3}));
        medit_tensor(name, filled(3, 2, 0.0f));
        medit_tensor(name, filled(4, 2, 0.0f));
    }
    EXPECT_EQ(open_files(), before);
}

}  // namespace
