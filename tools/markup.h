#ifndef TOOLS_MARKUP_H
#define TOOLS_MARKUP_H

#include <string>
#include <string_view>

namespace tool {

// Text for the content and the attributes of HTML and XML.
inline std::string escaped(std::string_view text)
{
    std::string result;
    for (const char c : text) {
        const char* const reference = c == '&'    ? "&amp;"
                                      : c == '<'  ? "&lt;"
                                      : c == '>'  ? "&gt;"
                                      : c == '"'  ? "&quot;"
                                      : c == '\'' ? "&#39;"
                                                  : nullptr;
        if (reference != nullptr)
            result += reference;
        else
            result += c;
    }
    return result;
}

}  // namespace tool

#endif
