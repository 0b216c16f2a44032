#ifndef TESSOLV_SPATIAL_TREE_BUILDER_H
#define TESSOLV_SPATIAL_TREE_BUILDER_H

#include <algorithm>
#include <array>
#include <cstddef>

#include "core/processor.h"
#include "core/scratch.h"
#include "spatial/ordered_splitter.h"
#include "spatial/rough_node.h"
#include "spatial/tree_record.h"
#include "spatial/wide_partition.h"

namespace zeb::tessolv {

// Copies a tree in the order record, left subtree, right subtree, its root first: every subtree is then a run of
// records. False without memory.
[[nodiscard]] inline bool copy_in_preorder(const scratch<tree_record>& from, scratch<tree_record>& to)
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
        const tree_record& record = from[next.record];
        waiting.pop_back();
        to[place] = {record.node, NONE_INDEX, NONE_INDEX, next.parent};
        if (next.parent != NONE_INDEX) (next.is_left ? to[next.parent].left : to[next.parent].right) = place;
        if (record.right != NONE_INDEX && !waiting.push_back({record.right, place, false})) return false;
        if (record.left != NONE_INDEX && !waiting.push_back({record.left, place, true})) return false;
    }
    return true;
}

// Makes the tree that comes from inserting nodes one after the other. The earliest node of a set is its root, and a
// stable partition keeps the order on both sides; so whole sets are split at once, and each subtree ends up as a run
// of records in the order record, left subtree, right subtree. What is moved are nodes with their rough positions, a
// third of what it would be with coordinates and links (1 M nodes: 105 ms against 75).
template <int D>
class tree_builder {
public:
    // For nodes in an extent, and a frame to see them in.
    tree_builder(const extent<D>& nodes, const frame<D>& f) : frame_(f)
    {
        for (int d = 0; d < D; ++d) is_flat_[d] = nodes.bounds.lower[d] == nodes.bounds.upper[d];
    }

    // Fills a table with records of the nodes, which stand in order of insertion. False without memory.
    [[nodiscard]] bool run(const scratch<unsigned int>& nodes, tree_table<D>& records);

    // Depth of the deepest record.
    unsigned int deepest() const { return deepest_; }

    // The nodes of the records in the order of the table, and room for as many, which is cheaper than memory that nobody
    // touched yet.
    const scratch<rough_node<D>>& rough_nodes() const { return rough_; }
    scratch<rough_node<D>>& room() { return spare_; }

private:
    // A subtree that is not split yet.
    struct range {
        unsigned int begin;
        unsigned int end;
        unsigned int parent;
        unsigned int depth;
        unsigned int stalled;  // levels since it was twice the size of `goal`
        unsigned int goal;

        unsigned int size() const { return end - begin; }
    };

    // Where this many levels in a row did not halve a set that is not small, splitting it once per level would be slow.
    static constexpr unsigned int patience = 12 * D;
    static constexpr unsigned int small = 256;
    static constexpr unsigned int worth_wide = 16;

    void gather(const scratch<unsigned int>& nodes, const tree_table<D>& records);
    [[nodiscard]] bool split_all(tree_table<D>& records);
    unsigned int partition(const range& set, const dense2D<double>& pos);
    [[gnu::always_inline]] static inline void deal(dealing<D>& nodes, const rough_node<D>* end, int d,
                                                   const rough_node<D>& root, const dense2D<double>& pos);
    static range child_of(const range& set, unsigned int begin, unsigned int end);
    [[nodiscard]] bool link_directly(const range& set, tree_table<D>& records);
    [[nodiscard]] bool put_in_order(tree_table<D>& records);

    frame<D> frame_;
    std::array<bool, D> is_flat_;  // no coordinate is less than another one
    scratch<rough_node<D>> rough_;
    scratch<rough_node<D>> spare_;
    const bool is_wide_ = has_avx512();
    bool scattered_ = false;
    unsigned int deepest_ = 0;
};

template <int D>
bool tree_builder<D>::run(const scratch<unsigned int>& nodes, tree_table<D>& records)
{
    scattered_ = false;
    deepest_ = 0;
    if (!records.allocate(nodes.size()) || !rough_.allocate(nodes.size()) || !spare_.allocate(nodes.size()))
        return false;
    if (nodes.empty()) return true;
    gather(nodes, records);
    return split_all(records) && (!scattered_ || put_in_order(records));
}

// The memory of later nodes is fetched ahead: their order is random (1 M nodes: 20 ms without, 13 with).
template <int D>
void tree_builder<D>::gather(const scratch<unsigned int>& nodes, const tree_table<D>& records)
{
    constexpr std::size_t lookahead = 16;
    const dense2D<double>& pos = records.matrix();
    for (std::size_t k = 0; k < nodes.size(); ++k) {
        const double* soon = column(pos, nodes[std::min(k + lookahead, nodes.size() - 1)]);
        __builtin_prefetch(soon);
        __builtin_prefetch(soon + D - 1);
        rough_[k] = frame_.rough(position_of<D>(pos, nodes[k]), nodes[k]);
    }
}

