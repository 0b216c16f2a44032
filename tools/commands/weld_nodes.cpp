#include <algorithm>
#include <cmath>
#include <numeric>
#include <span>

#include "commands/weld.h"
#include "errors.h"
#include "findings/face_list.h"
#include "mesh/edit.h"

namespace tool {
namespace {

using indices = zeb::dense1D<unsigned int>;
namespace library = zeb::tessolv;

// The survivors of all nodes; `step` gives those of one merge.
void compose(std::vector<std::uint32_t>& survivor, const indices& step)
{
    if (step.empty()) return;
    for (std::uint32_t& s : survivor)
        while (step[s] != s) s = step[s];
}

indices list_of(const std::vector<unsigned int>& nodes)
{
    indices list;
    if (!list.resize(nodes.size())) throw std::bad_alloc();
    std::ranges::copy(nodes, list.begin());
    return list;
}

double distance(const mesh& m, std::uint64_t a, std::uint64_t b)
{
    double sum = 0;
    for (std::uint64_t i = 0; i < m.pos.rows; ++i) {
        const double d = m.pos(i, a) - m.pos(i, b);
        sum += d * d;
    }
    return std::sqrt(sum);
}

// Merges nodes of different parts: those of the first half of the parts with those of the second half, and so on within
// each half, so that the time does not grow with the square of their number.
class across_parts {
public:
    across_parts(const mesh& m, double tolerance, std::vector<std::uint32_t>& survivor)
        : m_(m), tolerance_(tolerance), survivor_(survivor)
    {
        const face_list faces(m, dimension_of(m));
        const mesh_parts parts = parts_of(m, faces);
        nodes_.resize(parts.count);
        std::vector<bool> seen(m.pos.cols, false);
        std::uint64_t place = 0;
        for (const element_block& block : m.blocks)
            for (std::uint64_t e = 0; e < block.size(); ++e, ++place)
                take(std::span(&block.connect(0, e), block.connect.rows), parts.part_of[place], seen);
    }

    void run()
    {
        run(0, nodes_.size());
        for (std::uint32_t& s : survivor_)
            while (survivor_[s] != s) s = survivor_[s];
    }

private:
    void take(std::span<const unsigned int> nodes, std::uint32_t part, std::vector<bool>& seen)
    {
        for (const unsigned int node : nodes) {
            if (part == mesh_parts::none || seen[node]) continue;
            seen[node] = true;
            nodes_[part].push_back(node);
        }
    }

    std::vector<unsigned int> nodes_of(std::size_t first, std::size_t last) const
    {
        std::vector<unsigned int> all;
        for (std::size_t p = first; p < last; ++p)
            for (const unsigned int node : nodes_[p])
                if (survivor_[node] == node) all.push_back(node);
        return all;
    }

    void run(std::size_t first, std::size_t last)
    {
        if (last - first < 2) return;
        const std::size_t middle = first + (last - first) / 2;
        run(first, middle);
        run(middle, last);
        std::vector<pair> pairs = close_pairs(nodes_of(first, middle), nodes_of(middle, last));
        std::ranges::stable_sort(pairs, {}, &pair::distance);
        for (const pair& p : pairs)
            if (survivor_[p.moved] == p.moved) survivor_[p.moved] = p.stays;
    }

    struct pair {
        double distance;
        unsigned int stays;
        unsigned int moved;
    };

    // Pairs of a node of one list and a node of the other within the tolerance. (The library's merge of two lists
    // passes over a node that has a single other one in its reach.)
    std::vector<pair> close_pairs(const std::vector<unsigned int>& some, const std::vector<unsigned int>& others) const
    {
        library::node_detector detector;
        checked(detector.reinit(m_.pos, list_of(others)), "reinit");
        std::vector<pair> pairs;
        indices found;
        for (const unsigned int node : some) {
            zeb::vector_fixed<double, 3> low;
            zeb::vector_fixed<double, 3> high;
            for (std::uint64_t i = 0; i < m_.pos.rows; ++i) {
                low[i] = m_.pos(i, node) - tolerance_;
                high[i] = m_.pos(i, node) + tolerance_;
            }
            detector.find_in_box(low, high, found);
            for (const unsigned int other : found) {
                const double d = distance(m_, node, other);
                if (d <= tolerance_) pairs.push_back({d, node, other});
            }
        }
        return pairs;
    }

    const mesh& m_;
    double tolerance_;
    std::vector<std::uint32_t>& survivor_;
    std::vector<std::vector<unsigned int>> nodes_;
};

void merge_range(const mesh& m, double tolerance, unsigned int mode, std::vector<std::uint32_t>& survivor)
{
    std::vector<connectivity> copies;  // renumbered by the library
    for (const element_block& block : m.blocks) copies.push_back(block.connect);
    indices step;
    checked(library::merge(m.pos, copies.data(), copies.data() + copies.size(), step, tolerance, mode), "merge");
    compose(survivor, step);
}

void renumber(mesh& m, const std::vector<std::uint32_t>& survivor)
{
    std::vector<bool> keep(survivor.size());
    for (std::size_t j = 0; j < keep.size(); ++j) keep[j] = survivor[j] == j;
    for (element_block& block : m.blocks)
        for (std::uint64_t e = 0; e < block.size(); ++e)
            for (std::uint64_t i = 0; i < block.connect.rows; ++i) block.connect(i, e) = survivor[block.connect(i, e)];
    keep_nodes(m, keep);
}

}  // namespace

weld_result weld_nodes(mesh& m, double tolerance, weld_scope scope)
{
    weld_result result;
    result.tolerance = tolerance;
    result.survivor.resize(m.pos.cols);
    std::iota(result.survivor.begin(), result.survivor.end(), 0u);
    constexpr unsigned int any_nodes = 0;
    constexpr unsigned int of_one_element_until_done = 2;
    if (scope == weld_scope::across_parts)
        across_parts(m, tolerance, result.survivor).run();
    else
        merge_range(m, tolerance, scope == weld_scope::anywhere ? any_nodes : of_one_element_until_done,
                    result.survivor);
    result.distances.assign(m.pos.cols, 0);
    for (std::uint64_t j = 0; j < m.pos.cols; ++j) {
        result.merged += result.survivor[j] != j;
        result.distances[j] = distance(m, j, result.survivor[j]);
    }
    if (result.merged != 0) renumber(m, result.survivor);
    return result;
}

}  // namespace tool
