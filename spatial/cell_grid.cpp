#include "spatial/cell_grid.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace zeb::tessolv {
namespace {

constexpr double nodes_per_cell = 2;
constexpr std::size_t fewest_nodes = 256;       // of less a walk is short
constexpr unsigned int longest_side = 1 << 14;  // in cells, so that floats tell a thousandth of one
constexpr double most_crowded = 64;             // nodes that share a cell with a node, on average
constexpr float far_away = 1e30f;

template <std::size_t D>
float squared_distance(const std::array<float, D>& a, const std::array<float, D>& b)
{
    float sum = 0;
    for (std::size_t d = 0; d < D; ++d) sum += (a[d] - b[d]) * (a[d] - b[d]);
    return sum;
}

// The width that makes `cells` cubic cells of a box, whose flat sides count for one cell.
template <int D>
double cell_width(const point<D>& extent, double cells)
{
    point<D> sides = extent;
    std::sort(sides.begin(), sides.end());
    for (int flat = 0; flat < D; ++flat) {
        double content = 1;
        for (int d = flat; d < D; ++d) content *= sides[d] / sides[D - 1];
        const double width = sides[D - 1] * std::pow(content / cells, 1.0 / (D - flat));
        if (sides[flat] > width) return width;
    }
    return 0;
}

// The record of a set that the walk for P meets first: in descent() one on the way of P into the tree, in search() the
// record itself, the side of P, the other side. Positions in preorder, ascending.
template <int D>
unsigned int first_met(const tree_table<D>& records, const unsigned int* first, const unsigned int* last,
                       const point<D>& P)
{
    const unsigned int* begin = first;
    const unsigned int* end = last;
    int d = 0;
    for (unsigned int r = 0; begin != end && r != NONE_INDEX; d = next_dimension<D>(d)) {
        if (*begin == r) return r;
        const bool is_left = goes_left(records.x(r)[d], P[d]);
        const unsigned int* middle = std::lower_bound(begin, end, records[r].right);
        (is_left ? end : begin) = middle;
        r = is_left ? records[r].left : records[r].right;
    }
    begin = first;
    end = last;
    d = 0;
    for (unsigned int r = 0;; d = next_dimension<D>(d)) {
        if (*begin == r) return r;
        const unsigned int* middle = std::lower_bound(begin, end, records[r].right);
        const bool left_is_near = records.x(r)[d] >= P[d];
        const bool is_left = middle == end || (middle != begin && left_is_near);
        (is_left ? end : begin) = middle;
        r = is_left ? records[r].left : records[r].right;
    }
}

}  // namespace

template <int D>
void cell_grid<D>::fit(const extent<D>& nodes, std::size_t count)
{
    starts_.clear();
    entries_.clear();
    suits_ = count >= fewest_nodes && nodes.is_moderate && choose_cells(nodes, count);
    if (suits_) return;
    double longest = 0;
    for (int d = 0; d < D; ++d) longest = std::max(longest, nodes.bounds.upper[d] - nodes.bounds.lower[d]);
    frame_ = {nodes.bounds.lower, longest > 1 / extent<D>::extreme ? 1 / longest : 0.0};
}

template <int D>
bool cell_grid<D>::choose_cells(const extent<D>& nodes, std::size_t count)
{
    point<D> sides;
    double largest = 0;
    for (int d = 0; d < D; ++d) {
        const auto& [lower, upper] = nodes.bounds;
        sides[d] = upper[d] - lower[d];
        largest = std::max({largest, std::abs(lower[d]), std::abs(upper[d])});
    }
    const double width = cell_width<D>(sides, static_cast<double>(count) / nodes_per_cell);
    if (!(width > 1 / extent<D>::extreme)) return false;
    frame_ = {nodes.bounds.lower, 1 / width};
    unsigned int longest = 0;
    for (int d = 0; d < D; ++d) {
        const double side = sides[d] * frame_.units;
        if (!(side < longest_side - 1)) return false;
        shape_[d] = static_cast<unsigned int>(side) + 1;
        longest = std::max(longest, shape_[d]);
    }
    const double rounding = largest * 0x1p-49;
    blur_exact_ = rounding;
    blur_ = longest * 0x1p-21 + rounding * frame_.units;
    return blur_ < 0.02;
}

