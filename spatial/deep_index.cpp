#include "spatial/deep_index.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace zeb::tessolv {
namespace {

constexpr double largest = std::numeric_limits<double>::max();

// Of values that come one by one, keeps the greatest that a list has room for.
class greatest_values {
public:
    greatest_values(unsigned int* begin, std::uint64_t room) : begin_(begin), room_(room) {}

    void add(unsigned int value)
    {
        if (count_ < room_) {
            begin_[count_++] = value;
            if (count_ == room_) std::make_heap(begin_, begin_ + count_, std::greater<>());
        } else if (room_ != 0 && value > *begin_) {
            std::pop_heap(begin_, begin_ + count_, std::greater<>());
            begin_[count_ - 1] = value;
            std::push_heap(begin_, begin_ + count_, std::greater<>());
        }
    }

private:
    unsigned int* begin_;
    std::uint64_t room_;
    std::uint64_t count_ = 0;
};

}  // namespace

template <int D>
bool deep_index<D>::build(const table& records)
{
    deep_index built;
    if (!built.trace_paths(records) || !built.gather_places(records)) return false;
    std::swap(*this, built);
    return true;
}

// Parents stand before their children, and a subtree ends with its last record.
template <int D>
bool deep_index<D>::trace_paths(const table& records)
{
    const unsigned int count = static_cast<unsigned int>(records.size());
    if (!paths_.allocate(count)) return false;
    for (unsigned int r = 0; r < count; ++r) paths_[r] = path_to(records, r);
    for (unsigned int r = count; --r > 0;) {
        unsigned int& end = paths_[records[r].parent].end;
        end = std::max(end, paths_[r].end);
    }
    return true;
}

// Jump pointers: E. W. Myers. An applicative random-access stack. Information Processing Letters 17(5), 1983.
template <int D>
typename deep_index<D>::path deep_index<D>::path_to(const table& records, unsigned int r) const
{
    path here{r + 1, 0, 0, false, {}, {}};
    here.lower.fill(NONE_INDEX);
    here.upper.fill(NONE_INDEX);
    const unsigned int parent = records[r].parent;
    if (parent == NONE_INDEX) return here;

    const path& above = paths_[parent];
    const path& jump = paths_[above.jump];
    const int d = static_cast<int>(above.depth % D);
    here.depth = above.depth + 1;
    here.jump = above.depth - jump.depth == jump.depth - paths_[jump.jump].depth ? jump.jump : parent;
    here.is_hidden = above.is_hidden || std::isnan(records.x(parent)[d]);
    here.lower = above.lower;
    here.upper = above.upper;
    if (records[parent].left == r)
        here.upper[d] = parent;
    else if (!std::isnan(records.x(parent)[d]))
        here.lower[d] = parent;
    return here;
}

template <int D>
bool deep_index<D>::gather_places(const table& records)
{
    struct located {
        point<D> x;
        unsigned int record;
    };
    scratch<located> order;
    scratch<typename balanced_tree<D>::item> items;
    if (!order.allocate(records.size())) return false;
    for (unsigned int r = 0; r < records.size(); ++r) order[r] = {records.x(r), r};
    located* const end =
        std::remove_if(order.begin(), order.end(), [](const located& l) { return l.x != l.x; });  // NaN
    std::sort(order.begin(), end,
              [](const located& a, const located& b) { return a.x != b.x ? a.x < b.x : a.record < b.record; });
    scratch<unsigned int> at_place;
    for (const located* first = order.begin(); first != end;) {
        at_place.clear();
        const located* next = first;
        for (; next != end && next->x == first->x; ++next)
            if (!at_place.push_back(next->record)) return false;
        if (!items.push_back({first->x, static_cast<unsigned int>(places_.size())})) return false;
        if (!add_place(records, at_place.begin(), at_place.end())) return false;
        first = next;
    }
    return tree_.build(items);
}

