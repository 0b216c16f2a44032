#include <algorithm>
#include <cmath>
#include <cstdio>

#include "check/mesh_report.h"
#include "findings/words_of_ids.h"
#include "mesh/kinds.h"
#include "words.h"

namespace tool {
namespace {

constexpr std::size_t first_ids = 10;

std::string painted(const std::string& text, const char* colour, const terminal& out)
{
    return out.colour ? "\033[" + std::string(colour) + 'm' + text + "\033[0m" : text;
}

std::string shortest(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.4g", value);
    return text;
}

std::string count_line(const std::string& name, std::uint64_t count)
{
    char text[96];
    std::snprintf(text, sizeof text, "  %-34s%10llu\n", name.c_str(), static_cast<unsigned long long>(count));
    return text;
}

const char* name_of_faces(int dimension)
{
    return dimension == 1 ? "free ends" : dimension == 2 ? "open edges" : "faces on the boundary";
}

std::string counts(const mesh_report& report)
{
    const examination& v = report.verdict;
    std::string text = count_line("nodes", v.nodes);
    for (const kind_summary& kind : v.kinds) text += count_line(info_of(kind.type).many, kind.count);
    if (v.dimension == 0) return text;
    return text + count_line("connected parts", v.parts) + count_line(name_of_faces(v.dimension), v.free_faces);
}

std::string box_lines(const examination& v)
{
    std::string text;
    for (std::size_t k = 0; k < 3 && !v.box.is_empty(); ++k) {
        char line[96];
        std::snprintf(line, sizeof line, "    %c %22.7g%15.7g%15.7g\n", "xyz"[k], v.box.min[k], v.box.max[k],
                      v.box.max[k] - v.box.min[k]);
        text += line;
    }
    if (!text.empty()) text = "\n  bounding box           min            max           size\n" + text;
    if (v.shortest_edge > 0)
        text += "  shortest edge " + shortest(v.shortest_edge) + ", 1/" + shortest(v.box.diagonal() / v.shortest_edge) +
                " of the diagonal\n";
    return text;
}

std::string quality_lines(const examination& v)
{
    std::string text;
    for (const kind_summary& kind : v.kinds) {
        if (info_of(kind.type).dimension < 2) continue;
        char line[200];
        std::snprintf(line, sizeof line, "  %-26s%9.4f%9.4f%9.4f%9llu%9llu%9llu%9llu%9llu\n", info_of(kind.type).many,
                      kind.min, kind.mean, kind.max, static_cast<unsigned long long>(kind.inverted),
                      static_cast<unsigned long long>(kind.bad), static_cast<unsigned long long>(kind.poor),
                      static_cast<unsigned long long>(kind.fair), static_cast<unsigned long long>(kind.good));
        text += line;
    }
    if (text.empty()) return text;
    return "\n  quality                         min     mean      max inverted      bad     poor     fair     good\n" +
           text;
}

std::string fault_line(const mesh_report& report, const found& f, const terminal& out)
{
    const bool wrong = f.level == severity::finding;
    std::string text = f.text;
    if (const std::string percent = percent_of(f); !percent.empty()) text += ", " + percent + " %";
    const std::size_t most = report.all_ids ? f.ids.size() : first_ids;
    if (!f.ids.empty()) text += ": " + words_of(report.content, f, most);
    text = printable((wrong ? "! " : "  note: ") + text);
    return (wrong ? painted(text, "1;31", out) : text) + '\n';
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

}  // namespace

std::string verdict_of(const mesh_report& report, const terminal& out)
{
    const examination& v = report.verdict;
    std::vector<std::string> why;
    if (v.is_clean())
        for (const kind_summary& kind : v.kinds) why.push_back(counted_elements(kind.count, kind.type));
    for (const found& f : v.faults)
        if (f.level == severity::finding) why.push_back(f.text);
    const std::string verdict = v.is_clean() ? painted("CLEAN", "1;32", out) : painted("NOT CLEAN", "1;31", out);
    return printable(report.file) + ": " + verdict + ": " + printable(joined(why)) + '\n';
}

std::string text_of(const mesh_report& report, const terminal& out)
{
    std::string text = painted(printable(report.file), "1", out) + "  (" + report.format_title + ")\n\n" +
                       counts(report) + box_lines(report.verdict) + quality_lines(report.verdict) + '\n';
    for (const found& f : report.verdict.faults) text += fault_line(report, f, out);
    for (const lost_edges& lost : report.verdict.lost) text += "  note: " + words_of(lost) + '\n';
    for (const std::string& note : report.content.notes) text += "  note: " + printable(note) + '\n';
    return text + rules_lines(report) + '\n' + verdict_of(report, out);
}

}  // namespace tool
