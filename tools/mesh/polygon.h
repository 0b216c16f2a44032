#ifndef TOOLS_MESH_POLYGON_H
#define TOOLS_MESH_POLYGON_H

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "mesh/mesh.h"

namespace tool {

// Triangles of a polygon by the numbers of its corners. With fewer places than corners it becomes a fan.
std::vector<std::array<unsigned int, 3>> cut_places(const std::vector<std::array<double, 3>>& places,
                                                    std::size_t corners);

// Triangles that cover a polygon in space, in its direction of turning: by its ears where it is not convex, as a fan
// where it is, where it is not plane or has too many corners, and where a node has no place yet. position(node) gives
// three coordinates or null.
template <class Position>
std::vector<std::array<unsigned int, 3>> cut_polygon(std::span<const unsigned int> nodes, Position position)
{
    std::vector<std::array<double, 3>> places;
    for (const unsigned int node : nodes) {
        const double* p = position(node);
        if (p == nullptr) break;
        places.push_back({p[0], p[1], p[2]});
    }
    std::vector<std::array<unsigned int, 3>> triangles = cut_places(places, nodes.size());
    for (auto& triangle : triangles)
        for (unsigned int& corner : triangle) corner = nodes[corner];
    return triangles;
}

}  // namespace tool

#endif
