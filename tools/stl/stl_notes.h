#ifndef TOOLS_STL_STL_NOTES_H
#define TOOLS_STL_STL_NOTES_H

#include <string>
#include <vector>

#include "stl/stl_text.h"
#include "stl/stl_words.h"

namespace tool {

// Why the library's reader took no more of a text, in words.
std::string why_reading_stopped(const text_scan& scan);

// What is odd about a text.
std::vector<std::string> notes_on(const text_words& words);

}  // namespace tool

#endif
