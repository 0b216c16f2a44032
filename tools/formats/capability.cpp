#include "formats/capability.h"

#include <algorithm>

#include "errors.h"
#include "mesh/edit.h"
#include "mesh/kinds.h"
#include "words.h"

namespace tool {

namespace {

// What to do about elements that a format does not hold.
std::string advice(const mesh& m, int dimension, bool (*holds)(zeb::element_type), const write_options& options)
{
    std::vector<std::string> ways;
    const auto can_be_written = [&](const element_block& block) {
        return holds(block.type) || holds(info_of(block.type).linear);
    };
    if (!options.lossy && std::ranges::any_of(m.blocks, can_be_written))
        ways.emplace_back("--lossy writes what it can");
    if (dimension == 3 && !holds(zeb::EL_TETRA4)) ways.emplace_back("'boundary' makes the surface");
    return ways.empty() || !options.advises ? "" : "; " + joined(ways);
}

}  // namespace

std::vector<writable_block> writable_blocks(const mesh& m, std::string_view format, bool (*holds)(zeb::element_type),
                                            const write_options& options)
{
    std::vector<writable_block> blocks;
    int dimension = 0;
    for (const element_block& block : m.blocks) dimension = std::max(dimension, info_of(block.type).dimension);
    const auto add = [&](const element_block& block, zeb::element_type type) {
        blocks.push_back({&block, type, blocks.empty() ? 0 : blocks.back().first + blocks.back().size()});
    };
    for (const element_block& block : m.blocks) {
        const zeb::element_type corners = info_of(block.type).linear;
        const std::string told = counted_elements(block.size(), block.type);
        if (holds(block.type)) {
            add(block, block.type);
        } else if (!options.lossy && info_of(block.type).dimension == dimension) {
            throw unwritable(std::string(format) + " cannot hold " + told + advice(m, dimension, holds, options));
        } else if (holds(corners)) {
            add(block, corners);
            options.note(told + " written by their corners");
        } else {
            options.note(told + " left out");
        }
    }
    if (blocks.empty() && !m.blocks.empty())
        throw unwritable(std::string(format) + " can hold none of the elements" + advice(m, dimension, holds, options));
    return blocks;
}

std::optional<mesh> without_lost_nodes(const mesh& m, bool (*holds)(zeb::element_type), const write_options& options)
{
    std::vector<bool> keep(m.pos.cols, true);
    const auto mark = [&](const element_block& block, std::uint64_t first, std::uint64_t last, bool value) {
        for (std::uint64_t e = 0; e < block.size(); ++e)
            for (std::uint64_t i = first; i < last; ++i) keep[block.connect(i, e)] = value;
    };
    const auto loses_nodes = [&](const element_block& block) {
        return !holds(block.type) && holds(info_of(block.type).linear);
    };
    if (std::ranges::none_of(m.blocks, loses_nodes)) return {};
    const auto corners = [](const element_block& block) { return zeb::VERTICES_PER_ELEMENT[block.type]; };
    for (const element_block& block : m.blocks)
        if (loses_nodes(block)) mark(block, corners(block), block.connect.rows, false);
    for (const element_block& block : m.blocks)
        mark(block, 0, loses_nodes(block) ? corners(block) : block.connect.rows, true);
    const auto lost = static_cast<std::uint64_t>(std::ranges::count(keep, false));
    if (lost == 0) return {};
    options.note(counted(lost, "node", "nodes") + " between corners left out");
    mesh rest = m;
    keep_nodes(rest, keep);
    return rest;
}

void note_fields(const mesh& m, std::string_view format, const write_options& options)
{
    std::vector<std::string> names;
    for (const auto* fields : {&m.point_fields, &m.cell_fields})
        for (const field& f : *fields) names.push_back(f.name);
    if (!names.empty()) options.note(std::string(format) + " holds no fields: left out " + joined(names));
}

void note_groups(const mesh& m, std::string_view format, const write_options& options)
{
    if (m.has_groups()) options.note(std::string(format) + " holds no groups: left out");
}

void note_group_names(const mesh& m, std::string_view format, const write_options& options)
{
    if (!m.group_names.empty())
        options.note(std::string(format) + " holds no names of groups: only their numbers are written");
}

std::uint64_t first_value(const mesh& m, const element_block& block)
{
    std::uint64_t first = 0;
    for (const element_block* before = m.blocks.data(); before != &block; ++before) first += before->size();
    return first;
}

}  // namespace tool
