#ifndef TESSOLV_EDITING_INDEX_SET_H
#define TESSOLV_EDITING_INDEX_SET_H

#include <cstdint>

#include <tessolv/element_type.h>

#include "core/scratch.h"
#include "editing/hash_slots.h"

// Sets of node numbers that live for one call. Both kinds answer insert(i): whether i is new. NONE_INDEX never is.
namespace zeb::tessolv {

// One bit per index below a bound.
class index_bits {
public:
    [[nodiscard]] bool allocate(std::uint64_t bound)
    {
        bound_ = bound;
        return words_.allocate(bound / 64 + 1, 0);
    }

    // Indices from the bound on are never new.
    bool insert(unsigned int i)
    {
        if (i >= bound_) return false;
        const std::uint64_t bit = std::uint64_t{1} << (i % 64);
        const bool is_new = (words_[i / 64] & bit) == 0;
        words_[i / 64] |= bit;
        return is_new;
    }

private:
    scratch<std::uint64_t> words_;
    std::uint64_t bound_ = 0;
};

// A hash set: for a few large indices, where storage must go by their number.
class index_hash {
public:
    [[nodiscard]] bool allocate(std::uint64_t count) { return slots_.allocate(count); }

    bool insert(unsigned int i)
    {
        if (i == NONE_INDEX) return false;
        unsigned int& slot = slots_.find(mixed(i), [i](unsigned int member) { return member == i; });
        const bool is_new = slot == NONE_INDEX;
        slot = i;
        return is_new;
    }

private:
    hash_slots slots_;
};

// Calls walk(set) with an empty set for the indices below `bound`, of which at most `count` are inserted. The kind of
// the set follows from the two: bits while they take no more room than the entries themselves. False without memory.
template <class Walk>
[[nodiscard]] bool with_index_set(std::uint64_t bound, std::uint64_t count, Walk walk)
{
    const auto run = [&](auto set, std::uint64_t size) {
        if (!set.allocate(size)) return false;
        walk(set);
        return true;
    };
    return bound / 32 <= count + 1024 ? run(index_bits(), bound) : run(index_hash(), count);
}

}  // namespace zeb::tessolv

#endif
