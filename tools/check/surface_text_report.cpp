#include "check/surface_text_report.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>

#include "words.h"

namespace tool {
namespace {

[[gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...)
{
    char text[512];
    va_list values;
    va_start(values, format);
    const int length = std::vsnprintf(text, sizeof text, format, values);
    va_end(values);
    return {text, static_cast<std::size_t>(std::clamp(length, 0, static_cast<int>(sizeof text) - 1))};
}

const char* const bold = "1";
const char* const red = "1;31";
const char* const green = "1;32";
const char* const faint = "2";

std::string coloured(const std::string& text, const char* colour, const terminal& out)
{
    return out.colour ? "\033[" + std::string(colour) + 'm' + text + "\033[0m" : text;
}

// One line of the table: a mark for what is wrong, the name, the number right-aligned, a remark.
struct row {
    const char* name;
    std::uint64_t count;
    bool wrong = false;
    std::string remark = {};
};

std::string line_of(const row& r, const terminal& out)
{
    std::string line =
        formatted("%c %-34s%10llu", r.wrong ? '!' : ' ', r.name, static_cast<unsigned long long>(r.count));
    if (r.wrong) line = coloured(line, red, out);
    if (!r.remark.empty()) line += "   " + coloured(r.remark, faint, out);
    return line + '\n';
}

row fault_row(const char* name, const fault_count& fault)
{
    if (fault.count == 0) return {name, 0};
    const point& at = fault.first_at;
    return {name, fault.count, true, formatted("first at (%.5g, %.5g, %.5g)", at[0], at[1], at[2])};
}

std::string counts(const surface_report& report, const terminal& out)
{
    const stl_survey& survey = report.survey;
    const surface_numbers& numbers = report.numbers;
    const std::uint64_t unread = survey.facets_in_file - survey.facets_read;
    std::string text;
    for (const row& r :
         {row{"facets in the file", survey.facets_in_file},
          row{"facets read", survey.facets_read, unread != 0, survey.why_not_read},
          row{"triangles", numbers.triangles, numbers.triangles == 0},
          row{"nodes", numbers.nodes, false, counted(report.merged_nodes, "corner", "corners") + " merged"},
          row{"connected parts", numbers.parts}, row{"degenerate triangles", report.degenerate, report.degenerate != 0},
          fault_row("duplicate triangles", numbers.duplicates), fault_row("free edges", numbers.free_edges),
          fault_row("edges of three or more triangles", numbers.nonmanifold_edges)})
        text += line_of(r, out);
    return text;
}

std::string box_lines(const bounding_box& box)
{
    std::string text = "  bounding box           min            max           size\n";
    for (std::size_t i = 0; i < 3; ++i)
        text += formatted("    %c %22.7g%15.7g%15.7g\n", "xyz"[i], box.min[i], box.max[i], box.max[i] - box.min[i]);
    return text;
}

// A bar in eighths of a character, or in whole ones. What is not nothing shows at least a little.
std::string bar(std::uint64_t count, std::uint64_t longest, unsigned width, bool blocks)
{
    if (count == 0) return {};
    const unsigned steps = blocks ? 8 : 1;
    const double share = static_cast<double>(count) / static_cast<double>(longest);
    const auto length = std::max(1u, static_cast<unsigned>(std::lround(share * width * steps)));
    if (!blocks) return std::string(length, '#');
    std::string text;
    for (unsigned i = 0; i < length / 8; ++i) text += "\u2588";
    const char* const eighths[] = {"", "\u258F", "\u258E", "\u258D", "\u258C", "\u258B", "\u258A", "\u2589"};
    return text + eighths[length % 8];
}

std::string histogram_lines(const quality_summary& quality, const terminal& out)
{
    constexpr unsigned beside_bar = 24;
    const unsigned width = std::clamp(out.width, beside_bar + 10, beside_bar + 50) - beside_bar;
    const std::uint64_t longest = std::max<std::uint64_t>(1, *std::ranges::max_element(quality.histogram));
    std::string text;
    for (std::size_t k = 0; k < quality_summary::bins; ++k) {
        const double lower = 0.1 * static_cast<double>(k);
        text += formatted("    %.1f - %.1f %9llu", lower, lower + 0.1,
                          static_cast<unsigned long long>(quality.histogram[k]));
        const std::string drawn = bar(quality.histogram[k], longest, width, out.blocks);
        text += (drawn.empty() ? "" : "  " + drawn) + '\n';
    }
    return text;
}

std::string quality_lines(const quality_summary& quality, const terminal& out)
{
    return formatted("  quality   min %.4f   mean %.4f   max %.4f\n", quality.min, quality.mean, quality.max) +
           histogram_lines(quality, out);
}

}  // namespace

std::string verdict_line(const surface_report& report, const terminal& out)
{
    const surface_numbers& numbers = report.numbers;
    const std::string verdict = report.is_clean() ? coloured("CLEAN", green, out) : coloured("NOT CLEAN", red, out);
    const std::string why = report.is_clean() ? counted(numbers.triangles, "triangle", "triangles") + ", " +
                                                    counted(numbers.parts, "part", "parts") + ", closed"
                                              : joined(report.problems);
    return printable(report.file) + ": " + verdict + ": " + why + '\n';
}

std::string text_report(const surface_report& report, const terminal& out)
{
    const char* const format = report.survey.format == stl_format::ascii ? "text STL" : "binary STL";
    std::string text = coloured(printable(report.file), bold, out) + "  (" + format + ")\n\n" + counts(report, out);
    if (report.numbers.box) text += '\n' + box_lines(*report.numbers.box);
    if (report.numbers.quality) text += '\n' + quality_lines(*report.numbers.quality, out);
    if (!report.notes.empty()) text += '\n';
    for (const std::string& note : report.notes) text += "  note: " + note + '\n';
    return text + '\n' + verdict_line(report, out);
}

}  // namespace tool
