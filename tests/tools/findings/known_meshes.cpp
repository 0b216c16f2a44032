#include "tools/findings/known_meshes.h"

#include <limits>

#include "tools/findings/mesh_by_hand.h"

namespace test {
namespace {

using namespace zeb;
using tool::mesh;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
const place O{0, 0, 0}, X{1, 0, 0}, Y{0, 1, 0}, Z{0, 0, 1}, XY{1, 1, 0}, XZ{1, 0, 1}, YZ{0, 1, 1}, XYZ{1, 1, 1};

// The corners of the unit cube in the order of a hexahedron, and of a second cube on top of it.
const std::vector<place> cube{O, X, XY, Y, Z, XZ, XYZ, YZ};
const std::vector<place> tower{O, X, XY, Y, Z, XZ, XYZ, YZ, {0, 0, 2}, {1, 0, 2}, {1, 1, 2}, {0, 1, 2}};
const std::vector<place> square{O, X, XY, Y};
// O X Y Z: positive as the tetrahedron 0 2 1 3.
const std::vector<place> corner{O, X, Y, Z};
const std::vector<nodes> closed_tetrahedron{{0, 2, 1}, {0, 1, 3}, {0, 3, 2}, {1, 2, 3}};
const std::vector<nodes> tetrahedron_inside_out{{0, 1, 2}, {0, 3, 1}, {0, 2, 3}, {1, 3, 2}};
const std::vector<nodes> cube_faces{{3, 2, 1, 0}, {4, 5, 6, 7}, {0, 1, 5, 4}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}};
const nodes hexa{0, 1, 2, 3, 4, 5, 6, 7};
const nodes upper_hexa{4, 5, 6, 7, 8, 9, 10, 11};
const nodes turned_hexa{4, 5, 6, 7, 0, 1, 2, 3};

std::vector<place> plus(std::vector<place> a, const std::vector<place>& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}
std::vector<place> moved(std::vector<place> a, double x, double y = 0, double z = 0)
{
    for (place& p : a) p = {p[0] + x, p[1] + y, p[2] + z};
    return a;
}
std::vector<place> scaled(std::vector<place> a, double x, double y, double z)
{
    for (place& p : a) p = {p[0] * x, p[1] * y, p[2] * z};
    return a;
}
// A tetrahedron of ten nodes with its nodes in the middle of its edges.
std::vector<place> with_middles()
{
    std::vector<place> p{O, Y, X, Z};
    constexpr unsigned ends[6][2] = {{1, 2}, {2, 0}, {0, 1}, {0, 3}, {1, 3}, {2, 3}};
    for (const auto& [a, b] : ends)
        p.push_back({(p[a][0] + p[b][0]) / 2, (p[a][1] + p[b][1]) / 2, (p[a][2] + p[b][2]) / 2});
    return p;
}
mesh of_stl(mesh m)
{
    m.facets = tool::facet_counts{false, m.element_count(), m.element_count()};
    return m;
}
// The second mesh's nodes are numbered from `first` on.
std::vector<nodes> joined(std::vector<nodes> a, std::vector<nodes> b, unsigned first)
{
    for (nodes& element : b) {
        for (unsigned& n : element) n += first;
        a.push_back(element);
    }
    return a;
}
mesh with_fault(mesh m)
{
    m.faults.push_back({"facets_not_read", 2, "2 facets not read (the file ends)"});
    return m;
}

}  // namespace

