#ifndef PYTHON_MODULE_H
#define PYTHON_MODULE_H

#include <pybind11/pybind11.h>

namespace binding {

// One source per family; arguments are looked at inside, so that every refusal has the same form.
void define_conventions(pybind11::module_& m);
void define_topology(pybind11::module_& m);
void define_spatial(pybind11::module_& m);
void define_editing(pybind11::module_& m);
void define_quality(pybind11::module_& m);
void define_metrics(pybind11::module_& m);
void define_geometry(pybind11::module_& m);
void define_io(pybind11::module_& m);
void define_check(pybind11::module_& m);

}  // namespace binding

#endif
