#include "help.h"

#include "commands/command.h"
#include "words.h"

namespace tool {
namespace {

constexpr const char* usage = R"(tessolv looks at finite-element meshes, converts and mends them.

Usage:
  tessolv COMMAND FILE... [OPTIONS]
  tessolv COMMAND --help
  tessolv --help | --version

Commands:
)";

constexpr const char* check_help = R"(
tessolv check FILE... [--output OUT.vtk] [--json] [--ascii | --binary] [--quiet]

'check' reads each STL file, welds its corners and says whether the surface is
closed, clean and well shaped: facets read, triangles and nodes after the weld,
degenerate and duplicate triangles, free and non-manifold edges, connected
parts, bounding box, shape qualities, and the verdict in the last line. Whether
a file is text or binary is seen from its size and content.

Options of check:
  --output OUT.vtk  also write the welded surface, for one FILE; the input is
                    never overwritten
  --json            one JSON object per file, a line each, and nothing else
  --quiet           only the verdict, a line per file
  --ascii           read the files as text
  --binary          read the files as binary
  --help            this text

Examples:
  tessolv check part.stl
  tessolv check part.stl --output part.vtk
  tessolv check --quiet *.stl
  tessolv check --json *.stl | jq -r 'select(.free_edges > 0) | .file'
)";

constexpr const char* exit_table = R"(
Exit status:
  0  done; every mesh is clean
  1  problems in a mesh: what 'check' finds
  2  wrong usage
  3  a file cannot be read, or holds no mesh to work with
  4  the output cannot be written
  5  out of memory, or an internal error
With several files the highest one counts.
)";

std::string command_list()
{
    constexpr std::size_t width = 11;
    std::string list;
    for (const command& c : all_commands()) {
        std::string name = c.name;
        name.resize(std::max(width, name.size() + 1), ' ');
        list += "  " + name + c.summary + '\n';
    }
    return list;
}

}  // namespace

std::string command_names()
{
    std::vector<std::string> names;
    for (const command& c : all_commands()) names.emplace_back(c.name);
    return joined(names);
}

std::string help_formatter::make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const
{
    if (app->get_parent() == nullptr) return usage + command_list() + check_help + exit_table;
    if (app->get_name() == "check") return std::string(check_help).substr(1) + exit_table;
    return "tessolv " + app->get_name() + ' ' + Formatter::make_help(app, std::move(name), mode) + exit_table;
}

}  // namespace tool
