#ifndef TOOLS_FINDINGS_MEASURES_H
#define TOOLS_FINDINGS_MEASURES_H

#include <array>
#include <cstdint>
#include <limits>
#include <vector>

#include "mesh/mesh.h"

namespace tool {

// The corners of a block under the kind that they make. The matrix shares the memory of the block.
connectivity corners_of(const element_block& block);

// Whether every corner of an element has a finite place.
bool has_place(const mesh& m, const element_block& block, std::uint64_t e);

// Shape quality of every element of a block, NaN for points, where a corner has no finite place, and where the measure
// is no finite number. What is inverted is never below -1: the library's values of inverted hexahedra grow with their
// size.
std::vector<double> qualities_of(const mesh& m, const element_block& block);

// Length, area or volume by the corners over the same power of the longest side of the element's box: no influence of
// size. Solids are signed like their quality. Points have none: 1.
inline constexpr double no_relative_size = 1e-12;  // what is not more has no size but for rounding
std::vector<double> relative_sizes(const mesh& m, const element_block& block);

// Area of every surface element as seen along z from above, positive where it turns counter-clockwise; 0 of others.
std::vector<double> plane_areas(const mesh& m, const element_block& block);

// Of the nodes with finite coordinates; min above max where there is none.
struct finite_box {
    static constexpr double infinity = std::numeric_limits<double>::infinity();
    std::array<double, 3> min{infinity, infinity, infinity};
    std::array<double, 3> max{-infinity, -infinity, -infinity};

    bool is_empty() const { return min[0] > max[0]; }
    double diagonal() const;
    // A share of the diagonal, also where that is beyond all numbers.
    double share_of_diagonal(double share) const;
    // Grows to hold a point or a node, if that has a finite place.
    void enclose(const std::array<double, 3>& p);
    void enclose(const mesh& m, std::uint64_t node);
};
finite_box box_of(const mesh& m);

// Whether all nodes lie in a plane z = constant. STL files are surfaces in space anyway.
bool is_flat(const mesh& m, const finite_box& box);

// A surface in a plane z = constant has a side: that from which most of its area turns counter-clockwise. 1 from above,
// -1 from below, 0 for other meshes. The dimension is that of the mesh.
double side_of_plane(const mesh& m, int dimension, const finite_box& box);

// As qualities_of, negative where an element of such a surface turns against that side: in space the library's
// qualities of surface elements have no sign.
std::vector<double> signed_qualities(const mesh& m, const element_block& block, double side);

// The distinct edges between two corners, in the order of the library.
connectivity edges_of(const mesh& m);
// Length of each.
std::vector<double> lengths_of(const mesh& m, const connectivity& edges);

}  // namespace tool

#endif
