#ifndef TESSOLV_CORE_MESH_RANGE_H
#define TESSOLV_CORE_MESH_RANGE_H

#include <cstddef>
#include <functional>

#include <tessolv/core.h>

namespace zeb::tessolv {

// Consecutive matrices [first, last) as one object to walk over. Two null pointers are an empty range.
template <class Matrix>
struct matrix_range {
    Matrix* first;
    Matrix* last;

    bool reversed() const { return std::less<Matrix*>()(last, first); }
    std::size_t length() const { return static_cast<std::size_t>(last - first); }
    Matrix* begin() const { return first; }
    Matrix* end() const { return last; }
};

template <class Matrix>
matrix_range(Matrix*, Matrix*) -> matrix_range<Matrix>;

// Connectivity matrices with the element_type of each; `types` is as long as the range.
struct mesh_range : matrix_range<const dense2D<unsigned int>> {
    const dense1D<int>& types;

    element_type type_of(std::size_t k) const { return static_cast<element_type>(types[k]); }

    // Whether check_IDs accepts every matrix under its type and the bound n.
    bool has_valid_IDs(unsigned int n) const
    {
        for (std::size_t k = 0; k < length(); ++k)
            if (!check_IDs(first[k], type_of(k), n)) return false;
        return true;
    }
};

}  // namespace zeb::tessolv

#endif
