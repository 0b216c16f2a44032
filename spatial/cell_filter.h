#ifndef TESSOLV_SPATIAL_CELL_FILTER_H
#define TESSOLV_SPATIAL_CELL_FILTER_H

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

#include "core/scratch.h"
#include "spatial/point.h"

namespace zeb::tessolv {

// Tells in a glance that nothing is near a point: points are entered into a grid of cells, wide against the distance
// that counts, and each cell has two bits in a table. Cells may meet in the table; so the answers err on the side of
// company, never of loneliness.
template <int D>
class cell_filter {
public:
    // For `count` points and boxes around points that reach as far as `half_width` to each side. False without memory.
    [[nodiscard]] bool allocate(std::size_t count, double half_width);

    // Where a point is in the grid.
    struct spot {
        std::uint64_t place;  // of its cell in the table
        bool is_inner;        // the box around it meets no other cell
    };
    spot locate(const point<D>& x);
    void prefetch(const spot& s) const { __builtin_prefetch(&words_[s.place / 32]); }

    void enter(const spot& s) { set_bits(s.place, bits_at(s.place) == 0 ? one_point : many_points); }

    // Whether the box around x, which is at the spot s, holds no point that was entered, apart from x itself if that was.
    bool is_alone(const point<D>& x, const spot& s, bool was_entered) const;

    // The same cells as marks: after forget(), cells that meet the box around x are marked.
    void forget() { std::fill(words_.begin(), words_.end(), 0u); }
    void mark_around(const point<D>& x);
    bool is_marked(const spot& s) const { return is_blind_ || bits_at(s.place) != 0; }

private:
    // Coordinates and boxes of this size could overflow: with one of them all points have company.
    static constexpr double too_large = 1e300;
    // Below this the number of a cell is exact. Beyond it coordinates are so far apart from one another that each is a
    // cell of its own, and has its bits for a number.
    static constexpr double most_cells = 4503599627370496.0;  // 2^52
    static constexpr double cell_width = 16.0;                // in half-widths

    static constexpr std::uint64_t one_point = 1;
    static constexpr std::uint64_t many_points = 3;

    using cell = std::array<std::uint64_t, D>;

    cell cell_of(const point<D>& x) const;
    std::uint64_t place_of(const cell& c) const { return hash_of(c) & mask_; }
    std::uint64_t bits_at(std::uint64_t place) const { return words_[place / 32] >> (place % 32 * 2) & 3; }
    void set_bits(std::uint64_t place, std::uint64_t bits) { words_[place / 32] |= bits << (place % 32 * 2); }
    template <class Visit>
    void visit_cells_around(const point<D>& x, Visit visit) const;

    scratch<std::uint64_t> words_;  // of 32 cells each
    std::uint64_t mask_ = 0;
    double half_width_ = 0;
    double cells_per_unit_ = 0;
    bool is_blind_ = false;
};

template <int D>
bool cell_filter<D>::allocate(std::size_t count, double half_width)
{
    constexpr double least = 1e-300;  // its inverse is finite
    half_width_ = half_width;
    is_blind_ = !(half_width < too_large);
    cells_per_unit_ = 1.0 / std::max(cell_width * half_width, least);
    const std::size_t cells = std::bit_ceil(32 * std::max<std::size_t>(count, 8));
    mask_ = cells - 1;
    return words_.allocate(cells / 32, 0);
}

template <int D>
typename cell_filter<D>::cell cell_filter<D>::cell_of(const point<D>& x) const
{
    cell c;
    for (int d = 0; d < D; ++d) {
        const double number = x[d] * cells_per_unit_;
        if (std::abs(number) < most_cells) {
            const auto whole = static_cast<std::int64_t>(number);
            c[d] = static_cast<std::uint64_t>(whole - (static_cast<double>(whole) > number));  // rounded down
        } else {
            c[d] = std::bit_cast<std::uint64_t>(x[d]);
        }
    }
    return c;
}

template <int D>
typename cell_filter<D>::spot cell_filter<D>::locate(const point<D>& x)
{
    constexpr double margin = 1.5 / cell_width;  // with room for rounding, in grids that are not too fine
    constexpr double fine = 1099511627776.0;     // 2^40
    const cell c = cell_of(x);
    bool is_inner = true;
    for (int d = 0; d < D; ++d) {
        is_blind_ |= !(std::abs(x[d]) < too_large);
        const double number = x[d] * cells_per_unit_;
        const double inside = number - static_cast<double>(static_cast<std::int64_t>(c[d]));
        is_inner &= margin < inside && inside < 1.0 - margin && std::abs(number) < fine;
    }
    return {place_of(c), is_inner};
}

// The cells of the lower and of the upper bounds are all that a box meets: it is narrower than a cell, and where cells
// are single coordinates, nothing lies between its bounds.
template <int D>
template <class Visit>
void cell_filter<D>::visit_cells_around(const point<D>& x, Visit visit) const
{
    const box<D> b = box_around<D>(x, half_width_);
    const cell lower = cell_of(b.lower);
    const cell upper = cell_of(b.upper);
    visit(place_of(lower));
    if (lower == upper) return;
    for (unsigned int corner = 1; corner < 1u << D; ++corner) {
        cell c = lower;
        bool is_new = true;
        for (int d = 0; d < D; ++d) {
            if ((corner >> d & 1) == 0) continue;
            c[d] = upper[d];
            is_new &= lower[d] != upper[d];
        }
        if (is_new) visit(place_of(c));
    }
}

template <int D>
bool cell_filter<D>::is_alone(const point<D>& x, const spot& s, bool was_entered) const
{
    if (is_blind_) return false;
    const std::uint64_t own_bits = was_entered ? one_point : 0;
    if (s.is_inner) return bits_at(s.place) == own_bits;
    bool alone = true;
    visit_cells_around(x, [&](std::uint64_t place) { alone &= bits_at(place) == (place == s.place ? own_bits : 0); });
    return alone;
}

template <int D>
void cell_filter<D>::mark_around(const point<D>& x)
{
    visit_cells_around(x, [this](std::uint64_t place) { set_bits(place, one_point); });
}

}  // namespace zeb::tessolv

#endif
