#ifndef TOOLS_COMMANDS_COMMAND_H
#define TOOLS_COMMANDS_COMMAND_H

#include <functional>
#include <span>

#include <CLI/CLI.hpp>

#include "exit_status.h"

namespace tool {

// One row of the program's table of commands. `declare` gives the subcommand its options; what it returns does the
// work once the command line is read. (Checks of options that go together belong into parse_complete_callback.)
struct command {
    const char* name;
    const char* summary;
    std::function<exit_status()> (*declare)(CLI::App& app);
};

std::span<const command> all_commands();

// One per file.
std::function<exit_status()> declare_boundary(CLI::App& app);
std::function<exit_status()> declare_check(CLI::App& app);
std::function<exit_status()> declare_clean(CLI::App& app);
std::function<exit_status()> declare_clip(CLI::App& app);
std::function<exit_status()> declare_convert(CLI::App& app);
std::function<exit_status()> declare_edges(CLI::App& app);
std::function<exit_status()> declare_info(CLI::App& app);
std::function<exit_status()> declare_neighbors(CLI::App& app);
std::function<exit_status()> declare_parts(CLI::App& app);
std::function<exit_status()> declare_quality(CLI::App& app);
std::function<exit_status()> declare_report(CLI::App& app);
std::function<exit_status()> declare_transform(CLI::App& app);
std::function<exit_status()> declare_weld(CLI::App& app);

}  // namespace tool

#endif
