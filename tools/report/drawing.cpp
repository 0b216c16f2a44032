#include "report/drawing.h"

#include <algorithm>
#include <cmath>

#include "findings/element_faces.h"
#include "findings/face_list.h"
#include "mesh/edit.h"
#include "mesh/kinds.h"
#include "report/coarsen.h"

namespace tool {
namespace {

using face_key = std::array<unsigned int, 4>;

// Ascending, with NONE_INDEX behind the last: like those of a face_side.
face_key key_of(const unsigned int* nodes, std::size_t count)
{
    face_key key;
    key.fill(zeb::NONE_INDEX);
    std::copy_n(nodes, count, key.begin());
    std::ranges::sort(key);
    return key;
}

class drafter {
public:
    // `origin` gives the place of each element in the mesh that was asked for; empty: the same.
    drafter(const mesh& m, const std::vector<std::uint32_t>& origin, std::uint64_t most, drawing& result)
        : m_(m), origin_(origin), most_(most), places_(m), result_(result), index_of_(m.pos.cols, drawing::none)
    {
    }

    void run()
    {
        const int dimension = dimension_of(m_);
        const face_list faces(m_, dimension);
        take_parts(faces);
        if (dimension == 3) take_outer_faces(faces);
        for (std::size_t b = 0; b < m_.blocks.size(); ++b) take_block(b);
        result_.whole = result_.triangle_count();
    }

private:
    std::uint32_t origin_of(std::uint64_t place) const
    {
        return origin_.empty() ? static_cast<std::uint32_t>(place) : origin_[place];
    }

    void take_parts(const face_list& faces)
    {
        const mesh_parts parts = parts_of(m_, faces);
        result_.part_count = parts.count;
        for (std::size_t e = 0; e < parts.part_of.size(); ++e) result_.parts[origin_of(e)] = parts.part_of[e];
    }

    void take_outer_faces(const face_list& faces)
    {
        const auto key = [](const surface_element& p) { return p.key; };
        const std::vector<surface_element> patches = patches_of_mesh();
        covered_.assign(places_.size(), false);
        faces.for_each([&](std::span<const face_side> sides) {
            if (sides.size() != 1) return;
            const face_side& side = sides.front();
            const auto under = std::ranges::lower_bound(patches, side.nodes, {}, key);
            std::uint32_t patch = drawing::none;
            for (auto p = under; p != patches.end() && p->key == side.nodes; ++p) {
                covered_[p->place] = true;
                patch = origin_of(under->place);
            }
            const std::size_t b = places_.block_of(side.element);
            const local_face& face = faces_of(m_.blocks[b].type)[side.face];
            const unsigned int* nodes = &m_.blocks[b].connect(0, side.element - places_.first(b));
            unsigned int ring[4];
            for (unsigned int i = 0; i < face.width; ++i) ring[i] = nodes[face.nodes[i]];
            add_face(ring, face.width, side.element, patch);
        });
    }

    // The surface elements by their corners.
    struct surface_element {
        face_key key;
        std::uint32_t place;
    };

    std::vector<surface_element> patches_of_mesh() const
    {
        std::vector<surface_element> patches;
        for (std::size_t b = 0; b < m_.blocks.size(); ++b) {
            const element_block& block = m_.blocks[b];
            if (info_of(block.type).dimension != 2) continue;
            for (std::uint64_t e = 0; e < block.size(); ++e)
                patches.push_back({key_of(&block.connect(0, e), zeb::VERTICES_PER_ELEMENT[block.type]),
                                   static_cast<std::uint32_t>(places_.first(b) + e)});
        }
        std::ranges::sort(patches, {}, [](const surface_element& p) { return std::pair(p.key, p.place); });
        return patches;
    }

    void take_block(std::size_t b)
    {
        const element_block& block = m_.blocks[b];
        const int dimension = info_of(block.type).dimension;
        for (std::uint64_t e = 0; e < block.size() && dimension < 3; ++e) {
            const std::uint64_t place = places_.first(b) + e;
            const unsigned int* nodes = &block.connect(0, e);
            if (dimension == 0)
                add_line_or_point(nodes, 1, place, result_.points, result_.point_elements);
            else if (dimension == 1)
                add_line_or_point(nodes, 2, place, result_.ends, result_.line_elements);
            else if (covered_.empty() || !covered_[place])
                add_face(nodes, zeb::VERTICES_PER_ELEMENT[block.type], place, drawing::none);
        }
    }

    // The place of a node in the drawing, made when it is wanted; none where the node has none.
    std::uint32_t index_of(unsigned int node)
    {
        if (index_of_[node] != drawing::none) return index_of_[node];
        const std::array<float, 3> p = result_.box.place_of(m_, node);
        if (!std::ranges::all_of(p, [](float x) { return std::isfinite(x); })) return drawing::none;
        index_of_[node] = static_cast<std::uint32_t>(result_.places.size() / 3);
        result_.places.insert(result_.places.end(), p.begin(), p.end());
        return index_of_[node];
    }

