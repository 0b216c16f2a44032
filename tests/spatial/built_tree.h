#ifndef TESTS_SPATIAL_BUILT_TREE_H
#define TESTS_SPATIAL_BUILT_TREE_H

#include <gtest/gtest.h>

#include <vector>

#include "spatial/cell_grid.h"
#include "spatial/tree_builder.h"
#include "spatial/tree_model.h"

namespace test {

// The records of a tree over listed nodes, the grid in front of it, and the tree as it is defined.
template <int D>
class built_tree {
public:
    built_tree(const zeb::dense2D<double>& pos, const std::vector<unsigned>& nodes)
        : pos_(pos), walked_(pos), records_(pos)
    {
        walked_.insert(nodes);
        zeb::tessolv::extent<D> extent;
        for (const unsigned node : nodes) extent.include(position_of(node));
        grid_.fit(extent, nodes.size());
        zeb::tessolv::scratch<unsigned> order;
        for (const unsigned node : model::shuffled(nodes)) EXPECT_TRUE(order.push_back(node));
        zeb::tessolv::tree_builder<D> builder(extent, grid_.cells());
        EXPECT_TRUE(builder.run(order, records_));
        EXPECT_TRUE(grid_.enter(builder.rough_nodes(), builder.room()));
    }

protected:
    zeb::tessolv::point<D> position_of(unsigned node) const { return zeb::tessolv::position_of<D>(pos_, node); }

    const zeb::dense2D<double>& pos_;
    model::tree walked_;
    zeb::tessolv::tree_table<D> records_;
    zeb::tessolv::cell_grid<D> grid_;
};

template <int D>
model::position as_position(const zeb::tessolv::point<D>& x)
{
    return {x.begin(), x.end()};
}

}  // namespace test

#endif
