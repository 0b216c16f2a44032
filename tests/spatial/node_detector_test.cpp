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

void expect_no_tree(const node_detector& detector)
{
    EXPECT_EQ(detector.size(), 0u);
    EXPECT_EQ(detector.find_closest(point2(0, 0)), none);
    EXPECT_EQ(detector.find_closest(point3(0, 0, 0)), none);
    EXPECT_EQ(detector.find_closest(0u), none);
    dense1D<unsigned> nodes = indices({9});
    detector.find_in_box(point2(-9, -9), point2(9, 9), nodes);
    detector.find_in_box(point3(-9, -9, -9), point3(9, 9, 9), nodes);
    EXPECT_EQ(nodes, indices({9}));
}

TEST(NodeDetector, HasNoTreeByDefault)
{
    expect_no_tree(node_detector());
}

TEST(NodeDetector, HasNoTreeAfterClear)
{
    node_detector detector(square);
    ASSERT_EQ(detector.size(), 4u);
    detector.clear();
    expect_no_tree(detector);
    EXPECT_EQ(detector.insert(indices({0})), 0u);
    EXPECT_EQ(detector.insert(columns({{0, 1}})), 0u);
    expect_no_tree(detector);
}

TEST(NodeDetector, IsBuiltOverAllColumnsListsAndMatrices)
{
    const dense2D<unsigned> meshes[] = {columns({{2, 0, N}}), columns({{0, 3}, {3, 2}})};
    EXPECT_EQ(node_detector(square).size(), 4u);
    EXPECT_EQ(node_detector(square, indices({3, 1, N, 3})).size(), 3u);
    EXPECT_EQ(node_detector(square, meshes[1]).size(), 3u);
    EXPECT_EQ(node_detector(square, meshes, meshes + 2).size(), 3u);
    EXPECT_EQ(sorted(in_box(node_detector(square, meshes, meshes + 2), point2(0, 0), point2(1, 1))),
              indices({0, 2, 3}));
    EXPECT_EQ(node_detector(square, meshes, meshes).size(), 0u);
}

TEST(NodeDetector, CopiesAnEmptyTree)
{
    const dense2D<double> pos(2, 3, 0.0);
    const node_detector empty(pos, dense1D<unsigned>());
    node_detector copy(empty);
    EXPECT_EQ(copy.size(), 0u);
    EXPECT_EQ(copy.insert(indices({1})), 1u);
    EXPECT_EQ(copy.find_closest(0u), 1u);
    EXPECT_EQ(empty.size(), 0u);
}

TEST(NodeDetector, WithoutANodeIsAnEmptyTree)
{
    node_detector detector(square, dense1D<unsigned>());
    expect_no_tree(detector);
    EXPECT_EQ(detector.insert(indices({2})), 1u);
    EXPECT_EQ(detector.find_closest(point2(0, 0)), 2u);
}

TEST(NodeDetector, HasNoTreeWhereConstructionFails)
{
    const dense2D<unsigned> meshes[] = {columns({{0, 1}}), columns({{1, 7}})};
    expect_no_tree(node_detector(points({{0}, {1}})));
    expect_no_tree(node_detector(square, indices({4})));
    expect_no_tree(node_detector(square, meshes[1]));
    expect_no_tree(node_detector(square, meshes, meshes + 2));
    expect_no_tree(node_detector(square, meshes + 2, meshes));
}

// -- reinit

struct refused {
    const char* name;
    dense2D<double> pos;
    dense1D<unsigned> nodes;
    int code;
};
class ReinitWithAList : public testing::TestWithParam<refused> {};

TEST_P(ReinitWithAList, LeavesTheDetectorAsItWasWhenItRefuses)
{
    node_detector detector(square, indices({1, 2}));
    EXPECT_EQ(detector.reinit(GetParam().pos, GetParam().nodes), GetParam().code);
    const bool built = GetParam().code == 0;
    EXPECT_EQ(detector.size(), built ? GetParam().nodes.size : 2u);
    EXPECT_EQ(detector.find_closest(point2(2, 2)), built ? none : 2u);
}