template <int D>
bool tree_builder<D>::split_all(tree_table<D>& records)
{
    // The smaller set is split first, so that no more than log2(n) of the larger ones wait.
    std::array<range, 40> waiting;
    std::size_t top = 0;
    const unsigned int count = static_cast<unsigned int>(rough_.size());
    waiting[top++] = {0, count, NONE_INDEX, 0, 0, count / 2};
    while (top != 0) {
        range set = waiting[--top];
        while (set.size() != 0) {
            deepest_ = std::max(deepest_, set.depth);
            if (set.stalled > patience && set.size() > small) {
                if (!link_directly(set, records)) return false;
                break;
            }
            const unsigned int middle = partition(set, records.matrix());
            records[set.begin] = {rough_[set.begin].node, middle != set.begin + 1 ? set.begin + 1 : NONE_INDEX,
                                  middle != set.end ? middle : NONE_INDEX, set.parent};
            const bool left_is_smaller = middle - set.begin - 1 < set.end - middle;
            const range left = child_of(set, set.begin + 1, middle);
            const range right = child_of(set, middle, set.end);
            const range& larger = left_is_smaller ? right : left;
            if (larger.size() != 0) waiting[top++] = larger;
            set = left_is_smaller ? left : right;
        }
    }
    return true;
}

// Brings what goes to the left of the first node behind it and the rest behind that, each side in its old order.
// Returns where the right side begins.
template <int D>
unsigned int tree_builder<D>::partition(const range& set, const dense2D<double>& pos)
{
    const int d = static_cast<int>(set.depth % D);
    if (is_flat_[d]) return set.begin + 1;
    const rough_node<D> root = rough_[set.begin];
    rough_node<D>* const begin = rough_.data() + set.begin + 1;
    const rough_node<D>* const end = rough_.data() + set.end;
    dealing<D> nodes{begin, begin, spare_.data()};
    if (D == 3 && is_wide_ && set.size() > worth_wide) {
        while (nodes.next != end) {
            if constexpr (D == 3) deal_by_four(nodes, end, d, root.u[d]);
            deal(nodes, nodes.next + std::min<std::ptrdiff_t>(4, end - nodes.next), d, root, pos);
        }
    } else {
        deal(nodes, end, d, root, pos);
    }
    std::copy(spare_.data(), nodes.right, nodes.left);
    return static_cast<unsigned int>(nodes.left - rough_.data());
}

template <int D>
void tree_builder<D>::deal(dealing<D>& nodes, const rough_node<D>* end, int d, const rough_node<D>& root,
                           const dense2D<double>& pos)
{
    const float c = root.u[d];
    auto [next, left, right] = nodes;
    for (; next != end; ++next) {
        const rough_node<D> moved = *next;
        const float u = moved.u[d];
        bool is_left = u < c;
        if (!(u < c) && !(u > c)) [[unlikely]]
            is_left = goes_left(column(pos, root.node)[d], column(pos, moved.node)[d]);
        // Each is written to both sides and stays on one: cheaper than a branch that cannot be foreseen.
        *right = moved;
        *left = moved;
        left += is_left;
        right += !is_left;
    }
    nodes = {next, left, right};
}

template <int D>
typename tree_builder<D>::range tree_builder<D>::child_of(const range& set, unsigned int begin, unsigned int end)
{
    const unsigned int count = end - begin;
    return count <= set.goal ? range{begin, end, set.begin, set.depth + 1, 0, count / 2}
                             : range{begin, end, set.begin, set.depth + 1, set.stalled + 1, set.goal};
}

template <int D>
bool tree_builder<D>::link_directly(const range& set, tree_table<D>& records)
{
    for (unsigned int r = set.begin; r != set.end; ++r)
        records[r] = {rough_[r].node, NONE_INDEX, NONE_INDEX, NONE_INDEX};
    records[set.begin].parent = set.parent;
    ordered_splitter<D> splitter;
    if (!splitter.run(records, set.begin, set.size(), set.depth)) return false;
    deepest_ = std::max(deepest_, splitter.deepest());
    scattered_ = true;
    return true;
}

// Of a table that has runs whose records are linked where they stood.
template <int D>
bool tree_builder<D>::put_in_order(tree_table<D>& records)
{
    scratch<tree_record> ordered;
    if (!copy_in_preorder(records, ordered)) return false;
    records.swap(ordered);
    for (std::size_t r = 0; r < records.size(); ++r) rough_[r] = frame_.rough(records.x(r), records[r].node);
    return true;
}

}  // namespace zeb::tessolv

#endif
