#include "mesh/number_index.h"

#include <algorithm>

namespace tool {

number_index::number_index(const numbering& numbers)
    : consecutive_(numbers.is_consecutive()), first_(numbers.size() != 0 ? numbers[0] : 0), count_(numbers.size())
{
    if (consecutive_) return;
    std::uint64_t last = first_;
    for (std::uint64_t i = 0; i < count_; ++i) {
        first_ = std::min(first_, numbers[i]);
        last = std::max(last, numbers[i]);
    }
    if (last - first_ < 4 * count_ + 1000 && count_ < 0xFFFFFFFF) {
        table_.resize(last - first_ + 1);
        for (std::uint64_t i = 0; i < count_; ++i) {
            std::uint32_t& entry = table_[numbers[i] - first_];
            if (entry != 0) repeated_ = numbers[i];
            if (entry == 0) entry = static_cast<std::uint32_t>(i + 1);
        }
        return;
    }
    sorted_.reserve(count_);
    for (std::uint64_t i = 0; i < count_; ++i) sorted_.emplace_back(numbers[i], i);
    std::ranges::sort(sorted_);
    for (std::uint64_t i = 1; i < count_; ++i)
        if (sorted_[i].first == sorted_[i - 1].first) repeated_ = sorted_[i].first;
}

std::uint64_t number_index::find_sorted(std::uint64_t number) const
{
    const auto found = std::ranges::lower_bound(sorted_, number, {}, &std::pair<std::uint64_t, std::uint64_t>::first);
    return found != sorted_.end() && found->first == number ? found->second : none;
}

}  // namespace tool
