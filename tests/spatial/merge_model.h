#ifndef TESTS_SPATIAL_MERGE_MODEL_H
#define TESTS_SPATIAL_MERGE_MODEL_H

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include "spatial/tree_model.h"

// Merging as it is defined: a box in the tree for every visit, all pairs in one list, a stable sort.

namespace model {

using node_list = std::vector<unsigned>;
using mesh = std::vector<std::vector<unsigned>>;  // by columns

inline node_list distinct(const node_list& nodes)
{
    node_list found;
    for (const unsigned node : nodes)
        if (node != NONE_INDEX && std::find(found.begin(), found.end(), node) == found.end()) found.push_back(node);
    return found;
}

inline node_list nodes_of(const std::vector<mesh>& meshes)
{
    node_list all;
    for (const mesh& m : meshes)
        for (const auto& column : m) all.insert(all.end(), column.begin(), column.end());
    return distinct(all);
}

struct pair {
    float distance;
    unsigned visitor;
    unsigned candidate;
};

class merger {
public:
    merger(const dense2D<double>& pos, double tolerance) : tree_(pos), tolerance_(tolerance), new_IDs(pos.cols)
    {
        std::iota(new_IDs.begin(), new_IDs.end(), 0u);
    }

    int merge_sets(const node_list& nodes1, const node_list& nodes2)
    {
        tree_.insert(distinct(nodes2));
        for (const unsigned i : nodes1) {
            if (new_IDs[i] != i) continue;
            const node_list hits = collect(i);
            if (hits.size() == 1) continue;
            for (const unsigned j : hits) {
                if (j == i || new_IDs[j] != j) continue;
                const double d = distance(i, j);
                if (d > tolerance_) continue;
                pairs_.push_back({static_cast<float>(d), i, j});
            }
        }
        const int count = apply();
        compress(distinct(nodes1));
        return count;
    }

    int merge_in_elements(std::vector<mesh>& meshes, bool repeatedly)
    {
        const node_list nodes = nodes_of(meshes);
        tree_.insert(nodes);
        int total = 0;
        for (int count = 1; count != 0;) {
            for (const mesh& m : meshes)
                for (const auto& column : m)
                    for (const unsigned a : column) collect_in(column, a);
            count = apply();
            compress(nodes);
            renumber(meshes);
            total += count;
            if (!repeatedly) break;
        }
        return total;
    }

    void renumber(std::vector<mesh>& meshes) const
    {
        for (mesh& m : meshes)
            for (auto& column : m)
                for (unsigned& node : column)
                    if (node < new_IDs.size()) node = new_IDs[node];
    }

private:
    tree tree_;
    double tolerance_;
    std::vector<pair> pairs_;

public:
    node_list new_IDs;

private:
    double distance(unsigned i, unsigned j) const { return std::sqrt(squared_distance(tree_.at(i), tree_.at(j))); }

    node_list collect(unsigned i) const
    {
        node_list hits;
        tree_.find_in_box(shifted(tree_.at(i), -tolerance_), shifted(tree_.at(i), tolerance_), hits);
        return hits;
    }

    void collect_in(const std::vector<unsigned>& column, unsigned a)
    {
        if (a == NONE_INDEX || new_IDs[a] != a) return;
        const node_list hits = collect(a);
        if (hits.size() == 1) return;
        for (const unsigned b : hits) {
            if (b == a || new_IDs[b] != b || std::find(column.begin(), column.end(), b) == column.end()) continue;
            const float d = static_cast<float>(distance(a, b));
            if (!(static_cast<double>(d) > tolerance_)) pairs_.push_back({d, a, b});
        }
    }

    // A distance that is no number, between infinite coordinates, comes last.
    int apply()
    {
        std::stable_sort(pairs_.begin(), pairs_.end(), [](const pair& a, const pair& b) {
            return a.distance < b.distance || (!std::isnan(a.distance) && std::isnan(b.distance));
        });
        int count = 0;
        for (const auto& [d, i, j] : pairs_) {
            if (new_IDs[i] != i || new_IDs[j] != j) continue;
            new_IDs[j] = i;
            ++count;
        }
        pairs_.clear();
        return count;
    }

    void compress(const node_list& nodes)
    {
        for (const unsigned k : nodes) {
            unsigned r = k;
            while (new_IDs[r] != r) r = new_IDs[r];
            new_IDs[k] = r;
        }
    }
};

}  // namespace model

#endif
