#include <gtest/gtest.h>

#include <array>
#include <filesystem>

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

using range_form = int (*)(const char*, const dense2D<double>&, const dense2D<unsigned>*, const dense2D<unsigned>*,
                           const dense1D<int>&);
constexpr range_form vtk_range = vtk_output;

struct streams {
    unsigned count = 0;
    dense1D<unsigned> cells, types;
};

int convert(const dense2D<unsigned>& connect, element_type type, streams& to)
{
    return vtk_convert(connect, type, to.count, to.cells, to.types);
}

dense2D<unsigned> counted_column(unsigned rows)
{
    dense2D<unsigned> m(rows, 1);
    for (unsigned i = 0; i < rows; ++i) m(i, 0) = 10 + i;
    return m;
}

struct converted_kind {
    const char* name;
    element_type type;
    unsigned rows;
    std::vector<unsigned> cells, types;
};

void PrintTo(const converted_kind& kind, std::ostream* out)
{
    *out << kind.name;
}

class ConvertedKind : public testing::TestWithParam<converted_kind> {};

TEST_P(ConvertedKind, BecomesACellOfItsCornersAndAPolyVertexOfTheRest)
{
    const converted_kind& kind = GetParam();
    streams made;
    ASSERT_EQ(convert(counted_column(kind.rows), kind.type, made), 0);
    EXPECT_EQ(made.count, kind.types.size());
    EXPECT_EQ(made.cells, indices(kind.cells));
    EXPECT_EQ(made.types, indices(kind.types));
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(VtkConvert, ConvertedKind, testing::Values(
    converted_kind{"edge2",   EL_EDGE2,    2, {2, 10, 11}, {3}},
    converted_kind{"edge3",   EL_EDGE3,    3, {2, 10, 11, 1, 12}, {3, 2}},
    converted_kind{"tria3",   EL_TRIA3,    3, {3, 10, 11, 12}, {5}},
    converted_kind{"tria6",   EL_TRIA6,    6, {3, 10, 11, 12, 3, 13, 14, 15}, {5, 2}},
    converted_kind{"quad4",   EL_QUAD4,    4, {4, 10, 11, 12, 13}, {9}},
    converted_kind{"quad8",   EL_QUAD8,    8, {4, 10, 11, 12, 13, 4, 14, 15, 16, 17}, {9, 2}},
    converted_kind{"quad9",   EL_QUAD9,    9, {4, 10, 11, 12, 13, 5, 14, 15, 16, 17, 18}, {9, 2}},
    converted_kind{"tetra4",  EL_TETRA4,   4, {4, 10, 11, 13, 12}, {10}},
    converted_kind{"tetra10", EL_TETRA10, 10, {4, 10, 11, 13, 12, 6, 14, 15, 16, 17, 18, 19}, {10, 2}},
    converted_kind{"wedge6",  EL_WEDGE6,   6, {6, 10, 11, 12, 13, 14, 15}, {13}},
    converted_kind{"wedge18", EL_WEDGE18, 18, {6, 10, 11, 12, 13, 14, 15, 12, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27}, {13, 2}},
    converted_kind{"hexa8",   EL_HEXA8,    8, {8, 10, 11, 12, 13, 14, 15, 16, 17}, {12}},
    converted_kind{"hexa20",  EL_HEXA20,  20, {8, 10, 11, 12, 13, 14, 15, 16, 17, 12, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29}, {12, 2}},
    converted_kind{"hexa27",  EL_HEXA27,  27, {8, 10, 11, 12, 13, 14, 15, 16, 17, 19, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36}, {12, 2}}),
    [](const auto& row) { return std::string(row.param.name); });
// clang-format on

struct refused_conversion {
    const char* name;
    dense2D<unsigned> connect;
    int type;
    int code;
};

void PrintTo(const refused_conversion& refused, std::ostream* out)
{
    *out << refused.name;
}

class RefusedConversion : public testing::TestWithParam<refused_conversion> {};

TEST_P(RefusedConversion, AppendsNothing)
{
    const auto& [name, connect, type, code] = GetParam();
    streams kept{7, indices({1, 5}), indices({3})};
    EXPECT_EQ(convert(connect, static_cast<element_type>(type), kept), code);
    EXPECT_EQ(kept.count, 7u);
    EXPECT_EQ(kept.cells, indices({1, 5}));
    EXPECT_EQ(kept.types, indices({3}));
}

// The type is looked at first, then the shape, then whether the type has a cell, then the rows of an empty matrix.
INSTANTIATE_TEST_SUITE_P(
    VtkConvert, RefusedConversion,
    testing::Values(refused_conversion{"none", columns({{0}}), EL_NONE, -2},
                    refused_conversion{"node", columns({{0}}), EL_NODE, -2},
                    refused_conversion{"node_of_wrong_rows", columns({{0, 1}}), EL_NODE, -2},
                    refused_conversion{"edge_mix", columns({{0, 1}}), EL_EDGE_MIX, -2},
                    refused_conversion{"below_the_first", columns({{0}}), -1, -2},
                    refused_conversion{"beyond_the_last", columns({{0}}), 21, -2},
                    refused_conversion{"far_beyond", dense2D<unsigned>(), 0x7FFFFFFF, -2},
                    refused_conversion{"wrong_rows", columns({{0, 1, 2}}), EL_TETRA4, -1},
                    refused_conversion{"none_in_a_column", columns({{0, 1, 2}, {0, N, 2}}), EL_TRIA3, -1},
                    refused_conversion{"pyramid", counted_column(5), EL_PYRAMID5, -2},
                    refused_conversion{"pyramid14", counted_column(14), EL_PYRAMID14, -2},
                    refused_conversion{"pyramid_of_wrong_rows", counted_column(4), EL_PYRAMID5, -1},
                    refused_conversion{"face_mix", columns({{0, 1, 2, N}}), EL_FACE_MIX, -2},
                    refused_conversion{"face_mix_of_wrong_rows", columns({{0, 1}}), EL_FACE_MIX, -1},
                    refused_conversion{"solid_mix", columns({{0, 1, 2, 3}}), EL_SOLID_MIX, -2},
                    refused_conversion{"empty_mix", dense2D<unsigned>(), EL_SOLID_MIX, -2},
                    refused_conversion{"empty_pyramid", dense2D<unsigned>(5, 0), EL_PYRAMID5, -2},
                    refused_conversion{"empty", dense2D<unsigned>(), EL_TRIA3, -1},
                    refused_conversion{"no_rows", dense2D<unsigned>(0, 5), EL_TRIA3, -1},
                    refused_conversion{"too_few_rows_and_no_columns", dense2D<unsigned>(2, 0), EL_TRIA3, -1}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(VtkConvert, AppendsToWhatIsThere)
{
    streams made{7, indices({1, 5}), indices({2})};
    ASSERT_EQ(convert(columns({{1, 2, 3}, {4, 5, 6}}), EL_TRIA3, made), 0);
    EXPECT_EQ(made.count, 9u);
    EXPECT_EQ(made.cells, indices({1, 5, 3, 1, 2, 3, 3, 4, 5, 6}));
    EXPECT_EQ(made.types, indices({2, 5, 5}));
}

TEST(VtkConvert, AppendsNothingForAMatrixOfNoColumns)
{
    streams made{7, indices({1, 5}), indices({2})};
    EXPECT_EQ(convert(dense2D<unsigned>(3, 0), EL_TRIA3, made), 0);
    EXPECT_EQ(convert(dense2D<unsigned>(100, 0), EL_TETRA10, made), 0);
    EXPECT_EQ(made.count, 7u);
    EXPECT_EQ(made.cells, indices({1, 5}));
    EXPECT_EQ(made.types, indices({2}));
}

TEST(VtkConvert, DoesNotCompareIndicesWithAnything)
{
    streams made;
    EXPECT_EQ(convert(columns({{0, 0xFFFFFFFE}}), EL_EDGE2, made), 0);
    EXPECT_EQ(made.cells, indices({2, 0, 0xFFFFFFFE}));
}

TEST(VtkConvert, ReadsViews)
{
    streams made;
    EXPECT_EQ(convert(as_padded_view(columns({{1, 2, 3, 4}, {5, 6, 7, 8}}), 99u), EL_TETRA4, made), 0);
    EXPECT_EQ(made.cells, indices({4, 1, 2, 4, 3, 4, 5, 6, 8, 7}));
}

TEST(VtkConvert, ReadsTheElementsOnEntryWhenAStreamIsAViewOfThem)
{
    const dense2D<unsigned> connect = columns({{1, 2, 3}, {4, 5, 6}});
    dense1D<unsigned> cells = connect.col(0);
    dense1D<unsigned> types = connect.col(1);
    unsigned count = 0;
    ASSERT_EQ(vtk_convert(connect, EL_TRIA3, count, cells, types), 0);
    EXPECT_EQ(connect, columns({{1, 2, 3}, {4, 5, 6}}));
    EXPECT_EQ(cells, indices({1, 2, 3, 3, 1, 2, 3, 3, 4, 5, 6}));
    EXPECT_EQ(types, indices({4, 5, 6, 5, 5}));
}

TEST(VtkConvert, KeepsTwoStreamsOfOneBufferApart)
{
    dense1D<unsigned> cells = indices({8});
    dense1D<unsigned> types;
    types.shallow_copy(cells);
    dense1D<unsigned> third;
    third.shallow_copy(cells);
    unsigned count = 0;
    ASSERT_EQ(vtk_convert(columns({{1, 2, 3}}), EL_TRIA3, count, cells, types), 0);
    EXPECT_EQ(cells, indices({8, 3, 1, 2, 3}));
    EXPECT_EQ(types, indices({8, 5}));
    EXPECT_EQ(third, indices({8}));
}

TEST(VtkConvert, InterleavesBothStreamsInOneList)
{
    dense1D<unsigned> list = indices({8});
    unsigned count = 0;
    ASSERT_EQ(vtk_convert(columns({{1, 2, 3, 4, 5, 6}}), EL_TRIA6, count, list, list), 0);
    EXPECT_EQ(list, indices({8, 5, 3, 1, 2, 3, 2, 3, 4, 5, 6}));
    EXPECT_EQ(count, 2u);
}

TEST(VtkConvert, LeavesTheEndOfALargerListAloneWhenAStreamIsItsBeginning)
{
    dense1D<unsigned> whole = indices({1, 2, 3, 4, 5, 6, 7, 8, 9});
    dense1D<unsigned> cells = whole.sub_vector(0, 2);
    dense1D<unsigned> types;
    unsigned count = 0;
    ASSERT_EQ(vtk_convert(columns({{7, 7}}), EL_EDGE2, count, cells, types), 0);
    EXPECT_EQ(cells, indices({1, 2, 2, 7, 7}));
    EXPECT_EQ(whole, indices({1, 2, 3, 4, 5, 6, 7, 8, 9}));
}

TEST(VtkConvert, CountsOnFromTheLargestNumber)
{
    streams made;
    made.count = 0xFFFFFFFF;
    ASSERT_EQ(convert(columns({{1, 2, 3}}), EL_TRIA3, made), 0);
    EXPECT_EQ(made.count, 0u);
}

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

TEST(VtkOutput, WritesEveryKindAndSplitsMixedMatrices)
{
    const std::array<dense2D<unsigned>, 4> matrices = {
        columns({{0, 1, 2, 4}, {8, 1, 2, 6}}), columns({{0, 1, 2, 3, 4, 5}}),
        columns(
            {{0, 1, 2, 3, 4, 5, 6, 7}, {0, 1, 3, 4, N, N, N, N}, {0, 1, 2, 4, 5, 6, N, N}, {1, 2, 3, 6, N, 7, 7, 7}}),
        columns({{0, 1, 8}})};
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

TEST(VtkOutput, FindsFaultsInTheirOrderAndLeavesAnEmptyFile)
{
    const std::vector<writer_fault> faults = {
        {"no file name", -1, no_file_name},
        {"empty file name", -1, empty_file_name},
        {"directory", -1, a_directory},
        {"missing directory", -1, a_missing_directory},
        {"no coordinates", -2, points_of_no_rows},
        {"four rows", -2, points_of_four_rows},
        {"one row", -2, [](writer_call& call) { call.pos = filled(1, 5, 1.0); }},
        {"last before first", -4, last_before_first},
        {"too few types", -5, too_few_types},
        {"too many types", -5, too_many_types},
        {"wrong rows", -3, wrong_rows},
        {"none in a pure matrix", -3, none_in_a_pure_matrix},
        {"type 21", -3, type_beyond_the_last},
        {"type -1", -3, type_below_the_first},
        {"pyramid among solids", -3, pyramid_among_mixed_solids},
        {"index of a node that is not there", -3, [](writer_call& call) { call.matrices[1](2, 0) = 5; }},
        {"node elements", -2,
         [](writer_call& call) {
             call.matrices.push_back(columns({{0}}));
             call.types.resize(call.types.size + 1, EL_NODE);
         }},
    };
    expect_codes_in_order(vtk_range, faults, [](const writer_call& call, int code) {
        EXPECT_EQ(std::filesystem::exists(call.file.name()), code != -1);
        EXPECT_EQ(call.file.bytes(), "");
    });
    EXPECT_EQ(writer_call().run(vtk_range), 0);
}

TEST(VtkOutput, ReportsAFullDisk)
{
    EXPECT_EQ(vtk_output("/dev/full", cube_and_one, columns({{0, 1, 2}}), EL_TRIA3), -1);
    EXPECT_EQ(vtk_output("/dev/full", filled(3, 20000, 1.0), columns({{0, 1, 2}}), EL_TRIA3), -1);
}

TEST(VtkOutput, ClosesItsFileOnEveryReturn)
{
    const auto open_files = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                             std::filesystem::directory_iterator());
    };
    const temporary_file file;
    const auto before = open_files();
    for (int round = 0; round < 3; ++round) {
        vtk_output(file.name(), dense2D<double>(), columns({{0, 1, 2}}), EL_TRIA3);
        vtk_output(file.name(), cube_and_one, columns({{0, 1, 99}}), EL_TRIA3);
        vtk_output(file.name(), cube_and_one, columns({{0, 1, 2, 3, 4}}), EL_PYRAMID5);
        vtk_output(file.name(), cube_and_one, columns({{0, 1, 2}}), EL_TRIA3);
        vtk_output("/dev/full", cube_and_one, columns({{0, 1, 2}}), EL_TRIA3);
    }
    EXPECT_EQ(open_files(), before);
}

TEST(VtkOutput, TouchesNoReferenceCounterOfTheHost)
{
    const dense2D<unsigned> connect = columns({{0, 1, 2}});
    const temporary_file file;
    ASSERT_EQ(vtk_output(file.name(), cube_and_one, connect, connect, EL_TRIA3, EL_TRIA3), 0);
    EXPECT_EQ(connect.buffer->ref_count, 1);
    EXPECT_EQ(connect, columns({{0, 1, 2}}));
}

TEST(VtkOutput, ReplacesALongerFile)
{
    const temporary_file file(std::string(10000, 'x'));
    EXPECT_EQ(vtk_output(file.name(), dense2D<double>(3, 0), dense2D<unsigned>(), EL_TRIA3), 0);
    EXPECT_EQ(file.bytes(), golden("nothing.vtk"));
}

}  // namespace
