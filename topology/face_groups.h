#ifndef TESSOLV_TOPOLOGY_FACE_GROUPS_H
#define TESSOLV_TOPOLOGY_FACE_GROUPS_H

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include <tessolv/element_type.h>

#include "core/columns.h"
#include "core/index_runs.h"
#include "core/scratch.h"

// Equal faces brought together. Faces are equal when their sorted vertices are, so orientation plays no part.
//
// The faces are put into ranges of their least vertex, a few thousand faces each, which keeps the random access of the
// comparison inside the caches. A small hash table, used for one range after the other, then finds the groups. Nothing
// is as long as the largest vertex, and what does not suit the table (a fan of elements on one vertex, numbers made to
// collide) is sorted instead: the time is linear for meshes and O(n log n) at worst.
namespace zeb::tessolv {

// The least and the largest number among vertices.
struct vertex_bounds {
    unsigned int lowest = NONE_INDEX;
    unsigned int highest = 0;

    // Takes in the first `nodes` rows of a connectivity; NONE_INDEX is no vertex.
    void include(const dense2D<unsigned int>& connect, std::uint64_t nodes)
    {
        unsigned int beyond = 0;
        if (nodes == connect.rows) {
            for_each_run(connect, [&](const unsigned int* run, std::uint64_t count) {
                widen_by_run(run, count, lowest, beyond);
            });
        } else {
            for (std::uint64_t e = 0; e < connect.cols; ++e) widen(column(connect, e), nodes, lowest, beyond);
        }
        if (beyond != 0) highest = std::max(highest, beyond - 1);
    }
};

// The range that a vertex belongs to, and its place in it. Numbers that are dense keep their order, so that a well
// numbered mesh is walked from front to back; thin ones are spread by a multiplier, which no two of them survive alike.
class vertex_ranges {
public:
    vertex_ranges() = default;
    vertex_ranges(const vertex_bounds& bounds, std::uint64_t faces)
        : lowest_(bounds.lowest), count_(std::clamp(std::bit_ceil(faces / usual_length), std::uint64_t{8}, most))
    {
        const unsigned int span = bounds.highest - bounds.lowest;
        const bool thin = span / 4 > faces;
        multiplier_ = thin ? 0x9E3779B1u : 1u;
        const int bits = thin ? 32 : std::bit_width(span);
        shift_ = std::max(0, bits - std::countr_zero(count_));
    }

    std::uint64_t count() const { return count_; }
    std::uint64_t range(unsigned int vertex) const { return key(vertex) >> shift_; }
    // Below 2^29: there are at least 8 ranges.
    unsigned int place(unsigned int vertex) const { return key(vertex) & ((1u << shift_) - 1); }

private:
    static constexpr std::uint64_t usual_length = 2048;
    static constexpr std::uint64_t most = 2048;  // streams that a scatter keeps open

    unsigned int key(unsigned int vertex) const { return (vertex - lowest_) * multiplier_; }

    unsigned int lowest_ = 0;
    unsigned int multiplier_ = 1;
    int shift_ = 0;
    std::uint64_t count_ = 8;
};

// Faces of `Width` vertices, each under an ID below 2^35.
template <std::size_t Width>
class face_groups {
public:
    using face = std::array<unsigned int, Width>;  // vertices, ascending

    // Well mixed in the high bits. The table takes it of faces whose least vertex is replaced by its place in the
    // range.
    static std::uint64_t hash(const face& f)
    {
        std::uint64_t h = 0;
        for (const unsigned int v : f) h = (h ^ v) * 0x9FB21C651E98DF25u;
        h ^= h >> 32;
        return h * 0x9E3779B97F4A7C15u;
    }

    // walk(enter) calls enter(face, id) for every face, in ascending order of the IDs; it is run twice. At most
    // `at_most` faces come. False without memory.
    template <class Walk>
    [[nodiscard]] bool collect(const vertex_bounds& bounds, std::uint64_t at_most, Walk walk)
    {
        const vertex_ranges ranges(bounds, at_most);
        if (!ends_.allocate(ranges.count() + 1, 0)) return false;
        std::uint64_t* const ends = ends_.data();
        walk([&](const face& f, std::uint64_t) { ++ends[ranges.range(f[0]) + 1]; });
        const std::uint64_t longest = longest_for_table();
        for (std::uint64_t r = 0; r < ranges.count(); ++r) ends[r + 1] += ends[r];

        if (!records_.allocate(ends[ranges.count()]) || !slots_.allocate(slots_for(longest))) return false;
        record* const records = records_.data();
        // The start of each range moves up to its end.
        walk([&](const face& f, std::uint64_t id) { records[ends[ranges.range(f[0])]++].set(f, id, ranges); });
        return true;
    }

