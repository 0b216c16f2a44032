#include "mesh/mesh.h"

#include <algorithm>
#include <cmath>

#include "errors.h"
#include "mesh/kinds.h"
#include "words.h"

namespace tool {
namespace {

std::string node_word(const mesh& m, std::uint64_t node)
{
    return "node " + std::to_string(m.node_numbers.size() == m.pos.cols ? m.node_numbers[node] : node + 1);
}

std::string element_word(const mesh& m, const mesh_faults::element& e)
{
    const element_block& block = m.blocks[e.block];
    return std::string(info_of(block.type).one) + ' ' + std::to_string(block.numbers[e.column]);
}

}  // namespace

reading_fault unread_facets(const facet_counts& facets)
{
    const std::uint64_t count = facets.in_file - facets.read;
    const std::string why = facets.why_not_read.empty() ? "" : " (" + facets.why_not_read + ')';
    return {"facets_not_read", count, counted(count, "facet", "facets") + " not read" + why};
}

std::uint64_t mesh::element_count() const
{
    std::uint64_t count = 0;
    for (const element_block& block : blocks) count += block.size();
    return count;
}

bool mesh::has_groups() const
{
    return std::ranges::any_of(blocks, [](const element_block& block) { return !block.groups.empty(); });
}

mesh_faults faults_of(const mesh& m)
{
    mesh_faults faults;
    for (std::size_t b = 0; b < m.blocks.size(); ++b) {
        const connectivity& connect = m.blocks[b].connect;
        for (std::uint64_t e = 0; e < connect.cols; ++e) {
            const unsigned int* nodes = &connect(0, e);
            if (std::any_of(nodes, nodes + connect.rows, [&](unsigned int node) { return node >= m.pos.cols; }))
                faults.bad_indices.push_back({b, e});
        }
    }
    for (std::uint64_t j = 0; j < m.pos.cols; ++j) {
        const double* p = &m.pos(0, j);
        if (!std::all_of(p, p + m.pos.rows, [](double x) { return std::isfinite(x); })) faults.not_finite.push_back(j);
    }
    faults.no_element = m.element_count() == 0;
    return faults;
}

void require_sound(const mesh& m)
{
    if (!m.faults.empty()) throw unreadable(m.faults.front().text);
    const mesh_faults faults = faults_of(m);
    if (!faults.bad_indices.empty())
        throw unreadable(element_word(m, faults.bad_indices.front()) + " names a node that is not there");
    if (!faults.not_finite.empty())
        throw unreadable(node_word(m, faults.not_finite.front()) + " has a coordinate that is no finite number");
    if (faults.no_element) throw unreadable("holds no element");
}

const group_name* find_group_name(const mesh& m, int dimension, std::int32_t number)
{
    const auto found = std::ranges::find_if(m.group_names, [&](const group_name& group) {
        return group.number == number && (group.dimension < 0 || group.dimension == dimension);
    });
    return found == m.group_names.end() ? nullptr : &*found;
}

block_range range_of(const mesh& m)
{
    block_range range;
    range.connect.resize(m.blocks.size());
    if (!range.types.resize(m.blocks.size())) throw std::bad_alloc();
    for (std::size_t b = 0; b < m.blocks.size(); ++b) {
        range.connect[b].shallow_copy(m.blocks[b].connect);
        range.types[b] = m.blocks[b].type;
    }
    return range;
}

}  // namespace tool
