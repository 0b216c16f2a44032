#include "mesh/weld.h"

#include <bit>
#include <cmath>
#include <limits>

#include "errors.h"

namespace tool {
namespace {

std::uint64_t mixed(const double* p)
{
    std::uint64_t h = 0;
    for (int i = 0; i < 3; ++i) {
        h = (h ^ std::bit_cast<std::uint64_t>(p[i] + 0.0)) * 0x9E3779B97F4A7C15u;  // + 0.0: -0 is 0
        h ^= h >> 29;
    }
    return h;
}

using vector = std::array<double, 3>;

vector difference(const double* a, const double* b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

double norm(const vector& v)
{
    return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

vector cross(const vector& a, const vector& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// Distance of p from the line through a and b; 0 where these are one point.
double height(const double* p, const double* a, const double* b)
{
    vector edge = difference(b, a);
    const double length = norm(edge);
    for (double& x : edge) x = length != 0 ? x / length : 0;
    return norm(cross(edge, difference(p, a)));
}

// Tells whether two nodes lie within a distance, in far less memory than it takes to merge them: a grid of cells some
// times as large, in which few nodes can be without such a pair among them.
class pair_finder {
public:
    pair_finder(const coordinates& pos, double distance)
        : pos_(pos), distance_(distance), heads_(std::bit_ceil(pos.cols + 1)), next_(pos.cols)
    {
    }

    bool run()
    {
        for (unsigned int node = 0; node < pos_.cols; ++node)
            if (has_partner(node)) return true;
        return false;
    }

private:
    // Among the nodes so far; the node joins them.
    bool has_partner(unsigned int node)
    {
        const double* p = &pos_(0, node);
        const double cell_size = 8 * distance_;
        vector low;
        vector high;
        for (std::size_t i = 0; i < 3; ++i) {
            low[i] = std::floor((p[i] - distance_) / cell_size);
            high[i] = std::floor((p[i] + distance_) / cell_size);
            if (!std::isfinite(low[i]) || !std::isfinite(high[i])) return std::isfinite(p[i]);
        }
        for (int corner = 0; corner < 8; ++corner) {
            vector cell;
            bool repeated = false;
            for (std::size_t i = 0; i < 3; ++i) {
                const bool upper = (corner >> i & 1) != 0;
                repeated = repeated || (upper && low[i] == high[i]);
                cell[i] = upper ? high[i] : low[i];
            }
            if (!repeated && is_near(p, cell)) return true;
        }
        vector own;
        for (std::size_t i = 0; i < 3; ++i) own[i] = std::floor(p[i] / cell_size);
        unsigned int& head = heads_[slot_of(own)];
        next_[node] = head;
        head = node + 1;
        return false;
    }

    bool is_near(const double* p, const vector& cell) const
    {
        for (unsigned int other = heads_[slot_of(cell)]; other != 0; other = next_[other - 1])
            if (norm(difference(&pos_(0, other - 1), p)) <= distance_) return true;
        return false;
    }

    std::size_t slot_of(const vector& cell) const { return mixed(cell.data()) & (heads_.size() - 1); }

    const coordinates& pos_;
    double distance_;
    std::vector<unsigned int> heads_;  // node + 1
    std::vector<unsigned int> next_;
};

void give_corners_nodes_of_their_own(mesh& m)
{
    connectivity& connect = m.blocks.front().connect;
    if (3 * connect.cols >= zeb::NONE_INDEX) throw unreadable("more nodes than a mesh can hold");
    coordinates pos;
    resize(pos, 3, 3 * connect.cols);
    for (std::uint64_t t = 0, node = 0; t < connect.cols; ++t) {
        for (std::uint64_t k = 0; k < 3; ++k, ++node) {
            std::copy_n(&m.pos(0, connect(k, t)), 3, &pos(0, node));
            connect(k, t) = static_cast<unsigned int>(node);
        }
    }
    m.pos.shallow_copy(pos);
}

}  // namespace

unsigned int node_pool::append(const double* p)
{
    if (pos_.size() >= zeb::NONE_INDEX - 1) throw unreadable("more nodes than a mesh can hold");
    std::copy_n(p, 3, pos_.append());
    return static_cast<unsigned int>(pos_.size() - 1);
}

unsigned int node_pool::node_at(const double* p)
{
    if (std::isnan(p[0] + p[1] + p[2]) && (std::isnan(p[0]) || std::isnan(p[1]) || std::isnan(p[2]))) return append(p);
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = mixed(p) & mask;
    for (; slots_[slot] != 0; slot = (slot + 1) & mask) {
        const double* q = pos_.column(slots_[slot] - 1);
        if (q[0] == p[0] && q[1] == p[1] && q[2] == p[2]) return slots_[slot] - 1;
    }
    const unsigned int node = append(p);
    slots_[slot] = node + 1;
    if (2 * pos_.size() > slots_.size()) grow();
    return node;
}

void node_pool::grow()
{
    slots_.assign(2 * slots_.size(), 0);
    const std::size_t mask = slots_.size() - 1;
    for (std::uint64_t node = 0; node < pos_.size(); ++node) {
        std::size_t slot = mixed(pos_.column(node)) & mask;
        while (slots_[slot] != 0) slot = (slot + 1) & mask;
        slots_[slot] = static_cast<unsigned int>(node + 1);
    }
}

void least_height::add(const double* a, const double* b, const double* c)
{
    const double h = std::min({height(c, a, b), height(a, b, c), height(b, c, a)});
    if (h > 0 && h < least_) least_ = h;
}

std::optional<double> least_height::weld_tolerance() const
{
    constexpr double part_of_height = 0.05;
    if (least_ == std::numeric_limits<double>::max()) return std::nullopt;
    return part_of_height * least_;
}

void weld_triangles(mesh& m, std::optional<double> tolerance)
{
    if (m.blocks.empty() || (tolerance && !pair_finder(m.pos, *tolerance).run())) return;
    // Pairs of equal distance go by the order of all corners: only with each of them as a node do they go so here.
    give_corners_nodes_of_their_own(m);
    if (tolerance) {
        connectivity& connect = m.blocks.front().connect;
        zeb::dense1D<unsigned int> survivors;
        checked(zeb::tessolv::merge(m.pos, connect, survivors, *tolerance), "merge");
        checked(zeb::tessolv::simplify(m.pos, connect), "simplify");
    }
    m.node_numbers = numbering(1, m.pos.cols);
}

}  // namespace tool
