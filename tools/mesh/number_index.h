#ifndef TOOLS_MESH_NUMBER_INDEX_H
#define TOOLS_MESH_NUMBER_INDEX_H

#include <cstdint>
#include <utility>
#include <vector>

#include "mesh/numbering.h"

namespace tool {

// Finds items by the numbers that they have in a file.
class number_index {
public:
    static constexpr std::uint64_t none = ~std::uint64_t{0};

    number_index() = default;
    explicit number_index(const numbering& numbers);

    // The item of that number, or none.
    std::uint64_t find(std::uint64_t number) const
    {
        if (consecutive_) return number - first_ < count_ ? number - first_ : none;
        if (!table_.empty()) return number - first_ < table_.size() ? widened(table_[number - first_]) : none;
        return find_sorted(number);
    }

    // A number that two items have, or none.
    std::uint64_t repeated() const { return repeated_; }

private:
    static std::uint64_t widened(std::uint32_t item) { return item == 0 ? none : item - 1; }
    std::uint64_t find_sorted(std::uint64_t number) const;

    bool consecutive_ = true;
    std::uint64_t first_ = 0;
    std::uint64_t count_ = 0;
    std::vector<std::uint32_t> table_;  // item + 1 by number - first_, for numbers that lie close together
    std::vector<std::pair<std::uint64_t, std::uint64_t>> sorted_;  // for others
    std::uint64_t repeated_ = none;
};

}  // namespace tool

#endif