    // Calls visit(first, second, id) with the IDs of the faces of each group in ascending order: (a, a, a) for the
    // first, (a, b, b) for the second, (a, b, c) for every later one. Once the visits to a group have begun they may
    // start over, from (a, a, a) or from (a, b, b); the last time they are complete.
    template <class Visit>
    void for_each(Visit visit)
    {
        std::uint64_t begin = 0;
        for (std::uint64_t r = 0; r + 1 < ends_.size(); ++r) {
            record* const first = records_.data() + begin;
            const std::uint64_t count = ends_[r] - begin;
            if (count > most_in_table || !group_by_table(first, count, visit)) group_by_sorting(first, count, visit);
            begin = ends_[r];
        }
    }

private:
    static constexpr std::uint64_t most_in_table = std::uint64_t{1} << 16;
    static constexpr unsigned int most_probes = 256;  // far beyond what chance does at this load

    // Place of the least vertex in its range and low part of the ID, further vertices, high part of the ID: 16 bytes
    // for a triangle.
    struct record {
        std::array<unsigned int, Width + 1> values;

        void set(const face& f, std::uint64_t id, const vertex_ranges& ranges)
        {
            values[0] = ranges.place(f[0]) << 3 | static_cast<unsigned int>(id & 7);
            for (std::size_t i = 1; i < Width; ++i) values[i] = f[i];
            values[Width] = static_cast<unsigned int>(id >> 3);
        }

        std::uint64_t id() const { return std::uint64_t{values[Width]} << 3 | (values[0] & 7); }

        // The vertices alone.
        face vertices() const
        {
            face f;
            f[0] = values[0] >> 3;
            for (std::size_t i = 1; i < Width; ++i) f[i] = values[i];
            return f;
        }

        friend bool same_face(const record& a, const record& b)
        {
            bool same = (a.values[0] ^ b.values[0]) < 8;
            for (std::size_t i = 1; i < Width; ++i) same &= a.values[i] == b.values[i];
            return same;
        }

        friend bool before(const record& a, const record& b)
        {
            const face of_a = a.vertices();
            const face of_b = b.vertices();
            return of_a != of_b ? of_a < of_b : a.id() < b.id();
        }
    };

    // The first two faces of a group by their places in the range.
    struct slot {
        unsigned int first;
        unsigned int second;
    };

    // At least two slots a face.
    static std::uint64_t slots_for(std::uint64_t count) { return std::bit_ceil(2 * count + 2); }

    // The longest range that the table takes; called while `ends_` still holds the length of range r under r + 1.
    std::uint64_t longest_for_table() const
    {
        std::uint64_t longest = 0;
        for (const std::uint64_t length : ends_)
            if (length <= most_in_table) longest = std::max(longest, length);
        return longest;
    }

    // False when the faces crowd in the table.
    template <class Visit>
    bool group_by_table(const record* records, std::uint64_t count, Visit& visit)
    {
        const std::uint64_t mask = slots_for(count) - 1;
        const int shift = 64 - std::popcount(mask);
        slot* const slots = slots_.data();
        std::fill(slots, slots + mask + 1, slot{NONE_INDEX, NONE_INDEX});
        for (unsigned int i = 0; i < count; ++i) {
            std::uint64_t s = hash(records[i].vertices()) >> shift;
            for (unsigned int probes = 0;; s = (s + 1) & mask) {
                if (slots[s].first == NONE_INDEX) {
                    slots[s].first = i;
                    visit(records[i].id(), records[i].id(), records[i].id());
                    break;
                }
                if (same_face(records[slots[s].first], records[i])) {
                    if (slots[s].second == NONE_INDEX) slots[s].second = i;
                    visit(records[slots[s].first].id(), records[slots[s].second].id(), records[i].id());
                    break;
                }
                if (++probes == most_probes) return false;
            }
        }
        return true;
    }

    template <class Visit>
    static void group_by_sorting(record* records, std::uint64_t count, Visit& visit)
    {
        std::sort(records, records + count, [](const record& a, const record& b) { return before(a, b); });
        const record* first = records;
        for (const record* r = records; r != records + count; ++r) {
            if (!same_face(*first, *r)) first = r;
            visit(first->id(), first[r != first].id(), r->id());
        }
    }

    scratch<record> records_;
    scratch<std::uint64_t> ends_;
    scratch<slot> slots_;
};

}  // namespace zeb::tessolv

#endif
