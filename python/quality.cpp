#include "arrays.h"
#include "module.h"

namespace binding {
namespace {

using histogram = zeb::misc::histogram;

histogram& histogram_of(const call& c, py::handle value)
{
    if (!py::isinstance<histogram>(value)) c.refuse("histogram", "is no Histogram");
    return value.cast<histogram&>();
}

// Keeps the values instead of counting them.
class value_list : public histogram {
public:
    void process(double value) override
    {
        const std::uint64_t before = values.size;
        values.push_back(value);
        complete = complete && values.size != before;
    }
    void process(const dense1D<double>& all) override { complete = values.copy(all); }

    dense1D<double> values;
    bool complete = true;
};

void measure(call& c, const dense2D<double>& points, connectivities& elements, py::handle type, histogram& h)
{
    if (elements.single) {
        const auto kind = c.type(type, "type");
        c.translate(lib::shape_qualities(points, *elements.begin(), kind, h));
    } else {
        const auto kinds = c.types(type, "type");
        c.translate(lib::shape_qualities(points, elements.begin(), elements.end(), kinds, h));
    }
}

py::object shape_qualities(py::handle pos, py::handle connect, py::handle type, py::handle into)
{
    call c("shape_qualities");
    const auto points = c.matrix<double>(pos, "pos");
    auto elements = c.connectivity(connect, "connect");
    if (!into.is_none()) {
        measure(c, points, elements, type, histogram_of(c, into));
        return py::reinterpret_borrow<py::object>(into);
    }
    dense1D<double> qualities;
    if (elements.single) {
        const auto kind = c.type(type, "type");
        c.checked([&] { return lib::shape_qualities(points, *elements.begin(), kind, qualities); });
    } else {
        const auto kinds = c.types(type, "type");
        c.checked([&] { return lib::shape_qualities(points, elements.begin(), elements.end(), kinds, qualities); });
    }
    return handed_over(std::move(qualities));
}

py::array edge_lengths(py::handle pos, py::handle edges)
{
    call c("edge_lengths");
    const auto points = c.matrix<double>(pos, "pos");
    const auto lines = c.matrix<index>(edges, "edges");
    dense2D<double> lengths;
    c.checked([&] { return lib::edge_lengths(points, lines, lengths); });
    return handed_over(std::move(lengths), 3);
}

py::object edge_qualities(py::handle pos, py::handle connect, py::handle type, py::handle sizes, py::handle into)
{
    call c("edge_qualities");
    const auto points = c.matrix<double>(pos, "pos");
    auto elements = c.connectivity(connect, "connect");
    const auto wanted = c.vector<float>(sizes, "sizes");
    const auto kinds = elements.single ? dense1D<int>(1, c.type(type, "type")) : c.types(type, "type");
    const auto feed = [&](histogram& h) {
        return lib::edge_qualities(points, elements.begin(), elements.end(), kinds, wanted, h);
    };
    if (!into.is_none()) {
        c.translate(feed(histogram_of(c, into)));
        return py::reinterpret_borrow<py::object>(into);
    }
    value_list list;
    c.checked([&] { return feed(list); });
    if (!list.complete) throw std::bad_alloc();
    return handed_over(std::move(list.values));
}

void process(histogram& h, py::handle values)
{
    call c("Histogram.process");
    const py::array given = c.array(values, "values");
    if (given.ndim() == 0) {
        h.process(c.numbers(given, 1, "values").front());
    } else {
        h.process(c.vector<double>(given, "values"));
    }
}

constexpr const char* histogram_doc =
    R"(Collects values: their number, extremes, mean and counts in bins of equal width.

Args:
    lower: where the first bin begins.
    upper: where the last one ends.
    bins: how many there are, 20 if left out.

Attributes:
    count: number of values, NaN apart.
    minimum: least value; NaN without values, as the next three.
    maximum: greatest value.
    mean: of all values.
    standard_deviation: about the mean.
    bins: counts, shape (bins,), uint32.
    below: number of values below the first bin.
    above: number of values above the last bin.
    not_a_number: number of NaN.

Raises:
    Error: a bound that is no number, a negative number of bins.

>>> qualities = Histogram(0, 1, 4)
>>> qualities.process([0.1, 0.3, 2.0])
>>> qualities.count, qualities.bins.tolist(), qualities.above
(3, [1, 1, 0, 0], 1)
)";

histogram empty_histogram(py::handle lower, py::handle upper, py::handle bins)
{
    const call c("Histogram");
    const index count = c.number(bins, "bins");
    if (count == zeb::NONE_INDEX) c.refuse("bins", "is negative");
    require_room(2 * std::uint64_t{count} * sizeof(index));  // a copy comes with it
    histogram h(c.real(lower, "lower"), c.real(upper, "upper"), count);
    if (h.bins().size != count) throw std::bad_alloc();
    return h;
}

std::string text_of(const histogram& h)
{
    return py::str("<tessolv.Histogram: {} values, mean {}>").format(h.count(), h.mean());
}

}  // namespace

void define_quality(py::module_& m)
{
    m.def("shape_qualities", &shape_qualities);
    m.def("edge_lengths", &edge_lengths);
    m.def("edge_qualities", &edge_qualities);
    py::options docs;
    docs.disable_function_signatures();
    py::class_<histogram> h(m, "Histogram", histogram_doc, py::is_final());
    h.attr("__module__") = "tessolv._quality";
    h.def(py::init(&empty_histogram), py::arg("lower") = -1.0, py::arg("upper") = 1.0, py::arg("bins") = 20u,
          "Histogram(lower=-1.0, upper=1.0, bins=20)")
        .def("process", &process, py::arg("values"), "Adds one number or an array of shape (n,).")
        .def("__copy__", [](const histogram& one) { return histogram(one); })
        .def("__deepcopy__", [](const histogram& one, py::handle) { return histogram(one); })
        .def("__repr__", &text_of)
        .def_property_readonly("count", &histogram::count, "Number of values, NaN apart.")
        .def_property_readonly("minimum", &histogram::minimum, "Least value.")
        .def_property_readonly("maximum", &histogram::maximum, "Greatest value.")
        .def_property_readonly("mean", &histogram::mean, "Mean of the values.")
        .def_property_readonly("standard_deviation", &histogram::standard_deviation, "About the mean.")
        .def_property_readonly(
            "bins", [](const histogram& one) { return handed_over(one.bins()); }, "Counts, shape (bins,), uint32.")
        .def_property_readonly("below", &histogram::below, "Number of values below the first bin.")
        .def_property_readonly("above", &histogram::above, "Number of values above the last bin.")
        .def_property_readonly("not_a_number", &histogram::not_a_number, "Number of NaN.");
}

}  // namespace binding
