#ifndef TESSOLV_EDITING_INDEX_SET_H
#define TESSOLV_EDITING_INDEX_SET_H

#include <algorithm>
#include <cstdint>
#include <utility>

#include <tessolv/element_type.h>

#include "core/index_runs.h"
#include "core/scratch.h"
#include "editing/hash_slots.h"

// Sets of node numbers that live for one call. Both kinds answer insert(i): whether i is new. NONE_INDEX never is.
namespace zeb::tessolv {

// The indices from `first` up to, but not including, `bound`.
struct index_interval {
    unsigned int first = NONE_INDEX;
    unsigned int bound = 0;

    std::uint64_t length() const { return first < bound ? bound - first : 0; }

    // Widens the interval to hold all indices but NONE_INDEX.
    void include(const unsigned int* indices, std::uint64_t count) { widen_by_run(indices, count, first, bound); }
};

// One bit per index of an interval.
class index_bits {
public:
    [[nodiscard]] bool allocate(const index_interval& interval)
    {
        first_ = interval.first;
        length_ = interval.length();
        return words_.allocate(length_ / 64 + 1, 0);
    }

    // Indices outside of the interval are never new. A member is not written again: walks meet one index many times
    // over, and each would wait for the store of the one before.
    bool insert(unsigned int i)
    {
        const unsigned int place = i - first_;
        if (place >= length_) return false;
        const std::uint64_t bit = std::uint64_t{1} << (place % 64);
        if ((words_[place / 64] & bit) != 0) return false;
        words_[place / 64] |= bit;
        return true;
    }

    bool is_complete() const { return true; }

private:
    scratch<std::uint64_t> words_;
    unsigned int first_ = 0;
    std::uint64_t length_ = 0;
};

// A hash set: for indices far apart, where storage must go by their number.
class index_hash {
public:
    [[nodiscard]] bool allocate(std::uint64_t room)
    {
        room_ = std::max<std::uint64_t>(room, 8);
        return slots_.allocate(room_);
    }

    bool insert(unsigned int i)
    {
        if (i == NONE_INDEX) return false;
        unsigned int* slot = &slot_of(slots_, i);
        if (*slot == i) return false;
        if (members_ == room_) {
            if (!grow()) return false;
            slot = &slot_of(slots_, i);
        }
        *slot = i;
        ++members_;
        return true;
    }

    // Whether there was memory for every index that was inserted.
    bool is_complete() const { return is_complete_; }

private:
    static unsigned int& slot_of(hash_slots& slots, unsigned int i)
    {
        return slots.find(mixed(i), [i](unsigned int member) { return member == i; });
    }

    bool grow()
    {
        hash_slots larger;
        if (!larger.allocate(4 * room_)) return is_complete_ = false;
        for (const unsigned int i : slots_)
            if (i != NONE_INDEX) slot_of(larger, i) = i;
        std::swap(slots_, larger);
        room_ *= 4;
        return true;
    }

    hash_slots slots_;
    std::uint64_t room_ = 0;
    std::uint64_t members_ = 0;
    bool is_complete_ = true;
};

// Calls walk(set) with an empty set for the indices of an interval, of which at most `count` are inserted. The kind of
// the set follows from the two: bits while they take no more room than the entries themselves. False without memory;
// what the walk has found is then worthless.
template <class Walk>
[[nodiscard]] bool with_index_set(const index_interval& interval, std::uint64_t count, Walk walk)
{
    const auto run = [&](auto set, const auto& size) {
        if (!set.allocate(size)) return false;
        walk(set);
        return set.is_complete();
    };
    constexpr std::uint64_t first_room = 1024;  // a hash set grows with its members: meshes name each node many times
    return interval.length() / 32 <= count + first_room ? run(index_bits(), interval)
                                                        : run(index_hash(), std::min(count, first_room));
}

}  // namespace zeb::tessolv

#endif
