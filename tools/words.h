#ifndef TOOLS_WORDS_H
#define TOOLS_WORDS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// "1 facet", "3 facets".
inline std::string counted(std::uint64_t count, const std::string& one, const std::string& many)
{
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

inline std::string quoted(std::string_view text)
{
    std::string result(1, '\'');
    result.append(text);
    result += '\'';
    return result;
}

inline void append_word(std::string& text, std::string_view word)
{
    if (!text.empty()) text += ' ';
    text.append(word);
}

inline std::string joined(const std::vector<std::string>& parts)
{
    std::string text;
    for (const std::string& part : parts) text += (text.empty() ? "" : ", ") + part;
    return text;
}

}  // namespace tool

#endif
