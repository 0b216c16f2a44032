#ifndef TESTS_SUPPORT_STORAGE_FORMS_H
#define TESTS_SUPPORT_STORAGE_FORMS_H

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "support/matrices.h"

namespace test {

// One matrix in one way of being stored. What it looks into lives as long as this.
template <class T>
struct stored_matrix {
    std::string name;
    zeb::dense2D<T> matrix;
    zeb::dense2D<T> sharer;      // another container of the same buffer, if any
    std::vector<T> host_memory;  // what an external buffer looks into
};

// The same values in every way a host may store them: in a buffer of their own, in the middle of a larger matrix whose
// other entries are `padding`, in a shared buffer, and in the host's own memory.
template <class T>
std::vector<stored_matrix<T>> storage_forms(const zeb::dense2D<T>& m, T padding)
{
    std::vector<stored_matrix<T>> forms(4);
    forms[0].name = "own buffer";
    forms[0].matrix.copy(m);
    forms[1].name = "padded view";
    forms[1].matrix.shallow_copy(as_padded_view(m, padding));
    forms[2].name = "shared buffer";
    forms[2].matrix.copy(m);
    forms[2].sharer.shallow_copy(forms[2].matrix);

    const std::uint64_t ld = m.rows + 1;
    auto& external = forms[3];
    external.name = "host memory";
    external.host_memory.assign(ld * m.cols + 1, padding);
    auto* record = new zeb::dense_buffer<T>{external.host_memory.data(), 1, external.host_memory.size(), 0, 1};
    external.matrix.buffer = record;
    external.matrix.offset = 1;
    external.matrix.ld = ld;
    external.matrix.rows = m.rows;
    external.matrix.cols = m.cols;
    external.matrix.size = m.rows * m.cols;
    for (std::uint64_t j = 0; j < m.cols; ++j)
        for (std::uint64_t i = 0; i < m.rows; ++i) external.matrix(i, j) = m(i, j);
    return forms;
}

}  // namespace test

#endif
