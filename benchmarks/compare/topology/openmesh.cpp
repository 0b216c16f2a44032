#include <OpenMesh/Core/Mesh/TriMesh_ArrayKernelT.hh>

#include "topology/input.h"

namespace compare {
namespace {

struct traits : OpenMesh::DefaultTraits {
    using Point = OpenMesh::Vec3d;
};
using half_edge_mesh = OpenMesh::TriMesh_ArrayKernelT<traits>;

void build(const topology_input& m, lap& l)
{
    if (m.type != EL_TRIA3) return l.decline();
    half_edge_mesh s;
    l.timed([&] {
        s.reserve(m.pos.cols, 3 * m.connect.cols / 2 + m.pos.cols, m.connect.cols);
        for (std::uint64_t j = 0; j < m.pos.cols; ++j) s.add_vertex({m.pos(0, j), m.pos(1, j), m.pos(2, j)});
        const auto vertex = [&](std::uint64_t i, std::uint64_t e) {
            return OpenMesh::VertexHandle(static_cast<int>(m.connect(i, e)));
        };
        for (std::uint64_t e = 0; e < m.connect.cols; ++e) s.add_face(vertex(0, e), vertex(1, e), vertex(2, e));
    });
    fingerprint sum;
    for (const auto f : s.faces())
        for (const auto other : f.faces()) sum.add(std::uint64_t(f.idx()), std::uint64_t(other.idx()));
    l.answer({sum.count(), sum.value()});
}

const bool entered = enter<topology_input>({
    {"neighbours", "OpenMesh", "TriMesh_ArrayKernelT::add_vertex, add_face",
     "a half-edge mesh with positions, more than neighbours", build},
});

}  // namespace
}  // namespace compare
