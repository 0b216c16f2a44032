#include "findings/face_list.h"

#include <algorithm>
#include <numeric>
#include <tuple>

#include "errors.h"
#include "findings/element_faces.h"
#include "mesh/kinds.h"

namespace tool {
namespace {

// Of a collapsed face the distinct corners count: a quadrangle may be a triangle to its neighbour. Returns their number.
unsigned int take_corners(const unsigned int* nodes, const local_face& face, face_side& side)
{
    unsigned int ring[4];
    unsigned int width = 0;
    for (unsigned int i = 0; i < face.width; ++i) {
        const unsigned int node = nodes[face.nodes[i]];
        if (std::find(ring, ring + width, node) == ring + width) ring[width++] = node;
    }
    const auto lowest = static_cast<unsigned int>(std::min_element(ring, ring + width) - ring);
    const auto after = ring[(lowest + 1) % width];
    const auto before = ring[(lowest + width - 1) % width];
    side.turned = width == 2 ? lowest == 1 : after > before;
    side.nodes.fill(zeb::NONE_INDEX);
    for (unsigned int i = 0; i < width; ++i) {
        unsigned int j = i;
        for (; j > 0 && side.nodes[j - 1] > ring[i]; --j) side.nodes[j] = side.nodes[j - 1];
        side.nodes[j] = ring[i];
    }
    return width;
}

// Sides with the same lowest node stand together, each lot is sorted by itself.
std::vector<face_side> grouped(const std::vector<face_side>& sides, std::uint64_t nodes)
{
    std::vector<std::uint64_t> next(nodes + 1, 0);
    for (const face_side& s : sides) ++next[s.nodes[0] + std::size_t{1}];
    std::partial_sum(next.begin(), next.end(), next.begin());
    const std::vector<std::uint64_t> first = next;
    std::vector<face_side> result(sides.size());
    for (const face_side& s : sides) result[next[s.nodes[0]]++] = s;
    const auto key = [](const face_side& s) { return std::tie(s.nodes, s.element, s.face); };
    for (std::uint64_t node = 0; node < nodes; ++node)
        std::ranges::sort(result.begin() + static_cast<std::ptrdiff_t>(first[node]),
                          result.begin() + static_cast<std::ptrdiff_t>(first[node + 1]), {}, key);
    return result;
}

// Two faces of one element that fell together when it collapsed bound nothing.
void drop_folded(std::vector<face_side>& sides)
{
    auto to = sides.begin();
    for (auto at = sides.begin(); at != sides.end();) {
        const bool folded = at + 1 != sides.end() && at->nodes == (at + 1)->nodes && at->element == (at + 1)->element;
        if (folded)
            at += 2;
        else
            *to++ = *at++;
    }
    sides.erase(to, sides.end());
}

// Disjoint sets of elements, each named by its lowest one.
class joined_elements {
public:
    explicit joined_elements(std::uint64_t count) : above_(count) { std::iota(above_.begin(), above_.end(), 0u); }

    std::uint32_t root(std::uint32_t e)
    {
        while (above_[e] != e) e = above_[e] = above_[above_[e]];
        return e;
    }
    void join(std::uint32_t a, std::uint32_t b)
    {
        const auto [low, high] = std::minmax({root(a), root(b)});
        above_[high] = low;
    }

private:
    std::vector<std::uint32_t> above_;
};

// Numbers the sets of the elements that have faces in the order of their lowest elements.
void number_parts(const face_list& faces, joined_elements& sets, mesh_parts& parts)
{
    std::vector<bool> counts(parts.part_of.size(), false);
    for (const face_side& side : faces.sides()) counts[side.element] = true;
    for (std::uint32_t e = 0; e < counts.size(); ++e) {
        if (!counts[e]) continue;
        const std::uint32_t root = sets.root(e);
        parts.part_of[e] = root == e ? parts.count++ : parts.part_of[root];
    }
}

void attach_others(const mesh& m, mesh_parts& parts)
{
    std::vector<std::uint32_t> part_of_node(m.pos.cols, mesh_parts::none);
    const auto for_each_element = [&](auto visit) {
        std::uint64_t place = 0;
        for (const element_block& block : m.blocks)
            for (std::uint64_t e = 0; e < block.size(); ++e, ++place)
                visit(std::span(&block.connect(0, e), block.connect.rows), parts.part_of[place]);
    };
    for_each_element([&](auto nodes, std::uint32_t part) {
        for (const unsigned int node : nodes) part_of_node[node] = std::min(part_of_node[node], part);
    });
    for_each_element([&](auto nodes, std::uint32_t& part) {
        if (part != mesh_parts::none) return;
        for (const unsigned int node : nodes) part = std::min(part, part_of_node[node]);
    });
}

}  // namespace

element_places::element_places(const mesh& m) : first_(1, 0)
{
    for (const element_block& block : m.blocks) first_.push_back(first_.back() + block.size());
    if (first_.back() >= zeb::NONE_INDEX) throw internal_error("more elements than can be numbered");
}

std::size_t element_places::block_of(std::uint64_t place) const
{
    return static_cast<std::size_t>(std::ranges::upper_bound(first_, place) - first_.begin()) - 1;
}

int dimension_of(const mesh& m)
{
    int dimension = 0;
    for (const element_block& block : m.blocks) dimension = std::max(dimension, info_of(block.type).dimension);
    return dimension;
}

face_list::face_list(const mesh& m, int dimension)
{
    const element_places places(m);
    const auto counts = [&](const element_block& block) { return info_of(block.type).dimension == dimension; };
    std::uint64_t count = 0;
    for (const element_block& block : m.blocks)
        if (counts(block)) count += block.size() * faces_of(block.type).size();
    std::vector<face_side> sides;
    sides.reserve(count);
    for (std::size_t b = 0; b < m.blocks.size(); ++b) {
        const element_block& block = m.blocks[b];
        if (!counts(block)) continue;
        const std::span<const local_face> faces = faces_of(block.type);
        for (std::uint64_t e = 0; e < block.size(); ++e) {
            for (std::size_t k = 0; k < faces.size(); ++k) {
                face_side side{};
                if (take_corners(&block.connect(0, e), faces[k], side) < static_cast<unsigned int>(dimension)) continue;
                side.element = static_cast<std::uint32_t>(places.first(b) + e);
                side.face = static_cast<unsigned char>(k);
                sides.push_back(side);
            }
        }
    }
    sides_ = grouped(sides, m.pos.cols);
    drop_folded(sides_);
}

mesh_parts parts_of(const mesh& m, const face_list& faces)
{
    mesh_parts parts;
    const std::uint64_t elements = m.element_count();
    parts.part_of.assign(elements, mesh_parts::none);
    joined_elements sets(elements);
    faces.for_each([&](std::span<const face_side> sides) {
        for (std::size_t i = 1; i < sides.size(); ++i) sets.join(sides[0].element, sides[i].element);
    });
    number_parts(faces, sets, parts);
    attach_others(m, parts);
    return parts;
}

}  // namespace tool
