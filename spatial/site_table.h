#ifndef TESSOLV_SPATIAL_SITE_TABLE_H
#define TESSOLV_SPATIAL_SITE_TABLE_H

#include <cstdint>

#include <zeb/dense1D.h>
#include <zeb/dense2D.h>

#include "core/scratch.h"
#include "editing/hash_slots.h"
#include "spatial/point.h"

namespace zeb::tessolv {

// Nodes that share a position; the zeros of both signs are equal. What is within a distance of one of them is within it
// of all. Visitors look for targets; a node may be both.
struct site {
    unsigned int first;      // a node here: its coordinates are those of the site
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

    std::size_t size() const { return sites_.size(); }
    site& operator[](std::size_t number) { return sites_[number]; }
    const site& operator[](std::size_t number) const { return sites_[number]; }
    point<D> position(std::size_t number) const { return position_of<D>(pos_, sites_[number].first); }

    // The site of the k-th visitor or target, NONE_INDEX when it has a NaN coordinate.
    unsigned int of_visitor(std::uint64_t k) const { return of_visitor_[k]; }
    unsigned int of_target(std::uint64_t k) const { return of_target_.empty() ? of_visitor_[k] : of_target_[k]; }

private:
    [[nodiscard]] bool add(unsigned int node, unsigned int& number);

    const dense2D<double>& pos_;
    hash_slots slots_;
    scratch<site> sites_;
    scratch<unsigned int> of_visitor_;
    scratch<unsigned int> of_target_;
};

template <int D>
bool site_table<D>::build(const dense1D<unsigned int>& nodes)
{
    if (!slots_.allocate(nodes.size) || !of_visitor_.allocate(nodes.size)) return false;
    for (std::uint64_t k = 0; k < nodes.size; ++k) {
        if (!add(nodes[k], of_visitor_[k])) return false;
        if (of_visitor_[k] == NONE_INDEX) continue;
        site& s = sites_[of_visitor_[k]];
        if (s.target == NONE_INDEX)
            s.target = nodes[k];
        else
            ++s.followers;
    }
    return true;
}

template <int D>
bool site_table<D>::build(const dense1D<unsigned int>& visitors, const dense1D<unsigned int>& targets)
{
    scratch<bool> is_target;
    if (!is_target.allocate(pos_.cols, false) || !slots_.allocate(visitors.size + targets.size) ||
        !of_visitor_.allocate(visitors.size) || !of_target_.allocate(targets.size))
        return false;
    for (const unsigned int node : targets) is_target[node] = true;
    for (std::uint64_t k = 0; k < visitors.size; ++k) {
        if (!add(visitors[k], of_visitor_[k])) return false;
        if (of_visitor_[k] == NONE_INDEX) continue;
        site& s = sites_[of_visitor_[k]];
        unsigned int& first_of_kind = is_target[visitors[k]] ? s.target : s.bystander;
        if (first_of_kind == NONE_INDEX) first_of_kind = visitors[k];
    }
    for (std::uint64_t k = 0; k < targets.size; ++k) {
        if (!add(targets[k], of_target_[k])) return false;
        if (of_target_[k] == NONE_INDEX) continue;
        site& s = sites_[of_target_[k]];
        if (s.target == NONE_INDEX)
            s.target = targets[k];
        else if (s.target != targets[k])
            ++s.followers;
    }
    return true;
}

// Finds the site of the node or makes it.
template <int D>
bool site_table<D>::add(unsigned int node, unsigned int& number)
{
    const point<D> x = position_of<D>(pos_, node);
    number = NONE_INDEX;
    if (x != x) return true;
    unsigned int& slot = slots_.find(hash_of(x), [&](unsigned int s) { return position(s) == x; });
    if (slot == NONE_INDEX) {
        if (!sites_.push_back({node, NONE_INDEX, NONE_INDEX, 0, NONE_INDEX})) return false;
        slot = static_cast<unsigned int>(sites_.size() - 1);
    }
    number = slot;
    return true;
}

}  // namespace zeb::tessolv

#endif
