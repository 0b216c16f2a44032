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
#include "terminal.h"
#include "words.h"

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

// One FILE too many is meant for the output, as other programs have it.
std::string too_many_files(const CLI::App& command, const std::vector<std::string>& files)
{
    const std::string reason = command.get_name() + " takes one FILE, not " + std::to_string(files.size());
    const CLI::Option* output = command.get_option_no_throw("--output");
    if (files.size() != 2 || output == nullptr || !output->empty()) return reason;
    return reason + "; to write " + tool::printable(files[1]) + ": --output " + tool::printable(files[1]);
}

std::string reason_of(const CLI::App& program, const CLI::ParseError& error)
{
    const std::vector<CLI::App*> chosen = program.get_subcommands();
    const std::string name = error.get_name();
    if (chosen.empty() && name != "RequiredError") return error.what();
    const std::vector<std::string> words = program.remaining();
    if (chosen.empty())
        return (words.empty() ? "" : tool::quoted(tool::printable(words[0])) + " is no command; ") +
               "the commands are " + tool::command_names();
    const CLI::Option* files = chosen.front()->get_option_no_throw("FILE");
    if (name != "ArgumentMismatch" || !std::string_view(error.what()).starts_with("FILE:") || files == nullptr)
        return error.what();
    return too_many_files(*chosen.front(), files->results());
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
        std::fprintf(stderr, "tessolv: %s\nTry 'tessolv --help'.\n", reason_of(program, error).c_str());
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
