#include "findings/bad_elements.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "findings/face_list.h"
#include "mesh/builder.h"
#include "mesh/edit.h"

namespace tool {
namespace {

bool is_finite(const mesh& m, unsigned int node)
{
    if (node >= m.pos.cols) return false;
    const double* p = &m.pos(0, node);
    return std::all_of(p, p + m.pos.rows, [](double x) { return std::isfinite(x); });
}

// By place of the element: the first finding that it is in, fault::parts for none.
std::vector<fault> findings_of_elements(const examination& verdict)
{
    std::vector<fault> first(verdict.qualities.size(), fault::parts);
    for (const found& f : verdict.faults) {
        const fault_place place = info_of(f.which).place;
        if (f.level != severity::finding || (place != fault_place::element && place != fault_place::face)) continue;
        for (const std::uint64_t e : f.ids) first[e] = std::min(first[e], f.which);
    }
    return first;
}

std::vector<fault> findings_of_nodes(const mesh& m, const examination& verdict)
{
    std::vector<fault> first(m.pos.cols, fault::parts);
    for (const found& f : verdict.faults) {
        if (f.level != severity::finding || info_of(f.which).place != fault_place::node) continue;
        for (const std::uint64_t node : f.ids) first[node] = std::min(first[node], f.which);
    }
    return first;
}

double value_of(fault f)
{
    return static_cast<double>(f);
}

// Points of the nodes at fault stand before the elements, as their kind comes first. A mesh may have points already.
void add_points(const mesh& m, const examination& verdict, mesh& result, std::uint64_t& left_out)
{
    const std::vector<fault> first = findings_of_nodes(m, verdict);
    mesh_builder builder;
    std::vector<double> faults;
    std::vector<double> numbers;
    const field node_numbers = node_number_field(m);
    for (unsigned int node = 0; node < first.size(); ++node) {
        if (first[node] == fault::parts) continue;
        if (!is_finite(m, node)) {
            ++left_out;
            continue;
        }
        *builder.add(zeb::EL_NODE, 0, faults.size() + 1) = node;
        faults.push_back(value_of(first[node]));
        numbers.push_back(node_numbers.values[node]);
    }
    if (faults.empty()) return;
    std::vector<element_block> points = builder.take();
    if (!result.blocks.empty() && result.blocks.front().type == zeb::EL_NODE) {  // keep to one block of a kind
        std::vector<bool> keep(result.element_count(), true);
        std::fill_n(keep.begin(), result.blocks.front().size(), false);
        keep_elements(result, keep);
    }
    result.blocks.insert(result.blocks.begin(), std::move(points.front()));
    for (field& f : result.cell_fields) {
        const double none = f.kind == number_kind::integer ? 0 : std::numeric_limits<double>::quiet_NaN();
        const std::vector<double> values = f.name == "fault" ? faults
                                           : f.name == "number"
                                               ? numbers
                                               : std::vector<double>(faults.size() * f.components, none);
        f.values.insert(f.values.begin(), values.begin(), values.end());
    }
}

}  // namespace

mesh bad_elements(const mesh& m, const examination& verdict, std::uint64_t& left_out)
{
    left_out = 0;
    mesh result = m;
    result.faults.clear();
    result.facets.reset();
    const std::vector<fault> first = findings_of_elements(verdict);
    field faults{"fault", 1, number_kind::integer, {}};
    for (const fault f : first) faults.values.push_back(value_of(f));
    set_cell_field(result, std::move(faults));
    set_cell_field(result, {"quality", 1, number_kind::real64, verdict.qualities});
    set_cell_field(result, element_number_field(m));

    std::vector<bool> keep(first.size(), false);
    std::uint64_t place = 0;
    for (const element_block& block : m.blocks) {
        for (std::uint64_t e = 0; e < block.size(); ++e, ++place) {
            if (first[place] == fault::parts) continue;
            const unsigned int* nodes = &block.connect(0, e);
            keep[place] =
                std::all_of(nodes, nodes + block.connect.rows, [&](unsigned int n) { return is_finite(m, n); });
            left_out += !keep[place];
        }
    }
    keep_elements(result, keep);
    add_points(m, verdict, result, left_out);
    keep_nodes(result, used_nodes(result));
    number_anew(result);
    return result;
}

}  // namespace tool
