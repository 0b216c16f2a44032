#ifndef TOOLS_HELP_H
#define TOOLS_HELP_H

#include <string>

#include <CLI/CLI.hpp>

namespace tool {

// The names of all commands, for a message.
std::string command_names();

// The help of the program: every command, and of `check` the whole text; of the other commands what CLI11 makes of
// their options. The table of exit statuses stands under each.
struct help_formatter : CLI::Formatter {
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;
};

}  // namespace tool

#endif
