#include "check/surface_json_report.h"

#include <nlohmann/json.hpp>

namespace tool {
namespace {

using json = nlohmann::ordered_json;

// Bytes of a file name that are no UTF-8 become the replacement character; NaN and infinity become null.
std::string one_line(const json& object)
{
    return object.dump(-1, ' ', false, json::error_handler_t::replace) + '\n';
}

json box_object(const std::optional<bounding_box>& box)
{
    if (!box) return nullptr;
    return {{"min", box->min}, {"max", box->max}};
}

json quality_object(const std::optional<quality_summary>& quality)
{
    constexpr std::array<std::uint64_t, quality_summary::bins> none = {};
    if (!quality) return {{"min", nullptr}, {"mean", nullptr}, {"max", nullptr}, {"histogram", none}};
    return {{"min", quality->min}, {"mean", quality->mean}, {"max", quality->max}, {"histogram", quality->histogram}};
}

}  // namespace

std::string json_line(const surface_report& report)
{
    const surface_numbers& numbers = report.numbers;
    return one_line({{"file", report.file},
                     {"format", name_of(report.survey.format)},
                     {"facets_in_file", report.survey.facets_in_file},
                     {"facets_read", report.survey.facets_read},
                     {"triangles", numbers.triangles},
                     {"nodes", numbers.nodes},
                     {"merged_nodes", report.merged_nodes},
                     {"degenerate", report.degenerate},
                     {"duplicates", numbers.duplicates.count},
                     {"free_edges", numbers.free_edges.count},
                     {"nonmanifold_edges", numbers.nonmanifold_edges.count},
                     {"parts", numbers.parts},
                     {"bounding_box", box_object(numbers.box)},
                     {"quality", quality_object(numbers.quality)},
                     {"verdict", report.is_clean() ? "clean" : "not clean"},
                     {"problems", report.problems},
                     {"notes", report.notes}});
}

std::string json_line_without_report(const std::string& file, const std::string& verdict, const std::string& reason)
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
