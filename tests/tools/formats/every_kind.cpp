#include "tools/formats/every_kind.h"

#include <algorithm>
#include <cmath>

namespace test {
namespace {

using namespace zeb;
using nodes = std::vector<unsigned int>;

struct place {
    double x, y, z;
};

// Corners of a positive element.
std::vector<place> corners_of(element_type type)
{
    switch (VERTICES_PER_ELEMENT[type]) {
        case 1:
            return {{0.1, 0.2, 0.3}};
        case 2:
            return {{0, 0, 0}, {1, 0.1, 0}};
        case 3:
            return {{0, 0, 0}, {1, 0, 0.1}, {0.1, 1, 0}};
        case 4:
            if (type >= EL_TETRA4) return {{0, 0, 0}, {0.1, 1, 0}, {1, 0, 0.1}, {0, 0.2, 1}};
            return {{0, 0, 0}, {1, 0, 0}, {1.2, 1, 0}, {0, 0.9, 0}};
        case 5:
            return {{0, 0, 0}, {1, 0, 0}, {1.2, 1, 0}, {0, 0.9, 0}, {0.4, 0.5, 1}};
        case 6:
            return {{0, 0, 0}, {1, 0, 0.1}, {0.1, 1, 0}, {0, 0.1, 1}, {1.1, 0, 1}, {0, 1.2, 1.1}};
        default:
            return {{0, 0, 0}, {1, 0, 0}, {1.2, 1, 0}, {0, 0.9, 0}, {0, 0, 1}, {1, 0.1, 1}, {1, 1, 1.1}, {0.1, 1, 0.9}};
    }
}

void add_place(tool::mesh& m, const place& p)
{
    const std::uint64_t j = m.pos.cols;
    tool::resize(m.pos, 3, j + 1);
    m.pos(0, j) = p.x;
    m.pos(1, j) = p.y;
    m.pos(2, j) = p.z;
}

// One element at a distance, with nodes of its own.
nodes add_element(tool::mesh& m, element_type type, double shift)
{
    const auto first = static_cast<unsigned int>(m.pos.cols);
    for (place p : corners_of(type)) add_place(m, {p.x + shift, p.y, p.z * (1 + 0.01 * shift)});
    for (const nodes& corners : further_nodes(type)) {
        place middle{0, 0, 0};
        for (const unsigned int c : corners) {
            middle.x += m.pos(0, first + c) / static_cast<double>(corners.size());
            middle.y += m.pos(1, first + c) / static_cast<double>(corners.size());
            middle.z += m.pos(2, first + c) / static_cast<double>(corners.size());
        }
        add_place(m, middle);
    }
    nodes element(NODES_PER_ELEMENT[type]);
    for (unsigned int k = 0; k < element.size(); ++k) element[k] = first + k;
    return element;
}

// Values that have no short decimal form.
std::vector<double> values(std::size_t count, double seed)
{
    std::vector<double> result(count);
    for (std::size_t i = 0; i < count; ++i) result[i] = std::sin(seed + static_cast<double>(i)) / 3;
    return result;
}

}  // namespace

std::vector<nodes> further_nodes(element_type type)
{
    const std::vector<nodes> quad{{0, 1}, {1, 2}, {2, 3}, {3, 0}};
    const std::vector<nodes> hexa{{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6},
                                  {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};
    std::vector<nodes> list;
    switch (type) {
        case EL_EDGE3:
            return {{0, 1}};
        case EL_TRIA6:
            return {{1, 2}, {2, 0}, {0, 1}};
        case EL_QUAD8:
            return quad;
        case EL_QUAD9:
            list = quad;
            list.push_back({0, 1, 2, 3});
            return list;
        case EL_TETRA10:
            return {{1, 2}, {2, 0}, {0, 1}, {0, 3}, {1, 3}, {2, 3}};
        case EL_PYRAMID14:
            return {{0, 4}, {1, 4}, {2, 4}, {3, 4}, {0, 1}, {1, 2}, {2, 3}, {3, 0}, {0, 1, 2, 3}};
        case EL_WEDGE18:
            return {{0, 3}, {1, 4}, {2, 5}, {1, 2},       {2, 0},       {0, 1},
                    {4, 5}, {5, 3}, {3, 4}, {1, 2, 5, 4}, {2, 0, 3, 5}, {0, 1, 4, 3}};
        case EL_HEXA20:
            return hexa;
        case EL_HEXA27:
            list = hexa;
            for (const nodes& more : std::vector<nodes>{{0, 3, 7, 4},
                                                        {1, 5, 6, 2},
                                                        {0, 4, 5, 1},
                                                        {3, 2, 6, 7},
                                                        {0, 1, 2, 3},
                                                        {7, 6, 5, 4},
                                                        {0, 1, 2, 3, 4, 5, 6, 7}})
                list.push_back(more);
            return list;
        default:
            return {};
    }
}

tool::mesh mesh_of(const std::vector<element_type>& types)
{
    tool::mesh m;
    double shift = 0;
    for (const element_type type : types) {
        tool::element_block& block = m.blocks.emplace_back();
        block.type = type;
        block.connect = tool::connectivity(NODES_PER_ELEMENT[type], 2);
        for (unsigned int e = 0; e < 2; ++e, shift += 2)
            std::ranges::copy(add_element(m, type, shift), &block.connect(0, e));
        block.groups = {4, 9};
        block.numbers = tool::numbering(2 * m.blocks.size() - 1, 2);
    }
    m.node_numbers = tool::numbering(1, m.pos.cols);
    m.point_fields.push_back({"speed of it", 3, tool::number_kind::real64, values(3 * m.pos.cols, 0.5)});
    m.cell_fields.push_back({"load", 1, tool::number_kind::real64, values(2 * types.size(), 7)});
    for (int d = 0; d < 4; ++d) m.group_names.push_back({d, 4, "inner part"});
    return m;
}

tool::mesh two_elements(element_type type)
{
    return mesh_of({type});
}

std::vector<std::pair<int, std::uint64_t>> counts(const tool::mesh& m)
{
    std::vector<std::pair<int, std::uint64_t>> result;
    for (const tool::element_block& block : m.blocks) result.emplace_back(block.type, block.size());
    return result;
}

testing::AssertionResult is_well_ordered(const tool::mesh& m)
{
    for (const tool::element_block& block : m.blocks) {
        const auto lists = further_nodes(block.type);
        for (std::uint64_t e = 0; e < block.size(); ++e) {
            const unsigned int* n = &block.connect(0, e);
            for (std::size_t k = 0; k < lists.size(); ++k) {
                for (std::uint64_t i = 0; i < m.pos.rows; ++i) {
                    double middle = 0;
                    for (const unsigned int c : lists[k])
                        middle += m.pos(i, n[c]) / static_cast<double>(lists[k].size());
                    const double is = m.pos(i, n[VERTICES_PER_ELEMENT[block.type] + k]);
                    if (!(std::fabs(is - middle) < 1e-6))
                        return testing::AssertionFailure() << "further node " << k << " of element " << e << " of type "
                                                           << block.type << " is not in the middle of its corners";
                }
            }
        }
        dense1D<double> qualities;
        const tool::connectivity corners =
            block.connect.sub_matrix(0, 0, VERTICES_PER_ELEMENT[block.type], block.size());
        const element_type linear[21] = {EL_NONE,     EL_NONE,     EL_NONE,   EL_NONE,   EL_NONE,  EL_NONE,   EL_NONE,
                                         EL_NONE,     EL_NONE,     EL_NONE,   EL_NONE,   EL_NONE,  EL_TETRA4, EL_TETRA4,
                                         EL_PYRAMID5, EL_PYRAMID5, EL_WEDGE6, EL_WEDGE6, EL_HEXA8, EL_HEXA8,  EL_HEXA8};
        if (linear[block.type] == EL_NONE) continue;
        if (zeb::tessolv::shape_qualities(m.pos, corners, linear[block.type], qualities) != 0)
            return testing::AssertionFailure() << "no qualities of type " << block.type;
        for (const double q : qualities)
            if (!(q > 0)) return testing::AssertionFailure() << "an element of type " << block.type << " scores " << q;
    }
    return testing::AssertionSuccess();
}

std::string written(const tool::mesh& m, const std::string& format, bool ascii)
{
    std::string bytes;
    tool::sink to(bytes);
    tool::write_options options;
    options.ascii = ascii;
    tool::format_named(format).write(m, to, options);
    to.commit();
    return bytes;
}

tool::mesh read_bytes(const std::string& bytes)
{
    return tool::read_mesh(tool::source::of_bytes(bytes));
}

tool::mesh read_bytes_as(const std::string& bytes, const std::string& format)
{
    return tool::read_mesh(tool::source::of_bytes(bytes), format);
}

}  // namespace test
