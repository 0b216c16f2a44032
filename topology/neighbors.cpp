#include <tessolv/topology.h>

#include <algorithm>
#include <array>
#include <numeric>

#include "core/columns.h"
#include "core/return_codes.h"
#include "topology/element_topology.h"
#include "topology/face_groups.h"
#include "topology/face_table.h"

namespace zeb::tessolv {
namespace {

// A face whose vertices add up to NONE_INDEX (mod 2^32) has no neighbour in these two kinds: part of the interface.
template <class Element>
constexpr bool skips_sum_of_none = std::is_same_v<Element, face_mix> || std::is_same_v<Element, hexa8>;

// Calls enter(sorted vertices, element << 3 | face) for every face of the elements [begin, end) that may have a neighbour.
template <class Element, class Enter>
void enter_faces(const dense2D<unsigned int>& connect, std::uint64_t begin, std::uint64_t end, Enter enter)
{
    for (std::uint64_t e = begin; e < end; ++e) {
        const unsigned int* nodes = column(connect, e);
        const auto faces = faces_of<Element>(nodes);
        for (std::size_t k = 0; k < faces.size(); ++k) {
            const auto vertices = sorted_vertices(nodes, faces[k]);
            if constexpr (skips_sum_of_none<Element>)
                if (std::accumulate(vertices.begin(), vertices.end(), 0u) == NONE_INDEX) continue;
            enter(vertices, e << 3 | k);
        }
    }
}

// Links the elements on equal faces. A third one cuts the link of the first two, or becomes that of the first.
template <class Element>
void link_groups(face_groups<face_width<Element>>& faces, bool link_nonmanifold, dense2D<unsigned int>& neighbors)
{
    const auto set = [&](std::uint64_t face, std::uint64_t element) {
        column(neighbors, face >> 3)[face & 7] = static_cast<unsigned int>(element);
    };
    faces.for_each([&](std::uint64_t first, std::uint64_t second, std::uint64_t face) {
        if (face == first) return;
        if (face == second || link_nonmanifold) {
            set(first, face >> 3);
            set(face, first >> 3);
        } else {
            set(first, NONE_INDEX);
            set(second, NONE_INDEX);
        }
    });
}

// Links each face with the one met before, for numbers that suit face_table. The note of a face is the first that was met,
// as element << 3 | face, with a mark once there are others.
template <class Element>
class link_in_passing {
public:
    link_in_passing(const dense2D<unsigned int>& connect, bool link_nonmanifold, dense2D<unsigned int>& neighbors)
        : connect_(connect), link_nonmanifold_(link_nonmanifold), near_(column(neighbors, 0))
    {
    }

    static bool suits(const dense2D<unsigned int>& connect, const vertex_bounds& bounds)
    {
        const std::uint64_t faces = connect.cols * Element::faces.size();
        return connect.cols < several >> 3 && table::suits(bounds, faces) &&
               (table::size(faces) < always_near || follows_numbers(connect, bounds));
    }

    // False without memory.
    [[nodiscard]] bool allocate(const vertex_bounds& bounds)
    {
        return faces_.allocate(bounds, [this](auto enter) {
            enter_faces<Element>(connect_, 0, connect_.cols, [&](const face& f, std::uint64_t) { enter(f); });
        });
    }

    // Links all faces, which were not linked before. False where they crowd in the table.
    [[nodiscard]] bool run()
    {
        // The memory of a few elements is fetched while they are prepared.
        constexpr std::uint64_t batch = 32;
        std::array<met_face, batch * Element::faces.size()> met;
        for (std::uint64_t begin = 0; begin < connect_.cols; begin += batch) {
            std::size_t count = 0;
            const auto prepare = [&](const face& f, std::uint64_t id) {
                met[count] = {f, static_cast<unsigned int>(id), faces_.place_of(f)};
                faces_.prefetch(met[count++].place);
            };
            enter_faces<Element>(connect_, begin, std::min(connect_.cols, begin + batch), prepare);
            for (std::size_t i = 0; i < count; ++i)
                if (!link(met[i])) return false;
        }
        return true;
    }

private:
    using table = face_table<face_width<Element>>;
    using face = typename table::face;

    struct met_face {
        face vertices;
        unsigned int id;
        unsigned int place;
    };

    static constexpr std::size_t always_near = 1u << 20;  // bytes: the processor holds it
    static constexpr unsigned int several = 1u << 31;     // the mark
    static constexpr unsigned int cut = NONE_INDEX - 1;

