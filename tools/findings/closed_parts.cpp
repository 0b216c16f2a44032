#include "findings/closed_parts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <span>
#include <vector>

#include "findings/measures.h"
#include "findings/vectors.h"
#include "mesh/kinds.h"

namespace tool {
namespace {

std::vector<bool> closed_of(const face_list& faces, const mesh_parts& parts)
{
    std::vector<bool> closed(parts.count, true);
    faces.for_each([&](std::span<const face_side> sides) {
        if (sides.size() == 2 && sides[0].turned != sides[1].turned) return;
        for (const face_side& s : sides) closed[parts.part_of[s.element]] = false;
    });
    return closed;
}

// A closed part by its elements.
class part {
public:
    explicit part(const mesh& m) : mesh_(&m) {}

    void add(std::uint32_t block, std::uint32_t column)
    {
        elements_.push_back({block, column});
        const element_block& b = mesh_->blocks[block];
        for (std::uint64_t i = 0; i < zeb::VERTICES_PER_ELEMENT[b.type]; ++i)
            box_.enclose(*mesh_, b.connect(i, column));
    }
    bool is_empty() const { return elements_.empty(); }

    // By the divergence theorem, seen from one of its own nodes; 0 where rounding may have made it.
    double volume() const
    {
        double six_volumes = 0;
        double sizes = 0;
        const vector origin = corners(elements_.front()).front();
        for_each(0, elements_.size(), [&](std::vector<vector>& p) {
            for (vector& v : p) v = v - origin;
            const double of_element = dot(middle_of(p), twice_area(p));
            six_volumes += of_element;
            sizes += std::fabs(of_element);
        });
        constexpr double rounding = 1e-12;
        return std::fabs(six_volumes) > rounding * sizes ? six_volumes / 6 : 0;
    }

    // For others to ask whether they are inside.
    void gather_clusters()
    {
        std::vector<placed> all;
        for (const element& e : elements_) all.push_back({middle_of(corners(e)), e});
        split(all);
        for (std::size_t i = 0; i < all.size(); ++i) elements_[i] = all[i].which;
        std::uint64_t begin = 0;
        for (cluster& c : clusters_) {
            c.begin = begin;
            begin = c.end = begin + c.end;
        }
    }

    // Some of its elements are asked, as the surfaces may touch: the first whose middle is not on the other one tells.
    bool is_inside(const part& other) const
    {
        if (!is_in_box_of(other)) return false;
        const std::size_t asked = std::min<std::size_t>(8, elements_.size());
        for (std::size_t i = 0; i < asked; ++i) {
            const vector middle = middle_of(corners(elements_[i * elements_.size() / asked]));
            const double turns = std::fabs(other.winding_around(middle));
            if (turns < 0.25) return false;
            if (turns > 0.75) return true;
        }
        return false;
    }

private:
    struct element {
        std::uint32_t block, column;
    };

    struct placed {
        vector middle;
        element which;
    };
    // Elements near each other: from afar their solid angle is that of one small patch.
    struct cluster {
        vector middle;
        vector twice_area;
        double radius;  // that no corner goes beyond
        std::uint64_t begin, end;
    };

    std::vector<vector> corners(const element& e) const
    {
        std::vector<vector> p;
        place_corners(*mesh_, mesh_->blocks[e.block], e.column, p);
        return p;
    }

    template <class Visit>
    void for_each(std::uint64_t begin, std::uint64_t end, Visit visit) const
    {
        std::vector<vector> p;
        for (std::uint64_t i = begin; i < end; ++i) {
            place_corners(*mesh_, mesh_->blocks[elements_[i].block], elements_[i].column, p);
            visit(p);
        }
    }

    // Halves them along their longest side until they are few. The clusters follow their order.
    void split(std::span<placed> some)
    {
        constexpr std::size_t few = 64;
        if (some.size() <= few) {
            clusters_.push_back(cluster_of(some));
            return;
        }
        const auto extent = [&](std::size_t k) {
            const auto [least, most] = std::ranges::minmax(some, {}, [k](const placed& p) { return p.middle[k]; });
            return most.middle[k] - least.middle[k];
        };
        const std::array extents{extent(0), extent(1), extent(2)};
        const auto axis = static_cast<std::size_t>(std::ranges::max_element(extents) - extents.begin());
        const std::size_t half = some.size() / 2;
        std::ranges::nth_element(some, some.begin() + static_cast<std::ptrdiff_t>(half), {},
                                 [axis](const placed& p) { return p.middle[axis]; });
        split(some.first(half));
        split(some.subspan(half));
    }

