#include "commands/options.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "formats/format.h"
#include "terminal.h"

namespace tool {
namespace {

std::string names_of_formats()
{
    std::string names;
    for (const format& f : all_formats()) names += (names.empty() ? "{" : ",") + std::string(f.name);
    return names + '}';
}

}  // namespace

void declare_file(CLI::App& app, shared_options& options)
{
    app.add_option("FILE", options.files, "the mesh; - is standard input")->required()->expected(1)->type_name("");
    declare_solution(app, options);
}

void declare_solution(CLI::App& app, shared_options& options)
{
    app.add_option("--sol", options.solution, "a MEDIT solution with values for the mesh")->type_name("FILE");
}

void declare_files(CLI::App& app, shared_options& options)
{
    app.add_option("FILE", options.files, "the meshes; - is standard input")->required()->type_name("");
    app.add_flag("--skip-unreadable", options.skip_unreadable,
                 "go on after a file that cannot be read, with status 0 for it");
}

CLI::Option* declare_output(CLI::App& app, shared_options& options)
{
    options.writes_mesh = true;
    CLI::Option* output =
        app.add_option("--output", options.output, "the file to write; - is standard output")->type_name("FILE");
    app.add_option("--format", options.format, "format of the output, whatever its name")
        ->type_name(names_of_formats());
    app.add_option("--input-format", options.input_format, "read the inputs as this format, whatever they look like")
        ->type_name(names_of_formats());
    app.add_option("--writer", options.writer, "complete, or library for the library's own output")
        ->check(CLI::IsMember({"complete", "library"}));
    app.add_flag("--ascii", options.ascii, "text where a format has both");
    app.add_flag("--lossy", options.lossy, "leave out, and tell, what the format cannot hold");
    app.add_flag("--force", options.force, "an input may be overwritten");
    return output;
}

void declare_input_format(CLI::App& app, shared_options& options)
{
    app.add_option("--format", options.format, "read as this format, whatever it looks like")
        ->type_name(names_of_formats());
}

void declare_json(CLI::App& app, shared_options& options)
{
    app.add_flag("--json", options.json, "one JSON object per file, a line each, and nothing else");
}

void declare_quiet(CLI::App& app, shared_options& options)
{
    app.add_flag("--quiet", options.quiet, "only what is wrong, and no progress");
}

void declare_tolerance(CLI::App& app, shared_options& options, const std::string& description)
{
    app.add_option("--tolerance", options.tolerance, description);
}

void declare_table(CLI::App& app, shared_options& options, const std::string& name, const std::string& description)
{
    app.add_option(name, options.table, description + "; - is standard output")->type_name("FILE");
}

void declare_colour(CLI::App& app)
{
    static const std::map<std::string, colours> choices{
        {"auto", colours::automatic}, {"always", colours::always}, {"never", colours::never}};
    app.add_option_function<std::string>(
           "--color", [](const std::string& when) { use_colours(choices.at(when)); },
           "colours: on a terminal without NO_COLOR (auto), or as said")
        ->check(CLI::IsMember({"auto", "always", "never"}));
}

void require_finite(const char* option, const std::vector<double>& numbers)
{
    if (!std::ranges::all_of(numbers, [](double x) { return std::isfinite(x); }))
        throw CLI::ValidationError(option, "takes finite numbers");
}

void take_direction(const char* option, std::vector<double>& vector)
{
    require_finite(option, vector);
    double largest = 0;
    for (const double x : vector) largest = std::max(largest, std::fabs(x));
    if (largest == 0) throw CLI::ValidationError(option, "has no direction");
    for (double& x : vector) x = std::scalbn(x, -std::ilogb(largest));
}

void require_distance(const shared_options& options)
{
    if (!options.tolerance) return;
    require_finite("--tolerance", {*options.tolerance});
    if (*options.tolerance < 0) throw CLI::ValidationError("--tolerance", "is negative");
}

void require_one_file(const shared_options& options, const char* option, bool given)
{
    if (given && options.files.size() > 1) throw CLI::ValidationError(option, "takes one FILE only");
}

}  // namespace tool