INSTANTIATE_TEST_SUITE_P(NodeDetector, ReinitWithAList,
                         testing::Values(refused{"one_row", points({{0}, {1}}), indices({0}), -1},
                                         refused{"four_rows", points({{0, 0, 0, 0}}), indices({0}), -1},
                                         refused{"nothing", dense2D<double>(), indices({0}), -1},
                                         refused{"rows_before_nodes", points({{0}, {1}}), indices({8}), -1},
                                         refused{"large_index", square, indices({0, 4}), -2},
                                         refused{"largest_index", square, indices({0, 4294967294u}), -2},
                                         refused{"node_of_no_column", dense2D<double>(3, 0), indices({0}), -2},
                                         refused{"no_column", dense2D<double>(3, 0), dense1D<unsigned>(), 0},
                                         refused{"no_node", square, dense1D<unsigned>(), 0}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(NodeDetector, ReinitOverAllColumnsGivesUpTheOldTreeFirst)
{
    node_detector detector(square);
    EXPECT_EQ(detector.reinit(points({{0}, {1}})), -1);
    expect_no_tree(detector);
    EXPECT_EQ(detector.reinit(corner), 0);
    EXPECT_EQ(detector.size(), 4u);
    EXPECT_EQ(detector.reinit(dense2D<double>()), -1);
    expect_no_tree(detector);
    const dense2D<double> no_column(3, 0);
    EXPECT_EQ(detector.reinit(no_column), 0);
    EXPECT_EQ(detector.size(), 0u);
    EXPECT_EQ(detector.insert(indices({0})), 0u);
}

TEST(NodeDetector, ReinitOverMatricesPassesTheCodesOnInTheirOrder)
{
    const dense2D<unsigned> meshes[] = {columns({{0, 1}}), columns({{1, 7}})};
    const dense2D<double> line = points({{0}, {1}});
    node_detector detector(square);
    EXPECT_EQ(detector.reinit(line, meshes + 2, meshes), -3);
    EXPECT_EQ(detector.reinit(square, meshes + 1, meshes), -3);
    EXPECT_EQ(detector.reinit(line, meshes, meshes + 2), -1);
    EXPECT_EQ(detector.reinit(square, meshes, meshes + 2), -2);
    EXPECT_EQ(detector.reinit(line, meshes[1]), -1);
    EXPECT_EQ(detector.reinit(square, meshes[1]), -2);
    EXPECT_EQ(detector.size(), 4u);
    EXPECT_EQ(detector.reinit(square, meshes, meshes + 1), 0);
    EXPECT_EQ(detector.size(), 2u);
    EXPECT_EQ(detector.reinit(corner, static_cast<dense2D<unsigned>*>(nullptr), nullptr), 0);
    EXPECT_EQ(detector.size(), 0u);
}

// Every combination of faults, against a detector that has nodes already.
TEST(NodeDetector, ReinitOverNodesGivesTheFirstCodeOfSeveralFaultsAndLeavesTheDetector)
{
    enum fault : unsigned { rows = 1, range = 2, index = 4, all_faults = 8 };
    for (unsigned faults = 0; faults < all_faults; ++faults) {
        SCOPED_TRACE(faults);
        const auto pos = (faults & rows) != 0 ? points({{0}, {1}}) : square;
        const auto nodes = (faults & index) != 0 ? indices({0, 7}) : indices({0, 1});
        const dense2D<unsigned> meshes[] = {columns({{nodes[0]}}), columns({{nodes[1]}})};
        const int code = (faults & rows) != 0 ? -1 : (faults & index) != 0 ? -2 : 0;
        const auto expect = [&](int expected, const auto& reinit) {
            node_detector detector(corner);
            EXPECT_EQ(reinit(detector), expected);
            EXPECT_EQ(detector.size(), expected == 0 ? 2u : 4u);
            EXPECT_EQ(detector.find_closest(point3(0, 0, 9)), expected == 0 ? 0u : 3u);
        };
        expect((faults & range) != 0 ? -3 : code, [&](node_detector& detector) {
            return (faults & range) != 0 ? detector.reinit(pos, meshes + 2, meshes)
                                         : detector.reinit(pos, meshes, meshes + 2);
        });
        if ((faults & range) != 0) continue;
        expect(code, [&](node_detector& detector) { return detector.reinit(pos, nodes); });
        expect(code, [&](node_detector& detector) { return detector.reinit(pos, columns({{nodes[0], nodes[1]}})); });
    }
}

TEST(NodeDetector, ReinitChangesTheDimension)
{
    node_detector detector(square);
    EXPECT_EQ(detector.reinit(corner, indices({3})), 0);
    EXPECT_EQ(detector.find_closest(point3(0, 0, 0)), 3u);
    EXPECT_EQ(detector.reinit(square, indices({2})), 0);
    EXPECT_EQ(detector.find_closest(point3(0, 0, 50)), 2u);
}

// -- copies

TEST(NodeDetector, IsCopiedWithATreeOfItsOwn)
{
    node_detector original(square);
    node_detector copy(original);
    node_detector assigned(corner);
    assigned = original;
    original.insert(indices({0}));
    original.clear();
    EXPECT_EQ(copy.size(), 4u);
    EXPECT_EQ(assigned.size(), 4u);
    EXPECT_EQ(assigned.find_closest(point3(1, 1, 7)), 2u);
    copy = node_detector();
    expect_no_tree(copy);
}

TEST(NodeDetector, SurvivesAssignmentToItself)
{
    node_detector detector(square);
    const node_detector& same = detector;
    detector = same;
    EXPECT_EQ(detector.size(), 4u);
    EXPECT_EQ(detector.find_closest(point2(1, 1)), 2u);
    node_detector empty;
    const node_detector& nothing = empty;
    empty = nothing;
    expect_no_tree(empty);
}

TEST(NodeDetector, SharesTheMatrixWithItsCopy)
{
    dense2D<double> pos = points({{0, 0}, {1, 0}});
    node_detector original(pos);
    node_detector copy(original);
    ASSERT_TRUE(pos.push_back(test::numbers({5, 5})));
    EXPECT_EQ(copy.insert(indices({2})), 1u);
    EXPECT_EQ(copy.find_closest(point2(6, 6)), 2u);
    EXPECT_EQ(original.find_closest(point2(6, 6)), 1u);
}

// -- insert

TEST(NodeDetector, InsertsColumnsThatWereAppendedLater)
{
    dense2D<double> pos = points({{0, 0}, {1, 0}});
    node_detector detector(pos);
    EXPECT_EQ(detector.insert(indices({2})), 0u);
    for (int k = 0; k < 100; ++k) pos.push_back(test::numbers({10.0 + k, 0}));
    EXPECT_EQ(detector.insert(indices({2, 101, 102, N})), 2u);
    EXPECT_EQ(detector.size(), 4u);
    EXPECT_EQ(detector.find_closest(point2(1000, 0)), 101u);
    EXPECT_EQ(detector.find_closest(102u), none);
}

TEST(NodeDetector, SkipsWhatIsNoColumn)
{
    node_detector detector(square);
    EXPECT_EQ(detector.insert(indices({4, N, 4294967294u, 1, 100})), 1u);
    EXPECT_EQ(detector.size(), 5u);
}

TEST(NodeDetector, InsertsTheNodesOfAMatrixOnce)
{
    node_detector detector(square, dense1D<unsigned>());
    EXPECT_EQ(detector.insert(columns({{0, 1, N}, {1, 0, 77}})), 2u);
    EXPECT_EQ(detector.size(), 2u);
}

TEST(NodeDetector, DoublesWhenAListIsInsertedTwice)
{
    node_detector detector(square);
    EXPECT_EQ(detector.insert(indices({0, 1, 2, 3})), 4u);
    EXPECT_EQ(detector.size(), 8u);
    EXPECT_EQ(sorted(in_box(detector, point2(1, 1), point2(1, 1))), indices({2, 2}));
}

TEST(NodeDetector, PassesOverBothCopiesOfANodeThatWasInsertedTwice)
{
    const auto pos = points({{0, 0}, {1, 0}, {3, 0}, {7, 0}});
    node_detector detector(pos);
    ASSERT_EQ(detector.insert(indices({0, 1, 2, 3})), 4u);
    for (unsigned node = 0; node < 4; ++node) EXPECT_EQ(detector.find_closest(node), node == 0 ? 1u : node - 1);
}

TEST(NodeDetector, ReadsTheListOnlyWhileItInserts)
{
    dense1D<unsigned> nodes = indices({2, 3});
    node_detector detector(square, nodes);
    EXPECT_EQ(nodes, indices({2, 3}));
    nodes[0] = 0;
    EXPECT_EQ(detector.find_closest(point2(1, 1)), 2u);
}

// -- the matrix

TEST(NodeDetector, ReadsViewsOfCoordinates)
{
    const dense2D<double> view = test::as_padded_view(corner, nan);
    const node_detector detector(view);
    EXPECT_EQ(detector.size(), 4u);
    for (unsigned node = 0; node < 4; ++node)
        EXPECT_EQ(detector.find_closest(point3(corner(0, node), corner(1, node), corner(2, node))), node);
    const dense2D<unsigned> connect = test::as_padded_view(columns({{0, 1}, {1, 2}}), 77u);
    EXPECT_EQ(node_detector(view, connect).size(), 3u);
    EXPECT_EQ(node_detector(view, indices({9, 3, 1, 9}).sub_vector(1, 2)).size(), 2u);
}

TEST(NodeDetector, DoesNotFindNodesThatAreNoColumnsAnyMore)
{
    dense2D<double> pos = square;
    const node_detector detector(pos);
    pos.resize(2, 1);
    EXPECT_EQ(detector.size(), 4u);
    EXPECT_EQ(detector.find_closest(2u), none);
    pos.resize(2, 0);
    EXPECT_EQ(detector.find_closest(point2(0, 0)), none);
    EXPECT_EQ(in_box(detector, point2(0, 0), point2(1, 1)), indices({}));
}

TEST(NodeDetector, MakesTheSameTreeEveryTime)
{
    const dense2D<double> pos = test::filled(3, 200, 1.0);
    const node_detector one(pos);
    const node_detector two(pos);
    EXPECT_EQ(in_box(one, point3(0, 0, 0), point3(2, 2, 2)), in_box(two, point3(0, 0, 0), point3(2, 2, 2)));
    EXPECT_EQ(one.find_closest(point3(0, 0, 0)), two.find_closest(point3(0, 0, 0)));
}

}  // namespace
