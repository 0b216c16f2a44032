#ifndef TOOLS_DOCUMENTS_ENTRIES_H
#define TOOLS_DOCUMENTS_ENTRIES_H

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace tool {

// An option or operand as the parser of the command line knows it.
struct option_entry {
    std::vector<std::string> names;    // "-h", "--help"; of an operand "FILE"
    std::string value;                 // "FILE", "FLOAT", "{a,b}"; empty for a flag
    std::vector<std::string> choices;  // of "{a,b}"
    std::string description;
    int values = 0;  // how many follow it
    bool is_operand = false;
    bool repeats = false;

    bool takes_file() const { return value == "FILE"; }
};

struct command_entry {
    std::string name;  // empty for the program itself
    std::string summary;
    std::string description;  // paragraphs
    std::string footer;       // "Examples:" and their lines
    std::vector<option_entry> options;
};

// The program and every command that is no secret: the one table behind help, manual and completion.
std::vector<command_entry> entries_of(const CLI::App& program);

}  // namespace tool

#endif
