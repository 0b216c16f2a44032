#include "formats/vtk_cells.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "errors.h"
#include "formats/node_orders.h"
#include "mesh/builder.h"
#include "words.h"

namespace tool {
namespace {

using namespace zeb;

struct cell_kind {
    unsigned int code;
    element_type type;
};

constexpr std::array<cell_kind, 16> kinds{{{1, EL_NODE},
                                           {3, EL_EDGE2},
                                           {5, EL_TRIA3},
                                           {9, EL_QUAD4},
                                           {10, EL_TETRA4},
                                           {12, EL_HEXA8},
                                           {13, EL_WEDGE6},
                                           {14, EL_PYRAMID5},
                                           {21, EL_EDGE3},
                                           {22, EL_TRIA6},
                                           {23, EL_QUAD8},
                                           {24, EL_TETRA10},
                                           {25, EL_HEXA20},
                                           {28, EL_QUAD9},
                                           {29, EL_HEXA27},
                                           {32, EL_WEDGE18}}};

enum : unsigned int { empty_cell = 0, poly_vertex = 2, poly_line = 4, strip = 6, polygon = 7, pixel = 8, voxel = 11 };

// Names of cells that a mesh cannot hold.
const char* foreign_name(unsigned int code)
{
    switch (code) {
        case 15:
            return " (pentagonal prism)";
        case 16:
            return " (hexagonal prism)";
        case 26:
            return " (wedge of 15 nodes)";
        case 27:
            return " (pyramid of 13 nodes)";
        case 42:
            return " (polyhedron)";
        default:
            return code >= 68 && code <= 81 ? " (of any order)" : "";
    }
}

const std::array<element_type, 256>& types_by_code()
{
    static const auto table = [] {
        std::array<element_type, 256> made;
        made.fill(EL_NONE);
        for (const cell_kind& kind : kinds) made[kind.code] = kind.type;
        return made;
    }();
    return table;
}

// Quadratic kind of a cell of corners with so many further nodes in the points behind it.
element_type rejoined_type(element_type corners, unsigned int further)
{
    for (int type = EL_EDGE2; type <= EL_HEXA27; ++type)
        if (type != corners && VERTICES_PER_ELEMENT[type] == VERTICES_PER_ELEMENT[corners] &&
            NODES_PER_ELEMENT[type] == NODES_PER_ELEMENT[corners] + further)
            return static_cast<element_type>(type);
    return EL_NONE;
}

class assembler {
public:
    assembler(vtk_cells& cells, vtk_dialect dialect)
        : cells_(cells), dialect_(dialect), nodes_(cells.nodes.size() != 0 ? cells.nodes.column(0) : nullptr)
    {
    }

    void run(mesh& result)
    {
        if (const element_type type = common_type(); type != EL_NONE) {
            builder_.adopt(type, 0, cells_.nodes.take());
        } else {
            reserve();
            take_all();
        }
        result.blocks = builder_.take();
        for (element_block& block : result.blocks) reorder(block);
        tell(result);
    }

private:
    // The type of all cells, where the list of their nodes can be taken as it is.
    element_type common_type() const
    {
        if (cells_.types.empty() || dialect_ == vtk_dialect::library) return EL_NONE;
        const element_type type = types_by_code()[cells_.types[0]];
        const std::uint8_t code = cells_.types[0];
        const unsigned int size = NODES_PER_ELEMENT[type];
        const bool common = std::ranges::all_of(cells_.types, [=](std::uint8_t t) { return t == code; }) &&
                            std::ranges::all_of(cells_.sizes, [=](unsigned int s) { return s == size; });
        return common ? type : EL_NONE;
    }

    void take_all()
    {
        const std::uint64_t cells = cells_.sizes.size();
        for (cell_ = 0; cell_ < cells; ++cell_) {
            const unsigned int size = cells_.sizes[cell_];
            const element_type type = types_by_code()[cells_.types[cell_]];
            if (type == EL_NONE) {
                take_other(cells_.types[cell_], nodes_, size);
                nodes_ += size;
            } else if (dialect_ != vtk_dialect::library) {
                take_run(type);
            } else if (!take_rejoined(type, size)) {
                take_one(type, size);
            }
        }
    }

    void reserve()
    {
        std::array<std::uint64_t, 256> count{};
        for (const std::uint8_t code : cells_.types) ++count[code];
        for (const cell_kind& kind : kinds)
            if (count[kind.code] != 0) builder_.reserve(kind.type, count[kind.code]);
    }

