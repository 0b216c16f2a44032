#include "help.h"

#include "commands/command.h"
#include "exit_status.h"
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

constexpr const char* every_command = R"(
Each command tells its options with --help. The same in all that have them:
  --output FILE   the mesh that is written; an input only with --force
  --format NAME   how it is written, or how an input is read
  --json          one JSON object per file, a line each, and nothing else
  --quiet         only what is wrong
  --color WHEN    auto, always or never
Results go to standard output, all else to standard error.
)";

struct status_row {
    exit_status status;
    const char* meaning;
};

constexpr status_row statuses[] = {
    {exit_clean, "done; every mesh is clean"},
    {exit_problems, "problems in a mesh: what 'check' finds"},
    {exit_usage, "wrong usage"},
    {exit_unreadable, "a file cannot be read, or holds no mesh to work with"},
    {exit_unwritable, "the output cannot be written"},
    {exit_internal, "out of memory, or an internal error"},
};

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

std::string exit_lines()
{
    return "\nExit status:\n" + exit_table() + '\n';
}

}  // namespace

std::string exit_table()
{
    std::string table;
    for (const status_row& row : statuses) table += "  " + std::to_string(row.status) + "  " + row.meaning + '\n';
    return table + "With several files the highest one counts.";
}

std::string command_names()
{
    std::vector<std::string> names;
    for (const command& c : all_commands()) names.emplace_back(c.name);
    return joined(names);
}

std::string help_formatter::make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const
{
    if (app->get_parent() == nullptr) return usage + command_list() + every_command + exit_lines();
    return "tessolv " + app->get_name() + ' ' + Formatter::make_help(app, std::move(name), mode) + exit_lines();
}

}  // namespace tool
