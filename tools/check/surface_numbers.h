#ifndef TOOLS_CHECK_SURFACE_NUMBERS_H
#define TOOLS_CHECK_SURFACE_NUMBERS_H

#include <array>
#include <cstdint>
#include <optional>

#include <tessolv/tessolv.h>

namespace tool {

using point = std::array<double, 3>;

// Faults of one kind and the middle of the first one, so that it can be found in a viewer.
struct fault_count {
    std::uint64_t count = 0;
    point first_at = {};
};

struct bounding_box {
    point min;
    point max;
};

// Shape qualities of the triangles: 1 equilateral, 0 without area. Bin k of the histogram holds [k/10, (k+1)/10), the
// last one 1 too.
struct quality_summary {
    static constexpr std::size_t bins = 10;

    double min;
    double mean;
    double max;
    std::array<std::uint64_t, bins> histogram;
    std::uint64_t not_a_number;
};

// The measures of a triangle surface.
struct surface_numbers {
    std::uint64_t triangles = 0;
    std::uint64_t nodes = 0;
    fault_count duplicates;         // triangles on three nodes that an earlier triangle has
    fault_count free_edges;         // edges of one triangle
    fault_count nonmanifold_edges;  // edges of three or more triangles
    std::uint64_t parts = 0;        // linked across every shared edge
    std::uint64_t nodes_not_finite = 0;
    std::optional<bounding_box> box;         // when there is a triangle
    std::optional<quality_summary> quality;  // when there is a triangle
};

// Every node of `pos` is used by a triangle of `connect`.
surface_numbers measure_surface(const zeb::dense2D<double>& pos, const zeb::dense2D<unsigned int>& connect);

}  // namespace tool

#endif
