#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include <tessolv/tessolv.h>

#include <CLI/CLI.hpp>

#include "commands/command.h"
#include "commands/options.h"
#include "documents/documents.h"
#include "help.h"

namespace {

using tool::exit_status;

void declare(CLI::App& program, std::function<exit_status()>& chosen)
{
    program.formatter(std::make_shared<tool::help_formatter>());
    program.set_version_flag("--version", std::string("tessolv ") + zeb::tessolv::version());
    program.require_subcommand(1);
    for (const tool::command& command : tool::all_commands()) {
        CLI::App* app = program.add_subcommand(command.name, command.summary);
        tool::declare_colour(*app);
        app->callback([&chosen, work = command.declare(*app)] { chosen = work; });
    }
    tool::declare_document(program, chosen);
}

exit_status run(int argc, char** argv)
{
    CLI::App program("", "tessolv");
    std::function<exit_status()> chosen;
    declare(program, chosen);
    try {
        program.parse(argc, argv);
    } catch (const CLI::Success& answered) {  // --help, --version
        program.exit(answered);
        return tool::exit_clean;
    } catch (const CLI::ParseError& error) {
        const bool no_command = program.get_subcommands().empty() && error.get_name() == "RequiredError";
        std::fprintf(stderr, "tessolv: %s\nTry 'tessolv --help'.\n",
                     no_command ? ("the commands are " + tool::command_names()).c_str() : error.what());
        return tool::exit_usage;
    }
    return chosen();
}

// Buffered output may fail as late as here.
exit_status flushed(exit_status status)
{
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
    std::fprintf(stderr, "tessolv: standard output: %s\n", std::generic_category().message(errno).c_str());
    return std::max(status, tool::exit_unwritable);
}

}  // namespace

int main(int argc, char** argv)
{
    try {
        return flushed(run(argc, argv));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tessolv: %s\n", error.what());
        return tool::exit_internal;
    }
}
