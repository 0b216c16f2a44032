#ifndef TESSOLV_QUALITY_H
#define TESSOLV_QUALITY_H

#include <tessolv/core.h>

#include <zeb/misc/histogram.h>

/// \file
/// Numbers per element and per edge. The forms with a histogram call its `process` and nothing else; it may be of a
/// class of the host's own, and what that throws ends the call with -199.

namespace zeb {
namespace tessolv {

/// Shape quality of every element: 1 ideal, near 0 flat, negative inverted; no unit, no influence of size. The ideals
/// are the equilateral triangle, the square, the regular tetrahedron (which scores 0.9999999999987, its mirror image
/// the negative), the pyramid and the wedge of equal edges, the cube. An inverted hexahedron can fall below -1, by its
/// size: corners of no positive volume are not divided by the lengths of their edges. A tetrahedron is positive when
/// its nodes 0, 1, 2 turn clockwise seen from node 3. Zero lengths, areas and volumes are no error.
///
/// | type                         | rows | measure                                                   |
/// |------------------------------|------|-----------------------------------------------------------|
/// | EL_EDGE2, EL_EDGE3           | 2    | always 1                                                  |
/// | EL_TRIA3, EL_TRIA6           | 3    | area by perimeter and longest edge                        |
/// | EL_QUAD4, EL_QUAD8, EL_QUAD9 | 4    | sines of the corners, ratio of the edges, warp            |
/// | EL_FACE_MIX                  | 3, 4 | a triangle where row 3 is missing or holds NONE_INDEX     |
/// | EL_TETRA4, EL_TETRA10        | 4    | volume by surface and longest edge                        |
/// | EL_PYRAMID5, EL_PYRAMID14    | 5    | corners of the base seen from the apex                    |
/// | EL_WEDGE6, EL_WEDGE18        | 6    | the lesser of its corners and its faces seen from within  |
/// | EL_HEXA8, EL_HEXA27          | 8    | the lesser of its corners and its faces seen from within  |
///
/// Formulas and constants: quality/shape_measures.h.
/// <!-- preamble: cube -->
/// @code
/// // pos, connect: the unit cube as one hexahedron
/// dense1D<double> qualities;
/// shape_qualities(pos, connect, EL_HEXA8, qualities);  // -> 0
/// qualities;                                           // -> (1)
/// zeb::misc::histogram h;
/// shape_qualities(pos, connect, EL_HEXA8, h);          // -> 0
/// h.mean();                                            // -> 1
/// @endcode
/// @param pos             rows x nodes. Surface elements are signed in 2 rows (positive when counter-clockwise), never
///                        negative in 3, and score 0 in any other number of rows. Solid elements read x, y, z; missing
///                        rows are 0, rows beyond the third are ignored.
/// @param connect         rows x elements, rows as in the table. Only corners count: of a higher-order type pass the
///                        corner rows, all its rows are refused. Columns without rows score 0, edges 1.
/// @param type            type of `connect`. Those that the table leaves out have no measure, EL_SOLID_MIX and
///                        EL_HEXA20 among them.
/// @param[out] qualities  one value per element, replaced; owns its buffer. Size 0 on failure.
/// @return 0; -3 `type`, even when there are no elements; -2 indices or rows of `connect`; -199 memory.
/// @note One pass over the elements, no working storage. No shared state.
TESSOLV_API int shape_qualities(const dense2D<double>& pos, const dense2D<unsigned int>& connect, element_type type,
                                dense1D<double>& qualities);

/// The same for the matrices of [first, last), one after the other. Matrices without entries are passed over, whatever
/// their type; one that has columns but no rows still counts in the size of `qualities`, with zeros at its end.
/// @param pos             as above.
/// @param first,last      range of matrices, each as `connect` above.
/// @param types           element_type of each matrix.
/// @param[out] qualities  one value per column of all matrices, replaced; owns its buffer. Size 0 on failure.
/// @return 0; -3 last before first; -4 size of `types`; then, of the first matrix that cannot be measured, -3 its type
///         or -2 its indices or rows; -199 memory.
TESSOLV_API int shape_qualities(const dense2D<double>& pos, const dense2D<unsigned int>* first,
                                const dense2D<unsigned int>* last, const dense1D<int>& types,
                                dense1D<double>& qualities);

/// The same, given to `h` in one call of process(vector). On failure `h` is left alone.
/// @return as above.
TESSOLV_API int shape_qualities(const dense2D<double>& pos, const dense2D<unsigned int>* first,
                                const dense2D<unsigned int>* last, const dense1D<int>& types, misc::histogram& h);

/// The same for one matrix, as a range of one: without entries it gives 0, whatever its type.
TESSOLV_API int shape_qualities(const dense2D<double>& pos, const dense2D<unsigned int>& connect, element_type type,
                                misc::histogram& h);

/// Shortest, mean and longest edge at every node.
/// <!-- preamble: triangle -->
/// @code
/// // pos: (0, 0), (3, 0), (0, 4); connect: the triangle (0, 1, 2)
/// pos(0, 1) = 3, pos(1, 2) = 4;
/// dense2D<unsigned> edges;
/// dense2D<double> lengths;
/// copy_edges(connect, EL_TRIA3, edges);
/// edge_lengths(pos, edges, lengths);  // -> 0
/// lengths;                            // -> (3, 3.5, 4) (3, 4, 5) (4, 4.5, 5)
/// @endcode
/// @param pos           rows x nodes. Lengths are Euclidean over all rows, whatever their number.
/// @param edges         2 x edges. An edge (a, a) has length 0 and counts twice at its node.
/// @param[out] lengths  3 x nodes, replaced; owns its buffer. A column holds minimum, mean and maximum over the edges
///                      at the node, in the unit of `pos`; at a node without edges the largest double, 0 and the
///                      negative largest double. Empty when there are no edges (0) and on failure. It may be `pos`.
/// @return 0; -2 indices or rows of `edges`; -199 memory.
/// @note One pass over the edges, 8 bytes of working storage per node. No shared state.
TESSOLV_API int edge_lengths(const dense2D<double>& pos, const dense2D<unsigned int>& edges, dense2D<double>& lengths);

/// Length of every distinct edge measured with the sizes that its end nodes ask for: 1 as asked, below 1 too short,
/// above 1 too long. The size is taken to vary linearly along the edge, so that the value of an edge of length L is
/// L ln(hmax / hmin) / (hmax - hmin), and L / h when both ends ask for h.
/// <!-- preamble: triangle -->
/// @code
/// // pos: (0, 0), (1, 0), (0, 1); connect: the triangle (0, 1, 2)
/// zeb::misc::histogram h(0, 4, 8);
/// edge_qualities(pos, connect, EL_TRIA3, dense1D<float>(3, 0.5f), h);  // -> 0
/// h.count();                                                           // -> 3
/// h.minimum();                                                         // -> 2
/// h.maximum();                                                         // -> 2.82843
/// @endcode
/// @param pos      rows x nodes; x, y, z count, missing rows are 0.
/// @param connect  nodes x elements, with all the rows of `type`. Only the edges between corners are measured, each
///                 once however many elements share it.
/// @param type     EL_SOLID_MIX and EL_HEXA20 have no edges here, nor have the kinds below EL_EDGE2.
/// @param sizes    size asked for at each node, in the unit of `pos`.
/// @param h        given the values one by one with process(double), in the order in which the elements first come to
///                 the edges (local order of copy_edges). A size that is not greater than 0 ends the feeding before its
///                 first edge, and a list of sizes of another length than the number of nodes before any, both with
///                 result 0: part of the interface.
/// @return 0; -2 indices or rows of `connect`; -199 memory, with no value given.
/// @note Expected linear time; working storage as in copy_edges. No shared state.
TESSOLV_API int edge_qualities(const dense2D<double>& pos, const dense2D<unsigned int>& connect, element_type type,
                               const dense1D<float>& sizes, misc::histogram& h);

/// The same for the distinct edges of all the matrices of [first, last) together: an edge that two of them share is
/// measured once. All matrices are checked before the first edge is measured.
/// @param pos         as above.
/// @param first,last  range of matrices, each as `connect` above.
/// @param types       element_type of each matrix.
/// @param sizes       as above.
/// @param h           as above.
/// @return 0, also for an empty range whatever `types`; -4 size of `types`, or last before first; -2 indices or rows
///         of a matrix; -199 as above.
TESSOLV_API int edge_qualities(const dense2D<double>& pos, const dense2D<unsigned int>* first,
                               const dense2D<unsigned int>* last, const dense1D<int>& types,
                               const dense1D<float>& sizes, misc::histogram& h);

}  // namespace tessolv
}  // namespace zeb

#endif
