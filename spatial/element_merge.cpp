#include "spatial/element_merge.h"

#include <algorithm>
#include <utility>

#include "core/columns.h"
#include "core/scratch.h"
#include "spatial/balanced_tree.h"
#include "spatial/node_pairs.h"
#include "spatial/visible_nodes.h"

namespace zeb::tessolv {
namespace {

using connect_range = matrix_range<dense2D<unsigned int>>;

// The nodes that boxes can find. As long as no coordinate is NaN these are all.
template <int D>
class visibility {
public:
    [[nodiscard]] bool find(const dense2D<double>& pos, const dense1D<unsigned int>& nodes)
    {
        dense1D<unsigned int> visible;
        if (!find_visible_nodes<D>(pos, nodes, visible)) return false;
        if (visible.data() == nodes.data()) return true;
        scratch<typename balanced_tree<D>::item> items;
        if (!is_visible_.allocate(pos.cols, false) || !items.allocate(visible.size)) return false;
        for (std::uint64_t k = 0; k < visible.size; ++k) {
            is_visible_[visible[k]] = true;
            items[k] = {position_of<D>(pos, visible[k]), visible[k]};
        }
        return tree_.build(items);
    }

    bool includes(unsigned int node) const { return is_visible_.empty() || is_visible_[node]; }

    // Whether the node at the centre of the box collects anything: what finds a single node passes it over, which for a
    // visible one is itself.
    bool collects(unsigned int node, const box<D>& around) const
    {
        if (includes(node)) return true;
        int hits = 0;
        tree_.visit_box(around, [&](const auto&) { return ++hits < 2; });
        return hits == 2;
    }

private:
    scratch<bool> is_visible_;
    balanced_tree<D> tree_;
};

// The elements around each node, numbered through the range, while nodes merge: those of a node that was merged become
// elements of the one that stays.
class incidence {
public:
    // Whether the entries of the range can be numbered.
    static bool can_number(const connect_range& meshes)
    {
        std::uint64_t entries = 0;
        for (const auto& connect : meshes) entries += connect.rows * connect.cols;
        return entries < NONE_INDEX;
    }

    // False without memory.
    [[nodiscard]] bool build(const connect_range& meshes, std::uint64_t nodes)
    {
        if (!first_.allocate(nodes, NONE_INDEX) || !last_.allocate(nodes, NONE_INDEX)) return false;
        unsigned int element = 0;
        for (const auto& connect : meshes) {
            for (std::uint64_t e = 0; !connect.empty() && e < connect.cols; ++e, ++element)
                for (std::uint64_t r = 0; r < connect.rows; ++r)
                    if (connect(r, e) != NONE_INDEX && !add(element, connect(r, e))) return false;
        }
        return true;
    }

    // Appends the elements around the node. False without memory.
    [[nodiscard]] bool list(unsigned int node, scratch<unsigned int>& elements) const
    {
        for (unsigned int c = first_[node]; c != NONE_INDEX; c = cells_[c].next)
            if (!elements.push_back(cells_[c].element)) return false;
        return true;
    }

    // Both nodes are those of elements.
    void merge(unsigned int merged, unsigned int staying)
    {
        cells_[last_[staying]].next = first_[merged];
        last_[staying] = last_[merged];
        first_[merged] = last_[merged] = NONE_INDEX;
    }

private:
    struct cell {
        unsigned int element;
        unsigned int next;
    };

    bool add(unsigned int element, unsigned int node)
    {
        const unsigned int c = static_cast<unsigned int>(cells_.size());
        if (!cells_.push_back({element, NONE_INDEX})) return false;
        (first_[node] == NONE_INDEX ? first_[node] : cells_[last_[node]].next) = c;
        last_[node] = c;
        return true;
    }

    scratch<cell> cells_;
    scratch<unsigned int> first_;
    scratch<unsigned int> last_;
};

template <int D>
class element_merge {
public:
    element_merge(const dense2D<double>& pos, const connect_range& meshes, double tolerance, unsigned int* new_IDs)
        : pos_(pos), meshes_(meshes), tolerance_(tolerance), new_IDs_(new_IDs)
    {
    }

    [[nodiscard]] bool run(const dense1D<unsigned int>& nodes, bool repeatedly);
    std::uint64_t merges() const { return merges_; }

private:
    bool reserve_columns();
    bool collect_everywhere();
    bool collect_from_changed();
    bool collect_from(const unsigned int* column, std::uint64_t rows);
    bool collect_around(std::uint64_t visited, std::uint64_t rows);
    bool apply_pairs();
    bool find_changed();

