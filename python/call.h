#ifndef PYTHON_CALL_H
#define PYTHON_CALL_H

#include <pybind11/numpy.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tessolv/tessolv.h>

#include "refusals.h"

// NumPy arrays are row after row what the matrices of the library are column after column: an array of shape
// (nodes, 3) is a matrix of 3 x nodes in the same memory.
namespace binding {

namespace py = pybind11;
namespace lib = zeb::tessolv;
using index = unsigned int;
using zeb::dense1D;
using zeb::dense2D;

// One or several connectivities, as the caller gave them.
struct connectivities {
    bool single = true;
    std::vector<dense2D<index>> matrices;

    dense2D<index>* begin() { return matrices.data(); }
    dense2D<index>* end() { return matrices.data() + matrices.size(); }
};

// An array that an operation changes: a copy that belongs to the call, or the caller's `out`.
template <class Container>
struct changed {
    Container values;
    py::object out;  // none for a copy
};

// Whether a value is several matrices: a list of arrays, where a list of rows is one.
bool is_several(py::handle value);

// Throws exhausted memory where the system could not back so much: it would grant the request and end the program when
// the memory is written to. One huge index in a file must not do that.
void require_room(std::uint64_t bytes);

// How often the interpreter's lock was let go.
extern long unlocked_calls;

// One call into the library: takes its arguments out of Python objects, keeps them alive, runs it and translates its
// result. The interpreter's lock is released while the library runs if no other Python object can change an argument:
// each is an array of freeze(), or was converted, or belongs to the call.
class call {
public:
    // `form` as in the table of refusals.
    explicit call(std::string_view form) : form_(form) {}

    call(const call&) = delete;
    call& operator=(const call&) = delete;

    // What NumPy makes of a value.
    py::array array(py::handle value, std::string_view name) const;

    // Arrays of T, used where they are if type and layout allow it, otherwise converted once. T is double, float or
    // index; -1 stands for NONE_INDEX in signed arrays.
    template <class T>
    dense2D<T> matrix(py::handle value, std::string_view name);
    template <class T>
    dense1D<T> vector(py::handle value, std::string_view name);

    // None is an empty matrix or vector.
    template <class T>
    dense2D<T> optional_matrix(py::handle value, std::string_view name);
    template <class T>
    dense1D<T> optional_vector(py::handle value, std::string_view name);

    // A list or tuple of matrices is a range of them, anything else is one matrix.
    template <class T>
    std::vector<dense2D<T>> matrices(py::handle value, std::string_view name);
    connectivities connectivity(py::handle value, std::string_view name);

    // Two or three numbers; a missing third one is 0.
    zeb::vector_fixed<double, 3> point(py::handle value, std::string_view name);

    // Exactly `count` numbers.
    std::vector<double> numbers(py::handle value, std::size_t count, std::string_view name);

    double real(py::handle value, std::string_view name) const;

    // 0 to 2^32 - 1, or -1 for NONE_INDEX.
    index number(py::handle value, std::string_view name) const;
    zeb::element_type type(py::handle value, std::string_view name);

    // One type for one matrix, otherwise a sequence.
    dense1D<int> types(py::handle value, std::string_view name);

    // What the library changes: with out = None a copy, otherwise `out`, which takes the entries of `value` when the
    // call runs. Must come before the arguments that are only read: those that overlap with `out` are copied.
    template <class T>
    changed<dense2D<T>> changed_matrix(py::handle value, py::handle out, std::string_view name);
    template <class T>
    changed<dense1D<T>> changed_vector(py::handle value, py::handle out, std::string_view name);

    // Several of them, of which none may overlap with the `out` of another.
    std::vector<changed<dense2D<index>>> changed_matrices(const std::vector<py::object>& values,
                                                          const std::vector<py::object>& outs, std::string_view name);

    // Coordinates that get a third column of zeros if they have none.
    changed<dense2D<double>> changed_points(py::handle value, py::handle out, std::string_view name);

    // f() without the interpreter's lock, if that is safe.
    template <class F>
    auto run(F f)
    {
        fill_outs();
        if (!exclusive_) return f();
        ++unlocked_calls;
        const py::gil_scoped_release release;
        return f();
    }

    // The same; a negative result is thrown.
    template <class F>
    int checked(F f)
    {
        return translate(run(std::move(f)));
    }
    int translate(int result) const;

    // The rest of the call is another form of the operation.
    void becomes(std::string_view form) { form_ = form; }

    // The buffers of this call are shared with others: it keeps the lock.
    void keep_lock() { exclusive_ = false; }
    bool exclusive() const { return exclusive_; }

    [[noreturn]] void refuse(std::string_view name, std::string reason) const;

    // Objects that must live as long as what was taken out of them.
    std::vector<py::object> kept() { return kept_; }

private:
    template <class T>
    py::array converted(py::array array, std::string_view name) const;
    template <class T>
    py::array copied(const py::array& array, std::string_view name) const;
    template <class T>
    py::array fitting_out(py::handle out, const std::vector<py::ssize_t>& shape) const;
    template <class T>
    bool usable(const py::array& given, bool has_layout, py::handle own_out) const;
    template <class T>
    dense2D<T> taken_matrix(py::handle value, py::handle own_out, std::string_view name);
    template <class T>
    dense1D<T> taken_vector(py::handle value, py::handle own_out, std::string_view name);
    template <class T>
    changed<dense2D<T>> target(py::handle value, py::handle out, std::optional<std::uint64_t> width,
                               std::string_view name);
    py::array used(py::array array, bool of_others);
    bool overlaps_out(const py::array& array) const;
    void watch(py::handle out);
    void fill_outs();

    std::string_view form_;
    bool exclusive_ = true;
    std::vector<py::object> kept_;
    std::vector<std::pair<std::uintptr_t, std::uintptr_t>> out_ranges_;
    std::vector<std::function<void()>> to_fill_;
};

// Throws a refusal of the table, or exhausted memory.
[[noreturn]] void throw_refusal(std::string_view form, int code);

}  // namespace binding

#endif
