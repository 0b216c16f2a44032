#include "findings/nouns.h"

#include <algorithm>
#include <span>

#include "words.h"

namespace tool {
namespace {

struct noun {
    fault which;
    const char* one;
    const char* many;
};

constexpr noun of_stl_files[] = {
    {fault::no_element, "no triangle", "no triangle"},
    {fault::repeated_node, "degenerate triangle", "degenerate triangles"},
    {fault::duplicate, "duplicate triangle", "duplicate triangles"},
    {fault::degenerate, "triangle without size", "triangles without size"},
    {fault::bad_quality, "triangle of bad quality", "triangles of bad quality"},
    {fault::poor_quality, "triangle of poor quality", "triangles of poor quality"},
    {fault::nonmanifold, "edge of three or more triangles", "edges of three or more triangles"},
    {fault::open_edge_of_stl, "free edge", "free edges"},
    {fault::turned_neighbour, "edge whose triangles turn against each other",
     "edges whose triangles turn against each other"},
};

constexpr noun of_surfaces[] = {
    {fault::nonmanifold, "edge of three or more elements", "edges of three or more elements"},
    {fault::turned_neighbour, "edge whose elements turn against each other",
     "edges whose elements turn against each other"},
};

const noun* find(std::span<const noun> table, fault which)
{
    const auto found = std::ranges::find(table, which, &noun::which);
    return found == table.end() ? nullptr : &*found;
}

}  // namespace

std::string nouns::counted(std::uint64_t count, fault which) const
{
    const noun* special = of_stl ? find(of_stl_files, which) : dimension == 2 ? find(of_surfaces, which) : nullptr;
    const fault_info& general = info_of(which);
    const noun words = special != nullptr ? *special : noun{which, general.one, general.many};
    return which == fault::no_element ? words.one : tool::counted(count, words.one, words.many);
}

}  // namespace tool
