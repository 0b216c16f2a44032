#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

#include "quality/recording_histogram.h"
#include "support/matrices.h"

using namespace zeb::tessolv;
using test::columns;
using test::filled;
using test::N;
using test::numbers;
using test::points;
using test::recording_histogram;
using zeb::misc::histogram;

namespace {

const dense2D<double> unit_square = points({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
const dense2D<double> unit_square_3d = points({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});
const dense2D<double> unit_cube =
    points({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}});
const std::vector<unsigned> cube{0, 1, 2, 3, 4, 5, 6, 7};
const std::vector<unsigned> turned_inside_out{4, 5, 6, 7, 0, 1, 2, 3};

dense2D<double> scaled(dense2D<double> pos, double factor)
{
    for (std::uint64_t j = 0; j < pos.cols; ++j)
        for (std::uint64_t i = 0; i < pos.rows; ++i) pos(i, j) *= factor;
    return pos;
}

dense1D<double> qualities_of(const dense2D<double>& pos, element_type type,
                             const std::vector<std::vector<unsigned>>& elements)
{
    dense1D<double> qualities = numbers({-7, -7, -7});
    EXPECT_EQ(shape_qualities(pos, columns(elements), type, qualities), 0);
    return qualities;
}

// -- values

TEST(ShapeQualities, OfATriangleIsItsAreaByPerimeterAndLongestEdge)
{
    const auto pos = points({{0, 0}, {3, 0}, {0, 4}});  // edges 3, 4, 5; twice the area 12
    EXPECT_EQ(qualities_of(pos, EL_TRIA3, {{0, 1, 2}, {0, 2, 1}}),
              numbers({12.0 / 60.0 * 3.4641016151377544, -12.0 / 60.0 * 3.4641016151377544}));
}

TEST(ShapeQualities, OfATriangleOfOneNodeOrOfTwoIsZero)
{
    EXPECT_EQ(qualities_of(unit_square, EL_TRIA3, {{1, 1, 1}, {0, 0, 1}}), numbers({0, 0}));
    EXPECT_EQ(qualities_of(unit_square_3d, EL_TRIA3, {{1, 1, 1}, {0, 0, 1}}), numbers({0, 0}));
}

TEST(ShapeQualities, OfASquareIsOneAndClockwiseMinusOneInThePlaneOnly)
{
    EXPECT_EQ(qualities_of(unit_square, EL_QUAD4, {{0, 1, 2, 3}, {3, 2, 1, 0}}), numbers({1, -1}));
    EXPECT_EQ(qualities_of(unit_square_3d, EL_QUAD4, {{0, 1, 2, 3}, {3, 2, 1, 0}}), numbers({1, 1}));
}

TEST(ShapeQualities, OfARectangleIsTheRootOfItsAspectRatio)
{
    const auto flat = points({{0, 0}, {4, 0}, {4, 1}, {0, 1}});
    const auto upright = points({{0, 5, 0}, {0, 5, 4}, {1, 5, 4}, {1, 5, 0}});
    EXPECT_EQ(qualities_of(flat, EL_QUAD4, {{0, 1, 2, 3}}), numbers({0.5}));
    EXPECT_EQ(qualities_of(upright, EL_QUAD4, {{0, 1, 2, 3}}), numbers({0.5}));
}

TEST(ShapeQualities, OfAQuadrangleFallsWithItsWarp)
{
    // Two right isosceles triangles at a right angle: the normals at two corners are 90 degrees apart, at the others
    // the cosine is 1/3.
    const auto pos = points({{-1, 0, 0}, {0, 1, 0}, {1, 0, 0}, {0, 0, 1}});
    EXPECT_NEAR(qualities_of(pos, EL_QUAD4, {{0, 1, 2, 3}})[0], 0.44557100082826718, 1e-15);
}

TEST(ShapeQualities, OfAQuadrangleFoldedOntoItselfIsZero)
{
    const auto pos = points({{0, 0, 0}, {1, 0, 0}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    EXPECT_EQ(qualities_of(pos, EL_QUAD4, {{0, 1, 2, 3}, {0, 0, 0, 0}, {0, 1, 2, 4}}), numbers({0, 0, 0}));
}

TEST(ShapeQualities, OfARegularTetrahedronIsOneInTwelveDigitsAndMirroredMinusThat)
{
    const auto pos = points({{1, 1, 1}, {1, -1, -1}, {-1, 1, -1}, {-1, -1, 1}});
    const double expected = 16.0 * 4.89897948556 / (std::sqrt(8.0) * (4.0 * std::sqrt(48.0)));
    EXPECT_NEAR(expected, 0.9999999999987, 1e-14);
    // Nodes 0, 1, 2 turn clockwise seen from node 3, then the mirror image.
    EXPECT_EQ(qualities_of(pos, EL_TETRA4, {{0, 1, 2, 3}, {1, 0, 2, 3}}), numbers({expected, -expected}));
}

TEST(ShapeQualities, OfAFlatTetrahedronIsZero)
{
    EXPECT_EQ(qualities_of(unit_square_3d, EL_TETRA4, {{0, 1, 2, 3}, {0, 0, 0, 0}, {0, 1, 1, 2}}), numbers({0, 0, 0}));
}

TEST(ShapeQualities, OfAPyramidOfEqualEdgesIsOne)
{
    const auto pos = points({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0.5, 0.5, std::sqrt(0.5)}});
    const auto qualities = qualities_of(pos, EL_PYRAMID5, {{0, 1, 2, 3, 4}, {3, 2, 1, 0, 4}});
    EXPECT_NEAR(qualities[0], 1.0, 1e-15);
    EXPECT_NEAR(qualities[1], -1.0, 1e-15);
}

TEST(ShapeQualities, OfAWedgeOfEqualEdgesIsOne)
{
    const double h = std::sqrt(0.75);
    const auto pos = points({{0, 0, 0}, {1, 0, 0}, {0.5, h, 0}, {0, 0, 1}, {1, 0, 1}, {0.5, h, 1}});
    const auto qualities = qualities_of(pos, EL_WEDGE6, {{0, 1, 2, 3, 4, 5}, {3, 4, 5, 0, 1, 2}});
    EXPECT_NEAR(qualities[0], 1.0, 2e-12);
    EXPECT_LT(qualities[1], -0.9);
}

// The lesser of two scores that are never above 1.
TEST(ShapeQualities, OfACubeIsExactlyOneByItsCornersAndByItsFaces)
{
    for (const double size : {1.0, 2.0, 3.0, 0.1, 0.001, 7.77, 1e50, 0x1p-100}) {
        // And turned about two axes.
        const auto pos = scaled(unit_cube, size);
        EXPECT_EQ(qualities_of(pos, EL_HEXA8, {cube, {1, 2, 3, 0, 5, 6, 7, 4}, {3, 2, 6, 7, 0, 1, 5, 4}}),
                  numbers({1, 1, 1}))
            << size;
    }
}

TEST(ShapeQualities, OfAnInvertedCubeDependsOnItsSize)
{
    EXPECT_EQ(qualities_of(unit_cube, EL_HEXA8, {turned_inside_out}), numbers({-1}));
    EXPECT_EQ(qualities_of(scaled(unit_cube, 2), EL_HEXA8, {turned_inside_out}), numbers({-64}));
}

TEST(ShapeQualities, OfAHexahedronCollapsedToANodeIsZero)
{
    EXPECT_EQ(qualities_of(unit_cube, EL_HEXA8, {{3, 3, 3, 3, 3, 3, 3, 3}}), numbers({0}));
    EXPECT_EQ(qualities_of(unit_cube, EL_WEDGE6, {{3, 3, 3, 3, 3, 3}}), numbers({0}));
    EXPECT_EQ(qualities_of(unit_cube, EL_PYRAMID5, {{3, 3, 3, 3, 3}}), numbers({0}));
}

TEST(ShapeQualities, OfAnEdgeIsOneWhateverItsNodes)
{
    EXPECT_EQ(qualities_of(unit_square, EL_EDGE2, {{0, 1}, {2, 2}}), numbers({1, 1}));
    EXPECT_EQ(qualities_of(unit_square, EL_EDGE3, {{0, 1}}), numbers({1}));
}

// -- dimensions

TEST(ShapeQualities, OfSurfacesAreZeroInOneOrFourDimensions)
{
    for (const std::uint64_t rows : {0, 1, 4}) {
        const auto pos = filled(rows, 4, 1.5);
        EXPECT_EQ(qualities_of(pos, EL_TRIA3, {{0, 1, 2}, {1, 2, 3}}), numbers({0, 0})) << rows;
        EXPECT_EQ(qualities_of(pos, EL_QUAD4, {{0, 1, 2, 3}}), numbers({0})) << rows;
        EXPECT_EQ(qualities_of(pos, EL_FACE_MIX, {{0, 1, 2, N}, {0, 1, 2, 3}}), numbers({0, 0})) << rows;
        dense1D<double> qualities;
        EXPECT_EQ(shape_qualities(pos, columns({{0, 1, 4}}), EL_TRIA3, qualities), -2) << rows;
    }
}

TEST(ShapeQualities, OfSolidsTakeMissingCoordinatesAsZeroAndIgnoreAFourth)
{
    EXPECT_EQ(qualities_of(unit_square, EL_TETRA4, {{0, 1, 2, 3}}), numbers({0}));
    EXPECT_EQ(qualities_of(points({{0}, {1}, {2}, {3}}), EL_TETRA4, {{0, 1, 2, 3}}), numbers({0}));
    EXPECT_EQ(qualities_of(dense2D<double>(0, 4), EL_TETRA4, {{0, 1, 2, 3}}), numbers({0}));
    dense2D<double> pos = filled(4, 8, std::numeric_limits<double>::quiet_NaN());
    for (std::uint64_t j = 0; j < 8; ++j)
        for (std::uint64_t i = 0; i < 3; ++i) pos(i, j) = unit_cube(i, j);
    EXPECT_EQ(qualities_of(pos, EL_HEXA8, {cube}), numbers({1}));
}

TEST(ShapeQualities, OfAPlanarPyramidReadZeroAsTheThirdCoordinate)
{
    const auto plane = points({{0, 0}, {2, 0}, {2, 1}, {0, 3}, {7, 8}});
    const auto space = points({{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {0, 3, 0}, {7, 8, 0}});
    EXPECT_EQ(qualities_of(plane, EL_PYRAMID5, {{0, 1, 2, 3, 4}}), qualities_of(space, EL_PYRAMID5, {{0, 1, 2, 3, 4}}));
}

// -- types

TEST(ShapeQualities, OfHigherOrderTypesAreThoseOfTheCornerRowsAndNoneOfAllRows)
{
    struct row {
        element_type linear, quadratic;
        const dense2D<double>& pos;
        std::vector<unsigned> corners;
    };
    const row rows[] = {{EL_EDGE2, EL_EDGE3, unit_square, {0, 1}},
                        {EL_TRIA3, EL_TRIA6, unit_square, {0, 1, 2}},
                        {EL_QUAD4, EL_QUAD8, unit_square, {0, 1, 2, 3}},
                        {EL_QUAD4, EL_QUAD9, unit_square, {0, 1, 2, 3}},
                        {EL_TETRA4, EL_TETRA10, unit_cube, {0, 2, 1, 4}},
                        {EL_PYRAMID5, EL_PYRAMID14, unit_cube, {0, 1, 2, 3, 4}},
                        {EL_WEDGE6, EL_WEDGE18, unit_cube, {0, 1, 2, 4, 5, 6}},
                        {EL_HEXA8, EL_HEXA27, unit_cube, cube}};
    for (const row& r : rows) {
        const auto linear = qualities_of(r.pos, r.linear, {r.corners});
        EXPECT_NE(linear[0], 0) << r.linear;
        EXPECT_EQ(qualities_of(r.pos, r.quadratic, {r.corners}), linear) << r.quadratic;

        dense1D<double> qualities = numbers({5});
        EXPECT_EQ(shape_qualities(r.pos, filled(NODES_PER_ELEMENT[r.quadratic], 1, 0u), r.quadratic, qualities), -2)
            << "all rows of " << r.quadratic;
        EXPECT_EQ(qualities.size, 0u);
    }
}

TEST(ShapeQualities, OfMixedFacesFollowTheColumn)
{
    const double right_isosceles = qualities_of(unit_square, EL_TRIA3, {{0, 1, 2}})[0];
    EXPECT_NEAR(right_isosceles, 0.71744, 1e-5);
    EXPECT_EQ(qualities_of(unit_square, EL_FACE_MIX, {{0, 1, 2}, {1, 2, 3}}),
              numbers({right_isosceles, right_isosceles}));
    EXPECT_EQ(qualities_of(unit_square, EL_FACE_MIX, {{0, 1, 2, N}, {0, 1, 2, 3}, {1, 2, 3, N}, {2, 3, 0, N}}),
              numbers({right_isosceles, 1, right_isosceles, right_isosceles}));
}

// -- the vector

TEST(ShapeQualities, OwnTheirBuffer)
{
    dense1D<double> qualities = numbers({1, 2, 3});
    const dense1D<double> other = qualities.sub_vector(0, 3);
    ASSERT_EQ(shape_qualities(unit_cube, columns({cube}), EL_HEXA8, qualities), 0);
    EXPECT_EQ(qualities.buffer->ref_count, 1);
    EXPECT_EQ(qualities.offset, 0u);
    EXPECT_EQ(other, numbers({1, 2, 3}));
}

TEST(ShapeQualities, MayReplaceAViewOfTheCoordinates)
{
    dense2D<double> pos = unit_cube;
    dense1D<double> qualities = pos.col(6);
    ASSERT_EQ(shape_qualities(pos, columns({cube, cube, turned_inside_out}), EL_HEXA8, qualities), 0);
    EXPECT_EQ(qualities, numbers({1, 1, -1}));
    EXPECT_EQ(pos, unit_cube);
    EXPECT_NE(qualities.buffer, pos.buffer);
    EXPECT_EQ(pos.buffer->ref_count, 1);

    dense1D<double> refused = pos.col(6);
    EXPECT_EQ(shape_qualities(pos, columns({{8}}), EL_EDGE2, refused), -2);
    EXPECT_EQ(refused.size, 0u);
    EXPECT_EQ(pos, unit_cube);
}

TEST(ShapeQualities, ReadThroughViews)
{
    const auto pos = test::as_padded_view(unit_cube, std::numeric_limits<double>::quiet_NaN());
    const auto connect = test::as_padded_view(columns({cube, turned_inside_out, cube}), N - 1);
    dense1D<double> qualities;
    ASSERT_EQ(shape_qualities(pos, connect, EL_HEXA8, qualities), 0);
    EXPECT_EQ(qualities, numbers({1, -1, 1}));

    const auto mixed = test::as_padded_view(columns({{0, 1, 2, 3}, {0, 1, 2, N}, {3, 2, 1, 0}}), N - 1);
    ASSERT_EQ(shape_qualities(test::as_padded_view(unit_square, 9.0), mixed, EL_FACE_MIX, qualities), 0);
    EXPECT_EQ(qualities[0], 1);
    EXPECT_NEAR(qualities[1], 0.71744, 1e-5);
    EXPECT_EQ(qualities[2], -1);
}

TEST(ShapeQualities, OfNodesThatAreNoNumbersDoNotDisturbOthers)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const auto pos = points({{0, 0}, {1, 0}, {1, 1}, {0, 1}, {nan, 0}, {infinity, 0}});
    const auto qualities = qualities_of(pos, EL_QUAD4, {{0, 1, 2, 3}, {0, 4, 2, 3}, {0, 1, 2, 3}, {0, 5, 2, 3}});
    EXPECT_EQ(qualities[0], 1);
    EXPECT_TRUE(std::isnan(qualities[1]));
    EXPECT_EQ(qualities[2], 1);
    // The divisor of a triangle is no number, so it is not greater than 0.
    EXPECT_EQ(qualities_of(pos, EL_TRIA3, {{0, 1, 4}}), numbers({0}));
}

// -- histograms

TEST(ShapeQualities, FeedAHistogramOnceWithTheWholeVector)
{
    recording_histogram h;
    const dense2D<unsigned> connects[] = {columns({cube, turned_inside_out}), columns({{0, 1}})};
    EXPECT_EQ(shape_qualities(unit_cube, connects, connects + 2, test::types({EL_HEXA8, EL_EDGE2}), h), 0);
    EXPECT_EQ(h.vectors, 1);
    EXPECT_EQ(h.values, (std::vector<double>{1, -1, 1}));
    EXPECT_EQ(shape_qualities(unit_cube, columns({cube}), EL_HEXA8, h), 0);
    EXPECT_EQ(h.vectors, 2);
    EXPECT_EQ(h.values, (std::vector<double>{1, -1, 1, 1}));
    EXPECT_EQ(h.single_values, 0);
}

TEST(ShapeQualities, FeedAHistogramWithAnEmptyVectorWhenThereIsNothing)
{
    recording_histogram h;
    EXPECT_EQ(shape_qualities(unit_cube, nullptr, nullptr, dense1D<int>(), h), 0);
    EXPECT_EQ(shape_qualities(unit_cube, dense2D<unsigned>(8, 0), EL_HEXA8, h), 0);
    EXPECT_EQ(h.vectors, 2);
    EXPECT_EQ(h.values.size(), 0u);
}

TEST(ShapeQualities, LeaveAHistogramAloneOnFailure)
{
    recording_histogram h;
    const dense2D<unsigned> connects[] = {columns({cube}), columns({{0, 8}})};
    EXPECT_EQ(shape_qualities(unit_cube, connects, connects + 2, test::types({EL_HEXA8, EL_EDGE2}), h), -2);
    EXPECT_EQ(shape_qualities(unit_cube, connects, connects + 2, test::types({EL_HEXA8}), h), -4);
    EXPECT_EQ(shape_qualities(unit_cube, connects[0], EL_HEXA20, h), -3);
    EXPECT_EQ(shape_qualities(unit_cube, connects[1], EL_EDGE2, h), -2);
    EXPECT_EQ(h.vectors + h.single_values, 0);
}

TEST(ShapeQualities, CatchWhatAHistogramThrows)
{
    struct : histogram {
        using histogram::process;
        void process(const dense1D<double>&) override { throw std::runtime_error("full"); }
    } h;
    EXPECT_EQ(shape_qualities(unit_cube, columns({cube}), EL_HEXA8, h), -199);
}

TEST(ShapeQualities, FillTheDefaultHistogram)
{
    histogram h;
    ASSERT_EQ(shape_qualities(unit_cube, columns({cube, cube, turned_inside_out}), EL_HEXA8, h), 0);
    EXPECT_EQ(h.count(), 3u);
    EXPECT_EQ(h.minimum(), -1);
    EXPECT_EQ(h.maximum(), 1);
    EXPECT_EQ(h.bins()[0], 1u);
    EXPECT_EQ(h.bins()[19], 2u);
}

}  // namespace
