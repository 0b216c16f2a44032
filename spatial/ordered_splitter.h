#ifndef TESSOLV_SPATIAL_ORDERED_SPLITTER_H
#define TESSOLV_SPATIAL_ORDERED_SPLITTER_H

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "core/scratch.h"
#include "spatial/tree_record.h"

namespace zeb::tessolv {

// Links the tree of a run of records where most records have nearly all later ones on one side: coincident nodes, or
// positions that grow with the order. Each set of records is kept in D + 1 lists, by every coordinate and by order of
// insertion, and it is the smaller side that leaves them: a record moves at most log2(n) times, however deep the tree.
template <int D>
class ordered_splitter {
public:
    // Sets the links among the `count` records from `begin` on, which stand in order of insertion; the first is their
    // root, of depth `depth`. False without memory.
    [[nodiscard]] bool run(tree_table<D>& records, unsigned int begin, unsigned int count, unsigned int depth);

    // Depth of the deepest record that was linked.
    unsigned int deepest() const { return deepest_; }

private:
    static constexpr int by_insertion = D;  // the lists before it are those by coordinate
    static constexpr int lists = D + 1;

    struct ends {
        unsigned int first = NONE_INDEX;
        unsigned int last = NONE_INDEX;
    };
    // The records of one subtree, numbered from `begin` on.
    struct part {
        std::array<ends, lists> list;
        unsigned int count = 0;
        unsigned int depth = 0;
    };
    struct side {
        unsigned int count;
        bool is_left;
    };

    double coordinate(unsigned int i, int d) const { return positions_[i][d]; }
    bool sort(part& all);
    void chain(int k, const unsigned int* order, std::size_t count, ends& list);
    void remove(part& from, unsigned int i);
    side smaller_side(const part& rest, unsigned int root, int d) const;
    part split_off(part& from, const side& moved, int d);
    void attach(unsigned int root, const part& child, bool is_left);

    tree_record* records_ = nullptr;
    unsigned int begin_ = 0;
    unsigned int deepest_ = 0;
    scratch<point<D>> positions_;
    std::array<scratch<unsigned int>, lists> next_;
    std::array<scratch<unsigned int>, lists> previous_;
    std::array<scratch<unsigned int>, lists> rank_;
    scratch<unsigned int> moving_;
};

template <int D>
bool ordered_splitter<D>::run(tree_table<D>& records, unsigned int begin, unsigned int count, unsigned int depth)
{
    records_ = records.data();
    begin_ = begin;
    deepest_ = depth;
    if (!positions_.allocate(count)) return false;
    for (unsigned int i = 0; i < count; ++i) positions_[i] = records.x(begin + i);
    // The smaller part is split first, so that no more than log2(n) of the larger ones wait.
    std::array<part, 40> waiting;
    std::size_t top = 1;
    waiting[0].count = count;
    waiting[0].depth = depth;
    if (!sort(waiting[0])) return false;

    while (top != 0) {
        part rest = waiting[--top];
        const unsigned int root = rest.list[by_insertion].first;
        const int d = static_cast<int>(rest.depth % D);
        deepest_ = std::max(deepest_, rest.depth++);
        remove(rest, root);
        const side moved = smaller_side(rest, root, d);
        const part smaller = split_off(rest, moved, d);
        attach(root, smaller, moved.is_left);
        attach(root, rest, !moved.is_left);
        if (rest.count != 0) waiting[top++] = rest;
        if (smaller.count != 0) waiting[top++] = smaller;
    }
    return true;
}

// Brings all records into the lists. NaN coordinates stand last, as they go to the right everywhere.
template <int D>
bool ordered_splitter<D>::sort(part& all)
{
    if (!moving_.allocate(all.count)) return false;
    for (int k = 0; k < lists; ++k) {
        if (!next_[k].allocate(all.count) || !previous_[k].allocate(all.count) || !rank_[k].allocate(all.count))
            return false;
        std::iota(moving_.begin(), moving_.end(), 0u);
        if (k != by_insertion) {
            std::sort(moving_.begin(), moving_.end(), [this, k](unsigned int i, unsigned int j) {
                const double a = coordinate(i, k);
                const double b = coordinate(j, k);
                return a < b || (std::isnan(b) && !std::isnan(a)) ||
                       (!(b < a) && std::isnan(a) == std::isnan(b) && i < j);
            });
        }
        for (unsigned int i = 0; i < all.count; ++i) rank_[k][moving_[i]] = i;
        chain(k, moving_.begin(), all.count, all.list[k]);
    }
    return true;
}

template <int D>
void ordered_splitter<D>::chain(int k, const unsigned int* order, std::size_t count, ends& list)
{
    list = ends();
    for (std::size_t i = 0; i < count; ++i) {
        previous_[k][order[i]] = list.last;
        next_[k][order[i]] = NONE_INDEX;
        (list.last != NONE_INDEX ? next_[k][list.last] : list.first) = order[i];
        list.last = order[i];
    }
}

template <int D>
void ordered_splitter<D>::remove(part& from, unsigned int i)
{
    for (int k = 0; k < lists; ++k) {
        const unsigned int before = previous_[k][i];
        const unsigned int after = next_[k][i];
        (before != NONE_INDEX ? next_[k][before] : from.list[k].first) = after;
        (after != NONE_INDEX ? previous_[k][after] : from.list[k].last) = before;
    }
    --from.count;
}

// Walks in from both ends of the list by coordinate d: the left side is a beginning of it, the right one its end.
template <int D>
typename ordered_splitter<D>::side ordered_splitter<D>::smaller_side(const part& rest, unsigned int root, int d) const
{
    const double c = coordinate(root, d);
    unsigned int low = rest.list[d].first;
    unsigned int high = rest.list[d].last;
    for (unsigned int count = 0; count < rest.count; ++count) {
        if (!goes_left(c, coordinate(low, d))) return {count, true};
        if (goes_left(c, coordinate(high, d))) return {count, false};
        low = next_[d][low];
        high = previous_[d][high];
    }
    return {0, true};
}

template <int D>
typename ordered_splitter<D>::part ordered_splitter<D>::split_off(part& from, const side& moved, int d)
{
    part off;
    off.count = moved.count;
    off.depth = from.depth;
    moving_.clear();
    for (unsigned int i = 0; i < moved.count; ++i) {
        const unsigned int end = moved.is_left ? from.list[d].first : from.list[d].last;
        static_cast<void>(moving_.push_back(end));
        remove(from, end);
    }
    for (int k = 0; k < lists && moved.count != 0; ++k) {
        const scratch<unsigned int>& rank = rank_[k];
        std::sort(moving_.begin(), moving_.end(), [&](unsigned int i, unsigned int j) { return rank[i] < rank[j]; });
        chain(k, moving_.begin(), moving_.size(), off.list[k]);
    }
    return off;
}

template <int D>
void ordered_splitter<D>::attach(unsigned int root, const part& child, bool is_left)
{
    tree_record& record = records_[begin_ + root];
    const unsigned int first = child.count != 0 ? begin_ + child.list[by_insertion].first : NONE_INDEX;
    (is_left ? record.left : record.right) = first;
    if (first != NONE_INDEX) records_[first].parent = begin_ + root;
}

}  // namespace zeb::tessolv

#endif
