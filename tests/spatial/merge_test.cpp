#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/matrices.h"

namespace {

using namespace zeb::tessolv;
using test::columns;
using test::indices;
using test::N;
using test::points;
using zeb::dense1D;
using zeb::dense2D;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

dense1D<unsigned> identity(unsigned count)
{
    dense1D<unsigned> ids(count);
    for (unsigned i = 0; i < count; ++i) ids[i] = i;
    return ids;
}

// -- what merges into what

TEST(Merge, KeepsTheNodeThatIsMetFirst)
{
    dense2D<double> pos = test::filled(2, 9, 0.0);
    for (unsigned i = 0; i < 9; ++i) pos(0, i) = i;
    pos(0, 7) = pos(0, 3);
    dense2D<unsigned> connect = columns({{1, 3}, {7, 2}});
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(pos, connect, new_IDs, 1e-6, 0), 1);
    EXPECT_EQ(connect, columns({{1, 3}, {3, 2}}));
    EXPECT_EQ(new_IDs[7], 3u);

    dense2D<unsigned> other_way = columns({{1, 7}, {3, 2}});
    EXPECT_EQ(merge(pos, other_way, new_IDs, 1e-6, 0), 1);
    EXPECT_EQ(other_way, columns({{1, 7}, {7, 2}}));
    EXPECT_EQ(new_IDs[3], 7u);
}

TEST(Merge, LeavesTheThirdOfARowWhoseOnlyPartnerIsTaken)
{
    const auto pos = points({{0, 0}, {1, 0}, {2.5, 0}});
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(pos, indices({0, 1, 2}), new_IDs, 1.5), 1);
    EXPECT_EQ(new_IDs, indices({0, 0, 2}));
}

TEST(Merge, AppliesTheClosestPairFirst)
{
    // 1 and 2 are closer than 0 and 1; 0 finds its only neighbour taken.
    const auto pos = points({{0, 0}, {1.5, 0}, {2.5, 0}});
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(pos, indices({0, 1, 2}), new_IDs, 2.0), 2);
    EXPECT_EQ(new_IDs, indices({0, 0, 0}));  // 2 into 1, then 1 into 0, and the path is shortened
    EXPECT_EQ(merge(pos, indices({2, 1, 0}), new_IDs, 2.0), 1);
    EXPECT_EQ(new_IDs, indices({0, 2, 2}));
}

TEST(Merge, PrefersTheFirstVisitAmongEqualDistances)
{
    const auto pos = points({{0, 0}, {1, 0}, {2, 0}, {3, 0}});
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(pos, indices({0, 1, 2, 3}), new_IDs, 1.0), 2);
    EXPECT_EQ(new_IDs, indices({0, 0, 2, 2}));
    EXPECT_EQ(merge(pos, indices({1, 0, 2, 3}), new_IDs, 1.0), 2);
    EXPECT_EQ(new_IDs, indices({1, 1, 1, 3}));
}

TEST(Merge, RoundsDistancesToFloatForTheirOrder)
{
    // As doubles the second pair is closer, as floats they are equal and the first visit counts.
    const double step = 1e-12;
    const auto pos = points({{0, 0}, {1 + step, 0}, {2 + step, 0}});
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(pos, indices({0, 1, 2}), new_IDs, 1.5), 1);
    EXPECT_EQ(new_IDs, indices({0, 0, 2}));
}

TEST(Merge, IncludesTheToleranceItself)
{
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(points({{0, 0}, {3, 4}}), indices({0, 1}), new_IDs, 5.0), 1);
    EXPECT_EQ(merge(points({{0, 0}, {3, 4}}), indices({0, 1}), new_IDs, std::nextafter(5.0, 0.0)), 0);
    EXPECT_EQ(merge(points({{0, 0, 0}, {2, 3, 6}}), indices({0, 1}), new_IDs, 7.0), 1);
}

// The box is rounded apart from the distance: here the distance is 1, but neither node is in the box of the other.
TEST(Merge, NeedsTheTargetInTheBoxToo)
{
    const double off = 1.5 * 0x1p-54;
    const auto pos = points({{-off, 0}, {1, 0}});
    ASSERT_EQ(1.0 - -off, 1.0);
    ASSERT_LT(-off + 1.0, 1.0);
    ASSERT_GT(1.0 - 1.0, -off);
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(pos, indices({0, 1}), new_IDs, 1.0), 0);
    for (unsigned kind = 0; kind < 3; ++kind) {
        dense2D<unsigned> connect = columns({{0, 1}});
        EXPECT_EQ(merge(pos, connect, 1.0, kind), 0) << kind;
    }
}

