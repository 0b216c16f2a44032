#include <algorithm>
#include <array>
#include <cmath>
#include <cstdarg>
#include <cstdio>

#include "check/report.h"
#include "findings/words_of_ids.h"
#include "mesh/kinds.h"
#include "words.h"

namespace tool {
namespace {

constexpr std::size_t first_ids = 10;

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

std::string painted(const std::string& text, const char* colour, const terminal& out)
{
    return out.colour ? "\033[" + std::string(colour) + 'm' + text + "\033[0m" : text;
}

std::string shortest(double value)
{
    return formatted("%.4g", value);
}

unsigned long long wide(std::uint64_t count)
{
    return count;
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
    std::string line = formatted("%c %-34s%10llu", r.wrong ? '!' : ' ', r.name, wide(r.count));
    if (r.wrong) line = painted(line, red, out);
    if (!r.remark.empty()) line += "   " + painted(r.remark, faint, out);
    return line + '\n';
}

const char* name_of_faces(int dimension)
{
    return dimension == 1 ? "free ends" : dimension == 2 ? "open edges" : "faces on the boundary";
}

std::vector<row> rows_of_mesh(const examination& v)
{
    std::vector<row> rows{{"nodes", v.nodes}};
    for (const kind_summary& kind : v.kinds) rows.push_back({info_of(kind.type).many, kind.count});
    if (v.dimension == 0) return rows;
    rows.push_back({"connected parts", v.parts});
    rows.push_back({name_of_faces(v.dimension), v.free_faces});
    return rows;
}

std::vector<row> rows_of_facets(const facet_counts& facets, const examination& v)
{
    const auto wrong = [&](fault which) {
        const found* f = v.find(which);
        return f != nullptr && f->level == severity::finding;
    };
    const std::uint64_t triangles = v.kinds.empty() ? 0 : v.kinds.front().count;
    return {{"facets in the file", facets.in_file},
            {"facets read", facets.read, wrong(fault::reading), facets.why_not_read},
            {"triangles", triangles, wrong(fault::no_element)},
            {"nodes", v.nodes, false, counted(3 * facets.read - v.nodes, "corner", "corners") + " merged"},
            {"connected parts", v.parts},
            {"degenerate triangles", v.collapsed, wrong(fault::repeated_node)},
            {"duplicate triangles", v.duplicates, wrong(fault::duplicate)},
            {"free edges", v.free_faces, wrong(fault::open_edge_of_stl)},
            {"edges of three or more triangles", v.nonmanifold_faces, wrong(fault::nonmanifold)}};
}

std::string counts(const mesh_report& report, const terminal& out)
{
    const auto& facets = report.content.facets;
    std::string text;
    for (const row& r : facets ? rows_of_facets(*facets, report.verdict) : rows_of_mesh(report.verdict))
        text += line_of(r, out);
    return text;
}

std::string box_lines(const examination& v)
{
    std::string text;
    for (std::size_t k = 0; k < 3 && !v.box.is_empty(); ++k)
        text +=
            formatted("    %c %22.7g%15.7g%15.7g\n", "xyz"[k], v.box.min[k], v.box.max[k], v.box.max[k] - v.box.min[k]);
    if (!text.empty()) text = "\n  bounding box           min            max           size\n" + text;
    if (v.edges_without_length != 0)
        text += "  shortest edge 0: " + counted(v.edges_without_length, "edge", "edges") + " without length\n";
    else if (v.shortest_edge > 0)
        text += "  shortest edge " + shortest(v.shortest_edge) + ", 1/" + shortest(v.box.diagonal() / v.shortest_edge) +
                " of the diagonal\n";
    return text;
}

std::string quality_cell(double value)
{
    return std::isnan(value) ? formatted("%9s", "-") : formatted("%9.4f", value);
}

std::string quality_line(const kind_summary& kind)
{
    std::string text = formatted("  %-26s", info_of(kind.type).many);
    for (const double value : {kind.min, kind.mean, kind.max}) text += quality_cell(value);
    for (const std::uint64_t count : {kind.inverted, kind.bad, kind.poor, kind.fair, kind.good})
        text += formatted("%9llu", wide(count));
    return text + '\n';
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

std::string histogram_lines(const kind_summary& kind, const terminal& out)
{
    constexpr unsigned beside_bar = 24;
    const unsigned width = std::clamp(out.width, beside_bar + 10, beside_bar + 50) - beside_bar;
    const std::uint64_t longest = std::max<std::uint64_t>(1, *std::ranges::max_element(kind.histogram));
    std::string text = std::string("\n  quality of the ") + info_of(kind.type).many + '\n';
    for (std::size_t k = 0; k < kind_summary::bins; ++k) {
        const double lower = 0.1 * static_cast<double>(k);
        text += formatted("    %.1f - %.1f %9llu", lower, lower + 0.1, wide(kind.histogram[k]));
        const std::string drawn = bar(kind.histogram[k], longest, width, out.blocks);
        text += (drawn.empty() ? "" : "  " + drawn) + '\n';
    }
    return text;
}

std::string quality_lines(const examination& v, const terminal& out)
{
    std::string table;
    std::string histograms;
    for (const kind_summary& kind : v.kinds) {
        if (info_of(kind.type).dimension < 2) continue;
        table += quality_line(kind);
        histograms += histogram_lines(kind, out);
    }
    if (table.empty()) return table;
    return "\n  quality                         min     mean      max inverted      bad     poor     fair     good\n" +
           table + histograms;
}

std::string fault_line(const mesh_report& report, const found& f, const terminal& out)
{
    const bool wrong = f.level == severity::finding;
    std::string text = f.text;
    if (const std::string percent = percent_of(f); !percent.empty()) text += ", " + percent + " %";
    const std::size_t most = report.all_ids ? f.ids.size() : first_ids;
    if (!f.ids.empty()) text += ": " + words_of(report.content, f, most);
    if (const auto& at = f.first_at; at)
        text += formatted("; first at (%.5g, %.5g, %.5g)", (*at)[0], (*at)[1], (*at)[2]);
    text = printable((wrong ? "! " : "  note: ") + text);
    return (wrong ? painted(text, red, out) : text) + '\n';
}

std::string rules_lines(const mesh_report& report)
{
    const rules& r = report.by;
    std::string text = "  rules '" + printable(r.profile) + "': coincident within " + shortest(r.coincident) +
                       " of the diagonal, too short below " + shortest(r.short_edge) + " of the largest coordinate\n";
    for (const kind_summary& kind : report.verdict.kinds) {
        if (info_of(kind.type).dimension < 2) continue;
        const quality_limits& l = r.limits_of(kind.type);
        text += std::string("    ") + info_of(kind.type).many + ": bad below " + shortest(l.bad) + ", poor below " +
                shortest(l.warning) + ", good from " + shortest(l.good) + " on\n";
    }
    for (const severity level : {severity::finding, severity::note, severity::off}) {
        std::string codes;
        for (const fault_info& f : all_faults())
            if (r.of(f.which) == level) append_word(codes, f.code);
        const char* const title = level == severity::finding ? "findings: "
                                  : level == severity::note  ? "notes: "
                                                             : "off: ";
        if (!codes.empty()) text += std::string("    ") + title + codes + '\n';
    }
    return text;
}

// What a clean mesh consists of.
std::vector<std::string> contents_of(const mesh_report& report)
{
    const examination& v = report.verdict;
    std::vector<std::string> contents;
    for (const kind_summary& kind : v.kinds) contents.push_back(counted_elements(kind.count, kind.type));
    if (!report.content.facets) return contents;
    contents.push_back(counted(v.parts, "part", "parts"));
    if (v.free_faces + v.nonmanifold_faces == 0) contents.emplace_back("closed");
    return contents;
}

}  // namespace

std::string verdict_of(const mesh_report& report, const terminal& out)
{
    const examination& v = report.verdict;
    std::vector<std::string> why;
    if (v.is_clean()) why = contents_of(report);
    for (const found& f : v.faults)
        if (f.level == severity::finding) why.push_back(f.text);
    const std::string verdict = v.is_clean() ? painted("CLEAN", green, out) : painted("NOT CLEAN", red, out);
    return printable(report.file) + ": " + verdict + ": " + printable(joined(why)) + '\n';
}

std::string text_of(const mesh_report& report, const terminal& out)
{
    std::string text = painted(printable(report.file), bold, out) + "  (" + report.format_title + ")\n\n" +
                       counts(report, out) + box_lines(report.verdict) + quality_lines(report.verdict, out) + '\n';
    for (const found& f : report.verdict.faults) text += fault_line(report, f, out);
    for (const lost_edges& lost : report.verdict.lost) text += "  note: " + words_of(lost) + '\n';
    for (const std::string& note : report.content.notes) text += "  note: " + printable(note) + '\n';
    return text + rules_lines(report) + '\n' + verdict_of(report, out);
}

}  // namespace tool
