#ifndef TESSOLV_GEOMETRY_H
#define TESSOLV_GEOMETRY_H

#include <tessolv/core.h>

/// \file
/// Coordinates in place: moving, turning and scaling nodes; boxes around nodes; the elements on one side of a plane.

namespace zeb {
namespace tessolv {

/// Moves every node by t.
/// <!-- preamble: triangle -->
/// @code
/// // pos: (0, 0), (1, 0), (0, 1)
/// translate(pos, vector_fixed<double, 3>(2, 0, 0.5));  // -> 3
/// pos;                                                 // -> (2, 0, 0.5) (3, 0, 0.5) (2, 1, 0.5)
/// @endcode
/// @param[in,out] pos  made 3 x nodes first, also when nothing else is to be done and when it is empty: a third
///                     coordinate is 0, rows beyond the third go. A matrix that has 3 rows is written where it is,
///                     views and shared buffers see it; another one with further owners moves to a buffer of its own.
/// @param t            in the unit of `pos`.
/// @return number of nodes moved, 0 for t = 0 (compared exactly); -199 memory, with `pos` as it was.
/// @note One pass. No shared state.
TESSOLV_API int translate(dense2D<double>& pos, const vector_fixed<double, 3>& t);

/// The same for the listed nodes, in the order of the list: a node that is listed twice moves twice, an index that is
/// no column of `pos` is skipped.
/// @return number of listed indices that were not skipped; -199 memory.
TESSOLV_API int translate(dense2D<double>& pos, const vector_fixed<double, 3>& t, const dense1D<unsigned int>& nodes);

/// The same for the nodes of a connectivity, each of them once.
/// @return number of distinct nodes moved; -199 memory.
TESSOLV_API int translate(dense2D<double>& pos, const vector_fixed<double, 3>& t, const dense2D<unsigned int>& connect);

/// Turns every node about an axis through `centre`. `rotation` is the direction of the axis, its length the angle in
/// radians, counter-clockwise when looking against the axis (right-hand rule): P becomes C + (I + a K + b K^2)(P - C)
/// with K v = rotation x v, a = sin t / t, b = (1 - cos t) / t^2 and t the angle (the formula of O. Rodrigues; series
/// up to t = 0.2).
/// <!-- preamble: triangle -->
/// @code
/// // pos: (0, 0), (1, 0), (0, 1); a quarter of a turn about the z axis
/// rotate(pos, vector_fixed<double, 3>(0, 0, 0), vector_fixed<double, 3>(0, 0, 1.5707963267948966));  // -> 3
/// pos(1, 1);                                                                                         // -> 1
/// pos(0, 2);                                                                                         // -> -1
/// @endcode
/// @param[in,out] pos  as in translate.
/// @param centre       a point of the axis.
/// @param rotation     direction of the axis, its length the angle in radians.
/// @return number of nodes turned, 0 for a rotation of exactly 0; -199 memory, with `pos` as it was.
/// @note One pass. No shared state.
TESSOLV_API int rotate(dense2D<double>& pos, const vector_fixed<double, 3>& centre,
                       const vector_fixed<double, 3>& rotation);

/// The same for the listed nodes; see translate.
TESSOLV_API int rotate(dense2D<double>& pos, const vector_fixed<double, 3>& centre,
                       const vector_fixed<double, 3>& rotation, const dense1D<unsigned int>& nodes);

/// The same for the nodes of a connectivity, each of them once.
TESSOLV_API int rotate(dense2D<double>& pos, const vector_fixed<double, 3>& centre,
                       const vector_fixed<double, 3>& rotation, const dense2D<unsigned int>& connect);

/// Scales the distance of every node from `centre`: P becomes P + (P - centre)(factor - 1).
/// @param[in,out] pos  as in translate.
/// @param centre       the point that stays.
/// @param factor       of every distance from it; negative ones mirror.
/// @return number of nodes, 0 for a factor of exactly 1; -199 memory, with `pos` as it was.
/// @note One pass. No shared state.
TESSOLV_API int zoom(dense2D<double>& pos, const vector_fixed<double, 3>& centre, double factor);

/// The same for the listed nodes; see translate.
/// @return 0, whatever the number of nodes; -199 memory.
TESSOLV_API int zoom(dense2D<double>& pos, const vector_fixed<double, 3>& centre, double factor,
                     const dense1D<unsigned int>& nodes);

/// The same for the nodes of a connectivity, each of them once.
/// @return 0, whatever the number of nodes; -199 memory.
TESSOLV_API int zoom(dense2D<double>& pos, const vector_fixed<double, 3>& centre, double factor,
                     const dense2D<unsigned int>& connect);

/// Enlarges the box [min, max] so that it holds every node. The box is never reset: start with min = +infinity and
/// max = -infinity, or go on with an earlier box. A NaN coordinate leaves its direction as it was.
/// <!-- preamble: triangle -->
/// @code
/// // pos: (0, 0), (1, 0), (0, 1)
/// const double infinity = std::numeric_limits<double>::infinity();
/// vector_fixed<double, 2> min(infinity, infinity), max(-infinity, -infinity);
/// inc_bounding_box(pos, min, max);  // -> 0
/// min;                              // -> (0, 0)
/// max;                              // -> (1, 1)
/// @endcode
/// @param pos              exactly 2 rows in the 2-D form, 3 in the 3-D form; without columns the box stays.
/// @param[in,out] min,max  corners of the box, in the unit of `pos`; untouched on failure.
/// @return 0; -1 rows of `pos`.
/// @note One pass, no working storage. No shared state.
TESSOLV_API int inc_bounding_box(const dense2D<double>& pos, vector_fixed<double, 2>& min,
                                 vector_fixed<double, 2>& max);

/// The same for the listed nodes; NONE_INDEX in the list is skipped.
/// @return 0, at once for an empty list; -1 rows of `pos`; -2 another index that is no column of `pos`.
TESSOLV_API int inc_bounding_box(const dense2D<double>& pos, const dense1D<unsigned int>& nodes,
                                 vector_fixed<double, 2>& min, vector_fixed<double, 2>& max);

/// The same for the nodes of a connectivity. One that names no node at all gives 0 at once.
TESSOLV_API int inc_bounding_box(const dense2D<double>& pos, const dense2D<unsigned int>& connect,
                                 vector_fixed<double, 2>& min, vector_fixed<double, 2>& max);

/// The three forms in 3-D.
TESSOLV_API int inc_bounding_box(const dense2D<double>& pos, vector_fixed<double, 3>& min,
                                 vector_fixed<double, 3>& max);
/// The same for the listed nodes.
TESSOLV_API int inc_bounding_box(const dense2D<double>& pos, const dense1D<unsigned int>& nodes,
                                 vector_fixed<double, 3>& min, vector_fixed<double, 3>& max);
/// The same for the nodes of a connectivity.
TESSOLV_API int inc_bounding_box(const dense2D<double>& pos, const dense2D<unsigned int>& connect,
                                 vector_fixed<double, 3>& min, vector_fixed<double, 3>& max);

/// Appends to `out` the elements that lie on the positive side of a plane with all their nodes: (P - C) . N > 0. A node
/// on the plane is outside. Elements are kept or dropped whole, whatever their type, and keep their order.
/// <!-- preamble: square -->
/// @code
/// // pos: (0, 0), (1, 0), (1, 1), (0, 0), (1, 1), (0, 1); connect: the triangles (0, 1, 2) and (3, 4, 5)
/// dense2D<unsigned> out;
/// clip(pos, connect, vector_fixed<double, 3>(-0.5, 0, 0), vector_fixed<double, 3>(1, -1, 0), out);  // -> 0
/// out;                                                                                              // -> (0, 1, 2)
/// @endcode
/// @param pos      2 or 3 x nodes; what it does not have of (P - C) counts as 0, rows beyond the third are ignored.
/// @param connect  nodes x elements of any type. NONE_INDEX entries are skipped: an element of nothing else is kept.
/// @param C,N      a point of the plane and its normal, which need not have unit length.
/// @param[in,out] out  as many rows as `connect`, or empty; may be `connect` itself. Kept columns come behind those
///                     that it has; untouched when `connect` is empty and on failure.
/// @return 0; -2 an index; -4 N shorter than 1e-12; -5 rows of `out`; -199 memory.
/// @note One pass over the elements; working storage of two bytes per node; room for all elements is reserved in `out`
///       once. No shared state.
TESSOLV_API int clip(const dense2D<double>& pos, const dense2D<unsigned int>& connect, const vector_fixed<double, 3>& C,
                     const vector_fixed<double, 3>& N, dense2D<unsigned int>& out);

}  // namespace tessolv
}  // namespace zeb

#endif
