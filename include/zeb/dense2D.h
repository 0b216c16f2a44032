#ifndef ZEB_DENSE2D_H
#define ZEB_DENSE2D_H

#include <zeb/dense1D.h>

namespace zeb {

/// A column-major matrix over a counted buffer. Entry (i, j) is buffer->data[ld * j + offset + i]. Views (col,
/// sub_matrix) and shallow copies share the buffer and see each other's writes; copies are deep and compact.
/// A matrix is empty when rows x cols is 0. Access is not checked. The fields are public: loops may work on them
/// directly.
/// @code
/// dense2D<double> pos(2, 3, 0.0);  // three nodes in the plane
/// pos(0, 1) = 1;                   // x of node 1
/// pos.col(2)[1] = 4;               // y of node 2, through a view
/// pos;         // -> (0, 0) (1, 0) (0, 4)
/// dense2D<double> shared, copy(pos);
/// shared.shallow_copy(pos);
/// shared(0, 0) = 7;
/// pos(0, 0);   // -> 7
/// copy(0, 0);  // -> 0
/// @endcode
template <class T>
class dense2D {
public:
    dense_buffer<T>* buffer = nullptr;  ///< null when nothing was ever stored
    std::uint64_t size = 0;             ///< rows x cols
    std::uint64_t offset = 0;           ///< index in the buffer of entry (0, 0)
    std::uint64_t rows = 0;             ///< entries of a column
    std::uint64_t cols = 0;             ///< number of columns
    std::uint64_t ld = 0;               ///< distance in the buffer from (i, j) to (i, j + 1), at least rows

    /// 0 x 0, without a buffer.
    dense2D() noexcept = default;

    /// rows x cols entries of unspecified value; empty when there is no memory.
    dense2D(std::uint64_t row_count, std::uint64_t col_count) noexcept { resize(row_count, col_count); }

    /// rows x cols entries of one value; empty when there is no memory.
    dense2D(std::uint64_t row_count, std::uint64_t col_count, const T& value) noexcept
    {
        resize(row_count, col_count, value);
    }

    /// Deep, compact copy; empty when there is no memory.
    dense2D(const dense2D& other) noexcept { copy(other); }

    /// Takes over what `other` looks into, view or not, and leaves it empty.
    dense2D(dense2D&& other) noexcept { swap(other); }

    /// Gives its reference back; the last container that looks into a buffer frees it.
    ~dense2D() { detail::release(buffer); }

    /// Deep and compact; the target stays as it was when there is no memory.
    dense2D& operator=(const dense2D& other) noexcept
    {
        copy(other);
        return *this;
    }

    /// Steals from the only owner of a whole block; otherwise copies, so that no view is handed on unnoticed.
    dense2D& operator=(dense2D&& other) noexcept
    {
        if (other.offset == 0 && other.ld == other.rows && detail::has_one_owner(other.buffer)) {
            dense2D taken(std::move(other));
            swap(taken);
        } else {
            copy(other);
        }
        return *this;
    }

    /// @name Entries
    /// @{

    /// Entry (i, j): row i of column j; not checked.
    T& operator()(std::uint64_t i, std::uint64_t j) noexcept { return buffer->data[ld * j + offset + i]; }
    const T& operator()(std::uint64_t i, std::uint64_t j) const noexcept { return buffer->data[ld * j + offset + i]; }
    /// @}

    /// Whether rows x cols is 0.
    bool empty() const noexcept { return rows * cols == 0; }

    /// 0 x 0; the buffer stays.
    void clear() noexcept { size = rows = cols = 0; }

    /// Sets the shape. The common top-left block is kept, other entries are unspecified. A smaller matrix of the same
    /// rows stays where it is; growing, or changing the rows, with other owners around moves this matrix to a buffer
    /// of its own. Losing rows in place keeps ld. False, and nothing changed, without memory or beyond 64 bits.
    bool resize(std::uint64_t row_count, std::uint64_t col_count) noexcept
    {
        std::uint64_t count = 0;
        if (!detail::multiply(row_count, col_count, count)) return false;
        const bool fits = count == 0 || (row_count == rows && col_count <= cols) ||
                          (detail::has_one_owner(buffer) && fits_in_place(row_count, col_count));
        if (!fits && !move_to_fresh(row_count, col_count, count)) return false;
        if (empty() || ld < row_count) ld = row_count;
        rows = row_count;
        cols = col_count;
        size = count;
        return true;
    }

    /// The same; new entries take `value`.
    bool resize(std::uint64_t row_count, std::uint64_t col_count, const T& value) noexcept
    {
        const std::uint64_t old_rows = !empty() ? rows : 0;
        const std::uint64_t old_cols = !empty() ? cols : 0;
        const T filling = value;  // `value` may lie in the block that is given up
        if (!resize(row_count, col_count)) return false;
        if (empty()) return true;
        for (std::uint64_t j = old_rows < rows ? 0 : old_cols; j < cols; ++j) {
            T* column = &(*this)(0, j);
            std::fill(column + (j < old_cols ? old_rows : 0), column + rows, filling);
        }
        return true;
    }

    /// Capacity for `col_count` columns of `row_count` entries; never shrinks, and the shape stays. Of a matrix with
    /// other owners the entries move to a buffer of its own. False, and nothing changed, without memory.
    bool reserve(std::uint64_t row_count, std::uint64_t col_count) noexcept
    {
        std::uint64_t count = 0;
        if (!detail::multiply(row_count, col_count, count)) return false;
        if (count <= size) return true;
        if (detail::has_one_owner(buffer)) {
            const std::uint64_t stride = !empty() && row_count == rows ? ld : row_count;
            std::uint64_t needed = 0;
            if (detail::multiply(stride, col_count, needed) && needed <= buffer->capacity &&
                offset <= buffer->capacity - needed)
                return true;
        }
        return move_to_fresh(rows, cols, std::max(count, size));
    }

