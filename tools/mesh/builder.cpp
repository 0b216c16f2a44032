#include "mesh/builder.h"

#include <algorithm>
#include <limits>

namespace tool {

void mesh_builder::forget_groups()
{
    for (std::optional<collected>& kind : kinds_)
        if (kind) kind->groups.clear();
}

std::vector<element_block> mesh_builder::take()
{
    std::vector<element_block> blocks;
    for (std::size_t type = 0; type < kinds_.size(); ++type) {
        std::optional<collected>& from = kinds_[type];
        if (!from || from->connect.size() == 0) continue;
        element_block& block = blocks.emplace_back();
        block.type = static_cast<zeb::element_type>(type);
        block.connect = from->connect.take();
        block.groups = std::move(from->groups);
        block.numbers = std::move(from->numbers);
        from.reset();
    }
    return blocks;
}

std::vector<double> gathered(const std::vector<element_block>& blocks, const std::vector<double>& values,
                             unsigned int components, std::uint64_t first_number)
{
    std::uint64_t count = 0;
    for (const element_block& block : blocks) count += block.size();
    std::vector<double> result(count * components, std::numeric_limits<double>::quiet_NaN());
    const std::uint64_t items = values.size() / components;
    auto to = result.begin();
    for (const element_block& block : blocks) {
        for (std::uint64_t e = 0; e < block.size(); ++e, to += components) {
            const std::uint64_t item = block.numbers[e] - first_number;
            if (item < items)
                std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(item * components), components, to);
        }
    }
    return result;
}

}  // namespace tool
