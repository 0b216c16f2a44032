#ifndef TESSOLV_IO_GROWING_COLUMNS_H
#define TESSOLV_IO_GROWING_COLUMNS_H

#include <algorithm>

#include <zeb/dense2D.h>

namespace zeb::tessolv {

// Provides room for `cols` columns of a matrix that its reader builds alone, from nothing: no view, no other owner.
template <class T>
bool reserve_columns(dense2D<T>& m, std::uint64_t rows, std::uint64_t cols)
{
    return m.reserve(rows, cols) && m.resize(rows, m.cols);
}

// Appends a column of `rows` values to such a matrix. A full one gets twice its columns, at least 4. False, and
// nothing changed, without memory.
template <class T>
bool append_column(dense2D<T>& m, const T* values, std::uint64_t rows)
{
    if (m.buffer == nullptr || m.buffer->capacity - m.size < rows) {
        if (!reserve_columns(m, rows, std::max(std::uint64_t{4}, 2 * m.cols))) return false;
    }
    std::copy_n(values, rows, m.buffer->data + m.size);
    m.size += rows;
    ++m.cols;
    return true;
}

}  // namespace zeb::tessolv

#endif
