#ifndef TESTS_TOOLS_REPORT_REPORT_PAGE_H
#define TESTS_TOOLS_REPORT_REPORT_PAGE_H

#include <cstring>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace test {

// A page of `tessolv report`, taken apart.
struct report_page {
    explicit report_page(std::string bytes) : html(std::move(bytes)), check(script("check")), data(script("data")) {}

    // A number that says where in the JSON of `check` it stands.
    struct number {
        std::string path;
        std::string value;
        std::string shown;
    };
    std::vector<number> numbers() const
    {
        std::vector<number> all;
        for (std::size_t at = 0; (at = html.find(" data-of=\"", at)) != std::string::npos; ++at) {
            const std::size_t value = html.rfind("data-value=\"", at);
            const std::size_t text = html.find('>', at) + 1;
            all.push_back({until(at + 10, '"'), until(value + 12, '"'), until(text, '<')});
        }
        return all;
    }

    // The items of a base64 text of the data.
    template <class Number>
    static std::vector<Number> unpacked(const nlohmann::json& text)
    {
        std::string bytes;
        unsigned int bits = 0;
        unsigned int held = 0;
        for (const char c : text.get<std::string>()) {
            if (c == '=') break;
            held = held << 6 | static_cast<unsigned int>(letters().find(c));
            if ((bits += 6) < 8) continue;
            bytes += static_cast<char>(held >> (bits -= 8));
            held &= (1u << bits) - 1;
        }
        std::vector<Number> numbers(bytes.size() / sizeof(Number));
        std::memcpy(numbers.data(), bytes.data(), numbers.size() * sizeof(Number));
        return numbers;
    }

    std::string html;
    nlohmann::json check;
    nlohmann::json data;

private:
    static std::string letters() { return "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"; }
    std::string until(std::size_t from, char end) const { return html.substr(from, html.find(end, from) - from); }

    // What a browser takes for the content of the element: all up to the first end.
    nlohmann::json script(const std::string& id) const
    {
        const std::string begin = "<script type=\"application/json\" id=\"" + id + "\">";
        const std::size_t from = html.find(begin) + begin.size();
        return nlohmann::json::parse(html.substr(from, html.find("</script", from) - from));
    }
};

}  // namespace test

#endif
