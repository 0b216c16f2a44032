#ifndef TESTS_SPATIAL_TREE_MODEL_H
#define TESTS_SPATIAL_TREE_MODEL_H

#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include <tessolv/tessolv.h>

// The search tree as it is defined, one node and one comparison after the other: what the library has to agree with.

namespace model {

using zeb::dense2D;
using zeb::NONE_INDEX;

// MT19937 over an array of its own, the first state made by the multiplier 69069.
class generator {
public:
    explicit generator(std::uint32_t seed)
    {
        for (std::uint32_t word = seed | 1; auto& s : state_) {
            s = word;
            word *= 69069;
        }
    }

    std::uint32_t draw()
    {
        if (at_ == 624) regenerate();
        std::uint32_t y = state_[at_++];
        y ^= y >> 11;
        y ^= (y << 7) & 0x9d2c5680;
        y ^= (y << 15) & 0xefc60000;
        return y ^ (y >> 18);
    }

private:
    void regenerate()
    {
        for (int k = 0; k < 624; ++k) {
            const std::uint32_t y = (state_[k] & 0x80000000) | (state_[(k + 1) % 624] & 0x7fffffff);
            state_[k] = state_[(k + 397) % 624] ^ (y >> 1) ^ ((y & 1) != 0 ? 0x9908b0df : 0);
        }
        at_ = 0;
    }

    std::uint32_t state_[624];
    int at_ = 624;
};

inline std::vector<unsigned> shuffled(std::vector<unsigned> values)
{
    generator random(1);
    for (std::size_t i = 1; i < values.size(); ++i) std::swap(values[i], values[random.draw() % (i + 1)]);
    return values;
}

using position = std::vector<double>;

inline double squared_distance(const position& a, const position& b)
{
    const double dx = a[0] - b[0];
    const double dy = a[1] - b[1];
    if (a.size() == 2) return dx * dx + dy * dy;
    const double dz = a[2] - b[2];
    return dx * dx + dy * dy + dz * dz;
}

inline bool within(const position& lower, const position& x, const position& upper)
{
    for (std::size_t d = 0; d < x.size(); ++d)
        if (!(lower[d] <= x[d] && x[d] <= upper[d])) return false;
    return true;
}

inline position shifted(position x, double by)
{
    for (double& value : x) value += by;
    return x;
}

class tree {
public:
    explicit tree(const dense2D<double>& pos) : pos_(&pos) {}

    std::size_t size() const { return records_.size(); }

    position at(unsigned node) const
    {
        position x(pos_->rows, std::numeric_limits<double>::quiet_NaN());
        for (std::size_t d = 0; d < x.size() && node < pos_->cols; ++d) x[d] = (*pos_)(d, node);
        return x;
    }

    std::size_t insert(const std::vector<unsigned>& nodes)
    {
        std::size_t stored = 0;
        for (const unsigned node : shuffled(nodes)) stored += insert_one(node);
        return stored;
    }

    std::size_t insert_one(unsigned node)
    {
        if (node >= pos_->cols) return 0;
        records_.push_back({node, NONE_INDEX, NONE_INDEX});
        const unsigned added = static_cast<unsigned>(records_.size() - 1);
        if (added == 0) return 1;
        unsigned r = 0;
        for (std::size_t d = 0;; d = (d + 1) % pos_->rows) {
            unsigned& child = at(records_[r].node)[d] > at(node)[d] ? records_[r].left : records_[r].right;
            if (child == NONE_INDEX) {
                child = added;
                return 1;
            }
            r = child;
        }
    }

    unsigned find_closest(const position& P, unsigned excluded = NONE_INDEX) const
    {
        if (records_.empty()) return NONE_INDEX;
        unsigned closest = NONE_INDEX;
        double best = std::numeric_limits<double>::max();
        std::size_t d = 0;
        for (unsigned r = 0; r != NONE_INDEX; d = (d + 1) % P.size()) {
            const position x = at(records_[r].node);
            const double square = squared_distance(x, P);
            if (records_[r].node != excluded && square < best) {
                best = square;
                closest = records_[r].node;
            }
            r = x[d] > P[d] ? records_[r].left : records_[r].right;
        }
        if (closest != NONE_INDEX) best = std::sqrt(best);
        if (best == 0) return closest;
        search(0, 0, P, excluded, best, closest);
        return closest;
    }

    unsigned find_closest_to(unsigned node) const { return find_closest(at(node), node); }

    void find_in_box(const position& lower, const position& upper, std::vector<unsigned>& nodes) const
    {
        if (!records_.empty()) walk(0, 0, lower, upper, nodes);
    }

    std::size_t depth(unsigned r = 0) const
    {
        return r == NONE_INDEX || records_.empty()
                   ? 0
                   : 1 + std::max(depth_below(records_[r].left), depth_below(records_[r].right));
    }

private:
    struct record {
        unsigned node;
        unsigned left;
        unsigned right;
    };

    std::size_t depth_below(unsigned r) const { return r == NONE_INDEX ? 0 : depth(r); }

    void search(unsigned r, std::size_t d, const position& P, unsigned excluded, double& best, unsigned& closest) const
    {
        while (r != NONE_INDEX) {
            const record& here = records_[r];
            const position x = at(here.node);
            if (here.node != excluded && within(shifted(P, -best), x, shifted(P, best))) {
                const double found = std::sqrt(squared_distance(x, P));
                if (found < best) {
                    best = found;
                    closest = here.node;
                }
            }
            const std::size_t next = (d + 1) % P.size();
            if (x[d] >= P[d]) {
                search(here.left, next, P, excluded, best, closest);
                if (!(P[d] + best >= x[d])) return;
                r = here.right;
            } else {
                search(here.right, next, P, excluded, best, closest);
                if (!(P[d] - best < x[d])) return;
                r = here.left;
            }
            d = next;
        }
    }

    void walk(unsigned r, std::size_t d, const position& lower, const position& upper,
              std::vector<unsigned>& nodes) const
    {
        const record& here = records_[r];
        const position x = at(here.node);
        const std::size_t next = (d + 1) % lower.size();
        const bool right = x[d] <= upper[d];
        const bool left = x[d] >= lower[d];
        if (right && here.right != NONE_INDEX) walk(here.right, next, lower, upper, nodes);
        if (left && here.left != NONE_INDEX) walk(here.left, next, lower, upper, nodes);
        if (right && left && within(lower, x, upper)) nodes.push_back(here.node);
    }

    const dense2D<double>* pos_;
    std::vector<record> records_;
};

}  // namespace model

#endif
