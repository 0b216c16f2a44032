#ifndef TESSOLV_EDITING_H
#define TESSOLV_EDITING_H

#include <tessolv/core.h>

/// \file
/// Index lists and whole matrices: distinct indices, renumbering, matching, joining meshes and cleaning them up.
/// Every operation takes expected linear time in the entries that it is given, unless it says otherwise. Working
/// storage is freed on return.

namespace zeb {
namespace tessolv {

/// @name Distinct indices
/// @{

/// Appends the distinct values of `in` to `out` in the order of their first appearance, without NONE_INDEX and without
/// those of `exclude`.
/// @code
/// dense1D<unsigned> in, out;
/// for (const unsigned node : {7u, 2u, 7u, NONE_INDEX, 5u}) in.push_back(node);
/// unique_indices(out, in);  // -> 0
/// out;                      // -> (7, 2, 5)
/// @endcode
/// @param in, exclude  index lists; NONE_INDEX and any other value may stand in both.
/// @param[out] out     appended to. Values that it holds already are not looked at and can come twice. It may be `in`
///                     or `exclude`; where others look into its buffer, it moves to one of its own.
/// @return always 0; without memory `out` is as it was.
TESSOLV_API int unique_indices(dense1D<unsigned int>& out, const dense1D<unsigned int>& in,
                               const dense1D<unsigned int>& exclude);

/// The same; nothing is excluded.
TESSOLV_API int unique_indices(dense1D<unsigned int>& out, const dense1D<unsigned int>& in);

/// Appends the distinct indices of the matrices of [first, last) to `out`, without NONE_INDEX, in the order of their
/// first appearance: matrix after matrix, column after column, row after row. This is the order in which every
/// renumbering of the library counts.
/// @param first, last  connectivities of any rows; those without entries are passed over.
/// @param[out] out     appended to, room for one index per column is made first. Values that it holds already are not
///                     looked at. Where others look into its buffer, it moves to one of its own. Untouched on failure.
/// @return 0; -3 last before first; -199 memory.
/// @note Working storage goes by the number of entries, never by the largest index.
TESSOLV_API int unique_indices(dense1D<unsigned int>& out, const dense2D<unsigned int>* first,
                               const dense2D<unsigned int>* last);

/// The same for one matrix.
TESSOLV_API int unique_indices(dense1D<unsigned int>& out, const dense2D<unsigned int>& connect);

/// Number of distinct indices in the matrices of [first, last); NONE_INDEX does not count.
/// @return the number, at most INT_MAX; -2 last before first (not the -3 of unique_indices); -199 memory.
TESSOLV_API int count_unique_indices(const dense2D<unsigned int>* first, const dense2D<unsigned int>* last);

/// The same for one matrix.
TESSOLV_API int count_unique_indices(const dense2D<unsigned int>& connect);
/// @}

/// @name Renumbering
/// @{

/// Replaces every entry v of `ids` by new_IDs[v]. Entries that are no index of `new_IDs`, NONE_INDEX among them, stay.
/// <!-- preamble: square -->
/// @code
/// // connect: the triangles (0, 1, 2) and (3, 4, 5)
/// dense1D<unsigned> new_IDs(5, 9u);
/// new_IDs[0] = 6;
/// change_indices(connect, new_IDs);
/// connect;  // -> (6, 9, 9) (9, 9, 5)
/// @endcode
/// @param new_IDs      the new value of each index, NONE_INDEX allowed.
/// @param[in,out] ids  written in place: views and sharers of the buffer see it. It may be `new_IDs` or share its
///                     buffer; the table is read as it was on entry, and without memory for its copy nothing happens.
TESSOLV_API void change_indices(dense1D<unsigned int>& ids, const dense1D<unsigned int>& new_IDs);

/// The same for every entry of a matrix.
TESSOLV_API void change_indices(dense2D<unsigned int>& connect, const dense1D<unsigned int>& new_IDs);

/// Moves the value at position i to position perm[i], for every i that both lists have. A position that no entry of
/// `perm` names keeps its value.
/// @param[in,out] values  gets a buffer of its own; views and sharers of the old one see nothing. Unchanged without
///                        memory.
/// @param perm            not checked to be a permutation: of several entries that name one position the last wins, but
///                        an entry perm[i] = i never writes ((10, 20) by (1, 1) gives (10, 10)), nor does one that is
///                        no position of `values`. It may be `values`.
TESSOLV_API void permutation(dense1D<unsigned int>& values, const dense1D<unsigned int>& perm);

/// The same for numbers.
TESSOLV_API void permutation(dense1D<double>& values, const dense1D<unsigned int>& perm);
/// @}

/// @name Matching
/// @{

/// Finds the values of each of two lists in the other.
/// @param ids1, ids2     index lists, repetitions allowed.
/// @param[out] pos_in_1  one entry per entry of `ids2`, replaced: the last position in `ids1` of that value, or
///                       NONE_INDEX.
/// @param[out] pos_in_2  one entry per entry of `ids1`, replaced: the last position in `ids2` of that value; NONE_INDEX
///                       if there is none, and for every appearance in `ids1` of a value but the last.
/// @return 0; -199 memory, both outputs are then empty.
/// @note NONE_INDEX matches nothing. The outputs may be the inputs.
TESSOLV_API int get_IDs(const dense1D<unsigned int>& ids1, const dense1D<unsigned int>& ids2,
                        dense1D<unsigned int>& pos_in_1, dense1D<unsigned int>& pos_in_2);

/// Finds the elements (columns) of each of two connectivities in the other.
/// <!-- preamble: square -->
/// @code
/// // connect: the triangles (0, 1, 2) and (3, 4, 5)
/// dense2D<unsigned> turned(3, 1);
/// turned(0, 0) = 5, turned(1, 0) = 4, turned(2, 0) = 3;
/// dense1D<unsigned> pos_in_1, pos_in_2;
/// get_IDs(connect, turned, pos_in_1, pos_in_2, false);  // -> 0
/// pos_in_1;                                             // -> (1)
/// pos_in_2;                                             // -> (NONE_INDEX, 0)
/// @endcode
/// @param connect1, connect2  of the same rows.
/// @param[out] pos_in_1       one entry per column of `connect2`, replaced: the last column of `connect1` that matches,
///                            or NONE_INDEX.
/// @param[out] pos_in_2       one entry per column of `connect1`, replaced: the last column of `connect2` that matches,
///                            or NONE_INDEX.
/// @param strict              true: columns match when they are equal. False: also when one is a cyclic rotation of the
///                            other or of its reverse, so that faces match from either side. NONE_INDEX is an entry
///                            like others.
/// @return 0; -2 the rows differ; -199 memory. On failure both outputs are empty.
/// @note Columns without rows all match. The outputs may share buffers with the inputs.
TESSOLV_API int get_IDs(const dense2D<unsigned int>& connect1, const dense2D<unsigned int>& connect2,
                        dense1D<unsigned int>& pos_in_1, dense1D<unsigned int>& pos_in_2, bool strict);
/// @}

/// @name Joining matrices
/// @{

/// Appends the columns cols[0], cols[1], ... of B to A; repetitions are copied again. Nothing happens for an empty
/// `cols`, whatever A and B are.
/// <!-- preamble: triangle -->
/// @code
/// // pos: (0, 0), (1, 0), (0, 1)
/// dense2D<double> all;
/// append(all, pos);                            // -> 0
/// append(all, pos, dense1D<unsigned>(2, 1u));  // -> 0
/// all;                                         // -> (0, 0) (1, 0) (0, 1) (1, 0) (1, 0)
/// @endcode
/// @param B, cols    the source and the numbers of its columns.
/// @param[in,out] A  when it is empty it takes the rows of B, and columns that it had without rows become columns of
///                   zeros. It grows in its buffer where it is the only one who looks into it, otherwise it moves to
///                   one of its own. It may be B. Untouched on failure.
/// @return 0; -1 A has entries and other rows than B; -3 a column that B does not have; -199 memory.
TESSOLV_API int append(dense2D<double>& A, const dense2D<double>& B, const dense1D<unsigned int>& cols);

/// The same for connectivities.
TESSOLV_API int append(dense2D<unsigned int>& A, const dense2D<unsigned int>& B, const dense1D<unsigned int>& cols);

/// Appends all columns of the matrices of [first, last) to A.
/// @param first, last  the matrices, all of the rows of A.
/// @param[in,out] A    when it has no rows it takes those of the first matrix that has some, and columns that it had
///                     become columns of zeros. It grows as above and may be one of the matrices. Untouched on failure.
/// @return 0; -2 last before first; -1 a matrix has other rows than A, also if it is empty: coordinates without nodes
///         have a dimension all the same; -199 memory.
TESSOLV_API int append(dense2D<double>& A, const dense2D<double>* first, const dense2D<double>* last);

/// The same for connectivities, but matrices without entries are passed over: their rows are neither compared nor
/// taken.
TESSOLV_API int append(dense2D<unsigned int>& A, const dense2D<unsigned int>* first, const dense2D<unsigned int>* last);

/// The same for one matrix.
TESSOLV_API int append(dense2D<double>& A, const dense2D<double>& B);

/// The same for one connectivity.
TESSOLV_API int append(dense2D<unsigned int>& A, const dense2D<unsigned int>& B);
/// @}

/// @name Cleaning up meshes
/// @{

/// Drops the nodes that no element of [first, last) uses and renumbers the others in the order of their first use (see
/// unique_indices). When every node is used nothing is renumbered, whatever the order.
/// <!-- preamble: square -->
/// @code
/// // pos: (0, 0), (1, 0), (1, 1), (0, 0), (1, 1), (0, 1); connect: the triangles (0, 1, 2) and (3, 4, 5)
/// dense2D<unsigned> second = connect.sub_matrix(0, 1, 3, 1);
/// simplify(pos, second);  // -> 3
/// second;                 // -> (0, 1, 2)
/// pos;                    // -> (0, 0) (1, 1) (0, 1)
/// @endcode
/// @param[in,out] pos          one column per node, any rows; gets a buffer of its own if nodes are dropped, of no
///                             column if no node is used at all.
/// @param[in,out] first, last  renumbered in place: views and sharers of the buffers see it. The matrices may share
///                             entries with one another.
/// @param[out] new_IDs         replaced: one entry per old node, its new number or NONE_INDEX; the identity when every
///                             node is used. Empty on failure and for an empty range.
/// @return the number of nodes that are left, at most INT_MAX; 0 when nothing changed: the range is empty or every node
///         is used; 0 also when no node is used; -3 last before first; -2 an index beyond `pos`; -199 memory. On
///         failure `pos` and the matrices are untouched.
TESSOLV_API int simplify(dense2D<double>& pos, dense2D<unsigned int>* first, dense2D<unsigned int>* last,
                         dense1D<unsigned int>& new_IDs);

/// The same for one matrix.
TESSOLV_API int simplify(dense2D<double>& pos, dense2D<unsigned int>& connect, dense1D<unsigned int>& new_IDs);

/// The same for one matrix, without the new numbers.
TESSOLV_API int simplify(dense2D<double>& pos, dense2D<unsigned int>& connect);

/// The same without the new numbers.
TESSOLV_API int simplify(dense2D<double>& pos, dense2D<unsigned int>* first, dense2D<unsigned int>* last);

/// Copies elements together with their nodes: `pos` grows by the nodes that `connect_src` uses, in the order of their
/// first use, or by all its nodes in their order when all are used; `connect` becomes `connect_src` on these new nodes.
/// @param[in,out] pos   grows in its buffer where it is the only one who looks into it, otherwise it moves to one of
///                      its own.
/// @param connect_src   elements on the nodes of `pos`; NONE_INDEX allowed.
/// @param[out] connect  replaced; it may be `connect_src`. NONE_INDEX stays.
/// @return 0; -3 an index of `connect_src` beyond `pos`; -199 memory. On failure both outputs are untouched.
TESSOLV_API int copy_mesh(dense2D<double>& pos, dense2D<unsigned int>& connect,
                          const dense2D<unsigned int>& connect_src);

/// Drops the elements that use a node twice, in any two rows; a repeated NONE_INDEX does not count.
/// @param[in,out] connect  the elements that stay move up in place, in their order: views and sharers of the buffer see
///                         it.
/// @param[out] new_IDs     replaced: one entry per old element, its new column or NONE_INDEX if it was dropped.
/// @return the number of dropped elements, at most INT_MAX; -199 memory, nothing is touched then.
/// @note Linear in the elements, n log n in the rows.
TESSOLV_API int remove_degenerated(dense2D<unsigned int>& connect, dense1D<unsigned int>& new_IDs);
/// @}

}  // namespace tessolv
}  // namespace zeb

#endif