std::vector<known_mesh> known_solids()
{
    return {
        known_mesh{"tetrahedron", mesh_by_hand(corner).with(EL_TETRA4, {{0, 2, 1, 3}}), "ok; 1"},
        known_mesh{"tetrahedron_inverted", mesh_by_hand(corner).with(EL_TETRA4, {{0, 1, 2, 3}}),
                   "inverted 1 (tetra 1); 1"},
        known_mesh{"tetrahedron_flat", mesh_by_hand({O, X, Y, XY}).with(EL_TETRA4, {{0, 2, 1, 3}}),
                   "degenerate 1 (tetra 1); 1"},
        known_mesh{"tetrahedron_thin", mesh_by_hand(scaled(corner, 1, 1, 1e-3)).with(EL_TETRA4, {{0, 2, 1, 3}}),
                   "bad_quality 1 (tetra 1); 1"},
        known_mesh{"tetrahedron_poor", mesh_by_hand(scaled(corner, 1, 1, 0.03)).with(EL_TETRA4, {{0, 2, 1, 3}}),
                   "~poor_quality 1 (tetra 1); 1"},
        known_mesh{"tetrahedron_with_a_node_twice", mesh_by_hand(corner).with(EL_TETRA4, {{0, 2, 1, 3}, {0, 2, 1, 1}}),
                   "repeated_node 1 (tetra 2); 1"},
        known_mesh{"tetrahedra_on_a_face",
                   mesh_by_hand(plus(corner, {XYZ})).with(EL_TETRA4, {{0, 2, 1, 3}, {1, 2, 4, 3}}), "ok; 1"},
        known_mesh{"tetrahedra_on_a_face_one_inverted",
                   mesh_by_hand(plus(corner, {XYZ})).with(EL_TETRA4, {{0, 2, 1, 3}, {1, 4, 2, 3}}),
                   "inverted 1 (tetra 2); ~turned_neighbour 1 (tetra 1 2); 1"},
        known_mesh{"tetrahedra_apart",
                   mesh_by_hand(plus(corner, moved(corner, 5))).with(EL_TETRA4, {{0, 2, 1, 3}, {4, 6, 5, 7}}),
                   "~parts 2; 2"},
        known_mesh{"tetrahedra_apart_at_one_place",
                   mesh_by_hand(plus(corner, corner)).with(EL_TETRA4, {{0, 2, 1, 3}, {4, 6, 5, 7}}),
                   "coincident_node 4 (node 5 6 7 8); ~parts 2; 2"},
        known_mesh{"tetrahedra_on_an_edge",
                   mesh_by_hand(plus(corner, {{0, -1, 0}, {0, 0, -1}})).with(EL_TETRA4, {{0, 2, 1, 3}, {0, 4, 1, 5}}),
                   "~parts 2; 2"},
        known_mesh{"tetrahedron_twice", mesh_by_hand(corner).with(EL_TETRA4, {{0, 2, 1, 3}, {2, 1, 0, 3}}),
                   "duplicate 1 (tetra 2); ~turned_neighbour 4 (tetra 1 2); 1"},
        known_mesh{"tetrahedron_and_its_mirror_image",
                   mesh_by_hand(corner).with(EL_TETRA4, {{0, 2, 1, 3}, {0, 1, 2, 3}}),
                   "duplicate 1 (tetra 2); inverted 1 (tetra 2); 1"},
        known_mesh{
            "three_tetrahedra_on_a_face",
            mesh_by_hand(plus(corner, {XYZ, {2, 2, 2}})).with(EL_TETRA4, {{0, 2, 1, 3}, {1, 2, 4, 3}, {1, 2, 5, 3}}),
            "nonmanifold 1 (tetra 1 2 3); 1"},
        known_mesh{"tetrahedron_with_a_node_that_is_not_there",
                   mesh_by_hand(corner).with(EL_TETRA4, {{0, 2, 1, 3}, {0, 2, 1, 4}}), "bad_index 1 (tetra 2); 1"},
        known_mesh{"tetrahedron_with_the_last_index",
                   mesh_by_hand(corner).with(EL_TETRA4, {{0, 2, 1, NONE_INDEX}, {0, 2, 1, 3}}),
                   "bad_index 1 (tetra 1); 1"},
        known_mesh{"tetrahedra_without_a_sound_one", mesh_by_hand(corner).with(EL_TETRA4, {{7, 8, 9, 10}}),
                   "bad_index 1 (tetra 1); unused_node 4 (node 1 2 3 4); 0"},
        known_mesh{"tetrahedron_on_nan",
                   mesh_by_hand(plus(corner, {{nan, 0, 0}})).with(EL_TETRA4, {{0, 2, 1, 3}, {0, 1, 2, 4}}),
                   "not_finite 1 (node 5); 1"},
        known_mesh{"tetrahedron_on_infinity",
                   mesh_by_hand(plus(corner, {{infinity, 0, 0}})).with(EL_TETRA4, {{0, 2, 1, 3}, {0, 1, 2, 4}}),
                   "not_finite 1 (node 5); 1"},
        known_mesh{"unused_nodes", mesh_by_hand(plus(corner, {XY, XYZ})).with(EL_TETRA4, {{0, 2, 1, 3}}),
                   "unused_node 2 (node 5 6); 1"},
        known_mesh{"unused_node_at_a_used_one", mesh_by_hand(plus(corner, {X})).with(EL_TETRA4, {{0, 2, 1, 3}}),
                   "unused_node 1 (node 5); 1"},
        known_mesh{"coincident_within_the_tolerance",
                   mesh_by_hand(plus(corner, {{1 + 1e-9, 0, 0}, {0, 1, 0}, {0, 0, -1}, O}))
                       .with(EL_TETRA4, {{0, 2, 1, 3}, {7, 4, 5, 6}}),
                   "coincident_node 3 (node 5 6 8); ~parts 2; 2"},
        known_mesh{"close_but_not_coincident",
                   mesh_by_hand(plus(corner, {{1 + 1e-6, 0, 0}, {0, 1 + 1e-6, 0}, {0, 0, -1}, {0, 0, 1e-5}}))
                       .with(EL_TETRA4, {{0, 2, 1, 3}, {7, 4, 5, 6}}),
                   "~parts 2; 2"},
        known_mesh{"tetra10", mesh_by_hand(with_middles()).with(EL_TETRA10, {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}}), "ok; 1"},
        known_mesh{"tetra10_with_a_middle_twice",
                   mesh_by_hand(with_middles()).with(EL_TETRA10, {{0, 1, 2, 3, 4, 5, 6, 7, 8, 8}}),
                   "repeated_node 1 (tetra10 1); unused_node 1 (node 10); 1"},
        known_mesh{"tetra10_and_its_corners",
                   mesh_by_hand(with_middles())
                       .with(EL_TETRA4, {{0, 1, 2, 3}})
                       .with(EL_TETRA10, {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}}),
                   "duplicate 1 (tetra10 2); ~turned_neighbour 4 (tetra 1, tetra10 2); 1"},
        known_mesh{"hexahedron", mesh_by_hand(cube).with(EL_HEXA8, {hexa}), "ok; 1"},
        known_mesh{"hexahedron_inverted", mesh_by_hand(scaled(cube, 2, 2, 2)).with(EL_HEXA8, {turned_hexa}),
                   "inverted 1 (hexahedron 1); 1"},
        known_mesh{"hexahedron_flat", mesh_by_hand(scaled(cube, 1, 1, 0)).with(EL_HEXA8, {hexa}),
                   "degenerate 1 (hexahedron 1); coincident_node 4 (node 5 6 7 8); ~short_edge 4; 1"},
        known_mesh{"hexahedra_on_a_face", mesh_by_hand(tower).with(EL_HEXA8, {hexa, upper_hexa}), "ok; 1"},
        known_mesh{"hexahedron_twice", mesh_by_hand(cube).with(EL_HEXA8, {hexa, {1, 2, 3, 0, 5, 6, 7, 4}}),
                   "duplicate 1 (hexahedron 2); ~turned_neighbour 6 (hexahedron 1 2); 1"},
        known_mesh{"hexahedron_collapsed_into_a_wedge",
                   mesh_by_hand({O, X, XY, Z, XZ, XYZ}).with(EL_HEXA8, {{0, 1, 2, 2, 3, 4, 5, 5}}),
                   "repeated_node 1 (hexahedron 1); 1"},
        known_mesh{"collapsed_hexahedron_on_a_wedge",
                   mesh_by_hand({O, X, XY, Z, XZ, XYZ, {0, 0, 2}, {1, 0, 2}, {1, 1, 2}})
                       .with(EL_WEDGE6, {{3, 4, 5, 6, 7, 8}})
                       .with(EL_HEXA8, {{0, 1, 2, 2, 3, 4, 5, 5}}),
                   "repeated_node 1 (hexahedron 2); 1"},
        known_mesh{"wedge", mesh_by_hand({O, X, Y, Z, XZ, YZ}).with(EL_WEDGE6, {{0, 1, 2, 3, 4, 5}}), "ok; 1"},
        known_mesh{"wedge_inverted", mesh_by_hand({O, X, Y, Z, XZ, YZ}).with(EL_WEDGE6, {{3, 4, 5, 0, 1, 2}}),
                   "inverted 1 (wedge 1); 1"},
        known_mesh{"pyramid", mesh_by_hand({O, X, XY, Y, {0.5, 0.5, 0.7}}).with(EL_PYRAMID5, {{0, 1, 2, 3, 4}}),
                   "ok; 1"},
        known_mesh{"pyramid_inverted",
                   mesh_by_hand({O, X, XY, Y, {0.5, 0.5, 0.7}}).with(EL_PYRAMID5, {{3, 2, 1, 0, 4}}),
                   "inverted 1 (pyramid 1); 1"},
        known_mesh{
            "pyramid_on_a_hexahedron",
            mesh_by_hand(plus(cube, {{0.5, 0.5, 1.7}})).with(EL_PYRAMID5, {{4, 5, 6, 7, 8}}).with(EL_HEXA8, {hexa}),
            "ok; 1"},
        known_mesh{"tetrahedron_on_a_pyramid",
                   mesh_by_hand({O, X, XY, Y, {0.5, 0.5, 0.7}, {0.5, -0.5, 0.7}})
                       .with(EL_TETRA4, {{0, 4, 1, 5}})
                       .with(EL_PYRAMID5, {{0, 1, 2, 3, 4}}),
                   "ok; 1"},
        known_mesh{"inverted_tetrahedron_on_a_pyramid",
                   mesh_by_hand({O, X, XY, Y, {0.5, 0.5, 0.7}, {0.5, -0.5, 0.7}})
                       .with(EL_TETRA4, {{0, 1, 4, 5}})
                       .with(EL_PYRAMID5, {{0, 1, 2, 3, 4}}),
                   "inverted 1 (tetra 1); ~turned_neighbour 1 (tetra 1, pyramid 2); 1"},
        known_mesh{"hexahedron_with_its_surface", mesh_by_hand(cube).with(EL_QUAD4, cube_faces).with(EL_HEXA8, {hexa}),
                   "ok; 1"},
        known_mesh{"hexahedron_with_an_edge_and_a_point",
                   mesh_by_hand(cube).with(EL_NODE, {{0}}).with(EL_EDGE2, {{0, 1}}).with(EL_HEXA8, {hexa}), "ok; 1"},
    };
}

