#include "call.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <limits>
#include <memory>
#include <new>

#include "arrays.h"

namespace binding {

long unlocked_calls = 0;

namespace {

using flags = py::detail::npy_api::constants;

bool has_flags(const py::array& array, int wanted)
{
    return (array.flags() & wanted) == wanted;
}

// What NumPy made, or the exception that it has set.
py::array numpy_array(PyObject* made)
{
    if (made == nullptr) throw py::error_already_set();
    return py::reinterpret_steal<py::array>(made);
}

template <class T>
bool holds(const py::array& array)
{
    return py::detail::npy_api::get().PyArray_EquivTypes_(array.dtype().ptr(), py::dtype::of<T>().ptr());
}

// Of these NumPy makes an array that nobody else knows.
bool is_listing(py::handle value)
{
    return py::isinstance<py::list>(value) || py::isinstance<py::tuple>(value);
}

// Rows of adjacent entries one behind the other: the columns of a matrix with a leading dimension.
bool is_column_major_matrix(const py::array& array)
{
    const py::ssize_t item = array.itemsize();
    if (array.ndim() != 2 || !has_flags(array, flags::NPY_ARRAY_ALIGNED_)) return false;
    if (array.size() == 0) return true;
    if (array.shape(1) > 1 && array.strides(1) != item) return false;
    return array.shape(0) == 1 || (array.strides(0) >= array.shape(1) * item && array.strides(0) % item == 0);
}

bool is_plain_vector(const py::array& array)
{
    return array.ndim() == 1 && has_flags(array, flags::NPY_ARRAY_ALIGNED_) &&
           (array.size() <= 1 || array.strides(0) == array.itemsize());
}

template <class T>
zeb::dense_buffer<T>* lent(const py::array& array, std::uint64_t entries)
{
    return new zeb::dense_buffer<T>{static_cast<T*>(const_cast<void*>(array.data())), 1, entries, 0, 1};
}

template <class T>
dense2D<T> look_into_matrix(const py::array& array)
{
    dense2D<T> m;
    if (array.ndim() != 2) return m;  // an empty list
    m.cols = static_cast<std::uint64_t>(array.shape(0));
    m.rows = m.ld = static_cast<std::uint64_t>(array.shape(1));
    m.size = m.rows * m.cols;
    if (m.size == 0) return m;
    if (m.cols > 1) m.ld = static_cast<std::uint64_t>(array.strides(0) / array.itemsize());
    m.buffer = lent<T>(array, m.ld * (m.cols - 1) + m.rows);
    return m;
}

template <class T>
dense1D<T> look_into_vector(const py::array& array)
{
    dense1D<T> v;
    if (array.size() == 0) return v;
    v.size = static_cast<std::uint64_t>(array.size());
    v.buffer = lent<T>(array, v.size);
    return v;
}

std::string text(py::handle value)
{
    return py::str(value).cast<std::string>();
}

std::string dimensions(const py::array& array, py::ssize_t wanted)
{
    return "has " + std::to_string(array.ndim()) + " dimensions instead of " + std::to_string(wanted);
}

std::string place_of(const py::array& array, py::ssize_t flat)
{
    if (array.ndim() == 1) return "[" + std::to_string(flat) + "]";
    return "[" + std::to_string(flat / array.shape(1)) + ", " + std::to_string(flat % array.shape(1)) + "]";
}

constexpr const char* no_index = " is no index: 0 to 4294967295, or -1 for none";

// Copies integers to 32 bits; the flat number of the first one that has no place there, or -1.
template <class From>
py::ssize_t narrow(const py::array& from, index* to)
{
    const auto* bytes = static_cast<const char*>(from.data());
    const bool flat = from.ndim() == 1;
    const py::ssize_t inner = flat ? from.shape(0) : from.shape(1), outer = flat ? 1 : from.shape(0);
    const py::ssize_t step = flat ? from.strides(0) : from.strides(1), leap = flat ? 0 : from.strides(0);
    for (py::ssize_t j = 0; j < outer; ++j)
        for (py::ssize_t i = 0; i < inner; ++i) {
            From value;
            std::memcpy(&value, bytes + j * leap + i * step, sizeof value);
            const auto wide = static_cast<std::uint64_t>(value);  // -1 becomes the largest number
            if (wide > 0xFFFFFFFFu && wide != std::numeric_limits<std::uint64_t>::max()) return j * inner + i;
            if (std::is_unsigned_v<From> && wide > 0xFFFFFFFFu) return j * inner + i;
            to[j * inner + i] = static_cast<index>(wide);
        }
    return -1;
}

template <class T>
bool is_acceptable_kind(char kind)
{
    if (std::is_same_v<T, index>) return kind == 'i' || kind == 'u';
    return kind == 'f' || kind == 'i' || kind == 'u' || kind == 'b';
}

}  // namespace

void require_room(std::uint64_t bytes)
{
    constexpr std::uint64_t not_worth_a_look = std::uint64_t{1} << 30;
    if (bytes < not_worth_a_look) return;
    std::ifstream system("/proc/meminfo");
    std::string name, unit;
    std::uint64_t kilobytes = 0;
    while (system >> name >> kilobytes && std::getline(system, unit))
        if (name == "MemAvailable:" && bytes / 1024 > kilobytes) throw std::bad_alloc();
}

bool is_frozen(const py::array& array)
{
    if (array.size() == 0) return true;
    py::handle owner = array;
    while (py::isinstance<py::array>(owner)) {
        const auto view = py::reinterpret_borrow<py::array>(owner);
        if (view.writeable() || !view.base()) return false;
        owner = view.base();
    }
    if (PyMemoryView_Check(owner.ptr())) owner = PyMemoryView_GET_BUFFER(owner.ptr())->obj;
    return owner && PyBytes_CheckExact(owner.ptr());
}

void throw_refusal(std::string_view form, int code)
{
    const refusal* known = find_refusal(form, code);
    if (known == nullptr) throw std::bad_alloc();
    throw refused(form, code, std::string(known->argument), std::string(known->reason));
}

void call::refuse(std::string_view name, std::string reason) const
{
    throw refused(form_, std::nullopt, std::string(name), std::move(reason));
}

int call::translate(int result) const
{
    if (result < 0) throw_refusal(form_, result);
    return result;
}

py::array call::array(py::handle value, std::string_view name) const
{
    if (value.is_none()) refuse(name, "is missing");
    py::array array;
    try {
        array = numpy_array(py::detail::npy_api::get().PyArray_FromAny_(value.ptr(), nullptr, 0, 0,
                                                                        flags::NPY_ARRAY_ENSUREARRAY_, nullptr));
    } catch (py::error_already_set& error) {
        if (error.matches(PyExc_MemoryError) || !error.matches(PyExc_Exception)) throw;  // an interrupt is no refusal
        refuse(name, "is no array: " + text(error.value()));
    }
    return array;
}

namespace {

// First and last byte of what an array can reach, the last one not included.
std::pair<std::uintptr_t, std::uintptr_t> extent_of(const py::array& array)
{
    auto first = reinterpret_cast<std::uintptr_t>(array.data());
    if (array.size() == 0) return {first, first};
    std::uintptr_t last = first + static_cast<std::uintptr_t>(array.itemsize());
    for (py::ssize_t d = 0; d < array.ndim(); ++d) {
        const py::ssize_t span = array.strides(d) * (array.shape(d) - 1);
        (span < 0 ? first : last) += static_cast<std::uintptr_t>(span);
    }
    return {first, last};
}

// Whether `out` is the very array, entry for entry.
bool is_itself(const py::array& array, py::handle out)
{
    if (!out || !py::isinstance<py::array>(out)) return false;
    const auto other = py::reinterpret_borrow<py::array>(out);
    return other.data() == array.data() && other.ndim() == array.ndim() &&
           std::equal(array.shape(), array.shape() + array.ndim(), other.shape()) &&
           std::equal(array.strides(), array.strides() + array.ndim(), other.strides());
}

}  // namespace

bool call::overlaps_out(const py::array& array) const
{
    if (array.size() == 0) return false;
    const auto range = extent_of(array);
    return std::any_of(out_ranges_.begin(), out_ranges_.end(),
                       [&](const auto& out) { return range.first < out.second && out.first < range.second; });
}

// An array of the right type in one piece, made for this call.
template <class T>
py::array call::converted(py::array array, std::string_view name) const
{
    const py::dtype dtype = array.dtype();
    if (array.size() == 0) return py::array_t<T>(std::vector<py::ssize_t>(array.shape(), array.shape() + array.ndim()));
    if (!is_acceptable_kind<T>(dtype.kind()))
        refuse(name, "has the type " + text(dtype) + (std::is_same_v<T, index> ? ", which are no indices" : ""));
    require_room(static_cast<std::uint64_t>(array.size()) * sizeof(T));
    if (std::is_same_v<T, index> && !holds<T>(array)) return copied<T>(array, name);
    constexpr int always_copied = 0x20;  // NPY_ARRAY_ENSURECOPY, which pybind11 does not name
    const int wanted =
        flags::NPY_ARRAY_C_CONTIGUOUS_ | flags::NPY_ARRAY_ALIGNED_ | py::array::forcecast | always_copied;
    PyObject* type = py::dtype::of<T>().release().ptr();  // given away
    return numpy_array(py::detail::npy_api::get().PyArray_FromAny_(array.ptr(), type, 0, 0, wanted, nullptr));
}

template <class T>
py::array call::copied(const py::array& array, std::string_view name) const
{
    const bool is_signed = array.dtype().kind() == 'i';
    py::array_t<index> copy(std::vector<py::ssize_t>(array.shape(), array.shape() + array.ndim()));
    const bool native = array.dtype().byteorder() != '>';
    py::ssize_t bad = -1;
    if (is_signed && native && array.itemsize() == 8) {
        bad = narrow<std::int64_t>(array, copy.mutable_data());
    } else if (is_signed && native && array.itemsize() == 4) {
        bad = narrow<std::int32_t>(array, copy.mutable_data());
    } else if (is_signed) {
        bad = narrow<std::int64_t>(py::array_t<std::int64_t, py::array::forcecast>(array), copy.mutable_data());
    } else {
        bad = narrow<std::uint64_t>(py::array_t<std::uint64_t, py::array::forcecast>(array), copy.mutable_data());
    }
    if (bad >= 0) {
        const std::string place = place_of(array, bad);
        refuse(name, "entry " + place + " = " + text(array.attr("flat")[py::int_(bad)]) + no_index);
    }
    return copy;
}

py::array call::used(py::array array, bool of_others)
{
    if (of_others && !is_frozen(array)) exclusive_ = false;
    kept_.push_back(array);
    return array;
}

template <class T>
bool call::usable(const py::array& given, bool has_layout, py::handle own_out) const
{
    return holds<T>(given) && has_layout && (is_itself(given, own_out) || !overlaps_out(given));
}

template <class T>
dense2D<T> call::taken_matrix(py::handle value, py::handle own_out, std::string_view name)
{
    const py::array given = array(value, name);
    if (given.ndim() != 2 && !(given.ndim() == 1 && given.size() == 0)) refuse(name, dimensions(given, 2));
    // Elements without nodes take no memory, results for each of them do.
    if (given.size() == 0) require_room(static_cast<std::uint64_t>(given.shape(0)) * 2 * sizeof(double));
    const bool in_place = usable<T>(given, is_column_major_matrix(given), own_out);
    return look_into_matrix<T>(used(in_place ? given : converted<T>(given, name), in_place && !is_listing(value)));
}

template <class T>
dense1D<T> call::taken_vector(py::handle value, py::handle own_out, std::string_view name)
{
    const py::array given = array(value, name);
    if (given.ndim() != 1) refuse(name, dimensions(given, 1));
    const bool in_place = usable<T>(given, is_plain_vector(given), own_out);
    return look_into_vector<T>(used(in_place ? given : converted<T>(given, name), in_place && !is_listing(value)));
}

template <class T>
dense2D<T> call::matrix(py::handle value, std::string_view name)
{
    return taken_matrix<T>(value, {}, name);
}

template <class T>
dense1D<T> call::vector(py::handle value, std::string_view name)
{
    return taken_vector<T>(value, {}, name);
}

template <class T>
dense2D<T> call::optional_matrix(py::handle value, std::string_view name)
{
    return value.is_none() ? dense2D<T>() : matrix<T>(value, name);
}

template <class T>
dense1D<T> call::optional_vector(py::handle value, std::string_view name)
{
    return value.is_none() ? dense1D<T>() : vector<T>(value, name);
}

bool is_several(py::handle value)
{
    if (!is_listing(value)) return false;
    for (const py::handle item : value)
        if (!py::isinstance<py::array>(item) || py::reinterpret_borrow<py::array>(item).ndim() == 1) return false;
    return true;
}

template <class T>
std::vector<dense2D<T>> call::matrices(py::handle value, std::string_view name)
{
    std::vector<dense2D<T>> all;
    if (!is_several(value)) {
        all.push_back(matrix<T>(value, name));
        return all;
    }
    for (const py::handle item : value)
        all.push_back(matrix<T>(item, std::string(name) + "[" + std::to_string(all.size()) + "]"));
    return all;
}

connectivities call::connectivity(py::handle value, std::string_view name)
{
    return {!is_several(value), matrices<index>(value, name)};
}

std::vector<double> call::numbers(py::handle value, std::size_t count, std::string_view name)
{
    const py::array given = array(value, name);
    if (!is_acceptable_kind<double>(given.dtype().kind())) refuse(name, "has the type " + text(given.dtype()));
    if (static_cast<std::size_t>(given.size()) != count)
        refuse(name, "has " + std::to_string(given.size()) + " numbers instead of " + std::to_string(count));
    const py::array_t<double, py::array::c_style | py::array::forcecast> values(given);
    return {values.data(), values.data() + count};
}

zeb::vector_fixed<double, 3> call::point(py::handle value, std::string_view name)
{
    const py::array given = array(value, name);
    if (given.ndim() != 1 || (given.size() != 2 && given.size() != 3)) refuse(name, "is no point of 2 or 3 numbers");
    const auto count = static_cast<std::size_t>(given.size());
    const std::vector<double> values = numbers(given, count, name);
    return {values[0], values[1], count == 3 ? values[2] : 0.0};
}

double call::real(py::handle value, std::string_view name) const
{
    const double number = PyFloat_AsDouble(value.ptr());
    if (number != -1.0 || PyErr_Occurred() == nullptr) return number;
    if (PyErr_ExceptionMatches(PyExc_Exception) == 0) throw py::error_already_set();
    PyErr_Clear();
    refuse(name, "is no number");
}

index call::number(py::handle value, std::string_view name) const
{
    const auto whole = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
    if (!whole) {
        PyErr_Clear();
        refuse(name, "is no integer");
    }
    int overflow = 0;
    const long long number = PyLong_AsLongLongAndOverflow(whole.ptr(), &overflow);
    if (overflow != 0 || number < -1 || number > 0xFFFFFFFFll) refuse(name, "= " + text(whole) + no_index);
    return static_cast<index>(number);
}

zeb::element_type call::type(py::handle value, std::string_view name)
{
    const auto whole = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
    if (!whole) {
        PyErr_Clear();
        refuse(name, "is no element type");
    }
    int overflow = 0;
    const long number = PyLong_AsLongAndOverflow(whole.ptr(), &overflow);
    if (overflow != 0 || number < 0 || number > zeb::EL_HEXA27)
        refuse(name, "= " + text(whole) + " is no element type");
    return static_cast<zeb::element_type>(number);
}

dense1D<int> call::types(py::handle value, std::string_view name)
{
    dense1D<int> all;
    const auto append = [&](py::handle item, const std::string& where) {
        const std::uint64_t before = all.size;
        all.push_back(type(item, where));
        if (all.size == before) throw std::bad_alloc();
    };
    const bool is_one = py::isinstance<py::array>(value) ? py::reinterpret_borrow<py::array>(value).ndim() == 0
                                                         : !py::isinstance<py::sequence>(value);
    if (is_one) {
        append(value, std::string(name));
        return all;
    }
    for (const py::handle item : value) append(item, std::string(name) + "[" + std::to_string(all.size) + "]");
    return all;
}

void call::watch(py::handle out)
{
    if (out.is_none()) return;
    keep_lock();
    if (!py::isinstance<py::array>(out)) refuse("out", "is no array");
    const auto array = py::reinterpret_borrow<py::array>(out);
    if (overlaps_out(array)) refuse("out", "holds arrays that overlap");
    out_ranges_.push_back(extent_of(array));
}

void call::fill_outs()
{
    for (const auto& fill : to_fill_) fill();
    to_fill_.clear();
}

// `out` if the library can write into it as it stands.
template <class T>
py::array call::fitting_out(py::handle out, const std::vector<py::ssize_t>& shape) const
{
    auto array = py::reinterpret_borrow<py::array>(out);
    if (!holds<T>(array))
        refuse("out", "has the type " + text(array.dtype()) + " instead of " + text(py::dtype::of<T>()));
    if (array.ndim() != static_cast<py::ssize_t>(shape.size()) ||
        !std::equal(shape.begin(), shape.end(), array.shape()))
        refuse("out", "has not the shape of the result");
    if (!has_flags(array, flags::NPY_ARRAY_C_CONTIGUOUS_ | flags::NPY_ARRAY_ALIGNED_))
        refuse("out", "is not contiguous row after row");
    if (!array.writeable()) refuse("out", "is read-only");
    return array;
}

namespace {

std::vector<py::ssize_t> shape_of(std::uint64_t rows, std::uint64_t columns)
{
    return {static_cast<py::ssize_t>(rows), static_cast<py::ssize_t>(columns)};
}

// Columns that `from` does not have become 0, those beyond `width` go.
template <class T>
void copy_columns(const dense2D<T>& from, std::uint64_t width, T* to)
{
    if (from.rows == width && from.ld == width) {
        if (!from.empty()) std::memcpy(to, &from(0, 0), from.size * sizeof(T));
        return;
    }
    const std::uint64_t common = std::min(width, from.rows);
    for (std::uint64_t j = 0; j < from.cols; ++j, to += width) {
        if (common != 0) std::memcpy(to, &from(0, j), common * sizeof(T));
        std::fill(to + common, to + width, T());
    }
}

}  // namespace

// `width` is that of what is changed, where it is not the width of the value.
template <class T>
changed<dense2D<T>> call::target(py::handle value, py::handle out, std::optional<std::uint64_t> width,
                                 std::string_view name)
{
    dense2D<T> from = taken_matrix<T>(value, out, name);
    const std::uint64_t columns = width.value_or(from.rows);
    if (out.is_none()) {
        changed<dense2D<T>> copy{dense2D<T>(), py::none()};
        if (!copy.values.resize(columns, from.cols)) throw std::bad_alloc();
        if (!copy.values.empty()) copy_columns(from, columns, &copy.values(0, 0));
        return copy;
    }
    const py::array array = fitting_out<T>(out, shape_of(from.cols, columns));
    changed<dense2D<T>> to{look_into_matrix<T>(array), array};
    if (to.values.empty() || (!from.empty() && &from(0, 0) == &to.values(0, 0))) return to;
    to_fill_.push_back([columns, kept = std::make_shared<dense2D<T>>(std::move(from)), entries = &to.values(0, 0)] {
        copy_columns(*kept, columns, entries);
    });
    return to;
}

template <class T>
changed<dense2D<T>> call::changed_matrix(py::handle value, py::handle out, std::string_view name)
{
    watch(out);
    return target<T>(value, out, std::nullopt, name);
}

std::vector<changed<dense2D<index>>> call::changed_matrices(const std::vector<py::object>& values,
                                                            const std::vector<py::object>& outs, std::string_view name)
{
    for (const py::object& out : outs) watch(out);
    std::vector<changed<dense2D<index>>> all;
    for (std::size_t i = 0; i < values.size(); ++i)
        all.push_back(target<index>(values[i], outs[i], std::nullopt, name));
    return all;
}

changed<dense2D<double>> call::changed_points(py::handle value, py::handle out, std::string_view name)
{
    watch(out);
    return target<double>(value, out, 3, name);
}

template <class T>
changed<dense1D<T>> call::changed_vector(py::handle value, py::handle out, std::string_view name)
{
    watch(out);
    dense1D<T> from = taken_vector<T>(value, out, name);
    if (out.is_none()) {
        changed<dense1D<T>> copy{dense1D<T>(), py::none()};
        if (!copy.values.copy(from)) throw std::bad_alloc();
        return copy;
    }
    const py::array array = fitting_out<T>(out, {static_cast<py::ssize_t>(from.size)});
    changed<dense1D<T>> to{look_into_vector<T>(array), array};
    if (from.size == 0 || from.data() == to.values.data()) return to;
    to_fill_.push_back([kept = std::make_shared<dense1D<T>>(std::move(from)), entries = to.values.data()] {
        std::memcpy(entries, kept->data(), kept->size * sizeof(T));
    });
    return to;
}

template dense2D<double> call::matrix<double>(py::handle, std::string_view);
template dense2D<float> call::matrix<float>(py::handle, std::string_view);
template dense2D<index> call::matrix<index>(py::handle, std::string_view);
template dense1D<double> call::vector<double>(py::handle, std::string_view);
template dense1D<float> call::vector<float>(py::handle, std::string_view);
template dense1D<index> call::vector<index>(py::handle, std::string_view);
template dense2D<double> call::optional_matrix<double>(py::handle, std::string_view);
template dense2D<index> call::optional_matrix<index>(py::handle, std::string_view);
template dense1D<index> call::optional_vector<index>(py::handle, std::string_view);
template std::vector<dense2D<double>> call::matrices<double>(py::handle, std::string_view);
template std::vector<dense2D<float>> call::matrices<float>(py::handle, std::string_view);
template std::vector<dense2D<index>> call::matrices<index>(py::handle, std::string_view);
template changed<dense2D<double>> call::changed_matrix<double>(py::handle, py::handle, std::string_view);
template changed<dense2D<float>> call::changed_matrix<float>(py::handle, py::handle, std::string_view);
template changed<dense2D<index>> call::changed_matrix<index>(py::handle, py::handle, std::string_view);
template changed<dense1D<double>> call::changed_vector<double>(py::handle, py::handle, std::string_view);
template changed<dense1D<float>> call::changed_vector<float>(py::handle, py::handle, std::string_view);
template changed<dense1D<index>> call::changed_vector<index>(py::handle, py::handle, std::string_view);

}  // namespace binding
