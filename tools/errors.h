#ifndef TOOLS_ERRORS_H
#define TOOLS_ERRORS_H

#include <new>
#include <stdexcept>
#include <string>

namespace tool {

// An input that cannot be read; the text is the reason, with the line or byte, without the name of the file.
struct unreadable : std::runtime_error {
    using runtime_error::runtime_error;
};

// An output that cannot be written; the text is the reason, without the name of the file.
struct unwritable : std::runtime_error {
    using runtime_error::runtime_error;
};

// A command line that asks for what does not go together.
struct wrong_usage : std::runtime_error {
    using runtime_error::runtime_error;
};

// A fault of this program or of the library.
struct internal_error : std::logic_error {
    using logic_error::logic_error;
};

// Turns a negative result of the library into an exception: exhausted memory into std::bad_alloc.
inline int checked(int result, const char* operation)
{
    constexpr int out_of_memory = -199;
    if (result == out_of_memory) throw std::bad_alloc();
    if (result < 0) throw internal_error(operation + std::string(" gave ") + std::to_string(result));
    return result;
}

}  // namespace tool

#endif