// Sorts the nodes by cell, those of a cell in ascending order of their records.
template <int D>
bool cell_grid<D>::enter(const scratch<rough_node<D>>& nodes, scratch<rough_node<D>>& room)
{
    if (!suits_) return true;
    std::size_t cells = 1;
    for (const unsigned int side : shape_) cells *= side;
    if (!starts_.allocate(cells + 2, 0)) return false;
    double company = 0;
    for (const rough_node<D>& node : nodes) company += 2 * starts_[cell_at(node.u) + 2]++ + 1;
    if (company > most_crowded * static_cast<double>(nodes.size())) return true;
    entries_.swap(room);
    if (!entries_.allocate(nodes.size())) return false;
    for (std::size_t c = 2; c < starts_.size(); ++c) starts_[c] += starts_[c - 1];
    for (unsigned int r = 0; r < nodes.size(); ++r) entries_[starts_[cell_at(nodes[r].u) + 1]++] = {nodes[r].u, r};
    starts_.truncate(cells + 1);
    return true;
}

template <int D>
bool cell_grid<D>::copy(const cell_grid& other)
{
    cell_grid made;
    if (!made.starts_.allocate(other.starts_.size()) || !made.entries_.allocate(other.entries_.size())) return false;
    std::copy(other.starts_.begin(), other.starts_.end(), made.starts_.begin());
    std::copy(other.entries_.begin(), other.entries_.end(), made.entries_.begin());
    made.frame_ = other.frame_;
    made.suits_ = other.suits_;
    made.blur_ = other.blur_;
    made.blur_exact_ = other.blur_exact_;
    made.shape_ = other.shape_;
    std::swap(*this, made);
    return true;
}

// Of a node in the grid.
template <int D>
std::uint64_t cell_grid<D>::cell_at(const float_point& u) const
{
    std::uint64_t cell = 0;
    for (int d = D - 1; d >= 0; --d) cell = cell * shape_[d] + std::min(static_cast<unsigned int>(u[d]), shape_[d] - 1);
    return cell;
}

// The cells that may hold points of a box, also those that were rounded into a cell or out of it.
template <int D>
typename cell_grid<D>::cell_range cell_grid<D>::cells_between(const point<D>& lower, const point<D>& upper) const
{
    const auto nearest_cell = [this](double u, int d) {
        return static_cast<unsigned int>(std::clamp(u, 0.0, shape_[d] - 1.0));
    };
    cell_range cells;
    for (int d = 0; d < D; ++d) {
        cells.first[d] = nearest_cell(lower[d] - blur_, d);
        cells.last[d] = nearest_cell(upper[d] + blur_, d);
    }
    return cells;
}

// Cells that are next to one another in x are one run of entries.
template <int D>
template <class Visit>
void cell_grid<D>::visit(const cell_range& cells, Visit visit_run) const
{
    const auto visit_row = [&](std::uint64_t row) {
        const std::uint64_t begin = row * shape_[0];
        visit_run(starts_[begin + cells.first[0]], starts_[begin + cells.last[0] + 1]);
    };
    for (std::uint64_t y = cells.first[1]; y <= cells.last[1]; ++y)
        if constexpr (D == 2)
            visit_row(y);
        else
            for (std::uint64_t z = cells.first[2]; z <= cells.last[2]; ++z) visit_row(z * shape_[1] + y);
}

template <int D>
typename cell_grid<D>::nearest cell_grid<D>::nearest_within(const table& records, const query& q, double radius) const
{
    const float here = static_cast<float>(blur_ * blur_);
    nearest found{far_away, far_away, NONE_INDEX};
    point<D> lower;
    point<D> upper;
    for (int d = 0; d < D; ++d) {
        lower[d] = q.u[d] - radius;
        upper[d] = q.u[d] + radius;
    }
    visit(cells_between(lower, upper), [&](unsigned int begin, unsigned int end) {
        for (unsigned int i = begin; i < end; ++i) {
            const entry& e = entries_[i];
            const float square = squared_distance(e.u, q.v);
            if (q.excluded != NONE_INDEX && square <= here && records[e.node].node == q.excluded) continue;
            // Without branches, which nobody could foresee.
            found.next_square = std::min(found.next_square, std::max(found.square, square));
            found.record = square < found.square ? e.node : found.record;
            found.square = std::min(found.square, square);
        }
    });
    return found;
}

template <int D>
bool cell_grid<D>::find_closest(const table& records, const point<D>& P, unsigned int excluded,
                                unsigned int& closest) const
{
    // Holds the closest of evenly spread nodes 5 times of 6; with 0.75 queries took a tenth longer.
    constexpr double usual_radius = 0.6;
    constexpr double largest_radius = 6;
    query q{P, frame_.place(P), {}, excluded};
    for (int d = 0; d < D; ++d) {
        if (!(std::abs(q.u[d]) < 2.0 * longest_side)) return false;
        q.v[d] = static_cast<float>(q.u[d]);
    }
    for (double radius = usual_radius; radius < largest_radius;) {
        const nearest found = nearest_within(records, q, radius);
        const double reach = std::sqrt(static_cast<double>(found.square)) + 4 * blur_;
        if (reach > radius) {
            radius = found.record == NONE_INDEX ? 2 * radius : reach * (1 + 0x1p-20);
            continue;
        }
        if (static_cast<double>(found.next_square) <= reach * reach) return settle_tie(records, q, reach, closest);
        closest = records[found.record].node;
        return closest != excluded;
    }
    return false;
}