    const dense2D<double>& pos_;
    const connect_range& meshes_;
    double tolerance_;
    unsigned int* new_IDs_;
    std::uint64_t merges_ = 0;
    visibility<D> visible_;
    scratch<node_pair> pairs_;
    unsigned int visits_ = 0;       // that found pairs in this pass
    scratch<unsigned int> column_;  // the nodes of an element as they are numbered now
    scratch<point<D>> points_;      // and their positions
    incidence around_;
    scratch<unsigned int> merged_;   // nodes of the last pass
    scratch<unsigned int> changed_;  // elements around them
};

template <int D>
bool element_merge<D>::run(const dense1D<unsigned int>& nodes, bool repeatedly)
{
    if (!visible_.find(pos_, nodes) || !reserve_columns()) return false;
    // After the first pass only elements that it changed can hold pairs: of each pair one node is not free any more.
    const bool tracks_changes = repeatedly && incidence::can_number(meshes_);
    bool tracked = false;
    if (!collect_everywhere()) return false;
    while (apply_pairs()) {
        if (!repeatedly || merged_.empty()) {
            for (const unsigned int node : nodes) follow(new_IDs_, node);
            return true;
        }
        if (tracks_changes && !std::exchange(tracked, true) && !around_.build(meshes_, pos_.cols)) return false;
        if (!(tracks_changes ? find_changed() && collect_from_changed() : collect_everywhere())) return false;
    }
    return false;
}

template <int D>
bool element_merge<D>::reserve_columns()
{
    std::uint64_t most = 0;
    for (const auto& connect : meshes_) most = std::max(most, connect.empty() ? 0 : connect.rows);
    return column_.allocate(most) && points_.allocate(most);
}

template <int D>
bool element_merge<D>::collect_everywhere()
{
    for (const auto& connect : meshes_)
        for (std::uint64_t e = 0; !connect.empty() && e < connect.cols; ++e)
            if (!collect_from(column(connect, e), connect.rows)) return false;
    return true;
}

template <int D>
bool element_merge<D>::collect_from_changed()
{
    const dense2D<unsigned int>* connect = meshes_.begin();
    std::uint64_t first = 0;  // number of the first element of the matrix
    for (const unsigned int element : changed_) {
        for (; connect->empty() || element - first >= connect->cols; ++connect)
            first += connect->empty() ? 0 : connect->cols;
        if (!collect_from(column(*connect, element - first), connect->rows)) return false;
    }
    return true;
}

template <int D>
bool element_merge<D>::collect_from(const unsigned int* entries, std::uint64_t rows)
{
    for (std::uint64_t r = 0; r < rows; ++r) {
        column_[r] = entries[r] != NONE_INDEX ? follow(new_IDs_, entries[r]) : NONE_INDEX;
        if (column_[r] != NONE_INDEX) points_[r] = position_of<D>(pos_, column_[r]);
    }
    for (std::uint64_t r = 0; r < rows; ++r)
        if (column_[r] != NONE_INDEX && !collect_around(r, rows)) return false;
    return true;
}

// Collects the pairs of the node in row `visited`. Distances are rounded before they are compared with the tolerance:
// part of the interface.
template <int D>
bool element_merge<D>::collect_around(std::uint64_t visited, std::uint64_t rows)
{
    const unsigned int node = column_[visited];
    const box<D> around = box_around<D>(points_[visited], tolerance_);
    const std::size_t before = pairs_.size();
    for (std::uint64_t r = 0; r < rows; ++r) {
        const unsigned int other = column_[r];
        if (other == NONE_INDEX || other == node || !around.contains(points_[r]) || !visible_.includes(other)) continue;
        const std::uint32_t rank = rank_of(distance(points_[r], points_[visited]));
        if (!(distance_of(rank) > tolerance_) && !pairs_.push_back({rank, visits_, node, other})) return false;
    }
    if (pairs_.size() == before) return true;
    if (!visible_.collects(node, around)) pairs_.truncate(before);
    return ++visits_ != NONE_INDEX;
}

// Applies the pairs of a pass and lists the nodes that it merged.
template <int D>
bool element_merge<D>::apply_pairs()
{
    sort_closest_first(pairs_);
    merged_.clear();
    for (const node_pair& pair : pairs_) {
        if (new_IDs_[pair.visitor] != pair.visitor || new_IDs_[pair.target] != pair.target) continue;
        new_IDs_[pair.target] = pair.visitor;
        if (!merged_.push_back(pair.target)) return false;
    }
    merges_ += merged_.size();
    pairs_.clear();
    visits_ = 0;
    return true;
}

template <int D>
bool element_merge<D>::find_changed()
{
    changed_.clear();
    for (const unsigned int node : merged_)
        if (!around_.list(node, changed_)) return false;
    for (const unsigned int node : merged_) around_.merge(node, follow(new_IDs_, node));
    std::sort(changed_.begin(), changed_.end());
    changed_.truncate(static_cast<std::size_t>(std::unique(changed_.begin(), changed_.end()) - changed_.begin()));
    return true;
}

template <int D>
bool run_merge(const dense2D<double>& pos, const connect_range& meshes, const dense1D<unsigned int>& nodes,
               double tolerance, bool repeatedly, unsigned int* new_IDs, std::uint64_t& merges)
{
    element_merge<D> merge(pos, meshes, tolerance, new_IDs);
    const bool done = merge.run(nodes, repeatedly);
    merges = merge.merges();
    return done;
}

}  // namespace

bool merge_within_elements(const dense2D<double>& pos, const connect_range& meshes, const dense1D<unsigned int>& nodes,
                           double tolerance, bool repeatedly, unsigned int* new_IDs, std::uint64_t& merges)
{
    return pos.rows == 2 ? run_merge<2>(pos, meshes, nodes, tolerance, repeatedly, new_IDs, merges)
                         : run_merge<3>(pos, meshes, nodes, tolerance, repeatedly, new_IDs, merges);
}

}  // namespace zeb::tessolv
