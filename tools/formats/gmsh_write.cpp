#include "formats/gmsh_write.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <numeric>

#include "errors.h"
#include "formats/gmsh_output.h"
#include "formats/gmsh_types.h"
#include "mesh/kinds.h"

namespace tool {
namespace {

// Elements of one block that are in one group: those are what a block of version 4.1 holds.
struct group_run {
    const writable_block* block;
    std::int32_t group;
    std::vector<std::uint32_t> elements;  // empty: all of them

    std::uint64_t size() const { return elements.empty() ? block->size() : elements.size(); }
    std::uint64_t element(std::uint64_t i) const { return elements.empty() ? i : elements[i]; }
};

std::vector<group_run> runs_of(const std::vector<writable_block>& blocks)
{
    std::vector<group_run> runs;
    for (const writable_block& b : blocks) {
        const std::vector<std::int32_t>& groups = b.block->groups;
        if (std::ranges::adjacent_find(groups, std::ranges::not_equal_to()) == groups.end()) {
            runs.push_back({&b, b.block->group(0), {}});
            continue;
        }
        std::map<std::int32_t, std::vector<std::uint32_t>> by_group;
        for (std::uint32_t e = 0; e < groups.size(); ++e) by_group[groups[e]].push_back(e);
        for (auto& [group, elements] : by_group) runs.push_back({&b, group, std::move(elements)});
    }
    return runs;
}

// Version 4.1 puts every element on a geometric entity. One stands for each group of each dimension: its number is that
// of the group where that can be.
class entity_table {
public:
    explicit entity_table(const std::vector<group_run>& runs)
    {
        for (const group_run& run : runs) {
            auto& of_dimension = entities_[static_cast<std::size_t>(info_of(run.block->type).dimension)];
            of_dimension.try_emplace(run.group, run.group);
            next_ = std::max<std::int64_t>(next_, std::int64_t{run.group} + 1);
        }
        for (auto& of_dimension : entities_)
            for (auto& [group, tag] : of_dimension)
                if (group <= 0) tag = next_++;
        if (count(3) + count(2) + count(1) + count(0) == 0) entities_[0][0] = 1;
    }

    std::uint64_t count(std::size_t dimension) const { return entities_[dimension].size(); }
    const std::map<std::int32_t, std::int64_t>& of(std::size_t dimension) const { return entities_[dimension]; }
    std::int64_t tag(int dimension, std::int32_t group) const
    {
        return entities_[static_cast<std::size_t>(dimension)].at(group);
    }

