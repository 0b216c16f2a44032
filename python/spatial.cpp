#include <algorithm>
#include <memory>
#include <mutex>
#include <shared_mutex>

#include "arrays.h"
#include "changed_range.h"
#include "module.h"

namespace binding {
namespace {

// -- merge

py::tuple merge_nodes(py::handle pos, py::handle nodes1, py::handle nodes2, py::handle within)
{
    call c("merge/nodes");
    const double tolerance = c.real(within, "tolerance");
    const auto points = c.matrix<double>(pos, "pos");
    const auto kept = c.vector<index>(nodes1, "nodes");
    const auto others = nodes2.is_none() ? kept.sub_vector(0, kept.size) : c.vector<index>(nodes2, "nodes2");
    dense1D<index> new_ids;
    const int merged = c.checked([&] { return lib::merge(points, kept, others, new_ids, tolerance); });
    return py::make_tuple(handed_over(std::move(new_ids)), merged);
}

py::tuple merge_connect(py::handle pos, py::handle connect, py::handle within, py::handle mode, py::handle out)
{
    call c("merge/connect");
    const double tolerance = c.real(within, "tolerance");
    auto elements = changed_connectivity(c, connect, out);
    const auto points = c.matrix<double>(pos, "pos");
    const index how = c.number(mode, "mode");
    dense1D<index> new_ids;
    const int merged = c.checked([&] {
        auto* first = elements.matrices.data();
        return lib::merge(points, first, first + elements.matrices.size(), new_ids, tolerance, how);
    });
    return py::make_tuple(result_of(std::move(elements)), handed_over(std::move(new_ids)), merged);
}

py::tuple merge_pos(py::handle pos, py::handle within, py::handle out)
{
    call c("merge/pos");
    const double tolerance = c.real(within, "tolerance");
    auto points = c.changed_matrix<double>(pos, out, "pos");
    // The library gives the result a buffer of its own: `out` takes it from there.
    const dense2D<double> target = points.values.sub_matrix(0, 0, points.values.rows, points.values.cols);
    dense1D<index> new_ids;
    const int merged = c.checked([&] { return lib::merge(points.values, new_ids, tolerance); });
    if (!points.out.is_none() && !target.empty() && &target(0, 0) != &points.values(0, 0))
        for (std::uint64_t j = 0; j < target.cols; ++j)
            std::copy_n(&points.values(0, j), target.rows, target.col(j).begin());
    const std::uint64_t columns = target.rows;
    return py::make_tuple(result_of(std::move(points), columns), handed_over(std::move(new_ids)), merged);
}

// -- node_detector

// Coordinates that a detector refers to, and the objects that they lie in: handed on together, so that neither can
// outlive the other whatever threads do.
struct searched_points {
    dense2D<double> matrix;
    bool exclusive = true;  // no other Python object can change them
    std::vector<py::object> kept;
};

// A detector with the coordinates that it refers to. Queries may run at the same time; what changes it runs alone. The
// mutex is only taken for as long as the interpreter's lock is not waited for, so that the two cannot block each other.
class detector {
public:
    void reinit(py::handle pos, py::handle nodes, py::handle connect);
    void clear();
    std::unique_ptr<detector> copy() const;
    unsigned long size() const;
    unsigned long insert(py::handle nodes, py::handle connect);

    py::object closest(py::handle points, bool raw) const;
    py::object closest_to_nodes(py::handle nodes, bool raw) const;
    py::object in_box(py::handle lower, py::handle upper) const;

private:
    template <class F>
    void query(call& c, F f) const;

