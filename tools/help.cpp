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
tessolv check FILE... [OPTIONS]

'check' says whether a mesh of any kind is sound: numbers of nodes that are not
there, duplicate, degenerate, inverted and poor elements, unused and coincident
nodes, faces of three or more elements, open edges, neighbours that turn against
each other, connected parts, the shortest edge. The verdict is the last line.

Of an STL file it tells what the library's reader makes of it: facets read,
triangles and nodes after the weld, free and non-manifold edges. --profile,
--rules, --ids and --extract judge it like any other mesh.

Options of check:
  --profile NAME     judge by other rules: default, solver, shell, closed
  --rules RULES.json judge by rules of one's own, see docs/check.md
  --ids              name all nodes and elements at fault, not the first ten
  --extract BAD.vtu  write what is at fault, with values and original numbers,
                     for one FILE; --force overwrites the input
  --json             one JSON object per file, a line each, and nothing else
  --quiet            only the verdict, a line per file
  --format NAME      read the files as this format
  --skip-unreadable  go on after a file that cannot be read, status 0 for it
  --output OUT.vtk   also write the welded surface of one STL file; the input is
                     never overwritten
  --ascii            read the files as text STL
  --binary           read the files as binary STL
  --help             this text

Examples:
  tessolv check part.stl
  tessolv check part.stl --output part.vtk
  tessolv check wing.msh --profile solver --extract bad.vtu
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
