#ifndef TESSOLV_QUALITY_SHAPE_MEASURES_H
#define TESSOLV_QUALITY_SHAPE_MEASURES_H

#include <array>
#include <cmath>
#include <cstddef>

#include "quality/points.h"
#include "topology/element_topology.h"

// The shape quality of an element as a function of its corners: 1 for the ideal element of its kind, 0 for a flat one,
// negative for an inverted one. The order of every operation and the digits of every constant are part of the
// interface: hosts compare the values bit by bit from version to version. Comparisons say which way a NaN goes.
namespace zeb::tessolv::quality {
inline namespace TESSOLV_LANES {

// 2 sqrt(3): an equilateral triangle scores 1.
constexpr double triangle_scale = 3.4641016151377544;

// 2 sqrt(6) cut to 12 digits: a regular tetrahedron scores 0.9999999999987. The digits are a contract.
constexpr double tetrahedron_scale = 4.89897948556;

// sqrt(2): three corners of a square seen from the apex of the pyramid of equal edges score 1.
constexpr double corner_scale = 1.4142135623730951;

// 2 / sqrt(3), rounded up: the corner of a right prism on an equilateral triangle scores 1.
constexpr double wedge_corner_scale = 1.1547005383792517;

// 343/288 and two units in the last place: the quadrangle of the wedge of equal edges. The digits are a contract.
constexpr double wedge_quadrangle_scale = 1.1909722222222228;

// 32/27: the face of a cube, seen from its centre, scores exactly 1.
constexpr double hexahedron_face_scale = 1.1851851851851851;

constexpr double inverse_pi = 0.3183098861837907;
constexpr double one_sixth = 0.16666666666666666;

// Below this magnitude a tetrahedron is measured from all four of its corners.
constexpr double near_flat = 1e-9;

// What corner and face values add up to: their least (1 when all are larger) and the sum of their magnitudes.
struct tally {
    lanes least = both(1.0);
    lanes sum = lanes{};

    void add(lanes value)
    {
        least = smaller(least, value);
        sum += magnitude(value);
    }
};

// Values beyond the ideal one count as much too large as they are.
inline lanes fold_above(lanes x)
{
    return select(x > 1.0, 1.0 / x, x);
}

inline lanes fold(lanes x)
{
    return select((x > 1.0) | (x < -1.0), 1.0 / x, x);
}

// -- triangles

// Twice the area over perimeter times longest edge.
template <std::size_t D>
lanes triangle_ratio(const corners<D, 3>& p, lanes twice_area)
{
    const lanes l01 = length(p[0] - p[1]);
    const lanes l02 = length(p[0] - p[2]);
    const lanes l12 = length(p[1] - p[2]);
    const lanes divisor = (l01 + l02 + l12) * larger(larger(l01, l02), l12);
    return select(divisor > 0.0, twice_area / divisor * triangle_scale, lanes{});
}

// Signed: positive when the corners turn counter-clockwise.
inline lanes triangle(const corners<2, 3>& p)
{
    return within_unit_range(triangle_ratio(p, cross(p[1] - p[0], p[2] - p[0])));
}

inline lanes triangle(const corners<3, 3>& p)
{
    return at_most(triangle_ratio(p, length(cross(p[0] - p[2], p[1] - p[2]))), 1.0);
}

// -- quadrangles

// Edge k leads from corner k to the next one.
template <std::size_t D>
struct quadrangle_edges {
    corners<D, 4> edges;
    std::array<lanes, 4> lengths;

    explicit quadrangle_edges(const corners<D, 4>& p)
    {
        for (std::size_t k = 0; k < 4; ++k) {
            edges[k] = p[(k + 1) % 4] - p[k];
            lengths[k] = length(edges[k]);
        }
    }

    const point<D>& entering(std::size_t k) const { return edges[(k + 3) % 4]; }
    lanes product_at(std::size_t k) const { return lengths[(k + 3) % 4] * lengths[k]; }

    // Mean sine times least sine times the root of the ratio of the extreme edges.
    lanes score(const std::array<lanes, 4>& sines) const
    {
        tally corner;
        for (const lanes sine : sines) corner.add(sine);
        const lanes shortest = smaller(smaller(smaller(lengths[0], lengths[1]), lengths[2]), lengths[3]);
        const lanes longest = larger(larger(larger(lengths[0], lengths[1]), lengths[2]), lengths[3]);
        const lanes q = corner.sum / 4.0 * corner.least;
        return select(longest > 0.0, q * root(shortest / longest), q);
    }
};

// Signed: positive when the corners turn counter-clockwise.
inline lanes quadrangle(const corners<2, 4>& p)
{
    const quadrangle_edges<2> ring(p);
    std::array<lanes, 4> sines;
    for (std::size_t k = 0; k < 4; ++k) {
        const lanes turn = cross(ring.entering(k), ring.edges[k]);
        const lanes product = ring.product_at(k);
        sines[k] = select(product > 0.0, turn / product, turn);
    }
    return within_unit_range(ring.score(sines));
}

// 1 for normals that point the same way, 0 for opposite ones and where there is none.
inline lanes agreement(const point<3>& a, const point<3>& b, lanes length_a, lanes length_b)
{
    const lanes product = length_a * length_b;
    const lanes cosine = within_unit_range(dot(a, b) / product);
    return select(product > 0.0, 1.0 - arc_cosine(cosine) * inverse_pi, lanes{});
}

// Never negative; a factor below 1 for warped ones, from the normals of opposite corners.
inline lanes quadrangle(const corners<3, 4>& p)
{
    const quadrangle_edges<3> ring(p);
    corners<3, 4> normals;
    std::array<lanes, 4> heights;
    std::array<lanes, 4> sines;
    for (std::size_t k = 0; k < 4; ++k) {
        normals[k] = cross(ring.entering(k), ring.edges[k]);
        heights[k] = length(normals[k]);
        const lanes product = ring.product_at(k);
        sines[k] = select(product != 0.0, heights[k] / product, heights[k]);
    }
    const lanes w13 = agreement(normals[1], normals[3], heights[1], heights[3]);
    const lanes w02 = agreement(normals[0], normals[2], heights[0], heights[2]);
    const lanes warp = select((w13 > 0.0) & (w02 > 0.0), root(w02 * w13), lanes{});
    return at_most(ring.score(sines), 1.0) * warp;
}

// -- tetrahedra

// Twice the area of the triangle of two edges, from their squared lengths and their product; nothing when rounding has
// left no area.
inline lanes twice_area(lanes aa, lanes bb, lanes ab)
{
    const lanes square = aa * bb - ab * ab;
    return select(square > 0.0, root(square), lanes{});
}

// Six volumes over longest edge times twice the surface. Positive when p[0], p[1], p[2] turn clockwise seen from the
// apex.
inline lanes tetrahedron_seen_from(const point<3>& apex, const point<3>& p0, const point<3>& p1, const point<3>& p2)
{
    const point<3> a = p0 - apex;
    const point<3> b = p1 - apex;
    const point<3> c = p2 - apex;
    const point<3> ab = a - b;
    const point<3> ac = a - c;
    const point<3> bc = b - c;
    const lanes aa = dot(a, a);
    const lanes bb = dot(b, b);
    const lanes cc = dot(c, c);
    const lanes ab2 = dot(ab, ab);
    const lanes ac2 = dot(ac, ac);

    const lanes volume = dot(cross(a, b), c);
    const lanes surface = twice_area(aa, bb, dot(a, b)) + twice_area(cc, aa, dot(a, c)) +
                          twice_area(cc, bb, dot(b, c)) + twice_area(ab2, ac2, dot(ab, ac));
    const lanes longest = larger(larger(larger(larger(larger(aa, bb), cc), ab2), ac2), dot(bc, bc));
    const lanes divisor = root(longest) * surface;
    return select(divisor > 0.0, within_unit_range(volume * tetrahedron_scale / divisor), lanes{});
}

// Of a nearly flat tetrahedron the least magnitude seen from any corner counts, or 0 when the signs disagree: which
// corner is the apex then decides about the rounding error.
inline lanes tetrahedron(const corners<3, 4>& p)
{
    const lanes seen_from_last = tetrahedron_seen_from(p[3], p[0], p[1], p[2]);
    const lane_mask settled = magnitude(seen_from_last) >= near_flat;
    if (!any(~settled)) return seen_from_last;

    constexpr std::array<double, 3> signs{-1.0, 1.0, -1.0};
    lanes q = seen_from_last;
    for (std::size_t j = 0; j < 3; ++j) {
        const lanes r = signs[j] * tetrahedron_seen_from(p[j], p[j + 1], p[(j + 2) % 4], p[(j + 3) % 4]);
        q = select(~(r >= 0.0) & (q > 0.0), lanes{}, q);
        q = select((r > 0.0) & ~(q >= 0.0), lanes{}, q);
        q = select(magnitude(r) < magnitude(q), r, q);
    }
    return select(settled, seen_from_last, q);
}

// -- what pyramids, wedges and hexahedra are made of

// The edges of a kind of element and the number of each by its two ends, in either order.
template <std::size_t Nodes, std::size_t Edges>
struct edge_table {
    node_table<Edges, 2> ends;
    node_table<Nodes, Nodes> number{};

    constexpr explicit edge_table(const node_table<Edges, 2>& list) : ends(list)
    {
        for (std::size_t e = 0; e < Edges; ++e) {
            const auto [a, b] = list[e];
            number[a][b] = number[b][a] = static_cast<unsigned char>(e);
        }
    }
};

constexpr edge_table<6, 9> wedge_edges(wedge6::edges);
constexpr edge_table<8, 12> hexahedron_edges(hexa8::edges);

// A symmetric function of two nodes, evaluated once per edge.
template <std::size_t Nodes, std::size_t Edges>
class edge_values {
public:
    template <class Function>
    edge_values(const edge_table<Nodes, Edges>& table, Function value) : table_(table)
    {
        for (std::size_t e = 0; e < Edges; ++e) values_[e] = value(table.ends[e][0], table.ends[e][1]);
    }

    lanes operator()(std::size_t a, std::size_t b) const { return values_[table_.number[a][b]]; }

private:
    const edge_table<Nodes, Edges>& table_;
    std::array<lanes, Edges> values_;
};

// The corners of an element as vectors from one point.
template <std::size_t N>
struct outlook {
    corners<3, N> to;
    std::array<lanes, N> squares;
    std::array<lanes, N> lengths;

    outlook(const point<3>& from, const corners<3, N>& p)
    {
        for (std::size_t k = 0; k < N; ++k) {
            to[k] = p[k] - from;
            squares[k] = dot(to[k], to[k]);
            lengths[k] = root(squares[k]);
        }
    }

    // Product of two lengths under one root, which gives the cube exactly 1; two roots would not.
    lanes product(std::size_t a, std::size_t b) const { return root(squares[a] * squares[b]); }
};

// A quadrangle seen from a point: the volume of each corner with the next one and the one opposite, over the product of
// the lengths.
template <std::size_t N, class Product>
lanes quadrangle_seen_from(const outlook<N>& view, const std::array<unsigned char, 4>& face, const Product& product)
{
    tally corner;
    for (std::size_t k = 0; k < 4; ++k) {
        const std::size_t u = face[k];
        const std::size_t v = face[(k + 1) % 4];
        const std::size_t w = face[(k + 2) % 4];
        const lanes volume = dot(cross(view.to[u], view.to[w]), view.to[v]);
        const lanes lengths = product(u, v) * view.lengths[w];
        corner.add(fold(select(lengths != 0.0, corner_scale * volume / lengths, volume)));
    }
    return corner.sum / 4.0 * corner.least;
}

inline lanes volume_at(const point<3>& base, const point<3>& a, const point<3>& b, const point<3>& c)
{
    return dot(cross(a - base, b - base), c - base);
}

// -- pyramids

// Positive when the base 0, 1, 2, 3 turns counter-clockwise seen from the apex 4.
inline lanes pyramid(const corners<3, 5>& p)
{
    const outlook<4> view(p[4], {p[0], p[1], p[2], p[3]});
    return quadrangle_seen_from(view, {0, 1, 2, 3}, [&](std::size_t a, std::size_t b) { return view.product(a, b); });
}

// -- wedges

// Bottom and top corner in turn; the sign makes up for the opposite sense of the top triangle.
inline lanes wedge_corners(const corners<3, 6>& p)
{
    const edge_values lengths(wedge_edges, [&](std::size_t a, std::size_t b) { return length(p[a] - p[b]); });
    const auto value = [&](std::size_t base, std::size_t a, std::size_t b, std::size_t c) {
        const lanes volume = volume_at(p[base], p[a], p[b], p[c]);
        const lanes product = lengths(base, a) * lengths(base, b) * lengths(base, c);
        return select(product > 0.0, volume / product, volume);
    };
    tally corner;
    for (std::size_t k = 0; k < 3; ++k) {
        const std::size_t next = (k + 1) % 3;
        const std::size_t last = (k + 2) % 3;
        corner.add(fold(wedge_corner_scale * value(k, next, last, k + 3)));
        corner.add(fold(-wedge_corner_scale * value(k + 3, next + 3, last + 3, k)));
    }
    return corner.sum / 6.0 * corner.least;
}

inline lanes wedge_faces(const corners<3, 6>& p)
{
    constexpr node_table<2, 3> triangles{{{0, 1, 2}, {3, 5, 4}}};
    constexpr node_table<3, 4> quadrangles{{{2, 1, 4, 5}, {5, 3, 0, 2}, {0, 3, 4, 1}}};
    const double wedge_triangle_scale = std::sqrt(1.5);
    const point<3> centre = mean(p);
    const outlook<6> view(centre, p);
    const edge_values products(wedge_edges, [&](std::size_t a, std::size_t b) { return view.product(a, b); });
    tally face;
    for (const auto& [a, b, c] : triangles)
        face.add(fold_above(-wedge_triangle_scale * tetrahedron_seen_from(centre, p[a], p[b], p[c])));
    for (const auto& nodes : quadrangles)
        face.add(fold_above(quadrangle_seen_from(view, nodes, products) * wedge_quadrangle_scale));
    return face.sum * 0.2 * face.least;
}

inline lanes wedge(const corners<3, 6>& p)
{
    return smaller(wedge_corners(p), wedge_faces(p));
}

// -- hexahedra

// A corner that is not positive stays unnormalised, so that an inverted element can fall far below -1: part of the
// interface.
inline lanes hexahedron_corners(const corners<3, 8>& p)
{
    constexpr node_table<8, 3> neighbors{
        {{1, 3, 4}, {2, 0, 5}, {3, 1, 6}, {0, 2, 7}, {7, 5, 0}, {4, 6, 1}, {5, 7, 2}, {6, 4, 3}}};
    const edge_values lengths(hexahedron_edges, [&](std::size_t a, std::size_t b) { return length(p[a] - p[b]); });
    tally corner;
    for (std::size_t k = 0; k < 8; ++k) {
        const auto [a, b, c] = neighbors[k];
        const lanes volume = volume_at(p[k], p[a], p[b], p[c]);
        const lanes product = lengths(k, a) * lengths(k, b) * lengths(k, c);
        corner.add(at_most(select(volume > 0.0, volume / product, volume), 1.0));
    }
    return corner.sum / 8.0 * corner.least;
}

inline lanes hexahedron_faces(const corners<3, 8>& p)
{
    const outlook<8> view(mean(p), p);
    const edge_values products(hexahedron_edges, [&](std::size_t a, std::size_t b) { return view.product(a, b); });
    tally face;
    for (const auto& nodes : hexa8::faces)
        face.add(fold_above(quadrangle_seen_from(view, nodes, products) * hexahedron_face_scale));
    return face.sum * one_sixth * face.least;
}

inline lanes hexahedron(const corners<3, 8>& p)
{
    return smaller(hexahedron_corners(p), hexahedron_faces(p));
}

}  // namespace TESSOLV_LANES
}  // namespace zeb::tessolv::quality

#endif
