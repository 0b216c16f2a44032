#include <algorithm>
#include <array>
#include <numeric>

#include <tessolv/editing.h>
#include <tessolv/spatial.h>

#include "core/columns.h"
#include "core/mesh_range.h"
#include "core/return_codes.h"
#include "spatial/element_merge.h"
#include "spatial/set_merge.h"

// Twelve forms over two cores: a node list into another, and the nodes of a range of matrices. The codes of a bad
// tolerance differ between the forms: part of the interface.
namespace zeb::tessolv {
namespace {

using node_list = dense1D<unsigned int>;

constexpr double usual_tolerance = 1e-6;

bool is_plane_or_space(const dense2D<double>& pos)
{
    return pos.rows == 2 || pos.rows == 3;
}

// NONE_INDEX is no column either.
bool are_columns(const node_list& nodes, const dense2D<double>& pos)
{
    return std::all_of(nodes.begin(), nodes.end(), [n = as_bound(pos.cols)](unsigned int i) { return i < n; });
}

// 0, 1, ... up to the number of columns. False without memory.
bool number_columns(const dense2D<double>& pos, node_list& numbers)
{
    if (!numbers.resize(pos.cols)) return false;
    std::iota(numbers.begin(), numbers.end(), 0u);
    return true;
}

// The distinct nodes of a list that is not empty. False without memory, which unique_indices does not report.
bool find_distinct(const node_list& nodes, node_list& distinct)
{
    return unique_indices(distinct, nodes) == success && !distinct.empty();
}

// The general form on node lists. `new_IDs` is a list of nobody else.
int merge_lists(const dense2D<double>& pos, const node_list& nodes1, const node_list& nodes2, node_list& new_IDs,
                double tolerance)
{
    if (pos.cols == 0) return 0;
    if (!is_plane_or_space(pos)) return bad_argument(1);
    if (!(tolerance >= 0.0)) return bad_argument(4);
    if (nodes1.empty() || nodes2.empty()) return 0;
    if (!are_columns(nodes1, pos) || !are_columns(nodes2, pos)) return bad_argument(2);

    node_list visitors;
    node_list targets;
    const bool one_list = nodes1.data() == nodes2.data() && nodes1.size == nodes2.size;
    std::uint64_t merges = 0;
    if (!number_columns(pos, new_IDs) || !find_distinct(nodes1, visitors) ||
        !(one_list ? targets.shallow_copy(visitors) : find_distinct(nodes2, targets)) ||
        !merge_closest_first(pos, visitors, targets, tolerance, usual_most(visitors.size), new_IDs.data(), merges))
        return out_of_memory;
    return as_result(merges);
}

// The general form on a range of matrices. `new_IDs` is a list of nobody else.
int merge_range(const dense2D<double>& pos, const matrix_range<dense2D<unsigned int>>& meshes, node_list& new_IDs,
                double tolerance, unsigned int mode)
{
    if (pos.cols == 0) return 0;
    if (!is_plane_or_space(pos)) return bad_argument(1);
    if (meshes.reversed()) return bad_argument(3);
    if (!(tolerance >= 0.0)) return bad_argument(5);
    if (mode > 2) return bad_argument(6);

    node_list nodes;
    if (unique_indices(nodes, meshes.first, meshes.last) != success) return out_of_memory;
    if (nodes.empty()) return 0;
    if (!are_columns(nodes, pos)) return bad_argument(2);
    std::uint64_t merges = 0;
    if (!number_columns(pos, new_IDs) ||
        !(mode == 0 ? merge_closest_first(pos, nodes, nodes, tolerance, usual_most(nodes.size), new_IDs.data(), merges)
                    : merge_within_elements(pos, meshes, nodes, tolerance, mode == 2, new_IDs.data(), merges)))
        return out_of_memory;
    for (auto& connect : meshes) change_indices(connect, new_IDs);
    return as_result(merges);
}

// The general form on all nodes, which moves those that were merged. `new_IDs` is a list of nobody else.
int merge_columns(dense2D<double>& pos, node_list& new_IDs, double tolerance)
{
    if (pos.cols == 0) return 0;
    if (!is_plane_or_space(pos)) return bad_argument(1);
    if (!(tolerance >= 0.0)) return bad_argument(3);

    node_list nodes;
    dense2D<double> moved;
    std::uint64_t merges = 0;
    if (!number_columns(pos, new_IDs) || !number_columns(pos, nodes) || !moved.copy(pos) ||
        !merge_closest_first(pos, nodes, nodes, tolerance, usual_most(nodes.size), new_IDs.data(), merges))
        return out_of_memory;
    for (std::uint64_t i = 0; i < pos.cols; ++i)
        if (new_IDs[i] != i) std::copy_n(column(pos, new_IDs[i]), pos.rows, column(moved, i));
    pos.shallow_copy(moved);
    return as_result(merges);
}

// Runs merge_into(result), hands the result over and returns the code. Without success the result is empty.
template <class Merge>
int replace_list(node_list& new_IDs, Merge merge_into)
{
    node_list result;
    const int code = merge_into(result);
    if (code < 0) result.shallow_copy(node_list());
    new_IDs.shallow_copy(result);
    return code;
}

}  // namespace

int merge(const dense2D<double>& pos, const dense1D<unsigned int>& nodes1, const dense1D<unsigned int>& nodes2,
          dense1D<unsigned int>& new_IDs, double tolerance)
{
    return replace_list(new_IDs,
                        [&](node_list& result) { return merge_lists(pos, nodes1, nodes2, result, tolerance); });
}

int merge(const dense2D<double>& pos, const dense1D<unsigned int>& nodes, dense1D<unsigned int>& new_IDs,
          double tolerance)
{
    return merge(pos, nodes, nodes, new_IDs, tolerance);
}

int merge(const dense2D<double>& pos, dense2D<unsigned int>* first, dense2D<unsigned int>* last,
          dense1D<unsigned int>& new_IDs, double tolerance, unsigned int mode)
{
    const matrix_range meshes{first, last};
    return replace_list(new_IDs, [&](node_list& result) { return merge_range(pos, meshes, result, tolerance, mode); });
}

int merge(const dense2D<double>& pos, dense2D<unsigned int>& connect, dense1D<unsigned int>& new_IDs, double tolerance,
          unsigned int mode)
{
    return merge(pos, &connect, &connect + 1, new_IDs, tolerance, mode);
}

int merge(const dense2D<double>& pos, dense2D<unsigned int>& connect1, dense2D<unsigned int>& connect2,
          dense1D<unsigned int>& new_IDs, double tolerance, unsigned int mode)
{
    std::array<dense2D<unsigned int>, 2> copies;
    if (!copies[0].copy(connect1) || !copies[1].copy(connect2)) {
        new_IDs.shallow_copy(node_list());
        return out_of_memory;
    }
    const int code = merge(pos, copies.data(), copies.data() + 2, new_IDs, tolerance, mode);
    if (code >= 0) {
        connect1.shallow_copy(copies[0]);
        connect2.shallow_copy(copies[1]);
    }
    return code;
}

int merge(const dense2D<double>& pos, dense2D<unsigned int>* first, dense2D<unsigned int>* last, double tolerance,
          unsigned int mode)
{
    node_list new_IDs;
    return merge(pos, first, last, new_IDs, tolerance, mode);
}

int merge(const dense2D<double>& pos, dense2D<unsigned int>& connect, double tolerance, unsigned int mode)
{
    return merge(pos, &connect, &connect + 1, tolerance, mode);
}

int merge(const dense2D<double>& pos, dense2D<unsigned int>& connect1, dense2D<unsigned int>& connect2,
          double tolerance, unsigned int mode)
{
    node_list new_IDs;
    return merge(pos, connect1, connect2, new_IDs, tolerance, mode);
}

int merge(const dense2D<double>& pos, dense2D<unsigned int>& connect)
{
    return merge(pos, connect, usual_tolerance);
}

int merge(const dense2D<double>& pos, dense2D<unsigned int>& connect1, dense2D<unsigned int>& connect2)
{
    return merge(pos, connect1, connect2, usual_tolerance);
}

int merge(dense2D<double>& pos, dense1D<unsigned int>& new_IDs, double tolerance)
{
    return replace_list(new_IDs, [&](node_list& result) { return merge_columns(pos, result, tolerance); });
}

int merge(dense2D<double>& pos, double tolerance)
{
    node_list new_IDs;
    return merge(pos, new_IDs, tolerance);
}

}  // namespace zeb::tessolv
