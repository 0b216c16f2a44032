#ifndef TESSOLV_SPATIAL_H
#define TESSOLV_SPATIAL_H

#include <tessolv/core.h>

/// \file
/// Search of nodes by position, and merging of nodes that lie close together.

namespace zeb {
namespace tessolv {

template <int D>
class kd_tree;

/// Finds nodes by position: the node closest to a point or to another node, and the nodes in a box. A detector holds
/// the numbers of nodes in a k-d tree, 2-D or 3-D by the rows of the coordinates. The coordinates stay the host's: the
/// matrix object must outlive the detector and what is in it stay unchanged, but columns may be appended to it and
/// inserted later. Nodes that are no columns any more, of a matrix that was made smaller, are not found.
///
/// The tree takes shape by the order of insertion, which is a fixed shuffling of the given one. So the same coordinates
/// and lists give the same tree, and equally close nodes are decided alike in every run.
/// <!-- preamble: square -->
/// @code
/// // pos: (0, 0), (1, 0), (1, 1), (0, 0), (1, 1), (0, 1)
/// const node_detector detector(pos);
/// detector.find_closest(vector_fixed<double, 2>(0.9, 0.2));  // -> 1
/// dense1D<unsigned> found;
/// detector.find_in_box(vector_fixed<double, 2>(-0.5, 0.5), vector_fixed<double, 2>(0.5, 1.5), found);
/// found;                                                     // -> (5)
/// @endcode
/// @note Building is O(n log n) expected, a query O(log n) expected. Queries need no memory, except for the growth of
///       the list of find_in_box, and may run at the same time as long as nobody inserts. A detector holds about 34
///       bytes a node of a mesh in space, 30 in the plane, more where many nodes coincide. No shared state.
class TESSOLV_API node_detector {
public:
    /// No tree: nothing is found and nothing can be inserted.
    node_detector();

    /// As default construction and assignment.
    node_detector(const node_detector& other);

    /// As default construction and reinit with the same arguments, whose code is dropped: where it fails there is no
    /// tree.
    node_detector(const dense2D<double>& pos);
    /// Over the listed nodes.
    node_detector(const dense2D<double>& pos, const dense1D<unsigned int>& nodes);
    /// Over the nodes of one matrix.
    node_detector(const dense2D<double>& pos, const dense2D<unsigned int>& connect);
    /// Over the nodes of the matrices of [first, last).
    node_detector(const dense2D<double>& pos, const dense2D<unsigned int>* first, const dense2D<unsigned int>* last);

    ~node_detector();

    /// A tree of its own with the same records over the same matrix object. No tree if there is no memory.
    node_detector& operator=(const node_detector& other);

    /// Back to no tree.
    void clear();

    /// Number of insertions that the tree holds; a node that was inserted twice counts twice.
    unsigned long size() const;

    /// Inserts nodes. NONE_INDEX and other numbers that are no columns of the coordinates are passed over; a node that
    /// is in the tree already is inserted once more.
    /// @param nodes  node numbers, in the order that is shuffled.
    /// @return how many were inserted; 0 without a tree. Less than the valid ones only without memory.
    /// @note O(k log n) for k nodes, expected. Nodes inserted one by one in ascending positions make a deep tree: pass
    ///       them in one list. A few nodes inserted into a large tree make its queries several times slower, since the
    ///       grid that answers most of them is then left aside; reinit with all nodes brings it back.
    unsigned long insert(const dense1D<unsigned int>& nodes);
    /// The nodes of a matrix, each once, in the order in which they are met column by column.
    unsigned long insert(const dense2D<unsigned int>& connect);

    /// The node with the least Euclidean distance from P. Of equally close ones it is the first on the way that P would
    /// take into the tree itself (there the squares are compared); if none of them is on it, the first in the order of
    /// the search, which follows the side of P first.
    /// @param P  in a 3-D tree its z is 0.
    /// @return node number; 4294967295 if there is no tree or no node at a finite distance from P.
    unsigned long find_closest(const vector_fixed<double, 2>& P) const;
    /// The same; a 2-D tree ignores z.
    unsigned long find_closest(const vector_fixed<double, 3>& P) const;
    /// The same for the position of a node, whether it was inserted or not; the node itself is passed over in every
    /// copy.
    /// @return node number; 4294967295 if there is no other node or `node` is no column of the coordinates.
    unsigned long find_closest(unsigned int node) const;

