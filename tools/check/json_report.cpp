#include <nlohmann/json.hpp>

#include "check/report.h"
#include "findings/words_of_ids.h"
#include "mesh/kinds.h"

namespace tool {
namespace {

using json = nlohmann::ordered_json;

// Bytes of a file name that are no UTF-8 become the replacement character; NaN and infinity become null.
std::string one_line(const json& object)
{
    return object.dump(-1, ' ', false, json::error_handler_t::replace) + '\n';
}

json box_object(const examination& v)
{
    if (v.box.is_empty()) return nullptr;
    return {{"min", v.box.min}, {"max", v.box.max}};
}

json kinds_object(const examination& verdict)
{
    json object = json::object();
    for (const kind_summary& kind : verdict.kinds) {
        json& entry = object[info_of(kind.type).name] = {{"count", kind.count}};
        if (info_of(kind.type).dimension < 2) continue;
        entry["quality"] = {{"min", kind.min},           {"mean", kind.mean}, {"max", kind.max},
                            {"inverted", kind.inverted}, {"bad", kind.bad},   {"poor", kind.poor},
                            {"fair", kind.fair},         {"good", kind.good}, {"histogram", kind.histogram}};
    }
    return object;
}

json ids_object(const mesh_report& report, const found& f)
{
    constexpr std::size_t first_ids = 10;
    json object = json::object();
    for (const numbered_items& items : items_of(report.content, f, report.all_ids ? f.ids.size() : first_ids))
        object[items.kind] = items.numbers;
    return object;
}

json fault_object(const mesh_report& report, const found& f)
{
    return {{"code", info_of(f.which).code},
            {"level", f.level == severity::finding ? "finding" : "note"},
            {"count", f.count},
            {"of", f.of},
            {"text", f.text},
            {"first_at", f.first_at ? json(*f.first_at) : json()},
            {"ids", ids_object(report, f)}};
}

json texts_of(const mesh_report& report, severity level)
{
    json texts = json::array();
    for (const found& f : report.verdict.faults)
        if (f.level == level) texts.push_back(f.text);
    if (level != severity::note) return texts;
    for (const lost_edges& lost : report.verdict.lost) texts.push_back(words_of(lost));
    for (const std::string& note : report.content.notes) texts.push_back(note);
    return texts;
}

json fields_of_mesh(const mesh_report& report)
{
    const examination& v = report.verdict;
    json faults = json::array();
    for (const found& f : v.faults) faults.push_back(fault_object(report, f));
    return {{"file", report.file},
            {"format", report.format_name},
            {"nodes", v.nodes},
            {"elements", v.elements},
            {"dimension", v.dimension},
            {"kinds", kinds_object(v)},
            {"parts", v.parts},
            {"faces", v.faces},
            {"free_faces", v.free_faces},
            {"nonmanifold_faces", v.nonmanifold_faces},
            {"bounding_box", box_object(v)},
            {"shortest_edge", v.shortest_edge},
            {"verdict", v.is_clean() ? "clean" : "not clean"},
            {"problems", texts_of(report, severity::finding)},
            {"notes", texts_of(report, severity::note)},
            {"faults", faults},
            {"rules", json::parse(to_json(report.by))}};
}

// What is said of an STL file first, in this order. Coordinates that are not finite are in its box, and seen as null.
json fields_of_facets(const mesh_report& report, const json& of_mesh)
{
    const examination& v = report.verdict;
    const facet_counts& facets = *report.content.facets;
    const kind_summary triangles = v.kinds.empty() ? kind_summary{} : v.kinds.front();
    json box;
    if (triangles.count != 0) box = {{"min", v.least}, {"max", v.greatest}};
    json object = {{"file", report.file},
                   {"format", report.format_name},
                   {"facets_in_file", facets.in_file},
                   {"facets_read", facets.read},
                   {"triangles", triangles.count},
                   {"nodes", v.nodes},
                   {"merged_nodes", 3 * facets.read - v.nodes},
                   {"degenerate", v.collapsed},
                   {"duplicates", v.duplicates},
                   {"free_edges", v.free_faces},
                   {"nonmanifold_edges", v.nonmanifold_faces},
                   {"parts", v.parts},
                   {"bounding_box", box},
                   {"quality",
                    {{"min", triangles.min},
                     {"mean", triangles.mean},
                     {"max", triangles.max},
                     {"histogram", triangles.histogram}}}};
    for (const auto& [name, value] : of_mesh.items())
        if (name == "verdict" || name == "problems" || name == "notes") object[name] = value;
    for (const auto& [name, value] : of_mesh.items())
        if (!object.contains(name)) object[name] = value;
    return object;
}

}  // namespace

std::string json_of(const mesh_report& report)
{
    const json of_mesh = fields_of_mesh(report);
    return one_line(report.content.facets ? fields_of_facets(report, of_mesh) : of_mesh);
}

std::string json_without_report(const std::string& file, const std::string& verdict, const std::string& reason)
{
    json object = {{"file", file}};
    for (const char* field :
         {"format", "facets_in_file", "facets_read", "triangles", "nodes", "merged_nodes", "degenerate", "duplicates",
          "free_edges", "nonmanifold_edges", "parts", "bounding_box", "quality"})
        object[field] = nullptr;
    object["verdict"] = verdict;
    object["problems"] = json::array({reason});
    object["notes"] = json::array();
    return one_line(object);
}

}  // namespace tool
