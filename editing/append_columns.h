#ifndef TESSOLV_EDITING_APPEND_COLUMNS_H
#define TESSOLV_EDITING_APPEND_COLUMNS_H

#include <algorithm>
#include <cstdint>
#include <optional>

#include <tessolv/core.h>

#include "core/columns.h"
#include "core/mesh_range.h"
#include "core/return_codes.h"

// Appending columns to a matrix, whatever its entries are. What is allowed and under which code a mismatch is reported
// belongs to the public functions.
namespace zeb::tessolv {

enum class row_rule { of_every_matrix, of_matrices_with_entries };

// The rows that the result of appending the matrices to A has: those of A, or of the first matrix with rows where A has
// none. Nothing when a matrix under the rule has others.
template <class T>
std::optional<std::uint64_t> common_rows(const dense2D<T>& A, const matrix_range<const dense2D<T>>& matrices,
                                         row_rule rule)
{
    const auto counts = [rule](const dense2D<T>& m) { return rule == row_rule::of_every_matrix || !m.empty(); };
    std::uint64_t rows = A.rows;
    for (const auto& m : matrices)
        if (rows == 0 && counts(m)) rows = m.rows;
    for (const auto& m : matrices)
        if (counts(m) && m.rows != rows) return std::nullopt;
    return rows;
}

// Whether every entry of `cols` names a column of m.
template <class T>
bool are_columns_of(const dense2D<T>& m, const dense1D<unsigned int>& cols)
{
    return std::all_of(cols.begin(), cols.end(), [n = as_bound(m.cols)](unsigned int j) { return j < n; });
}

// Room for `added` columns behind those of A; their entries are not set. Columns that A has without rows become columns
// of zeros. The room doubles where A has to move, so that appending part by part stays linear. False, and nothing
// changed, without memory.
template <class T>
bool extend_columns(dense2D<T>& A, std::uint64_t rows, std::uint64_t added)
{
    const std::uint64_t kept = A.cols;
    const std::uint64_t bare = A.rows == 0 ? kept : 0;
    if (added > ~kept) return false;
    const std::uint64_t held = A.buffer != nullptr && A.ld != 0 ? (A.buffer->capacity - A.offset) / A.ld : 0;
    // Without memory for twice the columns the exact number may still be had.
    if (!A.empty() && kept + added > held) static_cast<void>(A.reserve(rows, std::max(kept + added, 2 * kept)));
    if (!A.resize(rows, kept + added)) return false;
    for (std::uint64_t j = 0; j < bare && rows != 0; ++j) std::fill_n(column(A, j), rows, T{});
    return true;
}

// Copies the first `cols` columns of `from` to those of `to` from column `next` on; both have the same rows.
template <class T>
void copy_columns(const dense2D<T>& from, std::uint64_t cols, dense2D<T>& to, std::uint64_t next)
{
    if (from.ld == from.rows && to.ld == to.rows) {
        std::copy_n(column(from, 0), from.rows * cols, column(to, next));
        return;
    }
    for (std::uint64_t j = 0; j < cols; ++j) std::copy_n(column(from, j), from.rows, column(to, next + j));
}

// Appends all columns of the matrices to A, which gets `rows` rows, those of common_rows. A may be one of the matrices
// or share its buffer with them. False, and nothing changed, without memory.
template <class T>
bool append_whole(dense2D<T>& A, std::uint64_t rows, const matrix_range<const dense2D<T>>& matrices)
{
    // A matrix without entries has nothing to give, columns without rows count only among their like.
    const auto given = [rows](const dense2D<T>& m) { return rows == 0 || !m.empty() ? m.cols : 0; };
    const std::uint64_t given_by_A = given(A);
    std::uint64_t next = A.cols;
    std::uint64_t added = 0;
    for (const auto& m : matrices) {
        if (given(m) > ~added) return false;
        added += given(m);
    }
    if (!extend_columns(A, rows, added)) return false;
    for (const auto& m : matrices) {
        const std::uint64_t cols = &m == &A ? given_by_A : given(m);
        if (rows * cols != 0) copy_columns(m, cols, A, next);
        next += cols;
    }
    return true;
}

// Appends the columns of B that `cols` lists to A, which gets the rows of B. A may be B or share its buffer with it,
// and with `cols`. False, and nothing changed, without memory.
template <class T>
bool append_selected(dense2D<T>& A, const dense2D<T>& B, const dense1D<unsigned int>& cols)
{
    const std::uint64_t rows = B.rows;
    const std::uint64_t kept = A.cols;
    if (!extend_columns(A, rows, cols.size)) return false;
    for (std::uint64_t k = 0; k < cols.size && rows != 0; ++k)
        std::copy_n(column(B, cols[k]), rows, column(A, kept + k));
    return true;
}

}  // namespace zeb::tessolv

#endif
