#include "editing/properties.h"

#include <map>
#include <set>

using namespace zeb::tessolv;
using namespace test;

namespace {

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
            meshes.push_back(random_elements(rows, 10, 1 + below(30), entries::any));
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
        auto elements = random_elements(rows, 10, 25, entries::any);
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
        const auto elements1 = random_elements(rows, 14, nodes, entries::any);
        const auto elements2 = random_elements(rows, 14, nodes, entries::any);
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

}  // namespace
