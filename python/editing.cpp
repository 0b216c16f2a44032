#include <algorithm>

#include "arrays.h"
#include "changed_range.h"
#include "module.h"

namespace binding {
namespace {

// The list form of the library does not tell exhausted memory from an empty result: it must be one.
void require_all_excluded(const dense1D<index>& in, const dense1D<index>& exclude)
{
    dense1D<index> place, unused;
    if (lib::get_IDs(exclude, in, place, unused) != 0) throw std::bad_alloc();
    for (std::uint64_t i = 0; i < in.size; ++i)
        if (in[i] != zeb::NONE_INDEX && place[i] == zeb::NONE_INDEX) throw std::bad_alloc();
}

// One list as a matrix of one row: the same walk, and a form that reports exhausted memory.
dense2D<index> as_row(const dense1D<index>& list)
{
    dense2D<index> row;
    zeb::detail::retain(list.buffer);
    row.buffer = list.buffer;
    row.offset = list.offset;
    row.size = row.cols = list.size;
    row.rows = row.ld = list.size != 0 ? 1 : 0;
    return row;
}

bool is_list(call& c, py::handle value, std::string_view name)
{
    if (py::isinstance<py::list>(value) || py::isinstance<py::tuple>(value)) {
        if (py::len(value) == 0) return false;
        return !py::isinstance<py::sequence>(value[py::int_(0)]) && !py::isinstance<py::array>(value[py::int_(0)]);
    }
    return c.array(value, name).ndim() == 1;
}

py::array unique_indices(py::handle ids, py::handle exclude, py::handle to)
{
    call c("unique_indices");
    auto out = c.optional_vector<index>(to, "to");
    const std::uint64_t before = out.size;
    if (!is_list(c, ids, "ids")) {
        if (!exclude.is_none()) c.refuse("exclude", "goes with a list of indices only");
        auto elements = c.connectivity(ids, "ids");
        c.checked([&] { return lib::unique_indices(out, elements.begin(), elements.end()); });
        return handed_over(std::move(out));
    }
    const auto list = c.vector<index>(ids, "ids");
    if (exclude.is_none()) {
        const auto row = as_row(list);
        c.checked([&] { return lib::unique_indices(out, row); });
        return handed_over(std::move(out));
    }
    const auto left_out = c.vector<index>(exclude, "exclude");
    c.run([&] {
        lib::unique_indices(out, list, left_out);
        if (out.size == before) require_all_excluded(list, left_out);
    });
    return handed_over(std::move(out));
}

int count_unique_indices(py::handle connect)
{
    call c("count_unique_indices");
    auto elements = c.connectivity(connect, "connect");
    return c.checked([&] { return lib::count_unique_indices(elements.begin(), elements.end()); });
}

py::object change_indices(py::handle ids, py::handle new_ids, py::handle out)
{
    call c("change_indices");
    if (is_list(c, ids, "ids")) {
        auto list = c.changed_vector<index>(ids, out, "ids");
        const auto table = c.vector<index>(new_ids, "new_IDs");
        c.run([&] { lib::change_indices(list.values, table); });
        return result_of(std::move(list));
    }
    auto connect = c.changed_matrix<index>(ids, out, "ids");
    const auto table = c.vector<index>(new_ids, "new_IDs");
    const std::uint64_t columns = connect.values.rows;
    c.run([&] { lib::change_indices(connect.values, table); });
    return result_of(std::move(connect), columns);
}

// The library gives the result a buffer of its own and leaves the values where they are: they are not copied before.
template <class T>
py::object permuted(call& c, py::handle values, py::handle perm)
{
    auto moved = c.vector<T>(values, "values");
    const auto places = c.vector<index>(perm, "perm");
    const T* const given = moved.data();
    c.run([&] { lib::permutation(moved, places); });
    if (moved.size != 0 && moved.data() == given) throw std::bad_alloc();
    return handed_over(std::move(moved));
}

// `out` takes the result from that buffer.
template <class T>
py::object permuted_into(call& c, py::handle values, py::handle perm, py::handle out)
{
    auto given = c.changed_vector<T>(values, out, "values");
    const auto places = c.vector<index>(perm, "perm");
    dense1D<T> target = given.values.sub_vector(0, given.values.size);
    c.run([&] { lib::permutation(given.values, places); });
    if (given.values.size != 0 && given.values.data() == target.data()) throw std::bad_alloc();
    std::copy(given.values.begin(), given.values.end(), target.begin());
    return result_of(std::move(given));
}

template <class T>
py::object permutation_of(call& c, py::handle values, py::handle perm, py::handle out)
{
    return out.is_none() ? permuted<T>(c, values, perm) : permuted_into<T>(c, values, perm, out);
}

py::object permutation(py::handle values, py::handle perm, bool indices, py::handle out)
{
    call c("permutation");
    return indices ? permutation_of<index>(c, values, perm, out) : permutation_of<double>(c, values, perm, out);
}

py::tuple get_ids(py::handle first, py::handle second, bool strict, bool raw)
{
    call c("get_IDs");
    dense1D<index> pos_in_1, pos_in_2;
    if (is_list(c, first, "ids1")) {
        const auto ids1 = c.vector<index>(first, "ids1");
        const auto ids2 = c.vector<index>(second, "ids2");
        c.checked([&] { return lib::get_IDs(ids1, ids2, pos_in_1, pos_in_2); });
    } else {
        const auto connect1 = c.matrix<index>(first, "connect1");
        const auto connect2 = c.matrix<index>(second, "connect2");
        c.checked([&] { return lib::get_IDs(connect1, connect2, pos_in_1, pos_in_2, strict); });
    }
    return py::make_tuple(index_table(std::move(pos_in_1), raw), index_table(std::move(pos_in_2), raw));
}

// A grows out of the array that it looks into as soon as something is appended.
template <class T>
py::array appended(call& c, py::handle to, py::handle from, py::handle cols)
{
    auto A = c.matrix<T>(to, "A");
    const std::uint64_t columns = A.rows;
    if (!cols.is_none()) {
        const auto B = c.matrix<T>(from, "B");
        const auto list = c.vector<index>(cols, "cols");
        c.checked([&] { return lib::append(A, B, list); });
    } else {
        const auto B = c.matrices<T>(from, "B");
        c.checked([&] { return lib::append(A, B.data(), B.data() + B.size()); });
    }
    return handed_over(std::move(A), columns);
}

std::vector<dense1D<float>> sizes_of(call& c, py::handle value)
{
    std::vector<dense1D<float>> all;
    if (!py::isinstance<py::list>(value) && !py::isinstance<py::tuple>(value)) {
        all.push_back(c.vector<float>(value, "B"));
        return all;
    }
    for (const py::handle item : value) all.push_back(c.vector<float>(item, "B[" + std::to_string(all.size()) + "]"));
    return all;
}

py::array appended_sizes(call& c, py::handle to, py::handle from, py::handle cols)
{
    auto A = c.vector<float>(to, "A");
    if (!cols.is_none()) {
        const auto B = c.vector<float>(from, "B");
        const auto list = c.vector<index>(cols, "cols");
        c.checked([&] { return lib::append(A, B, list); });
    } else {
        const auto B = sizes_of(c, from);
        c.checked([&] { return lib::append(A, B.data(), B.data() + B.size()); });
    }
    return handed_over(std::move(A));
}

// kind: "points", "indices", "metrics" or "sizes".
py::array append(py::handle to, py::handle from, py::handle cols, const std::string& kind)
{
    call c(kind == "points" || kind == "indices" ? "append" : "append/field");
    if (kind == "points") return appended<double>(c, to, from, cols);
    if (kind == "indices") return appended<index>(c, to, from, cols);
    if (kind == "metrics") return appended<float>(c, to, from, cols);
    return appended_sizes(c, to, from, cols);
}

py::tuple simplify(py::handle pos, py::handle connect, bool raw, py::handle out)
{
    call c("simplify");
    auto elements = changed_connectivity(c, connect, out);
    auto points = c.matrix<double>(pos, "pos");
    const std::uint64_t columns = points.rows;
    dense1D<index> new_ids;
    c.checked([&] {
        auto* first = elements.matrices.data();
        return lib::simplify(points, first, first + elements.matrices.size(), new_ids);
    });
    // In place, coordinates of which nothing was dropped are the caller's own.
    const bool unchanged = points.buffer != nullptr && points.buffer->external != 0;
    const bool own = !out.is_none() && unchanged && py::isinstance<py::array_t<double>>(pos);
    const py::object left = own ? py::reinterpret_borrow<py::object>(pos) : handed_over(std::move(points), columns);
    return py::make_tuple(left, result_of(std::move(elements)), index_table(std::move(new_ids), raw));
}

py::tuple copy_mesh(py::handle pos, py::handle connect)
{
    call c("copy_mesh");
    auto points = c.matrix<double>(pos, "pos");
    const auto source = c.matrix<index>(connect, "connect");
    const std::uint64_t columns = points.rows;
    dense2D<index> copied;
    c.checked([&] { return lib::copy_mesh(points, copied, source); });
    return py::make_tuple(handed_over(std::move(points), columns), handed_over(std::move(copied), source.rows));
}

py::tuple remove_degenerated(py::handle connect, bool raw)
{
    call c("remove_degenerated");
    auto elements = c.changed_matrix<index>(connect, py::none(), "connect");
    const std::uint64_t columns = elements.values.rows;
    dense1D<index> new_ids;
    c.checked([&] { return lib::remove_degenerated(elements.values, new_ids); });
    return py::make_tuple(handed_over(std::move(elements.values), columns), index_table(std::move(new_ids), raw));
}

}  // namespace

void define_editing(py::module_& m)
{
    m.def("unique_indices", &unique_indices);
    m.def("count_unique_indices", &count_unique_indices);
    m.def("change_indices", &change_indices);
    m.def("permutation", &permutation);
    m.def("get_IDs", &get_ids);
    m.def("append", &append);
    m.def("simplify", &simplify);
    m.def("copy_mesh", &copy_mesh);
    m.def("remove_degenerated", &remove_degenerated);
}

}  // namespace binding
