#include "check/check.h"

#include <memory>

#include "commands/command.h"

namespace tool {
namespace {

constexpr const char* description = R"(says whether a mesh is sound, and what is wrong with it

Numbers of nodes that are not there, duplicate, degenerate, inverted and poor
elements, unused and coincident nodes, faces of three or more elements, open
edges, neighbours that turn against each other, surfaces inside out, connected
parts, the shortest edge. The verdict is the last line.

Of an STL file it tells also what the library's reader makes of it: facets
read, triangles and nodes after the weld. Open edges are a fault there.)";

constexpr const char* examples = R"(Examples:
  tessolv check part.stl
  tessolv check part.stl --output part.vtk
  tessolv check wing.msh --profile solver --extract bad.vtu
  tessolv check --quiet *.stl
  tessolv check --json *.stl | jq -r 'select(.free_edges > 0) | .file')";

}  // namespace

std::function<exit_status()> declare_check(CLI::App& app)
{
    const auto options = std::make_shared<check_options>();
    shared_options& shared = options->shared;
    app.description(description);
    app.footer(examples);
    declare_files(app, shared);
    declare_input_format(app, shared);
    declare_json(app, shared);
    declare_quiet(app, shared);
    app.add_option("--profile", options->profile, "judge by the rules for this purpose")
        ->type_name("{default,solver,shell,closed}");
    app.add_option("--rules", options->rules_file, "judge by the rules of this JSON file")->type_name("FILE");
    declare_tolerance(app, shared,
                      "distance of nodes that coincide; otherwise 1e-9 of the diagonal, or as the rules say");
    app.add_flag("--ids", options->ids, "name all nodes and elements at fault, not the first ones alone");
    app.add_option("--extract", options->extract,
                   "write the elements and nodes at fault, with values and original numbers, for one FILE")
        ->type_name("FILE");
    app.add_flag("--force", shared.force, "an input may be overwritten by --extract");
    app.add_option("--output", shared.output,
                   "write the welded surface of one STL file as VTK; the input is never overwritten")
        ->type_name("FILE");
    const auto read_as = [options](stl_format format) { return [options, format] { options->stl = format; }; };
    CLI::Option* ascii = app.add_flag_callback("--ascii", read_as(stl_format::ascii), "read as text STL");
    app.add_flag_callback("--binary", read_as(stl_format::binary), "read as binary STL")->excludes(ascii);
    app.parse_complete_callback([options] {
        require_distance(options->shared);
        require_one_file(options->shared, "--output", options->shared.output.has_value());
        require_one_file(options->shared, "--extract", options->extract.has_value());
    });
    return [options] { return check(*options); };
}

}  // namespace tool