    /// Appends the nodes with Pmin <= position <= Pmax in every coordinate, a node once for each insertion. The order
    /// follows from the tree: right subtree, left subtree, the record itself; it is not sorted.
    /// @param Pmin, Pmax       corners; in a 3-D tree both have z = 0, so that only nodes with z exactly 0 are found.
    /// @param[in,out] nodes    not cleared. A node for which the list finds no memory is lost, the others are appended.
    void find_in_box(const vector_fixed<double, 2>& Pmin, const vector_fixed<double, 2>& Pmax,
                     dense1D<unsigned int>& nodes) const;
    /// The same; a 2-D tree ignores z.
    void find_in_box(const vector_fixed<double, 3>& Pmin, const vector_fixed<double, 3>& Pmax,
                     dense1D<unsigned int>& nodes) const;

    /// Builds the tree anew over all columns. What was there before is given up first, also on failure.
    /// @param pos  2 or 3 x nodes, referred to from now on.
    /// @return 0; -1 rows of `pos`; -199 memory.
    int reinit(const dense2D<double>& pos);

    /// Builds the tree anew over the listed nodes. On failure the detector stays as it was.
    /// @param pos    2 or 3 x nodes, referred to from now on.
    /// @param nodes  node numbers; NONE_INDEX is passed over, a repeated node is inserted as often.
    /// @return 0; -1 rows of `pos`; -2 an entry of `nodes` that is neither a column of `pos` nor NONE_INDEX; -199
    ///         memory.
    int reinit(const dense2D<double>& pos, const dense1D<unsigned int>& nodes);
    /// Over the nodes of one matrix, each once, in the order in which they are met column by column.
    int reinit(const dense2D<double>& pos, const dense2D<unsigned int>& connect);
    /// Over the nodes of the matrices of [first, last).
    /// @return 0; -3 last before first; then -1, -2, -199 as above.
    int reinit(const dense2D<double>& pos, const dense2D<unsigned int>* first, const dense2D<unsigned int>* last);

private:
    kd_tree<2>* tree2_ = nullptr;
    kd_tree<3>* tree3_ = nullptr;
};

/// @name Merging
/// Nodes with a NaN coordinate are merged with nothing, and may hide others: a search tree stops at them. Every form is
/// O(n log n) expected, also for coincident nodes and for tolerances that all nodes are within, unless it says
/// otherwise. Results repeat from run to run. No shared state.
/// @{

/// Merges nodes of one list into nodes of another: a node of `nodes2` that lies within the tolerance of a node of
/// `nodes1` is replaced by it. The nodes of `nodes1` are visited in their order. Each collects the nodes of `nodes2` in
/// the box of half-width `tolerance` around it; a single one is passed over. Pairs with those, other than itself, whose
/// distance (Euclidean, not squared) is at most the tolerance are applied closest first, rounded to float for this
/// order, equally close ones as they were visited: of a pair whose nodes are both free, the visiting one stays.
/// @param pos             2 or 3 x nodes, only read.
/// @param nodes1, nodes2  node numbers; may be one list.
/// @param[out] new_IDs    one entry per column of `pos`: itself if kept, else the node it was merged into. For nodes
///                        that are not in `nodes1` this is the visiting node of the pair, which may have been merged
///                        itself later on. Empty when the result is negative, when `pos` has no column and when a list
///                        is empty. May be one of the lists.
/// @param tolerance       in the unit of `pos`; may be infinite.
/// @return number of merged nodes; 0 whenever `pos` has no column; -1 rows of `pos`; -4 tolerance negative or NaN; 0
///         for an empty list; -2 a node that is no column of `pos` (NONE_INDEX too); -199 memory.
TESSOLV_API int merge(const dense2D<double>& pos, const dense1D<unsigned int>& nodes1,
                      const dense1D<unsigned int>& nodes2, dense1D<unsigned int>& new_IDs, double tolerance);
/// The same with one list for both.
TESSOLV_API int merge(const dense2D<double>& pos, const dense1D<unsigned int>& nodes, dense1D<unsigned int>& new_IDs,
                      double tolerance);

/// Makes one node stand for coincident nodes and renumbers the matrices of [first, last) in place, through views and
/// shared buffers. Pairs at a distance (Euclidean, not squared, bound included) of at most `tolerance` are applied
/// closest first, rounded to float for this order; of a pair whose nodes are both free, the one visited first (matrix,
/// column, row) stays. `pos` keeps all its columns: see simplify.
/// <!-- preamble: square -->
/// @code
/// // pos: (0, 0), (1, 0), (1, 1), (0, 0), (1, 1), (0, 1); connect: the triangles (0, 1, 2) and (3, 4, 5)
/// dense1D<unsigned> new_IDs;
/// merge(pos, connect, new_IDs, 1e-9);  // -> 2
/// new_IDs;                             // -> (0, 1, 2, 0, 2, 5)
/// connect;                             // -> (0, 1, 2) (0, 2, 5)
/// @endcode
/// @param pos           2 or 3 x nodes, only read.
/// @param first, last   connectivity matrices of any rows; NONE_INDEX is no node. Unchanged when the result is
///                      negative.
/// @param[out] new_IDs  one entry per column of `pos`: itself if kept, else the node that stays. Empty when the result
///                      is negative, when `pos` has no column and when the matrices have no node.
/// @param tolerance     in the unit of `pos`; may be infinite. Modes 1 and 2 round a distance to float before they
///                      compare.
/// @param mode          0 any two nodes; 1 two nodes of one column, one pass; 2 as 1, repeated over the renumbered
///                      matrices until a pass merges nothing.
/// @return number of merged nodes; 0 whenever `pos` has no column; -1 rows of `pos`; -3 last before first; -5 tolerance
///         negative or NaN; -6 mode; -2 a node that is no column of `pos`; -199 memory.
/// @note Modes 1 and 2 compare all rows of a column with each other.
TESSOLV_API int merge(const dense2D<double>& pos, dense2D<unsigned int>* first, dense2D<unsigned int>* last,
                      dense1D<unsigned int>& new_IDs, double tolerance, unsigned int mode = 0);
/// The same for one matrix.
TESSOLV_API int merge(const dense2D<double>& pos, dense2D<unsigned int>& connect, dense1D<unsigned int>& new_IDs,
                      double tolerance, unsigned int mode = 0);
/// The same for two matrices, which get new buffers unless the result is negative.
TESSOLV_API int merge(const dense2D<double>& pos, dense2D<unsigned int>& connect1, dense2D<unsigned int>& connect2,
                      dense1D<unsigned int>& new_IDs, double tolerance, unsigned int mode = 0);
/// The same for a range, without the list of new numbers.
TESSOLV_API int merge(const dense2D<double>& pos, dense2D<unsigned int>* first, dense2D<unsigned int>* last,
                      double tolerance, unsigned int mode = 0);
/// The same for one matrix.
TESSOLV_API int merge(const dense2D<double>& pos, dense2D<unsigned int>& connect, double tolerance,
                      unsigned int mode = 0);
/// The same for two matrices, which get new buffers unless the result is negative.
TESSOLV_API int merge(const dense2D<double>& pos, dense2D<unsigned int>& connect1, dense2D<unsigned int>& connect2,
                      double tolerance, unsigned int mode = 0);
/// The same for one matrix with the tolerance 1e-6, mode 0.
TESSOLV_API int merge(const dense2D<double>& pos, dense2D<unsigned int>& connect);
/// The same for two matrices, which get new buffers unless the result is negative.
TESSOLV_API int merge(const dense2D<double>& pos, dense2D<unsigned int>& connect1, dense2D<unsigned int>& connect2);

/// Moves nodes that lie within the tolerance of another one onto it, chosen as above with all columns in their order as
/// one list. No column is removed.
/// @param[in,out] pos   2 or 3 x nodes, given a new buffer; a merged column takes the coordinates of the node that
///                      stays. Untouched when the result is negative.
/// @param[out] new_IDs  one entry per column: itself if kept, else the node that stays. Empty when the result is
///                      negative and when `pos` has no column.
/// @param tolerance     in the unit of `pos`; may be infinite.
/// @return number of merged nodes; 0 whenever `pos` has no column; -1 rows of `pos`; -3 tolerance negative or NaN; -199
///         memory.
TESSOLV_API int merge(dense2D<double>& pos, dense1D<unsigned int>& new_IDs, double tolerance);
/// The same without the list of new numbers.
TESSOLV_API int merge(dense2D<double>& pos, double tolerance);
/// @}

}  // namespace tessolv
}  // namespace zeb

#endif
