#include "topology/edge_set.h"

#include "topology/face_groups.h"

namespace zeb::tessolv {
namespace {

constexpr std::uint64_t most_entries = std::uint64_t{1} << 35;  // what face_groups can tell apart

// Calls visit(element, matrix) for the matrices that have edges.
template <class Visit>
void for_each_matrix(const mesh_range& meshes, Visit visit)
{
    for (std::size_t k = 0; k < meshes.length(); ++k) {
        const dense2D<unsigned int>& connect = meshes.first[k];
        if (connect.empty()) continue;
        visit_element(effective_type(meshes.type_of(k), connect.rows), true, [&](auto element) {
            visit(element, connect);
            return true;
        });
    }
}

// Calls enter(edge, number) for every local edge; numbers are those of the entries of edge_set.
template <class Enter>
void enter_edges(const mesh_range& meshes, Enter enter)
{
    std::uint64_t entered = 0;
    for_each_matrix(meshes, [&](auto element, const dense2D<unsigned int>& connect) {
        for (std::uint64_t e = 0; e < connect.cols; ++e, entered += element.edges.size()) {
            const unsigned int* nodes = column(connect, e);
            const auto edges = edges_of<decltype(element)>(nodes);
            for (std::size_t k = 0; k < edges.size(); ++k) enter(sorted_vertices(nodes, edges[k]), entered + k);
        }
    });
}

}  // namespace

bool edge_set::collect()
{
    vertex_bounds bounds;
    std::uint64_t entries = 0;
    for_each_matrix(meshes_, [&](auto element, const dense2D<unsigned int>& connect) {
        bounds.include(connect, element.nodes);
        entries += connect.cols * element.edges.size();
    });
    face_groups<2> edges;
    if (entries > most_entries || !first_seen_.allocate(entries / 64 + 2, 0)) return false;
    if (!edges.collect(bounds, entries, [&](auto enter) { enter_edges(meshes_, enter); })) return false;

    size_ = 0;
    edges.for_each([&](std::uint64_t first, std::uint64_t, std::uint64_t number) {
        if (number != first) return;
        const std::uint64_t bit = std::uint64_t{1} << (number % 64);
        size_ += (first_seen_[number / 64] & bit) == 0;
        first_seen_[number / 64] |= bit;
    });
    return true;
}

}  // namespace zeb::tessolv