    /// Appends a column. Capacity doubles, at least 4 columns. False, and nothing changed, when the matrix is not empty
    /// and has other rows, or without memory.
    bool push_back(const dense1D<T>& column) noexcept
    {
        if (!empty() && column.size != rows) return false;
        const dense1D<T> kept = column.sub_vector(0, column.size);  // `column` may be a view of this matrix
        const std::uint64_t held = buffer != nullptr && ld != 0 ? (buffer->capacity - offset) / ld : 0;
        if ((empty() || cols == held) && !reserve(kept.size, std::max(std::uint64_t{4}, 2 * cols))) return false;
        if (!resize(kept.size, cols + 1)) return false;
        if (!empty()) detail::copy_entries(&(*this)(0, cols - 1), kept.data(), rows);
        return true;
    }

    /// Deep, compact copy (ld = rows, offset 0) into a buffer of its own. False, and nothing changed, without memory.
    bool copy(const dense2D& other) noexcept
    {
        if (this == &other) return true;
        dense2D fresh;
        if (!fresh.resize(other.rows, other.cols)) return false;
        fresh.take_block(other, other.rows, other.cols);
        swap(fresh);
        return true;
    }

    /// Looks into the buffer of `other` from now on. Never fails.
    bool shallow_copy(const dense2D& other) noexcept
    {
        dense2D view = other.sub_matrix(0, 0, other.rows, other.cols);
        swap(view);
        return true;
    }

    /// View of column j.
    dense1D<T> col(std::uint64_t j) const noexcept
    {
        dense1D<T> view;
        detail::retain(buffer);
        view.buffer = buffer;
        view.size = rows;
        view.offset = offset + ld * j;
        return view;
    }

    /// View of `row_count` x `col_count` entries from (i0, j0) on.
    dense2D sub_matrix(std::uint64_t i0, std::uint64_t j0, std::uint64_t row_count,
                       std::uint64_t col_count) const noexcept
    {
        dense2D view;
        detail::retain(buffer);
        view.buffer = buffer;
        view.size = row_count * col_count;
        view.offset = offset + ld * j0 + i0;
        view.rows = row_count;
        view.cols = col_count;
        view.ld = ld;
        return view;
    }

    /// Exchanges what the two look into.
    void swap(dense2D& other) noexcept
    {
        std::swap(buffer, other.buffer);
        std::swap(size, other.size);
        std::swap(offset, other.offset);
        std::swap(rows, other.rows);
        std::swap(cols, other.cols);
        std::swap(ld, other.ld);
    }

    /// Same shape and equal entries.
    friend bool operator==(const dense2D& a, const dense2D& b) noexcept
    {
        if (a.rows != b.rows || a.cols != b.cols) return false;
        for (std::uint64_t j = 0; !a.empty() && j < a.cols; ++j)
            if (!std::equal(&a(0, j), &a(0, j) + a.rows, &b(0, j))) return false;
        return true;
    }
    /// Not equal.
    friend bool operator!=(const dense2D& a, const dense2D& b) noexcept { return !(a == b); }

private:
    // Whether the shape can be had in the block as it stands: an empty matrix is laid out anew, another keeps its ld.
    bool fits_in_place(std::uint64_t row_count, std::uint64_t col_count) const noexcept
    {
        const std::uint64_t stride = !empty() ? ld : row_count;
        std::uint64_t last_column = 0;
        if (row_count > stride || !detail::multiply(stride, col_count - 1, last_column)) return false;
        const std::uint64_t room = offset <= buffer->capacity ? buffer->capacity - offset : 0;
        return last_column <= room && row_count <= room - last_column;
    }

    // Moves the part that a matrix of row_count x col_count keeps to a buffer of its own with room for `capacity`
    // entries. The shape changes to the part that was kept.
    bool move_to_fresh(std::uint64_t row_count, std::uint64_t col_count, std::uint64_t capacity) noexcept
    {
        dense2D fresh;
        fresh.buffer = detail::make_buffer<T>(capacity);
        if (fresh.buffer == nullptr) return false;
        fresh.rows = !empty() ? std::min(rows, row_count) : rows;
        fresh.cols = !empty() ? std::min(cols, col_count) : cols;
        fresh.size = !empty() ? fresh.rows * fresh.cols : 0;
        fresh.ld = row_count;
        fresh.take_block(*this, fresh.rows, fresh.cols);
        swap(fresh);
        return true;
    }

    // Copies the top-left block of `other` to the same place here.
    void take_block(const dense2D& other, std::uint64_t row_count, std::uint64_t col_count) noexcept
    {
        if (row_count == 0 || col_count == 0) return;
        if (ld == row_count && other.ld == row_count) {
            detail::copy_entries(&(*this)(0, 0), &other(0, 0), row_count * col_count);
            return;
        }
        for (std::uint64_t j = 0; j < col_count; ++j) detail::copy_entries(&(*this)(0, j), &other(0, j), row_count);
    }
};

extern template class TESSOLV_API dense2D<unsigned int>;
extern template class TESSOLV_API dense2D<float>;
extern template class TESSOLV_API dense2D<double>;

}  // namespace zeb

#endif
