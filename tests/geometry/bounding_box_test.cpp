#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <random>

#include "support/matrices.h"

using namespace zeb::tessolv;
using test::columns;
using test::indices;
using test::points;

namespace {

using vec2 = vector_fixed<double, 2>;
using vec3 = vector_fixed<double, 3>;
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();

const dense2D<double> three_points = points({{1, 5, -2}, {4, 0, 7}, {-3, 2, 0}});
const dense2D<double> flat_points = points({{1, 5}, {4, 0}, {-3, 2}});

struct box3 {
    vec3 min{inf, inf, inf}, max{-inf, -inf, -inf};
    bool operator==(const box3& o) const { return min == o.min && max == o.max; }
};

struct box2 {
    vec2 min{inf, inf}, max{-inf, -inf};
};

TEST(IncBoundingBox, HoldsEveryNode)
{
    box3 b;
    EXPECT_EQ(inc_bounding_box(three_points, b.min, b.max), 0);
    EXPECT_EQ(b.min, vec3(-3, 0, -2));
    EXPECT_EQ(b.max, vec3(4, 5, 7));

    box2 flat;
    EXPECT_EQ(inc_bounding_box(flat_points, flat.min, flat.max), 0);
    EXPECT_EQ(flat.min, vec2(-3, 0));
    EXPECT_EQ(flat.max, vec2(4, 5));
}

TEST(IncBoundingBox, IsOnlyEverEnlarged)
{
    vec3 min(-10, 1, -1), max(0, 2, 10);
    EXPECT_EQ(inc_bounding_box(three_points, min, max), 0);
    EXPECT_EQ(min, vec3(-10, 0, -2));
    EXPECT_EQ(max, vec3(4, 5, 10));
}

TEST(IncBoundingBox, HoldsTheListedNodesOnly)
{
    box3 b;
    EXPECT_EQ(inc_bounding_box(three_points, indices({2, 0, 2}), b.min, b.max), 0);
    EXPECT_EQ(b.min, vec3(-3, 2, -2));
    EXPECT_EQ(b.max, vec3(1, 5, 0));

    box2 flat;
    EXPECT_EQ(inc_bounding_box(flat_points, indices({1}), flat.min, flat.max), 0);
    EXPECT_EQ(flat.min, vec2(4, 0));
    EXPECT_EQ(flat.max, vec2(4, 0));
}

TEST(IncBoundingBox, HoldsTheNodesOfAConnectivityOnly)
{
    box3 b;
    EXPECT_EQ(inc_bounding_box(three_points, columns({{1, 2, test::N}, {2, 1, 1}}), b.min, b.max), 0);
    EXPECT_EQ(b.min, vec3(-3, 0, 0));
    EXPECT_EQ(b.max, vec3(4, 2, 7));

    box2 flat;
    EXPECT_EQ(inc_bounding_box(flat_points, columns({{0}, {2}}), flat.min, flat.max), 0);
    EXPECT_EQ(flat.min, vec2(-3, 2));
    EXPECT_EQ(flat.max, vec2(1, 5));
}

TEST(IncBoundingBox, SkipsNoneIndexInAList)
{
    box3 b;
    EXPECT_EQ(inc_bounding_box(three_points, indices({test::N, 1, test::N}), b.min, b.max), 0);
    EXPECT_EQ(b.min, vec3(4, 0, 7));
    EXPECT_EQ(b.max, vec3(4, 0, 7));

    const box3 before = b;
    EXPECT_EQ(inc_bounding_box(three_points, indices({test::N}), b.min, b.max), 0);
    EXPECT_EQ(inc_bounding_box(test::filled(3, 0, 0.0), indices({test::N}), b.min, b.max), 0);
    EXPECT_EQ(b, before);
}

TEST(IncBoundingBox, AnEmptyMatrixOfTheRightRowsLeavesTheBoxAsItWas)
{
    box3 b;
    b.min = vec3(1, 2, 3);
    const box3 before = b;
    EXPECT_EQ(inc_bounding_box(test::filled(3, 0, 0.0), b.min, b.max), 0);
    EXPECT_EQ(b, before);
    EXPECT_EQ(inc_bounding_box(dense2D<double>(), b.min, b.max), -1);
    EXPECT_EQ(b, before);
}

TEST(IncBoundingBox, InSpaceRefusesCoordinatesOfTwoRowsAndLeavesTheBoxAsItWas)
{
    vec3 min(0.5, 0.5, 0.5), max(0.5, 0.5, 0.5);
    EXPECT_EQ(inc_bounding_box(flat_points, min, max), -1);
    EXPECT_EQ(inc_bounding_box(flat_points, indices({0}), min, max), -1);
    EXPECT_EQ(inc_bounding_box(flat_points, columns({{0, 1}}), min, max), -1);
    EXPECT_EQ(min, vec3(0.5, 0.5, 0.5));
    EXPECT_EQ(max, vec3(0.5, 0.5, 0.5));
}

TEST(IncBoundingBox, AListOfNothingButNoneIsRefusedForItsRowsButAConnectivityIsNot)
{
    vec3 min, max;
    EXPECT_EQ(inc_bounding_box(flat_points, indices({test::N}), min, max), -1);
    EXPECT_EQ(inc_bounding_box(flat_points, columns({{test::N}}), min, max), 0);
}

TEST(IncBoundingBox, PassesOverNaN)
{
    box3 b;
    const auto pos = points({{nan_value, 1, nan_value}, {2, nan_value, nan_value}});
    EXPECT_EQ(inc_bounding_box(pos, b.min, b.max), 0);
    EXPECT_EQ(b.min, vec3(2, 1, inf));
    EXPECT_EQ(b.max, vec3(2, 1, -inf));
}

TEST(IncBoundingBox, ABoxOfNaNStaysOne)
{
    vec3 min(nan_value, 0, 0), max(0, nan_value, 0);
    EXPECT_EQ(inc_bounding_box(three_points, min, max), 0);
    EXPECT_TRUE(std::isnan(min[0]));
    EXPECT_TRUE(std::isnan(max[1]));
    EXPECT_EQ(max[0], 4);
    EXPECT_EQ(min[1], 0);
}

TEST(IncBoundingBox, OneVectorAsBothCornersIsReadAsItWasOnEntry)
{
    vec3 both(0, 3, 1);
    EXPECT_EQ(inc_bounding_box(three_points, both, both), 0);
    EXPECT_EQ(both, vec3(4, 5, 7));  // the upper corner is handed over last
}

// Of the coordinates of some nodes, sorted, in each row; NaN is left out.
template <std::size_t D>
void expect_sorted_extremes(const std::vector<std::vector<double>>& nodes, const std::vector<unsigned>& used,
                            const vector_fixed<double, D>& min, const vector_fixed<double, D>& max)
{
    for (std::size_t k = 0; k < D; ++k) {
        std::vector<double> values{1.0};  // the box before
        for (const unsigned i : used)
            if (i != test::N && !std::isnan(nodes[i][k])) values.push_back(nodes[i][k]);
        std::sort(values.begin(), values.end());
        ASSERT_EQ(min[k], values.front());
        ASSERT_EQ(max[k], values.back());
    }
}

template <std::size_t D>
void check_random_boxes(unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> coordinate(-5, 5);
    for (int round = 0; round < 2000 && !testing::Test::HasFatalFailure(); ++round) {
        SCOPED_TRACE(round);
        const std::size_t n = 1 + random() % 9;
        std::vector<std::vector<double>> nodes(n, std::vector<double>(D));
        for (auto& p : nodes)
            for (double& x : p) {
                x = random() % 4 == 0 ? std::round(coordinate(random)) : coordinate(random);
                if (random() % 30 == 0) x = random() % 2 == 0 ? nan_value : inf;
            }
        std::vector<std::vector<unsigned>> elements(1 + random() % 4, std::vector<unsigned>(3));
        std::vector<unsigned> listed, all(n);
        for (auto& e : elements)
            for (unsigned& i : e) {
                i = random() % 5 == 0 ? test::N : static_cast<unsigned>(random() % n);
                listed.push_back(i);
            }
        std::iota(all.begin(), all.end(), 0u);

        const auto pos = test::as_padded_view(points(nodes), -99.0);
        const auto connect = test::as_padded_view(columns(elements), 77u);
        const auto box = [](auto call, const auto& names, const auto& coordinates) {
            vector_fixed<double, D> min, max;
            for (std::size_t k = 0; k < D; ++k) min[k] = max[k] = 1.0;
            ASSERT_EQ(call(min, max), 0);
            expect_sorted_extremes<D>(coordinates, names, min, max);
        };
        box([&](auto& min, auto& max) { return inc_bounding_box(pos, min, max); }, all, nodes);
        box([&](auto& min, auto& max) { return inc_bounding_box(pos, connect, min, max); }, listed, nodes);
        listed.resize(random() % listed.size());
        box([&](auto& min, auto& max) { return inc_bounding_box(pos, indices(listed), min, max); }, listed, nodes);
    }
}

TEST(IncBoundingBox, AgreesWithSortedCoordinatesOnRandomNodesInThePlane)
{
    check_random_boxes<2>(42);
}

TEST(IncBoundingBox, AgreesWithSortedCoordinatesOnRandomNodesInSpace)
{
    check_random_boxes<3>(41);
}

}  // namespace
