#include <algorithm>
#include <cmath>

#include <tessolv/quality.h>

#include "core/columns.h"
#include "core/mesh_range.h"
#include "core/return_codes.h"
#include "topology/edge_set.h"

namespace zeb::tessolv {
namespace {

// Distance in x, y, z; rows that the matrix does not have are 0.
double distance(const dense2D<double>& pos, unsigned int a, unsigned int b)
{
    double sum = 0;
    for (std::uint64_t i = 0; i < std::min<std::uint64_t>(pos.rows, 3); ++i) {
        const double d = column(pos, a)[i] - column(pos, b)[i];
        sum += d * d;
    }
    return std::sqrt(sum);
}

// ln(1 + r) / r; near 0 the first terms of its series, where the quotient would lose its digits.
double log_ratio(double r)
{
    if (r > -0.1) return ((0.3333333333333333 - 0.25 * r) * r - 0.5) * r + 1;
    return std::log(1 + r) / r;
}

// Integral of ds / h(s) along an edge on which the size h goes linearly from one end to the other.
double length_in_sizes(double length, double size_a, double size_b)
{
    const double larger = std::max(size_a, size_b);
    const double smaller = std::min(size_a, size_b);
    return log_ratio(smaller / larger - 1) * length / larger;
}

// Gives the edges of matrices that have been checked to the histogram, which may be a class of the host's own: what it
// throws is caught here. Sizes that cannot be used end the feeding without an error: part of the interface.
int feed(const dense2D<double>& pos, const mesh_range& meshes, const dense1D<float>& sizes, misc::histogram& h)
{
    if (sizes.size != pos.cols) return success;
    edge_set edges(meshes);
    if (!edges.collect()) return out_of_memory;
    return guarded([&] {
        edges.walk([&](unsigned int a, unsigned int b) {
            const double size_a = sizes[a];
            const double size_b = sizes[b];
            if (!(size_a > 0 && size_b > 0)) return false;
            h.process(length_in_sizes(distance(pos, a, b), size_a, size_b));
            return true;
        });
        return success;
    });
}

}  // namespace

int edge_qualities(const dense2D<double>& pos, const dense2D<unsigned int>& connect, element_type type,
                   const dense1D<float>& sizes, misc::histogram& h)
{
    if (connect.empty()) return success;
    if (!check_IDs(connect, type, as_bound(pos.cols))) return bad_argument(2);
    const dense1D<int> types(1, type);
    return types.empty() ? out_of_memory : feed(pos, {{&connect, &connect + 1}, types}, sizes, h);
}

int edge_qualities(const dense2D<double>& pos, const dense2D<unsigned int>* first, const dense2D<unsigned int>* last,
                   const dense1D<int>& types, const dense1D<float>& sizes, misc::histogram& h)
{
    if (first == last) return success;
    const mesh_range meshes{{first, last}, types};
    if (meshes.reversed() || types.size != meshes.length()) return bad_argument(4);
    if (!meshes.has_valid_IDs(as_bound(pos.cols))) return bad_argument(2);
    return feed(pos, meshes, sizes, h);
}

}  // namespace zeb::tessolv
