#include <nlohmann/json.hpp>

#include "check/mesh_report.h"
#include "findings/words_of_ids.h"
#include "mesh/kinds.h"

namespace tool {
namespace {

using json = nlohmann::ordered_json;

json box_object(const finite_box& box)
{
    if (box.is_empty()) return nullptr;
    return {{"min", box.min}, {"max", box.max}};
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

}  // namespace

std::string json_of(const mesh_report& report)
{
    const examination& v = report.verdict;
    json faults = json::array();
    for (const found& f : v.faults) faults.push_back(fault_object(report, f));
    const json object = {{"file", report.file},
                         {"format", report.format_name},
                         {"nodes", v.nodes},
                         {"elements", v.elements},
                         {"dimension", v.dimension},
                         {"kinds", kinds_object(v)},
                         {"parts", v.parts},
                         {"faces", v.faces},
                         {"free_faces", v.free_faces},
                         {"nonmanifold_faces", v.nonmanifold_faces},
                         {"bounding_box", box_object(v.box)},
                         {"shortest_edge", v.shortest_edge},
                         {"verdict", v.is_clean() ? "clean" : "not clean"},
                         {"problems", texts_of(report, severity::finding)},
                         {"notes", texts_of(report, severity::note)},
                         {"faults", faults},
                         {"rules", json::parse(to_json(report.by))}};
    return object.dump(-1, ' ', false, json::error_handler_t::replace) + '\n';
}

}  // namespace tool
