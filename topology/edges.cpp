#include <tessolv/topology.h>

#include <algorithm>

#include "core/columns.h"
#include "core/mesh_range.h"
#include "core/return_codes.h"
#include "topology/edge_set.h"

namespace zeb::tessolv {
namespace {

bool takes_edges(const dense2D<unsigned int>& edges)
{
    return edges.empty() || edges.rows == 2;
}

// Appends the distinct edges of matrices that have been checked.
int append_edges(const mesh_range& meshes, dense2D<unsigned int>& edges)
{
    edge_set found(meshes);
    if (!found.collect()) return out_of_memory;
    const std::uint64_t kept = edges.empty() ? 0 : edges.cols;
    if (found.size() == 0 && kept != 0) return success;

    // Filled apart: `edges` may be one of the matrices.
    dense2D<unsigned int> extended;
    if (!extended.resize(2, kept + found.size())) return out_of_memory;
    for (std::uint64_t j = 0; j < kept; ++j) std::copy_n(column(edges, j), 2, column(extended, j));
    if (found.size() != 0) {
        unsigned int* next = column(extended, kept);
        found.walk([&](unsigned int a, unsigned int b) {
            *next++ = a;
            *next++ = b;
            return true;
        });
    }
    edges.shallow_copy(extended);
    return success;
}

}  // namespace

int copy_edges(const dense2D<unsigned int>& connect, element_type type, dense2D<unsigned int>& edges)
{
    if (connect.empty()) return success;
    if (!check_IDs(connect, type, NONE_INDEX)) return bad_argument(1);
    if (!takes_edges(edges)) return bad_argument(3);
    const dense1D<int> types(1, type);
    if (types.empty()) return out_of_memory;
    return append_edges({{&connect, &connect + 1}, types}, edges);
}

int copy_edges(const dense2D<unsigned int>* first, const dense2D<unsigned int>* last, const dense1D<int>& types,
               dense2D<unsigned int>& edges)
{
    const mesh_range meshes{{first, last}, types};
    if (meshes.reversed()) return bad_argument(2);
    if (types.size != meshes.length()) return bad_argument(3);
    if (!takes_edges(edges)) return bad_argument(4);
    if (!meshes.has_valid_IDs(NONE_INDEX)) return bad_argument(1);
    return append_edges(meshes, edges);
}

}  // namespace zeb::tessolv
