#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "support/matrices.h"

using namespace zeb::tessolv;
using test::columns;
using test::N;
using test::points;

namespace {

constexpr double largest = 1.7976931348623157e308;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
const dense2D<double> three_nodes = points({{0, 0}, {2, 0}, {0, 7}});

dense2D<double> lengths_of(const dense2D<double>& pos, const std::vector<std::vector<unsigned>>& edges)
{
    dense2D<double> lengths = points({{1, 2}});
    EXPECT_EQ(edge_lengths(pos, columns(edges), lengths), 0);
    return lengths;
}

void expect_empty(const dense2D<double>& m)
{
    EXPECT_EQ(m.size, 0u);
    EXPECT_EQ(m.rows, 0u);
    EXPECT_EQ(m.cols, 0u);
}

TEST(EdgeLengths, OfASingleEdgeStandAtItsEndsAndExtremesElsewhere)
{
    EXPECT_EQ(lengths_of(three_nodes, {{0, 1}}), points({{2, 2, 2}, {2, 2, 2}, {largest, 0, -largest}}));
}

TEST(EdgeLengths, AreShortestMeanAndLongest)
{
    const auto pos = points({{0, 0}, {3, 4}, {6, 8}, {0, 1}});
    EXPECT_EQ(lengths_of(pos, {{0, 1}, {2, 0}, {0, 3}}),
              points({{1, 16.0 / 3, 10}, {5, 5, 5}, {10, 10, 10}, {1, 1, 1}}));
}

TEST(EdgeLengths, CountRepeatedEdgesEachTimeAndLoopsTwice)
{
    EXPECT_EQ(lengths_of(three_nodes, {{0, 1}, {1, 0}, {0, 0}}),
              points({{0, 1, 2}, {2, 2, 2}, {largest, 0, -largest}}));
}

TEST(EdgeLengths, UseEveryCoordinateRow)
{
    EXPECT_EQ(lengths_of(points({{1}, {4}}), {{0, 1}}), points({{3, 3, 3}, {3, 3, 3}}));
    EXPECT_EQ(lengths_of(points({{0, 0, 0}, {2, 3, 6}}), {{0, 1}}), points({{7, 7, 7}, {7, 7, 7}}));
    EXPECT_EQ(lengths_of(points({{0, 0, 0, 0}, {1, 1, 1, 1}}), {{0, 1}}), points({{2, 2, 2}, {2, 2, 2}}));
    EXPECT_EQ(lengths_of(dense2D<double>(0, 2), {{0, 1}}), points({{0, 0, 0}, {0, 0, 0}}));
}

TEST(EdgeLengths, AreEmptyWithoutEdges)
{
    for (const auto& none :
         {dense2D<unsigned>(), dense2D<unsigned>(2, 0), dense2D<unsigned>(0, 5), dense2D<unsigned>(7, 0)}) {
        dense2D<double> lengths = points({{1, 2, 3}});
        EXPECT_EQ(edge_lengths(three_nodes, none, lengths), 0);
        expect_empty(lengths);
    }
}

TEST(EdgeLengths, RefuseBadEdges)
{
    const std::vector<dense2D<unsigned>> refused{columns({{0, 3}}), columns({{0, 1}, {N, 0}}), columns({{N - 1, 0}}),
                                                 columns({{0}}),    columns({{0, 1, 2}}),      test::filled(4, 2, 0u)};
    for (const auto& edges : refused) {
        dense2D<double> lengths = points({{1, 2, 3}});
        EXPECT_EQ(edge_lengths(three_nodes, edges, lengths), -2);
        expect_empty(lengths);
    }
    dense2D<double> lengths = points({{1, 2, 3}});
    EXPECT_EQ(edge_lengths(dense2D<double>(), columns({{0, 0}}), lengths), -2);
    expect_empty(lengths);
}

TEST(EdgeLengths, MayReplaceTheCoordinatesOrAView)
{
    dense2D<double> pos = three_nodes;
    const dense2D<double> shared = pos.sub_matrix(0, 0, 2, 3);
    EXPECT_EQ(edge_lengths(pos, columns({{0, 1}}), pos), 0);
    EXPECT_EQ(pos, points({{2, 2, 2}, {2, 2, 2}, {largest, 0, -largest}}));
    EXPECT_EQ(shared, three_nodes);
    EXPECT_EQ(pos.buffer->ref_count, 1);
    EXPECT_EQ(pos.ld, 3u);

    dense2D<double> whole = test::filled(3, 4, 1.0);
    dense2D<double> view = whole.sub_matrix(0, 1, 3, 3);
    EXPECT_EQ(edge_lengths(three_nodes, columns({{0, 1}}), view), 0);
    EXPECT_EQ(whole, test::filled(3, 4, 1.0));
}

TEST(EdgeLengths, AddANaNToTheMeanOnly)
{
    const auto lengths = lengths_of(points({{0, 0}, {nan, 0}, {0, 3}}), {{0, 1}, {0, 2}});
    EXPECT_EQ(lengths(0, 0), 3);
    EXPECT_TRUE(std::isnan(lengths(1, 0)));
    EXPECT_EQ(lengths(2, 0), 3);
    EXPECT_EQ(lengths(0, 1), largest);
    EXPECT_EQ(lengths(2, 1), -largest);
}

TEST(EdgeLengths, OfInfiniteEdgesAreNoMinimum)
{
    EXPECT_EQ(lengths_of(points({{0, 0}, {infinity, 0}}), {{0, 1}}),
              points({{largest, infinity, infinity}, {largest, infinity, infinity}}));
}

TEST(EdgeLengths, AreThoseOfTheListsOfEveryNode)
{
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        const unsigned rows = 1 + static_cast<unsigned>(random() % 4);
        const unsigned nodes = 1 + static_cast<unsigned>(random() % 9);
        const unsigned count = 1 + static_cast<unsigned>(random() % 20);
        dense2D<double> pos(rows, nodes);
        for (unsigned j = 0; j < nodes; ++j)
            for (unsigned i = 0; i < rows; ++i)
                pos(i, j) = random() % 4 == 0 ? 1.0 : static_cast<double>(random()) / 3e9;
        dense2D<unsigned> edges(2, count);
        std::vector<std::vector<double>> incident(nodes);
        for (unsigned e = 0; e < count; ++e) {
            edges(0, e) = static_cast<unsigned>(random() % nodes);
            edges(1, e) = static_cast<unsigned>(random() % nodes);
            double square = 0;
            for (unsigned i = 0; i < rows; ++i) {
                const double d = pos(i, edges(0, e)) - pos(i, edges(1, e));
                square += d * d;
            }
            incident[edges(0, e)].push_back(std::sqrt(square));
            incident[edges(1, e)].push_back(std::sqrt(square));
        }
        dense2D<double> expected(3, nodes);
        for (unsigned j = 0; j < nodes; ++j) {
            double sum = 0;
            for (const double length : incident[j]) sum += length;
            std::sort(incident[j].begin(), incident[j].end());
            const bool touched = !incident[j].empty();
            expected(0, j) = touched ? incident[j].front() : largest;
            expected(1, j) = touched ? sum / static_cast<double>(incident[j].size()) : 0;
            expected(2, j) = touched ? incident[j].back() : -largest;
        }
        dense2D<double> lengths, of_views;
        ASSERT_EQ(edge_lengths(pos, edges, lengths), 0);
        ASSERT_EQ(lengths, expected);
        ASSERT_EQ(edge_lengths(test::as_padded_view(pos, nan), test::as_padded_view(edges, N), of_views), 0);
        ASSERT_EQ(of_views, expected);
    }
}

}  // namespace
