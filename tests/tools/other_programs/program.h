#ifndef TESTS_TOOLS_OTHER_PROGRAMS_PROGRAM_H
#define TESTS_TOOLS_OTHER_PROGRAMS_PROGRAM_H

#include <string>
#include <vector>

#include "tools/stl_files.h"

namespace test {

// What became of a program that somebody else made.
struct outcome {
    int status = 0;    // of its exit; 127 where there is no such program
    int signal = 0;    // that ended it
    std::string said;  // on both outputs

    bool succeeded() const { return status == 0 && signal == 0; }
};

// Runs a program in a folder, which is its home as well: several of them run side by side, and some keep files there.
// After a minute a signal ends it.
outcome run(const std::vector<std::string>& words, const temporary_folder& folder);

// Whether gmsh is there, and a module for the Python of the system, which sees the packages of the system.
bool has_gmsh();
bool has_module(const std::string& module);

// Runs a script of this folder with that Python.
outcome run_script(const std::string& script, const std::vector<std::string>& words, const temporary_folder& folder);

}  // namespace test

#endif
