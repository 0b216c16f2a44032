#ifndef TOOLS_MESH_NUMBERING_H
#define TOOLS_MESH_NUMBERING_H

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace tool {

// The numbers that the items of a list have in their file. Consecutive numbers, the rule, take no memory.
class numbering {
public:
    numbering() = default;
    numbering(std::uint64_t first, std::uint64_t count) : first_(first), count_(count) {}

    std::uint64_t size() const { return count_; }
    bool is_consecutive() const { return list_.empty(); }
    std::uint64_t operator[](std::uint64_t item) const { return list_.empty() ? first_ + item : list_[item]; }

    void push_back(std::uint64_t number)
    {
        if (count_ == 0) first_ = number;
        if (list_.empty() && number != first_ + count_) list_ = expanded();
        if (!list_.empty()) list_.push_back(number);
        ++count_;
    }

    void append(const numbering& more)
    {
        if (more.is_consecutive() && is_consecutive() && (count_ == 0 || more.first_ == first_ + count_)) {
            first_ = count_ == 0 ? more.first_ : first_;
            count_ += more.count_;
        } else {
            for (std::uint64_t i = 0; i < more.size(); ++i) push_back(more[i]);
        }
    }

    // The least and the greatest number; of an empty list, 0 and 0.
    std::pair<std::uint64_t, std::uint64_t> range() const
    {
        if (count_ == 0) return {0, 0};
        if (list_.empty()) return {first_, first_ + count_ - 1};
        const auto [least, greatest] = std::ranges::minmax_element(list_);
        return {*least, *greatest};
    }

private:
    std::vector<std::uint64_t> expanded() const
    {
        std::vector<std::uint64_t> list(count_);
        for (std::uint64_t i = 0; i < count_; ++i) list[i] = first_ + i;
        return list;
    }

    std::uint64_t first_ = 1;
    std::uint64_t count_ = 0;
    std::vector<std::uint64_t> list_;  // empty when the numbers are consecutive
};

}  // namespace tool

#endif
