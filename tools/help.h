#ifndef TOOLS_HELP_H
#define TOOLS_HELP_H

#include <string>

#include <CLI/CLI.hpp>

namespace tool {

// The names of all commands, for a message.
std::string command_names();

// What the exit statuses mean, a line each, the last one without its end.
std::string exit_table();

// The help of the program: every command; of a command what CLI11 makes of its options. The table of exit statuses
// stands under each.
struct help_formatter : CLI::Formatter {
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;
};

}  // namespace tool

#endif
