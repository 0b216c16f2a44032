#include <algorithm>
#include <cmath>
#include <memory>

#include "commands/command.h"
#include "commands/files.h"
#include "commands/tables.h"
#include "findings/duplicates.h"
#include "findings/measures.h"
#include "mesh/edit.h"
#include "words.h"

namespace tool {
namespace {

struct clean_options {
    shared_options shared;
    bool degenerate = false;
    bool duplicates = false;
    bool unused = false;
};

struct removed {
    std::uint64_t degenerate = 0;
    std::uint64_t duplicates = 0;
    std::uint64_t nodes = 0;
};

// What has a node twice, or no size at all.
std::uint64_t remove_degenerate(mesh& m)
{
    std::vector<bool> keep;
    for (const element_block& block : m.blocks) {
        const std::vector<double> sizes = relative_sizes(m, block);
        for (std::uint64_t e = 0; e < block.size(); ++e)
            keep.push_back(!names_a_node_twice(&block.connect(0, e), block.connect.rows) &&
                           std::fabs(sizes[e]) > no_relative_size);
    }
    keep_elements(m, keep);
    return static_cast<std::uint64_t>(std::ranges::count(keep, false));
}

std::uint64_t remove_duplicates(mesh& m)
{
    const std::vector<std::uint64_t> duplicates = duplicates_of(m);
    std::vector<bool> keep(m.element_count(), true);
    for (const std::uint64_t place : duplicates) keep[place] = false;
    keep_elements(m, keep);
    return duplicates.size();
}

std::uint64_t remove_unused(mesh& m)
{
    const std::uint64_t before = m.pos.cols;
    keep_nodes(m, used_nodes(m));
    return before - m.pos.cols;
}

void report(const std::string& path, const shared_options& options, const removed& r, const mesh& m)
{
    if (options.json) {
        print_json({{"file", path},
                    {"degenerate", r.degenerate},
                    {"duplicates", r.duplicates},
                    {"unused_nodes", r.nodes},
                    {"nodes", m.pos.cols},
                    {"elements", m.element_count()}});
    } else if (!options.quiet) {
        tell(options, path + ": removed " + counted(r.degenerate, "degenerate element", "degenerate elements") + ", " +
                          counted(r.duplicates, "duplicate element", "duplicate elements") + ", " +
                          counted(r.nodes, "unused node", "unused nodes") + "; left " +
                          counted(m.element_count(), "element", "elements") + ", " +
                          counted(m.pos.cols, "node", "nodes") + '\n');
    }
}

exit_status clean(const std::string& path, const clean_options& options)
{
    loaded input = load_sound(path, options.shared);
    mesh& m = input.content;
    const bool all = !options.degenerate && !options.duplicates && !options.unused;
    removed r;
    if (all || options.degenerate) r.degenerate = remove_degenerate(m);
    if (all || options.duplicates) r.duplicates = remove_duplicates(m);
    if (all || options.unused) r.nodes = remove_unused(m);
    if (options.shared.output) save_some(m, options.shared);
    report(path, options.shared, r, m);
    return exit_clean;
}

}  // namespace

std::function<exit_status()> declare_clean(CLI::App& app)
{
    const auto options = std::make_shared<clean_options>();
    declare_file(app, options->shared);
    declare_output(app, options->shared);
    declare_json(app, options->shared);
    declare_quiet(app, options->shared);
    app.add_flag("--degenerate", options->degenerate, "remove elements with a node twice or without size");
    app.add_flag("--duplicates", options->duplicates, "remove elements that repeat an earlier one");
    app.add_flag("--unused", options->unused, "remove nodes that no element uses; without any of the three, do all");
    return [options] {
        return for_each_file(options->shared, [&](const std::string& path) { return clean(path, *options); });
    };
}

}  // namespace tool
