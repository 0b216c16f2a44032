#ifndef TOOLS_FINDINGS_EXAMINE_H
#define TOOLS_FINDINGS_EXAMINE_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "findings/kind_summary.h"
#include "findings/measures.h"
#include "findings/rules.h"
#include "formats/digits.h"
#include "mesh/mesh.h"

namespace tool {

// A fault that the mesh has.
struct found {
    fault which;
    severity level;  // finding or note
    std::uint64_t count;
    std::uint64_t of;                // nodes, elements or faces that were looked at; 0 where there is no such number
    std::string text;                // "3 inverted elements"
    std::vector<std::uint64_t> ids;  // ascending: columns of nodes; places of elements, also for faces and edges
    // The first node, or the middle of the first element, face or edge, where it has a finite place.
    std::optional<std::array<double, 3>> first_at = {};
};

// Edges shorter than what a writer keeps apart: their ends may become one place.
struct lost_edges {
    const digits_of_writer* writer;
    double spacing;
    std::uint64_t count;
};

// The verdict on one mesh. Collapsed facets of an STL file, and nodes that these alone have, are told as a fault and
// count nowhere else.
struct examination {
    std::uint64_t nodes = 0;
    std::uint64_t elements = 0;
    int dimension = 0;  // of the elements of the highest dimension, to which parts and faces refer
    std::uint64_t parts = 0;
    std::uint64_t faces = 0;
    std::uint64_t free_faces = 0;
    std::uint64_t nonmanifold_faces = 0;
    std::uint64_t duplicates = 0;
    std::uint64_t collapsed = 0;  // facets of an STL file, also those that were dropped before
    finite_box box;
    std::array<double, 3> least{};  // coordinates, one by one, as they are: finite or not
    std::array<double, 3> greatest{};
    double largest_coordinate = 0;
    double shortest_edge = 0;                // 0 without an edge
    std::uint64_t edges_without_length = 0;  // between two nodes
    std::vector<lost_edges> lost;            // by the writers that would lose any, unless short edges are switched off
    std::vector<kind_summary> kinds;
    std::vector<found>
        faults;  // findings and notes, in the order of `fault`, but open edges of STL files before branches
    std::vector<double> qualities;  // by place of the element; NaN where it has none
    std::vector<fault> worst_of;    // by place of the element: the first fault, fault::parts for none

    bool is_clean() const;
    const found* find(fault which) const;  // null where the mesh does not have it
};

// Looks at everything that the rules do not switch off. The mesh may be wrong in any way that a reader lets through.
examination examine(const mesh& m, const rules& r);

}  // namespace tool

#endif
