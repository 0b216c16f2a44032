#ifndef TOOLS_FORMATS_CAPABILITY_H
#define TOOLS_FORMATS_CAPABILITY_H

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "formats/format.h"
#include "formats/node_orders.h"

namespace tool {

// A block as a format can take it: whole, or its corners alone.
struct writable_block {
    const element_block* block;
    zeb::element_type type;  // as which it is written
    std::uint64_t first;     // elements in the written blocks before it

    std::uint64_t size() const { return block->size(); }
    const unsigned int* nodes(std::uint64_t e) const { return &block->connect(0, e); }
};

// Calls visit(first, nodes, n) for the elements of a block, some hundreds at a time: n elements from `first` on, their
// nodes in the order of the file, element after element.
template <class Visit>
void for_each_part(const writable_block& b, node_order convention, Visit visit)
{
    std::array<unsigned int, 2048> nodes;
    const std::uint64_t size = zeb::NODES_PER_ELEMENT[b.type];
    const std::uint64_t most = nodes.size() / size;
    const bool gapless = b.block->connect.ld == size;
    for (std::uint64_t first = 0; first < b.size(); first += most) {
        const std::uint64_t n = std::min(most, b.size() - first);
        if (gapless) std::copy_n(b.nodes(first), n * size, nodes.begin());
        for (std::uint64_t e = 0; !gapless && e < n; ++e) std::copy_n(b.nodes(first + e), size, &nodes[e * size]);
        to_file_order(convention, b.type, nodes.data(), n);
        visit(first, static_cast<const unsigned int*>(nodes.data()), n);
    }
}

// The blocks that a format can hold: holds(type) says so. Others are `unwritable`, but for two cases, in which their
// corners are written, or nothing, with a note: lossy writing, and elements of a lower dimension than the mesh has,
// which many programs add for their own ends.
std::vector<writable_block> writable_blocks(const mesh& m, std::string_view format, bool (*holds)(zeb::element_type),
                                            const write_options& options);

// Nodes between the corners of elements that are written by their corners belong to nobody any more: the mesh without
// them, with a note. Nothing where there are none.
std::optional<mesh> without_lost_nodes(const mesh& m, bool (*holds)(zeb::element_type), const write_options& options);

// Notes what a format has no place for.
void note_fields(const mesh& m, std::string_view format, const write_options& options);
void note_groups(const mesh& m, std::string_view format, const write_options& options);
void note_group_names(const mesh& m, std::string_view format, const write_options& options);

// The values of a cell field on one block.
std::uint64_t first_value(const mesh& m, const element_block& block);

}  // namespace tool

#endif
