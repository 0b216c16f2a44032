#include "findings/examine.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "errors.h"
#include "findings/duplicates.h"
#include "findings/face_list.h"
#include "mesh/edit.h"
#include "mesh/kinds.h"
#include "words.h"

namespace tool {
namespace {

using places = std::vector<std::uint64_t>;

class examiner {
public:
    // `origin` gives the place of each element in the mesh that was asked for; empty: the same.
    examiner(const mesh& m, const rules& r, const places& origin, examination& result)
        : m_(m), rules_(r), origin_(origin), result_(result)
    {
    }

    void run()
    {
        look_at_elements();
        look_at_nodes();
        look_at_faces();
        look_at_edges();
    }

    void add(fault which, std::uint64_t count, std::uint64_t of, places ids, std::string text = {})
    {
        if (count == 0 || rules_.of(which) == severity::off) return;
        if (text.empty()) text = counted(count, info_of(which).one, info_of(which).many);
        std::ranges::sort(ids);
        ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
        result_.faults.push_back({which, rules_.of(which), count, of, std::move(text), std::move(ids)});
    }

private:
    std::uint64_t origin_of(std::uint64_t place) const { return origin_.empty() ? place : origin_[place]; }

    void add_elements(fault which, const places& ids)
    {
        places originals(ids.size());
        std::ranges::transform(ids, originals.begin(), [&](std::uint64_t e) { return origin_of(e); });
        add(which, ids.size(), result_.elements, std::move(originals));
    }

    void add_faces(fault which, std::uint64_t count, places elements, std::string text = {})
    {
        for (std::uint64_t& e : elements) e = origin_of(e);
        add(which, count, result_.faces, std::move(elements), std::move(text));
    }

    void look_at_elements()
    {
        places repeated;
        places degenerate;
        places inverted;
        places bad;
        places poor;
        std::uint64_t place = 0;
        for (const element_block& block : m_.blocks) {
            const std::vector<double> sizes = relative_sizes(m_, block);
            const std::vector<double> qualities = qualities_of(m_, block);
            const quality_limits& limits = rules_.limits_of(block.type);
            for (std::uint64_t e = 0; e < block.size(); ++e, ++place) {
                result_.qualities[origin_of(place)] = qualities[e];
                if (names_a_node_twice(&block.connect(0, e), block.connect.rows))
                    repeated.push_back(place);
                else if (std::isnan(qualities[e]))
                    continue;
                else if (std::fabs(sizes[e]) <= no_relative_size)
                    degenerate.push_back(place);
                else if (qualities[e] < 0)
                    inverted.push_back(place);
                else if (qualities[e] < limits.bad)
                    bad.push_back(place);
                else if (qualities[e] < limits.warning)
                    poor.push_back(place);
            }
            result_.kinds.push_back(summary_of(block, qualities, limits));
        }
        add_elements(fault::repeated_node, repeated);
        add_elements(fault::duplicate, duplicates_of(m_));
        add_elements(fault::degenerate, degenerate);
        add_elements(fault::inverted, inverted);
        add_elements(fault::bad_quality, bad);
        add_elements(fault::poor_quality, poor);
    }

    static kind_summary summary_of(const element_block& block, const std::vector<double>& qualities,
                                   const quality_limits& limits)
    {
        kind_summary s;
        s.type = block.type;
        s.count = block.size();
        std::uint64_t finite = 0;
        double sum = 0;
        for (const double q : qualities) {
            if (std::isnan(q)) continue;
            s.min = finite == 0 ? q : std::min(s.min, q);
            s.max = finite == 0 ? q : std::max(s.max, q);
            sum += q;
            ++finite;
            ++(q < 0                ? s.inverted
               : q < limits.bad     ? s.bad
               : q < limits.warning ? s.poor
               : q < limits.good    ? s.fair
                                    : s.good);
            if (q >= 0) ++s.histogram[std::min<std::size_t>(static_cast<std::size_t>(10 * q), s.bins - 1)];
        }
        s.mean = finite != 0 ? sum / static_cast<double>(finite) : 0;
        return s;
    }

    void look_at_nodes()
    {
        const std::vector<bool> used = used_nodes(m_);
        places unused;
        zeb::dense1D<unsigned int> candidates;
        for (unsigned int j = 0; j < used.size(); ++j) {
            if (!used[j]) unused.push_back(j);
            if (used[j] && is_finite(j)) candidates.push_back(j);
        }
        add(fault::unused_node, unused.size(), result_.nodes, unused);
        if (rules_.of(fault::coincident_node) == severity::off) return;

        zeb::dense1D<unsigned int> survivors;
        checked(zeb::tessolv::merge(m_.pos, candidates, survivors, result_.box.share_of_diagonal(rules_.coincident)),
                "merge");
        places merged;
        for (unsigned int j = 0; j < survivors.size; ++j)
            if (survivors[j] != j) merged.push_back(j);
        add(fault::coincident_node, merged.size(), result_.nodes, merged);
    }

    bool is_finite(unsigned int node) const
    {
        const double* p = &m_.pos(0, node);
        return std::all_of(p, p + m_.pos.rows, [](double x) { return std::isfinite(x); });
    }

