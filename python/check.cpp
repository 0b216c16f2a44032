// What is wrong in a mesh: the findings of the program, asked from Python.
#include <algorithm>
#include <tuple>

#include "arrays.h"
#include "errors.h"
#include "findings/examine.h"
#include "findings/face_list.h"
#include "formats/obj_read.h"
#include "formats/readable.h"
#include "formats/stl_read.h"
#include "mesh/kinds.h"
#include "module.h"

namespace binding {
namespace {

tool::rules rules_of(const call& c, py::handle profile, py::handle json)
{
    tool::rules base;
    try {
        base = tool::rules_of_profile(profile.is_none() ? "default" : profile.cast<std::string>());
    } catch (const tool::wrong_usage& wrong) {
        c.refuse("profile", wrong.what());
    }
    try {
        if (json.is_none()) return base;
        return tool::rules_from_json(json.cast<std::string>(), base, !profile.is_none());
    } catch (const tool::wrong_usage& wrong) {
        constexpr std::string_view known = "the rules";  // the argument is named anyway
        std::string reason = wrong.what();
        if (reason.starts_with(known)) reason.erase(0, reason.find_first_not_of(": ", known.size()));
        c.refuse("rules", reason);
    }
}

// Blocks of the mesh by ascending kinds; empty ones are left out.
void take_cells(call& c, py::handle types, py::handle cells, tool::mesh& m)
{
    const auto kinds = c.types(types, "cells");
    const py::list arrays(py::reinterpret_borrow<py::object>(cells));
    if (py::len(arrays) != kinds.size) c.refuse("cells", "must be as many as there are types");
    std::uint64_t place = 0;
    for (const tool::kind_info& kind : tool::all_kinds())
        for (std::uint64_t i = 0; i < kinds.size; ++i) {
            if (kinds[i] != kind.type) continue;
            const std::string name = "cells[" + std::to_string(kinds[i]) + "]";
            tool::element_block block;
            block.type = kind.type;
            block.connect = c.matrix<index>(arrays[i], name);
            if (block.connect.cols == 0) continue;
            if (block.connect.rows != kind.nodes)
                c.refuse(name, "has " + std::to_string(block.connect.rows) + " columns instead of " +
                                   std::to_string(kind.nodes));
            block.numbers = tool::numbering(place, block.connect.cols);
            place += block.connect.cols;
            m.blocks.push_back(std::move(block));
        }
    if (place >= 0xFFFFFFFFu) c.refuse("cells", "are more than can be numbered");
    for (const int kind : kinds)
        if (zeb::NODES_PER_ELEMENT[kind] == 0) c.refuse("cells", "of a mixed kind are not judged");
}

tool::mesh mesh_of(call& c, py::handle pos, py::handle types, py::handle cells, py::handle facets)
{
    tool::mesh m;
    m.pos = c.matrix<double>(pos, "points");
    if (m.pos.cols != 0 && m.pos.rows != 2 && m.pos.rows != 3) c.refuse("points", "has neither 2 nor 3 columns");
    if (m.pos.empty()) m.pos.resize(3, 0);
    m.node_numbers = tool::numbering(0, m.pos.cols);
    take_cells(c, types, cells, m);
    if (facets.is_none()) return m;
    const auto [in_file, read, kept, why] =
        facets.cast<std::tuple<std::uint64_t, std::uint64_t, std::uint64_t, std::string>>();
    m.facets = tool::facet_counts{false, in_file, read, read - kept, why};
    if (in_file != read) m.faults.push_back(tool::unread_facets(*m.facets));
    return m;
}

py::array_t<std::int64_t> rows_of(const std::uint64_t* first, const std::uint64_t* last, std::uint64_t minus)
{
    py::array_t<std::int64_t> rows(detail::count(static_cast<std::uint64_t>(last - first)));
    std::transform(first, last, rows.mutable_data(),
                   [minus](std::uint64_t i) { return static_cast<std::int64_t>(i - minus); });
    return rows;
}

// Rows of each kind, of places in all blocks.
py::dict elements_of(const tool::mesh& m, const std::vector<std::uint64_t>& places)
{
    py::dict elements;
    const tool::element_places all(m);
    for (std::size_t b = 0; b < m.blocks.size(); ++b) {
        const std::uint64_t first = all.first(b);
        const auto from = std::lower_bound(places.data(), places.data() + places.size(), first);
        const auto to = std::lower_bound(from, places.data() + places.size(), first + m.blocks[b].size());
        if (from != to) elements[py::int_(int{m.blocks[b].type})] = rows_of(from, to, first);
    }
    return elements;
}

py::dict fault_of(const tool::mesh& m, const tool::found& f)
{
    const auto place = tool::info_of(f.which).place;
    const bool of_nodes = place == tool::fault_place::node;
    py::dict fault;
    fault["code"] = tool::info_of(f.which).code;
    fault["level"] = f.level == tool::severity::finding ? "finding" : "note";
    fault["count"] = f.count;
    fault["of"] = f.of;
    fault["text"] = f.text;
    fault["first_at"] = py::none();
    if (const auto& at = f.first_at; at) fault["first_at"] = py::make_tuple((*at)[0], (*at)[1], (*at)[2]);
    fault["nodes"] = of_nodes ? rows_of(f.ids.data(), f.ids.data() + f.ids.size(), 0) : rows_of(nullptr, nullptr, 0);
    fault["elements"] = of_nodes ? py::dict() : elements_of(m, f.ids);
    return fault;
}

py::dict summary_of(const tool::kind_summary& kind)
{
    py::dict summary;
    summary["count"] = kind.count;
    if (tool::info_of(kind.type).dimension < 2) return summary;
    py::dict quality;
    quality["min"] = kind.min;
    quality["mean"] = kind.mean;
    quality["max"] = kind.max;
    quality["inverted"] = kind.inverted;
    quality["bad"] = kind.bad;
    quality["poor"] = kind.poor;
    quality["fair"] = kind.fair;
    quality["good"] = kind.good;
    py::list bins;
    for (const std::uint64_t n : kind.histogram) bins.append(n);
    quality["histogram"] = bins;
    summary["quality"] = quality;
    return summary;
}

py::object box_of(const tool::finite_box& box)
{
    if (box.is_empty()) return py::none();
    return py::make_tuple(array_of<3>(box.min.data()), array_of<3>(box.max.data()));
}

py::dict verdict_of(const tool::mesh& m, const tool::examination& v, const tool::rules& by)
{
    py::dict result;
    result["nodes"] = v.nodes;
    result["elements"] = v.elements;
    result["dimension"] = v.dimension;
    result["parts"] = v.parts;
    result["faces"] = v.faces;
    result["free_faces"] = v.free_faces;
    result["nonmanifold_faces"] = v.nonmanifold_faces;
    result["box"] = box_of(v.box);
    result["shortest_edge"] = v.shortest_edge;
    result["is_clean"] = v.is_clean();
    result["rules"] = tool::to_json(by);
    py::dict kinds, qualities;
    for (const tool::kind_summary& kind : v.kinds) kinds[py::int_(int{kind.type})] = summary_of(kind);
    const tool::element_places all(m);
    for (std::size_t b = 0; b < m.blocks.size(); ++b)
        qualities[py::int_(int{m.blocks[b].type})] =
            py::array_t<double>(detail::count(m.blocks[b].size()), v.qualities.data() + all.first(b));
    py::list faults;
    for (const tool::found& f : v.faults) faults.append(fault_of(m, f));
    result["kinds"] = kinds;
    result["qualities"] = qualities;
    result["faults"] = faults;
    return result;
}

py::dict check(py::handle pos, py::handle types, py::handle cells, py::handle profile, py::handle rules,
               py::handle facets)
{
    call c("check");
    const tool::rules by = rules_of(c, profile, rules);
    const tool::mesh m = mesh_of(c, pos, types, cells, facets);
    const tool::examination verdict = c.run([&] { return tool::examine(m, by); });
    return verdict_of(m, verdict, by);
}

template <class Read>
tool::mesh mesh_of_file(call& c, const std::string& file, Read read)
{
    try {
        return c.run([&] { return read(tool::source::open(file)); });
    } catch (const tool::unreadable& problem) {
        c.refuse("file", problem.what());
    }
}

// A Wavefront file as the program reads it: nodes, and the elements of each kind.
py::tuple read_obj(const std::string& file)
{
    call c("read");
    tool::mesh m = mesh_of_file(c, file, [](const tool::source& from) {
        if (from.size() == 0) throw tool::unreadable("is empty");
        const std::string head = from.head();
        tool::refuse_packed(tool::without_mark(head));
        return tool::read_obj(from);
    });
    py::dict cells;
    for (tool::element_block& block : m.blocks) {
        const std::uint64_t columns = block.connect.rows;
        cells[py::int_(int{block.type})] = handed_over(std::move(block.connect), columns);
    }
    return py::make_tuple(handed_over(std::move(m.pos), 3), cells);
}

// An STL file as the program reads it: nodes, triangles without collapsed ones, facets of the file and those read, why
// not all, and whether it is a text.
py::tuple read_stl(const std::string& file)
{
    call c("read");
    tool::mesh m = mesh_of_file(c, file, tool::read_stl);
    dense2D<double> points;
    points.swap(m.pos);
    dense2D<index> triangles;
    if (!m.blocks.empty()) triangles.swap(m.blocks.front().connect);
    dense1D<index> new_ids;
    c.translate(lib::remove_degenerated(triangles, new_ids));
    c.translate(lib::simplify(points, triangles));
    return py::make_tuple(handed_over(std::move(points), 3), handed_over(std::move(triangles), 3), m.facets->in_file,
                          m.facets->read, m.facets->why_not_read, m.facets->ascii);
}

py::list all_faults()
{
    py::list codes;
    for (const tool::fault_info& f : tool::all_faults()) codes.append(f.code);
    return codes;
}

py::dict kind_words()
{
    py::dict words;
    for (const tool::kind_info& kind : tool::all_kinds())
        words[py::int_(int{kind.type})] = py::make_tuple(kind.name, kind.one, kind.many);
    return words;
}

}  // namespace

void define_check(py::module_& m)
{
    m.def("check", &check);
    m.def("read_stl", [](const py::bytes& file) { return read_stl(file); });
    m.def("read_obj", [](const py::bytes& file) { return read_obj(file); });
    m.def("fault_codes", &all_faults);
    m.def("kind_words", &kind_words);
}

}  // namespace binding
