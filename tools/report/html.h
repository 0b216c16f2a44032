#ifndef TOOLS_REPORT_HTML_H
#define TOOLS_REPORT_HTML_H

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace tool {

// Any bytes as the text of an element or of an attribute in quotation marks: what has a meaning in HTML is written as
// its entity, bytes that are no UTF-8 become U+FFFD, control characters '?'.
std::string html(const std::string& text);

// JSON to stand in a script element: nothing in it can end the element or open a comment.
std::string json_in_script(const nlohmann::ordered_json& value);

// A number of table cells: shown short, with the whole number in the attribute data-value, and the field of the JSON
// of `check` that it is in data-of (dots between names and indices), if any.
std::string number_cell(std::uint64_t value, const std::string& of = {});
std::string number_cell(double value, const std::string& of = {});

// The same without the cell.
std::string grouped(std::uint64_t value);  // with narrow spaces between thousands
std::string rounded(double value);         // four significant digits

std::string base64(std::span<const unsigned char> bytes);

// The bytes of numbers, the least one first.
template <class Number>
std::string base64_of(const std::vector<Number>& numbers)
{
    std::vector<unsigned char> bytes(numbers.size() * sizeof(Number));
    if (!bytes.empty()) std::memcpy(bytes.data(), numbers.data(), bytes.size());
    if constexpr (std::endian::native == std::endian::big)
        for (auto at = bytes.begin(); at != bytes.end(); at += sizeof(Number)) std::reverse(at, at + sizeof(Number));
    return base64(bytes);
}

}  // namespace tool

#endif
