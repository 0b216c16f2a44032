#ifndef TESSOLV_SPATIAL_DEEP_INDEX_H
#define TESSOLV_SPATIAL_DEEP_INDEX_H

#include <array>

#include <zeb/dense1D.h>

#include "core/scratch.h"
#include "spatial/balanced_tree.h"
#include "spatial/tree_record.h"

namespace zeb::tessolv {

// Answers the queries of a tree that is too deep to be walked: coincident nodes hang below one another, for instance.
// Nodes are found in a balanced tree of the distinct positions. The walk is not taken, but its outcome is known from
// where the records stand:
// - The hits in a box come in descending order of the records, which are in preorder.
// - Of equally close nodes it is one on the way of the point into the tree, whose cells the point lies in. If none is
//   on it, it is the one that is visited first: the ancestor of the other, or the one on the side of the point where
//   their paths part.
// - Of the records at one position each is an ancestor of the later ones, so the first stands for all.
template <int D>
class deep_index {
public:
    using table = tree_table<D>;

    // For a table in preorder that is not empty. False without memory, and nothing has changed.
    [[nodiscard]] bool build(const table& records);

    // Number of records it was built for.
    std::size_t size() const { return paths_.size(); }

    // As the functions of kd_tree, for the table it was built for.
    unsigned int find_closest(const table& records, const point<D>& P, unsigned int excluded) const;
    void find_in_box(const table& records, const box<D>& b, dense1D<unsigned int>& nodes) const;

private:
    // Where a record stands in the tree.
    struct path {
        unsigned int end;    // of its subtree
        unsigned int depth;  // of the record
        unsigned int jump;   // an ancestor, so chosen that log2(n) jumps and steps lead to any other
        bool is_hidden;      // below a NaN that is split
        // The ancestors whose coordinates bound its cell, NONE_INDEX where there is no bound.
        std::array<unsigned int, D> lower;
        std::array<unsigned int, D> upper;
    };
    // The records at one position.
    struct place {
        unsigned int first;
        unsigned int second;  // the first one of another node, NONE_INDEX if there is none
        unsigned int begin;   // of those that boxes find, in shown_
        unsigned int end;
    };

    bool trace_paths(const table& records);
    path path_to(const table& records, unsigned int r) const;
    bool gather_places(const table& records);
    bool add_place(const table& records, const unsigned int* begin, const unsigned int* end);
    bool is_on_way(const table& records, unsigned int r, const point<D>& P) const;
    unsigned int preferred(const table& records, unsigned int a, unsigned int b, const point<D>& P) const;

    scratch<path> paths_;
    scratch<place> places_;
    scratch<unsigned int> shown_;
    balanced_tree<D> tree_;  // of the places
};

extern template class deep_index<2>;
extern template class deep_index<3>;

}  // namespace zeb::tessolv

#endif
