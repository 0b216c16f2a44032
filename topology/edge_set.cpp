#include "topology/edge_set.h"

#include <array>

#include "core/processor.h"
#include "topology/face_groups.h"

#ifdef TESSOLV_WIDE_VECTORS
#include <immintrin.h>
#endif

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

std::uint64_t span_of(const vertex_bounds& bounds)
{
    return std::uint64_t{bounds.highest} - bounds.lowest + 1;
}

void mark(scratch<std::uint64_t>& marks, std::uint64_t number, bool marked)
{
    marks[number / 64] |= std::uint64_t{marked} << (number % 64);
}

// Dense numbers: the larger vertices of the edges are sorted by the smaller one, by counting; an edge is new when its
// larger vertex was not yet met in the list at hand. There is no branch in it that a processor could mispredict.
// `enter_all` visits `entries` edges like enter_edges. False without memory.
template <class EnterAll>
[[nodiscard]] bool mark_first_by_counting(const vertex_bounds& bounds, std::uint64_t entries,
                                          scratch<std::uint64_t>& marks, EnterAll enter_all)
{
    struct edge_end {
        unsigned int larger;
        unsigned int number;
    };
    const std::uint64_t vertices = span_of(bounds);
    scratch<unsigned int> ends;  // of the list of each vertex
    scratch<unsigned int> met_by;
    scratch<edge_end> lists;
    if (!ends.allocate(vertices + 1, 0) || !met_by.allocate(vertices, NONE_INDEX) || !lists.allocate(entries))
        return false;
    enter_all([&](auto edge, std::uint64_t) { ++ends[edge[0] - bounds.lowest + 1]; });
    for (std::uint64_t v = 0; v < vertices; ++v) ends[v + 1] += ends[v];
    enter_all([&](auto edge, std::uint64_t number) {
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

// The larger vertices of the edges of one vertex, in a piece of memory that the processor fetches at once. The last
// place counts them, downwards from NONE_INDEX, so that it is never mistaken for one of them.
template <std::size_t Width>
class alignas(Width * sizeof(unsigned int)) short_list {
public:
    static short_list empty()
    {
        short_list list;
        list.groups_.fill(group{} + NONE_INDEX);
        return list;
    }

    // Four comparisons at a time, all of them: an early exit would be mispredicted, and compilers do not find the four
    // themselves (1 M tetrahedra: 42 ms against 22).
    bool contains(unsigned int vertex) const
    {
        const group wanted = group{} + vertex;
        auto found = groups_[0] == wanted;
        for (std::size_t i = 1; i < groups_.size(); ++i) found |= groups_[i] == wanted;
        const auto halves = reinterpret_cast<half_groups>(found);
        return (halves[0] | halves[1]) != 0;
    }

#ifdef TESSOLV_WIDE_VECTORS
    // Eight at a time.
    [[gnu::target("avx2"), gnu::always_inline]] inline bool contains_by_eight(unsigned int vertex) const
    {
        const __m256i wanted = _mm256_set1_epi32(static_cast<int>(vertex));
        const auto* const eights = reinterpret_cast<const __m256i*>(this);
        __m256i found = _mm256_cmpeq_epi32(_mm256_load_si256(eights), wanted);
        for (std::size_t i = 1; i < Width / 8; ++i)
            found = _mm256_or_si256(found, _mm256_cmpeq_epi32(_mm256_load_si256(eights + i), wanted));
        return _mm256_testz_si256(found, found) == 0;
    }
#endif

    bool is_full() const
    {
        return groups_.back()[3] == NONE_INDEX - (Width - 1);
    }

    void append(unsigned int vertex)
    {
        const unsigned int length = NONE_INDEX - groups_.back()[3]--;
        groups_[length / 4][length % 4] = vertex;
    }

private:
    using group = unsigned int __attribute__((vector_size(4 * sizeof(unsigned int))));
    using half_groups = std::uint64_t __attribute__((vector_size(2 * sizeof(std::uint64_t))));

    std::array<group, Width / 4> groups_;
};

// Looks the edges up in the short list of their smaller vertex, whose memory has been asked for a few elements before (1
// M shuffled tetrahedra: 130 ms without, 41 with, 60 by counting alone).
template <std::size_t Width>
class short_lists {
public:
    // Edges that are new are marked in `marks`, those that find a full list in `left`.
    short_lists(const vertex_bounds& bounds, std::uint64_t* marks, std::uint64_t* left)
        : lowest_(bounds.lowest), last_(bounds.highest - bounds.lowest), marks_(marks), left_(left)
    {
    }

    [[nodiscard]] bool allocate() { return lists_.allocate(last_ + std::uint64_t{1}, short_list<Width>::empty()); }

    template <class Element>
    void enter(const dense2D<unsigned int>& connect, std::uint64_t entered)
    {
        for (std::uint64_t e = 0; e < connect.cols; ++e) {
            announce<Element>(connect, e);
            const unsigned int* nodes = column(connect, e);
            const auto edges = edges_of<Element>(nodes);
            const std::uint64_t first = entered + e * Element::edges.size();
            for (std::size_t k = 0; k < edges.size(); ++k) {
                const auto [smaller, larger] = sorted_vertices(nodes, edges[k]);
                auto& list = lists_[smaller - lowest_];
                if (!list.contains(larger - lowest_)) append(list, larger - lowest_, first + k);
            }
        }
    }

#ifdef TESSOLV_WIDE_VECTORS
    // The same (1 M tetrahedra: 22.7 ms against 18.8, shuffled 42.6 against 36.5).
    template <class Element>
    [[gnu::target("avx2")]] void enter_by_eight(const dense2D<unsigned int>& connect, std::uint64_t entered)
    {
        for (std::uint64_t e = 0; e < connect.cols; ++e) {
            announce<Element>(connect, e);
            const unsigned int* nodes = column(connect, e);
            const auto edges = edges_of<Element>(nodes);
            const std::uint64_t first = entered + e * Element::edges.size();
            for (std::size_t k = 0; k < edges.size(); ++k) {
                const auto [smaller, larger] = sorted_vertices(nodes, edges[k]);
                auto& list = lists_[smaller - lowest_];
                if (!list.contains_by_eight(larger - lowest_)) append(list, larger - lowest_, first + k);
            }
        }
    }
#endif

    std::uint64_t count_left() const
    {
        return count_left_;
    }

private:
    // Also of vertices that an element of a mixed matrix lacks. Compilers drop calls of what only fetches memory ahead.
    template <class Element>
    [[gnu::always_inline]] inline void announce(const dense2D<unsigned int>& connect, std::uint64_t e) const
    {
        constexpr std::uint64_t lookahead = 8;
        if (connect.cols - e <= lookahead) return;
        const unsigned int* later = column(connect, e + lookahead);
        for (unsigned int k = 0; k < Element::nodes; ++k)
            __builtin_prefetch(&lists_[std::min(later[k] - lowest_, last_)], 1);
    }

    void append(short_list<Width>& list, unsigned int larger, std::uint64_t number)
    {
        const bool full = list.is_full();
        std::uint64_t* const marks = full ? left_ : marks_;
        marks[number / 64] |= std::uint64_t{1} << (number % 64);
        count_left_ += full;
        if (!full) list.append(larger);
    }

    const unsigned int lowest_;
    const unsigned int last_;
    std::uint64_t* const marks_;
    std::uint64_t* const left_;
    std::uint64_t count_left_ = 0;
    scratch<short_list<Width>> lists_;
};

// Dense numbers and few edges a vertex: one pass over the elements. The few edges that find a full list are left to the
// counting sort. False without memory.
template <std::size_t Width>
[[nodiscard]] bool mark_first_by_short_lists(const mesh_range& meshes, const vertex_bounds& bounds,
                                             scratch<std::uint64_t>& marks)
{
    scratch<std::uint64_t> left;  // as marks
    if (!left.allocate(marks.size(), 0)) return false;
    std::uint64_t count_left = 0;
    {
        short_lists<Width> lists(bounds, marks.data(), left.data());
        if (!lists.allocate()) return false;
        std::uint64_t entered = 0;
        for_each_matrix(meshes, [&](auto element, const dense2D<unsigned int>& connect) {
#ifdef TESSOLV_WIDE_VECTORS
            if (has_avx2())
                lists.template enter_by_eight<decltype(element)>(connect, entered);
            else
#endif
                lists.template enter<decltype(element)>(connect, entered);
            entered += connect.cols * element.edges.size();
        });
        count_left = lists.count_left();
    }
    return count_left == 0 || mark_first_by_counting(bounds, count_left, marks, [&](auto enter) {
               enter_edges(meshes, [&](auto edge, std::uint64_t number) {
                   if ((left[number / 64] >> (number % 64) & 1) != 0) enter(edge, number);
               });
           });
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

// Chooses by the edges that a vertex has on average, so that no table takes more than 12 bytes an entry.
[[nodiscard]] bool mark_first(const mesh_range& meshes, const vertex_bounds& bounds, std::uint64_t entries,
                              scratch<std::uint64_t>& marks)
{
    const bool numbered = entries < NONE_INDEX;  // by 32 bits
    const std::uint64_t vertices = span_of(bounds);
    if (numbered && vertices <= entries / 8) return mark_first_by_short_lists<16>(meshes, bounds, marks);
    if (numbered && vertices <= entries / 3) return mark_first_by_short_lists<8>(meshes, bounds, marks);
    if (numbered && vertices <= entries / 2)
        return mark_first_by_counting(bounds, entries, marks, [&](auto enter) { enter_edges(meshes, enter); });
    return mark_first_by_grouping(meshes, bounds, entries, marks);
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

    if (!mark_first(meshes_, bounds, entries, first_seen_)) return false;
    size_ = 0;
    for (const std::uint64_t word : first_seen_) size_ += static_cast<std::uint64_t>(std::popcount(word));
    return true;
}

}  // namespace zeb::tessolv
