#include <tessolv/editing.h>

#include "core/mesh_range.h"
#include "core/return_codes.h"
#include "editing/append_columns.h"

namespace zeb::tessolv {
namespace {

template <class T>
int append_range(dense2D<T>& A, const dense2D<T>* first, const dense2D<T>* last, row_rule rule)
{
    const matrix_range<const dense2D<T>> matrices{first, last};
    if (matrices.reversed()) return bad_argument(2);  // `first` is blamed: part of the interface
    const auto rows = common_rows(A, matrices, rule);
    if (!rows) return bad_argument(1);
    return append_whole(A, *rows, matrices) ? success : out_of_memory;
}

template <class T>
int append_list(dense2D<T>& A, const dense2D<T>& B, const dense1D<unsigned int>& cols)
{
    if (cols.empty()) return success;
    if (!A.empty() && A.rows != B.rows) return bad_argument(1);
    if (!are_columns_of(B, cols)) return bad_argument(3);
    return append_selected(A, B, cols) ? success : out_of_memory;
}

}  // namespace

int append(dense2D<double>& A, const dense2D<double>& B, const dense1D<unsigned int>& cols)
{
    return append_list(A, B, cols);
}

int append(dense2D<unsigned int>& A, const dense2D<unsigned int>& B, const dense1D<unsigned int>& cols)
{
    return append_list(A, B, cols);
}

// Coordinates without nodes have a dimension all the same, connectivities without elements fit everywhere.
int append(dense2D<double>& A, const dense2D<double>* first, const dense2D<double>* last)
{
    return append_range(A, first, last, row_rule::of_every_matrix);
}

int append(dense2D<unsigned int>& A, const dense2D<unsigned int>* first, const dense2D<unsigned int>* last)
{
    return append_range(A, first, last, row_rule::of_matrices_with_entries);
}

int append(dense2D<double>& A, const dense2D<double>& B)
{
    return append(A, &B, &B + 1);
}

int append(dense2D<unsigned int>& A, const dense2D<unsigned int>& B)
{
    return append(A, &B, &B + 1);
}

}  // namespace zeb::tessolv
