#include <tessolv/geometry.h>

#include "core/columns.h"
#include "core/return_codes.h"

namespace zeb::tessolv {
namespace {

// Grown apart and handed over last. The comparisons pass over a NaN.
template <std::size_t N>
struct box {
    vector_fixed<double, N> min, max;

    void include(const double* point)
    {
        for (std::size_t k = 0; k < N; ++k) {
            min[k] = point[k] < min[k] ? point[k] : min[k];
            max[k] = point[k] > max[k] ? point[k] : max[k];
        }
    }
};

template <class Visit>
void visit_runs(const dense1D<unsigned int>& list, Visit visit)
{
    visit(list.data(), list.size);
}

template <class Visit>
void visit_runs(const dense2D<unsigned int>& connect, Visit visit)
{
    for_each_run(connect, visit);
}

template <std::size_t N>
int enlarge(const dense2D<double>& pos, vector_fixed<double, N>& min, vector_fixed<double, N>& max)
{
    if (pos.rows != N) return bad_argument(1);
    box<N> grown{min, max};
    for (std::uint64_t j = 0; j < pos.cols; ++j) grown.include(column(pos, j));
    min = grown.min;
    max = grown.max;
    return success;
}

// By the nodes of a list or of a connectivity that names one at least. A node that is named often is looked at as
// often: that changes nothing, and costs less than to find the distinct ones.
template <std::size_t N, class Nodes>
int enlarge(const dense2D<double>& pos, const Nodes& nodes, vector_fixed<double, N>& min, vector_fixed<double, N>& max)
{
    if (pos.rows != N) return bad_argument(1);
    if (!check_IDs(nodes, as_bound(pos.cols))) return bad_argument(2);
    box<N> grown{min, max};
    visit_runs(nodes, [&](const unsigned int* run, std::uint64_t count) {
        for (std::uint64_t i = 0; i < count; ++i)
            if (run[i] != NONE_INDEX) grown.include(column(pos, run[i]));
    });
    min = grown.min;
    max = grown.max;
    return success;
}

bool names_no_node(const dense2D<unsigned int>& connect)
{
    return missing_in(connect) == connect.rows * connect.cols;
}

}  // namespace

int inc_bounding_box(const dense2D<double>& pos, vector_fixed<double, 2>& min, vector_fixed<double, 2>& max)
{
    return enlarge(pos, min, max);
}

int inc_bounding_box(const dense2D<double>& pos, vector_fixed<double, 3>& min, vector_fixed<double, 3>& max)
{
    return enlarge(pos, min, max);
}

int inc_bounding_box(const dense2D<double>& pos, const dense1D<unsigned int>& nodes, vector_fixed<double, 2>& min,
                     vector_fixed<double, 2>& max)
{
    return nodes.empty() ? success : enlarge(pos, nodes, min, max);
}

int inc_bounding_box(const dense2D<double>& pos, const dense1D<unsigned int>& nodes, vector_fixed<double, 3>& min,
                     vector_fixed<double, 3>& max)
{
    return nodes.empty() ? success : enlarge(pos, nodes, min, max);
}

int inc_bounding_box(const dense2D<double>& pos, const dense2D<unsigned int>& connect, vector_fixed<double, 2>& min,
                     vector_fixed<double, 2>& max)
{
    return names_no_node(connect) ? success : enlarge(pos, connect, min, max);
}

int inc_bounding_box(const dense2D<double>& pos, const dense2D<unsigned int>& connect, vector_fixed<double, 3>& min,
                     vector_fixed<double, 3>& max)
{
    return names_no_node(connect) ? success : enlarge(pos, connect, min, max);
}

}  // namespace zeb::tessolv
