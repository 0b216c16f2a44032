#ifndef TESSOLV_SPATIAL_TREE_RECORD_H
#define TESSOLV_SPATIAL_TREE_RECORD_H

#include <tessolv/element_type.h>

#include "spatial/point.h"

namespace zeb::tessolv {

// A node in a search tree. Depth k splits dimension k mod D at the coordinate c of its record: what is less than c lies
// on the left, what is equal or greater on the right. Links are positions in the table of records, NONE_INDEX where
// there is none.
template <int D>
struct tree_record {
    point<D> x;  // kept beside the links: a walk touches one piece of memory per record
    unsigned int node;
    unsigned int left;
    unsigned int right;
    unsigned int parent;
};

static_assert(sizeof(tree_record<2>) == 32 && sizeof(tree_record<3>) == 40);

template <int D>
constexpr int next_dimension(int d)
{
    return d + 1 < D ? d + 1 : 0;
}

template <int D>
constexpr int previous_dimension(int d)
{
    return d > 0 ? d - 1 : D - 1;
}

// Whether x goes to the left of a record at c. In this form a NaN on either side sends it to the right.
inline bool goes_left(double c, double x)
{
    return c > x;
}

}  // namespace zeb::tessolv

#endif
