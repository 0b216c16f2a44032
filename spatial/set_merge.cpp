#include "spatial/set_merge.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/scratch.h"
#include "spatial/balanced_tree.h"
#include "spatial/cell_filter.h"
#include "spatial/node_pairs.h"
#include "spatial/site_table.h"
#include "spatial/visible_nodes.h"

namespace zeb::tessolv {
namespace {

// A pair for every two nodes within the tolerance may be too many. What keeps their number down:
// Sites. Targets at one position are at one distance from each visitor; they are taken together, all but the visitor
// itself. And of the visitors at a position only two count, the first that is a target and the first that is none: when
// the turn of another one comes, at distance 0, it has been taken itself or nothing is left for it.
// Rounds. If there are still too many, those up to some distance are collected and applied first. The others come later
// anyway, and by then pairs of nodes that are not free need no collecting. What is left after a round is farther apart
// than its distance, so that there are few neighbours within twice that.
template <int D>
class set_merge {
public:
    set_merge(const dense2D<double>& pos, double tolerance, unsigned int* new_IDs)
        : pos_(pos), sites_(pos), tolerance_(tolerance), new_IDs_(new_IDs)
    {
    }

    [[nodiscard]] bool run(const dense1D<unsigned int>& visitors, const dense1D<unsigned int>& targets,
                           std::uint64_t most);
    std::uint64_t merges() const { return merges_; }

private:
    enum class outcome { complete, too_many, no_memory };

    struct visitor {
        unsigned int node;
        unsigned int visit;  // grows from visitor to visitor
        unsigned int site;
        bool has_company;  // there may be other sites in its box
    };

    static constexpr std::uint32_t beyond_all = last_rank + 1;

    bool is_free(unsigned int node) const { return new_IDs_[node] == node; }
    bool has_free(const site<D>& s, unsigned int other_than) const;
    bool find_sites(const dense1D<unsigned int>& visitors, const dense1D<unsigned int>& targets);
    bool list_visitors(const dense1D<unsigned int>& visitors);
    bool find_company();
    bool is_lonely_bystander(const visitor& v) const;
    bool merge_in_rounds(std::uint64_t most);
    bool start_round();
    bool order_collectors();
    double reach_of(std::uint32_t end) const;
    std::uint32_t calmer_end(std::uint32_t end, int failures) const;
    outcome collect(std::uint32_t begin, std::uint32_t end, std::uint64_t most);
    bool add_own_pairs(std::uint32_t begin, std::uint32_t end);
    void apply(const node_pair& pair);
    void apply_pairs();
    void settle(const dense1D<unsigned int>& visitors);
    void settle_by_sites(const dense1D<unsigned int>& nodes);