    void require(bool fits, unsigned int size) const
    {
        if (fits) return;
        cells_.fail(cell_, "cell " + std::to_string(cell_) + " of type " + std::to_string(cells_.types[cell_]) +
                               " has " + counted(size, "node", "nodes"));
    }

    void take_one(element_type type, unsigned int size)
    {
        require(size == NODES_PER_ELEMENT[type], size);
        std::copy_n(nodes_, size, builder_.add(type, 0, cell_));
        nodes_ += size;
    }

    // The present cell and those of its type that follow it.
    void take_run(element_type type)
    {
        const std::uint8_t code = cells_.types[cell_];
        const std::uint64_t first = cell_;
        const std::uint64_t cells = cells_.sizes.size();
        for (; cell_ < cells && cells_.types[cell_] == code; ++cell_)
            require(cells_.sizes[cell_] == NODES_PER_ELEMENT[type], cells_.sizes[cell_]);
        const std::uint64_t count = cell_-- - first;
        const std::uint64_t numbers = count * NODES_PER_ELEMENT[type];
        std::copy_n(nodes_, numbers, builder_.add_without_group(type, first, count));
        nodes_ += numbers;
    }

    bool take_rejoined(element_type type, unsigned int size)
    {
        if (cell_ + 1 == cells_.sizes.size() || cells_.types[cell_ + 1] != poly_vertex) return false;
        const unsigned int further = cells_.sizes[cell_ + 1];
        const element_type whole = rejoined_type(type, further);
        if (whole == EL_NONE || size != NODES_PER_ELEMENT[type]) return false;
        std::copy_n(nodes_, size + further, builder_.add(whole, 0, cell_));
        nodes_ += size + further;
        ++cell_;
        return true;
    }

    // The library's writer turns tetrahedra by exchanging their last two corners, and nothing else.
    void reorder(element_block& block) const
    {
        if (dialect_ != vtk_dialect::library) {
            const node_order order = dialect_ == vtk_dialect::gmsh ? node_order::vtk_by_gmsh : node_order::vtk;
            to_library_order(order, block.type, &block.connect(0, 0), block.size());
        } else if (block.type == EL_TETRA4 || block.type == EL_TETRA10) {
            for (std::uint64_t e = 0; e < block.size(); ++e) std::swap(block.connect(2, e), block.connect(3, e));
        }
    }

    void add(element_type type, std::initializer_list<unsigned int> nodes)
    {
        std::ranges::copy(nodes, builder_.add(type, 0, cell_));
    }

    void take_other(unsigned int code, const unsigned int* n, unsigned int size)
    {
        switch (code) {
            case empty_cell:
                return;
            case poly_vertex:
                for (unsigned int i = 0; i < size; ++i) add(EL_NODE, {n[i]});
                return;
            case poly_line:
                require(size >= 2, size);
                for (unsigned int i = 1; i < size; ++i) add(EL_EDGE2, {n[i - 1], n[i]});
                return;
            case strip:
                return take_strip(n, size);
            case polygon:
                return take_polygon(n, size);
            case pixel:
                require(size == 4, size);
                return add(EL_QUAD4, {n[0], n[1], n[3], n[2]});
            case voxel:
                require(size == 8, size);
                return add(EL_HEXA8, {n[0], n[1], n[3], n[2], n[4], n[5], n[7], n[6]});
            default:
                cells_.fail(cell_, "cell " + std::to_string(cell_) + " is of type " + std::to_string(code) +
                                       foreign_name(code) + ", which is not supported");
        }
    }

    void take_strip(const unsigned int* n, unsigned int size)
    {
        require(size >= 3, size);
        ++strips_;
        for (unsigned int i = 2; i < size; ++i) add(EL_TRIA3, {n[i - 2 + i % 2], n[i - 1 - i % 2], n[i]});
    }

    void take_polygon(const unsigned int* n, unsigned int size)
    {
        require(size >= 3, size);
        if (size == 4) return add(EL_QUAD4, {n[0], n[1], n[2], n[3]});
        polygons_ += size > 4;
        for (unsigned int i = 2; i < size; ++i) add(EL_TRIA3, {n[0], n[i - 1], n[i]});
    }

    void tell(mesh& result) const
    {
        if (polygons_ != 0)
            result.notes.push_back(counted(polygons_, "polygon", "polygons") +
                                   " of five and more corners cut into triangles");
        if (strips_ != 0) result.notes.push_back(counted(strips_, "strip", "strips") + " cut into triangles");
    }

