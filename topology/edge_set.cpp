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

void mark(scratch<std::uint64_t>& marks, std::uint64_t number, bool marked)
{
    marks[number / 64] |= std::uint64_t{marked} << (number % 64);
}

// Dense numbers: the larger vertices of the edges are sorted by the smaller one, by counting; an edge is new when its
// larger vertex was not yet met in the list at hand. There is no branch in it that a processor could mispredict. False
// without memory.
[[nodiscard]] bool mark_first_by_counting(const mesh_range& meshes, const vertex_bounds& bounds, std::uint64_t entries,
                                          scratch<std::uint64_t>& marks)
{
    struct edge_end {
        unsigned int larger;
        unsigned int number;
    };
    const std::uint64_t vertices = std::uint64_t{bounds.highest} - bounds.lowest + 1;
    scratch<unsigned int> ends;  // of the list of each vertex
    scratch<unsigned int> met_by;
    scratch<edge_end> lists;
    if (!ends.allocate(vertices + 1, 0) || !met_by.allocate(vertices, NONE_INDEX) || !lists.allocate(entries))
        return false;
    enter_edges(meshes, [&](auto edge, std::uint64_t) { ++ends[edge[0] - bounds.lowest + 1]; });
    for (std::uint64_t v = 0; v < vertices; ++v) ends[v + 1] += ends[v];
    enter_edges(meshes, [&](auto edge, std::uint64_t number) {
        lists[ends[edge[0] - bounds.lowest]++] = {edge[1] - bounds.lowest, static_cast<unsigned int>(number)};
    });
    unsigned int next = 0;
    for (unsigned int v = 0; v < vertices; ++v)
        for (; next < ends[v]; ++next) {
            unsigned int& met = met_by[lists[next].larger];
            mark(marks, lists[next].number, met != v);
            met = v;
        }
    return true;
}

// Any numbers. False without memory.
[[nodiscard]] bool mark_first_by_grouping(const mesh_range& meshes, const vertex_bounds& bounds, std::uint64_t entries,
                                          scratch<std::uint64_t>& marks)
{
    face_groups<2> edges;
    if (!edges.collect(bounds, entries, [&](auto enter) { enter_edges(meshes, enter); })) return false;
    edges.for_each(
        [&](std::uint64_t first, std::uint64_t, std::uint64_t number) { mark(marks, number, number == first); });
    return true;
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
    if (entries > most_entries || !first_seen_.allocate(entries / 64 + 2, 0)) return false;

    // At most half a vertex an edge, so that the tables take no more than the lists; and numbers of 32 bits.
    const bool dense = bounds.highest - bounds.lowest < entries / 2;
    const auto mark_first = dense && entries < NONE_INDEX ? mark_first_by_counting : mark_first_by_grouping;
    if (!mark_first(meshes_, bounds, entries, first_seen_)) return false;
    size_ = 0;
    for (const std::uint64_t word : first_seen_) size_ += static_cast<std::uint64_t>(std::popcount(word));
    return true;
}

}  // namespace zeb::tessolv
