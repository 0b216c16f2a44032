#ifndef TOOLS_FORMATS_READABLE_H
#define TOOLS_FORMATS_READABLE_H

#include <string_view>

namespace tool {

// The first bytes of a file behind the mark of UTF-8, if it has one; throws `unreadable` for a text in UTF-16.
std::string_view without_mark(std::string_view head);

// Throws `unreadable` for what a packer made.
void refuse_packed(std::string_view head);

}  // namespace tool

#endif
