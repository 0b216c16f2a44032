#include "findings/examine.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <optional>
#include <utility>

#include "errors.h"
#include "findings/closed_parts.h"
#include "findings/duplicates.h"
#include "findings/face_list.h"
#include "findings/looked_at.h"
#include "findings/nouns.h"
#include "findings/vectors.h"
#include "mesh/edit.h"
#include "mesh/kinds.h"
#include "words.h"

namespace tool {
namespace {

using places = std::vector<std::uint64_t>;

class examiner {
public:
    examiner(const looked_at& of, const rules& r, const nouns& words, examination& result)
        : of_(of), m_(of.content()), rules_(r), words_(words), result_(result)
    {
    }

    void run()
    {
        look_at_elements();
        look_at_nodes();
        look_at_faces();
        look_at_edges();
    }

    // `ids` as they are in the mesh that was asked for.
    void add(fault which, std::uint64_t count, std::uint64_t of, places ids, std::string text = {},
             const std::vector<vector>& first = {})
    {
        if (count == 0 || rules_.of(which) == severity::off) return;
        if (text.empty()) text = words_.counted(count, which);
        std::ranges::sort(ids);
        ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
        std::optional<vector> at;
        if (!first.empty() && is_finite(middle_of(first))) at = middle_of(first);
        result_.faults.push_back({which, rules_.of(which), count, of, std::move(text), std::move(ids), at});
    }

private:
    void add_elements(fault which, const places& ids)
    {
        places originals(ids.size());
        std::ranges::transform(ids, originals.begin(), [&](std::uint64_t e) { return of_.origin_of(e); });
        add(which, ids.size(), result_.elements, std::move(originals));
    }

    void look_at_elements()
    {
        places repeated;
        places degenerate;
        places inverted;
        places bad;
        places poor;
        const double side = side_of_plane(m_, result_.dimension, result_.box);
        std::uint64_t place = 0;
        for (const element_block& block : m_.blocks) {
            const std::vector<double> sizes = relative_sizes(m_, block);
            const std::vector<double> qualities = signed_qualities(m_, block, side);
            const quality_limits& limits = rules_.limits_of(block.type);
            for (std::uint64_t e = 0; e < block.size(); ++e, ++place) {
                result_.qualities[of_.origin_of(place)] = qualities[e];
                if (names_a_node_twice(&block.connect(0, e), block.connect.rows))
                    repeated.push_back(place);
                else if (info_of(block.type).dimension == 0 || !has_place(m_, block, e))
                    continue;
                else if (std::fabs(sizes[e]) <= no_relative_size)
                    degenerate.push_back(place);
                else if (qualities[e] < 0)
                    inverted.push_back(place);
                else if (!(qualities[e] >= limits.bad))
                    bad.push_back(place);
                else if (qualities[e] < limits.warning)
                    poor.push_back(place);
            }
            result_.kinds.push_back(summary_of(m_, block, qualities, limits));
        }
        add_elements(fault::repeated_node, repeated);
        const places duplicates = duplicates_of(m_);
        result_.duplicates = duplicates.size();
        add_elements(fault::duplicate, duplicates);
        add_elements(fault::degenerate, degenerate);
        add_elements(fault::inverted, inverted);
        add_elements(fault::bad_quality, bad);
        add_elements(fault::poor_quality, poor);
    }

