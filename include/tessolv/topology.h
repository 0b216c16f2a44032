#ifndef TESSOLV_TOPOLOGY_H
#define TESSOLV_TOPOLOGY_H

#include <tessolv/core.h>

/// \file
/// Who touches whom: neighbours across faces, boundaries, an element of each node, connected parts, edges. The local
/// numbering of faces and edges is drawn in docs/elements.md. Coordinates play no part here.

namespace zeb {
namespace tessolv {

/// Neighbour of every element across each of its faces: neighbors(k, e) is the element that shares local face k of
/// element e, or NONE_INDEX on the boundary. The faces of a line are its ends, of a surface element its edges.
/// Lines, triangles and tetrahedra: face k is opposite vertex k; quadrangles: face k starts at vertex k. Faces are
/// equal when they have the same vertices with the same repetitions; orientation is not compared. A degenerate element
/// may be its own neighbour.
/// <!-- preamble: two_tetrahedra -->
/// @code
/// // connect: the tetrahedra (0, 1, 2, 3) and (1, 2, 3, 4)
/// dense2D<unsigned> neighbors;
/// get_neighbors(connect, EL_TETRA4, false, neighbors);  // -> 0
/// neighbors.col(0);                                     // -> (1, NONE_INDEX, NONE_INDEX, NONE_INDEX)
/// neighbors.col(1);                                     // -> (NONE_INDEX, NONE_INDEX, NONE_INDEX, 0)
/// @endcode
/// @param connect           vertices x elements; of quadratic elements pass the corner rows only.
/// @param type              EL_EDGE2, EL_TRIA3, EL_QUAD4, EL_FACE_MIX, EL_TETRA4 or EL_HEXA8; a quadratic mesh passes
///                          its corner rows under the linear type. Other types have no neighbours here. EL_FACE_MIX of
///                          3 rows is EL_TRIA3. In EL_FACE_MIX of 4 rows and in EL_HEXA8 a face whose vertices add up
///                          to 0xFFFFFFFF (mod 2^32) has no neighbour: part of the interface.
/// @param link_nonmanifold  a face of three or more elements: false, NONE_INDEX for all; true, each of the others is
///                          linked to the first and the first to the last, in the order of elements and faces.
/// @param[out] neighbors    faces x elements, replaced; 4 rows for EL_FACE_MIX of 4 rows, the last NONE_INDEX for
///                          triangles. Untouched when `connect` is empty (0) or refused by check_IDs or `type`; empty
///                          when a quadratic kind comes with its full rows, or on -199.
/// @return 0; -1 indices or rows of `connect`; -2 `type`; -1 rows of a quadratic kind; -199 memory, or more elements
///         than an index can name.
/// @note Expected linear time, O(n log n) for numbers made to be slow; working storage, 4 bytes a vertex of a face and
///       4 a face, is freed on return. No shared state.
TESSOLV_API int get_neighbors(const dense2D<unsigned int>& connect, element_type type, bool link_nonmanifold,
                              dense2D<unsigned int>& neighbors);

/// The faces without a neighbour as a connectivity of the next lower dimension: vertices of a line mesh, edges of a
/// surface, triangles or quadrangles of a solid. They come element by element and face by face; the vertices stand in
/// the local order of the face, so that orientation follows the element.
/// <!-- preamble: two_tetrahedra -->
/// @code
/// // connect: the tetrahedra (0, 1, 2, 3) and (1, 2, 3, 4)
/// dense2D<unsigned> neighbors, boundaries;
/// get_neighbors(connect, EL_TETRA4, false, neighbors);
/// get_boundaries(connect, neighbors, EL_TETRA4, boundaries);  // -> 0
/// boundaries;  // -> (2, 0, 3) (1, 3, 0) (2, 1, 0) (2, 3, 4) (3, 1, 4) (2, 4, 1)
/// @endcode
/// @param connect          vertices x elements, as for get_neighbors; EL_FACE_MIX must have 4 rows.
/// @param neighbors        faces x elements, as get_neighbors makes it; only whether an entry is NONE_INDEX counts.
/// @param type             as for get_neighbors.
/// @param[out] boundaries  vertices of a face (1 to 4) x faces, replaced; 0 columns when the mesh is closed. There is a
///                         column for every NONE_INDEX of `neighbors`: in EL_FACE_MIX those of the missing fourth faces
///                         of triangles stand at the end, all NONE_INDEX (part of the interface). Untouched when
///                         `connect` is empty (0) or refused by check_IDs or `type`; empty on the other failures.
/// @return 0; -1 indices of `connect`; -2 `type`; -1 rows of `connect`; -2 shape of `neighbors`. Exhausted memory gives
///         0 and an empty result.
/// @note Linear; no working storage. No shared state.
TESSOLV_API int get_boundaries(const dense2D<unsigned int>& connect, const dense2D<unsigned int>& neighbors,
                               element_type type, dense2D<unsigned int>& boundaries);

/// One element of each node: ancestors[i] is the last element that holds node i.
/// <!-- preamble: two_tetrahedra -->
/// @code
/// // connect: the tetrahedra (0, 1, 2, 3) and (1, 2, 3, 4)
/// dense1D<unsigned> ancestors;
/// get_ancestors(connect, ancestors);  // -> 0
/// ancestors;                          // -> (0, 1, 1, 1, 1)
/// @endcode
/// @param connect            nodes x elements of any kind; quadratic nodes count like any others.
/// @param[in,out] ancestors  empty: becomes a list of all nodes up to the largest in `connect`, NONE_INDEX where no
///                           element holds the node. Not empty: written in place (a view writes what it looks into);
///                           nodes beyond its end and NONE_INDEX in `connect` are ignored, entries of nodes that no
///                           element holds stay. Untouched when `connect` is empty (0) and on failure.
/// @return 0; -1 `ancestors` is empty and `connect` holds NONE_INDEX; -2 memory.
/// @note Linear. No shared state.
TESSOLV_API int get_ancestors(const dense2D<unsigned int>& connect, dense1D<unsigned int>& ancestors);

/// The elements part by part, where two elements belong together when a chain of neighbours leads from one to the
/// other. Parts are in the order of their lowest elements; each is listed breadth first from there, neighbours in the
/// order of the rows.
/// <!-- preamble: square -->
/// @code
/// // connect: the triangles (0, 1, 2) and (3, 4, 5)
/// dense2D<unsigned> neighbors;
/// dense1D<unsigned> elements, offsets;
/// get_neighbors(connect, EL_TRIA3, false, neighbors);
/// get_connex_parts(neighbors, elements, offsets);  // -> 0
/// elements;                                        // -> (0, 1)
/// offsets;                                         // -> (0, 1, 2)
/// @endcode
/// @param neighbors      rows x n, entry = adjacent element or NONE_INDEX; any number of rows. Links are followed from
///                       where they stand, so one-sided ones may divide a part. Entries above n are ignored; one equal
///                       to n is listed once, like an element without neighbours (part of the interface).
/// @param[out] elements  every element once, replaced.
/// @param[out] offsets   part p is elements[offsets[p]] up to, not including, elements[offsets[p + 1]]; starts with 0,
///                       so there is one entry more than parts. Replaced.
/// @return 0. Exhausted memory, or more elements than an index can name, gives 0 and both lists empty.
/// @note Linear; working storage is one bit an element. No shared state.
TESSOLV_API int get_connex_parts(const dense2D<unsigned int>& neighbors, dense1D<unsigned int>& elements,
                                 dense1D<unsigned int>& offsets);

/// Reorders a mesh so that every connected part is a run of columns: the order is that of the form above, and entries
/// of `neighbors` get the new numbers.
/// @param[in,out] connect    rows x n, given a new buffer.
/// @param[in,out] neighbors  rows x n, given a new buffer; entries from n on stay as they are. When the matrices differ
///                           in the number of columns, or have none, both are left as they are.
/// @param[out] offsets       part p is the columns offsets[p] up to, not including, offsets[p + 1]; replaced. Entries
///                           equal to n do not count.
/// @return 0. Exhausted memory, or more elements than an index can name, gives 0, `offsets` empty and the matrices as
///         they were.
/// @note Linear. No shared state.
TESSOLV_API int get_connex_parts(dense2D<unsigned int>& connect, dense2D<unsigned int>& neighbors,
                                 dense1D<unsigned int>& offsets);

/// Appends the distinct edges of the elements of [first, last): each pair of vertices once, however many elements and
/// matrices share it, smaller index first. They come in the order in which a walk over matrices, elements and local
/// edges first meets them. Only corners count: the edges of quadratic elements are the straight ones. An edge from a
/// vertex to itself is an edge. EL_NODE, EL_SOLID_MIX and EL_HEXA20 have no edges here (part of the interface).
/// <!-- preamble: square -->
/// @code
/// // connect: the triangles (0, 1, 2) and (3, 4, 5)
/// dense2D<unsigned> edges;
/// copy_edges(&connect, &connect + 1, dense1D<int>(1, EL_TRIA3), edges);  // -> 0
/// edges;  // -> (1, 2) (0, 2) (0, 1) (4, 5) (3, 5) (3, 4)
/// @endcode
/// @param first           first of consecutive matrices, nodes x elements.
/// @param last            behind the last of them.
/// @param types           element_type of each matrix of [first, last). All rows of the type are expected, of quadratic
///                        kinds too.
/// @param[in,out] edges   2 x edges; new columns stand behind those it has, also when they repeat them. Empty, it
///                        becomes 2 x 0 when there is no edge. Untouched on failure.
/// @return 0; -2 last before first; -3 length of `types`; -4 `edges` is neither empty nor of 2 rows; -1 indices or rows
///         of a matrix; -199 memory.
/// @note Linear for dense numbers, expected linear for others; working storage, at most about 12 bytes an edge of an
///       element, is freed on return. No shared state.
TESSOLV_API int copy_edges(const dense2D<unsigned int>* first, const dense2D<unsigned int>* last,
                           const dense1D<int>& types, dense2D<unsigned int>& edges);

/// The same for one matrix.
/// @return 0; -1 indices or rows of `connect`; -3 rows of `edges`; -199 memory. An empty `connect` gives 0 before
///         `edges` is looked at, and leaves it untouched.
TESSOLV_API int copy_edges(const dense2D<unsigned int>& connect, element_type type, dense2D<unsigned int>& edges);

}  // namespace tessolv
}  // namespace zeb

#endif