TEST(Merge, RoundsTheDistanceBeforeTheToleranceInModesOneAndTwo)
{
    const double tolerance_between = 0.1;  // a little less than the float closest to it
    ASSERT_GT(static_cast<double>(0.1f), 0.1);
    const auto pos = points({{0, 0}, {0.1, 0}});
    for (unsigned kind = 0; kind < 3; ++kind) {
        dense2D<unsigned> connect = columns({{0, 1}});
        EXPECT_EQ(merge(pos, connect, tolerance_between, kind), kind == 0 ? 1 : 0) << kind;
    }
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(pos, indices({0, 1}), new_IDs, tolerance_between), 1);
}

TEST(Merge, OfToleranceZeroTakesCoincidentNodesOnly)
{
    const auto pos = points({{0, 0}, {0, -0.0}, {1e-300, 0}, {1e-320, 0}});
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(pos, identity(4), new_IDs, 0.0), 1);
    EXPECT_EQ(new_IDs, indices({0, 0, 2, 3}));
}

TEST(Merge, MergesNoNodeWithANaN)
{
    const auto pos = points({{nan, 0}, {nan, 0}, {0, nan}, {1, 1}, {1, 1}});
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(pos, indices({0, 1}), new_IDs, infinity), 0);
    EXPECT_EQ(new_IDs, identity(5));
    // What the tree hides behind the NaN of a node inserted before is not found either.
    EXPECT_LE(merge(pos, identity(5), new_IDs, infinity), 1);
    EXPECT_EQ(new_IDs[0], 0u);
    EXPECT_EQ(new_IDs[2], 2u);
}

// -- two lists

TEST(Merge, PassesOverASingleHit)
{
    const auto pos = points({{0, 0}, {0.1, 0}, {0.2, 0}});
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(pos, indices({0}), indices({1}), new_IDs, 0.5), 0);
    EXPECT_EQ(new_IDs, identity(3));
    EXPECT_EQ(merge(pos, indices({0}), indices({1, 2}), new_IDs, 0.5), 2);
    EXPECT_EQ(new_IDs, indices({0, 0, 0}));
    EXPECT_EQ(merge(pos, indices({0}), indices({1, 0}), new_IDs, 0.5), 1);
    // A second hit need not be within the tolerance: the corners of the box count.
    const auto corner = points({{0, 0}, {0.1, 0}, {0.5, 0.5}});
    EXPECT_EQ(merge(corner, indices({0}), indices({1, 2}), new_IDs, 0.5), 1);
    EXPECT_EQ(new_IDs, indices({0, 0, 2}));
}

TEST(Merge, NeverMergesAVisitorThatIsNoTarget)
{
    const auto pos = test::filled(3, 4, 0.0);
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(pos, indices({0, 1}), indices({2, 3}), new_IDs, 1.0), 2);
    EXPECT_EQ(new_IDs, indices({0, 1, 0, 0}));
}

TEST(Merge, DoesNotShortenThePathsOfNodesOutsideTheFirstList)
{
    // 2 goes into 1 at once, then 1 into 0; 2 is not in the first list.
    const auto pos = points({{0, 0}, {1.5, 0}, {2.5, 0}});
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(pos, indices({0, 1}), indices({0, 1, 2}), new_IDs, 2.0), 2);
    EXPECT_EQ(new_IDs, indices({0, 0, 1}));
    EXPECT_EQ(merge(pos, indices({0, 1, 2}), indices({0, 1, 2}), new_IDs, 2.0), 2);
    EXPECT_EQ(new_IDs, indices({0, 0, 0}));
}

TEST(Merge, IsTheSameForRepeatedNodes)
{
    const auto pos = points({{0, 0}, {0.1, 0}, {0.2, 0}});
    dense1D<unsigned> once;
    dense1D<unsigned> often;
    EXPECT_EQ(merge(pos, indices({2, 0, 1}), once, 0.15), merge(pos, indices({2, 2, 0, 2, 0, 1, 1, 2}), often, 0.15));
    EXPECT_EQ(once, often);
}

// -- modes

TEST(Merge, OfModeOneNeedsACommonElement)
{
    const auto pos = points({{0, 0}, {0, 0}, {1, 0}, {2, 0}});
    dense2D<unsigned> connect = columns({{0, 2}, {1, 3}});
    EXPECT_EQ(merge(pos, connect, 1e-6, 1), 0);
    EXPECT_EQ(connect, columns({{0, 2}, {1, 3}}));
    EXPECT_EQ(merge(pos, connect, 1e-6, 2), 0);
    EXPECT_EQ(merge(pos, connect, 1e-6, 0), 1);
    EXPECT_EQ(connect, columns({{0, 2}, {0, 3}}));
}

