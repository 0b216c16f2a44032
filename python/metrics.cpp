#include <algorithm>

#include "arrays.h"
#include "module.h"

namespace binding {
namespace {

template <std::size_t N>
using tensor = zeb::symmetric_fixed<double, N>;

using plane = zeb::matrix_fixed<double, 3, 2>;

template <class Fixed>
Fixed fixed_from(const std::vector<double>& values)
{
    Fixed all;
    std::copy(values.begin(), values.end(), all.begin());
    return all;
}

template <std::size_t N>
py::array array_from(const tensor<N>& M)
{
    return array_of<N*(N + 1) / 2>(M.data());
}

// Two vectors, each a row.
plane basis(call& c, py::handle value)
{
    return fixed_from<plane>(c.numbers(value, 6, "B"));
}

// Three packed values are a tensor of the plane, six of space.
std::vector<double> packed(call& c, py::handle value, std::string_view name)
{
    const py::array given = c.array(value, name);
    if (given.ndim() != 1 || (given.size() != 3 && given.size() != 6))
        c.refuse(name, "is no packed tensor of 3 or 6 numbers");
    return c.numbers(given, static_cast<std::size_t>(given.size()), name);
}

py::array metric_iso_to_aniso(py::handle size, py::handle dimension)
{
    call c("metric_iso_to_aniso");
    const double h = c.real(size, "h");
    const index columns = c.number(dimension, "dimension");
    if (columns != 2 && columns != 3) c.refuse("dimension", "is neither 2 nor 3");
    if (columns == 2) {
        tensor<2> M;
        lib::metric_iso_to_aniso(h, M);
        return array_from(M);
    }
    tensor<3> M;
    lib::metric_iso_to_aniso(h, M);
    return array_from(M);
}

py::array metric_iso_to_aniso2d(py::handle h, py::handle B)
{
    call c("metric_iso_to_aniso2d");
    tensor<2> M;
    lib::metric_iso_to_aniso2d(c.real(h, "h"), basis(c, B), M);
    return array_from(M);
}

py::array metric_aniso3d_to_aniso2d(py::handle M3, py::handle B)
{
    call c("metric_aniso3d_to_aniso2d");
    tensor<2> M2;
    lib::metric_aniso3d_to_aniso2d(fixed_from<tensor<3>>(c.numbers(M3, 6, "M3")), basis(c, B), M2);
    return array_from(M2);
}

template <std::size_t N>
py::array eigenvalues(const std::vector<double>& M)
{
    zeb::vector_fixed<double, N> values;
    lib::eigen_pairs(fixed_from<tensor<N>>(M), values, zeb::matrix_fixed<double, N, N>());
    return array_of<N>(values.data());
}

py::array eigen_pairs(py::handle M)
{
    call c("eigen_pairs");
    const auto values = packed(c, M, "M");
    return values.size() == 3 ? eigenvalues<2>(values) : eigenvalues<3>(values);
}

bool is_valid_metric(py::handle M)
{
    call c("is_valid_metric");
    const auto values = packed(c, M, "M");
    return values.size() == 3 ? lib::is_valid_metric(fixed_from<tensor<2>>(values))
                              : lib::is_valid_metric(fixed_from<tensor<3>>(values));
}

template <std::size_t N>
py::object minimum(const std::vector<double>& M1, const std::vector<double>& M2)
{
    tensor<N> M;
    if (!lib::minimum_metric(fixed_from<tensor<N>>(M1), fixed_from<tensor<N>>(M2), M)) return py::none();
    return array_from(M);
}

py::object minimum_metric(py::handle M1, py::handle M2)
{
    call c("minimum_metric");
    const auto first = packed(c, M1, "M1");
    const auto second = packed(c, M2, "M2");
    if (first.size() != second.size()) c.refuse("M2", "has not the dimension of M1");
    return first.size() == 3 ? minimum<2>(first, second) : minimum<3>(first, second);
}

bool are_valid_metrics(py::handle metrics, py::handle nodes, bool isotropic)
{
    call c("are_valid_metrics");
    const auto listed = c.optional_vector<index>(nodes, "nodes");
    if (isotropic) {
        const auto sizes = c.vector<float>(metrics, "metrics");
        return c.run(
            [&] { return nodes.is_none() ? lib::are_valid_metrics(sizes) : lib::are_valid_metrics(listed, sizes); });
    }
    const auto tensors = c.matrix<float>(metrics, "metrics");
    return c.run(
        [&] { return nodes.is_none() ? lib::are_valid_metrics(tensors) : lib::are_valid_metrics(listed, tensors); });
}

py::object overwrite_invalid_metrics(py::handle metrics, py::handle defaults, bool isotropic, bool isotropic_defaults,
                                     py::handle out)
{
    call c("overwrite_invalid_metrics");
    if (isotropic) {
        auto sizes = c.changed_vector<float>(metrics, out, "metrics");
        const auto other = c.vector<float>(defaults, "defaults");
        c.checked([&] { return lib::overwrite_invalid_metrics(sizes.values, other); });
        return result_of(std::move(sizes));
    }
    auto tensors = c.changed_matrix<float>(metrics, out, "metrics");
    const std::uint64_t columns = tensors.values.rows;
    if (isotropic_defaults) {
        const auto other = c.vector<float>(defaults, "defaults");
        c.checked([&] { return lib::overwrite_invalid_metrics(tensors.values, other); });
    } else {
        const auto other = c.matrix<float>(defaults, "defaults");
        c.checked([&] { return lib::overwrite_invalid_metrics(tensors.values, other); });
    }
    return result_of(std::move(tensors), columns);
}

py::array metrics_aniso3d_to_aniso2d(py::handle M3, py::handle bases)
{
    call c("metrics_aniso3d_to_aniso2d");
    const auto space = c.matrix<float>(M3, "M3");
    const auto planes = c.matrix<double>(bases, "bases");
    dense2D<float> M2;
    c.checked([&] { return lib::metrics_aniso3d_to_aniso2d(space, planes, M2); });
    return handed_over(std::move(M2), 3);
}

py::array metrics_iso_to_aniso2d(py::handle sizes, py::handle bases)
{
    call c("metrics_iso_to_aniso2d");
    const auto isotropic = c.vector<float>(sizes, "sizes");
    const auto planes = c.matrix<double>(bases, "bases");
    dense2D<float> M2;
    c.checked([&] { return lib::metrics_iso_to_aniso2d(isotropic, planes, M2); });
    return handed_over(std::move(M2), 3);
}

}  // namespace

void define_metrics(py::module_& m)
{
    m.def("metric_iso_to_aniso", &metric_iso_to_aniso);
    m.def("metric_iso_to_aniso2d", &metric_iso_to_aniso2d);
    m.def("metric_aniso3d_to_aniso2d", &metric_aniso3d_to_aniso2d);
    m.def("eigen_pairs", &eigen_pairs);
    m.def("is_valid_metric", &is_valid_metric);
    m.def("minimum_metric", &minimum_metric);
    m.def("are_valid_metrics", &are_valid_metrics);
    m.def("overwrite_invalid_metrics", &overwrite_invalid_metrics);
    m.def("metrics_aniso3d_to_aniso2d", &metrics_aniso3d_to_aniso2d);
    m.def("metrics_iso_to_aniso2d", &metrics_iso_to_aniso2d);
}

}  // namespace binding