    bool take_indices(const unsigned int* nodes, unsigned int count, std::uint32_t* to)
    {
        for (unsigned int i = 0; i < count; ++i) to[i] = index_of(nodes[i]);
        const bool complete = std::find(to, to + count, drawing::none) == to + count;
        result_.without_place += !complete;
        return complete;
    }

    void add_face(const unsigned int* nodes, unsigned int width, std::uint64_t place, std::uint32_t patch)
    {
        std::uint32_t p[4];
        if (!take_indices(nodes, width, p)) return;
        result_.is_outside[origin_of(place)] = true;
        constexpr std::uint8_t first_and_second = 3;
        constexpr std::uint8_t second_and_third = 6;
        constexpr std::uint8_t all = 7;
        if (width == 3) return add_triangle({p[0], p[1], p[2]}, all, place, patch);
        if (distance(p[0], p[2]) > distance(p[1], p[3])) std::rotate(p, p + 1, p + 4);  // cut by the shorter diagonal
        add_triangle({p[0], p[1], p[2]}, first_and_second, place, patch);
        add_triangle({p[0], p[2], p[3]}, second_and_third, place, patch);
    }

    void add_triangle(const std::array<std::uint32_t, 3>& p, std::uint8_t sides, std::uint64_t place,
                      std::uint32_t patch)
    {
        result_.corners.insert(result_.corners.end(), p.begin(), p.end());
        result_.sides.push_back(sides);
        result_.elements.push_back(origin_of(place));
        result_.patches.push_back(patch);
    }

    void add_line_or_point(const unsigned int* nodes, unsigned int count, std::uint64_t place,
                           std::vector<std::uint32_t>& to, std::vector<std::uint32_t>& elements)
    {
        std::uint32_t p[2];
        if (elements.size() >= most_) {
            ++result_.lines_left;
            return;
        }
        if (!take_indices(nodes, count, p)) return;
        to.insert(to.end(), p, p + count);
        elements.push_back(origin_of(place));
        result_.is_outside[origin_of(place)] = true;
    }

    double distance(std::uint32_t a, std::uint32_t b) const
    {
        const float* p = &result_.places[3 * std::size_t{a}];
        const float* q = &result_.places[3 * std::size_t{b}];
        return std::hypot(p[0] - q[0], p[1] - q[1], p[2] - q[2]);
    }

    const mesh& m_;
    const std::vector<std::uint32_t>& origin_;
    std::uint64_t most_;
    element_places places_;
    drawing& result_;
    std::vector<std::uint32_t> index_of_;
    std::vector<bool> covered_;  // by place: surface elements that lie on an outer face of a solid
};

}  // namespace

unit_box::unit_box(const finite_box& box)
{
    if (box.is_empty()) return;
    std::array<double, 3> half;
    for (std::size_t k = 0; k < 3; ++k) {
        centre[k] = box.min[k] / 2 + box.max[k] / 2;
        half[k] = box.max[k] / 2 - box.min[k] / 2;
    }
    const double radius = std::hypot(half[0], half[1], half[2]);
    if (radius > 0 && std::isfinite(radius)) scale = radius;
}

std::array<float, 3> unit_box::place_of(const mesh& m, unsigned int node) const
{
    std::array<float, 3> p{};
    for (std::uint64_t k = 0; k < std::min<std::uint64_t>(3, m.pos.rows); ++k)
        p[k] = static_cast<float>((m.pos(k, node) - centre[k]) / scale);
    return p;
}

drawing draw(const mesh& m, const std::vector<double>& qualities, std::uint64_t most)
{
    drawing result;
    result.box = unit_box(box_of(m));
    result.is_outside.assign(m.element_count(), false);
    result.parts.assign(m.element_count(), drawing::none);
    const mesh_faults faults = faults_of(m);
    if (faults.bad_indices.empty()) {
        drafter(m, {}, most, result).run();
    } else {
        const element_places all(m);
        std::vector<bool> keep(all.size(), true);
        for (const mesh_faults::element& e : faults.bad_indices) keep[all.first(e.block) + e.column] = false;
        std::vector<std::uint32_t> origin;
        for (std::uint32_t e = 0; e < keep.size(); ++e)
            if (keep[e]) origin.push_back(e);
        mesh rest = m;
        keep_elements(rest, keep);
        drafter(rest, origin, most, result).run();
        result.without_place += faults.bad_indices.size();
    }
    coarsen(result, qualities, most);
    return result;
}

}  // namespace tool
