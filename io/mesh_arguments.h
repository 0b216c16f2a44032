#ifndef TESSOLV_IO_MESH_ARGUMENTS_H
#define TESSOLV_IO_MESH_ARGUMENTS_H

#include <array>
#include <cstddef>

#include <tessolv/core.h>

namespace zeb::tessolv {

// A few matrices and their types side by side, as the forms on a range take them. The containers look into memory that
// they do not own: nothing is allocated, and no reference counter of the host is touched, so that calls in several
// threads may read one mesh.
template <std::size_t Count>
class mesh_arguments {
public:
    mesh_arguments(const std::array<const dense2D<unsigned int>*, Count>& matrices,
                   const std::array<element_type, Count>& types)
    {
        for (std::size_t k = 0; k < Count; ++k) {
            const dense2D<unsigned int>& lent = *matrices[k];
            dense2D<unsigned int>& taken = matrices_[k];
            if (lent.buffer != nullptr) taken.buffer = borrow(records_[k], lent.buffer->data, lent.buffer->capacity);
            taken.size = lent.size;
            taken.offset = lent.offset;
            taken.rows = lent.rows;
            taken.cols = lent.cols;
            taken.ld = lent.ld;
            type_values_[k] = types[k];
        }
        types_.buffer = borrow(type_record_, type_values_.data(), Count);
        types_.size = Count;
    }
    mesh_arguments(const mesh_arguments&) = delete;
    mesh_arguments& operator=(const mesh_arguments&) = delete;

    const dense2D<unsigned int>* first() const { return matrices_.data(); }
    const dense2D<unsigned int>* last() const { return matrices_.data() + Count; }
    const dense1D<int>& types() const { return types_; }

private:
    // One reference more than containers, so that the last of them does not free the record.
    template <class T>
    static dense_buffer<T>* borrow(dense_buffer<T>& record, T* data, std::uint64_t capacity)
    {
        record = {data, 2, capacity, 0, 1};
        return &record;
    }

    std::array<dense_buffer<unsigned int>, Count> records_;
    std::array<dense2D<unsigned int>, Count> matrices_;
    std::array<int, Count> type_values_;
    dense_buffer<int> type_record_;
    dense1D<int> types_;
};

}  // namespace zeb::tessolv

#endif
