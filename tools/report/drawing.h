#ifndef TOOLS_REPORT_DRAWING_H
#define TOOLS_REPORT_DRAWING_H

#include <array>
#include <cstdint>
#include <vector>

#include "findings/measures.h"
#include "mesh/mesh.h"

namespace tool {

// Brings coordinates into [-1, 1], so that single precision keeps small things far from the origin apart.
struct unit_box {
    std::array<double, 3> centre{};
    double scale = 1;  // half the diagonal

    unit_box() = default;
    explicit unit_box(const finite_box& box);
    // Infinite or NaN where the node has no finite place.
    std::array<float, 3> place_of(const mesh& m, unsigned int node) const;
};

// What can be drawn of a mesh: its surface elements and the outer faces of its solids, cut into triangles, its lines
// and its points. Elements with a node that is not there are not in it.
struct drawing {
    static constexpr std::uint32_t none = 0xFFFFFFFF;

    unit_box box;
    std::vector<float> places;  // three for each node
    // Of each triangle:
    std::vector<std::uint32_t> corners;   // three places
    std::vector<std::uint8_t> sides;      // bit k: from corner k to the next one runs an edge of the element
    std::vector<std::uint32_t> elements;  // the place of the element in the mesh
    std::vector<std::uint32_t> patches;   // of the face of a solid: the place of the surface element on it, or none
    // Of each line two places, of each point one; the place of the element.
    std::vector<std::uint32_t> ends, line_elements;
    std::vector<std::uint32_t> points, point_elements;

    std::uint64_t whole = 0;           // triangles of the whole surface
    std::uint64_t lines_left = 0;      // lines and points that are too many
    std::uint64_t without_place = 0;   // elements and faces that cannot be drawn
    double coarse = 0;                 // width of the cells whose nodes became one; 0 when nothing had to
    std::vector<bool> is_outside;      // by place of the element: whether something of it is in the drawing
    std::vector<std::uint32_t> parts;  // by place of the element: connected part from 0 on, or none
    std::uint32_t part_count = 0;

    std::uint64_t triangle_count() const { return sides.size(); }
};

// Draws with at most so many triangles, and as many lines and points. With more, the nodes in each cell of a grid
// become one and what loses a corner by it goes; of triangles that fall together the one of least quality stays.
drawing draw(const mesh& m, const std::vector<double>& qualities, std::uint64_t most);

}  // namespace tool

#endif