std::vector<known_mesh> known_surfaces()
{
    return {
        known_mesh{"triangle_in_a_plane", mesh_by_hand({O, X, Y}, 2).with(EL_TRIA3, {{0, 1, 2}}), "ok; 1"},
        known_mesh{"triangle_in_a_plane_inverted", mesh_by_hand({O, X, Y}, 2).with(EL_TRIA3, {{0, 2, 1}}),
                   "inverted 1 (triangle 1); 1"},
        known_mesh{"triangle_in_space", mesh_by_hand({O, X, YZ}).with(EL_TRIA3, {{0, 2, 1}}),
                   "~open_edge 3 (triangle 1); 1"},
        known_mesh{"triangle_of_a_flat_mesh_in_space", mesh_by_hand({O, X, Y}).with(EL_TRIA3, {{0, 2, 1}}), "ok; 1"},
        known_mesh{"triangle_turned_in_a_flat_mesh_in_space",
                   mesh_by_hand({O, X, XY, {0, 3, 0}}).with(EL_TRIA3, {{0, 2, 1}, {0, 2, 3}}),
                   "inverted 1 (triangle 1); ~turned_neighbour 1 (triangle 1 2); 1"},
        known_mesh{"flat_mesh_in_space_seen_from_below",
                   mesh_by_hand(moved(square, 0, 0, 7)).with(EL_TRIA3, {{0, 2, 1}, {0, 3, 2}}), "ok; 1"},
        known_mesh{"triangle_turned_in_a_flat_stl_file",
                   of_stl(mesh_by_hand({O, X, XY, {0, 3, 0}}).with(EL_TRIA3, {{0, 2, 1}, {0, 2, 3}})),
                   "open_edge_of_stl 4 (triangle 1 2); ~turned_neighbour 1 (triangle 1 2); 1"},
        known_mesh{"triangle_of_an_stl_file", of_stl(mesh_by_hand({O, X, Y}).with(EL_TRIA3, {{0, 2, 1}})),
                   "open_edge_of_stl 3 (triangle 1); 1"},
        known_mesh{"triangle_on_a_line", mesh_by_hand({O, X, {2, 0, 0}}, 2).with(EL_TRIA3, {{0, 1, 2}}),
                   "degenerate 1 (triangle 1); 1"},
        known_mesh{"triangle_thin", mesh_by_hand({O, X, {0.5, 0.001, 0}}, 2).with(EL_TRIA3, {{0, 1, 2}}),
                   "bad_quality 1 (triangle 1); 1"},
        known_mesh{"triangle_poor", mesh_by_hand({O, X, {0.5, 0.05, 0}}, 2).with(EL_TRIA3, {{0, 1, 2}}),
                   "~poor_quality 1 (triangle 1); 1"},
        known_mesh{"triangle_with_a_node_twice", mesh_by_hand({O, X, Y}, 2).with(EL_TRIA3, {{0, 1, 2}, {1, 1, 2}}),
                   "repeated_node 1 (triangle 2); 1"},
        known_mesh{"closed_tetrahedron", mesh_by_hand(corner).with(EL_TRIA3, closed_tetrahedron), "ok; 1"},
        known_mesh{"closed_tetrahedron_of_an_stl_file", of_stl(mesh_by_hand(corner).with(EL_TRIA3, closed_tetrahedron)),
                   "ok; 1"},
        known_mesh{"closed_tetrahedron_far_away", mesh_by_hand(moved(corner, 100)).with(EL_TRIA3, closed_tetrahedron),
                   "ok; 1"},
        known_mesh{"closed_tetrahedron_inside_out", mesh_by_hand(corner).with(EL_TRIA3, tetrahedron_inside_out),
                   "~inside_out 1; 1"},
        known_mesh{"one_of_two_closed_parts_inside_out",
                   mesh_by_hand(plus(corner, moved(corner, 9)))
                       .with(EL_TRIA3, joined(closed_tetrahedron, tetrahedron_inside_out, 4)),
                   "~inside_out 1; ~parts 2; 2"},
        known_mesh{"closed_part_inside_out_beside_an_open_one",
                   mesh_by_hand(plus(corner, moved({O, X, YZ}, 9)))
                       .with(EL_TRIA3, joined(tetrahedron_inside_out, {{0, 1, 2}}, 4)),
                   "~open_edge 3 (triangle 5); ~inside_out 1; ~parts 2; 2"},
        known_mesh{"cavity",
                   mesh_by_hand(plus(scaled(corner, 9, 9, 9), moved(corner, 1, 1, 1)))
                       .with(EL_TRIA3, joined(closed_tetrahedron, tetrahedron_inside_out, 4)),
                   "~parts 2; 2"},
        known_mesh{"body_in_a_cavity_inside_out",
                   mesh_by_hand(plus(plus(scaled(corner, 40, 40, 40), moved(scaled(corner, 20, 20, 20), 2, 2, 2)),
                                     moved(corner, 5, 5, 5)))
                       .with(EL_TRIA3,
                             joined(joined(closed_tetrahedron, tetrahedron_inside_out, 4), tetrahedron_inside_out, 8)),
                   "~inside_out 1; ~parts 3; 3"},
        known_mesh{"cavity_that_touches_the_outside",
                   mesh_by_hand(plus(scaled(corner, 9, 9, 9), scaled(corner, 2, 2, 2)))
                       .with(EL_TRIA3, joined(closed_tetrahedron, tetrahedron_inside_out, 4)),
                   "coincident_node 1 (node 5); ~parts 2; 2"},
        known_mesh{"one_triangle_turned",
                   mesh_by_hand(corner).with(EL_TRIA3, {{0, 2, 1}, {0, 1, 3}, {0, 3, 2}, {1, 3, 2}}),
                   "~turned_neighbour 3 (triangle 1 2 3 4); 1"},
        known_mesh{"one_triangle_missing", mesh_by_hand(corner).with(EL_TRIA3, {{0, 2, 1}, {0, 1, 3}, {0, 3, 2}}),
                   "~open_edge 3 (triangle 1 2 3); 1"},
        known_mesh{"three_triangles_on_an_edge",
                   of_stl(mesh_by_hand({O, X, Y, Z, {0, -1, 0}}).with(EL_TRIA3, {{0, 1, 2}, {0, 1, 3}, {0, 1, 4}})),
                   "open_edge_of_stl 6 (triangle 1 2 3); nonmanifold 1 (triangle 1 2 3); 1"},
        known_mesh{"triangles_on_a_node",
                   mesh_by_hand({O, X, Y, {-1, 0, 0}, {0, -1, 0}}, 2).with(EL_TRIA3, {{0, 1, 2}, {0, 3, 4}}),
                   "~parts 2; 2"},
        known_mesh{"triangle_twice", mesh_by_hand({O, X, Y}, 2).with(EL_TRIA3, {{0, 1, 2}, {1, 2, 0}}),
                   "duplicate 1 (triangle 2); ~turned_neighbour 3 (triangle 1 2); 1"},
        known_mesh{"triangle_three_times", mesh_by_hand({O, X, Y}, 2).with(EL_TRIA3, {{0, 1, 2}, {1, 2, 0}, {2, 0, 1}}),
                   "duplicate 2 (triangle 2 3); nonmanifold 3 (triangle 1 2 3); 1"},
        known_mesh{
            "tria6",
            mesh_by_hand({O, X, Y, {0.5, 0.5, 0}, {0, 0.5, 0}, {0.5, 0, 0}}, 2).with(EL_TRIA6, {{0, 1, 2, 3, 4, 5}}),
            "ok; 1"},
        known_mesh{"quadrangle", mesh_by_hand(square, 2).with(EL_QUAD4, {{0, 1, 2, 3}}), "ok; 1"},
        known_mesh{"quadrangle_inverted", mesh_by_hand(square, 2).with(EL_QUAD4, {{3, 2, 1, 0}}),
                   "inverted 1 (quad 1); 1"},
        known_mesh{"quadrangle_like_a_bow", mesh_by_hand(square, 2).with(EL_QUAD4, {{0, 2, 1, 3}}),
                   "degenerate 1 (quad 1); 1"},
        known_mesh{
            "quadrangle_and_triangle",
            mesh_by_hand(plus(square, {{2, 0.5, 0}}), 2).with(EL_TRIA3, {{1, 4, 2}}).with(EL_QUAD4, {{0, 1, 2, 3}}),
            "ok; 1"},
        known_mesh{
            "quadrangle_and_triangle_turned",
            mesh_by_hand(plus(square, {{2, 0.5, 0}}), 2).with(EL_TRIA3, {{1, 2, 4}}).with(EL_QUAD4, {{0, 1, 2, 3}}),
            "inverted 1 (triangle 1); ~turned_neighbour 1 (triangle 1, quad 2); 1"},
        known_mesh{"closed_cube", mesh_by_hand(cube).with(EL_QUAD4, cube_faces), "ok; 1"},
        known_mesh{"two_closed_cubes",
                   mesh_by_hand(plus(cube, moved(cube, 3)))
                       .with(EL_QUAD4,
                             [] {
                                 auto all = cube_faces;
                                 for (nodes f : cube_faces) {
                                     for (unsigned& n : f) n += 8;
                                     all.push_back(f);
                                 }
                                 return all;
                             }()),
                   "~parts 2; 2"},
        known_mesh{"edge_below_single_precision",
                   mesh_by_hand({{1e6, 0, 0}, {1e6, 0.05, 0}, {1e6 + 0.05, 0, 0}, {1e6, 1e6, 0}}, 2)
                       .with(EL_TRIA3, {{0, 2, 1}})
                       .with(EL_EDGE2, {{0, 3}}),
                   "~short_edge 3; 1"},
        known_mesh{
            "collapsed_facet_of_an_stl_file",
            of_stl(mesh_by_hand(plus(corner, {{9, 9, 9}})).with(EL_TRIA3, joined(closed_tetrahedron, {{4, 4, 3}}, 0))),
            "repeated_node 1 (triangle 5); 1"},
        known_mesh{"stl_file_of_a_collapsed_facet", of_stl(mesh_by_hand({O, X}).with(EL_TRIA3, {{0, 1, 1}})),
                   "no_element 1; repeated_node 1 (triangle 1); 0"},
        known_mesh{"sliver_that_a_sound_surface_may_hold",
                   mesh_by_hand({O, X, {0.5, 0.007, 0}}, 2).with(EL_TRIA3, {{0, 1, 2}}),
                   "~poor_quality 1 (triangle 1); 1"},
        known_mesh{"triangle_whose_measure_is_no_number",
                   mesh_by_hand({{0, 0, 0}, {1e200, 0, 0}, {0, 1e200, 0}}, 2).with(EL_TRIA3, {{0, 1, 2}}),
                   "bad_quality 1 (triangle 1); 1"},
        known_mesh{"facets_not_read", with_fault(mesh_by_hand(corner).with(EL_TRIA3, closed_tetrahedron)),
                   "not_read 2; 1"},
    };
}

