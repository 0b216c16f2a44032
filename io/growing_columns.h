#ifndef TESSOLV_IO_GROWING_COLUMNS_H
#define TESSOLV_IO_GROWING_COLUMNS_H

#include <algorithm>

#include <zeb/dense2D.h>

namespace zeb::tessolv {

// Appends a column of `rows` values to a matrix that its reader builds alone, from nothing: no view, no other owner,
// columns of this length only. A full matrix gets twice its columns, at least 4. False, and nothing changed, without
// memory.
template <class T>
bool append_column(dense2D<T>& m, const T* values, std::uint64_t rows)
{
    const bool has_room = m.buffer != nullptr && m.buffer->capacity - m.size >= rows;
    if (!has_room && !m.reserve(rows, std::max(std::uint64_t{4}, 2 * m.cols))) return false;
    std::copy_n(values, rows, m.buffer->data + m.size);
    m.rows = m.ld = rows;
    m.size += rows;
    ++m.cols;
    return true;
}

}  // namespace zeb::tessolv

#endif
