#include "spatial/deep_index.h"

#include <gtest/gtest.h>

#include <numeric>

#include "spatial/built_tree.h"
#include "spatial/random_points.h"
#include "support/matrices.h"

// The answers from the ranking of the records against those of the walk.

namespace {

using test::as_position;
using test::built_tree;
using zeb::dense1D;
using zeb::dense2D;
using zeb::NONE_INDEX;
using zeb::tessolv::box;
using zeb::tessolv::deep_index;
using zeb::tessolv::point;
using zeb::tessolv::position_of;

template <int D>
class indexed_tree : built_tree<D> {
    using built_tree<D>::records_;
    using built_tree<D>::walked_;

public:
    indexed_tree(const dense2D<double>& pos, const std::vector<unsigned>& nodes) : built_tree<D>(pos, nodes)
    {
        EXPECT_TRUE(index_.build(records_));
        EXPECT_EQ(index_.size(), nodes.size());
    }

    void expect_same_closest(const point<D>& P) const
    {
        ASSERT_EQ(index_.find_closest(records_, P, NONE_INDEX), walked_.find_closest(as_position<D>(P)))
            << testing::PrintToString(P);
    }

    void expect_same_closest(unsigned node) const
    {
        ASSERT_EQ(index_.find_closest(records_, this->position_of(node), node), walked_.find_closest_to(node)) << node;
    }

    void expect_same_hits(const box<D>& b) const
    {
        std::vector<unsigned> expected;
        walked_.find_in_box(as_position<D>(b.lower), as_position<D>(b.upper), expected);
        dense1D<unsigned> hits = test::indices({8, 8});
        index_.find_in_box(records_, b, hits);
        ASSERT_EQ(hits.size, 2 + expected.size());
        ASSERT_EQ(std::vector<unsigned>(hits.begin() + 2, hits.end()), expected);
        ASSERT_EQ(hits[1], 8u);
    }

private:
    deep_index<D> index_;
};

template <class Dimension>
class DeepIndex : public testing::Test {
};

using dimensions = testing::Types<std::integral_constant<int, 2>, std::integral_constant<int, 3>>;
TYPED_TEST_SUITE(DeepIndex, dimensions, );

TYPED_TEST(DeepIndex, AnswersAsTheWalk)
{
    constexpr int D = TypeParam::value;
    for (unsigned seed = 0; seed < 3000; ++seed) {
        SCOPED_TRACE(seed);
        test::random_source random(seed);
        const bool odd = seed % 4 == 3;
        const auto pos = test::random_points(random, D, 1 + random.below(40), odd);
        const auto nodes = test::random_nodes(random, 1 + random.below(60), static_cast<unsigned>(pos.cols));
        const indexed_tree<D> tree(pos, nodes);
        const auto query = [&] { return position_of<D>(test::random_points(random, D, 1, odd), 0); };
        for (int k = 0; k < 8; ++k) {
            const point<D> P = query();
            const point<D> Q = query();
            tree.expect_same_closest(P);
            tree.expect_same_hits({P, Q});
            point<D> between;
            for (int d = 0; d < D; ++d) between[d] = 0.5 * (P[d] + Q[d]);
            tree.expect_same_closest(between);
        }
        for (unsigned node = 0; node < pos.cols; ++node) tree.expect_same_closest(node);
        const double infinity = std::numeric_limits<double>::infinity();
        tree.expect_same_hits({zeb::tessolv::uniform_point<D>(-infinity), zeb::tessolv::uniform_point<D>(infinity)});
        if (this->HasFatalFailure()) return;
    }
}

// Inserted so that each hangs below the one before.
TYPED_TEST(DeepIndex, AnswersAsTheWalkInAChain)
{
    constexpr int D = TypeParam::value;
    std::vector<unsigned> order(600);
    std::iota(order.begin(), order.end(), 0u);
    const std::vector<unsigned> place = model::shuffled(order);
    for (unsigned kind = 0; kind < 4; ++kind) {
        SCOPED_TRACE(kind);
        dense2D<double> pos(D, 600);
        for (unsigned i = 0; i < 600; ++i)
            for (unsigned d = 0; d < D; ++d)
                pos(d, place[i]) = kind == 0    ? i
                                   : kind == 1  ? -1.0 * i
                                   : kind == 2  ? i / 60
                                   : i % 2 == 0 ? i
                                                : 1200 - i;
        const indexed_tree<D> tree(pos, order);
        test::random_source random(kind);
        for (unsigned node = 0; node < 600; ++node) tree.expect_same_closest(node);
        for (int k = 0; k < 300; ++k) {
            box<D> b;
            for (int d = 0; d < D; ++d) {
                b.lower[d] = 0.5 * random.below(1200) * (kind == 1 ? -1.0 : 1.0);
                b.upper[d] = b.lower[d] + random.below(100);
            }
            tree.expect_same_hits(b);
            tree.expect_same_closest(b.lower);
        }
        if (this->HasFatalFailure()) return;
    }
}

}  // namespace
