#ifndef TESSOLV_EDITING_HASH_SLOTS_H
#define TESSOLV_EDITING_HASH_SLOTS_H

#include <algorithm>
#include <bit>
#include <cstdint>

#include <tessolv/element_type.h>

#include "core/scratch.h"

namespace zeb::tessolv {

// Spreads the bits of a key over all 64, so that strides and blocks of node numbers do not meet in the table.
// G. L. Steele, D. Lea, C. H. Flood. Fast splittable pseudorandom number generators. OOPSLA 2014 (variant mix13).
inline std::uint64_t mixed(std::uint64_t key)
{
    key = (key ^ (key >> 30)) * 0xBF58476D1CE4E5B9u;
    key = (key ^ (key >> 27)) * 0x94D049BB133111EBu;
    return key ^ (key >> 31);
}

// A hash table by open addressing whose slots hold one unsigned int each: a member, or the position of one that lives
// elsewhere. A slot that holds NONE_INDEX is free. Never more than half full, so that the runs of taken slots are
// short.
class hash_slots {
public:
    // An empty table for at most `count` members. False without memory.
    [[nodiscard]] bool allocate(std::uint64_t count)
    {
        const std::uint64_t members = std::clamp<std::uint64_t>(count, 8, NONE_INDEX);
        const std::uint64_t size = std::bit_ceil(2 * members);
        mask_ = size - 1;
        return slots_.allocate(size, NONE_INDEX);
    }

    // The slot whose content is the member that is looked for, or the free one where it belongs.
    template <class IsMember>
    unsigned int& find(std::uint64_t hash, IsMember is_member)
    {
        std::uint64_t i = hash & mask_;
        while (slots_[i] != NONE_INDEX && !is_member(slots_[i])) i = (i + 1) & mask_;
        return slots_[i];
    }

    const unsigned int* begin() const { return slots_.begin(); }
    const unsigned int* end() const { return slots_.end(); }

private:
    scratch<unsigned int> slots_;
    std::uint64_t mask_ = 0;
};

}  // namespace zeb::tessolv

#endif
