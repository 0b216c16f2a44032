#include <tessolv/topology.h>

#include <algorithm>

#include "core/columns.h"
#include "core/return_codes.h"
#include "topology/element_topology.h"

namespace zeb::tessolv {
namespace {

// Writes the faces without a neighbour, element by element and face by face, into the columns of `boundaries`.
template <class Element>
void list_open_faces(const dense2D<unsigned int>& connect, const dense2D<unsigned int>& neighbors,
                     dense2D<unsigned int>& boundaries)
{
    if (boundaries.empty()) return;
    unsigned int* next = column(boundaries, 0);
    for (std::uint64_t e = 0; e < connect.cols; ++e) {
        const unsigned int* nodes = column(connect, e);
        const unsigned int* across = column(neighbors, e);
        const auto faces = faces_of<Element>(nodes);
        for (std::size_t k = 0; k < faces.size(); ++k) {
            if (across[k] != NONE_INDEX) continue;
            next =
                std::transform(faces[k].begin(), faces[k].end(), next, [nodes](unsigned char i) { return nodes[i]; });
        }
    }
}

template <class Element>
int find_boundaries(const dense2D<unsigned int>& connect, const dense2D<unsigned int>& neighbors,
                    dense2D<unsigned int>& boundaries)
{
    const bool shapes_differ = neighbors.cols != connect.cols || neighbors.rows != Element::faces.size();
    const int refused = connect.rows != Element::nodes ? bad_argument(1) : shapes_differ ? bad_argument(2) : success;
    // Filled apart and handed over last: `boundaries` may be one of the inputs. In a mixed matrix the missing fourth
    // faces of triangles count too, so that columns of NONE_INDEX may stand at the end: part of the interface.
    dense2D<unsigned int> found;
    if (refused != success || !found.resize(face_width<Element>, missing_in(neighbors), NONE_INDEX)) {
        boundaries.clear();
        return refused;  // exhausted memory is not reported here: part of the interface
    }
    list_open_faces<Element>(connect, neighbors, found);
    boundaries.shallow_copy(found);
    return success;
}

}  // namespace

int get_boundaries(const dense2D<unsigned int>& connect, const dense2D<unsigned int>& neighbors, element_type type,
                   dense2D<unsigned int>& boundaries)
{
    if (connect.empty()) return success;
    if (!check_IDs(connect, type, NONE_INDEX)) return bad_argument(1);
    // -2 although `type` is the third argument: part of the interface.
    return visit_faced_element(type, bad_argument(2), [&](auto element) {
        return find_boundaries<decltype(element)>(connect, neighbors, boundaries);
    });
}

}  // namespace zeb::tessolv
