#include "report/page_data.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "findings/element_faces.h"
#include "mesh/kinds.h"
#include "report/html.h"
#include "terminal.h"

namespace tool {
namespace {

using json = nlohmann::ordered_json;

// Rings of corners, as they are drawn.
json faces_of_kind(const kind_info& kind)
{
    json faces = json::array();
    if (kind.dimension == 3) {
        for (const local_face& face : faces_of(kind.type))
            faces.push_back(std::vector<int>(face.nodes, face.nodes + face.width));
        return faces;
    }
    json ring = json::array();
    for (std::uint64_t i = 0; i < zeb::VERTICES_PER_ELEMENT[kind.type]; ++i) ring.push_back(i);
    faces.push_back(ring);
    return faces;
}

json kinds_of(const mesh& m)
{
    json kinds = json::array();
    for (const element_block& block : m.blocks) {
        const kind_info& kind = info_of(block.type);
        kinds.push_back({{"name", kind.name},
                         {"dimension", kind.dimension},
                         {"corners", zeb::VERTICES_PER_ELEMENT[block.type]},
                         {"faces", faces_of_kind(kind)}});
    }
    return kinds;
}

class describer {
public:
    describer(const judgement& j, const drawing& d, const group_list& groups)
        : j_(j), m_(j.content), d_(d), groups_(groups), places_(j.content)
    {
    }

    // What is said of each item of a list of elements.
    json columns(const std::vector<std::uint32_t>& elements) const
    {
        std::vector<float> qualities;
        std::vector<std::uint32_t> parts;
        std::vector<std::uint16_t> groups;
        std::vector<std::uint8_t> kinds;
        std::vector<double> numbers;
        for (const std::uint32_t e : elements) {
            const std::size_t b = places_.block_of(e);
            const bool measured = info_of(m_.blocks[b].type).dimension > 1;
            qualities.push_back(measured ? static_cast<float>(j_.verdict_on.qualities[e])
                                         : std::numeric_limits<float>::quiet_NaN());
            parts.push_back(d_.parts[e]);
            groups.push_back(groups_.index_of(e));
            kinds.push_back(static_cast<std::uint8_t>(b));
            numbers.push_back(static_cast<double>(m_.blocks[b].numbers[e - places_.first(b)]));
        }
        const bool wide =
            std::ranges::any_of(numbers, [](double n) { return n > std::numeric_limits<std::uint32_t>::max(); });
        return {{"count", elements.size()},
                {"quality", base64_of(qualities)},
                {"part", base64_of(parts)},
                {"group", base64_of(groups)},
                {"kind", base64_of(kinds)},
                {wide ? "long number" : "number",
                 wide ? base64_of(numbers) : base64_of(std::vector<std::uint32_t>(numbers.begin(), numbers.end()))}};
    }

    json triangles() const
    {
        json object = columns(d_.elements);
        object["corners"] = base64_of(d_.corners);
        object["sides"] = base64_of(d_.sides);
        std::vector<std::uint16_t> patches;
        bool any = false;
        for (const std::uint32_t e : d_.patches) {
            patches.push_back(e == drawing::none ? group_list::none : groups_.index_of(e));
            any = any || patches.back() != group_list::none;
        }
        if (any) object["patch"] = base64_of(patches);
        return object;
    }

    json marks(const mark_list& list) const
    {
        json marks = json::array();
        std::vector<float> places;
        for (const mark_list::mark& mark : list.marks) {
            json object = {{"name", mark.name}, {"at", places.size() / 3}, {"faults", mark.faults}};
            if (mark.is_node) {
                append(places, static_cast<unsigned int>(mark.id));
            } else {
                const std::size_t b = places_.block_of(mark.id);
                const unsigned int* nodes = &m_.blocks[b].connect(0, mark.id - places_.first(b));
                for (std::uint64_t i = 0; i < zeb::VERTICES_PER_ELEMENT[m_.blocks[b].type]; ++i)
                    append(places, nodes[i]);
                object["kind"] = b;
                if (std::isfinite(mark.quality)) object["quality"] = mark.quality;
                object["inside"] = info_of(m_.blocks[b].type).dimension == 3 && !d_.is_outside[mark.id];
            }
            marks.push_back(object);
        }
        return {{"list", marks}, {"places", base64_of(places)}};
    }

private:
    void append(std::vector<float>& places, unsigned int node) const
    {
        std::array<float, 3> p;
        p.fill(std::numeric_limits<float>::quiet_NaN());
        if (node < m_.pos.cols) p = d_.box.place_of(m_, node);
        places.insert(places.end(), p.begin(), p.end());
    }

    const judgement& j_;
    const mesh& m_;
    const drawing& d_;
    const group_list& groups_;
    element_places places_;
};

std::string label_of(const group_list::group& g)
{
    return std::to_string(g.number) + (g.name.empty() ? "" : " " + printable(g.name));
}

}  // namespace

json page_data(const judgement& j, const drawing& d, const mark_list& marks, const group_list& groups)
{
    const describer describe(j, d, groups);
    json faults = json::array();
    json levels = json::array();
    for (const judgement::fault& f : j.faults) {
        faults.push_back(f.text);
        levels.push_back(f.is_finding);
    }
    json labels = json::array();
    for (const group_list::group& g : groups.groups()) labels.push_back(label_of(g));
    json lines = describe.columns(d.line_elements);
    lines["ends"] = base64_of(d.ends);
    json points = describe.columns(d.point_elements);
    points["at"] = base64_of(d.points);
    return {{"centre", d.box.centre},
            {"scale", d.box.scale},
            {"plane", j.verdict_on.dimension < 3 &&
                          (j.verdict_on.box.is_empty() || j.verdict_on.box.min[2] == j.verdict_on.box.max[2])},
            {"parts", d.part_count},
            {"groups", labels},
            {"kinds", kinds_of(j.content)},
            {"faults", faults},
            {"levels", levels},
            {"places", base64_of(d.places)},
            {"triangles", describe.triangles()},
            {"lines", lines},
            {"points", points},
            {"marks", describe.marks(marks)}};
}

}  // namespace tool
