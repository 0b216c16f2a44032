#ifndef TOOLS_ERRORS_H
#define TOOLS_ERRORS_H

#include <stdexcept>

namespace tool {

// An input that cannot be read or is no STL; the text is the reason, without the name of the file.
struct unreadable : std::runtime_error {
    using runtime_error::runtime_error;
};

// A fault of this program or of the library.
struct internal_error : std::logic_error {
    using logic_error::logic_error;
};

}  // namespace tool

#endif
