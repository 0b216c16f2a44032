// What one would write with the standard library.
#include <unordered_set>

#include "topology/input.h"

namespace compare {
namespace {

template <class List>
void answer_nodes(const List& nodes, lap& l)
{
    fingerprint sum;
    for (const unsigned int n : nodes) sum.add(n);
    l.answer({sum.count(), sum.value()});
}

void hash_set(const topology_input& m, lap& l)
{
    std::vector<unsigned int> nodes;
    l.timed([&] {
        std::unordered_set<unsigned int> seen;
        const unsigned int* const all = entries(m.connect);
        for (std::uint64_t i = 0; i < m.connect.rows * m.connect.cols; ++i)
            if (seen.insert(all[i]).second) nodes.push_back(all[i]);
    });
    answer_nodes(nodes, l);
}

void sorted(const topology_input& m, lap& l)
{
    std::vector<unsigned int> nodes;
    l.timed([&] {
        const unsigned int* const all = entries(m.connect);
        nodes.assign(all, all + m.connect.rows * m.connect.cols);
        std::sort(nodes.begin(), nodes.end());
        nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
    });
    answer_nodes(nodes, l);
}

void last_element(const topology_input& m, lap& l)
{
    std::vector<unsigned int> found;
    l.timed([&] {
        const unsigned int* const all = entries(m.connect);
        found.assign(*std::max_element(all, all + m.connect.rows * m.connect.cols) + 1, NONE_INDEX);
        for (std::uint64_t e = 0; e < m.connect.cols; ++e)
            for (std::uint64_t i = 0; i < 4; ++i) found[all[4 * e + i]] = static_cast<unsigned int>(e);
    });
    fingerprint sum;
    for (std::size_t i = 0; i < found.size(); ++i) sum.add(i, found[i]);
    l.answer({sum.count(), sum.value()});
}

const bool entered = enter<topology_input>({
    {"unique indices", "std hash", "std::unordered_set and a vector, in order of first use", "", hash_set},
    {"unique indices", "std sort", "std::sort and std::unique", "sorted, not in order of first use", sorted},
    {"ancestors", "plain loop", "std::max_element and a loop over the elements", "checks nothing", last_element},
});

}  // namespace
}  // namespace compare
