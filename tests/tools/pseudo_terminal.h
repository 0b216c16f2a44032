#ifndef TESTS_TOOLS_PSEUDO_TERMINAL_H
#define TESTS_TOOLS_PSEUDO_TERMINAL_H

#include <chrono>
#include <string>
#include <vector>

namespace test {

struct terminal_options {
    std::vector<std::string> environment = {};  // NAME=value, beside LC_ALL=C and TERM=xterm
    std::string input = {};                     // what standard input, a pipe, gives in the end
    std::string until = {};                     // ... once this is on the screen
    std::chrono::milliseconds held{0};          // ... or after that time
    bool output_on_terminal = false;            // standard output too, not standard error alone
};

struct terminal_result {
    int status = -1;
    std::string screen;                   // all that the terminal got
    std::string out;                      // standard output, when it is not the terminal
    std::chrono::milliseconds waited{0};  // before the input was given
    std::chrono::milliseconds whole{0};
};

// Runs the program tessolv with standard error on a terminal of 80 columns.
terminal_result tessolv_on_terminal(std::vector<std::string> arguments, const terminal_options& options = {});

}  // namespace test

#endif
