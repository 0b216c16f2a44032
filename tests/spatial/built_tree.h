#ifndef TESTS_SPATIAL_BUILT_TREE_H
#define TESTS_SPATIAL_BUILT_TREE_H

#include <gtest/gtest.h>

#include <vector>

#include "spatial/tree_builder.h"
#include "spatial/tree_model.h"

namespace test {

// The records of a tree over listed nodes, and the tree as it is defined.
template <int D>
class built_tree {
public:
    built_tree(const zeb::dense2D<double>& pos, const std::vector<unsigned>& nodes) : pos_(pos), walked_(pos)
    {
        walked_.insert(nodes);
        EXPECT_TRUE(records_.allocate(nodes.size()));
        std::size_t k = 0;
        for (const unsigned node : model::shuffled(nodes)) records_[k++] = {position_of(node), node, 0, 0, 0};
        zeb::tessolv::tree_builder<D> builder;
        EXPECT_TRUE(builder.run(records_));
    }

protected:
    zeb::tessolv::point<D> position_of(unsigned node) const { return zeb::tessolv::position_of<D>(pos_, node); }

    const zeb::dense2D<double>& pos_;
    model::tree walked_;
    zeb::tessolv::scratch<zeb::tessolv::tree_record<D>> records_;
};

template <int D>
model::position as_position(const zeb::tessolv::point<D>& x)
{
    return {x.begin(), x.end()};
}

}  // namespace test

#endif