    const dense2D<double>& pos_;
    dense1D<unsigned int> targets_;
    site_table<D> sites_;
    double tolerance_;
    unsigned int* new_IDs_;
    std::uint64_t merges_ = 0;
    scratch<visitor> visitors_;
    balanced_tree<D> neighborhood_;     // the sites that visitors with company look at
    scratch<unsigned int> collectors_;  // visitors with company, in the order of their places there
    bool is_one_list_ = false;          // all visitors are targets, and the other way round
    double crowd_ = 0;                  // neighbours of a visitor in the collection that was given up last
    scratch<node_pair> pairs_;
};

template <int D>
bool set_merge<D>::run(const dense1D<unsigned int>& visitors, const dense1D<unsigned int>& targets, std::uint64_t most)
{
    if (!find_sites(visitors, targets) || !list_visitors(visitors) || !find_company()) return false;
    const auto lonely = [this](const visitor& v) { return is_lonely_bystander(v); };
    const auto end = std::remove_if(visitors_.begin(), visitors_.end(), lonely);
    visitors_.truncate(static_cast<std::size_t>(end - visitors_.begin()));

    if (!order_collectors()) return false;
    const outcome at_once = collect(0, beyond_all, most);
    if (at_once == outcome::complete)
        apply_pairs();
    else if (at_once == outcome::no_memory || !merge_in_rounds(most))
        return false;
    is_one_list_ ? settle_by_sites(visitors) : settle(visitors);
    return true;
}

// One list needs no look at the hidden nodes unless a NaN turns up.
template <int D>
bool set_merge<D>::find_sites(const dense1D<unsigned int>& visitors, const dense1D<unsigned int>& targets)
{
    targets_.shallow_copy(targets);
    is_one_list_ = visitors.data() == targets.data() && visitors.size == targets.size;
    if (is_one_list_) {
        if (!sites_.build(visitors)) return false;
        if (!sites_.has_nan()) return true;
        is_one_list_ = false;
    }
    return find_visible_nodes<D>(pos_, targets, targets_) && sites_.build(visitors, targets_);
}

// Whether a target of the site other than the given node is free. Targets of a site are taken together.
template <int D>
bool set_merge<D>::has_free(const site<D>& s, unsigned int other_than) const
{
    return (s.target != NONE_INDEX && s.target != other_than && is_free(s.target)) ||
           (s.followers != 0 && s.taken_by == NONE_INDEX);
}

// Of one list, the first node of each site is what counts, and sites stand in the order of these.
template <int D>
bool set_merge<D>::list_visitors(const dense1D<unsigned int>& visitors)
{
    if (is_one_list_) {
        if (!visitors_.allocate(sites_.size())) return false;
        for (unsigned int s = 0; s < sites_.size(); ++s) visitors_[s] = {sites_[s].target, s, s, false};
        return true;
    }
    if (!visitors_.allocate(std::min<std::uint64_t>(visitors.size, 2 * sites_.size()))) return false;
    visitors_.clear();
    for (std::uint64_t k = 0; k < visitors.size; ++k) {
        const unsigned int s = sites_.of_visitor(k);
        const unsigned int node = visitors[k];
        if (s != NONE_INDEX && (node == sites_[s].target || node == sites_[s].bystander) &&
            !visitors_.push_back({node, static_cast<unsigned int>(k), s, false}))
            return false;
    }
    return true;
}

// Tells the visitors that are alone within the tolerance from the others, and arranges the sites that those look at.
template <int D>
bool set_merge<D>::find_company()
{
    cell_filter<D> cells;
    scratch<typename cell_filter<D>::spot> spots;
    if (!cells.allocate(sites_.size(), tolerance_) || !spots.allocate(sites_.size())) return false;
    // The memory of several is fetched ahead.
    constexpr std::size_t ahead = 16;
    const auto prefetch = [&](std::size_t s) { cells.prefetch(spots[std::min<std::size_t>(s, sites_.size() - 1)]); };
    const auto has_target = [this](std::size_t s) { return sites_[s].target != NONE_INDEX; };
    for (std::size_t s = 0; s < sites_.size() + ahead; ++s) {
        if (s < sites_.size()) cells.prefetch(spots[s] = cells.locate(sites_[s].x));
        if (s >= ahead && has_target(s - ahead)) cells.enter(spots[s - ahead]);
    }
    bool any = false;
    for (visitor& v : visitors_) {
        prefetch(v.site + ahead);
        v.has_company = !cells.is_alone(sites_[v.site].x, spots[v.site], has_target(v.site));
        any |= v.has_company;
    }
    scratch<typename balanced_tree<D>::item> looked_at;
    if (any) {
        cells.forget();
        for (const visitor& v : visitors_)
            if (v.has_company) cells.mark_around(sites_[v.site].x);
        for (unsigned int s = 0; s < sites_.size(); ++s) {
            prefetch(s + ahead);
            if (has_target(s) && cells.is_marked(spots[s]) && !looked_at.push_back({sites_[s].x, s})) return false;
        }
    }
    return neighborhood_.build(looked_at);
}

// Orders the visitors with company by their places in the neighbourhood: each finds what it needs where the one before
// has been. Those whose site nobody looks at come last.
template <int D>
bool set_merge<D>::order_collectors()
{
    collectors_.clear();
    if (neighborhood_.size() == 0) return true;
    scratch<unsigned int> place;
    scratch<unsigned int> ends;
    if (!place.allocate(sites_.size(), static_cast<unsigned>(neighborhood_.size())) ||
        !ends.allocate(neighborhood_.size() + 2, 0))
        return false;
    for (unsigned int k = 0; k < neighborhood_.size(); ++k) place[neighborhood_.items()[k].id] = k;
    for (const visitor& v : visitors_) ends[place[v.site] + 1] += v.has_company;
    for (std::size_t k = 1; k < ends.size(); ++k) ends[k] += ends[k - 1];
    if (!collectors_.allocate(ends.back())) return false;
    for (unsigned int i = 0; i < visitors_.size(); ++i)
        if (visitors_[i].has_company) collectors_[ends[place[visitors_[i].site]]++] = i;
    return true;
}

// A visitor with a single target in its box passes it over. Of one that is a target this means itself.
template <int D>
bool set_merge<D>::is_lonely_bystander(const visitor& v) const
{
    const site<D>& own = sites_[v.site];
    if (v.node != own.bystander) return false;
    const box<D> around = box_around<D>(sites_[v.site].x, tolerance_);
    std::uint64_t hits = 0;
    const auto count = [&](unsigned int s) { return (hits += 1u + sites_[s].followers) < 2; };
    if (v.has_company)
        neighborhood_.visit_box(around, [&](const auto& item) { return count(item.id); });
    else if (own.target != NONE_INDEX && around.contains(sites_[v.site].x))
        count(v.site);
    return hits < 2;
}

// Half-width of a box that holds what is nearer than the distance of rank `end`.
template <int D>
double set_merge<D>::reach_of(std::uint32_t end) const
{
    constexpr double rounding = 1.000001;  // of the distance to float
    constexpr double underflow = 1e-150;   // of the squares that are summed
    return end == beyond_all ? tolerance_ : std::min(tolerance_, distance_of(end) * rounding + underflow);
}

// Collects the pairs whose distance has a rank of [begin, end). Gives up when more than `most` neighbours were looked at.
template <int D>
typename set_merge<D>::outcome set_merge<D>::collect(std::uint32_t begin, std::uint32_t end, std::uint64_t most)
{
    const double reach = reach_of(end);
    outcome result = outcome::complete;
    std::uint64_t looked_at = 0;
    pairs_.clear();
    for (const unsigned int& i : collectors_) {
        const visitor& v = visitors_[i];
        const point<D>& P = sites_[v.site].x;
        const box<D> around = box_around<D>(P, tolerance_);
        neighborhood_.visit_box(box_around<D>(P, reach), [&](const auto& item) {
            const double d = distance(item.x, P);
            const std::uint32_t rank = rank_of(d);
            if (++looked_at > most)
                result = outcome::too_many;
            else if (item.id != v.site && around.contains(item.x) && !(d > tolerance_) && begin <= rank && rank < end &&
                     !pairs_.push_back({rank, v.visit, v.node, item.id}))
                result = outcome::no_memory;
            return result == outcome::complete;
        });
        if (result != outcome::complete) {
            crowd_ = static_cast<double>(looked_at) / static_cast<double>(&i - collectors_.begin() + 1);
            return result;
        }
    }
    return add_own_pairs(begin, end) ? outcome::complete : outcome::no_memory;
}

// Adds the pairs of visitors and their own sites, at distance 0 or, of infinite coordinates, NaN. As a rule they come
// before all others; then they are applied here and now.
template <int D>
bool set_merge<D>::add_own_pairs(std::uint32_t begin, std::uint32_t end)
{
    const auto at_no_distance = [](const node_pair& pair) { return pair.rank == 0; };
    const bool come_first = begin == 0 && std::none_of(pairs_.begin(), pairs_.end(), at_no_distance);
    for (const visitor& v : visitors_) {
        const site<D>& own = sites_[v.site];
        if (!has_free(own, v.node)) continue;
        const std::uint32_t rank = rank_of(distance(own.x, own.x));
        if (rank < begin || end <= rank || !box_around<D>(own.x, tolerance_).contains(own.x)) continue;
        const node_pair pair{rank, v.visit, v.node, v.site};
        if (rank == 0 && come_first)
            apply(pair);
        else if (!pairs_.push_back(pair))
            return false;
    }
    return true;
}

template <int D>
void set_merge<D>::apply(const node_pair& pair)
{
    if (!is_free(pair.visitor)) return;
    site<D>& s = sites_[pair.target];
    if (s.target != pair.visitor && is_free(s.target)) {
        new_IDs_[s.target] = pair.visitor;
        ++merges_;
    }
    if (s.followers != 0 && s.taken_by == NONE_INDEX) {
        s.taken_by = pair.visitor;
        merges_ += s.followers;
    }
}

template <int D>
void set_merge<D>::apply_pairs()
{
    sort_closest_first(pairs_);
    for (const node_pair& pair : pairs_) apply(pair);
}

template <int D>
void set_merge<D>::settle(const dense1D<unsigned int>& visitors)
{
    for (std::uint64_t k = 0; k < targets_.size; ++k) {
        if (sites_.of_target(k) == NONE_INDEX) continue;
        const site<D>& s = sites_[sites_.of_target(k)];
        if (targets_[k] != s.target && s.taken_by != NONE_INDEX) new_IDs_[targets_[k]] = s.taken_by;
    }
    // The nodes on the way are visitors too.
    for (const unsigned int node : visitors) follow(new_IDs_, node);
}

// The same of one list: what has become of a site is found once for all its nodes.
template <int D>
void set_merge<D>::settle_by_sites(const dense1D<unsigned int>& nodes)
{
    for (unsigned int i = 0; i < sites_.size(); ++i) {
        site<D>& s = sites_[i];
        follow(new_IDs_, s.target);
        if (s.taken_by != NONE_INDEX) s.taken_by = follow(new_IDs_, s.taken_by);
    }
    for (std::uint64_t k = 0; k < nodes.size; ++k) {
        const site<D>& s = sites_[sites_.of_visitor(k)];
        if (nodes[k] != s.target && s.taken_by != NONE_INDEX) new_IDs_[nodes[k]] = s.taken_by;
    }
}

// Ranks are the bits of a float: steps in them are ratios of distances.
constexpr std::uint32_t twice_the_distance = 1u << 23;
constexpr std::uint32_t least_step = twice_the_distance / 16;

// The end of a first round in which visitors have a few neighbours, after one that ended at `end` had too many: their
// number grows with the power D of the distance. Where it does not, with clusters of clusters, further failures lead
// farther down.
template <int D>
std::uint32_t set_merge<D>::calmer_end(std::uint32_t end, int failures) const
{
    constexpr double few = 6;
    const double reach = std::min(reach_of(end), neighborhood_.longest_side() / 2);
    const double calmer = reach * std::pow(few / std::max(crowd_, 2 * few), static_cast<double>(failures) / D);
    const std::uint32_t wanted = calmer > 0 && calmer < reach ? rank_of(calmer) : end / 2;
    return std::max(least_step, std::min(wanted, end - least_step));
}

// A round is not made shorter than some percent of its distance; if that still has more neighbours than the bound, they
// have to be taken.
template <int D>
bool set_merge<D>::merge_in_rounds(std::uint64_t most)
{
    std::uint32_t begin = 0;
    std::uint32_t end = calmer_end(beyond_all, 1);
    while (true) {
        if ((begin == 0 || !pairs_.empty()) && !start_round()) return false;
        if (visitors_.size() * neighborhood_.size() <= most / 16) end = beyond_all;
        outcome result = collect(begin, end, most);
        for (int failures = 1; result == outcome::too_many; ++failures) {
            if (end - begin <= least_step)
                most = 2 * most + visitors_.size();
            else
                end = begin == 0 ? calmer_end(end, failures) : begin + (end - begin) / 2;
            result = collect(begin, end, most);
        }
        if (result == outcome::no_memory) return false;
        apply_pairs();
        if (end == beyond_all) return true;
        const std::uint32_t step = begin != 0 && pairs_.empty() ? 2 * (end - begin) : twice_the_distance;
        begin = std::exchange(end, end + std::min(step, beyond_all - end));
    }
}

// Drops the visitors that were taken and arranges the sites that have something left.
template <int D>
bool set_merge<D>::start_round()
{
    const auto end =
        std::remove_if(visitors_.begin(), visitors_.end(), [this](const visitor& v) { return !is_free(v.node); });
    visitors_.truncate(static_cast<std::size_t>(end - visitors_.begin()));
    for (visitor& v : visitors_) v.has_company = true;
    scratch<typename balanced_tree<D>::item> open;
    for (unsigned int s = 0; s < sites_.size(); ++s)
        if (has_free(sites_[s], NONE_INDEX) && !open.push_back({sites_[s].x, s})) return false;
    return neighborhood_.build(open) && order_collectors();
}

template <int D>
bool run_merge(const dense2D<double>& pos, const dense1D<unsigned int>& visitors, const dense1D<unsigned int>& targets,
               double tolerance, std::uint64_t most, unsigned int* new_IDs, std::uint64_t& merges)
{
    set_merge<D> merge(pos, tolerance, new_IDs);
    const bool done = merge.run(visitors, targets, most);
    merges = merge.merges();
    return done;
}

}  // namespace

bool merge_closest_first(const dense2D<double>& pos, const dense1D<unsigned int>& visitors,
                         const dense1D<unsigned int>& targets, double tolerance, std::uint64_t most,
                         unsigned int* new_IDs, std::uint64_t& merges)
{
    return pos.rows == 2 ? run_merge<2>(pos, visitors, targets, tolerance, most, new_IDs, merges)
                         : run_merge<3>(pos, visitors, targets, tolerance, most, new_IDs, merges);
}

}  // namespace zeb::tessolv
