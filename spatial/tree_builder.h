#ifndef TESSOLV_SPATIAL_TREE_BUILDER_H
#define TESSOLV_SPATIAL_TREE_BUILDER_H

#include <algorithm>
#include <array>

#include "core/scratch.h"
#include "spatial/ordered_splitter.h"
#include "spatial/tree_record.h"

namespace zeb::tessolv {

// Copies a tree in the order record, left subtree, right subtree, its root first: every subtree is then a run of
// records. False without memory.
template <int D>
[[nodiscard]] bool copy_in_preorder(const scratch<tree_record<D>>& from, scratch<tree_record<D>>& to)
{
    struct visit {
        unsigned int record;
        unsigned int parent;
        bool is_left;
    };
    scratch<visit> waiting;
    if (!to.allocate(from.size()) || !waiting.push_back({0, NONE_INDEX, false})) return false;
    for (unsigned int place = 0; !waiting.empty(); ++place) {
        const visit next = waiting.back();
        const tree_record<D>& record = from[next.record];
        waiting.pop_back();
        to[place] = {record.x, record.node, NONE_INDEX, NONE_INDEX, next.parent};
        if (next.parent != NONE_INDEX) (next.is_left ? to[next.parent].left : to[next.parent].right) = place;
        if (record.right != NONE_INDEX && !waiting.push_back({record.right, place, false})) return false;
        if (record.left != NONE_INDEX && !waiting.push_back({record.left, place, true})) return false;
    }
    return true;
}

// Makes the tree that comes from inserting records one after the other. The earliest record of a set is its root, and
// a stable partition keeps the order on both sides; so whole sets are split at once, and each subtree ends up as a run
// of records in the order record, left subtree, right subtree.
template <int D>
class tree_builder {
public:
    // Arranges and links records that stand in order of insertion. False without memory, what the table holds is lost
    // then.
    [[nodiscard]] bool run(scratch<tree_record<D>>& records);

    // Depth of the deepest record.
    unsigned int deepest() const { return deepest_; }

private:
    // A subtree that is not split yet.
    struct range {
        unsigned int begin;
        unsigned int end;
        unsigned int depth;
        unsigned int stalled;  // levels since it was twice the size of `goal`
        unsigned int goal;
    };

    // Where this many levels in a row did not halve a set that is not small, splitting it once per level would be slow.
    static constexpr unsigned int patience = 12 * D;
    static constexpr unsigned int small = 256;

    unsigned int partition(unsigned int begin, unsigned int end, int d);
    range child_of(const range& set, unsigned int begin, unsigned int end);
    bool link_directly(const range& set);

    tree_record<D>* records_ = nullptr;
    scratch<tree_record<D>> spare_;
    bool scattered_ = false;
    unsigned int deepest_ = 0;
};

template <int D>
bool tree_builder<D>::run(scratch<tree_record<D>>& records)
{
    const unsigned int count = static_cast<unsigned int>(records.size());
    records_ = records.data();
    scattered_ = false;
    deepest_ = 0;
    if (count == 0) return true;
    if (!spare_.allocate(count)) return false;
    // The smaller set is split first, so that no more than log2(n) of the larger ones wait.
    std::array<range, 40> waiting;
    std::size_t top = 0;
    records_[0].parent = NONE_INDEX;
    waiting[top++] = {0, count, 0, 0, count / 2};
    while (top != 0) {
        const range set = waiting[--top];
        deepest_ = std::max(deepest_, set.depth);
        if (set.stalled > patience && set.end - set.begin > small) {
            if (!link_directly(set)) return false;
            continue;
        }
        const unsigned int middle = partition(set.begin, set.end, static_cast<int>(set.depth % D));
        range left = child_of(set, set.begin + 1, middle);
        range right = child_of(set, middle, set.end);
        records_[set.begin].left = left.begin != left.end ? left.begin : NONE_INDEX;
        records_[set.begin].right = right.begin != right.end ? right.begin : NONE_INDEX;
        if (left.end - left.begin > right.end - right.begin) std::swap(left, right);
        if (right.begin != right.end) waiting[top++] = right;
        if (left.begin != left.end) waiting[top++] = left;
    }
    if (!scattered_) return true;
    return copy_in_preorder(records, spare_) && (records.swap(spare_), true);
}

// Brings what goes to the left of the first record behind it and the rest behind that, each side in its old order.
// Returns where the right side begins.
template <int D>
unsigned int tree_builder<D>::partition(unsigned int begin, unsigned int end, int d)
{
    const double c = records_[begin].x[d];
    tree_record<D>* left = records_ + begin + 1;
    tree_record<D>* right = spare_.data();
    // Each record is written to both sides and stays on one: cheaper than a branch that cannot be foreseen.
    for (unsigned int i = begin + 1; i < end; ++i) {
        const bool is_left = goes_left(c, records_[i].x[d]);
        *right = records_[i];
        *left = records_[i];
        left += is_left;
        right += !is_left;
    }
    std::copy(spare_.data(), right, left);
    return static_cast<unsigned int>(left - records_);
}

template <int D>
typename tree_builder<D>::range tree_builder<D>::child_of(const range& set, unsigned int begin, unsigned int end)
{
    if (begin == end) return {begin, end, 0, 0, 0};
    records_[begin].parent = set.begin;
    const unsigned int count = end - begin;
    return count <= set.goal ? range{begin, end, set.depth + 1, 0, count / 2}
                             : range{begin, end, set.depth + 1, set.stalled + 1, set.goal};
}

template <int D>
bool tree_builder<D>::link_directly(const range& set)
{
    ordered_splitter<D> splitter;
    if (!splitter.run(records_, set.begin, set.end - set.begin, set.depth)) return false;
    deepest_ = std::max(deepest_, splitter.deepest());
    scattered_ = true;
    return true;
}

}  // namespace zeb::tessolv

#endif
