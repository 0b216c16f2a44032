#include <gtest/gtest.h>

#include <limits>

#include "support/matrices.h"

namespace {

using namespace zeb::tessolv;
using test::columns;
using test::indices;
using test::points;
using zeb::dense1D;
using zeb::dense2D;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(Merge, ReadsAndWritesThroughViews)
{
    const auto pos = test::as_padded_view(points({{0, 0}, {1, 0}, {0, 0}, {1, 0}}), nan);
    for (unsigned kind = 0; kind < 3; ++kind) {
        dense2D<unsigned> whole(7, 5, 2u);  // the frame holds a number that would be changed
        dense2D<unsigned> view = whole.sub_matrix(2, 1, 4, 2);
        for (unsigned e = 0; e < 2; ++e)
            for (unsigned r = 0; r < 4; ++r) view(r, e) = (r + e) % 4;
        EXPECT_EQ(merge(pos, view, 0.0, kind), 2) << kind;
        EXPECT_EQ(view, columns({{0, 1, 0, 1}, {1, 0, 1, 0}})) << kind;
        EXPECT_EQ(view.buffer, whole.buffer) << kind;
        EXPECT_EQ(whole(2, 1), 0u) << kind;
        EXPECT_EQ(whole(4, 1), 0u) << kind;
        EXPECT_EQ(whole(0, 0), 2u) << kind;
        EXPECT_EQ(whole(6, 1), 2u) << kind;
        EXPECT_EQ(whole(1, 2), 2u) << kind;
    }
    dense2D<double> moved = pos.sub_matrix(0, 0, 2, 4);
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(moved, new_IDs, 0.0), 2);
    EXPECT_EQ(new_IDs, indices({0, 1, 0, 1}));
    const auto list = indices({9, 3, 1, 9}).sub_vector(1, 2);
    EXPECT_EQ(merge(pos, list, new_IDs, 0.0), 1);
    EXPECT_EQ(new_IDs, indices({0, 3, 2, 3}));
}

TEST(Merge, OfTwoMatricesGivesThemNewBuffersOnlyOnSuccess)
{
    const auto pos = points({{0, 0}, {0, 0}});
    dense2D<unsigned> one = columns({{0, 1}});
    dense2D<unsigned> two = columns({{1}});
    dense2D<unsigned> sharer;
    sharer.shallow_copy(one);
    EXPECT_EQ(merge(pos, one, two, -1.0), -5);
    EXPECT_EQ(one.buffer, sharer.buffer);
    EXPECT_EQ(merge(dense2D<double>(2, 0), one, two, 1.0), 0);
    EXPECT_NE(one.buffer, sharer.buffer);
    EXPECT_EQ(one, sharer);
    EXPECT_EQ(merge(pos, one, two, 1.0), 1);
    EXPECT_EQ(one, columns({{0, 0}}));
    EXPECT_EQ(two, columns({{0}}));
    EXPECT_EQ(sharer, columns({{0, 1}}));
    EXPECT_EQ(one.buffer->ref_count, 1);
}

TEST(Merge, TakesTheSameMatrixTwice)
{
    const auto pos = points({{0, 0}, {0, 0}});
    dense2D<unsigned> connect = columns({{0, 1}});
    EXPECT_EQ(merge(pos, connect, connect, 1.0), 1);
    EXPECT_EQ(connect, columns({{0, 0}}));
}

TEST(Merge, TakesMatricesThatShareABuffer)
{
    const auto pos = points({{0, 0}, {0, 0}, {1, 1}, {1, 1}});
    for (unsigned kind = 0; kind < 3; ++kind) {
        dense2D<unsigned> meshes[3];
        meshes[0] = columns({{0, 1, 2, 3}, {3, 2, 1, 0}});
        meshes[1].shallow_copy(meshes[0]);
        meshes[2] = dense2D<unsigned>(meshes[0].sub_matrix(1, 0, 2, 2));
        meshes[2].shallow_copy(meshes[0].sub_matrix(1, 0, 2, 2));
        EXPECT_EQ(merge(pos, meshes, meshes + 3, 0.0, kind), 2) << kind;
        EXPECT_EQ(meshes[1], columns({{0, 0, 2, 2}, {2, 2, 0, 0}})) << kind;
        EXPECT_EQ(meshes[2], columns({{0, 2}, {2, 0}})) << kind;
    }
}

TEST(Merge, TakesTheListAsTheResult)
{
    const auto pos = points({{0, 0}, {0, 0}, {1, 1}});
    dense1D<unsigned> nodes = indices({1, 0});
    EXPECT_EQ(merge(pos, nodes, nodes, 0.0), 1);
    EXPECT_EQ(nodes, indices({1, 1, 2}));
    dense1D<unsigned> first = indices({0, 1});
    EXPECT_EQ(merge(pos, first, indices({0, 1, 2}), first, 0.0), 1);
    EXPECT_EQ(first, indices({0, 0, 2}));
    dense1D<unsigned> second = indices({0, 1});
    EXPECT_EQ(merge(pos, indices({1, 2}), second, second, 0.0), 1);
    EXPECT_EQ(second, indices({1, 1, 2}));
    dense1D<unsigned> failing = indices({0, 5});
    EXPECT_EQ(merge(pos, failing, failing, 0.0), -2);
    EXPECT_EQ(failing.size, 0u);
}

TEST(Merge, TakesAResultThatLooksIntoTheMatrix)
{
    const auto pos = points({{0, 0}, {0, 0}, {1, 1}});
    dense2D<unsigned> connect = columns({{0, 1, 2}, {2, 1, 0}});
    dense1D<unsigned> new_IDs;
    new_IDs.shallow_copy(connect.col(1));
    EXPECT_EQ(merge(pos, connect, new_IDs, 0.0), 1);
    EXPECT_EQ(connect, columns({{0, 0, 2}, {2, 0, 0}}));
    EXPECT_EQ(new_IDs, indices({0, 0, 2}));
    EXPECT_NE(new_IDs.buffer, connect.buffer);
}

}  // namespace