TEST(Merge, OfModeTwoGoesOnUntilNothingMerges)
{
    // Neighbours on a line: a pass halves their number.
    dense2D<double> pos = test::filled(2, 8, 0.0);
    for (unsigned i = 0; i < 8; ++i) pos(0, i) = i;
    dense2D<unsigned> edges(2, 7);
    for (unsigned e = 0; e < 7; ++e) {
        edges(0, e) = e;
        edges(1, e) = e + 1;
    }
    dense2D<unsigned> once = edges;
    EXPECT_EQ(merge(pos, once, 4.0, 1), 4);
    EXPECT_EQ(once, columns({{0, 0}, {0, 2}, {2, 2}, {2, 4}, {4, 4}, {4, 6}, {6, 6}}));
    dense2D<unsigned> repeatedly = edges;
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(pos, repeatedly, new_IDs, 4.0, 2), 7);
    EXPECT_EQ(new_IDs, indices({0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(repeatedly, test::filled(2, 7, 0u));
}

TEST(Merge, NeverVisitsNoneIndex)
{
    const auto pos = points({{0, 0}, {0, 0}, {5, 5}});
    for (unsigned kind = 0; kind < 3; ++kind) {
        dense2D<unsigned> connect = columns({{0, N, 1, N}, {N, 2, N, N}});
        dense1D<unsigned> new_IDs;
        EXPECT_EQ(merge(pos, connect, new_IDs, 1.0, kind), 1) << kind;
        EXPECT_EQ(connect, columns({{0, N, 0, N}, {N, 2, N, N}})) << kind;
        EXPECT_EQ(new_IDs, indices({0, 0, 2})) << kind;
    }
}

TEST(Merge, TakesTheVisitsInTheOrderOfTheRange)
{
    const auto pos = points({{0, 0}, {0, 0}, {0, 0}});
    for (unsigned kind = 0; kind < 3; ++kind) {
        dense2D<unsigned> meshes[] = {dense2D<unsigned>(), columns({{2, 1, 0}}), columns({{0}, {1}})};
        dense1D<unsigned> new_IDs;
        EXPECT_EQ(merge(pos, meshes, meshes + 3, new_IDs, 0.0, kind), 2) << kind;
        EXPECT_EQ(new_IDs, indices({2, 2, 2})) << kind;
        EXPECT_EQ(meshes[2], columns({{2}, {2}})) << kind;
    }
}

TEST(Merge, WithoutAToleranceUsesAMillionth)
{
    const auto pos = points({{0, 0}, {1e-6, 0}, {1, 0}, {1 + 1.1e-6, 0}});
    dense2D<unsigned> connect = columns({{0, 1}, {2, 3}});
    dense2D<unsigned> other = columns({{3, 2, 1}});
    EXPECT_EQ(merge(pos, connect), 1);
    EXPECT_EQ(connect, columns({{0, 0}, {2, 3}}));
    dense2D<unsigned> again = columns({{0, 1}});
    EXPECT_EQ(merge(pos, other, again), 1);
    EXPECT_EQ(other, columns({{3, 2, 1}}));
    EXPECT_EQ(again, columns({{1, 1}}));
}

// -- coordinates

TEST(Merge, OfColumnsKeepsTheirNumberAndMovesThem)
{
    dense2D<double> pos = points({{0, 0}, {5, 5}, {0.3, 0}, {5, 5.1}});
    EXPECT_EQ(merge(pos, 0.5), 2);
    EXPECT_EQ(pos, points({{0, 0}, {5, 5}, {0, 0}, {5, 5}}));
    EXPECT_EQ(merge(pos, 0.0), 2);
    EXPECT_EQ(merge(pos, infinity), 3);
    EXPECT_EQ(pos, points({{0, 0}, {0, 0}, {0, 0}, {0, 0}}));
}

TEST(Merge, OfColumnsGivesThemANewBuffer)
{
    dense2D<double> pos = points({{0, 0, 0}, {0.1, 0, 0}});
    dense2D<double> sharer;
    sharer.shallow_copy(pos);
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(pos, new_IDs, 1.0), 1);
    EXPECT_EQ(pos, points({{0, 0, 0}, {0, 0, 0}}));
    EXPECT_EQ(sharer, points({{0, 0, 0}, {0.1, 0, 0}}));
    EXPECT_EQ(pos.buffer->ref_count, 1);
    EXPECT_EQ(sharer.buffer->ref_count, 1);
    EXPECT_EQ(new_IDs.buffer->ref_count, 1);
}

}  // namespace