    vtk_cells& cells_;
    vtk_dialect dialect_;
    mesh_builder builder_;
    const unsigned int* nodes_;  // of the present cell
    std::uint64_t cell_ = 0;
    std::uint64_t polygons_ = 0;
    std::uint64_t strips_ = 0;
};

bool holds_groups(const field& f)
{
    constexpr double limit = 2147483647.0;
    return f.components == 1 && (f.name == "group" || f.name == "gmsh:physical" || f.name == "medit:ref") &&
           std::ranges::all_of(f.values, [](double v) { return std::floor(v) == v && std::fabs(v) <= limit; });
}

}  // namespace

unsigned int vtk_code_of(element_type type)
{
    const auto* found = std::ranges::find(kinds, type, &cell_kind::type);
    return found == kinds.end() ? 0 : found->code;
}

void vtk_cells::fail(std::uint64_t cell, const std::string& reason) const
{
    std::string place;
    for (const list& l : lists)
        if (l.first <= cell) place = l.place + ": ";
    throw unreadable(place + reason);
}

void vtk_cells::read_list(number_stream& in, std::uint64_t cells, std::uint64_t numbers, const cursor& where)
{
    if (cells > numbers)
        where.fail(std::to_string(cells) + " cells in a list of " + std::to_string(numbers) + " numbers");
    sizes.reserve(sizes.size() + cells);
    unsigned int* to = nodes.append(numbers - cells);
    std::uint64_t room = numbers - cells;
    const std::uint64_t wanted = sizes.size() + cells;
    std::uint64_t missing = 0;  // nodes of the present cell
    in.for_each_block(numbers, [&](const std::int64_t* block, std::uint64_t n) {
        for (std::uint64_t i = 0; i < n;) {
            if (missing == 0) {
                const std::int64_t size = block[i++];
                if (size < 0 || static_cast<std::uint64_t>(size) > room || sizes.size() == wanted)
                    where.fail("the list of cells does not add up");
                missing = static_cast<std::uint64_t>(size);
                room -= missing;
                sizes.push_back(static_cast<unsigned int>(size));
            }
            const std::uint64_t part = std::min(missing, n - i);
            for (const std::int64_t* end = block + i + part; block + i != end; ++i) *to++ = node_index(block[i], 0);
            missing -= part;
        }
    });
    if (missing != 0 || room != 0 || sizes.size() != wanted) where.fail("the list of cells does not add up");
}

void vtk_cells::read_offsets(number_stream& in, std::uint64_t count, bool leading_zero, const cursor& where)
{
    sizes.reserve(sizes.size() + count);
    std::int64_t last = 0;
    bool first = leading_zero;
    in.for_each_block(count, [&](const std::int64_t* block, std::uint64_t n) {
        for (std::uint64_t i = 0; i < n; ++i) {
            const std::int64_t size = block[i] - last;
            if (block[i] < last || size >= std::int64_t{NONE_INDEX} || (first && block[i] != 0))
                where.fail("the offsets of the cells do not ascend from 0");
            if (!first) sizes.push_back(static_cast<unsigned int>(size));
            first = false;
            last = block[i];
        }
    });
}

void vtk_cells::read_nodes(number_stream& in, std::uint64_t count)
{
    in.read(nodes.append(count), count);
}

void assemble(vtk_cells&& cells, vtk_dialect dialect, mesh& result)
{
    std::uint64_t nodes = 0;
    for (const unsigned int size : cells.sizes) nodes += size;
    if (nodes != cells.nodes.size())
        cells.fail(cells.sizes.size(),
                   "the cells want " + std::to_string(nodes) + " nodes and have " + std::to_string(cells.nodes.size()));
    if (cells.types.size() != cells.sizes.size())
        cells.fail(cells.sizes.size(), counted(cells.sizes.size(), "cell", "cells") + " and " +
                                           counted(cells.types.size(), "type", "types"));
    assembler(cells, dialect).run(result);
}

void take_groups(mesh& result)
{
    const auto found = std::ranges::find_if(result.cell_fields, holds_groups);
    if (found == result.cell_fields.end()) return;
    auto value = found->values.begin();
    for (element_block& block : result.blocks) {
        block.groups.resize(block.size());
        for (std::int32_t& group : block.groups) group = static_cast<std::int32_t>(*value++);
        if (std::ranges::all_of(block.groups, [](std::int32_t group) { return group == 0; })) block.groups.clear();
    }
    result.cell_fields.erase(found);
}

}  // namespace tool
