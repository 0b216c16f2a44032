#ifndef TOOLS_EXIT_STATUS_H
#define TOOLS_EXIT_STATUS_H

namespace tool {

// What the program returns; with several files the highest counts. Part of the interface: docs/check.md.
enum exit_status : int {
    exit_clean = 0,
    exit_problems = 1,    // found in the mesh
    exit_usage = 2,       // the command line is wrong
    exit_unreadable = 3,  // an input cannot be read or is no STL
    exit_unwritable = 4,  // --output or standard output
    exit_internal = 5     // out of memory, or a fault of the program
};

}  // namespace tool

#endif
