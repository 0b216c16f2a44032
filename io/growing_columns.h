#ifndef TESSOLV_IO_GROWING_COLUMNS_H
#define TESSOLV_IO_GROWING_COLUMNS_H

#include <algorithm>

#include <zeb/dense2D.h>

namespace zeb::tessolv {

// Appends a column of `rows` values to a matrix that its reader builds alone, from nothing: no view, no other owner,
// columns of this length only. A full matrix gets expected() columns, if they are more than twice its own and there is
// memory for them; otherwise twice its columns, at least 4. False, and nothing changed, without memory.
template <class T, class Expected>
bool append_column(dense2D<T>& m, const T* values, std::uint64_t rows, Expected expected)
{
    const bool has_room = m.buffer != nullptr && m.buffer->capacity - m.size >= rows;
    if (!has_room) {
        const std::uint64_t wanted = expected();
        const bool has_grown = wanted > 2 * m.cols && m.reserve(rows, wanted);
        if (!has_grown && !m.reserve(rows, std::max(std::uint64_t{4}, 2 * m.cols))) return false;
    }
    std::copy_n(values, rows, m.buffer->data + m.size);
    m.rows = m.ld = rows;
    m.size += rows;
    ++m.cols;
    return true;
}

template <class T>
bool append_column(dense2D<T>& m, const T* values, std::uint64_t rows)
{
    return append_column(m, values, rows, [] { return std::uint64_t{0}; });
}

}  // namespace zeb::tessolv

#endif
