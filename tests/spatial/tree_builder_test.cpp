#include "spatial/tree_builder.h"

#include <gtest/gtest.h>

#include <functional>
#include <numeric>

#include "spatial/random_points.h"

// The batch builder against insertion one by one, above all where the tree is deep.

namespace {

using zeb::NONE_INDEX;
using zeb::tessolv::copy_in_preorder;
using zeb::tessolv::goes_left;
using zeb::tessolv::ordered_splitter;
using zeb::tessolv::scratch;
using zeb::tessolv::tree_builder;
using zeb::tessolv::tree_record;

template <int D>
using records = scratch<tree_record<D>>;

template <int D>
records<D> copy_of(const records<D>& from)
{
    records<D> to;
    EXPECT_TRUE(to.allocate(from.size()));
    std::copy(from.begin(), from.end(), to.begin());
    return to;
}

template <int D>
unsigned insert_one_by_one(records<D>& tree)
{
    unsigned deepest = 0;
    for (unsigned i = 0; i < tree.size(); ++i) {
        tree[i].left = tree[i].right = tree[i].parent = NONE_INDEX;
        unsigned depth = 0;
        for (unsigned r = 0; i != 0; ++depth) {
            unsigned& child = goes_left(tree[r].x[depth % D], tree[i].x[depth % D]) ? tree[r].left : tree[r].right;
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

template <int D>
std::vector<std::array<unsigned, 4>> links(const records<D>& tree)
{
    std::vector<std::array<unsigned, 4>> all;
    for (const auto& r : tree) all.push_back({r.node, r.left, r.right, r.parent});
    return all;
}

template <int D>
void expect_tree_of_insertions(const std::vector<std::array<double, D>>& points)
{
    records<D> batch;
    ASSERT_TRUE(batch.allocate(points.size()));
    for (unsigned i = 0; i < points.size(); ++i) batch[i] = {points[i], i, 7, 7, 7};
    records<D> literal = copy_of(batch);
    records<D> split = copy_of(batch);
    const unsigned depth = insert_one_by_one(literal);
    records<D> expected;
    ASSERT_TRUE(copy_in_preorder(literal, expected));

    tree_builder<D> builder;
    ASSERT_TRUE(builder.run(batch));
    ASSERT_EQ(links(batch), links(expected));
    ASSERT_EQ(builder.deepest(), depth);

    ordered_splitter<D> splitter;
    split[0].parent = NONE_INDEX;
    ASSERT_TRUE(splitter.run(split.data(), 0, static_cast<unsigned>(split.size()), 0));
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
    records<TypeParam::value> none;
    tree_builder<TypeParam::value> builder;
    EXPECT_TRUE(builder.run(none));
    EXPECT_EQ(none.size(), 0u);
    expect_tree_of_insertions<TypeParam::value>(points_by<TypeParam::value>(1, [](unsigned, int) { return 3.0; }));
}

}  // namespace
