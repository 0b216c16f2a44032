#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

#include "support/matrices.h"

namespace {

using namespace zeb::tessolv;
using test::columns;
using test::indices;
using test::N;
using test::points;
using zeb::dense1D;
using zeb::dense2D;

using point2 = zeb::vector_fixed<double, 2>;
using point3 = zeb::vector_fixed<double, 3>;

constexpr unsigned long none = 4294967295ul;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

const dense2D<double> square = points({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
const dense2D<double> corner = points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}});

template <class Point>
dense1D<unsigned> in_box(const node_detector& detector, const Point& a, const Point& b)
{
    dense1D<unsigned> nodes;
    detector.find_in_box(a, b, nodes);
    return nodes;
}

dense1D<unsigned> sorted(dense1D<unsigned> nodes)
{
    std::sort(nodes.begin(), nodes.end());
    return nodes;
}

// -- find_closest

TEST(FindClosest, FindsTheNearestNode)
{
    const node_detector flat(square);
    EXPECT_EQ(flat.find_closest(point2(0.9, 0.2)), 1u);
    EXPECT_EQ(flat.find_closest(point3(0.1, 2.0, -40.0)), 3u);
    const node_detector spatial(corner);
    EXPECT_EQ(spatial.find_closest(point3(0.1, 0.1, 0.9)), 3u);
    EXPECT_EQ(spatial.find_closest(point2(0.9, 0.1)), 1u);
}

TEST(FindClosest, TakesTheFirstOnThePathOfSeveralAtThePosition)
{
    const dense2D<double> pos = points({{1, 1}, {1, 1}, {1, 1}});
    for (unsigned first = 0; first < 3; ++first) {
        node_detector detector(pos, indices({first}));
        detector.insert(indices({(first + 1) % 3, (first + 2) % 3}));
        EXPECT_EQ(detector.find_closest(point2(1, 1)), first);
        EXPECT_EQ(detector.find_closest(point2(1.5, 1)), first);
        EXPECT_NE(detector.find_closest(first), first);
    }
}

TEST(FindClosest, KeepsTheOneFoundFirstOfEquallyCloseNodes)
{
    const dense2D<double> pos = points({{-1, 0}, {1, 0}});
    for (unsigned first = 0; first < 2; ++first) {
        node_detector detector(pos, indices({first}));
        detector.insert(indices({1 - first}));
        EXPECT_EQ(detector.find_closest(point2(0, 0)), first);
        EXPECT_EQ(detector.find_closest(point2(0, 3)), first);
    }
}

TEST(FindClosest, SearchesTheSideOfThePointFirst)
{
    // Below the root, which is far away, one node on either side of the point at the same distance from it.
    const dense2D<double> pos = points({{0, 90}, {-1, 0}, {1, 0}, {3, 0}, {-3, 0}});
    node_detector detector(pos, indices({0}));
    for (unsigned node = 1; node < 5; ++node) detector.insert(indices({node}));
    EXPECT_EQ(detector.find_closest(point2(0, 0)), 2u);  // x = 0 goes to the right, past 2
    EXPECT_EQ(detector.find_closest(point2(2, 0)), 2u);
    EXPECT_EQ(detector.find_closest(point2(-2, 0)), 1u);
}

TEST(FindClosest, PassesOverTheNodeItself)
{
    EXPECT_EQ(node_detector(square).find_closest(0u) % 2, 1u);
    EXPECT_EQ(node_detector(square, indices({1, 1, 3})).find_closest(1u), 3u);
    EXPECT_EQ(node_detector(square, indices({2})).find_closest(0u), 2u);  // 0 itself was not inserted
}

TEST(FindClosest, GivesNoneWhereTheTreeHoldsOnlyTheNodeItselfOnceOrTwice)
{
    EXPECT_EQ(node_detector(square, indices({1})).find_closest(1u), none);
    EXPECT_EQ(node_detector(square, indices({1, 1})).find_closest(1u), none);
}

TEST(FindClosest, GivesNoneForANodeOutsideTheMatrix)
{
    const node_detector detector(square);
    EXPECT_EQ(detector.find_closest(4u), none);
    EXPECT_EQ(detector.find_closest(N), none);
    EXPECT_EQ(detector.find_closest(4294967294u), none);
}

