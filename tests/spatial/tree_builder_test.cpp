#include "spatial/tree_builder.h"

#include <gtest/gtest.h>

#include <functional>
#include <numeric>

#include "spatial/random_points.h"

// The batch builder against insertion one by one, above all where the tree is deep.

namespace {

using zeb::dense2D;
using zeb::NONE_INDEX;
using zeb::tessolv::copy_in_preorder;
using zeb::tessolv::extent;
using zeb::tessolv::frame;
using zeb::tessolv::goes_left;
using zeb::tessolv::ordered_splitter;
using zeb::tessolv::scratch;
using zeb::tessolv::tree_builder;
using zeb::tessolv::tree_record;
using zeb::tessolv::tree_table;

template <int D>
using records = tree_table<D>;

// Records of all columns, not linked.
template <int D>
records<D> unlinked(const dense2D<double>& pos)
{
    records<D> made(pos);
    for (unsigned i = 0; i < pos.cols; ++i) EXPECT_TRUE(made.push_back({i, 7, 7, 7}));
    return made;
}

template <int D>
unsigned insert_one_by_one(records<D>& tree)
{
    unsigned deepest = 0;
    for (unsigned i = 0; i < tree.size(); ++i) {
        tree[i].left = tree[i].right = tree[i].parent = NONE_INDEX;
        unsigned depth = 0;
        for (unsigned r = 0; i != 0; ++depth) {
            unsigned& child = goes_left(tree.x(r)[depth % D], tree.x(i)[depth % D]) ? tree[r].left : tree[r].right;
            tree[i].parent = r;
            if (child == NONE_INDEX) {
                child = i;
                ++depth;
                break;
            }
            r = child;
        }
        deepest = std::max(deepest, depth);
    }
    return deepest;
}

std::vector<std::array<unsigned, 4>> links(const scratch<tree_record>& tree)
{
    std::vector<std::array<unsigned, 4>> all;
    for (const auto& r : tree) all.push_back({r.node, r.left, r.right, r.parent});
    return all;
}

template <int D>
void expect_tree_of_insertions(const std::vector<std::array<double, D>>& points)
{
    dense2D<double> pos(D, points.size());
    extent<D> bounds;
    scratch<unsigned> order;
    for (unsigned i = 0; i < points.size(); ++i) {
        for (unsigned d = 0; d < D; ++d) pos(d, i) = points[i][d];
        bounds.include(points[i]);
        ASSERT_TRUE(order.push_back(i));
    }
    records<D> literal = unlinked<D>(pos);
    records<D> split = unlinked<D>(pos);
    const unsigned depth = insert_one_by_one(literal);
    scratch<tree_record> expected;
    ASSERT_TRUE(copy_in_preorder(literal, expected));

    // In a frame where floats tell most positions apart, and in frames where they tell few and none.
    for (const double units : {1.0, 1e-42, 0.0}) {
        const frame<D> rough{bounds.bounds.lower, units};
        tree_builder<D> builder(bounds, rough);
        records<D> batch(pos);
        ASSERT_TRUE(builder.run(order, batch));
        ASSERT_EQ(links(batch), links(expected));
        ASSERT_EQ(builder.deepest(), depth);
        for (unsigned r = 0; r < batch.size(); ++r) ASSERT_EQ(builder.rough_nodes()[r].node, batch[r].node);
    }

    ordered_splitter<D> splitter;
    split[0].parent = NONE_INDEX;
    ASSERT_TRUE(splitter.run(split, 0, static_cast<unsigned>(split.size()), 0));
    ASSERT_EQ(links(split), links(literal));
    ASSERT_EQ(splitter.deepest(), depth);
}

template <int D>
std::vector<std::array<double, D>> points_by(unsigned count, const std::function<double(unsigned, int)>& coordinate)
{
    std::vector<std::array<double, D>> points(count);
    for (unsigned i = 0; i < count; ++i)
        for (int d = 0; d < D; ++d) points[i][d] = coordinate(i, d);
    return points;
}

template <class Dimension>
class TreeBuilder : public testing::Test {
};

using dimensions = testing::Types<std::integral_constant<int, 2>, std::integral_constant<int, 3>>;
TYPED_TEST_SUITE(TreeBuilder, dimensions, );

TYPED_TEST(TreeBuilder, MakesTheTreeOfInsertionsOneByOne)
{
    for (unsigned seed = 0; seed < 400; ++seed) {
        SCOPED_TRACE(seed);
        test::random_source random(seed);
        const unsigned side = 1 + random.below(8);
        expect_tree_of_insertions<TypeParam::value>(points_by<TypeParam::value>(
            1 + random.below(400),
            [&](unsigned, int) { return test::random_coordinate(random, side, seed % 3 == 0); }));
        if (this->HasFatalFailure()) return;
    }
}

TYPED_TEST(TreeBuilder, MakesChains)
{
    constexpr int D = TypeParam::value;
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const auto expect = [](const std::function<double(unsigned, int)>& coordinate) {
        expect_tree_of_insertions<D>(points_by<D>(1500, coordinate));
    };
    expect([](unsigned, int) { return 0.5; });                                               // one place
    expect([](unsigned i, int) { return i; });                                               // growing
    expect([](unsigned i, int) { return -1.0 * i; });                                        // falling
    expect([](unsigned i, int d) { return d == 0 ? i : 0.0; });                              // a sorted line
    expect([](unsigned i, int) { return i % 2 == 0 ? i : 5000.0 - i; });                     // closing in
    expect([](unsigned i, int d) { return i % 2 == 0 ? 0.0 : d == 1; });                     // two places
    expect([](unsigned i, int) { return i < 700 ? 0.5 : 0.1 * (i % 7); });                   // one place and more
    expect([=](unsigned i, int d) { return d == 0 && i % 3 == 0 ? nan : 0.25; });            // no numbers in between
    expect([=](unsigned, int) { return nan; });                                              // and nothing else
    expect([](unsigned i, int) { return i % 5 == 0 ? -0.0 : 0.0; });                         // zeros of both signs
    expect([](unsigned i, int d) { return i < 800 ? i : (i * 7919 + d * 104729u) % 997; });  // a chain, then balance
}

TYPED_TEST(TreeBuilder, TakesNoRecordsAndOne)
{
    const dense2D<double> pos(TypeParam::value, 0);
    records<TypeParam::value> none(pos);
    tree_builder<TypeParam::value> builder({}, {});
    EXPECT_TRUE(builder.run({}, none));
    EXPECT_EQ(none.size(), 0u);
    expect_tree_of_insertions<TypeParam::value>(points_by<TypeParam::value>(1, [](unsigned, int) { return 3.0; }));
}

}  // namespace
