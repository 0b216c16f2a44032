#ifndef PYTHON_ARRAYS_H
#define PYTHON_ARRAYS_H

#include <memory>
#include <new>
#include <utility>

#include "call.h"

// Results on their way to Python.
namespace binding {

// Buffers that NumPy arrays hold at present.
extern long held_buffers;

namespace detail {

template <class Container>
void give_back(PyObject* capsule)
{
    delete static_cast<Container*>(PyCapsule_GetPointer(capsule, PyCapsule_GetName(capsule)));
    --held_buffers;
}

// A capsule that keeps the buffer until the last array on it is gone.
template <class Container>
py::capsule keeper(Container&& container)
{
    auto held = std::make_unique<Container>(std::move(container));
    py::capsule capsule(held.get(), "tessolv.buffer", &give_back<Container>);
    held.release();
    ++held_buffers;
    return capsule;
}

// The memory of a NumPy array cannot be handed over, and what a larger block holds is not what was asked for.
template <class Container>
bool whole_own_block(const Container& container)
{
    return container.buffer != nullptr && container.buffer->external == 0 && container.buffer->ref_count <= 1;
}

inline py::ssize_t count(std::uint64_t n)
{
    return static_cast<py::ssize_t>(n);
}

}  // namespace detail

// The entries as an array over the same memory, which the array keeps.
template <class T>
py::array handed_over(dense1D<T>&& values)
{
    const py::ssize_t size = detail::count(values.size);
    if (size == 0) return py::array_t<T>(0);
    if (!detail::whole_own_block(values)) {
        dense1D<T> own;
        if (!own.copy(values)) throw std::bad_alloc();
        values.swap(own);
    }
    T* data = values.data();
    return py::array_t<T>(size, data, detail::keeper(std::move(values)));
}

// `columns` is the width of an array without rows, where the matrix has lost it.
template <class T>
py::array handed_over(dense2D<T>&& m, std::uint64_t columns = 0)
{
    using shape = std::vector<py::ssize_t>;
    if (m.empty()) return py::array_t<T>(shape{detail::count(m.cols), detail::count(m.rows != 0 ? m.rows : columns)});
    if (!detail::whole_own_block(m) || m.ld != m.rows) {
        dense2D<T> own;
        if (!own.copy(m)) throw std::bad_alloc();
        m.swap(own);
    }
    T* data = &m(0, 0);
    const shape extents{detail::count(m.cols), detail::count(m.rows)};
    return py::array_t<T>(extents, data, detail::keeper(std::move(m)));
}

// Indices with -1 for NONE_INDEX, or as they are.
py::array index_table(dense1D<index>&& values, bool raw);
py::array index_table(dense2D<index>&& values, bool raw, std::uint64_t columns = 0);

// What an operation changed: `out`, or the copy.
template <class Container>
py::object result_of(changed<Container>&& c, std::uint64_t columns = 0)
{
    if (!c.out.is_none()) return c.out;
    if constexpr (std::is_same_v<Container, dense2D<index>> || std::is_same_v<Container, dense2D<double>> ||
                  std::is_same_v<Container, dense2D<float>>) {
        return handed_over(std::move(c.values), columns);
    } else {
        return handed_over(std::move(c.values));
    }
}

template <std::size_t N>
py::array array_of(const double* values)
{
    return py::array_t<double>(static_cast<py::ssize_t>(N), values);
}

// Whether no Python object can change the entries: all views down to the owner of the memory are read-only, and the
// owner is a bytes object. An array that owns its memory can be made writable again at any time.
bool is_frozen(const py::array& array);

}  // namespace binding

#endif
