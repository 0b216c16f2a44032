#include "changed_range.h"

namespace binding {

changed_range changed_connectivity(call& c, py::handle connect, py::handle out)
{
    changed_range all;
    std::vector<py::object> given;
    all.single = !is_several(connect);
    if (all.single) {
        given = {py::reinterpret_borrow<py::object>(connect)};
    } else {
        for (const py::handle item : connect) given.push_back(py::reinterpret_borrow<py::object>(item));
    }
    std::vector<py::object> outs(given.size(), py::none());
    if (!out.is_none() && all.single) outs = {py::reinterpret_borrow<py::object>(out)};
    if (!out.is_none() && !all.single) {
        if (!py::isinstance<py::sequence>(out) || py::len(out) != given.size())
            c.refuse("out", "must hold as many arrays as connect");
        for (std::size_t i = 0; i < given.size(); ++i) outs[i] = out[py::int_(i)];
    }
    for (auto& one : c.changed_matrices(given, outs, "connect")) {
        all.matrices.push_back(std::move(one.values));
        all.outs.push_back(std::move(one.out));
    }
    return all;
}

py::object result_of(changed_range&& range)
{
    py::list all;
    for (std::size_t i = 0; i < range.matrices.size(); ++i) {
        if (range.outs[i].is_none()) {
            all.append(handed_over(std::move(range.matrices[i])));
        } else {
            all.append(range.outs[i]);
        }
    }
    if (range.single) return all[0];
    return all;
}

}  // namespace binding
