#ifndef TESSOLV_CORE_H
#define TESSOLV_CORE_H

#include <zeb/dense1D.h>
#include <zeb/dense2D.h>
#include <zeb/fixed.h>

#include <tessolv/element_type.h>

/// \file
/// Conventions of every operation. Coordinates are a dense2D<double>, one node per column, 2 or 3 rows. A connectivity
/// is a dense2D<unsigned int>, one element per column, corner vertices in the first rows. Indices start at 0.
///
/// The result of an operation is 0 or a count; -k when the k-th argument is not valid; -199 when memory ran out. Where
/// several checks fail the first in the listed order is reported. No function throws, prints, starts a thread or keeps
/// state, so all of them may run at the same time on data that share no buffer. Inputs are read as they were on entry,
/// also when an output is the same object.

namespace zeb {
namespace tessolv {

using zeb::dense1D;
using zeb::dense2D;
using zeb::dense_buffer;
using zeb::matrix_fixed;
using zeb::segment_iterator;
using zeb::symmetric_fixed;
using zeb::vector_fixed;

using zeb::element_type;
using zeb::NODES_PER_ELEMENT;
using zeb::NONE_INDEX;
using zeb::VERTICES_PER_ELEMENT;

using zeb::EL_NONE;
using zeb::EL_NODE;
using zeb::EL_EDGE_MIX;
using zeb::EL_EDGE2;
using zeb::EL_EDGE3;
using zeb::EL_FACE_MIX;
using zeb::EL_TRIA3;
using zeb::EL_QUAD4;
using zeb::EL_TRIA6;
using zeb::EL_QUAD8;
using zeb::EL_QUAD9;
using zeb::EL_SOLID_MIX;
using zeb::EL_TETRA4;
using zeb::EL_TETRA10;
using zeb::EL_PYRAMID5;
using zeb::EL_PYRAMID14;
using zeb::EL_WEDGE6;
using zeb::EL_WEDGE18;
using zeb::EL_HEXA8;
using zeb::EL_HEXA20;
using zeb::EL_HEXA27;

/// Version of the library: static text, never freed.
TESSOLV_API const char* version();

/// Whether every entry is NONE_INDEX or below n. True for an empty list.
/// @note Linear; stops soon after the first bad entry.
TESSOLV_API bool check_IDs(const dense1D<unsigned int>& ids, unsigned int n);

/// Whether every entry is NONE_INDEX or below n. True for an empty matrix.
TESSOLV_API bool check_IDs(const dense2D<unsigned int>& ids, unsigned int n);

/// Whether `connect` is a connectivity of its type: the rows are those of `type`, every node is below n, and NONE_INDEX
/// stands only where a mixed kind may have it. True for an empty matrix of any type.
/// <!-- preamble: two_tetrahedra -->
/// @code
/// // connect: the tetrahedra (0, 1, 2, 3) and (1, 2, 3, 4)
/// check_IDs(connect, EL_TETRA4, 5);          // -> true
/// check_IDs(connect, EL_TETRA4, 4);          // -> false
/// check_IDs(connect, EL_QUAD4, NONE_INDEX);  // -> true
/// check_IDs(connect, EL_TRIA3, NONE_INDEX);  // -> false
/// @endcode
/// @param connect  nodes x elements. Pure kinds: NODES_PER_ELEMENT rows, no NONE_INDEX. EL_FACE_MIX: 3 or 4 rows, a
///                 NONE_INDEX in row 3 makes a triangle. EL_SOLID_MIX: 4, 6 or 8 rows, a NONE_INDEX in row 4 makes a
///                 tetrahedron and in row 6 a wedge, whatever stands below it.
/// @param type     EL_NONE, EL_EDGE_MIX and values outside the enumeration have no matrix that is not empty.
/// @param n        number of nodes; NONE_INDEX to check shape and placement alone.
TESSOLV_API bool check_IDs(const dense2D<unsigned int>& connect, element_type type, unsigned int n);

}  // namespace tessolv
}  // namespace zeb

#endif
