#include "commands/weld.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <memory>

#include "commands/command.h"
#include "commands/files.h"
#include "commands/tables.h"
#include "errors.h"
#include "findings/duplicates.h"
#include "findings/measures.h"
#include "formats/sink.h"
#include "mesh/edit.h"
#include "words.h"

namespace tool {
namespace {

struct weld_options {
    shared_options shared;
    std::string relative = "none";
    bool within_elements = false;
    bool across_parts = false;

    weld_scope scope() const
    {
        return across_parts      ? weld_scope::across_parts
               : within_elements ? weld_scope::within_elements
                                 : weld_scope::anywhere;
    }
};

double shortest_edge(const mesh& m)
{
    double shortest = 0;
    for (const double length : lengths_of(m, edges_of(m)))
        if (length > 0 && (shortest == 0 || length < shortest)) shortest = length;
    return shortest;
}

// Without a tolerance: what counts as one place in 'check'.
double tolerance_of(const mesh& m, const weld_options& options)
{
    constexpr double one_place = 1e-9;
    if (!options.shared.tolerance) return box_of(m).share_of_diagonal(one_place);
    double tolerance = *options.shared.tolerance;
    if (options.relative == "box") tolerance = box_of(m).share_of_diagonal(tolerance);
    if (options.relative == "edge") tolerance *= shortest_edge(m);
    if (!std::isfinite(tolerance)) throw wrong_usage("--tolerance is no finite distance in this mesh");
    return tolerance;
}

// A line for each node that went: its number, that of the node that stands for it, their distance.
void write_map(sink& to, const mesh& before, const weld_result& result)
{
    to.text("old,new,distance\n");
    for (std::uint64_t j = 0; j < result.survivor.size(); ++j) {
        if (result.survivor[j] == j) continue;
        to.integer(node_number(before, j));
        to.put(',');
        to.integer(node_number(before, result.survivor[j]));
        to.put(',');
        to.real(result.distances[j]);
        to.put('\n');
    }
}

std::uint64_t collapsed_elements(const mesh& m)
{
    std::uint64_t count = 0;
    for (const element_block& block : m.blocks)
        for (std::uint64_t e = 0; e < block.size(); ++e)
            count += names_a_node_twice(&block.connect(0, e), block.connect.rows);
    return count;
}

void report(const std::string& path, const weld_options& options, const weld_result& result, std::uint64_t collapsed)
{
    double sum = 0;
    double largest = 0;
    for (const double d : result.distances) {
        sum += d;
        largest = std::max(largest, d);
    }
    const double mean = result.merged != 0 ? sum / static_cast<double>(result.merged) : 0;
    if (options.shared.json) {
        print_json({{"file", path},
                    {"tolerance", result.tolerance},
                    {"nodes", result.survivor.size()},
                    {"merged", result.merged},
                    {"mean_distance", mean},
                    {"largest_distance", largest},
                    {"collapsed_elements", collapsed}});
    } else if (!options.shared.quiet) {
        tell(options.shared, path + ": " + std::to_string(result.merged) + " of " +
                                 counted(result.survivor.size(), "node", "nodes") + " merged within " +
                                 short_number(result.tolerance) + ", distances up to " + short_number(largest) +
                                 ", mean " + short_number(mean) + '\n');
        if (collapsed != 0)
            remark(path, counted(collapsed, "element has", "elements have") + " a node twice now: see 'clean'");
    }
}

exit_status weld(const std::string& path, const weld_options& options)
{
    loaded input = load_sound(path, options.shared);
    mesh& m = input.content;
    const std::uint64_t collapsed_before = collapsed_elements(m);
    mesh numbers;  // the numbers alone, for the map
    numbers.node_numbers = m.node_numbers;
    const weld_result result = weld_nodes(m, tolerance_of(m, options), options.scope());
    save_with_table(m, options.shared, [&](sink& to) { write_map(to, numbers, result); });
    report(path, options, result, collapsed_elements(m) - collapsed_before);
    return exit_clean;
}

}  // namespace

std::function<exit_status()> declare_weld(CLI::App& app)
{
    const auto options = std::make_shared<weld_options>();
    declare_file(app, options->shared);
    declare_output(app, options->shared);
    declare_json(app, options->shared);
    declare_quiet(app, options->shared);
    declare_tolerance(app, options->shared,
                      "largest distance of nodes that become one; otherwise 1e-9 of the diagonal");
    app.add_option("--relative", options->relative, "the tolerance is in diagonals of the box, or in shortest edges")
        ->check(CLI::IsMember({"none", "box", "edge"}));
    CLI::Option* within = app.add_flag("--within-elements", options->within_elements, "nodes of one element only");
    app.add_flag("--across-parts", options->across_parts, "nodes of different parts only")->excludes(within);
    declare_table(app, options->shared, "--map", "write which node became which, with distances, as CSV");
    app.parse_complete_callback([options] {
        require_distance(options->shared);
        if (!options->shared.tolerance && options->relative != "none")
            throw CLI::ValidationError("--relative", "needs --tolerance");
    });
    return [options] {
        return for_each_file(options->shared, [&](const std::string& path) { return weld(path, *options); });
    };
}

}  // namespace tool
