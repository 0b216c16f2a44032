#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <vector>

#include "support/matrices.h"

using namespace zeb::tessolv;
using test::columns;
using test::indices;
using test::N;

// Random lists and meshes against slow models that work on plain vectors. Few distinct indices, so that repetitions,
// degenerate elements, matches and unused nodes are common; now and then NONE_INDEX and huge ones.
namespace {

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

    element_list random_elements(std::size_t rows, unsigned most, unsigned nodes, bool valid)
    {
        element_list elements(below(most + 1), list(rows));
        for (auto& e : elements)
            for (auto& v : e) v = valid ? node(nodes) : index(nodes);
        return elements;
    }

    // A list or matrix of these values, as a container of its own or as a view into a larger one.
    dense1D<unsigned> hold(const list& values)
    {
        const auto whole = indices(values);
        if (one_in(2)) return whole;
        dense1D<unsigned> larger(whole.size + 5, below(9));
        dense1D<unsigned> view;
        view.shallow_copy(larger.sub_vector(2, whole.size));
        for (std::uint64_t i = 0; i < whole.size; ++i) view[i] = whole[i];
        return view;
    }

    dense2D<unsigned> hold(std::size_t rows, const element_list& elements)
    {
        dense2D<unsigned> whole(rows, elements.size());
        for (std::size_t j = 0; j < elements.size(); ++j)
            for (std::size_t i = 0; i < rows; ++i) whole(i, j) = elements[j][i];
        return one_in(2) ? whole : test::as_padded_view(whole, below(9));
    }

    std::mt19937 random_{20240607};
};

element_list values_of(const dense2D<unsigned>& m)
{
    element_list elements(m.cols, list(m.rows));
    for (std::size_t j = 0; j < m.cols; ++j)
        for (std::size_t i = 0; i < m.rows; ++i) elements[j][i] = m(i, j);
    return elements;
}

list values_of(const dense1D<unsigned>& v)
{
    return list(v.begin(), v.end());
}

bool contains(const list& values, unsigned v)
{
    return std::find(values.begin(), values.end(), v) != values.end();
}

list flattened(const std::vector<element_list>& meshes)
{
    list all;
    for (const auto& elements : meshes)
        for (const auto& e : elements) all.insert(all.end(), e.begin(), e.end());
    return all;
}

list distinct(const list& values, const list& exclude)
{
    list found;
    for (const unsigned v : values)
        if (v != N && !contains(exclude, v) && !contains(found, v)) found.push_back(v);
    return found;
}

TEST_F(EditingProperties, UniqueIndicesOfAListAreThoseOfALinearSearch)
{
    for (int n = 0; n < cases; ++n) {
        const list in = random_list(40), exclude = random_list(20), before = random_list(5);
        auto out = hold(before);
        ASSERT_EQ(unique_indices(out, hold(in), hold(exclude)), 0);
        list expected = before;
        for (const unsigned v : distinct(in, exclude)) expected.push_back(v);
        ASSERT_EQ(values_of(out), expected);
    }
}

TEST_F(EditingProperties, UniqueIndicesOfARangeAreThoseOfALinearSearch)
{
    for (int n = 0; n < cases; ++n) {
        std::vector<element_list> meshes;
        std::vector<dense2D<unsigned>> range;
        for (unsigned k = below(4); k > 0; --k) {
            const std::size_t rows = below(5);
            meshes.push_back(random_elements(rows, 10, 1 + below(30), false));
            range.push_back(hold(rows, meshes.back()));
        }
        dense1D<unsigned> out;
        ASSERT_EQ(unique_indices(out, range.data(), range.data() + range.size()), 0);
        ASSERT_EQ(values_of(out), distinct(flattened(meshes), {}));
        const list all = flattened(meshes);
        const std::set<unsigned> sorted(all.begin(), all.end());
        ASSERT_EQ(count_unique_indices(range.data(), range.data() + range.size()), sorted.size() - sorted.count(N));
    }
}

// Enough entries for every size of table and for strides that a weak hash would bring together.
TEST_F(EditingProperties, UniqueIndicesOfManyLargeValuesAreThoseOfASortedSet)
{
    for (const unsigned stride : {1u, 2u, 3u, 64u, 1000u, 28657u, 65536u, 1048576u, 2654435769u}) {
        for (const unsigned count : {7u, 100u, 5000u, 60000u}) {
            list values(count);
            for (unsigned i = 0; i < count; ++i) values[i] = 3000000000u + stride * below(count);
            list expected;
            std::set<unsigned> seen{N};
            for (const unsigned v : values)
                if (seen.insert(v).second) expected.push_back(v);
            dense1D<unsigned> out;
            ASSERT_EQ(unique_indices(out, hold(values)), 0);
            ASSERT_EQ(values_of(out), expected) << stride << " " << count;
        }
    }
}

