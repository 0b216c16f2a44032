#ifndef TESTS_TOPOLOGY_CALLS_H
#define TESTS_TOPOLOGY_CALLS_H

#include "support/mesh_builders.h"
#include "support/stored_call.h"

namespace test {

namespace detail {

template <int Type>
void call_get_neighbors(setting& s, const zeb::dense2D<unsigned>& mesh)
{
    const auto& connect = s.input(mesh);
    auto& neighbors = s.emptied(columns({{77, 78}}));
    s.run([&] { return zeb::tessolv::get_neighbors(connect, zeb::element_type(Type), true, neighbors); });
}

template <int Type>
void call_get_boundaries(setting& s, const zeb::dense2D<unsigned>& mesh)
{
    zeb::dense2D<unsigned> links;
    zeb::tessolv::get_neighbors(mesh, zeb::element_type(Type), false, links);
    const auto& connect = s.input(mesh);
    const auto& neighbors = s.input(links);
    auto& boundaries = s.emptied(columns({{77, 78}}));
    s.run([&] { return zeb::tessolv::get_boundaries(connect, neighbors, zeb::element_type(Type), boundaries); }, 0);
}

}  // namespace detail

// Every topology operation.
inline const stored_call topology_calls[] = {
    {"get_neighbors_of_lines",
     [](setting& s) {
         detail::call_get_neighbors<zeb::EL_EDGE2>(s, columns({{0, 1}, {1, 2}}));
     }},
    {"get_neighbors_of_triangles", [](setting& s) { detail::call_get_neighbors<zeb::EL_TRIA3>(s, tria_grid(2)); }},
    {"get_neighbors_of_quadrangles", [](setting& s) { detail::call_get_neighbors<zeb::EL_QUAD4>(s, quad_grid(2)); }},
    {"get_neighbors_of_mixed_faces",
     [](setting& s) {
         detail::call_get_neighbors<zeb::EL_FACE_MIX>(s, columns({{0, 1, 2, N}, {0, 2, 3, 4}}));
     }},
    {"get_neighbors_of_tetrahedra", [](setting& s) { detail::call_get_neighbors<zeb::EL_TETRA4>(s, tetra_grid(1)); }},
    {"get_neighbors_of_hexahedra", [](setting& s) { detail::call_get_neighbors<zeb::EL_HEXA8>(s, hexa_grid(2)); }},
    {"get_boundaries_of_lines",
     [](setting& s) {
         detail::call_get_boundaries<zeb::EL_EDGE2>(s, columns({{0, 1}, {1, 2}}));
     }},
    {"get_boundaries_of_triangles", [](setting& s) { detail::call_get_boundaries<zeb::EL_TRIA3>(s, tria_grid(2)); }},
    {"get_boundaries_of_quadrangles", [](setting& s) { detail::call_get_boundaries<zeb::EL_QUAD4>(s, quad_grid(2)); }},
    {"get_boundaries_of_mixed_faces",
     [](setting& s) {
         detail::call_get_boundaries<zeb::EL_FACE_MIX>(s, columns({{0, 1, 2, N}, {0, 2, 3, 4}}));
     }},
    {"get_boundaries_of_tetrahedra", [](setting& s) { detail::call_get_boundaries<zeb::EL_TETRA4>(s, tetra_grid(1)); }},
    {"get_boundaries_of_hexahedra", [](setting& s) { detail::call_get_boundaries<zeb::EL_HEXA8>(s, hexa_grid(2)); }},
    {"get_ancestors",
     [](setting& s) {
         const auto& connect = s.input(columns({{0, 1, 5}, {5, 2, 1}}));
         auto& ancestors = s.kept(indices({}));
         s.run([&] { return zeb::tessolv::get_ancestors(connect, ancestors); }, -2);
     }},
    {"get_connex_parts",
     [](setting& s) {
         const auto& neighbors = s.input(columns({{2, N}, {N, 4}, {0, N}, {9, N}}));
         auto& elements = s.emptied(indices({5, 5}));
         auto& offsets = s.emptied(indices({6}));
         s.run([&] { return zeb::tessolv::get_connex_parts(neighbors, elements, offsets); }, 0);
     }},
    {"reordering_get_connex_parts",
     [](setting& s) {
         auto& connect = s.kept(columns({{5, 6, 7}, {6, 7, 8}, {5, 7, 9}}));
         auto& neighbors = s.kept(columns({{2, N}, {N, 9}, {N, 0}}));
         auto& offsets = s.emptied(indices({6}));
         s.run([&] { return zeb::tessolv::get_connex_parts(connect, neighbors, offsets); }, 0);
     }},
    {"copy_edges_of_one_matrix",
     [](setting& s) {
         const auto& connect = s.input(tetra_grid(1));
         auto& edges = s.kept(columns({{9, 8}}));
         s.run([&] { return zeb::tessolv::copy_edges(connect, zeb::EL_TETRA4, edges); });
     }},
    {"copy_edges_of_a_range",
     [](setting& s) {
         const auto* first = s.input_range<unsigned>({columns({{0, 1, 2, N}, {0, 2, 3, 4}}), tria_grid(2)});
         const auto& kinds = s.input(types({zeb::EL_FACE_MIX, zeb::EL_TRIA3}));
         auto& edges = s.kept(zeb::dense2D<unsigned>());
         s.run([&] { return zeb::tessolv::copy_edges(first, first + 2, kinds, edges); });
     }},
};

}  // namespace test

#endif
