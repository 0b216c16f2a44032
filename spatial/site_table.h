#ifndef TESSOLV_SPATIAL_SITE_TABLE_H
#define TESSOLV_SPATIAL_SITE_TABLE_H

#include <algorithm>
#include <array>
#include <cstdint>

#include <zeb/dense1D.h>
#include <zeb/dense2D.h>

#include "core/scratch.h"
#include "spatial/point.h"

namespace zeb::tessolv {

// Nodes that share a position; the zeros of both signs are equal. What is within a distance of one of them is within it
// of all. Visitors look for targets; a node may be both.
template <int D>
struct site {
    point<D> x;
    unsigned int target;     // the node that stands for the targets here, the first one that visits if any does
    unsigned int bystander;  // the first node here that visits and is no target
    unsigned int followers;  // number of the other targets
    unsigned int taken_by;   // what the followers have become, NONE_INDEX while they are free
};

// The sites of two lists of distinct nodes, in the order of their first visitor, those of targets alone at the end.
template <int D>
class site_table {
public:
    explicit site_table(const dense2D<double>& pos) : pos_(pos) {}

    // Of nodes that all visit and are targets. False without memory.
    [[nodiscard]] bool build(const dense1D<unsigned int>& nodes);

    // Of different lists. False without memory.
    [[nodiscard]] bool build(const dense1D<unsigned int>& visitors, const dense1D<unsigned int>& targets);

    unsigned int size() const { return count_; }
    site<D>& operator[](std::size_t number) { return sites_[number]; }
    const site<D>& operator[](std::size_t number) const { return sites_[number]; }

    // The site of the k-th visitor or target, NONE_INDEX when it has a NaN coordinate.
    unsigned int of_visitor(std::uint64_t k) const { return of_visitor_[k]; }
    unsigned int of_target(std::uint64_t k) const { return of_target_.empty() ? of_visitor_[k] : of_target_[k]; }
    bool has_nan() const { return has_nan_; }

private:
    // The sites by their positions: open addressing, never more than half full, grown with their number.
    struct slot {
        std::uint32_t tag;  // other bits of the hash than those that led here
        unsigned int site;  // NONE_INDEX: free
    };
    struct lookup {
        point<D> x;
        std::uint64_t hash;
    };
    static constexpr std::size_t batch = 16;

    [[nodiscard]] bool clear(std::uint64_t most);
    [[nodiscard]] bool grow();
    unsigned int find_or_add(const lookup& wanted);
    template <class Meet>
    [[nodiscard]] bool number(const dense1D<unsigned int>& nodes, scratch<unsigned int>& numbers, Meet meet);

    static std::uint32_t tag_of(std::uint64_t hash) { return static_cast<std::uint32_t>(hash >> 32); }

