#ifndef TOOLS_FINDINGS_EXAMINE_H
#define TOOLS_FINDINGS_EXAMINE_H

#include <array>
#include <cstdint>
#include <string>
#include <vector>

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
};

// Elements of one kind by their quality. Those without a finite place are in none of the numbers but `count`.
struct kind_summary {
    static constexpr std::size_t bins = 10;

    zeb::element_type type;
    std::uint64_t count = 0;
    double min = 0;
    double mean = 0;
    double max = 0;
    std::uint64_t inverted = 0;  // below 0
    std::uint64_t bad = 0;
    std::uint64_t poor = 0;
    std::uint64_t fair = 0;
    std::uint64_t good = 0;
    std::array<std::uint64_t, bins> histogram{};  // of [0, 1]; what is inverted is not in it
};

// Edges shorter than what a writer keeps apart: their ends may become one place.
struct lost_edges {
    const digits_of_writer* writer;
    double spacing;
    std::uint64_t count;
};

// The verdict on one mesh.
struct examination {
    std::uint64_t nodes = 0;
    std::uint64_t elements = 0;
    int dimension = 0;  // of the elements of the highest dimension, to which parts and faces refer
    std::uint64_t parts = 0;
    std::uint64_t faces = 0;
    std::uint64_t free_faces = 0;
    std::uint64_t nonmanifold_faces = 0;
    finite_box box;
    double largest_coordinate = 0;
    double shortest_edge = 0;      // of the edges that are not of length 0; 0 without one
    std::vector<lost_edges> lost;  // by the writers that would lose any, unless short edges are switched off
    std::vector<kind_summary> kinds;
    std::vector<found> faults;      // findings and notes, in the order of `fault`
    std::vector<double> qualities;  // by place of the element; NaN where it has none
    std::vector<fault> worst_of;    // by place of the element: the first fault, fault::parts for none

    bool is_clean() const;
};

// Looks at everything that the rules do not switch off. The mesh may be wrong in any way that a reader lets through.
examination examine(const mesh& m, const rules& r);

}  // namespace tool

#endif