TEST_F(EditingProperties, ChangeIndicesMapsEachEntryByTheTable)
{
    for (int n = 0; n < cases; ++n) {
        const list table = random_list(20);
        const auto map = [&](unsigned v) { return v < table.size() ? table[v] : v; };
        list ids = random_list(30);
        auto held = hold(ids);
        change_indices(held, hold(table));
        for (auto& v : ids) v = map(v);
        ASSERT_EQ(values_of(held), ids);

        const std::size_t rows = below(5);
        auto elements = random_elements(rows, 10, 25, false);
        auto connect = hold(rows, elements);
        change_indices(connect, hold(table));
        for (auto& e : elements)
            for (auto& v : e) v = map(v);
        ASSERT_EQ(values_of(connect), elements);
    }
}

TEST_F(EditingProperties, PermutationScattersLiterally)
{
    for (int n = 0; n < cases; ++n) {
        const list values = random_list(12), perm = random_list(15);
        list expected = values;
        for (std::size_t i = 0; i < std::min(values.size(), perm.size()); ++i)
            if (perm[i] < values.size() && perm[i] != i) expected[perm[i]] = values[i];
        auto held = hold(values);
        permutation(held, hold(perm));
        ASSERT_EQ(values_of(held), expected);
        dense1D<double> reals(values.size());
        std::copy(values.begin(), values.end(), reals.begin());
        permutation(reals, hold(perm));
        ASSERT_TRUE(std::equal(reals.begin(), reals.end(), expected.begin(), expected.end()));
    }
}

// There and back.
TEST_F(EditingProperties, RenumberingByAPermutationAndItsInverseIsTheIdentity)
{
    for (int n = 0; n < cases; ++n) {
        list order(1 + below(20));
        for (unsigned i = 0; i < order.size(); ++i) order[i] = i;
        auto identity = hold(order);
        std::shuffle(order.begin(), order.end(), random_);
        auto inverse = indices(values_of(identity));
        permutation(inverse, hold(order));
        change_indices(inverse, hold(order));
        // position order[i] holds i, so mapping the contents by the order gives each position itself
        ASSERT_EQ(values_of(inverse), values_of(identity));
    }
}

TEST_F(EditingProperties, GetIDsOfListsAgreesWithSearchingFromTheEnd)
{
    for (int n = 0; n < cases; ++n) {
        const list ids1 = random_list(15), ids2 = random_list(15);
        list in_1(ids2.size(), N), in_2(ids1.size(), N);
        for (unsigned j = 0; j < ids2.size(); ++j) {
            for (unsigned k = 0; k < ids1.size() && ids2[j] != N; ++k)
                if (ids1[k] == ids2[j]) in_1[j] = k;
            if (in_1[j] != N) in_2[in_1[j]] = j;
        }
        dense1D<unsigned> pos_in_1, pos_in_2;
        ASSERT_EQ(get_IDs(hold(ids1), hold(ids2), pos_in_1, pos_in_2), 0);
        ASSERT_EQ(values_of(pos_in_1), in_1);
        ASSERT_EQ(values_of(pos_in_2), in_2);
    }
}

// Tries every rotation in both directions.
bool match_by_trial(const list& a, list b, bool strict)
{
    if (a == b || strict) return a == b;
    for (int direction = 0; direction < 2; ++direction) {
        for (std::size_t turn = 0; turn < b.size(); ++turn) {
            std::rotate(b.begin(), b.begin() + 1, b.end());
            if (a == b) return true;
        }
        std::reverse(b.begin(), b.end());
    }
    return false;
}

TEST_F(EditingProperties, GetIDsOfElementsAgreesWithTryingEveryRotation)
{
    for (int n = 0; n < cases; ++n) {
        const std::size_t rows = below(8);
        const unsigned nodes = 1 + below(4);
        const bool strict = one_in(3);
        const auto elements1 = random_elements(rows, 14, nodes, false);
        const auto elements2 = random_elements(rows, 14, nodes, false);
        list in_1(elements2.size(), N), in_2(elements1.size(), N);
        for (unsigned j = 0; j < elements2.size(); ++j) {
            for (unsigned k = 0; k < elements1.size(); ++k) {
                if (!match_by_trial(elements1[k], elements2[j], strict)) continue;
                in_1[j] = k;
                in_2[k] = j;
            }
        }
        dense1D<unsigned> pos_in_1, pos_in_2;
        ASSERT_EQ(get_IDs(hold(rows, elements1), hold(rows, elements2), pos_in_1, pos_in_2, strict), 0);
        ASSERT_EQ(values_of(pos_in_1), in_1);
        ASSERT_EQ(values_of(pos_in_2), in_2);
    }
}

TEST_F(EditingProperties, AppendPutsColumnsBehindOneAnother)
{
    for (int n = 0; n < cases; ++n) {
        const std::size_t rows = 1 + below(4);
        auto expected = random_elements(rows, 6, 9, false);
        auto A = hold(rows, expected);
        for (int step = 0; step < 4; ++step) {
            const auto more = random_elements(rows, 6, 9, false);
            list cols(more.empty() ? 0 : below(5));
            for (auto& c : cols) c = below(static_cast<unsigned>(more.size()));
            ASSERT_EQ(append(A, hold(rows, more), hold(cols)), 0);
            for (const unsigned c : cols) expected.push_back(more[c]);
            ASSERT_EQ(append(A, hold(rows, more)), 0);
            expected.insert(expected.end(), more.begin(), more.end());
            if (one_in(4)) {
                const element_list once = expected;
                ASSERT_EQ(append(A, A), 0);
                expected.insert(expected.end(), once.begin(), once.end());
            }
            ASSERT_EQ(values_of(A), expected);
        }
    }
}

