#ifndef TOOLS_ERRORS_H
#define TOOLS_ERRORS_H

#include <stdexcept>

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

}  // namespace tool

#endif
