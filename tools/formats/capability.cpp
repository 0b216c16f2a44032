#include "formats/capability.h"

#include <algorithm>

#include "errors.h"
#include "mesh/kinds.h"
#include "words.h"

namespace tool {

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
            throw unwritable(std::string(format) + " cannot hold " + told + "; --lossy writes what it can" +
                             (dimension == 3 && !holds(zeb::EL_TETRA4) ? ", 'boundary' makes the surface" : ""));
        } else if (holds(corners)) {
            add(block, corners);
            options.note(told + " written by their corners");
        } else {
            options.note(told + " left out");
        }
    }
    return blocks;
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
