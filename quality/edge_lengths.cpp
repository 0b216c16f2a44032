#include <cmath>
#include <limits>

#include <tessolv/quality.h>

#include "core/columns.h"
#include "core/return_codes.h"
#include "core/scratch.h"

namespace zeb::tessolv {
namespace {

constexpr double largest = std::numeric_limits<double>::max();

// Distance in all coordinates that the matrix has.
double distance(const dense2D<double>& pos, unsigned int a, unsigned int b)
{
    double sum = 0;
    for (std::uint64_t i = 0; i < pos.rows; ++i) {
        const double d = column(pos, a)[i] - column(pos, b)[i];
        sum += d * d;
    }
    return std::sqrt(sum);
}

// Adds a length to the (shortest, sum, longest) of a node. A NaN is neither shorter nor longer.
void add(double length, double* node)
{
    if (length < node[0]) node[0] = length;
    node[1] += length;
    if (length > node[2]) node[2] = length;
}

int lengths_around_nodes(const dense2D<double>& pos, const dense2D<unsigned int>& edges, dense2D<double>& lengths)
{
    if (edges.empty()) return success;
    if (!check_IDs(edges, EL_EDGE2, as_bound(pos.cols))) return bad_argument(2);
    scratch<std::uint64_t> counts;
    if (!counts.allocate(pos.cols, 0) || !lengths.resize(3, pos.cols)) return out_of_memory;
    for (std::uint64_t j = 0; j < pos.cols; ++j) {
        column(lengths, j)[0] = largest;
        column(lengths, j)[1] = 0;
        column(lengths, j)[2] = -largest;
    }
    for (std::uint64_t e = 0; e < edges.cols; ++e) {
        const unsigned int* ends = column(edges, e);
        const double length = distance(pos, ends[0], ends[1]);
        for (const unsigned int node : {ends[0], ends[1]}) {
            add(length, column(lengths, node));
            ++counts[node];
        }
    }
    for (std::uint64_t j = 0; j < pos.cols; ++j)
        if (counts[j] != 0) column(lengths, j)[1] /= static_cast<double>(counts[j]);
    return success;
}

}  // namespace

int edge_lengths(const dense2D<double>& pos, const dense2D<unsigned int>& edges, dense2D<double>& lengths)
{
    dense2D<double> found;
    const int code = lengths_around_nodes(pos, edges, found);
    if (code == success)
        lengths.shallow_copy(found);
    else
        lengths.clear();
    return code;
}

}  // namespace zeb::tessolv
