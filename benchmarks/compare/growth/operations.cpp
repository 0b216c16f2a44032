#include "growth/operations.h"

namespace compare {

dense2D<double> random_points(double n, unsigned int seed)
{
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> coordinate(0.0, 1.0);
    dense2D<double> pos(3, std::uint64_t(n / shrink));
    for (std::uint64_t j = 0; j < pos.cols; ++j)
        for (std::uint64_t i = 0; i < 3; ++i) pos(i, j) = coordinate(random);
    return pos;
}

// A sheet with a node of its own for every corner of every triangle.
mesh triangle_soup(double facets, bool shuffled)
{
    const mesh sheet = surface(triangles, facets, shuffled);
    mesh m{dense2D<double>(3, 3 * sheet.connect.cols), dense2D<unsigned int>(3, sheet.connect.cols), EL_TRIA3};
    for (std::uint64_t e = 0; e < m.connect.cols; ++e)
        for (std::uint64_t i = 0; i < 3; ++i) {
            std::copy_n(&sheet.pos(0, sheet.connect(i, e)), 3, &m.pos(0, 3 * e + i));
            m.connect(i, e) = static_cast<unsigned int>(3 * e + i);
        }
    return m;
}

namespace {

using index_list = dense1D<unsigned int>;
using index_matrix = dense2D<unsigned int>;

mesh tetra(double n, bool shuffled)
{
    return solid(tetrahedra, n, shuffled);
}
mesh hexa(double n, bool shuffled)
{
    return solid(hexahedra, n, shuffled);
}
mesh tria(double n, bool shuffled)
{
    return surface(triangles, n, shuffled);
}

struct with_neighbors : mesh {
    index_matrix neighbors;
    explicit with_neighbors(mesh m) : mesh(std::move(m)) { get_neighbors(connect, type, false, neighbors); }
};

struct with_edges : mesh {
    index_matrix edges;
    explicit with_edges(mesh m) : mesh(std::move(m)) { copy_edges(connect, type, edges); }
};

index_list in_order(std::uint64_t n, bool shuffled)
{
    index_list list(n);
    std::iota(list.begin(), list.end(), 0u);
    if (shuffled) std::shuffle(list.begin(), list.end(), std::mt19937(3));
    return list;
}

// -- what is done

void neighbors(const mesh& m, lap& l)
{
    index_matrix found;
    l.timed([&] { get_neighbors(m.connect, m.type, false, found); });
}
void boundary(const with_neighbors& m, lap& l)
{
    index_matrix open;
    l.timed([&] { get_boundaries(m.connect, m.neighbors, m.type, open); });
}
void ancestors(const mesh& m, lap& l)
{
    index_list found;
    l.timed([&] { get_ancestors(m.connect, found); });
}
void parts(const with_neighbors& m, lap& l)
{
    index_list elements, offsets;
    l.timed([&] { get_connex_parts(m.neighbors, elements, offsets); });
}
void edges(const mesh& m, lap& l)
{
    index_matrix found;
    l.timed([&] { copy_edges(m.connect, m.type, found); });
}

void node_list(const mesh& m, lap& l)
{
    index_list nodes;
    l.timed([&] { unique_indices(nodes, m.connect); });
}
void renumber(const mesh& m, lap& l)
{
    index_matrix connect = m.connect;
    const index_list numbers = in_order(m.pos.cols, true);
    l.timed([&] { change_indices(connect, numbers); });
}
void permute(const index_list& order, lap& l)
{
    index_list values = in_order(order.size, false);
    l.timed([&] { permutation(values, order); });
}
void write_plainly(const index_list& order, lap& l)
{
    index_list values = in_order(order.size, false);
    index_list moved(order.size);
    l.timed([&] {
        moved.copy(values);
        for (std::uint64_t i = 0; i < order.size; ++i) moved[order[i]] = values[i];
    });
}
void match_elements(const mesh& m, lap& l)
{
    index_list in_1, in_2;
    l.timed([&] { get_IDs(m.connect, m.connect, in_1, in_2, false); });
}
void match_nodes(const index_list& list, lap& l)
{
    index_list in_1, in_2;
    l.timed([&] { get_IDs(list, list, in_1, in_2); });
}
void append_elements(const mesh& m, lap& l)
{
    index_matrix all;
    l.timed([&] { append(all, m.connect); });
}
void drop_nodes(const mesh& m, lap& l)
{
    dense2D<double> pos(3, 2 * m.pos.cols, 0.0);  // every other node is unused
    index_matrix connect = m.connect;
    for (std::uint64_t e = 0; e < connect.cols; ++e)
        for (std::uint64_t i = 0; i < connect.rows; ++i) connect(i, e) *= 2;
    l.timed([&] { simplify(pos, connect); });
}
void copy_elements(const mesh& m, lap& l)
{
    dense2D<double> pos = m.pos;
    index_matrix connect;
    l.timed([&] { copy_mesh(pos, connect, m.connect); });
}
void drop_flat(const mesh& m, lap& l)
{
    index_matrix connect = m.connect;
    for (std::uint64_t e = 0; e < connect.cols; e += 10) connect(0, e) = connect(1, e);
    index_list numbers;
    l.timed([&] { remove_degenerated(connect, numbers); });
}

struct searched {
    dense2D<double> pos, places;
    node_detector detector;
    searched(dense2D<double> nodes, dense2D<double> at) : pos(std::move(nodes)), places(std::move(at)), detector(pos) {}
    searched(const searched&) = delete;
    searched& operator=(const searched&) = delete;
};

std::shared_ptr<searched> points(double n, bool shuffled)
{
    auto pos = random_points(n, 1);
    auto places = random_points(n / 8, 2);
    const auto along = [&](dense2D<double>& m) {
        std::vector<std::array<double, 3>> all(m.cols);
        for (std::uint64_t j = 0; j < m.cols; ++j) all[j] = {m(0, j), m(1, j), m(2, j)};
        std::sort(all.begin(), all.end());
        for (std::uint64_t j = 0; j < m.cols; ++j) std::copy(all[j].begin(), all[j].end(), &m(0, j));
    };
    if (!shuffled) along(pos), along(places);
    return std::make_shared<searched>(std::move(pos), std::move(places));
}

void build(const std::shared_ptr<searched>& s, lap& l)
{
    node_detector detector;
    l.timed([&] { detector.reinit(s->pos); });
}
void nearest(const std::shared_ptr<searched>& s, lap& l)
{
    l.timed([&] {
        for (std::uint64_t j = 0; j < s->places.cols; ++j)
            s->detector.find_closest(vector_fixed<double, 3>(s->places(0, j), s->places(1, j), s->places(2, j)));
    });
}
void boxes(const std::shared_ptr<searched>& s, lap& l)
{
    const double h = 0.5 * std::cbrt(8.0 / double(s->pos.cols));
    index_list found;
    l.timed([&] {
        for (std::uint64_t j = 0; j < s->places.cols; ++j) {
            const double x = s->places(0, j);
            const double y = s->places(1, j);
            const double z = s->places(2, j);
            s->detector.find_in_box(vector_fixed<double, 3>(x - h, y - h, z - h),
                                    vector_fixed<double, 3>(x + h, y + h, z + h), found);
        }
    });
}
void weld(const mesh& m, lap& l)
{
    index_matrix connect = m.connect;
    index_list numbers;
    l.timed([&] { merge(m.pos, connect, numbers, 1e-3); });
}

void qualities(const mesh& m, lap& l)
{
    dense1D<double> found;
    l.timed([&] { shape_qualities(m.pos, m.connect, m.type, found); });
}
void lengths(const with_edges& m, lap& l)
{
    dense2D<double> found;
    l.timed([&] { edge_lengths(m.pos, m.edges, found); });
}
void qualities_of_edges(const mesh& m, lap& l)
{
    dense1D<float> sizes(m.pos.cols);
    for (std::uint64_t j = 0; j < sizes.size; ++j) sizes[j] = 1.0f + 0.5f * float(j % 7);
    zeb::misc::histogram h;
    l.timed([&] { edge_qualities(m.pos, m.connect, m.type, sizes, h); });
}

using tensor = symmetric_fixed<double, 3>;

std::vector<tensor> tensors(double n)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> entry(-1.0, 1.0);
    std::vector<tensor> all(std::size_t(n / shrink));
    for (auto& M : all)
        M = tensor(3.0 + entry(random), entry(random), 4.0 + entry(random), entry(random), entry(random),
                   5.0 + entry(random));
    return all;
}

void eigenvalues(const std::vector<tensor>& all, lap& l)
{
    vector_fixed<double, 3> values;
    l.timed([&] {
        for (const tensor& M : all) eigen_pairs(M, values, {});
    });
}
void validity(const std::vector<tensor>& all, lap& l)
{
    volatile int valid = 0;
    l.timed([&] {
        int count = 0;
        for (const tensor& M : all) count += is_valid_metric(M) ? 1 : 0;
        valid = count;
    });
}
void intersection(const std::vector<tensor>& all, lap& l)
{
    tensor smaller;
    l.timed([&] {
        for (std::size_t j = 1; j < all.size(); ++j) minimum_metric(all[j - 1], all[j], smaller);
    });
}
void field(const std::vector<tensor>& all, lap& l)
{
    dense2D<float> metrics(6, all.size());
    for (std::size_t j = 0; j < all.size(); ++j)
        for (std::size_t i = 0; i < 6; ++i) metrics(i, j) = float(all[j][i]);
    l.timed([&] { are_valid_metrics(metrics); });
}

void half(const mesh& m, lap& l)
{
    index_matrix kept;
    const double middle = 0.5 * std::cbrt(double(m.connect.cols) / 6);
    l.timed([&] { clip(m.pos, m.connect, {middle, middle, middle}, {1.0, 0.3, 0.2}, kept); });
}
void turn(const mesh& m, lap& l)
{
    dense2D<double> pos = m.pos;
    l.timed([&] { rotate(pos, {0.0, 0.0, 0.0}, {0.1, 0.2, 0.3}); });
}
void turn_listed(const mesh& m, lap& l)
{
    dense2D<double> pos = m.pos;
    l.timed([&] { rotate(pos, {0.0, 0.0, 0.0}, {0.1, 0.2, 0.3}, m.connect); });
}
void bounding_box(const mesh& m, lap& l)
{
    vector_fixed<double, 3> low, high;
    l.timed([&] { inc_bounding_box(m.pos, low, high); });
}

mesh wedge(double n, bool shuffled)
{
    return solid(wedges, n, shuffled);
}
mesh pyramid(double n, bool shuffled)
{
    return solid(pyramids, n, shuffled);
}
mesh quad(double n, bool shuffled)
{
    return surface(quadrangles, n, shuffled);
}
with_neighbors tetra_and_neighbors(double n, bool shuffled)
{
    return with_neighbors(tetra(n, shuffled));
}
with_edges tetra_and_edges(double n, bool shuffled)
{
    return with_edges(tetra(n, shuffled));
}
index_list list(double n, bool shuffled)
{
    return in_order(std::uint64_t(n / shrink), shuffled);
}
std::vector<tensor> some_tensors(double n, bool)
{
    return tensors(n);
}

}  // namespace

