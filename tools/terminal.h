#ifndef TOOLS_TERMINAL_H
#define TOOLS_TERMINAL_H

#include <string>

namespace tool {

// What standard output can show.
struct terminal {
    unsigned width = 80;
    bool blocks = false;  // the block characters of Unicode
    bool colour = false;
};

// From the terminal, or COLUMNS; from the locale; NO_COLOR and TERM=dumb switch colours off.
terminal standard_output_terminal();

// File names may hold anything: control characters must not reach the terminal.
std::string printable(const std::string& text);

}  // namespace tool

#endif
