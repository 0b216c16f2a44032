#include <gtest/gtest.h>

#include <limits>

#include "support/matrices.h"

using namespace zeb::tessolv;
using test::columns;
using test::filled;
using test::N;
using test::numbers;
using test::points;

// Which arguments shape_qualities refuses, in which order, and what it leaves behind.

namespace {

const dense2D<double> pos =
    points({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}});
constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

int code_of(const dense2D<unsigned>& connect, int type)
{
    dense1D<double> qualities = numbers({7, 7});
    const int code = shape_qualities(pos, connect, static_cast<element_type>(type), qualities);
    EXPECT_EQ(qualities.size, code == 0 ? connect.cols : 0u);
    return code;
}

int code_of(const std::vector<dense2D<unsigned>>& connects, const std::vector<int>& types)
{
    dense1D<double> qualities = numbers({7, 7});
    const int code =
        shape_qualities(pos, connects.data(), connects.data() + connects.size(), test::types(types), qualities);
    EXPECT_TRUE(code == 0 || qualities.size == 0);
    return code;
}

const int types_without_measure[] = {lowest, -1, EL_NONE, EL_NODE, EL_EDGE_MIX, EL_SOLID_MIX, EL_HEXA20, 21, highest};

TEST(ShapeQualitiesOfOneMatrix, RefuseATypeWithoutMeasure)
{
    for (const int type : types_without_measure) {
        EXPECT_EQ(code_of(columns({{0, 1, 2, 3, 4, 5, 6, 7}}), type), -3) << type;
        EXPECT_EQ(code_of(filled(20, 2, 0u), type), -3) << type;
    }
}

TEST(ShapeQualitiesOfOneMatrix, RefuseTheTypeEvenWithoutElements)
{
    for (const int type : types_without_measure) {
        EXPECT_EQ(code_of(dense2D<unsigned>(), type), -3) << type;
        EXPECT_EQ(code_of(dense2D<unsigned>(8, 0), type), -3) << type;
        EXPECT_EQ(code_of(dense2D<unsigned>(0, 3), type), -3) << type;
    }
}

TEST(ShapeQualitiesOfOneMatrix, RefuseTheTypeBeforeTheIndices)
{
    EXPECT_EQ(code_of(columns({{0, 1, 2, 99}}), EL_HEXA20), -3);
}

TEST(ShapeQualitiesOfOneMatrix, RefuseIndicesBeyondTheNodes)
{
    const struct {
        element_type type;
        std::uint64_t rows;
    } kinds[] = {{EL_EDGE2, 2},   {EL_EDGE3, 2},    {EL_FACE_MIX, 3},  {EL_FACE_MIX, 4}, {EL_TRIA3, 3},
                 {EL_TRIA6, 3},   {EL_QUAD4, 4},    {EL_QUAD8, 4},     {EL_QUAD9, 4},    {EL_TETRA4, 4},
                 {EL_TETRA10, 4}, {EL_PYRAMID5, 5}, {EL_PYRAMID14, 5}, {EL_WEDGE6, 6},   {EL_WEDGE18, 6},
                 {EL_HEXA8, 8},   {EL_HEXA27, 8}};
    for (const auto& kind : kinds) {
        EXPECT_EQ(code_of(filled(kind.rows, 3, 7u), kind.type), 0) << kind.type;
        for (const unsigned bad : {8u, 9u, N - 1, N})
            for (std::uint64_t i = 0; i < kind.rows; ++i) {
                dense2D<unsigned> connect = filled(kind.rows, 3, 7u);
                connect(i, 2) = bad;
                const bool is_triangle = kind.type == EL_FACE_MIX && i == 3 && bad == N;
                EXPECT_EQ(code_of(connect, kind.type), is_triangle ? 0 : -2)
                    << kind.type << " row " << i << ": " << bad;
            }
    }
}

TEST(ShapeQualitiesOfOneMatrix, RefuseOtherRows)
{
    for (int type = EL_EDGE2; type <= EL_HEXA27; ++type) {
        if (type == EL_SOLID_MIX || type == EL_HEXA20) continue;
        for (std::uint64_t rows = 1; rows <= 28; ++rows) {
            const bool fits = type == EL_FACE_MIX ? rows == 3 || rows == 4 : rows == VERTICES_PER_ELEMENT[type];
            EXPECT_EQ(code_of(filled(rows, 1, 0u), type), fits ? 0 : -2) << type << " in " << rows;
        }
    }
}

TEST(ShapeQualitiesOfOneMatrix, AreNoneWithoutColumnsWhateverTheRows)
{
    EXPECT_EQ(code_of(dense2D<unsigned>(), EL_HEXA8), 0);
    EXPECT_EQ(code_of(dense2D<unsigned>(99, 0), EL_HEXA8), 0);
    EXPECT_EQ(code_of(dense2D<unsigned>(99, 0), EL_HEXA27), 0);
}

TEST(ShapeQualitiesOfOneMatrix, AreZeroForColumnsWithoutRowsAndOneForEdges)
{
    dense1D<double> qualities;
    const dense2D<unsigned> connect(0, 5);
    for (int type = EL_EDGE2; type <= EL_HEXA27; ++type) {
        if (type == EL_SOLID_MIX || type == EL_HEXA20) continue;
        ASSERT_EQ(shape_qualities(pos, connect, static_cast<element_type>(type), qualities), 0) << type;
        const double value = type == EL_EDGE2 || type == EL_EDGE3 ? 1 : 0;
        EXPECT_EQ(qualities, numbers({value, value, value, value, value})) << type;
    }
}

