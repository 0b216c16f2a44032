#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "support/matrices.h"

using namespace zeb::tessolv;
using test::columns;
using test::filled;
using test::points;

namespace {

using vec3 = vector_fixed<double, 3>;
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();
const vec3 origin, up(0, 0, 1);

// Nodes 0 to 3 above z = 0, 4 on it, 5 below.
const dense2D<double> nodes = points({{0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {0, 0, 2}, {0, 0, 0}, {0, 0, -1}});

TEST(Clip, KeepsWhatLiesAboveThePlaneAndDropsWhatTouchesIt)
{
    dense2D<unsigned> out;
    EXPECT_EQ(clip(nodes, columns({{0, 1, 2, 3}, {0, 1, 2, 4}, {3, 2, 1, 0}, {0, 1, 2, 5}}), origin, up, out), 0);
    EXPECT_EQ(out, columns({{0, 1, 2, 3}, {3, 2, 1, 0}}));
}

TEST(Clip, LooksAtEveryRowOfAColumn)
{
    for (unsigned row = 0; row < 6; ++row) {
        std::vector<unsigned> element(6, 0);
        element[row] = 5;
        dense2D<unsigned> out;
        EXPECT_EQ(clip(nodes, columns({element}), origin, up, out), 0);
        EXPECT_EQ(out, dense2D<unsigned>());
    }
}

TEST(Clip, AppendsBehindTheColumnsThatTheOutputHas)
{
    auto out = columns({{9, 9, 9}, {8, 8, 8}});
    EXPECT_EQ(clip(nodes, columns({{0, 1, 2}, {5, 1, 2}, {2, 3, 0}}), origin, up, out), 0);
    EXPECT_EQ(out, columns({{9, 9, 9}, {8, 8, 8}, {0, 1, 2}, {2, 3, 0}}));
}

TEST(Clip, TakesAPointAndANormalOfAnyLength)
{
    dense2D<unsigned> out;
    EXPECT_EQ(clip(nodes, columns({{0}, {3}}), vec3(5, 5, 1.5), vec3(0, 0, 1e-6), out), 0);
    EXPECT_EQ(out, columns({{3}}));
    EXPECT_EQ(clip(nodes, columns({{0}, {3}}), vec3(5, 5, 1.5), vec3(0, 0, -1e6), out), 0);
    EXPECT_EQ(out, columns({{3}, {0}}));
}

TEST(Clip, TreatsAFlatMeshInThePlaneZ0)
{
    const auto flat = points({{1, 0}, {2, 0}, {1, 1}, {0, 1}});
    dense2D<unsigned> out;
    EXPECT_EQ(clip(flat, columns({{0, 1, 2}, {0, 1, 3}}), origin, vec3(1, 0, 0), out), 0);
    EXPECT_EQ(out, columns({{0, 1, 2}}));
}

TEST(Clip, WhatTheCoordinatesDoNotHaveLiesInThePlaneWhateverThePoint)
{
    const auto flat = points({{1, 0}});
    dense2D<unsigned> out;
    EXPECT_EQ(clip(flat, columns({{0}}), vec3(0, 0, -5), up, out), 0);
    EXPECT_EQ(clip(flat, columns({{0}}), vec3(0, 0, 5), vec3(0, 0, -1), out), 0);
    EXPECT_EQ(out, dense2D<unsigned>());
    EXPECT_EQ(clip(flat, columns({{0}}), vec3(0, 0, 5), vec3(1, 0, 1), out), 0);
    EXPECT_EQ(out, columns({{0}}));
    EXPECT_EQ(clip(filled(0, 1, 0.0), columns({{0}}), vec3(-1, -1, -1), vec3(1, 1, 1), out), 0);
    EXPECT_EQ(out.cols, 1u);
}

TEST(Clip, IgnoresRowsBeyondTheThird)
{
    const auto pos = points({{0, 0, -1, 100}, {0, 0, 1, -100}});
    dense2D<unsigned> out;
    EXPECT_EQ(clip(pos, columns({{0}, {1}}), origin, up, out), 0);
    EXPECT_EQ(out, columns({{1}}));
}

TEST(Clip, SkipsNoneIndexAndKeepsAColumnOfNothingElse)
{
    dense2D<unsigned> out;
    const auto mixed =
        columns({{0, 1, 2, test::N}, {0, 1, 2, 5}, {test::N, test::N, test::N, test::N}, {5, test::N, 0, 0}});
    EXPECT_EQ(clip(nodes, mixed, origin, up, out), 0);
    EXPECT_EQ(out, columns({{0, 1, 2, test::N}, {test::N, test::N, test::N, test::N}}));
}

TEST(Clip, ANodeThatIsNoNumberIsOutside)
{
    const auto pos = points({{0, 0, nan_value}, {nan_value, 0, 1}, {0, 0, inf}, {0, 0, -inf}});
    dense2D<unsigned> out;
    EXPECT_EQ(clip(pos, columns({{0}, {1}, {2}, {3}}), origin, up, out), 0);
    EXPECT_EQ(out, columns({{2}}));
    EXPECT_EQ(clip(nodes, columns({{0}}), origin, vec3(0, 0, nan_value), out), 0);
    EXPECT_EQ(out.cols, 1u);
}

TEST(Clip, AnEmptyConnectivityIsNothingToDoWhateverElseIsWrong)
{
    auto out = columns({{1, 2}});
    for (const auto& connect : {dense2D<unsigned>(), filled(4, 0, 0u), filled(0, 4, 0u)})
        EXPECT_EQ(clip(dense2D<double>(), connect, origin, vec3(), out), 0);
    EXPECT_EQ(out, columns({{1, 2}}));
}

TEST(Clip, WhatIsNotKeptLeavesAnOutputWithoutEntriesAsItWas)
{
    dense2D<unsigned> none, rows_only = filled(7, 0, 0u), columns_only = filled(0, 5, 0u);
    for (auto* out : {&none, &rows_only, &columns_only}) {
        const auto rows = out->rows, cols = out->cols;
        EXPECT_EQ(clip(nodes, columns({{5, 0}}), origin, up, *out), 0);
        EXPECT_EQ(out->rows, rows);
        EXPECT_EQ(out->cols, cols);
        EXPECT_EQ(clip(nodes, columns({{5, 0}, {1, 0}}), origin, up, *out), 0);
        EXPECT_EQ(*out, columns({{1, 0}}));
        EXPECT_EQ(out->size, 2u);
    }
}

TEST(Clip, RefusesANormalShorterThanTheLeastLength)
{
    auto out = columns({{9, 9}});
    EXPECT_EQ(clip(nodes, columns({{0, 1}}), origin, vec3(0, 0, 1e-13), out), -4);
    EXPECT_EQ(out, columns({{9, 9}}));
}

TEST(Clip, ANormalOfTheLeastLengthIsTaken)
{
    dense2D<unsigned> out;
    EXPECT_EQ(clip(nodes, columns({{0}}), origin, vec3(0, 0, 1.0000001e-12), out), 0);
    EXPECT_EQ(out, columns({{0}}));
}

TEST(Clip, TheConnectivityMayBeTheOutput)
{
    auto connect = columns({{0, 1}, {0, 5}, {3, 2}});
    EXPECT_EQ(clip(nodes, connect, origin, up, connect), 0);
    EXPECT_EQ(connect, columns({{0, 1}, {0, 5}, {3, 2}, {0, 1}, {3, 2}}));
}

TEST(Clip, AnOutputThatSharesItsBufferMovesToOneOfItsOwn)
{
    auto connect = columns({{5, 1}, {0, 5}, {3, 2}});
    auto out = connect.sub_matrix(0, 0, 2, 1);  // appending in place would write over the second element
    EXPECT_EQ(clip(nodes, connect, origin, up, out), 0);
    EXPECT_EQ(out, columns({{5, 1}, {3, 2}}));
    EXPECT_EQ(connect, columns({{5, 1}, {0, 5}, {3, 2}}));
    EXPECT_NE(out.buffer, connect.buffer);
}

TEST(Clip, AppendsInPlaceWhereThereIsRoom)
{
    auto out = columns({{4, 4}});
    ASSERT_TRUE(out.reserve(2, 10));
    const auto* data = out.buffer->data;
    EXPECT_EQ(clip(nodes, columns({{0, 1}, {3, 2}}), origin, up, out), 0);
    EXPECT_EQ(out.buffer->data, data);
    EXPECT_EQ(out, columns({{4, 4}, {0, 1}, {3, 2}}));
}

TEST(Clip, KeepsTheLeadingDimensionOfTheOutput)
{
    auto whole = filled(4, 9, 99u);
    auto out = whole.sub_matrix(1, 0, 2, 1);
    whole = dense2D<unsigned>();  // now nobody else looks into the buffer, and there is room behind the column
    EXPECT_EQ(clip(nodes, columns({{0, 1}, {0, 5}, {3, 2}}), origin, up, out), 0);
    EXPECT_EQ(out, columns({{99, 99}, {0, 1}, {3, 2}}));
}

// Random meshes: every node of every element by itself, in integers, so that being on the plane is no matter of
// rounding.
TEST(Clip, AgreesWithIntegersOnRandomMeshes)
{
    std::mt19937 random(11);
    const auto small = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(2 * n + 1)) - n; };
    for (int round = 0; round < 3000; ++round) {
        const auto rows = 2 + random() % 3, n = 1 + random() % 8, width = 1 + random() % 4;
        std::vector<std::vector<double>> pos(n, std::vector<double>(rows));
        for (auto& p : pos)
            for (double& x : p) x = small(3);
        std::vector<std::vector<unsigned>> connect(1 + random() % 6, std::vector<unsigned>(width));
        for (auto& e : connect)
            for (unsigned& i : e) i = random() % 10 == 0 ? test::N : static_cast<unsigned>(random() % n);
        const int c[] = {small(2), small(2), small(2)}, normal[] = {small(1), small(1), 1};

        std::vector<std::vector<unsigned>> expected{std::vector<unsigned>(width, 42)};
        for (const auto& e : connect) {
            bool keep = true;
            for (const unsigned i : e) {
                int height = 0;
                for (unsigned k = 0; i != test::N && k < std::min<unsigned long>(rows, 3); ++k)
                    height += (static_cast<int>(pos[i][k]) - c[k]) * normal[k];
                keep = keep && (i == test::N || height > 0);
            }
            if (keep) expected.push_back(e);
        }
        auto out = filled(width, 1, 42u);
        ASSERT_EQ(clip(test::as_padded_view(points(pos), 50.0), test::as_padded_view(columns(connect), 77u),
                       vec3(c[0], c[1], c[2]), vec3(normal[0], normal[1], normal[2]), out),
                  0);
        ASSERT_EQ(out, columns(expected)) << "round " << round;
    }
}

}  // namespace
