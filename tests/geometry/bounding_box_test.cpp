#include <gtest/gtest.h>

#include <cmath>
#include <limits>
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

TEST(IncBoundingBox, SkipsNoneIndexInALists)
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

// A call, the code that it gives, and a box that nothing may touch.
struct refusal {
    const char* name;
    dense2D<double> pos;
    int all, list, connect;  // codes of the three forms
    dense1D<unsigned> nodes;
    dense2D<unsigned> elements;
};
class BoxRefusal : public testing::TestWithParam<refusal> {};

TEST_P(BoxRefusal, OfEveryFormLeavesTheBoxAsItWas)
{
    const auto& row = GetParam();
    box3 b;
    b.min = vec3(0.5, 0.5, 0.5);
    const box3 before = b;
    if (row.all != 0) {
        EXPECT_EQ(inc_bounding_box(row.pos, b.min, b.max), row.all);
    }
    EXPECT_EQ(inc_bounding_box(row.pos, row.nodes, b.min, b.max), row.list);
    EXPECT_EQ(inc_bounding_box(row.pos, row.elements, b.min, b.max), row.connect);
    EXPECT_EQ(b, before);
}

INSTANTIATE_TEST_SUITE_P(
    IncBoundingBox, BoxRefusal,
    testing::Values(refusal{"two_rows_in_3d", flat_points, -1, -1, -1, indices({0}), columns({{0, 1}})},
                    refusal{"four_rows", test::filled(4, 3, 1.0), -1, -1, -1, indices({0}), columns({{0, 1}})},
                    refusal{"an_index_beyond", three_points, 0, -2, -2, indices({0, 3}), columns({{0, 3}})},
                    refusal{"a_huge_index", three_points, 0, -2, -2, indices({0xFFFFFFFE}),
                            columns({{0}, {0xFFFFFFFE}})},
                    refusal{"an_index_into_nothing", test::filled(3, 0, 0.0), 0, -2, -2, indices({0}), columns({{0}})},
                    refusal{"rows_before_indices", flat_points, -1, -1, -1, indices({9}), columns({{9}})},
                    refusal{"a_list_of_nothing_but_none_on_wrong_rows", flat_points, -1, -1, 0, indices({test::N}),
                            columns({{test::N}})},
                    refusal{"nothing_listed_before_rows", flat_points, -1, 0, 0, indices({}), dense2D<unsigned>()},
                    refusal{"rows_without_columns", flat_points, -1, 0, 0, indices({}), test::filled(4, 0, 9u)}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(IncBoundingBox, TheFlatFormRefusesThreeRows)
{
    vec2 min(1, 1), max(2, 2);
    EXPECT_EQ(inc_bounding_box(three_points, min, max), -1);
    EXPECT_EQ(inc_bounding_box(three_points, indices({0}), min, max), -1);
    EXPECT_EQ(inc_bounding_box(three_points, columns({{0}}), min, max), -1);
    EXPECT_EQ(inc_bounding_box(flat_points, indices({3}), min, max), -2);
    EXPECT_EQ(inc_bounding_box(flat_points, columns({{3}}), min, max), -2);
    EXPECT_EQ(min, vec2(1, 1));
    EXPECT_EQ(max, vec2(2, 2));
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

TEST(IncBoundingBox, AgreesWithSortedCoordinatesOnRandomNodesAndInViews)
{
    std::mt19937 random(41);
    std::uniform_real_distribution<double> coordinate(-5, 5);
    for (int round = 0; round < 2000; ++round) {
        const std::size_t n = 1 + random() % 9;
        std::vector<std::vector<double>> nodes(n, std::vector<double>(3));
        for (auto& p : nodes)
            for (double& x : p) x = random() % 4 == 0 ? std::round(coordinate(random)) : coordinate(random);
        std::vector<std::vector<unsigned>> elements(1 + random() % 4, std::vector<unsigned>(3));
        for (auto& e : elements)
            for (unsigned& i : e) i = random() % 5 == 0 ? test::N : static_cast<unsigned>(random() % n);

        box3 expected, found;
        for (std::size_t k = 0; k < 3; ++k) {
            std::vector<double> used;
            for (const auto& e : elements)
                for (const unsigned i : e)
                    if (i != test::N) used.push_back(nodes[i][k]);
            std::sort(used.begin(), used.end());
            if (!used.empty()) expected.min[k] = used.front(), expected.max[k] = used.back();
        }
        ASSERT_EQ(inc_bounding_box(test::as_padded_view(points(nodes), -99.0),
                                   test::as_padded_view(columns(elements), 77u), found.min, found.max),
                  0);
        ASSERT_EQ(found, expected) << "round " << round;
    }
}

}  // namespace
