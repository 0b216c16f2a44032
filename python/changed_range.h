#ifndef PYTHON_CHANGED_RANGE_H
#define PYTHON_CHANGED_RANGE_H

#include "arrays.h"

namespace binding {

// One matrix and its `out`, or lists of both.
struct changed_range {
    bool single = true;
    std::vector<dense2D<index>> matrices;
    std::vector<py::object> outs;
};

changed_range changed_connectivity(call& c, py::handle connect, py::handle out);
py::object result_of(changed_range&& range);

}  // namespace binding

#endif
