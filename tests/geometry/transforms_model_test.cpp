#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <set>

#include "support/matrices.h"

using namespace zeb::tessolv;

// The three forms of every transform on random meshes, against models of their own.

namespace {

using vec3 = vector_fixed<double, 3>;

struct random_mesh {
    dense2D<double> pos;
    dense2D<unsigned> connect;
    dense1D<unsigned> nodes;
};

double random_coordinate(std::mt19937& random)
{
    std::uniform_real_distribution<double> coordinate(-10, 10);
    return random() % 4 == 0 ? std::round(coordinate(random)) : coordinate(random);
}

random_mesh make_random_mesh(std::mt19937& random)
{
    const std::size_t n = 1 + random() % 8;
    const std::size_t rows = 2 + random() % 2;
    random_mesh mesh;
    mesh.pos = dense2D<double>(rows, n);
    for (std::uint64_t j = 0; j < n; ++j)
        for (std::uint64_t i = 0; i < rows; ++i) mesh.pos(i, j) = random_coordinate(random);
    const auto index = [&] { return random() % 8 == 0 ? test::N : static_cast<unsigned>(random() % (n + 2)); };
    mesh.connect = dense2D<unsigned>(3, random() % 4);
    for (std::uint64_t j = 0; j < mesh.connect.cols; ++j)
        for (std::uint64_t i = 0; i < 3; ++i) mesh.connect(i, j) = index();
    mesh.nodes = dense1D<unsigned>(random() % 6);
    for (unsigned& i : mesh.nodes) i = index();
    return mesh;
}

vec3 random_vector(std::mt19937& random)
{
    return {random_coordinate(random), random_coordinate(random), random_coordinate(random)};
}

using point = std::array<long double, 3>;

// By the unit quaternion q: q p q*, in extended precision.
point turned(const vec3& r, const vec3& c, const point& p)
{
    const long double x = r[0], y = r[1], z = r[2];
    const long double angle = std::sqrt(x * x + y * y + z * z);
    const long double s = std::sin(angle / 2) / angle, w = std::cos(angle / 2);
    const point q{s * x, s * y, s * z};
    const point d{p[0] - c[0], p[1] - c[1], p[2] - c[2]};
    const auto cross = [](const point& a, const point& b) {
        return point{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    };
    const point u = cross(q, d);
    const point v = cross(q, u);
    point result;
    for (unsigned k = 0; k < 3; ++k) result[k] = c[k] + d[k] + 2 * (w * u[k] + v[k]);
    return result;
}

// What `move` makes of each node, as often as it is named: the model of all three forms.
struct outcome {
    std::vector<point> nodes;
    int count = 0;
};

template <class Move, class Names>
outcome model(const dense2D<double>& pos, const Names& names, Move move)
{
    outcome result;
    for (std::uint64_t j = 0; j < pos.cols; ++j)
        result.nodes.push_back({pos(0, j), pos(1, j), pos.rows == 3 ? pos(2, j) : 0.0});
    for (const std::uint64_t j : names) {
        if (j >= pos.cols) continue;
        result.nodes[j] = move(result.nodes[j]);
        ++result.count;
    }
    return result;
}

void expect_model(const dense2D<double>& pos, const outcome& expected, long double tolerance)
{
    ASSERT_EQ(pos.rows, 3u);
    ASSERT_EQ(pos.cols, expected.nodes.size());
    for (std::uint64_t j = 0; j < pos.cols; ++j)
        for (unsigned k = 0; k < 3; ++k)
            ASSERT_LE(std::abs(pos(k, j) - expected.nodes[j][k]), tolerance) << "node " << j << ", row " << k;
}

// Checks the three forms of one operation on one mesh.
template <class Call, class Move>
void check_forms(const random_mesh& mesh, bool counts_lists, long double tolerance, Call call, Move move)
{
    std::vector<std::uint64_t> all(mesh.pos.cols);
    for (std::uint64_t j = 0; j < all.size(); ++j) all[j] = j;
    std::set<std::uint64_t> used;
    for (std::uint64_t e = 0; e < mesh.connect.cols; ++e)
        for (unsigned i = 0; i < 3; ++i) used.insert(mesh.connect(i, e));

    auto pos = mesh.pos;
    auto expected = model(mesh.pos, all, move);
    ASSERT_EQ(call(pos), expected.count);
    expect_model(pos, expected, tolerance);

    pos = mesh.pos;
    expected = model(mesh.pos, mesh.nodes, move);
    ASSERT_EQ(call(pos, mesh.nodes), counts_lists ? expected.count : 0);
    expect_model(pos, expected, tolerance);

    auto view = test::as_padded_view(mesh.pos, -7.0);
    expected = model(mesh.pos, used, move);
    ASSERT_EQ(call(view, test::as_padded_view(mesh.connect, 0u)), counts_lists ? expected.count : 0);
    expect_model(view, expected, tolerance);
}

TEST(Translate, AgreesWithSumsOnRandomMeshes)
{
    std::mt19937 random(7);
    for (int round = 0; round < 2200 && !HasFatalFailure(); ++round) {
        const auto by = random_vector(random);
        if (by == vec3()) continue;
        check_forms(
            make_random_mesh(random), true, 0,
            [&](auto& pos, const auto&... names) { return translate(pos, by, names...); },
            [&](const point& p) {
                point q;
                for (unsigned k = 0; k < 3; ++k) q[k] = static_cast<double>(p[k] + by[k]);
                return q;
            });
    }
}

TEST(Zoom, AgreesWithTheFormulaOnRandomMeshes)
{
    std::mt19937 random(8);
    for (int round = 0; round < 2200 && !HasFatalFailure(); ++round) {
        const auto about = random_vector(random);
        const double factor = random_coordinate(random);
        if (factor == 1.0) continue;
        check_forms(
            make_random_mesh(random), false, 1e-10L,
            [&](auto& pos, const auto&... names) { return zoom(pos, about, factor, names...); },
            [&](const point& p) {
                point q;
                for (unsigned k = 0; k < 3; ++k) q[k] = about[k] + (p[k] - about[k]) * factor;
                return q;
            });
    }
}

TEST(Rotate, AgreesWithQuaternionsOnRandomMeshes)
{
    std::mt19937 random(9);
    for (int round = 0; round < 2200 && !HasFatalFailure(); ++round) {
        const auto about = random_vector(random);
        auto r = random_vector(random);
        const double scale = std::pow(10.0, -static_cast<int>(random() % 12));  // both sides of the series
        for (double& x : r) x *= scale;
        if (r == vec3()) continue;
        // The angle is known to a part in 1e16; it is at most 17.4.
        check_forms(
            make_random_mesh(random), true, 2e-12L,
            [&](auto& pos, const auto&... names) { return rotate(pos, about, r, names...); },
            [&](const point& p) { return turned(r, about, p); });
    }
}

}  // namespace
