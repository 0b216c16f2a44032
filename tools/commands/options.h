#ifndef TOOLS_COMMANDS_OPTIONS_H
#define TOOLS_COMMANDS_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace tool {

// The options that have the same words in every command. A command declares those that it has.
struct shared_options {
    std::vector<std::string> files;
    std::optional<std::string> output;
    std::optional<std::string> table;         // a second output, in a command that has one
    std::optional<std::string> format;        // of the output, in a command that writes no mesh of the inputs
    std::optional<std::string> input_format;  // in a command that writes a mesh
    std::optional<std::string> solution;      // values on the nodes of the one input
    std::optional<double> tolerance;
    std::string writer = "complete";
    bool json = false;
    bool quiet = false;
    bool force = false;
    bool ascii = false;
    bool lossy = false;
    bool skip_unreadable = false;

    bool writes_mesh = false;  // set by declare_output

    // How the inputs are to be read, when it is not found from them.
    const std::optional<std::string>& format_of_inputs() const { return writes_mesh ? input_format : format; }
};

void declare_file(CLI::App& app, shared_options& options);   // one FILE, and --sol
void declare_files(CLI::App& app, shared_options& options);  // one or more, and --skip-unreadable
void declare_solution(CLI::App& app, shared_options& options);
// --output, --force, --ascii, --lossy, --writer, --format of the output and --input-format.
CLI::Option* declare_output(CLI::App& app, shared_options& options);
void declare_input_format(CLI::App& app, shared_options& options);  // --format of the inputs
void declare_json(CLI::App& app, shared_options& options);
void declare_quiet(CLI::App& app, shared_options& options);
void declare_tolerance(CLI::App& app, shared_options& options, const std::string& description);
// A second output, CSV.
void declare_table(CLI::App& app, shared_options& options, const std::string& name, const std::string& description);
void declare_colour(CLI::App& app);  // of every command

// Refuses infinities, and what is no number.
void require_finite(const char* option, const std::vector<double>& numbers);

// Refuses a vector without a direction. Any other becomes about as long as 1: by a power of two, which changes no digit.
void take_direction(const char* option, std::vector<double>& vector);

// Refuses a tolerance that is no distance.
void require_distance(const shared_options& options);

// Refuses an option that takes one FILE when there are more.
void require_one_file(const shared_options& options, const char* option, bool given);

}  // namespace tool

#endif
