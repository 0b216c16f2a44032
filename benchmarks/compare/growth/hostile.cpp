#include <limits>

#include "growth/operations.h"

// Inputs that make a naive program quadratic or let it recurse as deep as the data.
namespace compare {
namespace {

using index_matrix = dense2D<unsigned int>;

std::uint64_t count(double n)
{
    return std::uint64_t(n / shrink);
}

// -- nodes

dense2D<double> coincident(double n)
{
    return {3, count(n), 0.5};
}

dense2D<double> along_a_line(double n)
{
    dense2D<double> pos(3, count(n), 0.0);
    for (std::uint64_t j = 0; j < pos.cols; ++j) pos(0, j) = double(j) / double(pos.cols);
    return pos;
}

// The generator of the order in which nodes enter a tree, so as to undo it.
struct multiplicative_seed {
    using result_type = std::uint32_t;
    template <class Iterator>
    void generate(Iterator first, Iterator last)
    {
        std::uint32_t word = 1;
        for (; first != last; ++first, word *= 69069u) *first = word;
    }
};

// Nodes that enter the tree from left to right: without balance it is a list.
dense2D<double> against_the_shuffle(double n)
{
    std::vector<std::uint64_t> order(count(n));
    std::iota(order.begin(), order.end(), std::uint64_t{0});
    multiplicative_seed seed;
    std::mt19937 random(seed);
    for (std::uint64_t i = 1; i < order.size(); ++i) std::swap(order[i], order[random() % (i + 1)]);
    dense2D<double> pos(3, order.size());
    for (std::uint64_t k = 0; k < order.size(); ++k)
        for (std::uint64_t i = 0; i < 3; ++i) pos(i, order[k]) = double(k) / double(order.size());
    return pos;
}

dense2D<double> anywhere(double n)
{
    return random_points(n, 1);
}

void build(const dense2D<double>& pos, lap& l)
{
    node_detector detector;
    l.timed([&] { detector.reinit(pos); });
}

void search(const dense2D<double>& pos, lap& l)
{
    const node_detector detector(pos);
    l.timed([&] {
        for (unsigned int j = 0; j < 1000; ++j)
            detector.find_closest(static_cast<unsigned int>(std::uint64_t{j} * 7919 % pos.cols));
    });
}

void merge_within(const dense2D<double>& pos, double tolerance, lap& l)
{
    dense2D<double> copy = pos;
    l.timed([&] { merge(copy, tolerance); });
}
void merge_close(const dense2D<double>& pos, lap& l)
{
    merge_within(pos, 1e-9, l);
}
void merge_chain(const dense2D<double>& pos, lap& l)
{
    merge_within(pos, 1.5 / double(pos.cols), l);
}
void merge_everything(const dense2D<double>& pos, lap& l)
{
    merge_within(pos, std::numeric_limits<double>::infinity(), l);
}

// -- elements

mesh elements(index_matrix connect, element_type type)
{
    return {{}, std::move(connect), type};
}

mesh random_elements(double n, std::uint64_t rows, element_type type)
{
    index_matrix connect(rows, count(n));
    std::mt19937 random(1);
    for (std::uint64_t e = 0; e < connect.cols; ++e)
        for (std::uint64_t i = 0; i < rows; ++i) connect(i, e) = static_cast<unsigned int>(random() % connect.cols);
    return elements(std::move(connect), type);
}

mesh fan_of_triangles(double n)
{
    index_matrix connect(3, count(n));
    for (unsigned int e = 0; e < connect.cols; ++e) connect(0, e) = 0, connect(1, e) = e + 1, connect(2, e) = e + 2;
    return elements(std::move(connect), EL_TRIA3);
}

// All on one edge.
mesh fan_of_tetrahedra(double n)
{
    index_matrix connect(4, count(n));
    for (unsigned int e = 0; e < connect.cols; ++e)
        connect(0, e) = 0, connect(1, e) = 1, connect(2, e) = e + 2, connect(3, e) = e + 3;
    return elements(std::move(connect), EL_TETRA4);
}

// All on one face.
mesh stack_of_tetrahedra(double n)
{
    index_matrix connect(4, count(n));
    for (unsigned int e = 0; e < connect.cols; ++e)
        connect(0, e) = 0, connect(1, e) = 1, connect(2, e) = 2, connect(3, e) = e + 3;
    return elements(std::move(connect), EL_TETRA4);
}

// Every face of every hexahedron has the same sum of its nodes.
mesh faces_of_one_sum(double n)
{
    index_matrix connect(8, count(n));
    const auto half = static_cast<unsigned int>(2 * connect.cols);
    for (unsigned int e = 0; e < connect.cols; ++e) {
        const unsigned int a = e;
        const unsigned int b = static_cast<unsigned int>(connect.cols) + e;
        const unsigned int c = 2 * half - a;
        const unsigned int d = 2 * half - b;
        const unsigned int corners[8]{a, c, b, d, d, b, c, a};
        std::copy_n(corners, 8, &connect(0, e));
    }
    return elements(std::move(connect), EL_HEXA8);
}

mesh random_triangles(double n)
{
    return random_elements(n, 3, EL_TRIA3);
}
mesh random_tetrahedra(double n)
{
    return random_elements(n, 4, EL_TETRA4);
}
mesh random_hexahedra(double n)
{
    return random_elements(n, 8, EL_HEXA8);
}

// The numbers are multiples of a power of two, so that plain tables collide.
mesh far_apart(double n)
{
    mesh m = random_tetrahedra(n);
    for (std::uint64_t e = 0; e < m.connect.cols; ++e)
        for (std::uint64_t i = 0; i < 4; ++i) m.connect(i, e) *= 2048;
    return m;
}

mesh all_the_same(double n)
{
    index_matrix connect(3, count(n));
    for (std::uint64_t e = 0; e < connect.cols; ++e) connect(0, e) = 1, connect(1, e) = 2, connect(2, e) = 3;
    return elements(std::move(connect), EL_TRIA3);
}

void neighbors(const mesh& m, lap& l)
{
    index_matrix found;
    l.timed([&] { get_neighbors(m.connect, m.type, true, found); });
}
void edges(const mesh& m, lap& l)
{
    index_matrix found;
    l.timed([&] { copy_edges(m.connect, m.type, found); });
}
void node_list(const mesh& m, lap& l)
{
    dense1D<unsigned int> nodes;
    l.timed([&] { unique_indices(nodes, m.connect); });
}
void match(const mesh& m, lap& l)
{
    dense1D<unsigned int> in_1, in_2;
    l.timed([&] { get_IDs(m.connect, m.connect, in_1, in_2, false); });
}
void parts(const index_matrix& neighbors_of, lap& l)
{
    dense1D<unsigned int> found, offsets;
    l.timed([&] { get_connex_parts(neighbors_of, found, offsets); });
}

// One part as long as the mesh, walked from end to end.
index_matrix chain(double n)
{
    index_matrix m(2, count(n));
    for (unsigned int e = 0; e < m.cols; ++e) {
        m(0, e) = e != 0 ? e - 1 : NONE_INDEX;
        m(1, e) = e + 1 < m.cols ? e + 1 : NONE_INDEX;
    }
    return m;
}
index_matrix random_links(double n)
{
    return random_elements(n, 2, EL_EDGE2).connect;
}

template <class Input, class Run>
hostile with(const char* operation, const char* input, Input (*make)(double), Input (*make_random)(double), Run run)
{
    return {operation, input, [=](double n) { return on(make(n), run); },
            [=](double n) { return on(make_random(n), run); }};
}

}  // namespace

const std::vector<hostile>& hostile_inputs()
{
    static const std::vector<hostile> all{
        with("detector build", "coincident nodes", coincident, anywhere, build),
        with("detector build", "nodes of a line", along_a_line, anywhere, build),
        with("detector build", "an order made against the shuffle", against_the_shuffle, anywhere, build),
        with("1000 nearest", "coincident nodes", coincident, anywhere, search),
        with("1000 nearest", "nodes of a line", along_a_line, anywhere, search),
        with("1000 nearest", "an order made against the shuffle", against_the_shuffle, anywhere, search),
        with("merge", "coincident nodes", coincident, anywhere, merge_close),
        with("merge", "an order made against the shuffle", against_the_shuffle, anywhere, merge_close),
        with("merge", "a line of nodes closer than the tolerance", along_a_line, anywhere, merge_chain),
        with("merge", "everything within the tolerance, coincident nodes", coincident, anywhere, merge_everything),
        with("neighbours", "fan of triangles on one node", fan_of_triangles, random_triangles, neighbors),
        with("neighbours", "fan of tetrahedra on one edge", fan_of_tetrahedra, random_tetrahedra, neighbors),
        with("neighbours", "tetrahedra on one face", stack_of_tetrahedra, random_tetrahedra, neighbors),
        with("neighbours", "all faces of one index sum", faces_of_one_sum, random_hexahedra, neighbors),
        with("neighbours", "one triangle many times", all_the_same, random_triangles, neighbors),
        with("edges", "fan of triangles on one node", fan_of_triangles, random_triangles, edges),
        with("edges", "fan of tetrahedra on one edge", fan_of_tetrahedra, random_tetrahedra, edges),
        with("edges", "one triangle many times", all_the_same, random_triangles, edges),
        with("unique indices", "multiples of 2048", far_apart, random_tetrahedra, node_list),
        with("match elements", "one triangle many times", all_the_same, random_triangles, match),
        with("match elements", "fan of triangles on one node", fan_of_triangles, random_triangles, match),
        with("connected parts", "one chain", chain, random_links, parts),
    };
    return all;
}

}  // namespace compare
