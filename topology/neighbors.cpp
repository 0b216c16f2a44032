#include <tessolv/topology.h>

#include <numeric>

#include "core/columns.h"
#include "core/return_codes.h"
#include "topology/element_topology.h"
#include "topology/face_groups.h"

namespace zeb::tessolv {
namespace {

// A face whose vertices add up to NONE_INDEX (mod 2^32) has no neighbour in these two kinds: part of the interface.
template <class Element>
constexpr bool skips_sum_of_none = std::is_same_v<Element, face_mix> || std::is_same_v<Element, hexa8>;

// Calls enter(sorted vertices, element << 3 | face) for every face that may have a neighbour.
template <class Element, class Enter>
void enter_faces(const dense2D<unsigned int>& connect, Enter enter)
{
    for (std::uint64_t e = 0; e < connect.cols; ++e) {
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

template <class Element>
int find_neighbors(const dense2D<unsigned int>& connect, bool link_nonmanifold, dense2D<unsigned int>& neighbors)
{
    const auto fail = [&](int code) {
        neighbors.clear();
        return code;
    };
    if (connect.rows != Element::nodes) return fail(bad_argument(1));
    if (connect.cols > NONE_INDEX) return fail(out_of_memory);  // more than can be numbered

    vertex_bounds bounds;
    bounds.include(connect, connect.rows);
    dense2D<unsigned int> found;
    face_groups<face_width<Element>> faces;
    const auto walk = [&](auto enter) { enter_faces<Element>(connect, enter); };
    if (!found.resize(Element::faces.size(), connect.cols, NONE_INDEX) ||
        !faces.collect(bounds, connect.cols * Element::faces.size(), walk))
        return fail(out_of_memory);
    link_groups<Element>(faces, link_nonmanifold, found);
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