TEST_F(EditingProperties, SimplifyDropsTheNodesThatAreNotInUse)
{
    int dropped = 0, kept = 0;
    for (int n = 0; n < cases; ++n) {
        const unsigned nodes = 1 + below(12);
        std::vector<element_list> meshes;
        std::vector<dense2D<unsigned>> range;
        for (unsigned k = 1 + below(3); k > 0; --k) {
            const std::size_t rows = 1 + below(4);
            meshes.push_back(random_elements(rows, 6, nodes, true));
            range.push_back(hold(rows, meshes.back()));
        }
        dense2D<double> pos(2, nodes);
        for (unsigned j = 0; j < nodes; ++j) pos(0, j) = -(pos(1, j) = 10.0 + j);

        list used = distinct(flattened(meshes), {});
        const bool all = used.size() == nodes;
        (all ? kept : dropped)++;
        if (all) std::sort(used.begin(), used.end());
        std::map<unsigned, unsigned> number{{N, N}};
        for (unsigned i = 0; i < used.size(); ++i) number[used[i]] = i;

        dense1D<unsigned> new_IDs;
        const int expected_result = all ? 0 : static_cast<int>(used.size());
        ASSERT_EQ(simplify(pos, range.data(), range.data() + range.size(), new_IDs), expected_result);
        ASSERT_EQ(pos.cols, used.size());
        for (unsigned i = 0; i < used.size(); ++i) ASSERT_TRUE(pos(1, i) == 10.0 + used[i] && pos(0, i) == -pos(1, i));
        ASSERT_EQ(new_IDs.size, nodes);
        for (unsigned j = 0; j < nodes; ++j) ASSERT_EQ(new_IDs[j], number.count(j) != 0 ? number[j] : N);
        for (std::size_t k = 0; k < meshes.size(); ++k) {
            for (auto& e : meshes[k])
                for (auto& v : e) v = number[v];
            ASSERT_EQ(values_of(range[k]), meshes[k]);
        }
    }
    EXPECT_GT(std::min(dropped, kept), cases / 20);
}

TEST_F(EditingProperties, CopyMeshCopiesElementsWithTheirNodes)
{
    for (int n = 0; n < cases; ++n) {
        const unsigned nodes = 1 + below(8);
        const std::size_t rows = 1 + below(4);
        const auto elements = random_elements(rows, 6, nodes, true);
        dense2D<double> pos(1, nodes);
        for (unsigned j = 0; j < nodes; ++j) pos(0, j) = j;
        list used = distinct(flattened({elements}), {});
        if (used.size() == nodes) std::sort(used.begin(), used.end());
        dense2D<unsigned> connect;
        ASSERT_EQ(copy_mesh(pos, connect, hold(rows, elements)), 0);
        ASSERT_EQ(pos.cols, nodes + used.size());
        for (unsigned j = 0; j < pos.cols; ++j) ASSERT_EQ(pos(0, j), j < nodes ? j : used[j - nodes]);
        ASSERT_EQ(connect.cols, elements.size());
        for (std::size_t e = 0; e < elements.size(); ++e) {
            for (std::size_t i = 0; i < rows; ++i) {
                ASSERT_EQ(connect(i, e) == N, elements[e][i] == N);
                if (connect(i, e) == N) continue;
                ASSERT_GE(connect(i, e), nodes);
                ASSERT_EQ(pos(0, connect(i, e)), elements[e][i]);
            }
        }
    }
}

TEST_F(EditingProperties, RemoveDegeneratedKeepsElementsOfDistinctNodes)
{
    for (int n = 0; n < cases; ++n) {
        const std::size_t rows = 1 + below(12);
        const auto elements = random_elements(rows, 10, static_cast<unsigned>(1 + rows * rows / 2 + below(9)), false);
        element_list kept;
        list numbers;
        for (const auto& e : elements) {
            std::map<unsigned, int> uses;
            for (const unsigned v : e) ++uses[v];
            uses.erase(N);
            const bool degenerate = std::any_of(uses.begin(), uses.end(), [](const auto& u) { return u.second > 1; });
            numbers.push_back(degenerate ? N : static_cast<unsigned>(kept.size()));
            if (!degenerate) kept.push_back(e);
        }
        auto connect = hold(rows, elements);
        dense1D<unsigned> new_IDs;
        ASSERT_EQ(remove_degenerated(connect, new_IDs), elements.size() - kept.size());
        ASSERT_EQ(values_of(connect), kept);
        ASSERT_EQ(values_of(new_IDs), numbers);
    }
}

}  // namespace
