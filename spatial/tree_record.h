#ifndef TESSOLV_SPATIAL_TREE_RECORD_H
#define TESSOLV_SPATIAL_TREE_RECORD_H

#include <tessolv/element_type.h>

#include "core/scratch.h"
#include "spatial/point.h"

namespace zeb::tessolv {

// A node in a search tree. Depth k splits dimension k mod D at the coordinate c of its record: what is less than c lies
// on the left, what is equal or greater on the right. Links are positions in the table of records, NONE_INDEX where
// there is none.
struct tree_record {
    unsigned int node;
    unsigned int left;
    unsigned int right;
    unsigned int parent;
};

// The records of a search tree over columns of a matrix, which has the coordinates.
template <int D>
class tree_table : public scratch<tree_record> {
public:
    explicit tree_table(const dense2D<double>& pos) : pos_(&pos) {}

    const dense2D<double>& matrix() const { return *pos_; }

    // Position of a record whose node is a column of the matrix.
    point<D> x(std::size_t record) const { return position_of<D>(*pos_, (*this)[record].node); }

private:
    const dense2D<double>* pos_;
};

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
