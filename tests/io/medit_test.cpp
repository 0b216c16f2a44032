#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <limits>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <tessolv/tessolv.h>

#include "io/writer_faults.h"
#include "support/golden.h"
#include "support/matrices.h"
#include "support/temporary_file.h"

using namespace zeb::tessolv;
using namespace test;

namespace {

const dense2D<double> cube_and_one = points({{0, 0, 0},
                                             {1, 0, 0},
                                             {1, 1, 0},
                                             {0, 1, 0},
                                             {0, 0, 1},
                                             {1, 0, 1},
                                             {1, 1, 1},
                                             {0, 1, 1},
                                             {0.5, -0.25, 1234567.125}});
const dense2D<double> plane = points({{0, 0}, {1, 0}, {1, 1}, {0, 1}, {2.5, 1.0 / 3.0}});

using range_form = int (*)(const char*, const dense2D<double>&, const dense2D<unsigned>*, const dense2D<unsigned>*,
                           const dense1D<int>&);
constexpr range_form medit_range = medit_output;

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
    const std::array<dense2D<unsigned>, 5> matrices = {
        columns({{0, 1, 2, 4}, {8, 1, 2, 6}}), columns({{0, 1, 2, 3, 4, 5}}),
        columns(
            {{0, 1, 2, 3, 4, 5, 6, 7}, {0, 1, 3, 4, N, N, N, N}, {0, 1, 2, 4, 5, 6, N, N}, {1, 2, 3, 6, N, 7, 7, 7}}),
        columns({{0, 1, 8}}), columns({{0, 1, 2, 3, 4}})};
    const temporary_file file;
    EXPECT_EQ(medit_output(file.name(), cube_and_one, matrices.data(), matrices.data() + matrices.size(),
                           types({EL_TETRA4, EL_TRIA6, EL_SOLID_MIX, EL_EDGE3, EL_PYRAMID5})),
              0);
    EXPECT_EQ(file.bytes(), golden("kinds.mesh"));
}

TEST(MeditOutput, WritesCornersOnly)
{
    EXPECT_EQ(written_sections(columns({{0, 1, 2}}), EL_TRIA3), "Triangles\n1\n1 2 3 0 \n\nEnd\n");
    EXPECT_EQ(written_sections(columns({{0, 1, 2, 3, 4, 5}}), EL_TRIA6), "Triangles\n1\n1 2 3 0 \n\nEnd\n");
    EXPECT_EQ(written_sections(columns({{0, 1, 2, 3, 4, 5, 6, 7, 8}}), EL_QUAD9),
              "Quadrilaterals\n1\n1 2 3 4 0 \n\nEnd\n");
}

TEST(MeditOutput, LeavesOutKindsWithoutASection)
{
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

TEST(MeditOutput, FindsFaultsInTheirOrderAndTouchesNoFile)
{
    const std::vector<writer_fault> faults = {
        {"no coordinates", -2, points_of_no_rows},
        {"four rows", -2, points_of_four_rows},
        {"last before first", -4, last_before_first},
        {"too few types", -5, too_few_types},
        {"too many types", -5, too_many_types},
        {"wrong rows", -3, wrong_rows},
        {"none in a pure matrix", -3, none_in_a_pure_matrix},
        {"type 21", -3, type_beyond_the_last},
        {"type -1", -3, type_below_the_first},
        {"pyramid among solids", -3, pyramid_among_mixed_solids},
        {"no file name", -1, no_file_name},
        {"empty file name", -1, empty_file_name},
        {"directory", -1, a_directory},
        {"missing directory", -1, a_missing_directory},
    };
    expect_codes_in_order(medit_range, faults, [](const writer_call& call, int) {
        EXPECT_FALSE(std::filesystem::exists(call.file.name()));
    });
    EXPECT_EQ(writer_call().run(medit_range), 0);
}

TEST(MeditOutput, KeepsAnOlderFileWhenTheMeshIsRefused)
{
    const temporary_file file("from before");
    EXPECT_EQ(medit_output(file.name(), cube_and_one, columns({{0, 1}}), EL_TRIA3), -3);
    EXPECT_EQ(file.bytes(), "from before");
}

TEST(MeditOutput, ReportsAFullDisk)
{
    EXPECT_EQ(medit_output("/dev/full", cube_and_one, columns({{0, 1, 2}}), EL_TRIA3), -1);
    EXPECT_EQ(medit_output("/dev/full", filled(3, 20000, 1.0), columns({{0, 1, 2}}), EL_TRIA3), -1);
    EXPECT_EQ(medit_output("/dev/full", cube_and_one, columns({{0, 1, 2}}), EL_TRIA3, indices({4})), -1);
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

TEST(MeditOutputByReference, FindsFaultsInTheirOrder)
{
    const temporary_file file;
    const dense2D<double> no_points;
    const dense2D<unsigned> wrong = columns({{0, 1}});
    const dense2D<unsigned> right = columns({{0, 1, 2}});
    const dense1D<unsigned> refs = indices({4});
    const dense1D<unsigned> no_refs;
    const char* nowhere = "/no such directory/file";
    EXPECT_EQ(medit_output(nowhere, no_points, wrong, EL_TRIA3, no_refs), -5);
    EXPECT_EQ(medit_output(nowhere, no_points, wrong, EL_TRIA3, indices({4, 4})), -5);
    EXPECT_EQ(medit_output(nowhere, no_points, wrong, EL_TRIA3, refs), -2);
    EXPECT_EQ(medit_output(nowhere, filled(4, 5, 0.0), wrong, EL_TRIA3, refs), -2);
    EXPECT_EQ(medit_output(nowhere, plane, wrong, EL_TRIA3, refs), -3);
    EXPECT_EQ(medit_output(nowhere, plane, right, static_cast<element_type>(21), refs), -3);
    EXPECT_EQ(medit_output(nowhere, plane, right, EL_TRIA3, refs), -1);
    EXPECT_EQ(medit_output(nullptr, plane, right, EL_TRIA3, refs), -1);
    EXPECT_EQ(medit_output(file.name(), plane, right, EL_TRIA3, refs), 0);
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

TEST(MeditOutput, ClosesItsFilesOnEveryReturn)
{
    const auto open_files = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                             std::filesystem::directory_iterator());
    };
    const temporary_file file;
    const auto before = open_files();
    for (int round = 0; round < 3; ++round) {
        medit_output(file.name(), plane, columns({{0, 1, 2}}), EL_TRIA3);
        medit_output(file.name(), plane, columns({{0, 1, 2}}), EL_TRIA3, indices({3}));
        medit_output("/dev/full", plane, columns({{0, 1, 2}}), EL_TRIA3);
        medit_tensor(file.name(), dense2D<float>(3, 2, 0.0f));
        medit_tensor(file.name(), dense2D<float>(4, 2, 0.0f));
        medit_tensor("/dev/full", dense2D<float>(3, 2, 0.0f));
    }
    EXPECT_EQ(open_files(), before);
}

}  // namespace
