#include "findings/rules.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "errors.h"
#include "mesh/kinds.h"
#include "words.h"

namespace tool {
namespace {

using namespace zeb;

constexpr std::array<fault_info, fault_count_of_all> faults{{
    {fault::reading, "not_read", "fault of the file", "faults of the file", fault_place::file},
    {fault::no_element, "no_element", "no element", "no element", fault_place::file},
    {fault::bad_index, "bad_index", "element with a node that is not there", "elements with nodes that are not there",
     fault_place::element},
    {fault::not_finite, "not_finite", "node without a finite place", "nodes without a finite place", fault_place::node},
    {fault::repeated_node, "repeated_node", "element with a node twice", "elements with a node twice",
     fault_place::element},
    {fault::duplicate, "duplicate", "duplicate element", "duplicate elements", fault_place::element},
    {fault::degenerate, "degenerate", "element without size", "elements without size", fault_place::element},
    {fault::inverted, "inverted", "inverted element", "inverted elements", fault_place::element},
    {fault::bad_quality, "bad_quality", "element of bad quality", "elements of bad quality", fault_place::element},
    {fault::unused_node, "unused_node", "unused node", "unused nodes", fault_place::node},
    {fault::coincident_node, "coincident_node", "coincident node", "coincident nodes", fault_place::node},
    {fault::nonmanifold, "nonmanifold", "face of three or more elements", "faces of three or more elements",
     fault_place::face},
    {fault::open_edge_of_stl, "open_edge_of_stl", "open edge", "open edges", fault_place::face},
    {fault::open_edge, "open_edge", "open edge", "open edges", fault_place::face},
    {fault::turned_neighbour, "turned_neighbour", "face whose elements turn against each other",
     "faces whose elements turn against each other", fault_place::face},
    {fault::inside_out, "inside_out", "closed surface inside out", "closed surfaces inside out", fault_place::file},
    {fault::parts, "parts", "part", "separate parts", fault_place::file},
    {fault::poor_quality, "poor_quality", "element of poor quality", "elements of poor quality", fault_place::element},
    {fault::short_edge, "short_edge", "edge too short for single precision", "edges too short for single precision",
     fault_place::element},
}};

constexpr std::array<element_type, 6> limited{EL_TRIA3, EL_QUAD4, EL_TETRA4, EL_PYRAMID5, EL_WEDGE6, EL_HEXA8};

constexpr std::array<profile, 4> profiles{{
    {"default", "what no solver should be given"},
    {"solver", "quality that an implicit solver likes: bad below 0.1"},
    {"shell", "shells: branching surfaces are no fault, neighbours that turn against each other are one"},
    {"closed", "surfaces that bound a volume: closed, one way round, not inside out"},
}};

bool is_note(fault which)
{
    return which >= fault::open_edge;
}

rules default_rules()
{
    rules r;
    for (const fault_info& f : faults)
        r.severities[static_cast<std::size_t>(f.which)] = is_note(f.which) ? severity::note : severity::finding;
    r.limits.fill({0.5, 0.2, 0.02});
    // An edge 173 times as long as the height: what the tessellation of a sound part may hold is no fault yet.
    r.limits[EL_TRIA3] = r.limits[EL_QUAD4] = {0.5, 0.2, 0.01};
    r.limits[EL_TETRA4] = {0.4, 0.1, 0.02};
    return r;
}

void set(rules& r, severity to, std::initializer_list<fault> which)
{
    for (const fault f : which) r.severities[static_cast<std::size_t>(f)] = to;
}

}  // namespace

const fault_info& info_of(fault which)
{
    return faults[static_cast<std::size_t>(which)];
}

std::span<const fault_info> all_faults()
{
    return faults;
}

std::span<const element_type> kinds_with_limits()
{
    return limited;
}

std::span<const profile> all_profiles()
{
    return profiles;
}

const quality_limits& rules::limits_of(element_type type) const
{
    return limits[static_cast<std::size_t>(info_of(type).linear)];
}

rules rules_of_profile(std::string_view name)
{
    rules r = default_rules();
    r.profile = name;
    if (name == "solver") {
        r.limits.fill({0.6, 0.3, 0.1});
    } else if (name == "shell") {
        set(r, severity::note, {fault::nonmanifold});
        set(r, severity::finding, {fault::turned_neighbour});
    } else if (name == "closed") {
        set(r, severity::finding, {fault::open_edge, fault::turned_neighbour, fault::inside_out});
    } else if (name != "default") {
        std::vector<std::string> names;
        for (const profile& p : profiles) names.emplace_back(p.name);
        throw wrong_usage("no profile '" + std::string(name) + "': there are " + joined(names));
    }
    return r;
}

}  // namespace tool
