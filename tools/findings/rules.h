#ifndef TOOLS_FINDINGS_RULES_H
#define TOOLS_FINDINGS_RULES_H

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <tessolv/element_type.h>

namespace tool {

// What can be found in a mesh, in the order in which it is told.
enum class fault {
    reading,
    no_element,
    bad_index,
    not_finite,
    repeated_node,
    duplicate,
    degenerate,
    inverted,
    bad_quality,
    unused_node,
    coincident_node,
    nonmanifold,
    open_edge_of_stl,
    open_edge,
    turned_neighbour,
    inside_out,
    parts,
    poor_quality,
    short_edge,
};
inline constexpr std::size_t fault_count_of_all = 19;

// What a fault is in.
enum class fault_place { file, node, element, face };

struct fault_info {
    fault which;
    const char* code;  // in rules and data
    const char* one;   // for people
    const char* many;
    fault_place place;
};

const fault_info& info_of(fault which);
std::span<const fault_info> all_faults();

// Whether a fault makes a mesh not clean, is told only, or is not looked at.
enum class severity { finding, note, off };

// Quality is good from `good` on, fair from `warning` on, poor from `bad` on, and bad below.
struct quality_limits {
    double good;
    double warning;
    double bad;
};

// What a mesh is judged by.
struct rules {
    std::string profile = "default";
    std::array<severity, fault_count_of_all> severities;
    double coincident = 1e-9;               // distance of nodes that count as one, in diagonals of the box
    double short_edge = 1e-7;               // in largest coordinates: what single precision keeps apart
    std::array<quality_limits, 21> limits;  // by the kind of the corners

    severity of(fault which) const { return severities[static_cast<std::size_t>(which)]; }
    const quality_limits& limits_of(zeb::element_type type) const;
};

// The kinds that have limits of their own: the linear ones.
std::span<const zeb::element_type> kinds_with_limits();

struct profile {
    const char* name;
    const char* purpose;
};
std::span<const profile> all_profiles();

// Throws `wrong_usage` for an unknown name.
rules rules_of_profile(std::string_view name);

// Reads rules from JSON: what it does not say is as in its profile, or in `base`. A profile that was chosen elsewhere,
// which is `base` then, counts more than the one it names. Throws `wrong_usage` with what is wrong in it.
rules rules_from_json(std::string_view text, const rules& base, bool profile_is_chosen = false);

// The whole of the rules, as rules_from_json reads them.
std::string to_json(const rules& r);

}  // namespace tool

#endif
