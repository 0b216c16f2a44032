#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <map>
#include <memory>

#include <nlohmann/json.hpp>

#include "commands/command.h"
#include "commands/files.h"
#include "mesh/kinds.h"
#include "terminal.h"
#include "words.h"

namespace tool {
namespace {

using json = nlohmann::ordered_json;

struct group_summary {
    int dimension;
    std::int32_t number;
    std::string name;
    std::uint64_t elements;
};

// Groups with elements, by dimension and number, and those that have only a name.
std::vector<group_summary> groups_of(const mesh& m)
{
    std::map<std::pair<int, std::int32_t>, std::uint64_t> counts;
    for (const element_block& block : m.blocks)
        for (const std::int32_t group : block.groups) ++counts[{info_of(block.type).dimension, group}];
    for (const group_name& named : m.group_names)
        if (named.dimension >= 0) counts.try_emplace({named.dimension, named.number}, 0);
    std::vector<group_summary> groups;
    for (const auto& [key, elements] : counts) {
        const group_name* named = find_group_name(m, key.first, key.second);
        groups.push_back({key.first, key.second, named != nullptr ? named->name : "", elements});
    }
    return groups;
}

struct range {
    double least = std::numeric_limits<double>::infinity();
    double most = -std::numeric_limits<double>::infinity();
};

// Over the finite values.
range range_of(const std::vector<double>& values)
{
    range r;
    for (const double v : values) {
        if (!std::isfinite(v)) continue;
        r.least = std::min(r.least, v);
        r.most = std::max(r.most, v);
    }
    return r;
}

std::vector<range> box_of(const coordinates& pos)
{
    std::vector<range> box(pos.cols == 0 ? 0 : pos.rows);
    for (std::uint64_t j = 0; j < pos.cols; ++j) {
        for (std::uint64_t i = 0; i < box.size(); ++i) {
            box[i].least = std::min(box[i].least, pos(i, j));
            box[i].most = std::max(box[i].most, pos(i, j));
        }
    }
    return box;
}

std::string number_text(double value)
{
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

std::string range_text(const range& r)
{
    return r.least > r.most ? "no finite value" : number_text(r.least) + " to " + number_text(r.most);
}

json fields_object(const std::vector<field>& fields)
{
    json list = json::array();
    for (const field& f : fields) {
        const range r = range_of(f.values);
        list.push_back({{"name", f.name}, {"components", f.components}, {"min", r.least}, {"max", r.most}});
    }
    return list;
}

std::string json_text(const std::string& path, const loaded& input)
{
    const mesh& m = input.content;
    json kinds = json::object();
    for (const element_block& block : m.blocks) kinds[info_of(block.type).name] = block.size();
    json groups = json::array();
    for (const group_summary& g : groups_of(m))
        groups.push_back(
            {{"dimension", g.dimension}, {"number", g.number}, {"name", g.name}, {"elements", g.elements}});
    json box = {{"min", json::array()}, {"max", json::array()}};
    for (const range& r : box_of(m.pos)) {
        box["min"].push_back(r.least);
        box["max"].push_back(r.most);
    }
    const json object = {{"file", path},
                         {"format", std::string(input.as->name)},
                         {"title", m.title},
                         {"dimension", m.pos.rows},
                         {"nodes", m.pos.cols},
                         {"elements", m.element_count()},
                         {"kinds", kinds},
                         {"bounding_box", box},
                         {"groups", groups},
                         {"point_fields", fields_object(m.point_fields)},
                         {"cell_fields", fields_object(m.cell_fields)},
                         {"notes", m.notes}};
    return object.dump(-1, ' ', false, json::error_handler_t::replace) + '\n';
}

void add_fields(std::string& text, const char* title, const std::vector<field>& fields)
{
    for (const field& f : fields)
        text += "  " + std::string(title) + " '" + printable(f.name) + "', " +
                counted(f.components, "component", "components") + ", " + range_text(range_of(f.values)) + '\n';
}

std::string plain_text(const std::string& path, const loaded& input)
{
    const mesh& m = input.content;
    std::string text = printable(path) + ": " + std::string(input.as->title) + ", " +
                       counted(m.pos.cols, "node", "nodes") + ", " + counted(m.element_count(), "element", "elements") +
                       '\n';
    for (const element_block& block : m.blocks) text += "  " + counted_elements(block.size(), block.type) + '\n';
    const char* axis = "xyz";
    for (const range& r : box_of(m.pos)) text += std::string("  ") + *axis++ + " from " + range_text(r) + '\n';
    for (const group_summary& g : groups_of(m))
        text += "  group " + std::to_string(g.number) + (g.name.empty() ? "" : " '" + printable(g.name) + "'") +
                ", dimension " + std::to_string(g.dimension) + ", " + counted(g.elements, "element", "elements") + '\n';
    add_fields(text, "point field", m.point_fields);
    add_fields(text, "cell field", m.cell_fields);
    for (const std::string& note : m.notes) text += "  note: " + printable(note) + '\n';
    return text;
}

}  // namespace

std::function<exit_status()> declare_info(CLI::App& app)
{
    const auto options = std::make_shared<shared_options>();
    declare_files(app, *options);
    declare_input_format(app, *options);
    declare_json(app, *options);
    declare_quiet(app, *options);
    return [options] {
        return for_each_file(*options, [&](const std::string& path) {
            const loaded input = load_sound(path, *options);
            if (options->json)
                print(json_text(path, input));
            else if (!options->quiet)
                print(plain_text(path, input));
            return exit_clean;
        });
    };
}

}  // namespace tool
