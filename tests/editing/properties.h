#ifndef TESTS_EDITING_PROPERTIES_H
#define TESTS_EDITING_PROPERTIES_H

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "support/stored_call.h"

// Random lists and meshes against slow models that work on plain vectors. Few distinct indices, so that repetitions,
// degenerate elements, matches and unused nodes are common; now and then NONE_INDEX and huge ones.
namespace test {

using zeb::dense1D;
using zeb::dense2D;

using list = std::vector<unsigned>;
using element_list = std::vector<list>;

constexpr int cases = 3000;

class EditingProperties : public testing::Test {
protected:
    unsigned below(unsigned n) { return static_cast<unsigned>(random_() % n); }
    bool one_in(unsigned n) { return below(n) == 0; }

    unsigned index(unsigned nodes)
    {
        if (one_in(12)) return N;
        return one_in(12) ? N - 1 - below(3) : below(nodes);
    }

    unsigned node(unsigned nodes) { return one_in(10) ? N : below(nodes); }

    list random_list(unsigned longest)
    {
        const unsigned nodes = 1 + below(2 * longest);
        list values(below(longest + 1));
        for (auto& v : values) v = index(nodes);
        return values;
    }

    enum class entries { nodes, any };  // nodes and NONE_INDEX, or other indices too

    element_list random_elements(std::size_t rows, unsigned most, unsigned nodes, entries kind)
    {
        element_list elements(below(most + 1), list(rows));
        for (auto& e : elements)
            for (auto& v : e) v = kind == entries::nodes ? node(nodes) : index(nodes);
        return elements;
    }

    // A list or matrix of these values, stored in any way.
    dense1D<unsigned> hold(const list& values) { return hold(indices(values)); }

    dense2D<unsigned> hold(std::size_t rows, const element_list& elements)
    {
        dense2D<unsigned> m(rows, elements.size());
        for (std::size_t j = 0; j < elements.size(); ++j)
            for (std::size_t i = 0; i < rows; ++i) m(i, j) = elements[j][i];
        return hold(m);
    }

    template <class Container>
    Container hold(const Container& values)
    {
        return store_.hold(values, every_storage[below(4)]);
    }

    storeroom store_;
    std::mt19937 random_{20240607};
};

inline element_list values_of(const dense2D<unsigned>& m)
{
    element_list elements(m.cols, list(m.rows));
    for (std::size_t j = 0; j < m.cols; ++j)
        for (std::size_t i = 0; i < m.rows; ++i) elements[j][i] = m(i, j);
    return elements;
}

inline list values_of(const dense1D<unsigned>& v)
{
    return list(v.begin(), v.end());
}

inline bool contains(const list& values, unsigned v)
{
    return std::find(values.begin(), values.end(), v) != values.end();
}

inline list flattened(const std::vector<element_list>& meshes)
{
    list all;
    for (const auto& elements : meshes)
        for (const auto& e : elements) all.insert(all.end(), e.begin(), e.end());
    return all;
}

inline list distinct(const list& values, const list& exclude)
{
    list found;
    for (const unsigned v : values)
        if (v != N && !contains(exclude, v) && !contains(found, v)) found.push_back(v);
    return found;
}

}  // namespace test

#endif
