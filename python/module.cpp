#include "module.h"

#include "arrays.h"
#include "refusals.h"

namespace binding {
namespace {

void throw_in_python(const refused& error)
{
    const py::object type = py::module_::import("tessolv._errors").attr("Error");
    const py::object code = error.code ? py::object(py::int_(*error.code)) : py::object(py::none());
    PyErr_SetObject(type.ptr(), type(error.function, code, error.argument, error.reason).ptr());
}

void translate_refusals(std::exception_ptr thrown)
{
    try {
        std::rethrow_exception(std::move(thrown));
    } catch (const refused& error) {
        try {
            throw_in_python(error);
        } catch (py::error_already_set& failure) {
            failure.restore();
        }
    }
}

py::list refusal_table()
{
    py::list rows;
    for (const refusal& r : refusals())
        rows.append(py::make_tuple(std::string(r.form), r.code, std::string(r.argument), std::string(r.reason)));
    return rows;
}

bool check_ids(py::handle ids, py::handle n, py::handle type)
{
    call c("check_IDs");
    const index bound = c.number(n, "n");
    const py::array given = c.array(ids, "ids");
    if (given.ndim() == 1 && type.is_none()) {
        const auto list = c.vector<index>(given, "ids");
        return c.run([&] { return lib::check_IDs(list, bound); });
    }
    const auto connect = c.matrix<index>(given, "ids");
    if (type.is_none()) return c.run([&] { return lib::check_IDs(connect, bound); });
    const auto kind = c.type(type, "type");
    return c.run([&] { return lib::check_IDs(connect, kind, bound); });
}

py::tuple counts(const std::uint32_t (&table)[21])
{
    py::tuple all(21);
    for (std::size_t i = 0; i < 21; ++i) all[i] = table[i];
    return all;
}

}  // namespace

void define_conventions(py::module_& m)
{
    m.def("version", &lib::version);
    m.def("check_IDs", &check_ids);
    m.attr("NONE_INDEX") = zeb::NONE_INDEX;
    m.attr("NODES_PER_ELEMENT") = counts(zeb::NODES_PER_ELEMENT);
    m.attr("VERTICES_PER_ELEMENT") = counts(zeb::VERTICES_PER_ELEMENT);
    m.def("is_frozen", &is_frozen);
    m.def("refusals", &refusal_table);
    m.def("held_buffers", [] { return held_buffers; });
    m.def("unlocked_calls", [] { return unlocked_calls; });
}

}  // namespace binding

PYBIND11_MODULE(_tessolv, m)
{
    pybind11::register_exception_translator(&binding::translate_refusals);
    binding::define_conventions(m);
    binding::define_topology(m);
    binding::define_spatial(m);
    binding::define_editing(m);
    binding::define_quality(m);
    binding::define_metrics(m);
    binding::define_geometry(m);
    binding::define_io(m);
    binding::define_check(m);
}
