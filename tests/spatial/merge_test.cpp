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

// -- codes: every combination of faults gives the first in the order of the checks

enum fault : unsigned { no_column = 1, rows = 2, range = 4, tolerance = 8, mode = 16, index = 32, all_faults = 64 };

int first_code(unsigned faults, std::initializer_list<std::pair<fault, int>> order)
{
    for (const auto& [kind, code] : order)
        if ((faults & kind) != 0) return code;
    return 1;  // one merge
}

dense2D<double> coordinates(unsigned faults)
{
    const std::uint64_t count = (faults & no_column) != 0 ? 0 : 3;
    dense2D<double> pos = test::filled((faults & rows) != 0 ? 4 : 2, count, 0.0);
    if (count != 0) pos(0, 2) = 9;
    return pos;
}

double tolerance_with(unsigned faults)
{
    return (faults & tolerance) != 0 ? nan : 0.5;
}

TEST(Merge, OnListsGivesTheFirstCodeOfSeveralFaults)
{
    for (unsigned faults = 0; faults < all_faults; ++faults) {
        if ((faults & (range | mode)) != 0) continue;
        SCOPED_TRACE(faults);
        const auto pos = coordinates(faults);
        const auto nodes = (faults & index) != 0 ? indices({0, 1, 3}) : indices({0, 1, 2});
        const int code = first_code(faults, {{no_column, 0}, {rows, -1}, {tolerance, -4}, {index, -2}});
        dense1D<unsigned> one = indices({7});
        dense1D<unsigned> two = indices({7});
        dense1D<unsigned> three = indices({7});
        EXPECT_EQ(merge(pos, nodes, one, tolerance_with(faults)), code);
        EXPECT_EQ(merge(pos, nodes, indices({0, 1, 2}), two, tolerance_with(faults)), code);
        EXPECT_EQ(merge(pos, indices({0, 1, 2}), nodes, three, tolerance_with(faults)), code);
        const auto expected = code == 1 ? indices({0, 0, 2}) : indices({});
        EXPECT_EQ(one, expected);
        EXPECT_EQ(two, expected);
        EXPECT_EQ(three, expected);
    }
}

TEST(Merge, OnRangesGivesTheFirstCodeOfSeveralFaults)
{
    for (unsigned faults = 0; faults < all_faults; ++faults) {
        SCOPED_TRACE(faults);
        const auto pos = coordinates(faults);
        const auto connect = (faults & index) != 0 ? columns({{0, 1, 3}}) : columns({{0, 1, 2}});
        const double within = tolerance_with(faults);
        const unsigned kind = (faults & mode) != 0 ? 3 : 0;
        const int code =
            first_code(faults, {{no_column, 0}, {rows, -1}, {range, -3}, {tolerance, -5}, {mode, -6}, {index, -2}});
        const auto renumbered = code == 1 ? columns({{0, 0, 2}}) : connect;
        const auto expected = code == 1 ? indices({0, 0, 2}) : indices({});

        dense2D<unsigned> meshes[] = {connect, columns({{2}})};
        dense2D<unsigned>* first = (faults & range) != 0 ? meshes + 1 : meshes;
        dense2D<unsigned>* last = (faults & range) != 0 ? meshes : meshes + 2;
        dense1D<unsigned> new_IDs = indices({7});
        EXPECT_EQ(merge(pos, first, last, new_IDs, within, kind), code);
        EXPECT_EQ(new_IDs, expected);
        EXPECT_EQ(meshes[0], renumbered);
        meshes[0] = connect;
        EXPECT_EQ(merge(pos, first, last, within, kind), code);
        EXPECT_EQ(meshes[0], renumbered);
        if ((faults & range) != 0) continue;

        dense2D<unsigned> one = connect;
        new_IDs = indices({7});
        EXPECT_EQ(merge(pos, one, new_IDs, within, kind), code);
        EXPECT_EQ(new_IDs, expected);
        EXPECT_EQ(one, renumbered);
        one = connect;
        EXPECT_EQ(merge(pos, one, within, kind), code);
        EXPECT_EQ(one, renumbered);

        one = connect;
        dense2D<unsigned> two = connect;
        new_IDs = indices({7});
        EXPECT_EQ(merge(pos, one, two, new_IDs, within, kind), code);
        EXPECT_EQ(new_IDs, expected);
        EXPECT_EQ(one, renumbered);
        EXPECT_EQ(two, renumbered);
        one = two = connect;
        EXPECT_EQ(merge(pos, one, two, within, kind), code);
        EXPECT_EQ(one, renumbered);
        EXPECT_EQ(two, renumbered);
        if ((faults & (tolerance | mode)) != 0) continue;

        one = two = connect;
        EXPECT_EQ(merge(pos, one), code);
        EXPECT_EQ(one, renumbered);
        one = connect;
        EXPECT_EQ(merge(pos, one, two), code);
        EXPECT_EQ(one, renumbered);
        EXPECT_EQ(two, renumbered);
    }
}

TEST(Merge, OnColumnsGivesTheFirstCodeOfSeveralFaults)
{
    for (unsigned faults = 0; faults < all_faults; ++faults) {
        if ((faults & (range | mode | index)) != 0) continue;
        SCOPED_TRACE(faults);
        const auto before = coordinates(faults);
        const int code = first_code(faults, {{no_column, 0}, {rows, -1}, {tolerance, -3}});
        auto pos = before;
        dense1D<unsigned> new_IDs = indices({7});
        EXPECT_EQ(merge(pos, new_IDs, tolerance_with(faults)), code);
        EXPECT_EQ(pos, before);
        EXPECT_EQ(new_IDs, code == 1 ? indices({0, 0, 2}) : indices({}));
        EXPECT_EQ(merge(pos, tolerance_with(faults)), code);
        EXPECT_EQ(pos, before);
    }
}

