#include "spatial/kd_tree.h"

#include <cmath>

#include "spatial/mersenne_twister.h"
#include "spatial/tree_builder.h"

namespace zeb::tessolv {
namespace {

constexpr double largest = std::numeric_limits<double>::max();

}  // namespace

template <int D>
bool kd_tree<D>::copy(const kd_tree& other)
{
    kd_tree made(*other.pos_);
    if (!made.records_.allocate(other.records_.size())) return false;
    std::copy(other.records_.begin(), other.records_.end(), made.records_.begin());
    if (other.is_indexed() && !made.index_.build(made.records_)) return false;
    if (!made.grid_.copy(other.grid_)) return false;
    made.deepest_ = other.deepest_;
    made.columns_used_ = other.columns_used_;
    made.is_ordered_ = other.is_ordered_;
    std::swap(*this, made);
    return true;
}

template <int D>
point<D> kd_tree<D>::position(unsigned int r) const
{
    return records_[r].node < pos_->cols ? records_.x(r) : uniform_point<D>(std::numeric_limits<double>::quiet_NaN());
}

template <int D>
bool kd_tree<D>::insert(scratch<unsigned int>& nodes)
{
    extent<D> bounds;  // before the shuffle: afterwards memory is met at random
    for (const unsigned int node : nodes)
        if (node < pos_->cols) bounds.include(position_of<D>(*pos_, node));
    shuffle(nodes.data(), nodes.size());
    const auto end = std::remove_if(nodes.begin(), nodes.end(), [this](unsigned int i) { return i >= pos_->cols; });
    nodes.truncate(static_cast<std::size_t>(end - nodes.begin()));
    if (nodes.empty()) return true;
    if (records_.size() + nodes.size() >= NONE_INDEX) return false;
    if (pays_to_rebuild(nodes.size())) return rebuild_with(nodes, bounds);
    return std::all_of(nodes.begin(), nodes.end(), [this](unsigned int node) { return link(node); });
}

// Few nodes are brought to their places one by one. Many make a new tree together with the old records: parents stand
// before their children, so the old ones come to the same places again. Of a deep tree the index is kept up in this
// way.
template <int D>
bool kd_tree<D>::pays_to_rebuild(std::uint64_t added) const
{
    const std::uint64_t all = records_.size() + added;
    if (records_.empty()) return true;
    if (has_shrunk() || !is_ordered_) return false;
    return added * (deepest_ + std::uint64_t{1}) > all || (deepest_ > walkable_depth && all - index_.size() > all / 8);
}

template <int D>
bool kd_tree<D>::rebuild_with(const scratch<unsigned int>& nodes, const extent<D>& bounds)
{
    scratch<unsigned int> joined;
    const scratch<unsigned int>* all = &nodes;
    extent<D> bounds_of_all = bounds;
    if (!records_.empty()) {
        if (!joined.allocate(records_.size() + nodes.size())) return false;
        for (unsigned int r = 0; r < records_.size(); ++r) {
            joined[r] = records_[r].node;
            bounds_of_all.include(position(r));
        }
        std::copy(nodes.begin(), nodes.end(), joined.begin() + records_.size());
        all = &joined;
    }
    cell_grid<D> grid;
    grid.fit(bounds_of_all, all->size());
    tree_builder<D> builder(bounds_of_all, grid.cells());
    tree_table<D> records(*pos_);
    if (!builder.run(*all, records)) return false;
    if (!(builder.deepest() > walkable_depth ? index_.build(records)
                                             : grid.enter(builder.rough_nodes(), builder.room())))
        return false;
    records_.swap(records);
    std::swap(grid_, grid);
    deepest_ = builder.deepest();
    for (const unsigned int node : nodes) columns_used_ = std::max(columns_used_, node + std::uint64_t{1});
    return true;
}

// Hangs a record of the node below the last one on its way down. Where the matrix has shrunk, this need not be where
// its coordinates belong.
template <int D>
bool kd_tree<D>::link(unsigned int node)
{
    const point<D> x = position_of<D>(*pos_, node);
    tree_record added{node, NONE_INDEX, NONE_INDEX, 0};
    unsigned int depth = 1;
    bool is_left = false;
    for (int d = 0;; d = next_dimension<D>(d), ++depth) {
        is_left = goes_left(position(added.parent)[d], x[d]);
        const tree_record& record = records_[added.parent];
        const unsigned int child = is_left ? record.left : record.right;
        if (child == NONE_INDEX) break;
        added.parent = child;
    }
    if (!records_.push_back(added)) return false;
    tree_record& parent = records_[added.parent];
    (is_left ? parent.left : parent.right) = static_cast<unsigned int>(records_.size() - 1);
    is_ordered_ &= !has_shrunk();
    deepest_ = std::max(deepest_, depth);
    columns_used_ = std::max(columns_used_, node + std::uint64_t{1});
    return true;
}

template <int D>
unsigned int kd_tree<D>::find_closest(const point<D>& P, unsigned int excluded) const
{
    if (records_.empty()) return NONE_INDEX;
    if (is_indexed()) return index_.find_closest(records_, P, excluded);
    unsigned int node = NONE_INDEX;
    if (has_grid() && grid_.find_closest(records_, P, excluded, node) && is_closer_than_late(P, excluded, node))
        return node;
    candidate closest = descend(P, excluded);
    if (closest.node == NONE_INDEX || closest.distance != 0) search(P, excluded, closest);
    return closest.node;
}

template <int D>
unsigned int kd_tree<D>::find_closest(unsigned int node) const
{
    return node < pos_->cols ? find_closest(position_of<D>(*pos_, node), node) : NONE_INDEX;
}

// Late records hang below the others and change nothing about them. One that is as close as the closest of the others,
// or nearly, is left to the walk.
template <int D>
bool kd_tree<D>::is_closer_than_late(const point<D>& P, unsigned int excluded, unsigned int closest) const
{
    if (grid_.size() == records_.size()) return true;
    constexpr double rounding = 0x1p-40;  // far more than that of a walk
    double magnitude = 0;
    for (const double value : P) magnitude = std::max(magnitude, std::abs(value));
    const double found = distance(position_of<D>(*pos_, closest), P);
    const double reach = found + (found + magnitude) * rounding;
    for (auto r = static_cast<unsigned int>(grid_.size()); r < records_.size(); ++r)
        if (records_[r].node != excluded && !(distance(records_.x(r), P) > reach)) return false;
    return true;
}

template <int D>
bool kd_tree<D>::is_late_in(const box<D>& b) const
{
    for (auto r = static_cast<unsigned int>(grid_.size()); r < records_.size(); ++r)
        if (b.contains(records_.x(r))) return true;
    return false;
}

// The closest of the nodes that P would pass on its way into the tree, the first of equally close ones. Squares are
// compared here, distances in the search that follows: part of the interface, as it decides ties.
template <int D>
typename kd_tree<D>::candidate kd_tree<D>::descend(const point<D>& P, unsigned int excluded) const
{
    unsigned int closest = NONE_INDEX;
    double square = largest;
    for (unsigned int r = 0, d = 0; r != NONE_INDEX; d = next_dimension<D>(d)) {
        const tree_record& record = records_[r];
        const point<D> x = position(r);
        const double found = squared_distance(x, P);
        if (found < square && record.node != excluded) {
            square = found;
            closest = record.node;
        }
        r = goes_left(x[d], P[d]) ? record.left : record.right;
    }
    return {closest, closest != NONE_INDEX ? std::sqrt(square) : largest};
}

// Looks through all that may be closer than what is known, on the side of P first. The links to the parents lead back,
// so that a walk needs no memory however deep the tree is.
template <int D>
void kd_tree<D>::search(const point<D>& P, unsigned int excluded, candidate& closest) const
{
    for (unsigned int r = 0, from = NONE_INDEX, d = 0; r != NONE_INDEX;) {
        const tree_record& record = records_[r];
        const point<D> x = position(r);
        const bool comes_from_above = from == record.parent;
        if (comes_from_above && record.node != excluded && box_around<D>(P, closest.distance).contains(x)) {
            const double found = distance(x, P);
            if (found < closest.distance) closest = {record.node, found};
        }

        const bool left_is_near = x[d] >= P[d];
        const unsigned int near = left_is_near ? record.left : record.right;
        const unsigned int far = left_is_near ? record.right : record.left;
        unsigned int next = record.parent;
        if (comes_from_above && near != NONE_INDEX)
            next = near;
        else if ((comes_from_above || from == near) && far != NONE_INDEX &&
                 (left_is_near ? P[d] + closest.distance >= x[d] : P[d] - closest.distance < x[d]))
            next = far;
        d = next == record.parent ? previous_dimension<D>(d) : next_dimension<D>(d);
        from = r;
        r = next;
    }
}

template <int D>
void kd_tree<D>::find_in_box(const box<D>& b, dense1D<unsigned int>& nodes) const
{
    if (is_indexed()) return index_.find_in_box(records_, b, nodes);
    if (has_grid() && !is_late_in(b) && grid_.find_in_box(records_, b, nodes)) return;
    for (unsigned int r = records_.empty() ? NONE_INDEX : 0, from = NONE_INDEX, d = 0; r != NONE_INDEX;) {
        const tree_record& record = records_[r];
        const point<D> x = position(r);
        const bool comes_from_above = from == record.parent;
        const bool may_be_right = x[d] <= b.upper[d];
        const bool may_be_left = x[d] >= b.lower[d];
        unsigned int next = record.parent;
        if (comes_from_above && may_be_right && record.right != NONE_INDEX)
            next = record.right;
        else if ((comes_from_above || from == record.right) && may_be_left && record.left != NONE_INDEX)
            next = record.left;
        else if (may_be_left && may_be_right && b.contains(x))
            nodes.push_back(
                record.node);  // without memory this one is lost and the walk goes on: part of the interface
        d = next == record.parent ? previous_dimension<D>(d) : next_dimension<D>(d);
        from = r;
        r = next;
    }
}

template class kd_tree<2>;
template class kd_tree<3>;

}  // namespace zeb::tessolv
