#include "report/tables.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "mesh/kinds.h"
#include "report/html.h"
#include "words.h"

namespace tool {
namespace {

// A table with a caption for those who hear it, and a head of columns; names with '#' stand over numbers.
std::string table(const std::string& caption, const std::vector<std::string>& columns, const std::string& rows)
{
    std::string head;
    for (const std::string& column : columns)
        head += column.starts_with('#') ? "<th scope=\"col\" class=\"number\">" + column.substr(1) + "</th>"
                                        : "<th scope=\"col\">" + column + "</th>";
    return "<div class=\"wide\"><table><caption>" + caption + "</caption><thead><tr>" + head +
           "</tr></thead><tbody>\n" + rows + "</tbody></table></div>\n";
}

std::string row_head(const std::string& name)
{
    return "<tr><th scope=\"row\">" + html(name) + "</th>";
}

// A link to the picture, which shows the item. The kind is not shown again behind an item of the same kind.
std::string link(const mark_list& list, std::size_t mark, const std::string& kind_before = {})
{
    const std::string& name = list.marks[mark].name;
    const std::size_t number = name.find(' ') + 1;
    const bool same = name.substr(0, number) == kind_before;
    return std::string("<a class=\"mark") + (same ? " same" : "") + "\" href=\"#picture\" data-mark=\"" +
           std::to_string(mark) + "\"><span>" + html(name.substr(0, number)) + "</span>" + html(name.substr(number)) +
           "</a>";
}

std::string links(const mark_list& list, const std::vector<std::size_t>& marks, std::uint64_t of)
{
    constexpr std::size_t first_ids = 10;
    std::string first;
    std::string others;
    std::string kind;
    for (std::size_t i = 0; i < marks.size(); ++i) {
        (i < first_ids ? first : others) += link(list, marks[i], i == first_ids ? "" : kind) + ' ';
        kind = list.marks[marks[i]].name.substr(0, list.marks[marks[i]].name.find(' ') + 1);
    }
    const std::string untold = of > marks.size() ? counted(of - marks.size(), "is", "are") + " not listed" : "";
    if (!others.empty())
        first += "<details><summary>" + grouped(marks.size() - first_ids) + " more</summary>" + others + untold +
                 "</details>";
    else
        first += untold;
    return first;
}

std::string share(const judgement::fault& f)
{
    if (f.of == 0) return "<td></td>";
    char text[32];
    std::snprintf(text, sizeof text, "%.2g", 100 * static_cast<double>(f.count) / static_cast<double>(f.of));
    return "<td class=\"number\">" + std::string(text) + "\u202F%</td>";
}

std::string card(const std::string& value, const std::string& name, const char* kind = "")
{
    return "<div class=\"card" + std::string(kind) + "\"><strong>" + value + "</strong><span>" + name +
           "</span></div>\n";
}

}  // namespace

std::string cards(const judgement& j)
{
    std::string text = card(grouped(j.verdict_on.elements), j.content.facets ? "triangles" : "elements") +
                       card(grouped(j.verdict_on.nodes), "nodes");
    if (j.verdict_on.dimension > 0)
        text += card(grouped(j.verdict_on.parts), j.verdict_on.parts == 1 ? "connected part" : "connected parts");
    if (!j.qualities.empty()) {
        // NaN, where no element has a number, comes last.
        const auto least = [](const judgement::quality& q) { return std::isnan(q.min) ? 2 : q.min; };
        const auto worst = std::ranges::min_element(j.qualities, {}, least);
        text += card(rounded(worst->min), "least quality", worst->min < 0 ? " wrong" : "");
    }
    const auto findings = static_cast<std::uint64_t>(std::ranges::count_if(j.faults, &judgement::fault::is_finding));
    return text + card(grouped(findings), findings == 1 ? "kind of finding" : "kinds of findings",
                       findings == 0 ? "" : " wrong");
}

std::string findings_table(const judgement& j, const mark_list& marks)
{
    if (j.faults.empty()) return "<p>Nothing was found.</p>\n";
    std::string rows;
    for (std::size_t i = 0; i < j.faults.size(); ++i) {
        const judgement::fault& f = j.faults[i];
        rows += std::string("<tr class=\"") + (f.is_finding ? "finding" : "note") + "\"><td><span class=\"level\">" +
                (f.is_finding ? "finding" : "note") + "</span></td><th scope=\"row\">" + html(f.text) + "</th>" +
                number_cell(f.count, f.count_path);
        rows += f.of != 0 ? number_cell(f.of, f.of_path) : "<td></td>";
        rows += share(f) + "<td class=\"ids\">" + links(marks, marks.of_faults[i], f.ids.size()) + "</td></tr>\n";
    }
    return table("Findings decide the verdict, notes do not", {"", "What", "#Count", "#Of", "#Share", "Where"}, rows);
}

// In two tables, which are narrow enough to stand beside the picture.
std::string quality_table(const judgement& j)
{
    if (j.qualities.empty()) return "<p>No element has a quality.</p>\n";
    constexpr std::array names{"inverted", "bad", "poor", "fair", "good"};
    std::string values;
    std::string bands;
    for (const judgement::quality& q : j.qualities) {
        values += row_head(q.name) + number_cell(q.count) + number_cell(q.min, q.path + ".min") +
                  number_cell(q.mean, q.path + ".mean") + number_cell(q.max, q.path + ".max") + "</tr>\n";
        bands += row_head(q.name);
        for (std::size_t i = 0; i < names.size(); ++i) bands += number_cell(q.bands[i], q.path + '.' + names[i]);
        bands += "</tr>\n";
    }
    return table("1 is the ideal shape, near 0 flat, negative inverted",
                 {"Kind", "#Elements", "#Least", "#Mean", "#Greatest"}, values) +
           table("How many are how good", {"Kind", "#Inverted", "#Bad", "#Poor", "#Fair", "#Good"}, bands);
}

std::string worst_table(const judgement& j, const mark_list& marks)
{
    if (marks.worst.empty()) return {};
    std::string rows;
    const bool at_fault =
        std::ranges::any_of(marks.worst, [&](std::size_t mark) { return !marks.marks[mark].faults.empty(); });
    for (const std::size_t mark : marks.worst) {
        const mark_list::mark& m = marks.marks[mark];
        std::vector<std::string> faults;
        for (const std::size_t f : m.faults) faults.push_back(j.faults[f].code);
        std::string codes = joined(faults);
        std::ranges::replace(codes, '_', ' ');
        rows += "<tr><th scope=\"row\">" + link(marks, mark) + "</th>" + number_cell(m.quality) +
                (at_fault ? "<td>" + html(codes) + "</td>" : "") + "</tr>\n";
    }
    std::vector<std::string> columns{"Element", "#Quality"};
    if (at_fault) columns.emplace_back("Listed under");
    return table("The elements of least quality", columns, rows);
}

std::string counts_table(const judgement& j)
{
    std::string rows;
    for (const judgement::count& c : j.counts) rows += row_head(c.name) + number_cell(c.value, c.path) + "</tr>\n";
    return table("What the file holds", {"", "#Count"}, rows);
}

std::string box_table(const judgement& j)
{
    std::string rows;
    for (std::size_t k = 0; j.box && k < 3; ++k) {
        const auto& [min, max] = *j.box;
        const std::string path = '.' + std::to_string(k);
        rows += row_head(std::string(1, "xyz"[k])) + number_cell(min[k], "bounding_box.min" + path) +
                number_cell(max[k], "bounding_box.max" + path) + number_cell(max[k] - min[k]) + "</tr>\n";
    }
    if (rows.empty()) return {};
    if (j.shortest_edge > 0)
        rows += row_head("shortest edge") + "<td></td><td></td>" + number_cell(j.shortest_edge, "shortest_edge") +
                "</tr>\n";
    return table("Where it lies", {"", "#Least", "#Greatest", "#Size"}, rows);
}

std::string groups_table(const group_list& groups)
{
    constexpr std::size_t most = 200;
    std::string rows;
    for (std::size_t i = 0; i < std::min(most, groups.groups().size()); ++i) {
        const group_list::group& g = groups.groups()[i];
        constexpr std::array elements{"points", "lines", "surface elements", "solids"};
        rows += "<tr><th scope=\"row\">" + std::to_string(g.number) + "</th><td><bdi>" + html(g.name) + "</bdi></td>" +
                number_cell(g.elements) + "<td>" + elements[static_cast<std::size_t>(g.dimension)] + "</td></tr>\n";
    }
    if (rows.empty()) return {};
    if (groups.groups().size() > most)
        rows += "<tr><td colspan=\"4\">and " + grouped(groups.groups().size() - most) + " more</td></tr>\n";
    return "<section id=\"groups\"><h2>Groups</h2>\n" +
           table("Groups of elements in the file", {"Number", "Name", "#Elements", "Kind"}, rows) + "</section>\n";
}

std::string rules_table(const judgement& j)
{
    std::string rows;
    for (const kind_summary& kind : j.verdict_on.kinds) {
        if (info_of(kind.type).dimension < 2) continue;
        const quality_limits& l = j.by.limits_of(kind.type);
        rows += row_head(info_of(kind.type).many) + number_cell(l.bad) + number_cell(l.warning) + number_cell(l.good) +
                "</tr>\n";
    }
    std::string text = "<p>Profile <code>" + html(j.by.profile) + "</code>; nodes coincide within " +
                       rounded(j.by.coincident) + " of the diagonal, edges are too short below " +
                       rounded(j.by.short_edge) + " of the largest coordinate.</p>\n<dl>";
    for (const severity level : {severity::finding, severity::note, severity::off}) {
        std::vector<std::string> codes;
        for (const fault_info& f : all_faults())
            if (j.by.of(f.which) == level) codes.emplace_back(f.code);
        const char* const title = level == severity::finding ? "Findings" : level == severity::note ? "Notes" : "Off";
        if (!codes.empty()) text += std::string("<dt>") + title + "</dt><dd>" + joined(codes) + "</dd>";
    }
    text += "</dl>\n";
    return rows.empty() ? text
                        : text + table("Limits of quality", {"Kind", "#Bad below", "#Poor below", "#Good from"}, rows);
}

std::string notes_list(const judgement& j)
{
    if (j.notes.empty()) return {};
    std::string items;
    for (const std::string& note : j.notes) items += "<li>" + html(note) + "</li>\n";
    return "<section id=\"notes\"><h2>Notes on the file</h2>\n<ul>\n" + items + "</ul></section>\n";
}

std::string picture_note(const judgement& j, const drawing& d)
{
    std::vector<std::string> told;
    if (d.triangle_count() < d.whole) {
        told.push_back(d.triangle_count() == 0
                           ? "None of the " + grouped(d.whole) + " triangles of the surface is drawn."
                           : "Drawn coarser: " + grouped(d.triangle_count()) + " triangles instead of " +
                                 grouped(d.whole) + "; nodes in cells of " + rounded(d.coarse) +
                                 " became one. Listed elements are shown as they are.");
    } else if (d.whole != 0) {
        told.push_back("The whole surface: " + grouped(d.whole) + (d.whole == 1 ? " triangle." : " triangles."));
    }
    if (j.verdict_on.dimension == 3) told.emplace_back("Faces of solids have the quality of the element behind them.");
    if (d.lines_left != 0) told.push_back(grouped(d.lines_left) + " lines or points are left out.");
    if (d.without_place != 0)
        told.push_back((j.verdict_on.dimension == 3
                            ? counted(d.without_place, "element or face has", "elements or faces have")
                            : counted(d.without_place, "element has", "elements have")) +
                       " a corner without a place and cannot be drawn.");
    if (std::ranges::any_of(j.content.blocks, [](const element_block& b) { return info_of(b.type).linear != b.type; }))
        told.emplace_back("Elements of higher order are drawn by their corners.");
    if (told.empty()) told.emplace_back("There is nothing to draw.");
    std::string text;
    for (const std::string& sentence : told) text += (text.empty() ? "" : " ") + sentence;
    return text;
}

}  // namespace tool