    mutable std::shared_mutex mutex_;
    lib::node_detector searched_;
    std::shared_ptr<searched_points> points_;  // at a place that does not change
    bool has_tree_ = false;
};

// Code of the library; the tree is the detector's own afterwards also where it is not replaced.
int build(lib::node_detector& searched, const dense2D<double>& points, const dense1D<index>* nodes,
          connectivities* connect)
{
    if (nodes != nullptr) return searched.reinit(points, *nodes);
    if (connect == nullptr) return searched.reinit(points);
    return searched.reinit(points, connect->begin(), connect->end());
}

void detector::reinit(py::handle pos, py::handle nodes, py::handle connect)
{
    call c(connect.is_none() ? "NodeDetector" : "NodeDetector/connect");
    auto points = std::make_shared<searched_points>();
    dense2D<double> matrix = c.matrix<double>(pos, "pos");
    points->matrix.swap(matrix);  // an assignment would copy what lies in memory of others
    points->exclusive = c.exclusive();
    points->kept = c.kept();
    const auto list = c.optional_vector<index>(nodes, "nodes");
    auto elements = connect.is_none() ? connectivities() : c.connectivity(connect, "connect");
    const int code = c.run([&] {
        const std::unique_lock alone(mutex_);
        const int result = build(searched_, points->matrix, nodes.is_none() ? nullptr : &list,
                                 connect.is_none() ? nullptr : &elements);
        if (result == 0) {
            points_.swap(points);  // the old ones go with the interpreter's lock held
            has_tree_ = true;
        } else if (nodes.is_none() && connect.is_none()) {
            has_tree_ = false;
        }
        return result;
    });
    c.translate(code);
}

void detector::clear()
{
    std::shared_ptr<searched_points> points;  // goes last: an object that is let go of may call back
    const std::unique_lock alone(mutex_);
    searched_.clear();
    has_tree_ = false;
    points_.swap(points);
}

std::unique_ptr<detector> detector::copy() const
{
    auto other = std::make_unique<detector>();
    const std::shared_lock together(mutex_);
    other->searched_ = searched_;
    if (other->searched_.size() != searched_.size()) throw std::bad_alloc();
    other->points_ = points_;
    other->has_tree_ = has_tree_;
    return other;
}

unsigned long detector::size() const
{
    const std::shared_lock together(mutex_);
    return searched_.size();
}

unsigned long detector::insert(py::handle nodes, py::handle connect)
{
    call c("NodeDetector.insert");
    dense1D<index> list = c.optional_vector<index>(nodes, "nodes");
    if (!connect.is_none()) {
        auto elements = c.connectivity(connect, "connect");
        dense1D<index> distinct;
        c.checked([&] { return lib::unique_indices(distinct, elements.begin(), elements.end()); });
        list.swap(distinct);
    }
    const std::unique_lock alone(mutex_);
    if (!has_tree_) return 0;
    const auto valid = std::count_if(list.begin(), list.end(), [&](index node) { return node < points_->matrix.cols; });
    const unsigned long inserted = searched_.insert(list);
    if (inserted != static_cast<unsigned long>(valid)) throw std::bad_alloc();
    return inserted;
}

template <class F>
void detector::query(call& c, F f) const
{
    const bool done = c.run([&] {
        const std::shared_lock together(mutex_);
        const bool exclusive = points_ == nullptr || points_->exclusive;
        if (exclusive) f();
        return exclusive;
    });
    if (done) return;
    const std::shared_lock together(mutex_);
    f();
}

bool is_one(const py::array& array)
{
    return array.ndim() == 1 && array.size() != 0;
}

// One point or rows of points, 2 or 3 numbers each.
dense2D<double> points_of(call& c, py::handle value, std::string_view name, bool& one)
{
    py::array given = c.array(value, name);
    one = is_one(given);
    if (one) given = given.attr("reshape")(1, -1);
    dense2D<double> points = c.matrix<double>(given, name);
    if (points.cols != 0 && points.rows != 2 && points.rows != 3) c.refuse(name, "has neither 2 nor 3 numbers a point");
    return points;
}

// f(j, point) for all points, as what they are.
template <class F>
void for_points(const dense2D<double>& points, F f)
{
    if (points.empty()) return;
    const double* P = &points(0, 0);
    const bool flat = points.rows == 2;
    for (std::uint64_t j = 0; j < points.cols; ++j, P += points.ld) {
        if (flat) {
            f(j, zeb::vector_fixed<double, 2>(P[0], P[1]));
        } else {
            f(j, zeb::vector_fixed<double, 3>(P[0], P[1], P[2]));
        }
    }
}

dense1D<index> list_of(std::uint64_t size)
{
    dense1D<index> list;
    if (!list.resize(size)) throw std::bad_alloc();
    return list;
}

py::object one_or_all(dense1D<index>&& found, bool one, bool raw)
{
    if (!one) return index_table(std::move(found), raw);
    return raw || found[0] != zeb::NONE_INDEX ? py::int_(found[0]) : py::int_(-1);
}

py::object detector::closest(py::handle points, bool raw) const
{
    call c("NodeDetector.closest");
    bool one = false;
    const auto queries = points_of(c, points, "points", one);
    auto found = list_of(queries.cols);
    query(c, [&] {
        index* to = found.data();
        for_points(queries,
                   [&](std::uint64_t j, const auto& P) { to[j] = static_cast<index>(searched_.find_closest(P)); });
    });
    return one_or_all(std::move(found), one, raw);
}

py::object detector::closest_to_nodes(py::handle nodes, bool raw) const
{
    call c("NodeDetector.closest_to_nodes");
    const bool one = PyIndex_Check(nodes.ptr()) && !py::isinstance<py::array>(nodes);
    dense1D<index> queries = one ? dense1D<index>(1, c.number(nodes, "nodes")) : c.vector<index>(nodes, "nodes");
    auto found = list_of(queries.size);
    query(c, [&] {
        for (std::uint64_t j = 0; j < queries.size; ++j)
            found[j] = static_cast<index>(searched_.find_closest(queries[j]));
    });
    return one_or_all(std::move(found), one, raw);
}

py::object detector::in_box(py::handle lower, py::handle upper) const
{
    call c("NodeDetector.in_box");
    bool one = false, one_upper = false;
    const auto low = points_of(c, lower, "lower", one);
    const auto high = points_of(c, upper, "upper", one_upper);
    if (one != one_upper || low.rows != high.rows || low.cols != high.cols)
        c.refuse("upper", "has not the shape of lower");
    dense1D<index> found;
    py::array_t<std::int64_t> offsets(detail::count(low.cols + 1));
    std::int64_t* ends = offsets.mutable_data();
    query(c, [&] {
        ends[0] = 0;
        for_points(low, [&](std::uint64_t j, const auto& P) {
            auto Q = P;
            std::copy_n(&high(0, j), high.rows, Q.begin());
            searched_.find_in_box(P, Q, found);
            ends[j + 1] = static_cast<std::int64_t>(found.size);
        });
    });
    py::array nodes = handed_over(std::move(found));
    if (one) return nodes;
    return py::make_tuple(nodes, offsets);
}

}  // namespace

void define_spatial(py::module_& m)
{
    m.def("merge_nodes", &merge_nodes);
    m.def("merge_connect", &merge_connect);
    m.def("merge_pos", &merge_pos);
    py::class_<detector>(m, "Detector")
        .def(py::init<>())
        .def("reinit", &detector::reinit)
        .def("clear", &detector::clear)
        .def("copy", &detector::copy)
        .def("size", &detector::size)
        .def("insert", &detector::insert)
        .def("closest", &detector::closest)
        .def("closest_to_nodes", &detector::closest_to_nodes)
        .def("in_box", &detector::in_box);
}

}  // namespace binding
