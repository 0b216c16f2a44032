#include "report/html.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "markup.h"
#include "terminal.h"

namespace tool {
namespace {

using json = nlohmann::ordered_json;

std::string valid_utf8(const std::string& text)
{
    return json::parse(json(text).dump(-1, ' ', false, json::error_handler_t::replace)).get<std::string>();
}

std::string exact(double value)
{
    std::array<char, 32> text;
    const char* const last = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return {text.data(), static_cast<std::size_t>(last - text.data())};
}

std::string cell(const std::string& shown, const std::string& value, const std::string& of)
{
    return "<td class=\"number\" data-value=\"" + value + '"' + (of.empty() ? "" : " data-of=\"" + html(of) + '"') +
           '>' + shown + "</td>";
}

}  // namespace

std::string html(const std::string& text)
{
    return escaped(printable(valid_utf8(text)));
}

std::string json_in_script(const json& value)
{
    std::string result;
    for (const char c : value.dump(-1, ' ', true, json::error_handler_t::replace)) {
        // Outside of strings JSON has none of these.
        if (c == '<')
            result += "\\u003c";
        else if (c == '>')
            result += "\\u003e";
        else if (c == '&')
            result += "\\u0026";
        else
            result += c;
    }
    return result;
}

std::string grouped(std::uint64_t value)
{
    const std::string digits = std::to_string(value);
    std::string result;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i != 0 && (digits.size() - i) % 3 == 0) result += "\u202F";
        result += digits[i];
    }
    return result;
}

std::string rounded(double value)
{
    if (!std::isfinite(value)) return "\u2013";
    std::array<char, 32> text;
    const char* last = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 4).ptr;
    std::string result(text.data(), static_cast<std::size_t>(last - text.data()));
    if (result.starts_with('-')) result.replace(0, 1, "\u2212");
    return result;
}

std::string number_cell(std::uint64_t value, const std::string& of)
{
    return cell(grouped(value), std::to_string(value), of);
}

std::string number_cell(double value, const std::string& of)
{
    return cell(rounded(value), std::isfinite(value) ? exact(value) : "null", of);
}

std::string base64(std::span<const unsigned char> bytes)
{
    constexpr const char* letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t held = std::min<std::size_t>(3, bytes.size() - i);
        unsigned int group = 0;
        for (std::size_t k = 0; k < 3; ++k) group = group << 8 | (k < held ? bytes[i + k] : 0u);
        for (std::size_t k = 0; k < 4; ++k) text += k <= held ? letters[group >> (18 - 6 * k) & 63u] : '=';
    }
    return text;
}

}  // namespace tool