    void look_at_nodes()
    {
        const std::vector<bool> used = used_nodes(m_);
        places unused;
        zeb::dense1D<unsigned int> candidates;
        for (unsigned int j = 0; j < used.size(); ++j) {
            if (!used[j] && of_.has_node(j)) unused.push_back(j);
            if (used[j] && is_finite(point_of(m_, j))) candidates.push_back(j);
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

    // Faces with one fault: the elements that have them, and the face of the lowest of these.
    struct faulty_faces {
        std::uint64_t count = 0;
        places elements;
        face_side first{};

        void add(std::span<const face_side> sides)
        {
            if (count++ == 0 || sides.front().element < first.element) first = sides.front();
            for (const face_side& s : sides) elements.push_back(s.element);
        }
    };

    void add_faces(fault which, faulty_faces& faces)
    {
        for (std::uint64_t& e : faces.elements) e = of_.origin_of(e);
        std::vector<vector> corners;
        for (const unsigned int node : faces.first.nodes)
            if (faces.count != 0 && node != zeb::NONE_INDEX) corners.push_back(point_of(m_, node));
        add(which, faces.count, result_.faces, std::move(faces.elements), {}, corners);
    }

    void look_at_faces()
    {
        if (result_.dimension == 0) return;
        const face_list faces(m_, result_.dimension);
        faulty_faces open;
        faulty_faces branching;
        faulty_faces turned;
        faces.for_each([&](std::span<const face_side> sides) {
            ++result_.faces;
            if (sides.size() == 1)
                open.add(sides);
            else if (sides.size() > 2)
                branching.add(sides);
            else if (sides[0].turned == sides[1].turned && result_.dimension > 1)
                turned.add(sides);
        });
        result_.free_faces = open.count;
        result_.nonmanifold_faces = branching.count;
        const mesh_parts parts = parts_of(m_, faces);
        result_.parts = parts.count;
        if (result_.dimension > 1) add_faces(fault::nonmanifold, branching);
        add_faces(fault::turned_neighbour, turned);
        if (result_.dimension == 2 && m_.pos.rows == 3) {
            // A mesh of a plane region has a border by its nature.
            if (!is_flat(m_, result_.box)) add_faces(m_.facets ? fault::open_edge_of_stl : fault::open_edge, open);
            look_at_closed_parts(closed_parts_of(m_, faces, parts));
        }
        if (result_.parts > 1) add(fault::parts, result_.parts, 0, {});
    }

    void look_at_closed_parts(const closed_parts& closed)
    {
        add(fault::inside_out, closed.inside_out, 0, {},
            closed.count == 1 ? "the closed surface is inside out"
                              : std::to_string(closed.inside_out) + " of " + std::to_string(closed.count) +
                                    " closed surfaces inside out");
    }

    void look_at_edges()
    {
        const connectivity edges = edges_of(m_);
        const std::vector<double> lengths = lengths_of(m_, edges);
        const double limit = rules_.short_edge * result_.largest_coordinate;
        std::uint64_t count = 0;
        std::vector<vector> first;
        double shortest = std::numeric_limits<double>::infinity();
        for (std::uint64_t e = 0; e < lengths.size(); ++e) {
            if (lengths[e] < shortest) shortest = lengths[e];
            result_.edges_without_length += lengths[e] == 0;
            if (!(lengths[e] <= limit)) continue;
            if (count++ == 0) first = {point_of(m_, edges(0, e)), point_of(m_, edges(1, e))};
        }
        result_.shortest_edge = std::isfinite(shortest) ? shortest : 0;
        add(fault::short_edge, count, edges.cols, {}, {}, first);
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

    const looked_at& of_;
    const mesh& m_;
    const rules& rules_;
    const nouns& words_;
    examination& result_;
};

void measure_extent(const mesh& m, const looked_at& of, examination& result)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    result.least.fill(infinity);
    result.greatest.fill(-infinity);
    for (std::uint64_t j = 0; j < m.pos.cols; ++j) {
        if (!of.has_node(j)) continue;
        result.box.enclose(m, j);
        const vector p = point_of(m, static_cast<unsigned int>(j));
        for (std::size_t k = 0; k < 3; ++k) {
            if (p[k] < result.least[k]) result.least[k] = p[k];
            if (p[k] > result.greatest[k]) result.greatest[k] = p[k];
        }
    }
    for (std::size_t k = 0; k < 3 && !result.box.is_empty(); ++k)
        result.largest_coordinate =
            std::max({result.largest_coordinate, std::fabs(result.box.min[k]), std::fabs(result.box.max[k])});
}

void add_faults_of_file(const mesh& m, const mesh_faults& faults, const looked_at& of, const examination& result,
                        examiner& to)
{
    for (const reading_fault& f : m.faults) to.add(fault::reading, std::max<std::uint64_t>(1, f.count), 0, {}, f.text);
    if (of.content().blocks.empty() && of.bad_indices().empty()) to.add(fault::no_element, 1, 0, {});
    to.add(fault::bad_index, of.bad_indices().size(), result.elements, of.bad_indices());
    places not_finite;
    for (const std::uint64_t node : faults.not_finite)
        if (of.has_node(node)) not_finite.push_back(node);
    to.add(fault::not_finite, not_finite.size(), result.nodes, not_finite);
    to.add(fault::repeated_node, result.collapsed, m.facets ? m.facets->read : 0, of.collapsed());
}

void mark_elements(examination& result)
{
    result.worst_of.assign(result.qualities.size(), fault::parts);
    for (const found& f : result.faults) {
        const fault_place place = info_of(f.which).place;
        if (place != fault_place::element && place != fault_place::face) continue;
        for (const std::uint64_t e : f.ids)
            if (result.worst_of[e] == fault::parts) result.worst_of[e] = f.which;
    }
}

// Where the first node or element at fault lies.
void locate(const mesh& m, examination& result)
{
    const element_places all(m);
    for (found& f : result.faults) {
        if (f.first_at || f.ids.empty() || f.which == fault::bad_index) continue;
        std::vector<vector> p;
        if (info_of(f.which).place == fault_place::node) {
            p = {point_of(m, static_cast<unsigned int>(f.ids.front()))};
        } else {
            const std::size_t b = all.block_of(f.ids.front());
            place_corners(m, m.blocks[b], f.ids.front() - all.first(b), p);
        }
        if (is_finite(middle_of(p))) f.first_at = middle_of(p);
    }
}

// The border of an STL surface comes before its branches, which a duplicate makes too.
std::pair<fault, bool> order_of_telling(const found& f)
{
    return f.which == fault::open_edge_of_stl ? std::pair(fault::nonmanifold, false) : std::pair(f.which, true);
}

}  // namespace

bool examination::is_clean() const
{
    return std::ranges::none_of(faults, [](const found& f) { return f.level == severity::finding; });
}

const found* examination::find(fault which) const
{
    const auto at = std::ranges::find(faults, which, &found::which);
    return at == faults.end() ? nullptr : &*at;
}

examination examine(const mesh& m, const rules& r)
{
    const mesh_faults faults = faults_of(m);
    const looked_at of(m, faults);
    examination result;
    result.nodes = of.node_count();
    result.elements = m.element_count() - of.collapsed().size();
    result.dimension = dimension_of(m);
    result.collapsed = of.collapsed().size() + (m.facets ? m.facets->dropped : 0);
    result.qualities.assign(m.element_count(), std::numeric_limits<double>::quiet_NaN());
    measure_extent(m, of, result);

    const nouns words{m.facets.has_value(), result.dimension};
    examiner with(of, r, words, result);
    add_faults_of_file(m, faults, of, result, with);
    with.run();
    std::ranges::stable_sort(result.faults, {}, order_of_telling);
    mark_elements(result);
    locate(m, result);
    return result;
}

}  // namespace tool
