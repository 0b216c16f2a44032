#include <algorithm>
#include <memory>

#include "commands/command.h"
#include "commands/files.h"
#include "commands/tables.h"
#include "errors.h"
#include "findings/face_list.h"
#include "findings/measures.h"
#include "mesh/edit.h"
#include "words.h"

namespace tool {
namespace {

struct parts_options {
    shared_options shared;
    std::vector<std::uint32_t> select;
    bool largest = false;
};

struct part_numbers {
    std::uint64_t elements = 0;
    finite_box box;
};

std::vector<part_numbers> numbers_of(const mesh& m, const mesh_parts& parts)
{
    std::vector<part_numbers> numbers(parts.count);
    std::uint64_t place = 0;
    for (const element_block& block : m.blocks) {
        for (std::uint64_t e = 0; e < block.size(); ++e, ++place) {
            if (parts.part_of[place] == mesh_parts::none) continue;
            part_numbers& part = numbers[parts.part_of[place]];
            ++part.elements;
            for (std::uint64_t i = 0; i < block.connect.rows; ++i) part.box.enclose(m, block.connect(i, e));
        }
    }
    return numbers;
}

// The numbers of parts, from 1 on, that the options choose; none for all.
std::vector<std::uint32_t> chosen_parts(const parts_options& options, const std::vector<part_numbers>& numbers)
{
    if (options.largest && !numbers.empty()) {
        const auto largest = std::ranges::max_element(numbers, {}, &part_numbers::elements);
        return {static_cast<std::uint32_t>(largest - numbers.begin()) + 1};
    }
    for (const std::uint32_t p : options.select)
        if (p == 0 || p > numbers.size())
            throw wrong_usage("has no part " + std::to_string(p) + ": there are " + std::to_string(numbers.size()));
    return options.select;
}

void select_parts(mesh& m, const mesh_parts& parts, const std::vector<std::uint32_t>& chosen)
{
    field f{"part", 1, number_kind::integer, {}};
    std::vector<bool> keep;
    for (const std::uint32_t part : parts.part_of) {
        const std::uint32_t number = part == mesh_parts::none ? 0 : part + 1;
        f.values.push_back(number);
        keep.push_back(chosen.empty() || std::ranges::find(chosen, number) != chosen.end());
    }
    set_cell_field(m, std::move(f));
    if (chosen.empty()) return;
    keep_elements(m, keep);
    keep_nodes(m, used_nodes(m));
}

json box_object(const finite_box& box)
{
    return {{"min", box.min}, {"max", box.max}};
}

void report(const std::string& path, const shared_options& options, const std::vector<part_numbers>& numbers)
{
    if (options.json) {
        json list = json::array();
        for (std::size_t p = 0; p < numbers.size(); ++p)
            list.push_back(
                {{"part", p + 1}, {"elements", numbers[p].elements}, {"bounding_box", box_object(numbers[p].box)}});
        print_json({{"file", path}, {"parts", list}});
    } else if (!options.quiet) {
        std::string text = path + ": " + counted(numbers.size(), "part", "parts") + '\n';
        for (std::size_t p = 0; p < numbers.size(); ++p) {
            std::string value = counted(numbers[p].elements, "element", "elements");
            for (std::size_t k = 0; k < 3; ++k)
                value += std::string(", ") + "xyz"[k] + ' ' + short_number(numbers[p].box.min[k]) + " to " +
                         short_number(numbers[p].box.max[k]);
            text += table_line("part " + std::to_string(p + 1), value);
        }
        tell(options, text);
    }
}

exit_status parts(const std::string& path, const parts_options& options)
{
    loaded input = load_sound(path, options.shared);
    mesh& m = input.content;
    const mesh_parts found = parts_of(m, face_list(m, dimension_of(m)));
    const std::vector<part_numbers> numbers = numbers_of(m, found);
    const std::vector<std::uint32_t> chosen = chosen_parts(options, numbers);
    if (options.shared.output) {
        select_parts(m, found, chosen);
        save_some(m, options.shared);
    }
    report(path, options.shared, numbers);
    return exit_clean;
}

}  // namespace

std::function<exit_status()> declare_parts(CLI::App& app)
{
    const auto options = std::make_shared<parts_options>();
    declare_file(app, options->shared);
    declare_output(app, options->shared);
    declare_json(app, options->shared);
    declare_quiet(app, options->shared);
    CLI::Option* select = app.add_option("--select", options->select, "write these parts only: 2, or 1,3");
    select->delimiter(',')->allow_extra_args(false);
    app.add_flag("--largest", options->largest, "write the part of most elements only")->excludes(select);
    return [options] {
        return for_each_file(options->shared, [&](const std::string& path) { return parts(path, *options); });
    };
}

}  // namespace tool
