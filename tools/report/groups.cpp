#include "report/groups.h"

#include "mesh/kinds.h"

namespace tool {

group_list::group_list(const mesh& m) : m_(m), places_(m)
{
    if (!m.has_groups()) return;
    std::map<std::pair<int, std::int32_t>, std::uint64_t> counts;
    for (const element_block& block : m.blocks)
        for (std::uint64_t e = 0; e < block.size(); ++e) ++counts[{info_of(block.type).dimension, block.group(e)}];
    for (const auto& [key, elements] : counts) {
        const group_name* named = find_group_name(m, key.first, key.second);
        index_[key] = groups_.size();
        groups_.push_back({key.first, key.second, named != nullptr ? named->name : "", elements});
    }
}

std::uint16_t group_list::index_of(std::uint64_t place) const
{
    if (groups_.empty()) return none;
    const std::size_t b = places_.block_of(place);
    const element_block& block = m_.blocks[b];
    const std::size_t index = index_.at({info_of(block.type).dimension, block.group(place - places_.first(b))});
    return index < none ? static_cast<std::uint16_t>(index) : none;
}

}  // namespace tool