template <int D>
bool deep_index<D>::add_place(const table& records, const unsigned int* begin, const unsigned int* end)
{
    const unsigned int node = records[*begin].node;
    const auto* second = std::find_if(begin, end, [&](unsigned int r) { return records[r].node != node; });
    const auto first_shown = static_cast<unsigned int>(shown_.size());
    for (const unsigned int* r = begin; r != end; ++r)
        if (!paths_[*r].is_hidden && !shown_.push_back(*r)) return false;
    return places_.push_back(
        {*begin, second != end ? *second : NONE_INDEX, first_shown, static_cast<unsigned int>(shown_.size())});
}

template <int D>
unsigned int deep_index<D>::find_closest(const table& records, const point<D>& P, unsigned int excluded) const
{
    for (const double value : P)
        if (!std::isfinite(value)) return NONE_INDEX;
    double closest = largest;
    unsigned int found = NONE_INDEX;
    tree_.visit_near(P, closest, [&](const auto& item) {
        const place& p = places_[item.id];
        const unsigned int r = records[p.first].node != excluded ? p.first : p.second;
        const double d = distance(item.x, P);
        if (r == NONE_INDEX || !(d <= closest)) return;
        found = d < closest || found == NONE_INDEX ? r : preferred(records, found, r, P);
        closest = d;
    });
    return found != NONE_INDEX ? records[found].node : NONE_INDEX;
}

// The one of two equally close records that the walk of kd_tree ends with.
template <int D>
unsigned int deep_index<D>::preferred(const table& records, unsigned int a, unsigned int b, const point<D>& P) const
{
    if (b < a) std::swap(a, b);
    const bool a_is_on_way = is_on_way(records, a, P);
    const bool b_is_on_way = is_on_way(records, b, P);
    if (a_is_on_way && b_is_on_way)
        return squared_distance(records.x(b), P) < squared_distance(records.x(a), P) ? b : a;
    if (a_is_on_way || b_is_on_way) return a_is_on_way ? a : b;

    unsigned int common = a;
    while (paths_[common].end <= b) {
        const unsigned int jump = paths_[common].jump;
        common = paths_[jump].end <= b ? jump : records[common].parent;
    }
    const bool left_is_near = records.x(common)[paths_[common].depth % D] >= P[paths_[common].depth % D];
    return common == a || left_is_near ? a : b;
}

// Whether P passes the record on its way into the tree, and is near enough for squares to be compared.
template <int D>
bool deep_index<D>::is_on_way(const table& records, unsigned int r, const point<D>& P) const
{
    const path& here = paths_[r];
    for (int d = 0; d < D; ++d) {
        if (here.lower[d] != NONE_INDEX && goes_left(records.x(here.lower[d])[d], P[d])) return false;
        if (here.upper[d] != NONE_INDEX && !goes_left(records.x(here.upper[d])[d], P[d])) return false;
    }
    return squared_distance(records.x(r), P) < largest;
}

// Makes room first, as pushing the hits one by one does; where memory ends, the last ones are lost.
template <int D>
void deep_index<D>::find_in_box(const table& records, const box<D>& b, dense1D<unsigned int>& nodes) const
{
    const std::uint64_t before = nodes.size;
    tree_.visit_box(b, [&](const auto& item) {
        for (unsigned int k = places_[item.id].begin; k < places_[item.id].end; ++k) nodes.push_back(0);
        return true;
    });
    unsigned int* begin = nodes.data() + before;
    greatest_values hits(begin, nodes.size - before);
    tree_.visit_box(b, [&](const auto& item) {
        for (unsigned int k = places_[item.id].begin; k < places_[item.id].end; ++k) hits.add(shown_[k]);
        return true;
    });
    std::sort(begin, nodes.end(), std::greater<>());
    for (unsigned int* hit = begin; hit != nodes.end(); ++hit) *hit = records[*hit].node;
}

template class deep_index<2>;
template class deep_index<3>;

}  // namespace zeb::tessolv
