#ifndef TESSOLV_SPATIAL_BALANCED_TREE_H
#define TESSOLV_SPATIAL_BALANCED_TREE_H

#include <algorithm>
#include <array>
#include <utility>

#include "core/scratch.h"
#include "spatial/point.h"

namespace zeb::tessolv {

// A static search tree of points, halved at the median of their widest extent whatever they are: where kd_tree has to
// follow the order of insertion, this one only finds. Coordinates are not NaN.
template <int D>
class balanced_tree {
public:
    struct item {
        point<D> x;
        unsigned int id;
    };

    // Takes the items over. False without memory.
    [[nodiscard]] bool build(scratch<item>& items);

    std::size_t size() const { return items_.size(); }

    // In an order in which those that are near one another are seldom far apart.
    const scratch<item>& items() const { return items_; }

    // The longest side of the box around all items; 0 without any.
    double longest_side() const;

    // Calls visit(item) for the items in the box until it answers false.
    template <class Visit>
    void visit_box(const box<D>& b, Visit visit) const;

    // Calls visit(item) for the items at a distance from P of at most `reach` and for some others, near ones first. The
    // visit may lower `reach`.
    template <class Visit>
    void visit_near(const point<D>& P, const double& reach, Visit visit) const;

private:
    // Items of a subtree: its children have one half each.
    struct range {
        std::size_t subtree;
        std::size_t begin;
        std::size_t end;
    };

    static constexpr std::size_t leaf_size = 8;

    bool is_leaf(const range& r) const { return 2 * r.subtree + 1 >= bounds_.size(); }
    range half(const range& r, std::size_t k) const;
    box<D> bounds_of(const range& r) const;
    void split(const range& r);

    scratch<item> items_;
    scratch<box<D>> bounds_;  // of subtree 0, of its halves 1 and 2, and so on: the halves of k are 2k + 1 and 2k + 2
};

template <int D>
bool balanced_tree<D>::build(scratch<item>& items)
{
    items_.swap(items);
    std::size_t leaves = 1;
    while (leaves * leaf_size < items_.size()) leaves *= 2;
    if (!bounds_.allocate(2 * leaves - 1)) return false;
    if (!items_.empty()) split({0, 0, items_.size()});
    return true;
}

template <int D>
typename balanced_tree<D>::range balanced_tree<D>::half(const range& r, std::size_t k) const
{
    const std::size_t middle = r.begin + (r.end - r.begin) / 2;
    return k == 0 ? range{2 * r.subtree + 1, r.begin, middle} : range{2 * r.subtree + 2, middle, r.end};
}

template <int D>
box<D> balanced_tree<D>::bounds_of(const range& r) const
{
    box<D> b{items_[r.begin].x, items_[r.begin].x};
    for (std::size_t i = r.begin + 1; i < r.end; ++i) {
        for (int d = 0; d < D; ++d) {
            b.lower[d] = std::min(b.lower[d], items_[i].x[d]);
            b.upper[d] = std::max(b.upper[d], items_[i].x[d]);
        }
    }
    return b;
}

template <int D>
void balanced_tree<D>::split(const range& r)
{
    const box<D> b = bounds_of(r);
    bounds_[r.subtree] = b;
    if (is_leaf(r)) return;
    int widest = 0;
    for (int d = 1; d < D; ++d)
        if (!(b.upper[d] - b.lower[d] <= b.upper[widest] - b.lower[widest])) widest = d;
    const range low = half(r, 0);
    std::nth_element(items_.begin() + r.begin, items_.begin() + low.end, items_.begin() + r.end,
                     [widest](const item& a, const item& c) { return a.x[widest] < c.x[widest]; });
    split(low);
    split(half(r, 1));
}

template <int D>
double balanced_tree<D>::longest_side() const
{
    double longest = 0;
    for (int d = 0; d < D && !items_.empty(); ++d)
        longest = std::max(longest, bounds_[0].upper[d] - bounds_[0].lower[d]);
    return longest;
}

template <int D>
template <class Visit>
void balanced_tree<D>::visit_box(const box<D>& b, Visit visit) const
{
    if (items_.empty()) return;
    std::array<range, 64> waiting;
    std::size_t top = 0;
    waiting[top++] = {0, 0, items_.size()};
    while (top != 0) {
        const range r = waiting[--top];
        if (!b.meets(bounds_[r.subtree])) continue;
        if (!is_leaf(r)) {
            waiting[top++] = half(r, 1);
            waiting[top++] = half(r, 0);
            continue;
        }
        for (std::size_t i = r.begin; i < r.end; ++i)
            if (b.contains(items_[i].x) && !visit(items_[i])) return;
    }
}

template <int D>
template <class Visit>
void balanced_tree<D>::visit_near(const point<D>& P, const double& reach, Visit visit) const
{
    struct waiting_range {
        range items;
        double distance;
    };
    if (items_.empty()) return;
    std::array<waiting_range, 64> waiting;
    std::size_t top = 0;
    waiting[top++] = {{0, 0, items_.size()}, 0.0};
    while (top != 0) {
        const waiting_range next = waiting[--top];
        const range& r = next.items;
        if (next.distance > reach) continue;
        if (is_leaf(r)) {
            for (std::size_t i = r.begin; i < r.end; ++i) visit(items_[i]);
            continue;
        }
        waiting_range near{half(r, 0), bounds_[2 * r.subtree + 1].distance_to(P)};
        waiting_range far{half(r, 1), bounds_[2 * r.subtree + 2].distance_to(P)};
        if (far.distance < near.distance) std::swap(near, far);
        waiting[top++] = far;
        waiting[top++] = near;
    }
}

}  // namespace zeb::tessolv

#endif
