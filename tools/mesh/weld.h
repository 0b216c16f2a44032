#ifndef TOOLS_MESH_WELD_H
#define TOOLS_MESH_WELD_H

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "mesh/builder.h"
#include "mesh/mesh.h"

namespace tool {

// Nodes of a file that repeats the coordinates with every corner: equal positions become one node as they come.
class node_pool {
public:
    node_pool() : pos_(3), slots_(1024) {}

    // The node at these coordinates. What is no number is equal to nothing.
    unsigned int node_at(const double* p);

    const double* position(unsigned int node) const { return pos_.column(node); }
    std::uint64_t size() const { return pos_.size(); }
    coordinates take()
    {
        slots_ = std::vector<unsigned int>();
        return pos_.take();
    }

private:
    unsigned int append(const double* p);
    void grow();

    growing_matrix<double> pos_;
    std::vector<unsigned int> slots_;  // node + 1, or 0
};

// Least positive height of the triangles that were added, as the library's STL reader measures it.
class least_height {
public:
    void add(const double* a, const double* b, const double* c);
    // What corners may lie apart and still be one node; nothing when no triangle has a height.
    std::optional<double> weld_tolerance() const;

private:
    double least_ = 1.7976931348623157e308;
};

// Makes one node of the corners that lie within the tolerance, as the library's STL reader does; without a tolerance
// every triangle gets three nodes of its own. The mesh has triangles alone, with one node for equal corners.
void weld_triangles(mesh& m, std::optional<double> tolerance);

}  // namespace tool

#endif
