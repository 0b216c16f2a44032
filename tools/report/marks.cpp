#include "report/marks.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include "findings/face_list.h"
#include "mesh/kinds.h"

namespace tool {
namespace {

constexpr std::size_t worst_shown = 10;

class marker {
public:
    marker(const judgement& j, mark_list& list) : j_(j), m_(j.content), places_(j.content), list_(list) {}

    std::size_t mark(bool is_node, std::uint64_t id)
    {
        const auto [at, is_new] = known_.try_emplace({is_node, id}, list_.marks.size());
        if (is_new)
            list_.marks.push_back(
                {is_node, id, is_node ? node_name(id) : element_name(id), quality_of(is_node, id), {}});
        return at->second;
    }

    std::vector<std::uint64_t> worst_elements() const
    {
        std::vector<std::uint64_t> ids;
        const std::vector<double>& qualities = j_.verdict_on.qualities;
        for (std::size_t b = 0; b < m_.blocks.size(); ++b) {
            if (info_of(m_.blocks[b].type).dimension < 2) continue;
            for (std::uint64_t e = places_.first(b); e < places_.first(b) + m_.blocks[b].size(); ++e)
                if (!std::isnan(qualities[e])) ids.push_back(e);
        }
        const auto last = ids.begin() + static_cast<std::ptrdiff_t>(std::min(worst_shown, ids.size()));
        std::ranges::partial_sort(ids, last, {}, [&](std::uint64_t e) { return std::pair(qualities[e], e); });
        ids.erase(last, ids.end());
        return ids;
    }

private:
    std::string node_name(std::uint64_t id) const
    {
        return "node " + std::to_string(id < m_.node_numbers.size() ? m_.node_numbers[id] : id + 1);
    }

    std::string element_name(std::uint64_t id) const
    {
        const std::size_t b = places_.block_of(id);
        return std::string(info_of(m_.blocks[b].type).name) + ' ' +
               std::to_string(m_.blocks[b].numbers[id - places_.first(b)]);
    }

    double quality_of(bool is_node, std::uint64_t id) const
    {
        return is_node ? std::numeric_limits<double>::quiet_NaN() : j_.verdict_on.qualities[id];
    }

    const judgement& j_;
    const mesh& m_;
    element_places places_;
    mark_list& list_;
    std::map<std::pair<bool, std::uint64_t>, std::size_t> known_;
};

}  // namespace

mark_list marks_of(const judgement& j, std::size_t most)
{
    mark_list list;
    marker marker(j, list);
    for (std::size_t i = 0; i < j.faults.size(); ++i) {
        const judgement::fault& f = j.faults[i];
        std::vector<std::size_t>& shown = list.of_faults.emplace_back();
        for (std::size_t k = 0; k < std::min(most, f.ids.size()); ++k) {
            shown.push_back(marker.mark(f.of_nodes, f.ids[k]));
            list.marks[shown.back()].faults.push_back(i);
        }
    }
    for (const std::uint64_t e : marker.worst_elements()) list.worst.push_back(marker.mark(false, e));
    return list;
}

}  // namespace tool
