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

// --color: on a terminal only, in any case, or never.
enum class colours { automatic, always, never };
void use_colours(colours when);

// From the terminal, or COLUMNS; from the locale. Without a choice of colours NO_COLOR and TERM=dumb switch them off.
terminal standard_output_terminal();

// File names may hold anything: control characters must not reach the terminal.
std::string printable(const std::string& text);

}  // namespace tool

#endif
