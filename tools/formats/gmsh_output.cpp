#include "formats/gmsh_output.h"

#include <algorithm>

#include "formats/gmsh_types.h"
#include "mesh/kinds.h"
#include "mesh/number_index.h"

namespace tool {
namespace {

bool gmsh_holds(zeb::element_type type)
{
    return gmsh_code_of(type) != 0;
}

bool are_positive_and_distinct(const numbering& numbers)
{
    if (numbers.size() != 0 && numbers.is_consecutive()) return numbers[0] > 0;
    constexpr std::uint64_t most = 0x7FFFFFFF;  // what the older version holds
    for (std::uint64_t i = 0; i < numbers.size(); ++i)
        if (numbers[i] == 0 || numbers[i] > most) return false;
    return number_index(numbers).repeated() == number_index::none;
}

// Whether two elements have one number shows when the blocks follow each other or are put together.
bool are_positive_and_distinct(const std::vector<writable_block>& blocks)
{
    numbering all;
    for (const writable_block& b : blocks) all.append(b.block->numbers);
    return are_positive_and_distinct(all);
}

}  // namespace

gmsh_output::gmsh_output(const mesh& m, sink& out, const write_options& options)
    : content(m), to(out), binary(!options.ascii), blocks(writable_blocks(m, "Gmsh", gmsh_holds, options))
{
    if (!blocks.empty()) elements = blocks.back().first + blocks.back().size();
    keeps_node_numbers = m.node_numbers.size() == m.pos.cols && are_positive_and_distinct(m.node_numbers);
    keeps_element_numbers = are_positive_and_distinct(blocks);
}

void gmsh_output::coordinates_of(std::uint64_t node)
{
    const coordinates& pos = content.pos;
    if (binary && pos.rows == 3) {
        std::memcpy(to.take(24), &pos(0, node), 24);
        return;
    }
    for (std::uint64_t i = 0; i < 3; ++i) real(i < pos.rows ? pos(i, node) : 0.0, i == 2 ? '\n' : ' ');
}

void gmsh_output::header(const char* version)
{
    to.text("$MeshFormat\n");
    to.text(version);
    to.text(binary ? " 1 8\n" : " 0 8\n");
    if (binary) {
        bytes(std::int32_t{1});
        to.put('\n');
    }
    to.text("$EndMeshFormat\n");
}

// A name without a dimension is that of the elements which have its number.
void gmsh_output::physical_names()
{
    std::vector<group_name> names;
    for (const group_name& named : content.group_names) {
        bool used[4] = {};
        for (const writable_block& b : blocks)
            if (named.dimension < 0 && std::ranges::count(b.block->groups, named.number) != 0)
                used[info_of(b.type).dimension] = true;
        for (int d = 0; d < 4; ++d)
            if (used[d] || d == named.dimension) names.push_back({d, named.number, named.name});
    }
    if (names.empty()) return;
    to.text("$PhysicalNames\n");
    line(names.size());
    for (group_name& named : names) {
        std::ranges::replace(named.name, '"', '\'');
        std::ranges::replace(named.name, '\n', ' ');
        to.integer(named.dimension);
        to.put(' ');
        to.integer(named.number);
        to.text(" \"" + named.name + "\"\n");
    }
    to.text("$EndPhysicalNames\n");
}

void gmsh_output::data_header(const char* section, const field& f, std::uint64_t items)
{
    std::string name = f.name;
    std::ranges::replace(name, '"', '\'');
    std::ranges::replace(name, '\n', ' ');
    to.text(section);
    to.text("\n1\n\"" + name + "\"\n1\n0\n3\n0\n");
    line(f.components);
    line(items);
}

void gmsh_output::data_item(std::uint64_t number, const double* values, unsigned int components)
{
    integer(static_cast<std::int64_t>(number), ' ');
    for (unsigned int k = 1; k <= components; ++k) real(*values++, k == components ? '\n' : ' ');
}

void gmsh_output::data()
{
    for (const field& f : content.point_fields) {
        data_header("$NodeData", f, content.pos.cols);
        for (std::uint64_t j = 0; j < content.pos.cols; ++j)
            data_item(node_number(j), &f.values[j * f.components], f.components);
        end_bytes();
        to.text("$EndNodeData\n");
    }
    for (const field& f : content.cell_fields) {
        data_header("$ElementData", f, elements);
        for (const writable_block& b : blocks) {
            const double* values = f.values.data() + first_value(content, *b.block) * f.components;
            for (std::uint64_t e = 0; e < b.size(); ++e, values += f.components)
                data_item(element_number(b, e), values, f.components);
        }
        end_bytes();
        to.text("$EndElementData\n");
    }
}

}  // namespace tool
