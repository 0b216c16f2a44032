#include <CGAL/Polygon_mesh_processing/connected_components.h>
#include <CGAL/Simple_cartesian.h>
#include <CGAL/Surface_mesh.h>

#include "topology/input.h"

namespace compare {
namespace {

using kernel = CGAL::Simple_cartesian<double>;
using surface_mesh = CGAL::Surface_mesh<kernel::Point_3>;
using face = surface_mesh::Face_index;

surface_mesh made_of(const mesh& m)
{
    using vertex = surface_mesh::Vertex_index;
    surface_mesh s;
    s.reserve(unsigned(m.pos.cols), unsigned(3 * m.connect.cols / 2 + m.pos.cols), unsigned(m.connect.cols));
    for (std::uint64_t j = 0; j < m.pos.cols; ++j) s.add_vertex({m.pos(0, j), m.pos(1, j), m.pos(2, j)});
    for (std::uint64_t e = 0; e < m.connect.cols; ++e)
        s.add_face(vertex(m.connect(0, e)), vertex(m.connect(1, e)), vertex(m.connect(2, e)));
    return s;
}

void build(const topology_input& m, lap& l)
{
    if (m.type != EL_TRIA3) return l.decline();
    surface_mesh s;
    l.timed([&] { s = made_of(m); });
    fingerprint sum;
    for (const face f : s.faces())
        for (const auto h : CGAL::halfedges_around_face(s.halfedge(f), s))
            if (const face other = s.face(s.opposite(h)); other.is_valid() && other != s.null_face())
                sum.add(std::uint64_t(f), std::uint64_t(other));
    l.answer({sum.count(), sum.value()});
}

void components(const topology_input& m, lap& l)
{
    if (m.type != EL_TRIA3) return l.decline();
    surface_mesh s = prepared<surface_mesh>(m, made_of);
    const auto part_of = s.add_property_map<face, std::size_t>("f:part").first;
    std::size_t parts = 0;
    l.timed([&] { parts = CGAL::Polygon_mesh_processing::connected_components(s, part_of); });
    std::vector<double> sizes(parts);
    for (const face f : s.faces()) ++sizes[part_of[f]];
    double squares = 0.0;
    for (const double n : sizes) squares += n * n;
    l.answer({double(parts), squares});
}

const bool entered = enter<topology_input>({
    {"neighbours", "CGAL", "Surface_mesh::add_vertex, add_face",
     "a half-edge mesh with positions, more than neighbours", build},
    {"connected parts", "CGAL", "Polygon_mesh_processing::connected_components on a Surface_mesh",
     "a part number per face, no list of elements", components},
});

}  // namespace
}  // namespace compare
