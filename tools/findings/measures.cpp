#include "findings/measures.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "errors.h"
#include "findings/element_faces.h"
#include "findings/vectors.h"
#include "mesh/kinds.h"

namespace tool {
namespace {

namespace library = zeb::tessolv;
// By the divergence theorem over the faces: their vector areas by their middles, both seen from the first corner.
double volume(const std::vector<vector>& p, zeb::element_type type)
{
    double six_volumes = 0;
    std::vector<vector> face;
    for (const local_face& f : faces_of(type)) {
        face.clear();
        vector middle{};
        for (unsigned int i = 0; i < f.width; ++i) {
            face.push_back(p[f.nodes[i]] - p[0]);
            for (std::size_t k = 0; k < 3; ++k) middle[k] += face.back()[k] / f.width;
        }
        six_volumes += dot(middle, twice_area(face));
    }
    return six_volumes / 6;
}

double longest_side(const std::vector<vector>& p)
{
    double longest = 0;
    for (std::size_t k = 0; k < 3; ++k) {
        const auto [least, most] = std::ranges::minmax(p, {}, [k](const vector& v) { return v[k]; });
        longest = std::max(longest, most[k] - least[k]);
    }
    return longest;
}

double relative_size(const std::vector<vector>& p, const kind_info& kind)
{
    const double side = longest_side(p);
    if (!(side > 0)) return std::isnan(side) ? side : 0;
    std::vector<vector> unit = p;  // so that no power of a size overflows
    for (vector& v : unit)
        for (std::size_t k = 0; k < 3; ++k) v[k] = (v[k] - p[0][k]) / side;
    if (kind.dimension == 1) return std::sqrt(dot(unit[1], unit[1]));
    if (kind.dimension == 3) return volume(unit, kind.linear);
    const vector area = twice_area(unit);
    return std::sqrt(dot(area, area)) / 2;
}

}  // namespace

connectivity corners_of(const element_block& block)
{
    return block.connect.sub_matrix(0, 0, zeb::VERTICES_PER_ELEMENT[block.type], block.connect.cols);
}

bool has_place(const mesh& m, const element_block& block, std::uint64_t e)
{
    const unsigned int* nodes = &block.connect(0, e);
    return std::all_of(nodes, nodes + zeb::VERTICES_PER_ELEMENT[block.type],
                       [&](unsigned int node) { return is_finite(point_of(m, node)); });
}

std::vector<double> qualities_of(const mesh& m, const element_block& block)
{
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    const kind_info& kind = info_of(block.type);
    if (kind.dimension == 0) return std::vector<double>(block.size(), none);
    zeb::dense1D<double> values;
    checked(library::shape_qualities(m.pos, corners_of(block), kind.linear, values), "shape_qualities");
    std::vector<double> result(values.begin(), values.end());
    for (std::uint64_t e = 0; e < block.size(); ++e) {
        if (!std::isfinite(result[e]) || !has_place(m, block, e))
            result[e] = none;
        else if (result[e] < -1)
            result[e] = -1;
    }
    return result;
}

std::vector<double> relative_sizes(const mesh& m, const element_block& block)
{
    const kind_info& kind = info_of(block.type);
    std::vector<double> sizes(block.size(), 1);
    std::vector<vector> p;
    for (std::uint64_t e = 0; e < block.size() && kind.dimension != 0; ++e) {
        place_corners(m, block, e, p);
        sizes[e] = relative_size(p, kind);
    }
    return sizes;
}

std::vector<double> plane_areas(const mesh& m, const element_block& block)
{
    std::vector<double> areas(block.size(), 0);
    std::vector<vector> p;
    for (std::uint64_t e = 0; e < block.size() && info_of(block.type).dimension == 2; ++e) {
        place_corners(m, block, e, p);
        areas[e] = twice_area(p)[2] / 2;
    }
    return areas;
}

bool is_flat(const mesh& m, const finite_box& box)
{
    return !m.facets && !box.is_empty() && !(box.max[2] > box.min[2]);
}

double side_of_plane(const mesh& m, int dimension, const finite_box& box)
{
    if (dimension != 2 || m.pos.rows != 3 || !is_flat(m, box)) return 0;
    double area = 0;
    for (const element_block& block : m.blocks)
        for (const double a : plane_areas(m, block))
            if (std::isfinite(a)) area += a;
    return area < 0 ? -1 : 1;
}

std::vector<double> signed_qualities(const mesh& m, const element_block& block, double side)
{
    std::vector<double> qualities = qualities_of(m, block);
    if (side == 0) return qualities;
    const std::vector<double> areas = plane_areas(m, block);
    for (std::uint64_t e = 0; e < block.size(); ++e)
        if (areas[e] * side < 0) qualities[e] = -qualities[e];
    return qualities;
}

double finite_box::diagonal() const
{
    if (is_empty()) return 0;
    return std::hypot(max[0] - min[0], max[1] - min[1], max[2] - min[2]);
}

double finite_box::share_of_diagonal(double share) const
{
    if (is_empty()) return 0;
    const auto quarter = [this](std::size_t k) { return max[k] / 4 - min[k] / 4; };
    return 4 * share * std::hypot(quarter(0), quarter(1), quarter(2));
}

void finite_box::enclose(const std::array<double, 3>& p)
{
    if (!is_finite(p)) return;
    for (std::size_t k = 0; k < 3; ++k) {
        min[k] = std::min(min[k], p[k]);
        max[k] = std::max(max[k], p[k]);
    }
}

void finite_box::enclose(const mesh& m, std::uint64_t node)
{
    enclose(point_of(m, static_cast<unsigned int>(node)));
}

finite_box box_of(const mesh& m)
{
    finite_box box;
    for (std::uint64_t j = 0; j < m.pos.cols; ++j) box.enclose(m, j);
    return box;
}

connectivity edges_of(const mesh& m)
{
    std::vector<connectivity> blocks;
    zeb::dense1D<int> types;
    for (const element_block& block : m.blocks) {
        if (info_of(block.type).dimension == 0) continue;
        blocks.push_back(corners_of(block));
        types.push_back(info_of(block.type).linear);
    }
    if (types.size != blocks.size()) throw std::bad_alloc();
    connectivity edges;
    checked(library::copy_edges(blocks.data(), blocks.data() + blocks.size(), types, edges), "copy_edges");
    std::uint64_t kept = 0;
    for (std::uint64_t e = 0; e < edges.cols; ++e) {
        if (edges(0, e) == edges(1, e)) continue;
        edges(0, kept) = edges(0, e);
        edges(1, kept++) = edges(1, e);
    }
    if (!edges.empty()) resize(edges, 2, kept);
    return edges;
}

std::vector<double> lengths_of(const mesh& m, const connectivity& edges)
{
    std::vector<double> lengths(edges.cols);
    for (std::uint64_t e = 0; e < edges.cols; ++e) {
        const vector d = point_of(m, edges(1, e)) - point_of(m, edges(0, e));
        const double length = norm(d);
        const bool is_safe = length > 1e-140 && length < 1e150;  // no square was lost
        lengths[e] = is_safe ? length : std::hypot(d[0], d[1], d[2]);
    }
    return lengths;
}

}  // namespace tool
