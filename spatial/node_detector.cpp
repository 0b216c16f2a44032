#include <memory>
#include <new>
#include <numeric>
#include <utility>

#include <tessolv/editing.h>
#include <tessolv/spatial.h>

#include "core/return_codes.h"
#include "core/scratch.h"
#include "spatial/kd_tree.h"

namespace zeb::tessolv {
namespace {

template <int D>
using owned_tree = std::unique_ptr<kd_tree<D>>;

// A tree over the listed nodes, null without memory.
template <int D>
owned_tree<D> tree_over(const dense2D<double>& pos, scratch<unsigned int>& nodes)
{
    owned_tree<D> tree(new (std::nothrow) kd_tree<D>(pos));
    if (tree != nullptr && !tree->insert(nodes)) tree.reset();
    return tree;
}

template <int D>
kd_tree<D>* copy_of(const kd_tree<D>& other)
{
    owned_tree<D> tree(new (std::nothrow) kd_tree<D>(other.matrix()));
    return tree != nullptr && tree->copy(other) ? tree.release() : nullptr;
}

// Puts a tree over the listed nodes in the place of the one there is, which stays without memory.
int replace_trees(const dense2D<double>& pos, scratch<unsigned int>& nodes, kd_tree<2>*& tree2, kd_tree<3>*& tree3)
{
    owned_tree<2> new2 = pos.rows == 2 ? tree_over<2>(pos, nodes) : nullptr;
    owned_tree<3> new3 = pos.rows == 3 ? tree_over<3>(pos, nodes) : nullptr;
    if (new2 == nullptr && new3 == nullptr) return out_of_memory;
    delete std::exchange(tree2, new2.release());
    delete std::exchange(tree3, new3.release());
    return success;
}

bool is_plane_or_space(const dense2D<double>& pos)
{
    return pos.rows == 2 || pos.rows == 3;
}

bool copy_list(const dense1D<unsigned int>& from, scratch<unsigned int>& to)
{
    if (!to.allocate(from.size)) return false;
    std::copy(from.begin(), from.end(), to.begin());
    return true;
}

// P in D dimensions: further coordinates are dropped, missing ones are 0.
template <int D, std::size_t N>
point<D> point_in(const vector_fixed<double, N>& P)
{
    point<D> x = uniform_point<D>(0.0);
    std::copy_n(P.begin(), std::min<std::size_t>(D, N), x.begin());
    return x;
}

template <class Point>
unsigned long closest_to(const Point& P, const kd_tree<2>* tree2, const kd_tree<3>* tree3)
{
    if (tree2 != nullptr) return tree2->find_closest(point_in<2>(P), NONE_INDEX);
    if (tree3 != nullptr) return tree3->find_closest(point_in<3>(P), NONE_INDEX);
    return NONE_INDEX;
}

template <class Point>
void append_hits(const Point& Pmin, const Point& Pmax, const kd_tree<2>* tree2, const kd_tree<3>* tree3,
                 dense1D<unsigned int>& nodes)
{
    if (tree2 != nullptr)
        tree2->find_in_box({point_in<2>(Pmin), point_in<2>(Pmax)}, nodes);
    else if (tree3 != nullptr)
        tree3->find_in_box({point_in<3>(Pmin), point_in<3>(Pmax)}, nodes);
}

}  // namespace

node_detector::node_detector() = default;

node_detector::node_detector(const node_detector& other)
{
    *this = other;
}

node_detector::node_detector(const dense2D<double>& pos)
{
    static_cast<void>(reinit(pos));
}

node_detector::node_detector(const dense2D<double>& pos, const dense1D<unsigned int>& nodes)
{
    static_cast<void>(reinit(pos, nodes));
}

node_detector::node_detector(const dense2D<double>& pos, const dense2D<unsigned int>& connect)
{
    static_cast<void>(reinit(pos, connect));
}

node_detector::node_detector(const dense2D<double>& pos, const dense2D<unsigned int>* first,
                             const dense2D<unsigned int>* last)
{
    static_cast<void>(reinit(pos, first, last));
}

node_detector::~node_detector()
{
    clear();
}

node_detector& node_detector::operator=(const node_detector& other)
{
    if (this == &other) return *this;
    clear();
    if (other.tree2_ != nullptr)
        tree2_ = copy_of(*other.tree2_);
    else if (other.tree3_ != nullptr)
        tree3_ = copy_of(*other.tree3_);
    return *this;
}

void node_detector::clear()
{
    delete std::exchange(tree2_, nullptr);
    delete std::exchange(tree3_, nullptr);
}

unsigned long node_detector::size() const
{
    return tree2_ != nullptr ? tree2_->size() : tree3_ != nullptr ? tree3_->size() : 0;
}

unsigned long node_detector::insert(const dense1D<unsigned int>& nodes)
{
    const unsigned long before = size();
    scratch<unsigned int> list;
    // Where memory ends, the nodes stored so far count.
    if (copy_list(nodes, list))
        static_cast<void>(tree2_ != nullptr ? tree2_->insert(list) : tree3_ != nullptr && tree3_->insert(list));
    return size() - before;
}

unsigned long node_detector::insert(const dense2D<unsigned int>& connect)
{
    dense1D<unsigned int> nodes;
    return unique_indices(nodes, connect) == success ? insert(nodes) : 0;
}

unsigned long node_detector::find_closest(const vector_fixed<double, 2>& P) const
{
    return closest_to(P, tree2_, tree3_);
}

unsigned long node_detector::find_closest(const vector_fixed<double, 3>& P) const
{
    return closest_to(P, tree2_, tree3_);
}

unsigned long node_detector::find_closest(unsigned int node) const
{
    if (tree2_ != nullptr) return tree2_->find_closest(node);
    return tree3_ != nullptr ? tree3_->find_closest(node) : NONE_INDEX;
}

void node_detector::find_in_box(const vector_fixed<double, 2>& Pmin, const vector_fixed<double, 2>& Pmax,
                                dense1D<unsigned int>& nodes) const
{
    append_hits(Pmin, Pmax, tree2_, tree3_, nodes);
}

void node_detector::find_in_box(const vector_fixed<double, 3>& Pmin, const vector_fixed<double, 3>& Pmax,
                                dense1D<unsigned int>& nodes) const
{
    append_hits(Pmin, Pmax, tree2_, tree3_, nodes);
}

int node_detector::reinit(const dense2D<double>& pos)
{
    clear();
    if (!is_plane_or_space(pos)) return bad_argument(1);
    scratch<unsigned int> all;
    if (pos.cols >= NONE_INDEX || !all.allocate(pos.cols)) return out_of_memory;
    std::iota(all.begin(), all.end(), 0u);
    return replace_trees(pos, all, tree2_, tree3_);
}

int node_detector::reinit(const dense2D<double>& pos, const dense1D<unsigned int>& nodes)
{
    if (!is_plane_or_space(pos)) return bad_argument(1);
    if (!check_IDs(nodes, as_bound(pos.cols))) return bad_argument(2);
    scratch<unsigned int> list;
    return copy_list(nodes, list) ? replace_trees(pos, list, tree2_, tree3_) : out_of_memory;
}

int node_detector::reinit(const dense2D<double>& pos, const dense2D<unsigned int>& connect)
{
    return reinit(pos, &connect, &connect + 1);
}

int node_detector::reinit(const dense2D<double>& pos, const dense2D<unsigned int>* first,
                          const dense2D<unsigned int>* last)
{
    dense1D<unsigned int> nodes;
    const int refused = unique_indices(nodes, first, last);
    return refused == success ? reinit(pos, nodes) : refused;
}

}  // namespace zeb::tessolv