    const dense2D<double>& pos_;
    scratch<slot> slots_;
    scratch<site<D>> sites_;
    unsigned int count_ = 0;
    bool has_nan_ = false;
    scratch<unsigned int> of_visitor_;
    scratch<unsigned int> of_target_;
};

template <int D>
bool site_table<D>::build(const dense1D<unsigned int>& nodes)
{
    const bool done = clear(nodes.size) && number(nodes, of_visitor_, [](site<D>& s, unsigned int node) {
                          if (s.target == NONE_INDEX)
                              s.target = node;
                          else
                              ++s.followers;
                      });
    slots_ = scratch<slot>();
    return done;
}

template <int D>
bool site_table<D>::build(const dense1D<unsigned int>& visitors, const dense1D<unsigned int>& targets)
{
    scratch<bool> is_target;
    if (!is_target.allocate(pos_.cols, false) || !clear(visitors.size + targets.size)) return false;
    for (const unsigned int node : targets) is_target[node] = true;
    const auto meet_visitor = [&](site<D>& s, unsigned int node) {
        unsigned int& first_of_kind = is_target[node] ? s.target : s.bystander;
        if (first_of_kind == NONE_INDEX) first_of_kind = node;
    };
    const auto meet_target = [&](site<D>& s, unsigned int node) {
        if (s.target == NONE_INDEX)
            s.target = node;
        else if (s.target != node)
            ++s.followers;
    };
    const bool done = number(visitors, of_visitor_, meet_visitor) && number(targets, of_target_, meet_target);
    slots_ = scratch<slot>();
    return done;
}

// No site yet; room for `most`, of which only what is used is touched.
template <int D>
bool site_table<D>::clear(std::uint64_t most)
{
    constexpr std::size_t slots_at_first = 4096;
    count_ = 0;
    has_nan_ = false;
    of_target_.clear();
    return sites_.allocate(most) && slots_.allocate(slots_at_first, {0, NONE_INDEX});
}

// Finds the sites of the nodes or makes them, and calls meet(site, node) for each. Several nodes are looked up at a time,
// so that the memory of one is fetched while the others wait for theirs.
template <int D>
template <class Meet>
bool site_table<D>::number(const dense1D<unsigned int>& nodes, scratch<unsigned int>& numbers, Meet meet)
{
    if (!numbers.allocate(nodes.size)) return false;
    std::array<lookup, batch> wanted;
    const double* coordinates = nodes.empty() ? nullptr : column(pos_, 0);
    const std::uint64_t ld = pos_.ld;
    for (std::uint64_t begin = 0; begin < nodes.size; begin += batch) {
        const std::uint64_t end = std::min(nodes.size, begin + batch);
        if (2 * (count_ + batch) > slots_.size() && !grow()) return false;
        for (std::uint64_t k = begin; k < end; ++k) {
            lookup& w = wanted[k - begin];
            std::copy_n(coordinates + ld * nodes[k], D, w.x.begin());
            w.hash = hash_of(w.x);
            __builtin_prefetch(&slots_[w.hash & (slots_.size() - 1)]);
        }
        for (std::uint64_t k = begin; k < end; ++k) {
            const slot& likely = slots_[wanted[k - begin].hash & (slots_.size() - 1)];
            if (likely.site != NONE_INDEX) __builtin_prefetch(&sites_[likely.site]);
        }
        for (std::uint64_t k = begin; k < end; ++k) {
            numbers[k] = find_or_add(wanted[k - begin]);
            if (numbers[k] != NONE_INDEX) meet(sites_[numbers[k]], nodes[k]);
        }
    }
    return true;
}

template <int D>
unsigned int site_table<D>::find_or_add(const lookup& wanted)
{
    const std::size_t mask = slots_.size() - 1;
    std::size_t i = wanted.hash & mask;
    for (; slots_[i].site != NONE_INDEX; i = (i + 1) & mask)
        if (slots_[i].tag == tag_of(wanted.hash) && sites_[slots_[i].site].x == wanted.x) return slots_[i].site;
    if (wanted.x != wanted.x) {
        has_nan_ = true;
        return NONE_INDEX;
    }
    slots_[i] = {tag_of(wanted.hash), count_};
    sites_[count_] = {wanted.x, NONE_INDEX, NONE_INDEX, 0, NONE_INDEX};
    return count_++;
}

// In larger steps while that is cheap.
template <int D>
bool site_table<D>::grow()
{
    constexpr std::size_t small = 1 << 18;
    scratch<slot> larger;
    if (!larger.allocate((slots_.size() < small ? 4 : 2) * slots_.size(), {0, NONE_INDEX})) return false;
    const std::size_t mask = larger.size() - 1;
    for (unsigned int s = 0; s < count_; ++s) {
        const std::uint64_t hash = hash_of(sites_[s].x);
        std::size_t i = hash & mask;
        while (larger[i].site != NONE_INDEX) i = (i + 1) & mask;
        larger[i] = {tag_of(hash), s};
    }
    slots_.swap(larger);
    return true;
}

}  // namespace zeb::tessolv

#endif
