#include "formats/medit_write.h"

#include <algorithm>
#include <cmath>

#include "errors.h"
#include "formats/capability.h"
#include "formats/medit_sections.h"
#include "words.h"

namespace tool {
namespace {

bool medit_holds(zeb::element_type type)
{
    return medit_section_of(type) != nullptr;
}

void line(sink& to, const char* word, std::uint64_t number)
{
    to.text(word);
    to.put('\n');
    to.integer(number);
    to.put('\n');
}

const field* references_of(const mesh& m)
{
    for (const field& f : m.point_fields)
        if (f.name == "medit:ref" && f.components == 1 &&
            std::ranges::all_of(f.values, [](double v) { return std::nearbyint(v) == v && std::fabs(v) < 1e9; }))
            return &f;
    return nullptr;
}

void write_nodes(const mesh& m, sink& to)
{
    const field* references = references_of(m);
    line(to, "\nVertices", m.pos.cols);
    for (std::uint64_t j = 0; j < m.pos.cols; ++j) {
        for (std::uint64_t i = 0; i < m.pos.rows; ++i) {
            to.real(m.pos(i, j));
            to.put(' ');
        }
        to.integer(references != nullptr ? static_cast<std::int64_t>(references->values[j]) : 0);
        to.put('\n');
    }
}

void write_block(const writable_block& b, sink& to)
{
    const unsigned int size = zeb::NODES_PER_ELEMENT[b.type];
    // Wedges are as in the library, what else is turned is as in VTK.
    const node_order convention = b.type == zeb::EL_WEDGE6 ? node_order::library : node_order::vtk;
    to.put('\n');
    line(to, std::string(medit_section_of(b.type)->keyword).c_str(), b.size());
    for_each_part(b, convention, [&](std::uint64_t first, const unsigned int* nodes, std::uint64_t n) {
        for (std::uint64_t e = first; e < first + n; ++e) {
            for (unsigned int k = 0; k < size; ++k) {
                to.integer(std::uint64_t{*nodes++} + 1);
                to.put(' ');
            }
            to.integer(b.block->group(e));
            to.put('\n');
        }
    });
}

// 1 a number, 2 a vector, 3 a symmetric tensor; 0 for what is none of these.
int kind_of(const field& f, std::uint64_t dimension)
{
    if (f.components == 1) return 1;
    if (f.components == dimension) return 2;
    return f.components == dimension * (dimension + 1) / 2 ? 3 : 0;
}

}  // namespace

void write_medit(const mesh& whole, sink& to, const write_options& options)
{
    const std::optional<mesh> rest = without_lost_nodes(whole, medit_holds, options);
    const mesh& m = rest ? *rest : whole;
    const std::vector<writable_block> blocks = writable_blocks(m, "MEDIT", medit_holds, options);
    note_group_names(m, "MEDIT", options);
    std::vector<std::string> left_out;
    for (const auto* fields : {&m.point_fields, &m.cell_fields})
        for (const field& f : *fields)
            if (&f != references_of(m)) left_out.push_back(f.name);
    if (!left_out.empty())
        options.note("a MEDIT mesh holds no fields (a .sol file does): left out " + joined(left_out));
    to.text("MeshVersionFormatted 2\n");
    line(to, "Dimension", m.pos.rows);
    write_nodes(m, to);
    for (const writable_block& b : blocks) write_block(b, to);
    to.text("\nEnd\n");
}

void write_medit_solution(const mesh& m, sink& to, const write_options& options)
{
    std::vector<const field*> fields;
    for (const field& f : m.point_fields) {
        if (kind_of(f, m.pos.rows) != 0) {
            fields.push_back(&f);
        } else {
            options.note("field " + f.name + " of " + counted(f.components, "component", "components") + " left out");
        }
    }
    if (fields.empty()) throw unwritable("the mesh has no field on its nodes that a .sol file holds");
    for (const field& f : m.cell_fields) options.note("field " + f.name + " on elements left out");
    to.text("MeshVersionFormatted 2\n");
    line(to, "Dimension", m.pos.rows);
    line(to, "\nSolAtVertices", m.pos.cols);
    to.integer(fields.size());
    for (const field* f : fields) {
        to.put(' ');
        to.integer(kind_of(*f, m.pos.rows));
    }
    to.put('\n');
    for (std::uint64_t j = 0; j < m.pos.cols; ++j) {
        for (const field* f : fields) {
            for (unsigned int k = 0; k < f->components; ++k) {
                to.real(f->values[j * f->components + k]);
                to.put(f == fields.back() && k + 1 == f->components ? '\n' : ' ');
            }
        }
    }
    to.text("\nEnd\n");
}

}  // namespace tool