// Exact distances decide between nodes that floats cannot tell apart.
template <int D>
bool cell_grid<D>::settle_tie(const table& records, const query& q, double reach, unsigned int& closest) const
{
    struct {
        std::array<unsigned int, 64> record;
        std::size_t count = 0;
    } close;
    point<D> lower;
    point<D> upper;
    for (int d = 0; d < D; ++d) {
        lower[d] = q.u[d] - reach;
        upper[d] = q.u[d] + reach;
    }
    const float limit = static_cast<float>(reach * reach * (1 + 0x1p-20));
    visit(cells_between(lower, upper), [&](unsigned int begin, unsigned int end) {
        for (unsigned int i = begin; i < end; ++i) {
            if (squared_distance(entries_[i].u, q.v) > limit || records[entries_[i].node].node == q.excluded) continue;
            if (close.count < close.record.size()) close.record[close.count] = entries_[i].node;
            ++close.count;
        }
    });
    if (close.count == 0 || close.count > close.record.size()) return false;

    const auto square_of = [&](unsigned int r) { return squared_distance(records.x(r), q.P); };
    unsigned int* const first = close.record.data();
    unsigned int* const last = first + close.count;
    double least = square_of(*first);
    for (const unsigned int* r = first; r != last; ++r) least = std::min(least, square_of(*r));
    const auto is_close = [&](unsigned int r) { return square_of(r) == least; };
    unsigned int* const end = std::partition(first, last, is_close);
    // Those a little farther away may hide a closer one from the walk, by rounding.
    const double doubtful = std::sqrt(least) * (1 + 0x1p-48) + blur_exact_;
    if (std::any_of(end, last, [&](unsigned int r) { return !(std::sqrt(square_of(r)) > doubtful); })) return false;
    std::sort(first, end);
    closest = records[first_met<D>(records, first, end, q.P)].node;
    return true;
}

template <int D>
bool cell_grid<D>::find_in_box(const table& records, const box<D>& b, dense1D<unsigned int>& nodes) const
{
    constexpr std::uint64_t most_cells = 512;
    std::array<unsigned int, 256> hits;
    std::size_t count = 0;
    const point<D> lower = frame_.place(b.lower);
    const point<D> upper = frame_.place(b.upper);
    std::uint64_t cell_count = 1;
    for (int d = 0; d < D; ++d)
        if (!(lower[d] <= upper[d] && std::abs(b.lower[d]) < extent<D>::extreme &&
              std::abs(b.upper[d]) < extent<D>::extreme))
            return false;
    const cell_range cells = cells_between(lower, upper);
    for (int d = 0; d < D; ++d) cell_count *= cells.last[d] - cells.first[d] + 1;
    if (cell_count > most_cells) return false;

    float_point outer_lower, outer_upper, inner_lower, inner_upper;
    for (int d = 0; d < D; ++d) {
        outer_lower[d] = static_cast<float>(lower[d] - blur_);
        outer_upper[d] = static_cast<float>(upper[d] + blur_);
        inner_lower[d] = static_cast<float>(lower[d] + blur_);
        inner_upper[d] = static_cast<float>(upper[d] - blur_);
    }
    visit(cells, [&](unsigned int begin, unsigned int end) {
        for (unsigned int i = begin; i < end; ++i) {
            const entry& e = entries_[i];
            bool may_be_hit = true;
            bool is_hit = true;
            for (int d = 0; d < D; ++d) {
                may_be_hit &= outer_lower[d] <= e.u[d] && e.u[d] <= outer_upper[d];
                is_hit &= inner_lower[d] <= e.u[d] && e.u[d] <= inner_upper[d];
            }
            if (!may_be_hit || (!is_hit && !b.contains(records.x(e.node)))) continue;
            if (count < hits.size()) hits[count] = e.node;
            ++count;
        }
    });
    if (count > hits.size()) return false;
    std::sort(hits.begin(), hits.begin() + count, std::greater<>());
    for (std::size_t k = 0; k < count; ++k) nodes.push_back(records[hits[k]].node);  // lost without memory, one by one
    return true;
}

template class cell_grid<2>;
template class cell_grid<3>;

}  // namespace zeb::tessolv