TEST(ShapeQualitiesOfOneMatrix, CannotHoldMoreColumnsThanMemory)
{
    EXPECT_EQ(code_of(dense2D<unsigned>(0, std::uint64_t{1} << 62), EL_HEXA8), -199);
}

TEST(ShapeQualitiesOfARange, StandMatrixAfterMatrix)
{
    const dense2D<unsigned> connects[] = {columns({{0, 1}, {1, 2}}), columns({{0, 1, 2, 3, 4, 5, 6, 7}}),
                                          columns({{0, 1, 2, 3}, {0, 0, 0, 0}})};
    dense1D<double> qualities = numbers({7});
    ASSERT_EQ(shape_qualities(pos, connects, connects + 3, test::types({EL_EDGE2, EL_HEXA8, EL_QUAD4}), qualities), 0);
    EXPECT_EQ(qualities, numbers({1, 1, 1, 1, 0}));
    EXPECT_EQ(qualities.buffer->ref_count, 1);
}

TEST(ShapeQualitiesOfARange, AreNoneForAnEmptyRange)
{
    dense1D<double> qualities = numbers({7});
    EXPECT_EQ(shape_qualities(pos, nullptr, nullptr, dense1D<int>(), qualities), 0);
    EXPECT_EQ(qualities.size, 0u);
}

TEST(ShapeQualitiesOfARange, RefuseLastBeforeFirstThenTheTypesThenTheMatrices)
{
    const dense2D<unsigned> connects[] = {columns({{0, 9}}), columns({{0, 1}})};
    dense1D<double> qualities = numbers({7});
    EXPECT_EQ(shape_qualities(pos, connects + 1, connects, test::types({EL_EDGE2}), qualities), -3);
    EXPECT_EQ(qualities.size, 0u);
    EXPECT_EQ(shape_qualities(pos, connects + 2, connects, test::types({}), qualities), -3);
    EXPECT_EQ(code_of({connects[0], connects[1]}, {EL_EDGE2}), -4);
    EXPECT_EQ(code_of({connects[0], connects[1]}, {EL_NONE, EL_NONE, EL_NONE}), -4);
    EXPECT_EQ(code_of(std::vector<dense2D<unsigned>>{}, {EL_NONE}), -4);
    EXPECT_EQ(code_of({connects[0], connects[1]}, {EL_EDGE2, EL_EDGE2}), -2);
}

TEST(ShapeQualitiesOfARange, ReportTheFirstMatrixThatCannotBeMeasured)
{
    const auto good = columns({{0, 1}});
    const auto bad = columns({{0, 8}});
    EXPECT_EQ(code_of({good, bad, good}, {EL_EDGE2, EL_EDGE2, EL_NONE}), -2);
    EXPECT_EQ(code_of({good, good, bad}, {EL_EDGE2, highest, EL_EDGE2}), -3);
    EXPECT_EQ(code_of({good, bad}, {EL_EDGE2, EL_SOLID_MIX}), -3);
    EXPECT_EQ(code_of({good, good}, {lowest, EL_EDGE2}), -3);
}

TEST(ShapeQualitiesOfARange, PassOverMatricesWithoutEntriesWhateverTheirType)
{
    const dense2D<unsigned> connects[] = {dense2D<unsigned>(8, 0), columns({{0, 1}}), dense2D<unsigned>()};
    dense1D<double> qualities;
    ASSERT_EQ(shape_qualities(pos, connects, connects + 3, test::types({EL_HEXA20, EL_EDGE2, lowest}), qualities), 0);
    EXPECT_EQ(qualities, numbers({1}));
}

TEST(ShapeQualitiesOfARange, MoveUpWhenAMatrixHasColumnsButNoRows)
{
    const dense2D<unsigned> connects[] = {columns({{0, 1}}), dense2D<unsigned>(0, 2), columns({{1, 2}})};
    dense1D<double> qualities;
    ASSERT_EQ(shape_qualities(pos, connects, connects + 3, test::types({EL_EDGE2, EL_EDGE2, EL_EDGE2}), qualities), 0);
    EXPECT_EQ(qualities, numbers({1, 1, 0, 0}));
}

TEST(ShapeQualitiesOfARange, CannotHoldMoreColumnsThanMemory)
{
    const dense2D<unsigned> half(0, std::uint64_t{1} << 63);
    EXPECT_EQ(code_of({half, half}, {EL_HEXA8, EL_HEXA8}), -199);
    EXPECT_EQ(code_of({half, columns({{0, 1}})}, {EL_HEXA8, EL_NONE}), -3);
}

TEST(ShapeQualitiesForAHistogram, TakeOneMatrixAsARangeOfOne)
{
    zeb::misc::histogram h(-1, 1, 2);
    EXPECT_EQ(shape_qualities(pos, dense2D<unsigned>(), EL_NONE, h), 0);
    EXPECT_EQ(h.count(), 0u);
    EXPECT_EQ(shape_qualities(pos, dense2D<unsigned>(0, 5), EL_EDGE2, h), 0);
    EXPECT_EQ(h.count(), 5u);
    EXPECT_EQ(h.maximum(), 0);
    EXPECT_EQ(shape_qualities(pos, columns({{0, 1}}), EL_NONE, h), -3);
    EXPECT_EQ(shape_qualities(pos, columns({{0, 8}}), EL_EDGE2, h), -2);
    EXPECT_EQ(h.count(), 5u);
}

}  // namespace