    // The entity on which all nodes are put.
    std::pair<int, std::int64_t> of_nodes() const
    {
        int dimension = 3;
        while (count(static_cast<std::size_t>(dimension)) == 0) --dimension;
        return {dimension, of(static_cast<std::size_t>(dimension)).begin()->second};
    }

private:
    std::map<std::int32_t, std::int64_t> entities_[4];
    std::int64_t next_ = 1;
};

struct box {
    double low[3] = {0, 0, 0};
    double high[3] = {0, 0, 0};
};

box box_of(const coordinates& pos)
{
    box b;
    for (std::uint64_t i = 0; i < pos.rows && i < 3 && pos.cols != 0; ++i) b.low[i] = b.high[i] = pos(i, 0);
    for (std::uint64_t j = 0; j < pos.cols; ++j) {
        for (std::uint64_t i = 0; i < pos.rows && i < 3; ++i) {
            b.low[i] = std::min(b.low[i], pos(i, j));
            b.high[i] = std::max(b.high[i], pos(i, j));
        }
    }
    return b;
}

void write_entities(gmsh_output& out, const entity_table& table)
{
    const box b = box_of(out.content.pos);
    out.to.text("$Entities\n");
    for (std::size_t d = 0; d < 4; ++d) out.large(table.count(d), d == 3 ? '\n' : ' ');
    for (std::size_t d = 0; d < 4; ++d) {
        for (const auto& [group, tag] : table.of(d)) {
            out.integer(tag, ' ');
            for (const double x : b.low) out.real(x, ' ');
            for (std::size_t i = 0; d != 0 && i < 3; ++i) out.real(b.high[i], ' ');
            out.large(group != 0, d == 0 && group == 0 ? '\n' : ' ');
            if (group != 0) out.integer(group, d == 0 ? '\n' : ' ');
            if (d != 0) out.large(0, '\n');
        }
    }
    out.end_bytes();
    out.to.text("$EndEntities\n");
}

// Of the numbers that the blocks keep, or are given.
std::pair<std::uint64_t, std::uint64_t> element_range(const gmsh_output& out)
{
    if (out.elements == 0 || !out.keeps_element_numbers) return {out.elements != 0, out.elements};
    auto range = out.blocks.front().block->numbers.range();
    for (const writable_block& b : out.blocks) {
        const auto [least, greatest] = b.block->numbers.range();
        range = {std::min(range.first, least), std::max(range.second, greatest)};
    }
    return range;
}

std::pair<std::uint64_t, std::uint64_t> node_range(const gmsh_output& out)
{
    const std::uint64_t nodes = out.content.pos.cols;
    return out.keeps_node_numbers ? out.content.node_numbers.range() : std::pair{std::uint64_t{nodes != 0}, nodes};
}

void write_counts(gmsh_output& out, std::uint64_t blocks, std::uint64_t items,
                  const std::pair<std::uint64_t, std::uint64_t>& range)
{
    out.large(blocks, ' ');
    out.large(items, ' ');
    out.large(range.first, ' ');
    out.large(range.second, '\n');
}

void write_nodes41(gmsh_output& out, const entity_table& table)
{
    const std::uint64_t nodes = out.content.pos.cols;
    const auto [dimension, tag] = table.of_nodes();
    out.to.text("$Nodes\n");
    write_counts(out, 1, nodes, node_range(out));
    out.integer(dimension, ' ');
    out.integer(tag, ' ');
    out.integer(0, ' ');
    out.large(nodes, '\n');
    if (out.binary) {
        out.all_bytes(nodes, [&](std::uint64_t j) { return out.node_number(j); });
    } else {
        for (std::uint64_t j = 0; j < nodes; ++j) out.large(out.node_number(j), '\n');
    }
    for (std::uint64_t j = 0; j < nodes; ++j) out.coordinates_of(j);
    out.end_bytes();
    out.to.text("$EndNodes\n");
}

// All elements of a block, in the order in which they stand there.
void write_whole_block41(gmsh_output& out, const writable_block& b)
{
    const std::uint64_t size = zeb::NODES_PER_ELEMENT[b.type];
    out.for_each_part_of(b, [&](std::uint64_t first, const std::uint64_t* nodes, std::uint64_t n) {
        if (out.binary) {
            char* place = out.to.take(n * (1 + size) * sizeof(std::uint64_t));
            for (std::uint64_t e = 0; e < n; ++e, nodes += size) {
                const std::uint64_t number = out.element_number(b, first + e);
                std::memcpy(place, &number, sizeof number);
                std::copy_n(reinterpret_cast<const char*>(nodes), size * sizeof number, place + sizeof number);
                place += (1 + size) * sizeof number;
            }
            return;
        }
        for (std::uint64_t e = 0; e < n; ++e) {
            out.large(out.element_number(b, first + e), ' ');
            for (std::uint64_t k = 1; k <= size; ++k) out.large(*nodes++, k == size ? '\n' : ' ');
        }
    });
}

void write_some_of_block41(gmsh_output& out, const group_run& run)
{
    const writable_block& b = *run.block;
    const unsigned int size = zeb::NODES_PER_ELEMENT[b.type];
    unsigned int nodes[27];
    for (const std::uint32_t e : run.elements) {
        std::copy_n(b.nodes(e), size, nodes);
        to_file_order(node_order::gmsh, b.type, nodes, 1);
        out.large(out.element_number(b, e), ' ');
        for (unsigned int k = 0; k < size; ++k) out.large(out.node_number(nodes[k]), k + 1 == size ? '\n' : ' ');
    }
}

void write_elements41(gmsh_output& out, const entity_table& table, const std::vector<group_run>& runs)
{
    out.to.text("$Elements\n");
    write_counts(out, runs.size(), out.elements, element_range(out));
    for (const group_run& run : runs) {
        const int dimension = info_of(run.block->type).dimension;
        out.integer(dimension, ' ');
        out.integer(table.tag(dimension, run.group), ' ');
        out.integer(gmsh_code_of(run.block->type), ' ');
        out.large(run.size(), '\n');
        run.elements.empty() ? write_whole_block41(out, *run.block) : write_some_of_block41(out, run);
    }
    out.end_bytes();
    out.to.text("$EndElements\n");
}

void write_block22(gmsh_output& out, const writable_block& b)
{
    const std::uint64_t size = zeb::NODES_PER_ELEMENT[b.type];
    const std::string kind = std::to_string(gmsh_code_of(b.type)) + " 2 ";
    out.for_each_part_of(b, [&](std::uint64_t first, const std::uint64_t* nodes, std::uint64_t n) {
        if (out.binary) {
            // The number, the group as its physical and as its geometric one, the nodes.
            char* place = out.to.take(n * (3 + size) * sizeof(std::int32_t));
            const auto put = [&](std::int32_t value) {
                std::memcpy(place, &value, sizeof value);
                place += sizeof value;
            };
            for (std::uint64_t e = 0; e < n; ++e) {
                put(static_cast<std::int32_t>(out.element_number(b, first + e)));
                put(b.block->group(first + e));
                put(b.block->group(first + e));
                for (std::uint64_t k = 0; k < size; ++k) put(static_cast<std::int32_t>(*nodes++));
            }
            return;
        }
        for (std::uint64_t e = 0; e < n; ++e) {
            out.large(out.element_number(b, first + e), ' ');
            out.to.text(kind);
            out.integer(b.block->group(first + e), ' ');
            out.integer(b.block->group(first + e), ' ');
            for (std::uint64_t k = 1; k <= size; ++k) out.large(*nodes++, k == size ? '\n' : ' ');
        }
    });
}

void write_elements22(gmsh_output& out)
{
    out.to.text("$Elements\n");
    out.line(out.elements);
    for (const writable_block& b : out.blocks) {
        if (out.binary) {
            out.integer(gmsh_code_of(b.type), ' ');
            out.integer(static_cast<std::int64_t>(b.size()), ' ');
            out.integer(2, ' ');
        }
        write_block22(out, b);
    }
    out.end_bytes();
    out.to.text("$EndElements\n");
}

}  // namespace

void write_gmsh41(const mesh& m, sink& to, const write_options& options)
{
    gmsh_output out(m, to, options);
    const std::vector<group_run> runs = runs_of(out.blocks);
    const entity_table table(runs);
    out.header("4.1");
    out.physical_names();
    write_entities(out, table);
    write_nodes41(out, table);
    write_elements41(out, table, runs);
    out.data();
}

void write_gmsh22(const mesh& m, sink& to, const write_options& options)
{
    gmsh_output out(m, to, options);
    out.header("2.2");
    out.physical_names();
    to.text("$Nodes\n");
    out.line(m.pos.cols);
    for (std::uint64_t j = 0; j < m.pos.cols; ++j) {
        out.integer(static_cast<std::int64_t>(out.node_number(j)), ' ');
        out.coordinates_of(j);
    }
    out.end_bytes();
    to.text("$EndNodes\n");
    write_elements22(out);
    out.data();
}

}  // namespace tool
