#ifndef TESSOLV_TOPOLOGY_EDGE_SET_H
#define TESSOLV_TOPOLOGY_EDGE_SET_H

#include <algorithm>
#include <bit>
#include <cstdint>

#include "core/columns.h"
#include "core/mesh_range.h"
#include "core/scratch.h"
#include "topology/element_topology.h"

namespace zeb::tessolv {

// The distinct edges of the elements of a mesh range: the straight edges between corner vertices, each once however
// many elements share it. Their order is that in which a walk over matrices, elements and local edges first sees them.
// A degenerate edge (a, a) is an edge; kinds without an edge table have none.
//
// The set notes which of the local edges are the first of their kind, so it stays small, and looks up the vertices in
// the matrices: these have passed check_IDs under their types and stay as they are while the set is in use.
class edge_set {
public:
    explicit edge_set(const mesh_range& meshes) : meshes_(meshes) {}

    // Finds the edges. False without memory.
    [[nodiscard]] bool collect();

    // Number of distinct edges.
    std::uint64_t size() const { return size_; }

    // Calls visit(a, b) for every edge, a <= b, in first-seen order, until it returns false.
    template <class Visit>
    void walk(Visit visit) const
    {
        std::uint64_t entered = 0;
        for (std::size_t k = 0; k < meshes_.length(); ++k) {
            const dense2D<unsigned int>& connect = meshes_.first[k];
            const bool goes_on =
                visit_element(effective_type(meshes_.type_of(k), connect.rows), true,
                              [&](auto element) { return walk_matrix<decltype(element)>(connect, entered, visit); });
            if (!goes_on) return;
        }
    }

private:
    // Every element of a kind has as many numbers as the kind has local edges: bit `entered` is the first local edge of
    // the element at hand.
    template <class Element, class Visit>
    bool walk_matrix(const dense2D<unsigned int>& connect, std::uint64_t& entered, Visit& visit) const
    {
        if (connect.empty()) return true;
        for (std::uint64_t e = 0; e < connect.cols; ++e, entered += Element::edges.size()) {
            const unsigned int* nodes = column(connect, e);
            for (auto first = first_seen(entered, Element::edges.size()); first != 0; first &= first - 1) {
                const auto [a, b] = sorted_vertices(nodes, edges_of<Element>(nodes)[std::countr_zero(first)]);
                if (!visit(a, b)) return false;
            }
        }
        return true;
    }

    // `count` bits from a place on. One word more than needed stands at the end.
    std::uint64_t first_seen(std::uint64_t place, std::size_t count) const
    {
        const std::uint64_t* word = first_seen_.data() + place / 64;
        const std::uint64_t low = word[0] >> (place % 64);
        const std::uint64_t high = word[1] << 1 << (63 - place % 64);  // nothing when the place begins a word
        return (low | high) & ((std::uint64_t{1} << count) - 1);
    }

    mesh_range meshes_;
    scratch<std::uint64_t> first_seen_;
    std::uint64_t size_ = 0;
};

}  // namespace zeb::tessolv

#endif
