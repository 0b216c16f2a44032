#include <gtest/gtest.h>

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

TEST(Merge, ChecksItsArgumentsThoughThereIsNoNodeToMerge)
{
    const auto pos = points({{0, 0}, {0, 0}});
    const auto line = points({{0}, {1}});
    dense2D<unsigned> meshes[] = {columns({{N}}), dense2D<unsigned>()};
    dense1D<unsigned> new_IDs = indices({5});
    EXPECT_EQ(merge(line, dense1D<unsigned>(), new_IDs, nan), -1);
    EXPECT_EQ(merge(pos, indices({9}), dense1D<unsigned>(), new_IDs, nan), -4);
    for (dense2D<unsigned>* last : {meshes, meshes + 1, meshes + 2}) {
        EXPECT_EQ(merge(line, meshes, last, new_IDs, nan, 3), -1);
        EXPECT_EQ(merge(pos, meshes, last, new_IDs, nan, 3), -5);
        EXPECT_EQ(merge(pos, meshes, last, new_IDs, 1.0, 3), -6);
    }
    EXPECT_EQ(new_IDs.size, 0u);
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

}  // namespace
