#include <gtest/gtest.h>

#include <tessolv/tessolv.h>

#include "io/writer_samples.h"
#include "support/matrices.h"

using namespace zeb::tessolv;
using namespace test;

namespace {

struct streams {
    unsigned count = 0;
    dense1D<unsigned> cells, types;
};

int convert(const dense2D<unsigned>& connect, element_type type, streams& to)
{
    return vtk_convert(connect, type, to.count, to.cells, to.types);
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
    ASSERT_EQ(convert(counted_column(kind.rows, 10), kind.type, made), 0);
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

}  // namespace
