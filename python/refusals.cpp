#include "refusals.h"

#include <algorithm>
#include <utility>

namespace binding {
namespace {

constexpr std::string_view wrong_elements = "its indices or the number of its columns do not fit the type";
constexpr std::string_view not_2_or_3 = "has neither 2 nor 3 columns";
constexpr std::string_view beyond_pos = "names a node that is no row of pos";
constexpr std::string_view one_per_connect = "must be as many as there are connectivities";
constexpr std::string_view not_written = "the file cannot be opened or written";
constexpr std::string_view bad_tolerance = "is negative or NaN";

}  // namespace

const std::vector<refusal>& refusals()
{
    static const std::vector<refusal> table{
        {"get_neighbors", -1, "connect", wrong_elements},
        {"get_neighbors", -2, "type", "has no neighbours"},
        {"get_boundaries", -1, "connect", wrong_elements},
        {"get_boundaries", -2, "neighbors",
         "its shape is not that of a neighbours table of connect, or the type has none"},
        {"get_ancestors", -1, "connect", "holds a missing node, and no ancestors are given"},
        {"copy_edges", -1, "connect", wrong_elements},
        {"copy_edges", -3, "edges", "has other than 2 columns"},
        {"copy_edges/range", -1, "connect", wrong_elements},
        {"copy_edges/range", -3, "type", one_per_connect},
        {"copy_edges/range", -4, "edges", "has other than 2 columns"},

        {"NodeDetector", -1, "pos", not_2_or_3},
        {"NodeDetector", -2, "nodes", beyond_pos},
        {"NodeDetector/connect", -1, "pos", not_2_or_3},
        {"NodeDetector/connect", -2, "connect", beyond_pos},
        {"merge/nodes", -1, "pos", not_2_or_3},
        {"merge/nodes", -2, "nodes", beyond_pos},
        {"merge/nodes", -4, "tolerance", bad_tolerance},
        {"merge/connect", -1, "pos", not_2_or_3},
        {"merge/connect", -2, "connect", beyond_pos},
        {"merge/connect", -5, "tolerance", bad_tolerance},
        {"merge/connect", -6, "mode", "is not 0, 1 or 2"},
        {"merge/pos", -1, "pos", not_2_or_3},
        {"merge/pos", -3, "tolerance", bad_tolerance},

        {"get_IDs", -2, "connect2", "has other columns than connect1"},
        {"append", -1, "A", "has other columns than B"},
        {"append", -3, "cols", "names a row that B does not have"},
        {"append/field", -1, "A", "has other columns than B"},
        {"append/field", -3, "B", "has other columns than A, or cols names a row that it does not have"},
        {"simplify", -2, "connect", beyond_pos},
        {"copy_mesh", -3, "connect", beyond_pos},

        {"shape_qualities", -2, "connect", wrong_elements},
        {"shape_qualities", -3, "type", "has no shape measure"},
        {"shape_qualities", -4, "type", one_per_connect},
        {"edge_lengths", -2, "edges", "has other than 2 columns, or names a node that is no row of pos"},
        {"edge_qualities", -2, "connect", wrong_elements},
        {"edge_qualities", -4, "type", one_per_connect},

        {"overwrite_invalid_metrics", -1, "metrics", "has neither 3 nor 6 columns"},
        {"overwrite_invalid_metrics", -2, "defaults", "has other columns than metrics"},
        {"metrics_aniso3d_to_aniso2d", -1, "M3", "has other than 6 columns"},
        {"metrics_aniso3d_to_aniso2d", -2, "bases", "has other than 6 columns, or other rows than M3"},
        {"metrics_iso_to_aniso2d", -2, "bases", "has other than 6 columns, or other rows than there are sizes"},

        {"inc_bounding_box", -1, "pos", not_2_or_3},
        {"inc_bounding_box", -2, "nodes", beyond_pos},
        {"inc_bounding_box/connect", -1, "pos", not_2_or_3},
        {"inc_bounding_box/connect", -2, "connect", beyond_pos},
        {"clip", -2, "connect", beyond_pos},
        {"clip", -4, "N", "is shorter than 1e-12"},
        {"clip", -5, "to", "has other columns than connect"},

        {"vtk_convert", -1, "connect", wrong_elements},
        {"vtk_convert", -2, "type", "has no cell in this format"},
        {"vtk_output/cells", -1, "file", not_written},
        {"vtk_output/cells", -2, "pos", not_2_or_3},
        {"vtk_output", -1, "file", not_written},
        {"vtk_output", -2, "type", "has no cell in this format"},
        {"vtk_output/pos", -2, "pos", not_2_or_3},
        {"vtk_output", -3, "connect", wrong_elements},
        {"vtk_output", -5, "type", one_per_connect},
        {"medit_output", -1, "filename", not_written},
        {"medit_output", -2, "pos", "has other than 1 to 3 columns"},
        {"medit_output", -3, "connect", "its columns, or the places of missing nodes, do not fit the type"},
        {"medit_output", -5, "type", one_per_connect},
        {"medit_output/refs", -1, "filename", not_written},
        {"medit_output/refs", -2, "pos", "has other than 1 to 3 columns"},
        {"medit_output/refs", -3, "connect", "its columns, or the places of missing nodes, do not fit the type"},
        {"medit_output/refs", -5, "refs", "must be as many as there are elements"},
        {"medit_tensor", -1, "filename", not_written},
        {"medit_tensor", -2, "M", "has neither 3 nor 6 columns"},
        {"ensight_output", -1, "filename", not_written},
        {"ensight_output", -2, "pos", "has other than 1 to 3 columns"},
        {"ensight_output", -3, "connect", "its columns, or the places of missing nodes, do not fit the type"},
        {"ensight_output", -5, "type", one_per_connect},
        {"STL_output", -1, "filename", not_written},
        {"STL_output", -2, "pos", not_2_or_3},
        {"STL_output", -3, "connect", "has other than 3 columns, or names a node that is no row of pos"},
        {"STL_input", -1, "filename", "the file cannot be opened, or has no first line or no complete header"},
        {"WavefrontOBJ_output", -1, "filename", not_written},
        {"WavefrontOBJ_output", -2, "pos", not_2_or_3},
        {"WavefrontOBJ_output", -3, "normals", "is neither empty nor 3 columns and a row for each node"},
        {"WavefrontOBJ_output", -4, "uvs", "is neither empty nor 2 columns and a row for each node"},
        {"WavefrontOBJ_output", -5, "tria_connect", "has other than 3 columns, or a missing node"},
        {"WavefrontOBJ_output", -6, "quad_connect", "has other than 4 columns, or a missing node"},
        {"WavefrontOBJ_input", -1, "filename", "the file cannot be opened, is malformed, or memory ran out"},
    };
    return table;
}

const refusal* find_refusal(std::string_view form, int code)
{
    const auto& table = refusals();
    const auto found =
        std::find_if(table.begin(), table.end(), [&](const refusal& r) { return r.form == form && r.code == code; });
    return found != table.end() ? &*found : nullptr;
}

refused::refused(std::string_view form, std::optional<int> result, std::string_view name, std::string why)
    : function(form.substr(0, form.find('/'))), code(result), argument(name), reason(std::move(why))
{
}

}  // namespace binding
