#include "report/judgement.h"

#include <utility>

#include "check/mesh_report.h"
#include "check/surface_json_report.h"
#include "check/surface_report.h"
#include "check/surface_text_report.h"
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

void take_mesh_counts(judgement& j, const examination& v)
{
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

void take_mesh_faults(judgement& j, const examination& v)
{
    for (std::size_t i = 0; i < v.faults.size(); ++i) {
        const found& f = v.faults[i];
        const std::string path = "faults." + std::to_string(i);
        const bool of_nodes = info_of(f.which).place == fault_place::node;
        j.faults.push_back({info_of(f.which).code, f.level == severity::finding, f.text, f.count, f.of, path + ".count",
                            path + ".of", f.ids, of_nodes});
    }
}

void take_mesh_qualities(judgement& j, const examination& v)
{
    for (const kind_summary& k : v.kinds) {
        if (info_of(k.type).dimension < 2) continue;
        j.qualities.push_back({info_of(k.type).many, std::string("kinds.") + info_of(k.type).name + ".quality", k.count,
                               k.min, k.mean, k.max, std::array{k.inverted, k.bad, k.poor, k.fair, k.good},
                               k.histogram});
    }
}

void judge_mesh(judgement& j, const check_options& options)
{
    loaded input = load(j.file, options.shared);
    j.format = input.as->title;
    j.content = std::move(input.content);
    j.verdict_on = examine(j.content, j.by);
    j.is_clean = j.verdict_on.is_clean();
    const mesh_report report{j.file, std::string(input.as->name), j.format, j.content, j.verdict_on, j.by, options.ids};
    j.json = json_of(report);
    take_verdict(j, verdict_of(report, terminal()));
    take_mesh_counts(j, j.verdict_on);
    take_mesh_faults(j, j.verdict_on);
    take_mesh_qualities(j, j.verdict_on);
    if (const finite_box& box = j.verdict_on.box; !box.is_empty()) j.box = {box.min, box.max};
    j.notes = j.content.notes;
    j.shortest_edge = j.verdict_on.shortest_edge;
}

// The surface as the library's reader makes it, as a mesh.
mesh mesh_of(surface& s)
{
    mesh m;
    m.facets.emplace();
    m.node_numbers = numbering(1, s.pos.cols);
    m.pos.shallow_copy(s.pos);
    if (s.connect.cols == 0) return m;
    element_block block;
    block.type = zeb::EL_TRIA3;
    block.numbers = numbering(1, s.connect.cols);
    block.connect.shallow_copy(s.connect);
    m.blocks.push_back(std::move(block));
    return m;
}

const std::vector<std::uint64_t>& ids_of(const examination& v, fault which)
{
    static const std::vector<std::uint64_t> none;
    for (const found& f : v.faults)
        if (f.which == which) return f.ids;
    return none;
}

// The problems of the report stand in this order too.
void take_facet_faults(judgement& j, const surface_report& report)
{
    const surface_numbers& n = report.numbers;
    const stl_survey& survey = report.survey;
    const examination& v = j.verdict_on;
    const std::vector<std::uint64_t> none;
    const std::uint64_t without_triangle = n.triangles == 0 ? 1 : 0;
    std::size_t problem = 0;
    const auto add = [&](const char* code, std::uint64_t count, const char* count_path, std::uint64_t of,
                         const char* of_path, const std::vector<std::uint64_t>& ids) {
        if (count != 0)
            j.faults.push_back({code, true, report.problems.at(problem++), count, of, count_path, of_path, ids, false});
    };
    add("facets_not_read", survey.facets_in_file - survey.facets_read, "", survey.facets_in_file, "facets_in_file",
        none);
    add("no_triangle", without_triangle, "", 0, "", none);
    add("degenerate", report.degenerate, "degenerate", survey.facets_read, "facets_read", none);
    add("duplicates", n.duplicates.count, "duplicates", n.triangles, "triangles", ids_of(v, fault::duplicate));
    add("free_edges", n.free_edges.count, "free_edges", 0, "", ids_of(v, fault::open_edge_of_stl));
    add("nonmanifold_edges", n.nonmanifold_edges.count, "nonmanifold_edges", 0, "", ids_of(v, fault::nonmanifold));
}

void take_facet_counts(judgement& j, const surface_report& report)
{
    const surface_numbers& n = report.numbers;
    j.counts = {{"facets in the file", report.survey.facets_in_file, "facets_in_file"},
                {"facets read", report.survey.facets_read, "facets_read"},
                {"triangles", n.triangles, "triangles"},
                {"nodes", n.nodes, "nodes"},
                {"corners merged", report.merged_nodes, "merged_nodes"},
                {"connected parts", n.parts, "parts"},
                {"degenerate triangles", report.degenerate, "degenerate"},
                {"duplicate triangles", n.duplicates.count, "duplicates"},
                {"free edges", n.free_edges.count, "free_edges"},
                {"edges of three or more triangles", n.nonmanifold_edges.count, "nonmanifold_edges"}};
    if (const auto& q = n.quality; q)
        j.qualities.push_back({"triangles", "quality", n.triangles, q->min, q->mean, q->max, {}, q->histogram});
}

void judge_facets(judgement& j, const check_options& options)
{
    surface read;
    const input_file file(j.file);
    const surface_report report = inspect(j.file, file, options.stl, read);
    j.of_facets = true;
    j.format = report.survey.format == stl_format::ascii ? "text STL" : "binary STL";
    j.content = mesh_of(read);
    j.verdict_on = examine(j.content, j.by);
    j.is_clean = report.is_clean();
    j.json = json_line(report);
    take_verdict(j, verdict_line(report, terminal()));
    take_facet_counts(j, report);
    take_facet_faults(j, report);
    if (const auto& box = report.numbers.box; box) j.box = {box->min, box->max};
    j.notes = report.notes;
    j.shortest_edge = j.verdict_on.shortest_edge;
}

}  // namespace

judgement judge(const std::string& path, const check_options& options)
{
    judgement j;
    j.file = path;
    j.by = rules_in_force(options);
    try {
        if (is_told_by_facets(path, options))
            judge_facets(j, options);
        else
            judge_mesh(j, options);
    } catch (const std::exception&) {
        throw failure_of(path, std::current_exception());
    }
    return j;
}

}  // namespace tool
