#include "spatial/cell_grid.h"

#include <gtest/gtest.h>

#include <numeric>

#include "spatial/built_tree.h"
#include "spatial/spread_nodes.h"

// What the grid answers is what the walk answers, and it answers nearly always where nodes are spread evenly.

namespace {

using test::as_position;
using test::built_tree;
using test::spread;
using zeb::dense1D;
using zeb::dense2D;
using zeb::NONE_INDEX;
using zeb::tessolv::box;
using zeb::tessolv::point;

std::vector<unsigned> all_columns(const dense2D<double>& pos)
{
    std::vector<unsigned> nodes(pos.cols);
    std::iota(nodes.begin(), nodes.end(), 0u);
    return nodes;
}

template <int D>
class gridded_tree : built_tree<D> {
    using built_tree<D>::grid_;
    using built_tree<D>::records_;
    using built_tree<D>::walked_;

public:
    explicit gridded_tree(const dense2D<double>& pos) : built_tree<D>(pos, all_columns(pos)) {}

    bool has_grid() const { return grid_.size() == records_.size(); }
    unsigned asked() const { return asked_; }
    unsigned answered() const { return answered_; }

    void expect_same_closest(const point<D>& P, unsigned excluded = NONE_INDEX)
    {
        unsigned closest = NONE_INDEX;
        ++asked_;
        if (!has_grid() || !grid_.find_closest(records_, P, excluded, closest)) return;
        ++answered_;
        ASSERT_EQ(closest, walked_.find_closest(as_position<D>(P), excluded)) << testing::PrintToString(P);
    }

    void expect_same_closest(unsigned node) { expect_same_closest(this->position_of(node), node); }

    void expect_same_hits(const box<D>& b)
    {
        dense1D<unsigned> hits;
        ++asked_;
        if (!has_grid() || !grid_.find_in_box(records_, b, hits)) return;
        ++answered_;
        std::vector<unsigned> expected;
        walked_.find_in_box(as_position<D>(b.lower), as_position<D>(b.upper), expected);
        ASSERT_EQ(std::vector<unsigned>(hits.begin(), hits.end()), expected);
    }

private:
    unsigned asked_ = 0;
    unsigned answered_ = 0;
};

template <class Dimension>
class CellGrid : public testing::Test {
protected:
    static constexpr int dimension = Dimension::value;
    using tree_under_test = gridded_tree<dimension>;

    static point<dimension> random_position(test::random_source& random, spread kind)
    {
        const std::vector<double> x = test::spread_position(random, kind, dimension);
        point<dimension> P{};
        std::copy(x.begin(), x.end(), P.begin());
        return P;
    }

    // Asks for everything that a tree can tell of nodes that are spread in one way.
    static void ask(tree_under_test& tree, unsigned nodes, test::random_source& random, spread kind)
    {
        for (unsigned node = 0; node < nodes; ++node) tree.expect_same_closest(node);
        for (int k = 0; k < 60; ++k) {
            const point<dimension> P = random_position(random, kind);
            const point<dimension> Q = random_position(random, kind);
            tree.expect_same_closest(P);
            point<dimension> between;
            for (int d = 0; d < dimension; ++d) between[d] = 0.5 * P[d] + 0.5 * Q[d];
            tree.expect_same_closest(between);
            tree.expect_same_hits({P, Q});
            box<dimension> sorted;
            for (int d = 0; d < dimension; ++d) {
                sorted.lower[d] = std::min(P[d], Q[d]);
                sorted.upper[d] = std::max(P[d], Q[d]);
            }
            tree.expect_same_hits(sorted);
            tree.expect_same_hits({P, P});
        }
    }
};

using dimensions = testing::Types<std::integral_constant<int, 2>, std::integral_constant<int, 3>>;
TYPED_TEST_SUITE(CellGrid, dimensions, );

TYPED_TEST(CellGrid, AnswersAsTheWalk)
{
    constexpr int D = TypeParam::value;
    for (unsigned seed = 0; seed < 135; ++seed) {
        SCOPED_TRACE(seed);
        test::random_source random(seed);
        const auto kind = static_cast<spread>(seed % static_cast<unsigned>(spread::count));
        const unsigned nodes = 256 + random.below(700);
        const dense2D<double> pos = test::spread_points(random, kind, D, nodes);
        gridded_tree<D> tree(pos);
        this->ask(tree, nodes, random, kind);
        if (this->HasFatalFailure()) return;
    }
}

TYPED_TEST(CellGrid, AnswersNearlyAllWhereNodesAreSpreadEvenly)
{
    constexpr int D = TypeParam::value;
    for (const spread kind : {spread::random, spread::lattice, spread::fine_lattice, spread::sphere}) {
        test::random_source random(7);
        const dense2D<double> pos = test::spread_points(random, kind, D, 2000);
        gridded_tree<D> tree(pos);
        ASSERT_TRUE(tree.has_grid());
        for (unsigned node = 0; node < 2000; ++node) tree.expect_same_closest(node);
        if (this->HasFatalFailure()) return;
        EXPECT_GT(tree.answered(), 0.9 * tree.asked()) << static_cast<int>(kind);
    }
}

TYPED_TEST(CellGrid, IsNotMadeWhereItDoesNotSuit)
{
    constexpr int D = TypeParam::value;
    test::random_source random(1);
    const auto without_grid = [](const dense2D<double>& pos) { return !gridded_tree<D>(pos).has_grid(); };
    dense2D<double> pos = test::spread_points(random, spread::random, D, 1000);
    EXPECT_FALSE(without_grid(pos));
    pos(1, 500) = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(without_grid(pos));
    pos(1, 500) = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(without_grid(pos));
    pos(1, 500) = 1e90;  // all others in one cell
    EXPECT_TRUE(without_grid(pos));
    EXPECT_TRUE(without_grid(test::spread_points(random, spread::random, D, 255)));
    EXPECT_TRUE(without_grid(dense2D<double>(D, 1000, 0.5)));
    EXPECT_TRUE(without_grid(test::spread_points(random, spread::far_lattice, D, 1000)));
}

}  // namespace
