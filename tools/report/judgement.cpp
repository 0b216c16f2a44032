#include "report/judgement.h"

#include <utility>

#include "check/report.h"
#include "commands/files.h"
#include "mesh/kinds.h"
#include "words.h"

namespace tool {
namespace {

void take_verdict(judgement& j, const std::string& line)
{
    j.verdict = line;
    const std::string before = printable(j.file) + (j.is_clean ? ": CLEAN: " : ": NOT CLEAN: ");
    j.reasons = line.substr(before.size(), line.size() - before.size() - 1);
}

const char* name_of_free_faces(int dimension)
{
    return dimension == 1 ? "free ends" : dimension == 2 ? "open edges" : "faces on the boundary";
}

const char* name_of_faces(int dimension)
{
    return dimension == 1 ? "ends" : dimension == 2 ? "edges" : "faces";
}

void take_counts_of_mesh(judgement& j)
{
    const examination& v = j.verdict_on;
    j.counts = {{"nodes", v.nodes, "nodes"}, {"elements", v.elements, "elements"}};
    for (const kind_summary& kind : v.kinds)
        j.counts.push_back(
            {info_of(kind.type).many, kind.count, std::string("kinds.") + info_of(kind.type).name + ".count"});
    if (v.dimension == 0) return;
    const std::string faces = name_of_faces(v.dimension);
    j.counts.push_back({"connected parts", v.parts, "parts"});
    j.counts.push_back({faces, v.faces, "faces"});
    j.counts.push_back({name_of_free_faces(v.dimension), v.free_faces, "free_faces"});
    j.counts.push_back({faces + " of three or more elements", v.nonmanifold_faces, "nonmanifold_faces"});
}

void take_counts_of_facets(judgement& j)
{
    const examination& v = j.verdict_on;
    const facet_counts& facets = *j.content.facets;
    j.counts = {{"facets in the file", facets.in_file, "facets_in_file"},
                {"facets read", facets.read, "facets_read"},
                {"triangles", v.kinds.empty() ? 0 : v.kinds.front().count, "triangles"},
                {"nodes", v.nodes, "nodes"},
                {"corners merged", 3 * facets.read - v.nodes, "merged_nodes"},
                {"connected parts", v.parts, "parts"},
                {"degenerate triangles", v.collapsed, "degenerate"},
                {"duplicate triangles", v.duplicates, "duplicates"},
                {"edges", v.faces, "faces"},
                {"free edges", v.free_faces, "free_edges"},
                {"edges of three or more triangles", v.nonmanifold_faces, "nonmanifold_edges"}};
}

void take_faults(judgement& j, const examination& v)
{
    for (std::size_t i = 0; i < v.faults.size(); ++i) {
        const found& f = v.faults[i];
        const std::string path = "faults." + std::to_string(i);
        const bool of_nodes = info_of(f.which).place == fault_place::node;
        j.faults.push_back({info_of(f.which).code, f.level == severity::finding, f.text, f.count, f.of, path + ".count",
                            path + ".of", f.ids, of_nodes});
    }
}

void take_qualities(judgement& j, const examination& v)
{
    for (const kind_summary& k : v.kinds) {
        if (info_of(k.type).dimension < 2) continue;
        j.qualities.push_back({info_of(k.type).many, std::string("kinds.") + info_of(k.type).name + ".quality", k.count,
                               k.min, k.mean, k.max, std::array{k.inverted, k.bad, k.poor, k.fair, k.good},
                               k.histogram});
    }
}

// Of an STL file with coordinates that are not finite, as in the JSON.
std::optional<std::array<std::array<double, 3>, 2>> box_of(const judgement& j)
{
    const examination& v = j.verdict_on;
    if (j.content.facets && !v.kinds.empty()) return {{v.least, v.greatest}};
    if (v.box.is_empty()) return std::nullopt;
    return {{v.box.min, v.box.max}};
}

}  // namespace

judgement judge(const std::string& path, const check_options& options)
{
    judgement j;
    j.file = path;
    j.by = rules_in_force(options);
    try {
        loaded input = load_to_check(path, options);
        j.verdict_on = examine(input.content, j.by);
        const mesh_report report = report_on(input, path, j.verdict_on, j.by, options.ids);
        j.format = report.format_title;
        j.is_clean = j.verdict_on.is_clean();
        j.json = json_of(report);
        take_verdict(j, verdict_of(report, terminal()));
        j.content = std::move(input.content);
    } catch (const std::exception&) {
        throw failure_of(path, std::current_exception());
    }
    if (j.content.facets)
        take_counts_of_facets(j);
    else
        take_counts_of_mesh(j);
    take_faults(j, j.verdict_on);
    take_qualities(j, j.verdict_on);
    j.box = box_of(j);
    j.notes = j.content.notes;
    j.shortest_edge = j.verdict_on.shortest_edge;
    return j;
}

}  // namespace tool