const operation& plain_writes()
{
    static const operation the_loop = with("plain writes", list, write_plainly);
    return the_loop;
}

const std::vector<operation>& operations()
{
    static const std::vector<operation> all = [] {
        std::vector<operation> made{
            with("neighbours of triangles", tria, neighbors),
            with("neighbours of tetrahedra", tetra, neighbors),
            with("neighbours of hexahedra", hexa, neighbors),
            with("boundary", tetra_and_neighbors, boundary),
            with("ancestors", tetra, ancestors),
            with("connected parts", tetra_and_neighbors, parts),
            with("edges of triangles", tria, edges),
            with("edges of tetrahedra", tetra, edges),
            with("edges of hexahedra", hexa, edges),
            with("unique indices", tetra, node_list),
            with("change indices", tetra, renumber),
            with("permutation", list, permute),
            with("match elements", tria, match_elements),
            with("match nodes", list, match_nodes),
            with("append", tetra, append_elements),
            with("simplify", tetra, drop_nodes),
            with("copy mesh", tetra, copy_elements),
            with("remove degenerated", tetra, drop_flat),
            with("detector build", points, build),
            with("nearest", points, nearest),
            with("boxes", points, boxes),
            with("weld", triangle_soup, weld),
            with("quality of triangles", tria, qualities),
            with("quality of quadrangles", quad, qualities),
            with("quality of tetrahedra", tetra, qualities),
            with("quality of pyramids", pyramid, qualities),
            with("quality of wedges", wedge, qualities),
            with("quality of hexahedra", hexa, qualities),
            with("edge lengths", tetra_and_edges, lengths),
            with("edge qualities", tetra, qualities_of_edges),
            with("eigen-pairs", some_tensors, eigenvalues, false),
            with("validity", some_tensors, validity, false),
            with("validity of a field", some_tensors, field, false),
            with("intersection", some_tensors, intersection, false),
            with("clip", tetra, half),
            with("rotate", tetra, turn),
            with("rotate the nodes of elements", tetra, turn_listed),
            with("bounding box", tetra, bounding_box),
        };
        const auto& files = file_operations();
        made.insert(made.end(), files.begin(), files.end());
        return made;
    }();
    return all;
}

}  // namespace compare
