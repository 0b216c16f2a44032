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
// that counts, and each cell has a few bits in a table. Cells may meet in the table; so the answers err on the side of
// company, never of loneliness.
template <int D>
class cell_filter {
public:
    // For `count` points and boxes around points that reach as far as `half_width` to each side. False without memory.
    [[nodiscard]] bool allocate(std::size_t count, double half_width);

    void enter(const point<D>& x);

    // Whether the box around x holds no point that was entered, apart from x itself if that was.
    bool is_alone(const point<D>& x, bool was_entered);

    // The same cells as marks: after forget(), cells that meet the box around x are marked.
    void forget() { std::fill(words_.begin(), words_.end(), 0u); }
    void mark_around(const point<D>& x);
    bool is_marked(const point<D>& x) const { return is_blind_ || bits_of(cell_of(x)) != 0; }

private:
    // Coordinates and boxes of this size could overflow: with one of them all points have company.
    static constexpr double too_large = 1e300;

    // Below this the number of a cell is exact. Beyond it the coordinates are so far apart from one another that each
    // is a cell of its own.
    static constexpr double most_cells = 4503599627370496.0;  // 2^52

    static constexpr std::uint64_t one_point = 1;
    static constexpr std::uint64_t many_points = 3;

    void see(const point<D>& x);
    double cell_along(double x) const;
    point<D> cell_of(const point<D>& x) const;
    std::uint64_t place_of(const point<D>& cell) const { return hash_of(cell) & mask_; }
    std::uint64_t bits_of(const point<D>& cell) const;
    void set_bits(const point<D>& cell, std::uint64_t bits);
    template <class Visit>
    void visit_cells_around(const point<D>& x, Visit visit) const;

    scratch<std::uint64_t> words_;  // two bits per cell
    std::uint64_t mask_ = 0;
    double half_width_ = 0;
    double cells_per_unit_ = 0;
    bool is_blind_ = false;
};

template <int D>
bool cell_filter<D>::allocate(std::size_t count, double half_width)
{
    constexpr double cell_width = 8.0;  // in half-widths: a box meets at most two cells along each dimension
    constexpr double least = 1e-300;    // its inverse is finite
    half_width_ = half_width;
    is_blind_ = !(half_width < too_large);
    cells_per_unit_ = 1.0 / std::max(cell_width * half_width, least);
    const std::size_t cells = std::bit_ceil(32 * std::max<std::size_t>(count, 8));
    mask_ = cells - 1;
    return words_.allocate(cells / 32, 0);
}

template <int D>
double cell_filter<D>::cell_along(double x) const
{
    const double cell = x * cells_per_unit_;
    return std::abs(cell) < most_cells ? std::floor(cell) : x;
}

template <int D>
point<D> cell_filter<D>::cell_of(const point<D>& x) const
{
    point<D> cell;
    for (int d = 0; d < D; ++d) cell[d] = cell_along(x[d]);
    return cell;
}

template <int D>
std::uint64_t cell_filter<D>::bits_of(const point<D>& cell) const
{
    const std::uint64_t place = place_of(cell);
    return words_[place / 32] >> (place % 32 * 2) & 3;
}

template <int D>
void cell_filter<D>::set_bits(const point<D>& cell, std::uint64_t bits)
{
    const std::uint64_t place = place_of(cell);
    words_[place / 32] |= bits << (place % 32 * 2);
}

template <int D>
void cell_filter<D>::see(const point<D>& x)
{
    for (const double value : x) is_blind_ |= !(std::abs(value) < too_large);
}

template <int D>
void cell_filter<D>::enter(const point<D>& x)
{
    see(x);
    const point<D> cell = cell_of(x);
    set_bits(cell, bits_of(cell) == 0 ? one_point : many_points);
}

// The cells of the lower and of the upper bound are all that a box meets: it is narrower than a cell, and where cells
// are single coordinates, nothing lies between its bounds.
template <int D>
template <class Visit>
void cell_filter<D>::visit_cells_around(const point<D>& x, Visit visit) const
{
    const box<D> b = box_around<D>(x, half_width_);
    const point<D> lower = cell_of(b.lower);
    const point<D> upper = cell_of(b.upper);
    for (unsigned int corner = 0; corner < 1u << D; ++corner) {
        point<D> cell;
        bool is_new = true;
        for (int d = 0; d < D; ++d) {
            const bool is_upper = (corner >> d & 1) != 0;
            cell[d] = is_upper ? upper[d] : lower[d];
            is_new &= !is_upper || lower[d] != upper[d];
        }
        if (is_new) visit(cell);
    }
}

template <int D>
bool cell_filter<D>::is_alone(const point<D>& x, bool was_entered)
{
    see(x);
    if (is_blind_) return false;
    const std::uint64_t own_place = place_of(cell_of(x));
    bool alone = true;
    visit_cells_around(x, [&](const point<D>& cell) {
        const bool is_own = place_of(cell) == own_place;
        alone &= bits_of(cell) == (is_own && was_entered ? one_point : 0);
    });
    return alone;
}

template <int D>
void cell_filter<D>::mark_around(const point<D>& x)
{
    visit_cells_around(x, [this](const point<D>& cell) { set_bits(cell, one_point); });
}

}  // namespace zeb::tessolv

#endif
