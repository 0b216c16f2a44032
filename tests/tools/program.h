#ifndef TESTS_TOOLS_PROGRAM_H
#define TESTS_TOOLS_PROGRAM_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace test {

struct run_options {
    std::string standard_output = {};                   // a file for it instead of collecting it
    std::optional<std::uint64_t> memory = {};           // address space in bytes
    std::optional<std::uint64_t> file_size = {};        // of the longest file that it may write, in bytes
    std::string interrupted_in = {};                    // SIGINT once a file without its name grows in that folder
    std::vector<std::string> environment = {};          // NAME=value, beside LC_ALL=C
    std::optional<std::string> working_directory = {};  // of the program
    std::string standard_input = {};                    // a file for it
};

struct run_result {
    int status = -1;  // exit status; 128 + signal
    std::string out;
    std::string err;
};

// For the calls of the system that start a program: where each text begins, and null.
std::vector<char*> pointers(std::vector<std::string>& texts);

// Runs the program tessolv.
run_result tessolv(const std::vector<std::string>& arguments, const run_options& options = {});

}  // namespace test

#endif
