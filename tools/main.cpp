#include <cerrno>
#include <cstdio>
#include <system_error>

#include <tessolv/tessolv.h>

#include <CLI/CLI.hpp>

#include "check.h"

namespace {

using tool::check_options;
using tool::exit_status;

constexpr const char* help = R"(tessolv checks triangle surfaces in STL files.

Usage:
  tessolv check FILE... [--output OUT.vtk] [--json] [--ascii | --binary] [--quiet]
  tessolv --help | --version

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

Examples:
  tessolv check part.stl
  tessolv check part.stl --output part.vtk
  tessolv check --quiet *.stl
  tessolv check --json *.stl | jq -r 'select(.free_edges > 0) | .file'

Exit status:
  0  every surface is clean
  1  problems in a mesh: free or non-manifold edges, degenerate or duplicate
     triangles, facets that were not read, no triangle
  2  wrong usage
  3  a file cannot be read or is no STL
  4  the output cannot be written
  5  out of memory, or an internal error
With several files the highest one counts.
)";

// One text for the program and its command.
struct help_text : CLI::Formatter {
    std::string make_help(const CLI::App*, std::string, CLI::AppFormatMode) const override { return help; }
};

void add_check(CLI::App& program, check_options& options)
{
    CLI::App* check = program.add_subcommand("check");
    check->add_option("FILE", options.files)->required();
    check->add_option("--output", options.output);
    check->add_flag("--json", options.json);
    check->add_flag("--quiet", options.quiet);
    const auto read_as = [&options](tool::stl_format format) {
        return [&options, format] { options.format = format; };
    };
    CLI::Option* ascii = check->add_flag_callback("--ascii", read_as(tool::stl_format::ascii));
    check->add_flag_callback("--binary", read_as(tool::stl_format::binary))->excludes(ascii);
    check->final_callback([&options] {
        if (options.output && options.files.size() > 1) throw CLI::ValidationError("--output", "takes one FILE only");
    });
}

exit_status run(int argc, char** argv)
{
    check_options options;
    CLI::App program("", "tessolv");
    program.formatter(std::make_shared<help_text>());
    program.set_version_flag("--version", std::string("tessolv ") + zeb::tessolv::version());
    program.require_subcommand(1);
    add_check(program, options);
    try {
        program.parse(argc, argv);
    } catch (const CLI::Success& answered) {  // --help, --version
        program.exit(answered);
        return tool::exit_clean;
    } catch (const CLI::ParseError& error) {
        const bool no_command = program.get_subcommands().empty() && error.get_name() == "RequiredError";
        std::fprintf(stderr, "tessolv: %s\nTry 'tessolv --help'.\n",
                     no_command ? "the command is 'check'" : error.what());
        return tool::exit_usage;
    }
    return tool::check(options);
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
