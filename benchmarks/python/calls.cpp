// The calls that compare.py measures from Python, timed here without Python: the same arrays, the same process. Each
// returns the seconds of one call, negative when it failed; results are dropped outside the measured time.
#include <time.h>

#include <cstdint>
#include <utility>

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

// Time of the processor in this thread, as time.thread_time() of Python: other programs matter less.
double now()
{
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

template <class F>
double seconds(F f)
{
    const double start = now();
    const int code = f();
    const double time = now() - start;
    return code < 0 ? -1.0 : time;
}

}  // namespace

// A detector with the coordinates that it refers to.
struct searched_points {
    explicit searched_points(dense2D<double>&& all) : points(std::move(all)), detector(points) {}
    dense2D<double> points;
    node_detector detector;
};

// What every function gets: coordinates, elements, neighbours, edges, and a list of all nodes turned round.
struct mesh_arrays {
    double* pos;
    double* queries;
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
    double* bases;
    double* surface_pos;
    std::uint64_t surface_nodes;
    unsigned int* triangles;
    std::uint64_t triangle_count;
    const char* file;
    const void* detector;
    int type;

    auto points() const { return matrix(pos, nodes, dimension); }
    auto cells() const { return matrix(connect, elements, width); }
    auto table() const { return matrix(neighbors, elements, faces); }
    auto lines() const { return matrix(edges, edge_count, 2); }
    auto kind() const { return static_cast<element_type>(type); }
    auto all_nodes() const { return vector(list, nodes); }
    auto field() const { return matrix(metrics, nodes, 6); }
    auto planes() const { return matrix(bases, nodes, 6); }
    auto surface_points() const { return matrix(surface_pos, surface_nodes, 3); }
    auto surface() const { return matrix(triangles, triangle_count, 3); }
    auto targets() const { return matrix(queries, nodes, dimension); }
    const node_detector& tree() const { return static_cast<const searched_points*>(detector)->detector; }
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

const void* new_detector(const mesh_arrays* m)
{
    return new searched_points{m->points()};
}

void delete_detector(const void* detector)
{
    delete static_cast<const searched_points*>(detector);
}

double closest_seconds(const mesh_arrays* m)
{
    const auto queries = m->targets();
    dense1D<unsigned> out;
    return seconds([&] {
        out.resize(queries.cols);
        for (std::uint64_t j = 0; j < queries.cols; ++j)
            out[j] = static_cast<unsigned>(
                m->tree().find_closest(vector_fixed<double, 3>(queries(0, j), queries(1, j), queries(2, j))));
        return 0;
    });
}

double closest_to_nodes_seconds(const mesh_arrays* m)
{
    const auto queries = m->all_nodes();
    dense1D<unsigned> out;
    return seconds([&] {
        out.resize(queries.size);
        for (std::uint64_t j = 0; j < queries.size; ++j)
            out[j] = static_cast<unsigned>(m->tree().find_closest(queries[j]));
        return 0;
    });
}

double in_box_seconds(const mesh_arrays* m)
{
    const auto queries = m->targets();
    dense1D<unsigned> out;
    dense1D<std::uint64_t> ends;
    return seconds([&] {
        ends.resize(queries.cols + 1);
        ends[0] = 0;
        for (std::uint64_t j = 0; j < queries.cols; ++j) {
            const vector_fixed<double, 3> low(queries(0, j), queries(1, j), queries(2, j));
            const vector_fixed<double, 3> high(queries(0, j) + 1, queries(1, j) + 1, queries(2, j) + 1);
            m->tree().find_in_box(low, high, out);
            ends[j + 1] = out.size;
        }
        return 0;
    });
}

double insert_seconds(const mesh_arrays* m)
{
    node_detector detector;
    const auto points = m->points();
    const auto list = m->all_nodes();
    const auto half = list.sub_vector(0, list.size / 2);
    const auto rest = list.sub_vector(list.size / 2, list.size - list.size / 2);
    return seconds([&] {
        if (detector.reinit(points, half) != 0) return -1;
        return detector.insert(rest) == rest.size ? 0 : -1;
    });
}

double merge_nodes_seconds(const mesh_arrays* m)
{
    const auto points = m->points();
    const auto list = m->all_nodes();
    dense1D<unsigned> new_ids;
    return seconds([&] { return merge(points, list, new_ids, 1e-6); });
}

double merge_pos_seconds(const mesh_arrays* m)
{
    const auto given = m->points();
    dense2D<double> points;
    dense1D<unsigned> new_ids;
    return seconds([&] {
        points.copy(given);  // Python leaves its argument alone
        return merge(points, new_ids, 1e-6);
    });
}

double reordered_parts_seconds(const mesh_arrays* m)
{
    const auto given_cells = m->cells(), given_table = m->table();
    dense2D<unsigned> cells, table;
    dense1D<unsigned> offsets;
    return seconds([&] {
        cells.copy(given_cells);
        table.copy(given_table);
        return get_connex_parts(cells, table, offsets);
    });
}

double count_unique_indices_seconds(const mesh_arrays* m)
{
    const auto cells = m->cells();
    return seconds([&] { return count_unique_indices(cells); });
}

double permutation_seconds(const mesh_arrays* m)
{
    const auto given = m->all_nodes();
    const auto perm = m->all_nodes();
    dense1D<unsigned> values;
    return seconds([&] {
        values.shallow_copy(given);  // the result gets a buffer of its own
        permutation(values, perm);
        return 0;
    });
}

double append_field_seconds(const mesh_arrays* m)
{
    auto all = m->field();
    const auto field = m->field();
    return seconds([&] { return append(all, field); });
}

double overwrite_invalid_metrics_seconds(const mesh_arrays* m)
{
    auto field = m->field();
    const auto sizes = vector(m->sizes, m->nodes);
    return seconds([&] { return overwrite_invalid_metrics(field, sizes); });
}

double metrics_aniso3d_to_aniso2d_seconds(const mesh_arrays* m)
{
    const auto field = m->field();
    const auto planes = m->planes();
    dense2D<float> out;
    return seconds([&] { return metrics_aniso3d_to_aniso2d(field, planes, out); });
}

double metrics_iso_to_aniso2d_seconds(const mesh_arrays* m)
{
    const auto sizes = vector(m->sizes, m->nodes);
    const auto planes = m->planes();
    dense2D<float> out;
    return seconds([&] { return metrics_iso_to_aniso2d(sizes, planes, out); });
}

double zoom_seconds(const mesh_arrays* m)
{
    auto points = m->points();
    return seconds([&] { return zoom(points, vector_fixed<double, 3>(), 1 + 1e-15); });
}

double vtk_convert_seconds(const mesh_arrays* m)
{
    const auto cells = m->cells();
    dense1D<unsigned> out, types;
    unsigned count = 0;
    return seconds([&] { return vtk_convert(cells, m->kind(), count, out, types); });
}

double medit_output_seconds(const mesh_arrays* m)
{
    const auto points = m->points();
    const auto cells = m->cells();
    return seconds([&] { return medit_output(m->file, points, cells, m->kind()); });
}

double medit_tensor_seconds(const mesh_arrays* m)
{
    const auto field = m->field();
    return seconds([&] { return medit_tensor(m->file, field); });
}

double ensight_output_seconds(const mesh_arrays* m)
{
    const auto points = m->points();
    const auto cells = m->cells();
    return seconds([&] { return ensight_output(m->file, points, cells, m->kind()); });
}

double STL_output_seconds(const mesh_arrays* m)
{
    const auto points = m->surface_points();
    const auto cells = m->surface();
    return seconds([&] { return STL_output(m->file, points, cells, false); });
}

double WavefrontOBJ_output_seconds(const mesh_arrays* m)
{
    const auto points = m->surface_points();
    const auto cells = m->surface();
    return seconds([&] {
        return WavefrontOBJ_output(m->file, points, dense2D<double>(), dense2D<double>(), cells, dense2D<unsigned>());
    });
}

double WavefrontOBJ_input_seconds(const mesh_arrays* m)
{
    dense2D<double> points, normals, uvs;
    dense2D<unsigned> triangles, quads;
    return seconds([&] { return WavefrontOBJ_input(m->file, points, normals, uvs, triangles, quads); });
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
