// The calls that compare.py measures from Python, timed here without Python: the same arrays, the same process. Each
// returns the seconds of one call, negative when it failed; results are dropped outside the measured time.
#include <chrono>
#include <cstdint>

#include <tessolv/tessolv.h>

using namespace zeb::tessolv;

namespace {

template <class T>
dense2D<T> matrix(T* data, std::uint64_t cols, std::uint64_t rows)
{
    dense2D<T> m;
    m.buffer = new dense_buffer<T>{data, 1, rows * cols, 0, 1};
    m.rows = m.ld = rows;
    m.cols = cols;
    m.size = rows * cols;
    return m;
}

template <class T>
dense1D<T> vector(T* data, std::uint64_t size)
{
    dense1D<T> v;
    v.buffer = new dense_buffer<T>{data, 1, size, 0, 1};
    v.size = size;
    return v;
}

template <class F>
double seconds(F f)
{
    const auto start = std::chrono::steady_clock::now();
    const int code = f();
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    return code < 0 ? -1.0 : time.count();
}

}  // namespace

// What every function gets: coordinates, elements, neighbours, edges, and a list of all nodes turned round.
struct mesh_arrays {
    double* pos;
    std::uint64_t nodes, dimension;
    unsigned int* connect;
    std::uint64_t elements, width;
    unsigned int* neighbors;
    std::uint64_t faces;
    unsigned int* edges;
    std::uint64_t edge_count;
    unsigned int* list;
    float* sizes;
    float* metrics;
    const char* file;
    int type;

    auto points() const { return matrix(pos, nodes, dimension); }
    auto cells() const { return matrix(connect, elements, width); }
    auto table() const { return matrix(neighbors, elements, faces); }
    auto lines() const { return matrix(edges, edge_count, 2); }
    auto kind() const { return static_cast<element_type>(type); }
    auto all_nodes() const { return vector(list, nodes); }
};

