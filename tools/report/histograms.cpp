#include <algorithm>
#include <cmath>
#include <cstdio>

#include "report/colours.h"
#include "report/html.h"
#include "report/tables.h"

namespace tool {
namespace {

// The colour halfway from one step of the map to the next.
std::string colour_of_bin(std::size_t bin)
{
    unsigned int a = 0;
    unsigned int b = 0;
    std::sscanf(viridis[bin], "#%x", &a);
    std::sscanf(viridis[bin + 1], "#%x", &b);
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", ((a >> 16) + (b >> 16)) / 2 & 255u,
                  ((a >> 8 & 255u) + (b >> 8 & 255u)) / 2, ((a & 255u) + (b & 255u)) / 2);
    return text;
}

std::string number_text(std::uint64_t value, const std::string& of, unsigned int y)
{
    return "<text class=\"count\" x=\"299\" y=\"" + std::to_string(y) + "\" data-value=\"" + std::to_string(value) +
           "\" data-of=\"" + html(of) + "\">" + grouped(value) + "</text>";
}

std::string bar(unsigned int y, std::uint64_t count, std::uint64_t most, const std::string& colour)
{
    if (count == 0) return {};
    constexpr double room = 165;
    const double share = static_cast<double>(count) / static_cast<double>(most);
    char text[120];
    std::snprintf(text, sizeof text, "<rect x=\"68\" y=\"%u\" width=\"%.1f\" height=\"15\" rx=\"2\" fill=\"%s\"/>", y,
                  std::max(1.5, room * share), colour.c_str());
    for (char& c : text)
        if (c == ',') c = '.';  // where numbers have a decimal comma
    return text;
}

std::string row(unsigned int y, const std::string& range, const std::string& drawn, const std::string& number)
{
    return "<g><text x=\"60\" y=\"" + std::to_string(y + 12) + "\">" + range + "</text>" + drawn + number + "</g>\n";
}

std::string histogram(const judgement::quality& q)
{
    constexpr unsigned int step = 20;
    const bool below = q.bands[0] != 0;
    std::uint64_t most = std::max<std::uint64_t>(1, *std::ranges::max_element(q.histogram));
    if (below) most = std::max(most, q.bands[0]);
    std::string rows;
    unsigned int y = 2;
    for (std::size_t k = q.histogram.size(); k-- > 0; y += step) {
        const std::string range =
            k == 9 ? "0.9 \u2013 1" : "0." + std::to_string(k) + " \u2013 0." + std::to_string(k + 1);
        rows += row(y, range, bar(y, q.histogram[k], most, colour_of_bin(k)),
                    number_text(q.histogram[k], q.path + ".histogram." + std::to_string(k), y + 12));
    }
    if (below) {
        rows += row(y, "below 0", bar(y, q.bands[0], most, colour_of_inverted),
                    number_text(q.bands[0], q.path + ".inverted", y + 12));
        y += step;
    }
    const std::string name = html(q.name);
    return "<figure class=\"histogram\"><figcaption>Quality of the " + name + "</figcaption>\n<svg viewBox=\"0 0 300 " +
           std::to_string(y) + "\" role=\"img\" aria-label=\"Histogram of the quality of the " + name + "\">\n" + rows +
           "</svg></figure>\n";
}

}  // namespace

std::string histograms(const judgement& j)
{
    std::string text;
    for (const judgement::quality& q : j.qualities) text += histogram(q);
    return text;
}

}  // namespace tool
