#include <gtest/gtest.h>

#include <array>
#include <filesystem>

#include <tessolv/tessolv.h>

#include "io/writer_samples.h"
#include "support/golden.h"
#include "support/matrices.h"
#include "support/temporary_file.h"

using namespace zeb::tessolv;
using namespace test;

namespace {

// What the stream form makes of its arguments.
std::string body(const dense2D<double>& pos, unsigned count, const std::vector<unsigned>& cells,
                 const std::vector<unsigned>& types)
{
    const temporary_file file;
    std::FILE* f = std::fopen(file.name(), "w");
    EXPECT_EQ(vtk_output(f, pos, count, indices(cells), indices(types)), 0);
    EXPECT_EQ(std::fclose(f), 0);
    const std::string bytes = file.bytes();
    return bytes.substr(bytes.find("\nCELLS "));
}

TEST(VtkOutputToAStream, WritesTheWholeFileAndLeavesTheStreamOpen)
{
    const temporary_file file;
    std::FILE* f = std::fopen(file.name(), "w");
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(vtk_output(f, dense2D<double>(3, 0), 0, indices({}), indices({})), 0);
    EXPECT_EQ(std::fputs("and more\n", f) >= 0, true);
    EXPECT_EQ(std::fclose(f), 0);
    EXPECT_EQ(file.bytes(), golden("nothing.vtk") + "and more\n");
}

TEST(VtkOutputToAStream, AppendsToWhatTheHostHasWritten)
{
    const temporary_file file;
    std::FILE* f = std::fopen(file.name(), "w");
    ASSERT_NE(f, nullptr);
    std::fputs("before\n", f);
    EXPECT_EQ(vtk_output(f, dense2D<double>(2, 0), 0, indices({}), indices({})), 0);
    EXPECT_EQ(std::fclose(f), 0);
    EXPECT_EQ(file.bytes(), "before\n" + golden("nothing.vtk"));
}

TEST(VtkOutputToAStream, TakesTheCountsOfTheHostAsTheyAre)
{
    EXPECT_EQ(body(cube_and_one, 1, {2, 7, 8, 1, 5}, {3, 1, 1}), "\nCELLS 1 5\n2 7 8 \n\nCELL_TYPES 3\n3\n1\n1\n");
    EXPECT_EQ(body(cube_and_one, 2, {0, 0, 1, 5}, {}), "\nCELLS 2 4\n0 \n0 \n\nCELL_TYPES 0\n");
}

TEST(VtkOutputToAStream, StopsAtTheEndOfTheCells)
{
    EXPECT_EQ(body(cube_and_one, 5, {2, 7, 8}, {3}), "\nCELLS 5 3\n2 7 8 \n\nCELL_TYPES 1\n3\n");
    EXPECT_EQ(body(cube_and_one, 2, {2, 7, 8, 4, 1}, {}), "\nCELLS 2 5\n2 7 8 \n4 1 \n\nCELL_TYPES 0\n");
    EXPECT_EQ(body(cube_and_one, 1, {N}, {}), "\nCELLS 1 1\n-1 \n\nCELL_TYPES 0\n");
    EXPECT_EQ(body(cube_and_one, 0xFFFFFFFF, {}, {}), "\nCELLS -1 0\n\nCELL_TYPES 0\n");
}

TEST(VtkOutputToAStream, WritesLongCells)
{
    std::vector<unsigned> cells = {100000};
    std::string line = "100000 ";
    for (unsigned i = 0; i < 100000; ++i) {
        cells.push_back(0x7FFFFFFF + i % 2);
        line += i % 2 == 0 ? "2147483647 " : "-2147483648 ";
    }
    EXPECT_EQ(body(cube_and_one, 1, cells, {7}), "\nCELLS 1 100001\n" + line + "\n\nCELL_TYPES 1\n7\n");
}

TEST(VtkOutputToAStream, RefusesANullStreamBeforeTheCoordinates)
{
    std::FILE* const none = nullptr;
    EXPECT_EQ(vtk_output(none, cube_and_one, 0, indices({}), indices({})), -1);
    EXPECT_EQ(vtk_output(none, dense2D<double>(), 0, indices({}), indices({})), -1);
}

TEST(VtkOutputToAStream, WritesNothingWhenCoordinatesAreRefused)
{
    for (const std::uint64_t rows : {0, 1, 4}) {
        const temporary_file file;
        std::FILE* f = std::fopen(file.name(), "w");
        ASSERT_NE(f, nullptr);
        EXPECT_EQ(vtk_output(f, dense2D<double>(rows, 3, 0.0), 0, indices({}), indices({})), -2);
        EXPECT_EQ(std::fclose(f), 0);
        EXPECT_EQ(file.bytes(), "");
    }
}

TEST(VtkOutputToAStream, ReportsAStreamThatTakesNoBytes)
{
    std::FILE* f = std::fopen("/dev/null", "r");
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(vtk_output(f, cube_and_one, 0, indices({}), indices({})), -1);
    std::fclose(f);
}

TEST(VtkOutputToAStream, ReportsAnErrorOfTheStreamButDoesNotFlush)
{
    std::FILE* small = std::fopen("/dev/full", "w");
    ASSERT_NE(small, nullptr);
    EXPECT_EQ(vtk_output(small, cube_and_one, 0, indices({}), indices({})), 0);
    EXPECT_NE(std::fclose(small), 0);

    std::FILE* large = std::fopen("/dev/full", "w");
    ASSERT_NE(large, nullptr);
    EXPECT_EQ(vtk_output(large, filled(3, 20000, 1.0), 0, indices({}), indices({})), -1);
    std::fclose(large);
}

TEST(VtkOutputToAStream, ReportsAnErrorFromBeforeTheCall)
{
    const temporary_file file;
    std::FILE* f = std::fopen(file.name(), "w");
    ASSERT_NE(f, nullptr);
    ASSERT_EQ(std::fgetc(f), EOF);  // a stream for writing alone cannot be read
    ASSERT_NE(std::ferror(f), 0);
    EXPECT_EQ(vtk_output(f, cube_and_one, 0, indices({}), indices({})), -1);
    std::clearerr(f);
    EXPECT_EQ(vtk_output(f, cube_and_one, 0, indices({}), indices({})), 0);
    std::fclose(f);
}

// The cells and their types in the file of one matrix.
std::string cells_of(const dense2D<unsigned>& connect, element_type type)
{
    const temporary_file file;
    EXPECT_EQ(vtk_output(file.name(), cube_and_one, connect, type), 0);
    return file.bytes().substr(file.bytes().find("\nCELLS "));
}

TEST(VtkOutput, SwapsTheLastTwoNodesOfATetrahedron)
{
    EXPECT_EQ(cells_of(columns({{8, 2, 5, 1}}), EL_TETRA4), "\nCELLS 1 5\n4 8 2 1 5 \n\nCELL_TYPES 1\n10\n");
}

TEST(VtkOutput, WritesATriangleOfSixNodesAsATriangleAndAPolyVertex)
{
    EXPECT_EQ(cells_of(columns({{0, 1, 2, 3, 4, 5}}), EL_TRIA6),
              "\nCELLS 2 8\n3 0 1 2 \n3 3 4 5 \n\nCELL_TYPES 2\n5\n2\n");
}

TEST(VtkOutput, WritesEveryKindAndSplitsMixedMatrices)
{
    const std::array<dense2D<unsigned>, 4> matrices = {
        columns({{0, 1, 2, 4}, {8, 1, 2, 6}}), columns({{0, 1, 2, 3, 4, 5}}), mixed_solids, columns({{0, 1, 8}})};
    const temporary_file file;
    EXPECT_EQ(vtk_output(file.name(), cube_and_one, matrices.data(), matrices.data() + matrices.size(),
                         types({EL_TETRA4, EL_TRIA6, EL_SOLID_MIX, EL_EDGE3})),
              0);
    EXPECT_EQ(file.bytes(), golden("kinds.vtk"));
}

TEST(VtkOutput, WritesAZeroThirdCoordinateInThePlane)
{
    const dense2D<double> pos = points({{0, 0}, {1, 0}, {1, 1}, {0, 1}, {2.5, 1.0 / 3.0}});
    const dense2D<unsigned> faces = columns({{0, 1, 2, 3}, {0, 1, 2, N}, {3, 2, 1, 0}, {1, 4, 2, N}});
    const temporary_file file;
    EXPECT_EQ(vtk_output(file.name(), as_padded_view(pos, 9.0), as_padded_view(faces, 9u), EL_FACE_MIX), 0);
    EXPECT_EQ(file.bytes(), golden("plane.vtk"));
}

TEST(VtkOutput, WritesThreeRowsOfAMixedSurfaceAsTriangles)
{
    const temporary_file mixed, pure;
    EXPECT_EQ(vtk_output(mixed.name(), cube_and_one, columns({{0, 1, 2}, {3, 4, 5}}), EL_FACE_MIX), 0);
    EXPECT_EQ(vtk_output(pure.name(), cube_and_one, columns({{0, 1, 2}, {3, 4, 5}}), EL_TRIA3), 0);
    EXPECT_NE(pure.bytes(), "");
    EXPECT_EQ(mixed.bytes(), pure.bytes());
}

TEST(VtkOutput, WritesSixRowsOfMixedSolidsAsTetrahedraAndWedges)
{
    const temporary_file mixed, pure;
    EXPECT_EQ(vtk_output(mixed.name(), cube_and_one, columns({{0, 1, 2, 3, 4, 5}, {0, 1, 2, 3, N, 5}}), EL_SOLID_MIX),
              0);
    EXPECT_EQ(vtk_output(pure.name(), cube_and_one, columns({{0, 1, 2, 3}}), columns({{0, 1, 2, 3, 4, 5}}), EL_TETRA4,
                         EL_WEDGE6),
              0);
    EXPECT_NE(pure.bytes(), "");
    EXPECT_EQ(mixed.bytes(), pure.bytes());
}

TEST(VtkOutput, WritesHeadersOfZeroForNoElements)
{
    const temporary_file no_matrices, empty_matrices;
    EXPECT_EQ(vtk_output(no_matrices.name(), dense2D<double>(3, 0), nullptr, nullptr, types({})), 0);
    EXPECT_EQ(no_matrices.bytes(), golden("nothing.vtk"));
    EXPECT_EQ(vtk_output(empty_matrices.name(), dense2D<double>(2, 0), dense2D<unsigned>(0, 7), dense2D<unsigned>(5, 0),
                         static_cast<element_type>(77), EL_PYRAMID5),
              0);
    EXPECT_EQ(empty_matrices.bytes(), golden("nothing.vtk"));
}

TEST(VtkOutput, LeavesAnEmptyFileWhenThereIsAPyramid)
{
    const temporary_file file("from before");
    EXPECT_EQ(vtk_output(file.name(), cube_and_one, columns({{0, 1, 2, 3, 4}}), EL_PYRAMID5), -2);
    EXPECT_TRUE(std::filesystem::exists(file.name()));
    EXPECT_EQ(file.bytes(), "");
}

TEST(VtkOutput, RefusesMixedSolidsWithPyramids)
{
    const temporary_file file;
    EXPECT_EQ(vtk_output(file.name(), cube_and_one, columns({{0, 1, 2, 3, 4, N, N, N}}), EL_SOLID_MIX), -3);
}

}  // namespace