extern "C" {

double check_IDs_seconds(const mesh_arrays* m)
{
    const auto cells = m->cells();
    return seconds([&] { return check_IDs(cells, m->kind(), static_cast<unsigned>(m->nodes)) ? 0 : -1; });
}

double get_neighbors_seconds(const mesh_arrays* m)
{
    const auto cells = m->cells();
    dense2D<unsigned> out;
    return seconds([&] { return get_neighbors(cells, m->kind(), false, out); });
}

double get_boundaries_seconds(const mesh_arrays* m)
{
    const auto cells = m->cells(), table = m->table();
    dense2D<unsigned> out;
    return seconds([&] { return get_boundaries(cells, table, m->kind(), out); });
}

double get_ancestors_seconds(const mesh_arrays* m)
{
    const auto cells = m->cells();
    dense1D<unsigned> out;
    return seconds([&] { return get_ancestors(cells, out); });
}

double get_connex_parts_seconds(const mesh_arrays* m)
{
    const auto table = m->table();
    dense1D<unsigned> elements, offsets;
    return seconds([&] { return get_connex_parts(table, elements, offsets); });
}

double copy_edges_seconds(const mesh_arrays* m)
{
    const auto cells = m->cells();
    dense2D<unsigned> out;
    return seconds([&] { return copy_edges(cells, m->kind(), out); });
}

double merge_seconds(const mesh_arrays* m)
{
    const auto points = m->points();
    auto cells = m->cells();
    dense1D<unsigned> new_ids;
    return seconds([&] { return merge(points, cells, new_ids, 1e-6); });
}

double node_detector_seconds(const mesh_arrays* m)
{
    const auto points = m->points();
    node_detector detector;
    return seconds([&] { return detector.reinit(points); });
}

double closest_seconds(const mesh_arrays* m)
{
    const auto points = m->points();
    const node_detector detector(points);
    dense1D<unsigned> out;
    return seconds([&] {
        out.resize(points.cols);
        for (std::uint64_t j = 0; j < points.cols; ++j)
            out[j] = static_cast<unsigned>(
                detector.find_closest(vector_fixed<double, 3>(points(0, j) + 0.1, points(1, j), points(2, j))));
        return 0;
    });
}

double unique_indices_seconds(const mesh_arrays* m)
{
    const auto cells = m->cells();
    dense1D<unsigned> out;
    return seconds([&] { return unique_indices(out, cells); });
}

double change_indices_seconds(const mesh_arrays* m)
{
    auto cells = m->cells();
    const auto table = m->all_nodes();
    return seconds([&] {
        change_indices(cells, table);
        return 0;
    });
}

double get_IDs_seconds(const mesh_arrays* m)
{
    const auto cells = m->cells(), others = m->cells();
    dense1D<unsigned> a, b;
    return seconds([&] { return get_IDs(cells, others, a, b, true); });
}

double append_seconds(const mesh_arrays* m)
{
    auto A = m->cells();
    const auto B = m->cells();
    return seconds([&] { return append(A, B); });
}

double simplify_seconds(const mesh_arrays* m)
{
    auto points = m->points();
    auto cells = m->cells();
    dense1D<unsigned> new_ids;
    return seconds([&] { return simplify(points, cells, new_ids); });
}

double copy_mesh_seconds(const mesh_arrays* m)
{
    auto points = m->points();
    const auto cells = m->cells();
    dense2D<unsigned> out;
    return seconds([&] { return copy_mesh(points, out, cells); });
}

double remove_degenerated_seconds(const mesh_arrays* m)
{
    const auto given = m->cells();
    dense2D<unsigned> cells;
    dense1D<unsigned> new_ids;
    return seconds([&] {
        cells.copy(given);  // Python leaves its argument alone
        return remove_degenerated(cells, new_ids);
    });
}

double shape_qualities_seconds(const mesh_arrays* m)
{
    const auto points = m->points();
    const auto cells = m->cells();
    dense1D<double> out;
    return seconds([&] { return shape_qualities(points, cells, m->kind(), out); });
}

double edge_lengths_seconds(const mesh_arrays* m)
{
    const auto points = m->points();
    const auto lines = m->lines();
    dense2D<double> out;
    return seconds([&] { return edge_lengths(points, lines, out); });
}

double edge_qualities_seconds(const mesh_arrays* m)
{
    const auto points = m->points();
    const auto cells = m->cells();
    const auto sizes = vector(m->sizes, m->nodes);
    zeb::misc::histogram h;
    return seconds([&] { return edge_qualities(points, cells, m->kind(), sizes, h); });
}

double are_valid_metrics_seconds(const mesh_arrays* m)
{
    const auto metrics = matrix(m->metrics, m->nodes, 6);
    return seconds([&] { return are_valid_metrics(metrics) ? 0 : -1; });
}

double translate_seconds(const mesh_arrays* m)
{
    auto points = m->points();
    return seconds([&] { return translate(points, vector_fixed<double, 3>(1e-9, 0, 0)); });
}

double rotate_seconds(const mesh_arrays* m)
{
    auto points = m->points();
    return seconds([&] { return rotate(points, vector_fixed<double, 3>(), vector_fixed<double, 3>(1e-9, 0, 0)); });
}

double inc_bounding_box_seconds(const mesh_arrays* m)
{
    const auto points = m->points();
    vector_fixed<double, 3> low(1e300, 1e300, 1e300), high(-1e300, -1e300, -1e300);
    return seconds([&] { return inc_bounding_box(points, low, high); });
}

double clip_seconds(const mesh_arrays* m)
{
    const auto points = m->points();
    const auto cells = m->cells();
    dense2D<unsigned> out;
    return seconds(
        [&] { return clip(points, cells, vector_fixed<double, 3>(20, 0, 0), vector_fixed<double, 3>(1, 0, 0), out); });
}

double vtk_output_seconds(const mesh_arrays* m)
{
    const auto points = m->points();
    const auto cells = m->cells();
    return seconds([&] { return vtk_output(m->file, points, cells, m->kind()); });
}

double STL_input_seconds(const mesh_arrays* m)
{
    dense2D<double> points;
    dense2D<unsigned> cells;
    return seconds([&] { return STL_input(m->file, points, cells, false); });
}
}
