#include <tessolv/metrics.h>

#include <algorithm>

#include "core/mesh_range.h"
#include "core/return_codes.h"
#include "editing/append_columns.h"

namespace zeb::tessolv {
namespace {

// The size doubles where the vector has to move, so that appending part by part stays linear. New entries are not set.
bool extend(dense1D<float>& A, std::uint64_t added)
{
    return added <= ~A.size && A.reserve(A.size + added, 2) && A.resize(A.size + added);
}

}  // namespace

int append(dense2D<float>& A, const dense2D<float>* first, const dense2D<float>* last)
{
    const matrix_range<const dense2D<float>> fields{first, last};
    if (fields.reversed()) return bad_argument(3);
    const auto rows = common_rows(A, fields, row_rule::of_matrices_with_entries);
    if (!rows) return bad_argument(3);  // not the -1 of coordinates and connectivities: part of the interface
    return append_whole(A, *rows, fields) ? success : out_of_memory;
}

int append(dense2D<float>& A, const dense2D<float>& B)
{
    return append(A, &B, &B + 1);
}

int append(dense2D<float>& A, const dense2D<float>& B, const dense1D<unsigned int>& columns)
{
    if (columns.empty()) return success;
    if (!A.empty() && A.rows != B.rows) return bad_argument(1);
    if (!are_columns_of(B, columns)) return bad_argument(3);
    return append_selected(A, B, columns) ? success : out_of_memory;
}

// A may be one of the vectors: it gives what it held on entry.
int append(dense1D<float>& A, const dense1D<float>* first, const dense1D<float>* last)
{
    const matrix_range<const dense1D<float>> fields{first, last};
    if (fields.reversed()) return bad_argument(3);
    const std::uint64_t held = A.size;
    std::uint64_t added = 0;
    for (const auto& field : fields) {
        if (field.size > ~added) return out_of_memory;
        added += field.size;
    }
    if (!extend(A, added)) return out_of_memory;
    float* next = A.begin() + held;
    for (const auto& field : fields) next = std::copy_n(field.begin(), &field == &A ? held : field.size, next);
    return success;
}

int append(dense1D<float>& A, const dense1D<float>& B)
{
    return append(A, &B, &B + 1);
}

int append(dense1D<float>& A, const dense1D<float>& B, const dense1D<unsigned int>& entries)
{
    if (entries.empty()) return success;
    const std::uint64_t held = A.size;
    if (*std::max_element(entries.begin(), entries.end()) >= B.size) return bad_argument(3);
    if (!extend(A, entries.size)) return out_of_memory;
    std::transform(entries.begin(), entries.end(), A.begin() + held, [&B](unsigned int i) { return B[i]; });
    return success;
}

}  // namespace zeb::tessolv
