#include <tessolv/geometry.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "core/columns.h"
#include "core/return_codes.h"
#include "core/scratch.h"

namespace zeb::tessolv {
namespace {

using vec3 = vector_fixed<double, 3>;

constexpr double least_normal = 1e-12;

double dot(const vec3& a, const vec3& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

// The side of each node, found when it is first asked for.
class node_sides {
public:
    node_sides(const dense2D<double>& pos, const vec3& point, const vec3& normal)
        : pos_(pos), point_(point), normal_(normal), rows_(std::min<std::uint64_t>(pos.rows, 3))
    {
    }

    [[nodiscard]] bool allocate() { return marks_.allocate(as_bound(pos_.cols), unknown); }

    bool is_positive(unsigned int node)
    {
        std::uint16_t& mark = marks_[node];
        if (mark == unknown) mark = side_of(node);
        return mark == positive;
    }

private:
    static constexpr std::uint16_t unknown = 0, positive = 1, on_or_behind = 65535;

    // What the coordinates do not have counts as lying in the plane through `point_`.
    std::uint16_t side_of(unsigned int node) const
    {
        vec3 d;
        for (std::uint64_t k = 0; k < rows_; ++k) d[k] = column(pos_, node)[k] - point_[k];
        return dot(d, normal_) > 0.0 ? positive : on_or_behind;
    }

    const dense2D<double>& pos_;
    const vec3 point_, normal_;
    const std::uint64_t rows_;
    scratch<std::uint16_t> marks_;
};

// Appends the elements whose nodes are all on the positive side. `out` has room for all elements, and may be `connect`.
void append_kept(const dense2D<unsigned int>& connect, node_sides& sides, dense2D<unsigned int>& out)
{
    const std::uint64_t rows = connect.rows;
    const std::uint64_t held = out.empty() ? 0 : out.cols;
    const std::uint64_t stride = out.empty() ? rows : out.ld;
    unsigned int* const behind_last = out.buffer->data + (out.offset + stride * held);
    std::uint64_t kept = 0;
    for (std::uint64_t e = 0; e < connect.cols; ++e) {
        const unsigned int* nodes = column(connect, e);
        const bool keep =
            std::all_of(nodes, nodes + rows, [&](unsigned int i) { return i == NONE_INDEX || sides.is_positive(i); });
        if (keep) std::copy(nodes, nodes + rows, behind_last + stride * kept++);
    }
    if (kept != 0) out.resize(rows, held + kept);
}

}  // namespace

int clip(const dense2D<double>& pos, const dense2D<unsigned int>& connect, const vector_fixed<double, 3>& C,
         const vector_fixed<double, 3>& N, dense2D<unsigned int>& out)
{
    if (connect.rows * connect.cols == 0) return success;
    if (!check_IDs(connect, as_bound(pos.cols))) return bad_argument(2);
    if (std::sqrt(dot(N, N)) < least_normal) return bad_argument(4);
    const std::uint64_t held = out.empty() ? 0 : out.cols;
    if (held != 0 && out.rows != connect.rows) return bad_argument(5);
    node_sides sides(pos, C, N);
    if (!sides.allocate() || !out.reserve(connect.rows, held + connect.cols)) return out_of_memory;
    append_kept(connect, sides, out);
    return success;
}

}  // namespace zeb::tessolv
