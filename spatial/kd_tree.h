#ifndef TESSOLV_SPATIAL_KD_TREE_H
#define TESSOLV_SPATIAL_KD_TREE_H

#include <zeb/dense1D.h>
#include <zeb/dense2D.h>

#include "core/scratch.h"
#include "spatial/cell_grid.h"
#include "spatial/deep_index.h"
#include "spatial/point.h"
#include "spatial/tree_record.h"

namespace zeb::tessolv {

// A search tree over columns of a coordinate matrix that belongs to somebody else. It is not balanced afterwards: the
// shuffled order of insertion sees to that, and decides which of several equally close nodes is found.
// A record whose node is no longer a column of the matrix counts as one of NaN coordinates.
template <int D>
class kd_tree {
public:
    explicit kd_tree(const dense2D<double>& pos) : pos_(&pos), records_(pos) {}

    // A tree of the same records over the same matrix. False, and nothing changed, without memory.
    [[nodiscard]] bool copy(const kd_tree& other);

    std::uint64_t size() const { return records_.size(); }

    const dense2D<double>& matrix() const { return *pos_; }

    // Inserts the nodes in shuffled order; those that are no columns of the matrix are passed over. The list is used
    // up. False when memory ran out: what was stored until then stays, of a tree that was empty nothing.
    [[nodiscard]] bool insert(scratch<unsigned int>& nodes);

    // The node closest to P other than `excluded`, NONE_INDEX if there is none.
    unsigned int find_closest(const point<D>& P, unsigned int excluded) const;

    // The node closest to the position of `node`, other than `node` itself.
    unsigned int find_closest(unsigned int node) const;

    // Appends the nodes in the box: those of the right subtree of a record, those of the left one, its own.
    void find_in_box(const box<D>& b, dense1D<unsigned int>& nodes) const;

private:
    struct candidate {
        unsigned int node;
        double distance;
    };

    // Walks down to here are cheap; random nodes by the billion on a line in space come nearly this far.
    static constexpr unsigned int walkable_depth = 256;

    // Of records that were linked after the grid was made, so many are looked at one by one beside it.
    static constexpr std::size_t most_late = 64;

    point<D> position(unsigned int r) const;
    bool has_shrunk() const { return columns_used_ > pos_->cols; }
    bool is_indexed() const { return !records_.empty() && index_.size() == records_.size() && !has_shrunk(); }
    bool has_grid() const
    {
        return grid_.size() != 0 && records_.size() - grid_.size() <= most_late && is_ordered_ && !has_shrunk();
    }
    bool is_closer_than_late(const point<D>& P, unsigned int excluded, unsigned int closest) const;
    bool is_late_in(const box<D>& b) const;
    bool pays_to_rebuild(std::uint64_t added) const;
    [[nodiscard]] bool link(unsigned int node);
    [[nodiscard]] bool rebuild_with(const scratch<unsigned int>& nodes, const extent<D>& bounds);
    candidate descend(const point<D>& P, unsigned int excluded) const;
    void search(const point<D>& P, unsigned int excluded, candidate& closest) const;

    const dense2D<double>* pos_;
    tree_table<D> records_;           // record 0 is the root, parents stand before their children
    unsigned int deepest_ = 0;        // depth of the deepest record
    std::uint64_t columns_used_ = 0;  // no record has a node from there on
    bool is_ordered_ = true;          // left and right of a record are as its coordinates say
    cell_grid<D> grid_;               // in front of the walk, unless many nodes were linked since
    deep_index<D> index_;             // of a tree that is too deep to be walked, unless nodes were linked since
};

extern template class kd_tree<2>;
extern template class kd_tree<3>;

}  // namespace zeb::tessolv

#endif