    void look_at_faces()
    {
        if (result_.dimension == 0) return;
        const face_list faces(m_, result_.dimension);
        places open;
        places branching;
        places turned;
        std::uint64_t turned_faces = 0;
        faces.for_each([&](std::span<const face_side> sides) {
            ++result_.faces;
            places* to = sides.size() == 1 ? &open : sides.size() > 2 ? &branching : nullptr;
            result_.free_faces += sides.size() == 1;
            result_.nonmanifold_faces += sides.size() > 2;
            if (sides.size() == 2 && sides[0].turned == sides[1].turned && result_.dimension > 1) {
                to = &turned;
                ++turned_faces;
            }
            if (to != nullptr)
                for (const face_side& s : sides) to->push_back(s.element);
        });
        result_.parts = parts_of(m_, faces).count;
        if (result_.dimension > 1) add_faces(fault::nonmanifold, result_.nonmanifold_faces, branching, branch_text());
        add_faces(fault::turned_neighbour, turned_faces, turned);
        if (result_.dimension == 2) look_at_surface(open, turned_faces);
        if (result_.parts > 1) add(fault::parts, result_.parts, 0, {});
    }

    std::string branch_text() const
    {
        return result_.dimension == 2 ? counted(result_.nonmanifold_faces, "edge of three or more elements",
                                                "edges of three or more elements")
                                      : std::string();
    }

    void look_at_surface(const places& open, std::uint64_t turned_faces)
    {
        const bool of_stl = m_.facets.has_value();
        if (m_.pos.rows == 3 && !is_flat())
            add_faces(of_stl ? fault::open_edge_of_stl : fault::open_edge, result_.free_faces, open);
        if (result_.free_faces + turned_faces + result_.nonmanifold_faces == 0 && enclosed_volume(m_) < 0)
            add(fault::inside_out, 1, 0, {}, "the closed surface is inside out");
    }

    // A mesh of a plane region has a border by its nature.
    bool is_flat() const
    {
        const finite_box& box = result_.box;
        return !m_.facets && !box.is_empty() && !(box.max[2] > box.min[2]);
    }

    void look_at_edges()
    {
        const connectivity edges = edges_of(m_);
        const std::vector<double> lengths = lengths_of(m_, edges);
        const double limit = rules_.short_edge * result_.largest_coordinate;
        std::uint64_t count = 0;
        double shortest = std::numeric_limits<double>::infinity();
        for (std::uint64_t e = 0; e < lengths.size(); ++e) {
            const double length = lengths[e];
            count += length <= limit && edges(0, e) != edges(1, e);
            if (length > 0) shortest = std::min(shortest, length);
        }
        result_.shortest_edge = std::isfinite(shortest) ? shortest : 0;
        add(fault::short_edge, count, edges.cols, {});
        if (rules_.of(fault::short_edge) != severity::off) count_lost_edges(lengths);
    }

    // What has no length at all is told as something else.
    void count_lost_edges(const std::vector<double>& lengths)
    {
        for (const digits_of_writer& writer : writers_of_few_digits()) {
            const double spacing = writer.spacing(result_.largest_coordinate);
            const auto is_lost = [spacing](double length) { return length > 0 && length < spacing; };
            const auto count = static_cast<std::uint64_t>(std::ranges::count_if(lengths, is_lost));
            if (count != 0) result_.lost.push_back({&writer, spacing, count});
        }
    }

    const mesh& m_;
    const rules& rules_;
    const places& origin_;
    examination& result_;
};

// Elements with a node that is not there are left out of everything else.
places sound_elements(const mesh& m, const mesh_faults& faults, const element_places& all, mesh& rest)
{
    std::vector<bool> keep(all.size(), true);
    for (const mesh_faults::element& e : faults.bad_indices) keep[all.first(e.block) + e.column] = false;
    rest = m;
    keep_elements(rest, keep);
    places origin;
    for (std::uint64_t e = 0; e < keep.size(); ++e)
        if (keep[e]) origin.push_back(e);
    return origin;
}

void add_faults_of_file(const mesh& m, const mesh_faults& faults, const element_places& all, examiner& to)
{
    for (const reading_fault& f : m.faults) to.add(fault::reading, std::max<std::uint64_t>(1, f.count), 0, {}, f.text);
    if (faults.no_element) to.add(fault::no_element, 1, 0, {}, "no element");
    places ids;
    for (const mesh_faults::element& e : faults.bad_indices) ids.push_back(all.first(e.block) + e.column);
    to.add(fault::bad_index, ids.size(), all.size(), ids);
    to.add(fault::not_finite, faults.not_finite.size(), m.pos.cols, faults.not_finite);
}

double largest_coordinate(const finite_box& box)
{
    double largest = 0;
    for (std::size_t k = 0; k < 3 && !box.is_empty(); ++k)
        largest = std::max({largest, std::fabs(box.min[k]), std::fabs(box.max[k])});
    return largest;
}

void mark_elements(examination& result)
{
    result.worst_of.assign(result.elements, fault::parts);
    for (const found& f : result.faults) {
        const fault_place place = info_of(f.which).place;
        if (place != fault_place::element && place != fault_place::face) continue;
        for (const std::uint64_t e : f.ids)
            if (result.worst_of[e] == fault::parts) result.worst_of[e] = f.which;
    }
}

}  // namespace

bool examination::is_clean() const
{
    return std::ranges::none_of(faults, [](const found& f) { return f.level == severity::finding; });
}

examination examine(const mesh& m, const rules& r)
{
    const element_places all(m);
    const mesh_faults faults = faults_of(m);
    examination result;
    result.nodes = m.pos.cols;
    result.elements = all.size();
    result.dimension = dimension_of(m);
    result.qualities.assign(result.elements, std::numeric_limits<double>::quiet_NaN());
    result.box = box_of(m);
    result.largest_coordinate = largest_coordinate(result.box);

    mesh rest;
    places origin;
    if (!faults.bad_indices.empty()) origin = sound_elements(m, faults, all, rest);
    examiner with(faults.bad_indices.empty() ? m : rest, r, origin, result);
    add_faults_of_file(m, faults, all, with);
    with.run();
    std::ranges::stable_sort(result.faults, {}, &found::which);
    mark_elements(result);
    return result;
}

}  // namespace tool