TEST(Merge, RefusesNegativeTolerancesAndTakesZerosAndInfinity)
{
    const auto pos = points({{0, 0}, {0, 0}, {3, 0}});
    dense1D<unsigned> new_IDs;
    dense2D<unsigned> connect = columns({{0, 1, 2}});
    for (const double bad : {-1e-300, -1.0, -infinity, nan, -nan}) {
        dense2D<double> moved = pos;
        EXPECT_EQ(merge(pos, identity(3), new_IDs, bad), -4) << bad;
        EXPECT_EQ(merge(pos, connect, bad), -5) << bad;
        EXPECT_EQ(merge(moved, bad), -3) << bad;
    }
    EXPECT_EQ(merge(pos, identity(3), new_IDs, 0.0), 1);
    EXPECT_EQ(merge(pos, identity(3), new_IDs, -0.0), 1);
    EXPECT_EQ(merge(pos, identity(3), new_IDs, infinity), 2);
    EXPECT_EQ(merge(pos, identity(3), new_IDs, std::numeric_limits<double>::max()), 2);
    EXPECT_EQ(merge(pos, identity(3), new_IDs, std::numeric_limits<double>::denorm_min()), 1);
}

TEST(Merge, TakesNoneIndexInAListAsTooLarge)
{
    const auto pos = points({{0, 0}, {0, 0}});
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(pos, indices({0, N}), new_IDs, 1.0), -2);
    EXPECT_EQ(merge(pos, indices({0, 1}), indices({N}), new_IDs, 1.0), -2);
    EXPECT_EQ(merge(pos, indices({4294967294u}), new_IDs, 1.0), -2);
    EXPECT_EQ(merge(pos, indices({2}), new_IDs, 1.0), -2);
}

TEST(Merge, TakesModesZeroToTwo)
{
    const auto pos = points({{0, 0}, {0, 0}});
    for (unsigned kind = 0; kind < 3; ++kind) {
        dense2D<unsigned> connect = columns({{0, 1}});
        EXPECT_EQ(merge(pos, connect, 0.0, kind), 1) << kind;
    }
    for (const unsigned kind : {3u, 77u, N}) {
        dense2D<unsigned> connect = columns({{0, 1}});
        EXPECT_EQ(merge(pos, connect, 0.0, kind), -6) << kind;
    }
}

// -- nothing to do

TEST(Merge, LeavesNewNumbersEmptyForAnEmptyList)
{
    const auto pos = points({{0, 0}, {0, 0}});
    dense1D<unsigned> new_IDs = indices({5});
    EXPECT_EQ(merge(pos, dense1D<unsigned>(), new_IDs, 1.0), 0);
    EXPECT_EQ(new_IDs.size, 0u);
    new_IDs = indices({5});
    EXPECT_EQ(merge(pos, indices({0, 1}), dense1D<unsigned>(), new_IDs, 1.0), 0);
    EXPECT_EQ(new_IDs.size, 0u);
    EXPECT_EQ(merge(pos, indices({9}), dense1D<unsigned>(), new_IDs, 1.0), 0);  // empty comes before the index
    EXPECT_EQ(merge(pos, dense1D<unsigned>(), indices({9}), new_IDs, 1.0), 0);
    EXPECT_EQ(merge(pos, dense1D<unsigned>(), new_IDs, -1.0), -4);
}

TEST(Merge, LeavesNewNumbersEmptyWhereMatricesUseNoNode)
{
    const auto pos = points({{0, 0}, {0, 0}});
    dense1D<unsigned> new_IDs = indices({5});
    dense2D<unsigned> meshes[] = {columns({{N, N}, {N, N}}), dense2D<unsigned>(), dense2D<unsigned>(3, 0)};
    EXPECT_EQ(merge(pos, meshes, meshes + 3, new_IDs, 1.0), 0);
    EXPECT_EQ(new_IDs.size, 0u);
    EXPECT_EQ(meshes[0], columns({{N, N}, {N, N}}));
    EXPECT_EQ(merge(pos, meshes, meshes, new_IDs, 1.0), 0);
    EXPECT_EQ(merge(pos, static_cast<dense2D<unsigned>*>(nullptr), nullptr, new_IDs, 1.0, 2), 0);
}

TEST(Merge, GivesZeroForCoordinatesWithoutColumnsBeforeAnythingElse)
{
    dense2D<double> pos(3, 0);
    dense2D<double> bare;
    dense2D<unsigned> meshes[] = {columns({{0, 1}}), columns({{5}})};
    dense1D<unsigned> new_IDs = indices({5});
    EXPECT_EQ(merge(pos, meshes + 2, meshes, new_IDs, nan, 9), 0);
    EXPECT_EQ(new_IDs.size, 0u);
    EXPECT_EQ(merge(bare, meshes + 2, meshes, nan, 9), 0);
    EXPECT_EQ(merge(bare, indices({4}), new_IDs, nan), 0);
    EXPECT_EQ(merge(bare, nan), 0);
    EXPECT_EQ(merge(dense2D<double>(0, 4), indices({0}), new_IDs, 1.0), -1);
}

TEST(Merge, ListsEveryNodeAsItselfWhereNothingIsClose)
{
    const auto pos = points({{0, 0}, {1, 0}, {2, 0}, {2, 0}});
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(pos, indices({0, 1, 2}), new_IDs, 0.5), 0);
    EXPECT_EQ(new_IDs, identity(4));
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

// -- views, sharing, aliases

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