TEST(FindClosest, ComparesSquaresOnThePathAndDistancesInTheSearch)
{
    const double y = 0x1p-26;
    ASSERT_GT(1.0 + y * y, 1.0);
    ASSERT_EQ(std::sqrt(1.0 + y * y), 1.0);  // different squares, one distance
    // Equal x goes to the right. So does the origin from x = -1, which brings it to the smaller square.
    const dense2D<double> left = points({{-1, y}, {-1, 0}});
    node_detector on_the_path(left, indices({0}));
    on_the_path.insert(indices({1}));
    EXPECT_EQ(on_the_path.find_closest(point2(0, 0)), 1u);
    // From x = 1 it goes to the left, and the search knows only the distance.
    const dense2D<double> right = points({{1, y}, {1, 0}});
    node_detector off_the_path(right, indices({0}));
    off_the_path.insert(indices({1}));
    EXPECT_EQ(off_the_path.find_closest(point2(0, 0)), 0u);
}

TEST(FindClosest, FindsNothingAtInfiniteDistance)
{
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(node_detector(points({{infinity, 0}, {nan, 0}})).find_closest(point2(0, 0)), none);
    EXPECT_EQ(node_detector(points({{1e200, 0}})).find_closest(point2(-1e200, 0)), none);
    EXPECT_EQ(node_detector(square).find_closest(point2(nan, 0)), none);
    EXPECT_EQ(node_detector(square).find_closest(point2(infinity, 0)), none);
    EXPECT_EQ(node_detector(points({{0, 0}, {nan, 0}})).find_closest(1u), none);
}

// -- find_in_box

TEST(FindInBox, ReturnsNodesOnItsBoundary)
{
    const node_detector detector(square);
    EXPECT_EQ(sorted(in_box(detector, point2(0, 0), point2(1, 1))), indices({0, 1, 2, 3}));
    EXPECT_EQ(sorted(in_box(detector, point2(1, 0), point2(1, 1))), indices({1, 2}));
    EXPECT_EQ(in_box(detector, point2(0.5, 0.5), point2(0.9, 0.9)), indices({}));
}

TEST(FindInBox, FindsNothingWhereTheCornersAreExchanged)
{
    const node_detector detector(square);
    EXPECT_EQ(in_box(detector, point2(1, 0), point2(0, 1)), indices({}));
    EXPECT_EQ(in_box(detector, point2(0, 1), point2(1, 0)), indices({}));
}

TEST(FindInBox, AppendsAndRepeatsTheHitsOfASecondCall)
{
    const node_detector detector(square);
    dense1D<unsigned> nodes = indices({42});
    detector.find_in_box(point2(0, 0), point2(0, 1), nodes);
    ASSERT_EQ(nodes.size, 3u);
    detector.find_in_box(point2(0, 0), point2(0, 1), nodes);
    ASSERT_EQ(nodes.size, 5u);
    EXPECT_EQ(nodes[0], 42u);
    EXPECT_EQ(nodes[1], nodes[3]);
    EXPECT_EQ(nodes[2], nodes[4]);
}

TEST(FindInBox, OfTwoDimensionsFindsOnlyThePlaneInSpace)
{
    const dense2D<double> pos = points({{0, 0, 0}, {0, 0, -0.0}, {0, 0, 1e-300}, {0, 0, 1}});
    const node_detector detector(pos);
    EXPECT_EQ(sorted(in_box(detector, point2(-1, -1), point2(1, 1))), indices({0, 1}));
}

TEST(FindInBox, OfThreeDimensionsIgnoresZInThePlane)
{
    EXPECT_EQ(sorted(in_box(node_detector(square), point3(0, 0, 5), point3(1, 0, -5))), indices({0, 1}));
}

TEST(FindInBox, ListsRightSubtreeLeftSubtreeNode)
{
    // Inserted one at a time: 0 is the root, 1 on its left, 2 on its right, 3 below 2 on the right (equal y).
    const dense2D<double> pos = points({{5, 5}, {4, 4}, {6, 6}, {7, 6}, {8, 1}});
    node_detector detector(pos, indices({0}));
    for (unsigned node = 1; node < 5; ++node) detector.insert(indices({node}));
    EXPECT_EQ(in_box(detector, point2(0, 0), point2(9, 9)), indices({3, 4, 2, 1, 0}));
}

TEST(FindInBox, SeesNothingBelowANodeWithoutSplittingCoordinate)
{
    dense2D<double> pos = points({{1, 1}, {2, nan}, {3, 3}, {0, 0}});
    node_detector detector(pos, indices({0}));
    for (unsigned node = 1; node < 4; ++node) detector.insert(indices({node}));
    // 1 splits y and hides 2; 3 is on the other side of 0.
    EXPECT_EQ(in_box(detector, point2(-9, -9), point2(9, 9)), indices({3, 0}));
    EXPECT_EQ(detector.find_closest(point2(3, 3)), 2u);
}

}  // namespace