std::vector<known_mesh> known_other_meshes()
{
    return {
        known_mesh{"nothing", mesh_by_hand({}), "no_element 1; 0"},
        known_mesh{"nodes_alone", mesh_by_hand({O, X}), "no_element 1; unused_node 2 (node 1 2); 0"},
        known_mesh{"points", mesh_by_hand({O, X}).with(EL_NODE, {{0}, {1}}), "ok; 0"},
        known_mesh{"point_twice", mesh_by_hand({O, X}).with(EL_NODE, {{0}, {1}, {0}}), "duplicate 1 (vertex 3); 0"},
        known_mesh{"lines", mesh_by_hand({O, X, XY}).with(EL_EDGE2, {{0, 1}, {1, 2}}), "ok; 1"},
        known_mesh{"lines_that_branch", mesh_by_hand({O, X, Y, Z}).with(EL_EDGE2, {{0, 1}, {0, 2}, {0, 3}}), "ok; 1"},
        known_mesh{"line_twice", mesh_by_hand({O, X}).with(EL_EDGE2, {{0, 1}, {1, 0}}), "duplicate 1 (line 2); 1"},
        known_mesh{"line_without_length", mesh_by_hand({O, X, X}).with(EL_EDGE2, {{0, 1}, {1, 2}}),
                   "degenerate 1 (line 2); coincident_node 1 (node 3); ~short_edge 1; 1"},
        known_mesh{"line_from_a_node_to_itself", mesh_by_hand({O, X}).with(EL_EDGE2, {{0, 1}, {1, 1}}),
                   "repeated_node 1 (line 2); 1"},
        known_mesh{"lines_apart", mesh_by_hand({O, X, Y, Z}).with(EL_EDGE3, {{0, 1, 2}}).with(EL_EDGE2, {{3, 0}}),
                   "ok; 1"},
    };
}

}  // namespace test