    // Whether vertices of elements that follow one another are seldom far apart, judged by a thousand places. Otherwise a
    // large table is looked up all over, and face_groups is faster (shuffled: 82 ms against 110).
    static bool follows_numbers(const dense2D<unsigned int>& connect, const vertex_bounds& bounds)
    {
        constexpr std::uint64_t samples = 1024;
        std::uint64_t apart = 0;
        for (std::uint64_t k = 0; k < samples; ++k) {
            const std::uint64_t e = (connect.cols - 1) * k / samples;
            const unsigned int a = column(connect, e)[0];
            const unsigned int b = column(connect, e + 1)[0];
            apart += std::max(a, b) - std::min(a, b);
        }
        return apart / samples < (bounds.highest - bounds.lowest) / 16;
    }

    unsigned int& near(unsigned int id) { return near_[(id >> 3) * Element::faces.size() + (id & 7)]; }

    bool link(const met_face& met)
    {
        unsigned int* const note = faces_.find(met.vertices, met.place);
        if (note == nullptr) return false;
        const unsigned int first = *note;
        if (first + 1u > several) [[unlikely]] {  // NONE_INDEX + 1 is 0
            link_further(met, *note);
            return true;
        }
        // A face that is new is linked with NONE_INDEX, a second one with the first, in the same steps: every other time a
        // branch would go the wrong way.
        const unsigned int is_new = first == NONE_INDEX ? NONE_INDEX : 0;
        const unsigned int partner = (first & ~is_new) | (met.id & is_new);
        near(partner) = met.id >> 3 | is_new;
        near(met.id) = first >> 3 | is_new;
        *note = partner | (several & ~is_new);
        return true;
    }

    // A third face cuts the link of the first two, or becomes that of the first.
    void link_further(const met_face& met, unsigned int& note)
    {
        if (note == cut) return;
        const unsigned int first = note & ~several;
        if (link_nonmanifold_) {
            near(first) = met.id >> 3;
            near(met.id) = first >> 3;
        } else {
            near(second_after(first, met.vertices)) = NONE_INDEX;
            near(first) = NONE_INDEX;
            note = cut;
        }
    }

    // The face that was linked with the first one, whose link tells the element.
    unsigned int second_after(unsigned int first, const face& vertices)
    {
        const unsigned int element = near(first);
        const unsigned int* nodes = column(connect_, element);
        const auto faces = faces_of<Element>(nodes);
        unsigned int k = element == first >> 3 ? (first & 7) + 1 : 0;
        while (sorted_vertices(nodes, faces[k]) != vertices) ++k;
        return element << 3 | k;
    }

    const dense2D<unsigned int>& connect_;
    const bool link_nonmanifold_;
    unsigned int* const near_;  // of a compact matrix
    table faces_;
};

// False without memory.
template <class Element>
[[nodiscard]] bool link_faces(const dense2D<unsigned int>& connect, bool link_nonmanifold,
                              dense2D<unsigned int>& neighbors)
{
    vertex_bounds bounds;
    bounds.include(connect, connect.rows);
    if (link_in_passing<Element>::suits(connect, bounds)) {
        link_in_passing<Element> links(connect, link_nonmanifold, neighbors);
        if (!links.allocate(bounds)) return false;
        if (links.run()) return true;
        std::fill_n(column(neighbors, 0), neighbors.size, NONE_INDEX);
    }
    face_groups<face_width<Element>> faces;
    const auto walk = [&](auto enter) { enter_faces<Element>(connect, 0, connect.cols, enter); };
    if (!faces.collect(bounds, connect.cols * Element::faces.size(), walk)) return false;
    link_groups<Element>(faces, link_nonmanifold, neighbors);
    return true;
}

template <class Element>
int find_neighbors(const dense2D<unsigned int>& connect, bool link_nonmanifold, dense2D<unsigned int>& neighbors)
{
    const auto fail = [&](int code) {
        neighbors.clear();
        return code;
    };
    if (connect.rows != Element::nodes) return fail(bad_argument(1));
    if (connect.cols > NONE_INDEX) return fail(out_of_memory);  // more than can be numbered

    dense2D<unsigned int> found;
    if (!found.resize(Element::faces.size(), connect.cols, NONE_INDEX) ||
        !link_faces<Element>(connect, link_nonmanifold, found))
        return fail(out_of_memory);
    neighbors.shallow_copy(found);
    return success;
}

}  // namespace

int get_neighbors(const dense2D<unsigned int>& connect, element_type type, bool link_nonmanifold,
                  dense2D<unsigned int>& neighbors)
{
    if (connect.empty()) return success;
    if (!check_IDs(connect, type, NONE_INDEX)) return bad_argument(1);
    return visit_faced_element(effective_type(type, connect.rows), bad_argument(2), [&](auto element) {
        return find_neighbors<decltype(element)>(connect, link_nonmanifold, neighbors);
    });
}

}  // namespace zeb::tessolv
