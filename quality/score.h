#ifndef TESSOLV_QUALITY_SCORE_H
#define TESSOLV_QUALITY_SCORE_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include <zeb/dense2D.h>

#include "core/columns.h"
#include "quality/points.h"

// The walk over elements that scores them by a shape measure.
namespace zeb::tessolv::quality {
inline namespace TESSOLV_LANES {

// The nodes of a coordinate matrix; rows that it does not have are 0.
struct node_positions {
    const double* first;
    std::uint64_t ld;
    std::uint64_t rows;

    explicit node_positions(const dense2D<double>& pos)
        : first(pos.empty() ? nullptr : column(pos, 0)), ld(pos.empty() ? 0 : pos.ld), rows(pos.rows)
    {
    }

    double coordinate(std::size_t i, unsigned int node) const { return i < rows ? first[ld * node + i] : 0.0; }
    void prefetch(unsigned int node) const { __builtin_prefetch(first + ld * node); }
};

// The nodes of one element per lane.
using elements_side_by_side = std::array<const unsigned int*, lane_count>;

#ifdef TESSOLV_EIGHT_LANES
// Node k of each element, loaded whole and turned from rows into columns.
inline point<3> points_of(const node_positions& pos, const elements_side_by_side& nodes, std::size_t k)
{
    const auto rows = static_cast<__mmask8>(pos.rows < 3 ? (1U << pos.rows) - 1 : 7);
    const auto load_two = [&](std::size_t i) {
        const __m256d first = _mm256_maskz_loadu_pd(rows, pos.first + pos.ld * nodes[i][k]);
        const __m256d second = _mm256_maskz_loadu_pd(rows, pos.first + pos.ld * nodes[i + 2][k]);
        return __builtin_shufflevector(first, second, 0, 1, 2, 3, 4, 5, 6, 7);
    };
    const lanes a = load_two(0), b = load_two(1), c = load_two(4), d = load_two(5);
    const lanes xz = __builtin_shufflevector(a, b, 0, 8, 2, 10, 4, 12, 6, 14);  // x0 x1 z0 z1 x2 x3 z2 z3
    const lanes more_xz = __builtin_shufflevector(c, d, 0, 8, 2, 10, 4, 12, 6, 14);
    const lanes y = __builtin_shufflevector(a, b, 1, 9, 3, 11, 5, 13, 7, 15);
    const lanes more_y = __builtin_shufflevector(c, d, 1, 9, 3, 11, 5, 13, 7, 15);
    return {__builtin_shufflevector(xz, more_xz, 0, 1, 4, 5, 8, 9, 12, 13),
            __builtin_shufflevector(y, more_y, 0, 1, 4, 5, 8, 9, 12, 13),
            __builtin_shufflevector(xz, more_xz, 2, 3, 6, 7, 10, 11, 14, 15)};
}
#endif

template <std::size_t D, std::size_t N, std::size_t... Lane>
corners<D, N> corners_of(const node_positions& pos, const elements_side_by_side& nodes, std::index_sequence<Lane...>)
{
    corners<D, N> p;
    for (std::size_t k = 0; k < N; ++k) {
#ifdef TESSOLV_EIGHT_LANES
        if constexpr (D == 3) {
            p[k] = points_of(pos, nodes, k);
            continue;
        }
#endif
        for (std::size_t i = 0; i < D; ++i) p[k][i] = lanes{pos.coordinate(i, nodes[Lane][k])...};
    }
    return p;
}

// How many elements ahead coordinates are asked for: numberings are often random, and waiting for the memory would take
// longer than most measures.
constexpr std::uint64_t lookahead = 16;

template <std::size_t D, std::size_t N>
using shape_measure = lanes (*)(const corners<D, N>&);

// Scores the elements [first, last) of one shape side by side; lanes for which none is left hold the first of the last
// ones once more.
// Each source has its own copies, so that compilers merge them with the measure (1 M shuffled pyramids: 41 ms against
// 33).
template <std::size_t D, std::size_t N>
static void score(const node_positions& pos, const dense2D<unsigned int>& connect, std::uint64_t first,
                  std::uint64_t last, double* qualities, shape_measure<D, N> measure)
{
    for (std::uint64_t e = first; e < last; e += lane_count) {
        elements_side_by_side nodes;
        for (std::uint64_t i = 0; i < lane_count; ++i) nodes[i] = column(connect, e + i < last ? e + i : e);
        const lanes values = measure(corners_of<D, N>(pos, nodes, std::make_index_sequence<lane_count>()));
        if (last - e >= lane_count)
            std::memcpy(qualities + e, &values, sizeof values);
        else
            for (std::uint64_t i = 0; i < last - e; ++i) qualities[e + i] = values[i];

        for (std::uint64_t soon = e + lookahead; soon < std::min(e + lookahead + lane_count, last); ++soon)
            for (std::size_t k = 0; k < N; ++k) pos.prefetch(column(connect, soon)[k]);
    }
}

}  // namespace TESSOLV_LANES
}  // namespace zeb::tessolv::quality

#endif