    cluster cluster_of(std::span<const placed> some) const
    {
        cluster c{{}, {}, 0, 0, some.size()};
        for (const placed& p : some)
            for (std::size_t k = 0; k < 3; ++k) c.middle[k] += p.middle[k] / static_cast<double>(some.size());
        for (const placed& e : some) {
            const std::vector<vector> p = corners(e.which);
            const vector area = twice_area(p);
            for (std::size_t k = 0; k < 3; ++k) c.twice_area[k] += area[k];
            for (const vector& corner : p) c.radius = std::max(c.radius, norm(corner - c.middle));
        }
        return c;
    }

    // How often the surface goes round a point: about 0 outside, 1 or -1 inside. What is three radii away counts as one
    // patch: where a quarter decides, that is near enough (after G. Barill et al. Fast winding
    // numbers for soups and clouds. ACM Transactions on Graphics 37(4), 2018).
    double winding_around(const vector& point) const
    {
        double angle = 0;
        for (const cluster& c : clusters_) {
            const vector towards = c.middle - point;
            const double distance = norm(towards);
            if (distance > 3 * c.radius)
                angle += dot(c.twice_area, towards) / (2 * distance * distance * distance);
            else
                for_each(c.begin, c.end, [&](const std::vector<vector>& p) { angle += solid_angle(p, point); });
        }
        return angle / (4 * std::numbers::pi);
    }

    // Of a triangle: A. van Oosterom, J. Strackee. The Solid Angle of a Plane Triangle. IEEE Transactions on Biomedical
    // Engineering 30, 1983.
    static double solid_angle(const std::vector<vector>& p, const vector& point)
    {
        double angle = 0;
        for (std::size_t i = 2; i < p.size(); ++i) {
            const vector a = p[0] - point;
            const vector b = p[i - 1] - point;
            const vector c = p[i] - point;
            const double la = norm(a);
            const double lb = norm(b);
            const double lc = norm(c);
            const double volume = dot(a, cross(b, c));
            constexpr double rounding = 1e-12;  // on the triangle itself the point is on neither side
            if (std::fabs(volume) <= rounding * la * lb * lc) continue;
            angle += 2 * std::atan2(volume, la * lb * lc + dot(a, b) * lc + dot(a, c) * lb + dot(b, c) * la);
        }
        return angle;
    }

    bool is_in_box_of(const part& other) const
    {
        for (std::size_t k = 0; k < 3; ++k)
            if (box_.min[k] < other.box_.min[k] || box_.max[k] > other.box_.max[k]) return false;
        return true;
    }

    const mesh* mesh_;
    std::vector<element> elements_;
    std::vector<cluster> clusters_;
    finite_box box_;
};

std::vector<part> collected(const mesh& m, const mesh_parts& parts, const std::vector<bool>& closed)
{
    std::vector<part> by_number(parts.count, part(m));
    std::uint64_t place = 0;
    for (std::uint32_t b = 0; b < m.blocks.size(); ++b) {
        for (std::uint32_t e = 0; e < m.blocks[b].size(); ++e, ++place) {
            const std::uint32_t number = parts.part_of[place];
            if (info_of(m.blocks[b].type).dimension != 2 || number == mesh_parts::none || !closed[number]) continue;
            by_number[number].add(b, e);
        }
    }
    std::erase_if(by_number, [](const part& p) { return p.is_empty(); });
    return by_number;
}

}  // namespace

closed_parts closed_parts_of(const mesh& m, const face_list& faces, const mesh_parts& parts)
{
    const std::vector<bool> closed = closed_of(faces, parts);
    if (std::ranges::find(closed, true) == closed.end()) return {};
    std::vector<part> all = collected(m, parts, closed);
    closed_parts result{all.size(), 0};
    const auto is_turned = [](const part& p) { return p.volume() < 0; };
    if (std::ranges::none_of(all, is_turned)) return result;
    for (part& p : all) p.gather_clusters();
    for (const part& p : all) {
        if (!is_turned(p)) continue;
        const auto around =
            std::ranges::count_if(all, [&](const part& other) { return &other != &p && p.is_inside(other); });
        result.inside_out += around % 2 == 0;
    }
    return result;
}

}  // namespace tool
