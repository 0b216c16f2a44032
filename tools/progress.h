#ifndef TOOLS_PROGRESS_H
#define TOOLS_PROGRESS_H

#include <string>

namespace tool {

// A line on standard error that says what is going on while the work on a file lasts: where standard error is a
// terminal, and not before half a second. A timer draws it, so that the work itself knows nothing of it; the destructor
// erases it.
class progress {
public:
    progress(bool wanted, const std::string& file);
    ~progress();
    progress(const progress&) = delete;
    progress& operator=(const progress&) = delete;

    // "reading", "writing", and of what; while something is read the line has the share that is done.
    static void stage(const char* verb, const std::string& file);

    // Takes the line off before something else is written to the terminal.
    static void erase();

private:
    bool running_ = false;
};

}  // namespace tool

#endif
