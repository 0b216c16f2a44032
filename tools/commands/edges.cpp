#include <algorithm>
#include <memory>
#include <numeric>

#include "commands/command.h"
#include "commands/files.h"
#include "commands/tables.h"
#include "findings/measures.h"
#include "mesh/edit.h"
#include "words.h"

namespace tool {
namespace {

mesh mesh_of_edges(const mesh& m, const connectivity& edges, std::vector<double> lengths)
{
    mesh result = m;
    result.facets.reset();
    result.group_names.clear();
    result.cell_fields.clear();
    result.blocks.clear();
    if (edges.cols != 0) {
        element_block& block = result.blocks.emplace_back();
        block.type = zeb::EL_EDGE2;
        block.connect = edges;
    }
    result.cell_fields.push_back({"length", 1, number_kind::real64, std::move(lengths)});
    keep_nodes(result, used_nodes(result));
    number_anew(result);
    return result;
}

exit_status edges(const std::string& path, const shared_options& options)
{
    const loaded input = load_sound(path, options);
    const connectivity found = edges_of(input.content);
    const std::vector<double> lengths = lengths_of(input.content, found);
    const auto [least, most] =
        lengths.empty() ? std::pair(0.0, 0.0) : std::pair(std::ranges::min(lengths), std::ranges::max(lengths));
    const double sum = std::accumulate(lengths.begin(), lengths.end(), 0.0);
    const double mean = lengths.empty() ? 0 : sum / static_cast<double>(lengths.size());
    if (options.output) save_some(mesh_of_edges(input.content, found, lengths), options);
    if (options.json)
        print_json({{"file", path}, {"edges", lengths.size()}, {"min", least}, {"mean", mean}, {"max", most}});
    else if (!options.quiet)
        tell(options, path + ": " + counted(lengths.size(), "edge", "edges") + ", shortest " + short_number(least) +
                          ", mean " + short_number(mean) + ", longest " + short_number(most) + '\n');
    return exit_clean;
}

}  // namespace

std::function<exit_status()> declare_edges(CLI::App& app)
{
    const auto options = std::make_shared<shared_options>();
    declare_file(app, *options);
    declare_output(app, *options);
    declare_json(app, *options);
    declare_quiet(app, *options);
    return
        [options] { return for_each_file(*options, [&](const std::string& path) { return edges(path, *options); }); };
}

}  // namespace tool
