#include <algorithm>
#include <memory>

#include "commands/command.h"
#include "commands/files.h"
#include "commands/tables.h"
#include "errors.h"
#include "mesh/edit.h"
#include "words.h"

namespace tool {
namespace {

using vector = zeb::vector_fixed<double, 3>;

struct clip_options {
    shared_options shared;
    std::vector<double> point;
    std::vector<double> normal;
};

// Whether each element is among the kept ones, which stand in the same order. Equal elements share their fate.
void mark_kept(const connectivity& all, const connectivity& kept, std::vector<bool>& keep)
{
    std::uint64_t next = 0;
    for (std::uint64_t e = 0; e < all.cols; ++e) {
        const unsigned int* nodes = &all(0, e);
        const bool found = next < kept.cols && std::equal(nodes, nodes + all.rows, &kept(0, next));
        next += found;
        keep.push_back(found);
    }
}

exit_status clip(const std::string& path, const clip_options& options)
{
    loaded input = load_sound(path, options.shared);
    mesh& m = input.content;
    const vector point(options.point[0], options.point[1], options.point[2]);
    const vector normal(options.normal[0], options.normal[1], options.normal[2]);
    std::vector<bool> keep;
    for (const element_block& block : m.blocks) {
        connectivity kept;
        checked(zeb::tessolv::clip(m.pos, block.connect, point, normal, kept), "clip");
        mark_kept(block.connect, kept, keep);
    }
    const std::uint64_t before = m.element_count();
    keep_elements(m, keep);
    keep_nodes(m, used_nodes(m));
    if (options.shared.output) save_some(m, options.shared);
    if (options.shared.json)
        print_json({{"file", path}, {"elements", before}, {"kept", m.element_count()}, {"nodes", m.pos.cols}});
    else if (!options.shared.quiet)
        tell(options.shared, path + ": " + std::to_string(m.element_count()) + " of " +
                                 counted(before, "element", "elements") + " kept\n");
    return exit_clean;
}

}  // namespace

std::function<exit_status()> declare_clip(CLI::App& app)
{
    const auto options = std::make_shared<clip_options>();
    declare_file(app, options->shared);
    declare_output(app, options->shared);
    declare_json(app, options->shared);
    declare_quiet(app, options->shared);
    app.add_option("--point", options->point, "a point of the plane")->required()->expected(3);
    app.add_option("--normal", options->normal, "its normal, towards the side that is kept")->required()->expected(3);
    app.parse_complete_callback([options] {
        require_finite("--point", options->point);
        take_direction("--normal", options->normal);
    });
    return [options] {
        return for_each_file(options->shared, [&](const std::string& path) { return clip(path, *options); });
    };
}

}  // namespace tool
