#include <limits>

#include "arrays.h"
#include "module.h"

namespace binding {
namespace {

// Applies a transform to all nodes, to the listed ones or to those of a connectivity. The number of nodes that the
// library counts tells nothing that the caller does not know.
template <class Transform>
py::object transformed(call& c, py::handle pos, py::handle nodes, py::handle connect, py::handle out,
                       Transform transform)
{
    auto points = c.changed_points(pos, out, "pos");
    if (!nodes.is_none() && !connect.is_none()) c.refuse("connect", "excludes nodes");
    if (!nodes.is_none()) {
        const auto list = c.vector<index>(nodes, "nodes");
        c.checked([&] { return transform(points.values, list); });
    } else if (!connect.is_none()) {
        const auto elements = c.matrix<index>(connect, "connect");
        c.checked([&] { return transform(points.values, elements); });
    } else {
        c.checked([&] { return transform(points.values); });
    }
    return result_of(std::move(points), 3);
}

py::object translate(py::handle pos, py::handle t, py::handle nodes, py::handle connect, py::handle out)
{
    call c("translate");
    const auto vector = c.point(t, "t");
    return transformed(c, pos, nodes, connect, out,
                       [&](auto& points, auto&... where) { return lib::translate(points, vector, where...); });
}

py::object rotate(py::handle pos, py::handle centre, py::handle rotation, py::handle nodes, py::handle connect,
                  py::handle out)
{
    call c("rotate");
    const auto fixed = c.point(centre, "centre");
    const auto turn = c.point(rotation, "rotation");
    return transformed(c, pos, nodes, connect, out,
                       [&](auto& points, auto&... where) { return lib::rotate(points, fixed, turn, where...); });
}

py::object zoom(py::handle pos, py::handle centre, py::handle factor, py::handle nodes, py::handle connect,
                py::handle out)
{
    call c("zoom");
    const auto fixed = c.point(centre, "centre");
    const double scale = c.real(factor, "factor");
    return transformed(c, pos, nodes, connect, out,
                       [&](auto& points, auto&... where) { return lib::zoom(points, fixed, scale, where...); });
}

template <std::size_t N>
py::tuple box_of(call& c, const dense2D<double>& points, py::handle nodes, py::handle connect, py::handle lower,
                 py::handle upper)
{
    using corner = zeb::vector_fixed<double, N>;
    const auto start = [&](py::handle given, const char* name, double empty) {
        corner P;
        const auto values = given.is_none() ? std::vector<double>(N, empty) : c.numbers(given, N, name);
        for (std::size_t i = 0; i < N; ++i) P[i] = values[i];
        return P;
    };
    constexpr double infinity = std::numeric_limits<double>::infinity();
    corner low = start(lower, "min", infinity);
    corner high = start(upper, "max", -infinity);
    if (!nodes.is_none()) {
        const auto list = c.vector<index>(nodes, "nodes");
        c.checked([&] { return lib::inc_bounding_box(points, list, low, high); });
    } else if (!connect.is_none()) {
        c.becomes("inc_bounding_box/connect");
        const auto elements = c.matrix<index>(connect, "connect");
        c.checked([&] { return lib::inc_bounding_box(points, elements, low, high); });
    } else {
        c.checked([&] { return lib::inc_bounding_box(points, low, high); });
    }
    return py::make_tuple(array_of<N>(low.data()), array_of<N>(high.data()));
}

py::tuple inc_bounding_box(py::handle pos, py::handle nodes, py::handle connect, py::handle lower, py::handle upper)
{
    call c("inc_bounding_box");
    const auto points = c.matrix<double>(pos, "pos");
    if (!nodes.is_none() && !connect.is_none()) c.refuse("connect", "excludes nodes");
    return points.rows == 2 ? box_of<2>(c, points, nodes, connect, lower, upper)
                            : box_of<3>(c, points, nodes, connect, lower, upper);
}

py::array clip(py::handle pos, py::handle connect, py::handle C, py::handle N, py::handle to)
{
    call c("clip");
    const auto points = c.matrix<double>(pos, "pos");
    const auto elements = c.matrix<index>(connect, "connect");
    const auto point = c.point(C, "C");
    const auto normal = c.point(N, "N");
    auto kept = c.optional_matrix<index>(to, "to");
    c.checked([&] { return lib::clip(points, elements, point, normal, kept); });
    return handed_over(std::move(kept), elements.rows);
}

}  // namespace

void define_geometry(py::module_& m)
{
    m.def("translate", &translate);
    m.def("rotate", &rotate);
    m.def("zoom", &zoom);
    m.def("inc_bounding_box", &inc_bounding_box);
    m.def("clip", &clip);
}

}  // namespace binding
