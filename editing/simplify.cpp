#include <numeric>

#include <tessolv/editing.h>

#include "core/mesh_range.h"
#include "core/return_codes.h"
#include "editing/append_columns.h"
#include "editing/renumbering.h"

namespace zeb::tessolv {
namespace {

// The used nodes in the order of their first use.
struct node_selection {
    dense1D<unsigned int> used;
    dense1D<unsigned int> new_IDs;  // place of each node in `used`, counted from a given number; NONE_INDEX if unused
};

// False without memory.
bool number_nodes(std::uint64_t nodes, unsigned int start, node_selection& selection)
{
    if (!selection.new_IDs.resize(nodes, NONE_INDEX)) return false;
    for (const unsigned int node : selection.used) selection.new_IDs[node] = start++;
    return true;
}

bool list_all_nodes(std::uint64_t nodes, dense1D<unsigned int>& list)
{
    if (!list.resize(nodes)) return false;
    std::iota(list.begin(), list.end(), 0u);
    return true;
}

}  // namespace

int simplify(dense2D<double>& pos, dense2D<unsigned int>* first, dense2D<unsigned int>* last,
             dense1D<unsigned int>& new_IDs)
{
    new_IDs.clear();
    if (first == last) return success;
    const matrix_range<dense2D<unsigned int>> meshes{first, last};
    if (meshes.reversed()) return bad_argument(3);
    for (const auto& connect : meshes)
        if (!check_IDs(connect, as_bound(pos.cols))) return bad_argument(2);

    node_selection selection;
    if (unique_indices(selection.used, first, last) != success) return out_of_memory;
    if (selection.used.size == pos.cols) {
        // Every node is used: all keep their numbers, whatever the order of first use. Part of the interface.
        if (!list_all_nodes(pos.cols, selection.used)) return out_of_memory;
        new_IDs.shallow_copy(selection.used);
        return success;
    }
    dense2D<double> compact;
    if (!number_nodes(pos.cols, 0, selection) || !append_selected(compact, pos, selection.used) ||
        !change_indices_once(meshes, selection.new_IDs))
        return out_of_memory;
    pos.shallow_copy(compact);
    new_IDs.shallow_copy(selection.new_IDs);
    return as_result(compact.cols);
}

int simplify(dense2D<double>& pos, dense2D<unsigned int>& connect, dense1D<unsigned int>& new_IDs)
{
    return simplify(pos, &connect, &connect + 1, new_IDs);
}

int simplify(dense2D<double>& pos, dense2D<unsigned int>& connect)
{
    return simplify(pos, &connect, &connect + 1);
}

int simplify(dense2D<double>& pos, dense2D<unsigned int>* first, dense2D<unsigned int>* last)
{
    dense1D<unsigned int> new_IDs;
    return simplify(pos, first, last, new_IDs);
}

int copy_mesh(dense2D<double>& pos, dense2D<unsigned int>& connect, const dense2D<unsigned int>& connect_src)
{
    if (!check_IDs(connect_src, as_bound(pos.cols))) return bad_argument(3);
    node_selection selection;
    dense2D<unsigned int> copy;
    if (unique_indices(selection.used, connect_src) != success || !copy.copy(connect_src)) return out_of_memory;
    // As in simplify: a mesh that uses every node is copied with the nodes in their order.
    if (selection.used.size == pos.cols && !list_all_nodes(pos.cols, selection.used)) return out_of_memory;
    if (!number_nodes(pos.cols, as_bound(pos.cols), selection) ||
        !change_indices_once({&copy, &copy + 1}, selection.new_IDs) || !append_selected(pos, pos, selection.used))
        return out_of_memory;
    connect.shallow_copy(copy);
    return success;
}

}  // namespace zeb::tessolv
