#include <metis.h>

#include "topology/input.h"

namespace compare {
namespace {

struct graph {
    idx_t *offsets = nullptr, *adjacent = nullptr;
    graph() = default;
    graph(const graph&) = delete;
    graph& operator=(const graph&) = delete;
    ~graph() { METIS_Free(offsets), METIS_Free(adjacent); }
};

struct metis_mesh {
    idx_t elements, nodes, zero = 0;
    std::vector<idx_t> starts, corners;

    explicit metis_mesh(const mesh& m)
        : elements(static_cast<idx_t>(m.connect.cols)),
          nodes(static_cast<idx_t>(m.pos.cols)),
          corners(entries(m.connect), entries(m.connect) + m.connect.rows * m.connect.cols)
    {
        for (idx_t e = 0; e <= elements; ++e) starts.push_back(e * static_cast<idx_t>(m.connect.rows));
    }
};

void dual(const topology_input& m, lap& l)
{
    metis_mesh in(m);
    idx_t common = m.type == EL_TRIA3 ? 2 : m.type == EL_TETRA4 ? 3 : 4;
    graph out;
    l.timed([&] {
        METIS_MeshToDual(&in.elements, &in.nodes, in.starts.data(), in.corners.data(), &common, &in.zero, &out.offsets,
                         &out.adjacent);
    });
    fingerprint found;
    for (idx_t e = 0; e < in.elements; ++e)
        for (idx_t k = out.offsets[e]; k < out.offsets[e + 1]; ++k) found.add(e, out.adjacent[k]);
    l.answer({found.count(), found.value()});
}

void nodal(const topology_input& m, lap& l)
{
    if (m.type == EL_HEXA8) return l.decline();  // lists the diagonals too
    metis_mesh in(m);
    graph out;
    l.timed([&] {
        METIS_MeshToNodal(&in.elements, &in.nodes, in.starts.data(), in.corners.data(), &in.zero, &out.offsets,
                          &out.adjacent);
    });
    fingerprint found;
    for (idx_t n = 0; n < in.nodes; ++n)
        for (idx_t k = out.offsets[n]; k < out.offsets[n + 1]; ++k)
            if (n < out.adjacent[k]) found.add(n, out.adjacent[k]);
    l.answer({found.count(), found.value()});
}

const bool entered = enter<topology_input>({
    {"neighbours", "METIS", "METIS_MeshToDual, as many common nodes as a face has",
     "lists the neighbours without saying across which face", dual},
    {"edges", "METIS", "METIS_MeshToNodal", "every edge from both of its ends", nodal},
});

}  // namespace
}  // namespace compare
