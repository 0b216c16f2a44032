#ifndef TESSOLV_CORE_COLUMNS_H
#define TESSOLV_CORE_COLUMNS_H

#include <algorithm>
#include <cstdint>

#include <zeb/dense2D.h>

#include <tessolv/element_type.h>

#include "core/index_runs.h"

namespace zeb::tessolv {

// The entries of column j of a matrix that is not empty, whatever its ld and offset.
template <class T>
T* column(dense2D<T>& m, std::uint64_t j)
{
    return m.buffer->data + (m.offset + m.ld * j);
}

template <class T>
const T* column(const dense2D<T>& m, std::uint64_t j)
{
    return m.buffer->data + (m.offset + m.ld * j);
}

// Calls visit(first entry, number of entries) over the runs of contiguous entries that make up a matrix: one for a
// compact matrix, otherwise one per column.
template <class Matrix, class Visit>
void for_each_run(Matrix& m, Visit visit)
{
    if (m.rows * m.cols == 0) return;
    if (m.ld == m.rows || m.cols == 1) {
        visit(column(m, 0), m.rows * m.cols);
        return;
    }
    for (std::uint64_t j = 0; j < m.cols; ++j) visit(column(m, j), m.rows);
}

// Entries that name nothing.
inline std::uint64_t missing_in(const dense2D<unsigned int>& m)
{
    std::uint64_t found = 0;
    for_each_run(m, [&](const unsigned int* run, std::uint64_t count) { found += missing_in_run(run, count); });
    return found;
}

// Nodes of one element of a mixed kind: the entries before the first NONE_INDEX.
inline std::uint64_t valid_nodes(const unsigned int* nodes, std::uint64_t rows)
{
    return static_cast<std::uint64_t>(std::find(nodes, nodes + rows, NONE_INDEX) - nodes);
}

}  // namespace zeb::tessolv

#endif
