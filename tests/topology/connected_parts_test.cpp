#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "support/matrices.h"
#include "support/mesh_builders.h"
#include "support/random_meshes.h"
#include "support/slow_topology.h"
#include "support/small_stack.h"
#include "support/storage_forms.h"

using namespace zeb::tessolv;
using namespace test;

namespace {

struct listed_parts {
    dense1D<unsigned> elements = indices({7, 7, 7});  // an earlier result, to be replaced
    dense1D<unsigned> offsets = indices({8});
};

listed_parts parts_of(const dense2D<unsigned>& neighbors)
{
    listed_parts found;
    EXPECT_EQ(get_connex_parts(neighbors, found.elements, found.offsets), 0);
    return found;
}

// What reordering must make of two matrices, by the order of the slow procedure.
dense2D<unsigned> in_order(const dense2D<unsigned>& m, const std::vector<unsigned>& order)
{
    dense2D<unsigned> result(m.rows, m.cols);
    for (std::uint64_t k = 0; k < order.size(); ++k)
        for (std::uint64_t i = 0; i < m.rows; ++i) result(i, k) = m(i, order[k]);
    return result;
}

dense2D<unsigned> renumbered(dense2D<unsigned> m, const std::vector<unsigned>& order)
{
    for (std::uint64_t j = 0; j < m.cols; ++j)
        for (std::uint64_t i = 0; i < m.rows; ++i)
            if (m(i, j) < order.size())
                m(i, j) = unsigned(std::find(order.begin(), order.end(), m(i, j)) - order.begin());
    return m;
}

// Adjacent elements at random: often one-sided, of the element itself, repeated, equal to n or far beyond it.
dense2D<unsigned> random_links(dice& random, unsigned rows, unsigned n)
{
    const unsigned density = 1 + random.below(6);
    dense2D<unsigned> neighbors(rows, n, N);
    for (unsigned e = 0; e < n; ++e)
        for (unsigned i = 0; i < rows; ++i) {
            if (random.one_in(density)) neighbors(i, e) = random.below(n);
            if (random.one_in(40)) neighbors(i, e) = n + random.below(3);
            if (random.one_in(60)) neighbors(i, e) = 0xFFFFFFFE;
        }
    return neighbors;
}

}  // namespace

TEST(GetConnexParts, GivesOneOffsetForNoElements)
{
    for (const auto& empty : {dense2D<unsigned>(), dense2D<unsigned>(3, 0)}) {
        const auto found = parts_of(empty);
        EXPECT_EQ(found.elements, indices({}));
        EXPECT_EQ(found.offsets, indices({0}));
    }
}

TEST(GetConnexParts, GivesEveryIsolatedElementAPartOfItsOwn)
{
    const auto found = parts_of(filled(3, 4, N));
    EXPECT_EQ(found.elements, indices({0, 1, 2, 3}));
    EXPECT_EQ(found.offsets, indices({0, 1, 2, 3, 4}));
}

TEST(GetConnexParts, GivesEveryElementOfAMatrixWithoutRowsAPartOfItsOwn)
{
    const auto found = parts_of(dense2D<unsigned>(0, 3));
    EXPECT_EQ(found.elements, indices({0, 1, 2}));
    EXPECT_EQ(found.offsets, indices({0, 1, 2, 3}));
}

TEST(GetConnexParts, OrdersPartsByTheirLowestElement)
{
    // Elements 0 and 1 stand alone, 2 and 6 are one part, 5, 3 and 4 the other.
    const auto neighbors = columns({{N, N}, {N, N}, {6, N}, {5, N}, {5, N}, {4, 3}, {2, N}});
    const auto found = parts_of(neighbors);
    EXPECT_EQ(found.elements, indices({0, 1, 2, 6, 3, 5, 4}));
    EXPECT_EQ(found.offsets, indices({0, 1, 2, 4, 7}));
}

TEST(GetConnexParts, ListsThePartOfElementTwoBeforeThatOfElementFive)
{
    // Parts {0, 1, 3, 4}, {2, 6} and {5, 7}.
    const auto neighbors = columns({{1, 4}, {0, 3}, {6, N}, {1, N}, {0, N}, {7, N}, {2, N}, {5, N}});
    const auto found = parts_of(neighbors);
    EXPECT_EQ(found.elements, indices({0, 1, 4, 3, 2, 6, 5, 7}));
    EXPECT_EQ(found.offsets, indices({0, 4, 6, 8}));
}

TEST(GetConnexParts, TakesNeighboursInTheOrderOfTheRows)
{
    const auto star = columns({{3, 1, 2}, {0, N, N}, {0, N, N}, {0, N, 2}});
    EXPECT_EQ(parts_of(star).elements, indices({0, 3, 1, 2}));
}

TEST(GetConnexParts, FollowsOneSidedLinksFromTheirSideOnly)
{
    const auto forward = parts_of(columns({{1}, {N}}));
    EXPECT_EQ(forward.offsets, indices({0, 2}));
    const auto backward = parts_of(columns({{N}, {0}}));
    EXPECT_EQ(backward.elements, indices({0, 1}));
    EXPECT_EQ(backward.offsets, indices({0, 1, 2}));
}

TEST(GetConnexParts, ListsAnEntryEqualToTheCountOnceAndDropsLargerOnes)
{
    const auto found = parts_of(columns({{3, 4}, {3, 2}, {N, 0xFFFFFFFE}}));
    EXPECT_EQ(found.elements, indices({0, 3, 1, 2}));
    EXPECT_EQ(found.offsets, indices({0, 2, 4}));

    const auto lone = parts_of(columns({{1}}));
    EXPECT_EQ(lone.elements, indices({0, 1}));
    EXPECT_EQ(lone.offsets, indices({0, 2}));
}

TEST(GetConnexParts, AgreesWithTheLiteralQueueOnRandomLinks)
{
    dice random(41);
    for (int trial = 0; trial < 4000; ++trial) {
        const auto neighbors = random_links(random, 1 + random.below(5), 1 + random.below(80));
        const auto expected = slow::connected_parts(neighbors, true);
        const auto forms = storage_forms(neighbors, 0u);
        const auto& form = forms[random.below(4)];
        const auto found = parts_of(form.matrix);
        ASSERT_EQ(found.elements, indices(expected.elements)) << "trial " << trial << ": " << form.name;
        ASSERT_EQ(found.offsets, indices(expected.offsets)) << "trial " << trial << ": " << form.name;
    }
}

TEST(GetConnexParts, StaysLinearWhenEveryEntryNamesTheSameElements)
{
    // A queue that took an element once for every entry would hold 10^9 of them.
    constexpr unsigned rows = 3000, n = 1000;
    dense2D<unsigned> neighbors(rows, n);
    for (unsigned e = 0; e < n; ++e)
        for (unsigned i = 0; i < rows; ++i) neighbors(i, e) = (e + i) % n;
    const auto found = parts_of(neighbors);
    dense1D<unsigned> all(n);
    std::iota(all.begin(), all.end(), 0u);
    EXPECT_EQ(found.elements, all);
    EXPECT_EQ(found.offsets, indices({0, n}));
}

TEST(GetConnexParts, RunsOnASmallStack)
{
    constexpr unsigned n = 300000;
    dense2D<unsigned> chain(1, n);
    for (unsigned e = 0; e < n; ++e) chain(0, e) = e + 1;
    listed_parts found;
    run_on_small_stack([&] { get_connex_parts(chain, found.elements, found.offsets); });
    EXPECT_EQ(found.offsets, indices({0, n + 1}));  // the last entry equals the count
}

TEST(GetConnexParts, ReplacesListsThatSawTheMatrix)
{
    auto neighbors = columns({{1, N}, {0, N}, {N, N}});
    const dense2D<unsigned> as_before = neighbors;
    auto elements = neighbors.col(0);
    auto offsets = neighbors.col(1);
    EXPECT_EQ(get_connex_parts(neighbors, elements, offsets), 0);
    EXPECT_EQ(elements, indices({0, 1, 2}));
    EXPECT_EQ(offsets, indices({0, 2, 3}));
    EXPECT_EQ(neighbors, as_before);
    EXPECT_EQ(elements.buffer->ref_count, 1);
    EXPECT_EQ(offsets.buffer->ref_count, 1);
}

TEST(GetConnexParts, LeavesTheOffsetsWhenBothListsAreOneObject)
{
    auto list = indices({5});
    EXPECT_EQ(get_connex_parts(filled(1, 2, N), list, list), 0);
    EXPECT_EQ(list, indices({0, 1, 2}));
}

TEST(ReorderingGetConnexParts, MakesEveryPartARunOfColumnsAndRenumbersTheNeighbours)
{
    auto connect = columns({{0, 1, 2}, {10, 11, 12}, {2, 1, 3}, {10, 12, 13}});
    dense2D<unsigned> neighbors;
    ASSERT_EQ(get_neighbors(connect, EL_TRIA3, false, neighbors), 0);
    dense1D<unsigned> offsets;
    EXPECT_EQ(get_connex_parts(connect, neighbors, offsets), 0);
    EXPECT_EQ(connect, columns({{0, 1, 2}, {2, 1, 3}, {10, 11, 12}, {10, 12, 13}}));
    EXPECT_EQ(neighbors, columns({{1, N, N}, {N, N, 0}, {N, 3, N}, {N, N, 2}}));
    EXPECT_EQ(offsets, indices({0, 2, 4}));
}

TEST(ReorderingGetConnexParts, LeavesEntriesThatNameNoElementAndDoesNotCountThem)
{
    auto connect = columns({{5}, {6}, {7}});
    auto neighbors = columns({{2, 3}, {4, N}, {0xFFFFFFFE, 0}});
    dense1D<unsigned> offsets;
    EXPECT_EQ(get_connex_parts(connect, neighbors, offsets), 0);
    EXPECT_EQ(connect, columns({{5}, {7}, {6}}));
    EXPECT_EQ(neighbors, columns({{1, 3}, {0xFFFFFFFE, 0}, {4, N}}));
    EXPECT_EQ(offsets, indices({0, 2, 3}));
}

TEST(ReorderingGetConnexParts, LeavesMatricesOfDifferentColumnCountsAlone)
{
    const auto links = columns({{2}, {N}, {0}});
    for (const auto& elements : {columns({{5}, {6}}), columns({{5}, {6}, {7}, {8}}), dense2D<unsigned>()}) {
        dense2D<unsigned> connect = elements;
        dense2D<unsigned> neighbors = links;
        dense1D<unsigned> offsets;
        EXPECT_EQ(get_connex_parts(connect, neighbors, offsets), 0);
        EXPECT_EQ(connect, elements);
        EXPECT_EQ(neighbors, links);
        EXPECT_EQ(offsets, indices({0, 2, 3}));
    }
}

TEST(ReorderingGetConnexParts, LeavesTheMatricesAloneWhenThereAreNoElements)
{
    auto connect = dense2D<unsigned>(3, 0);
    auto neighbors = dense2D<unsigned>(2, 0);
    auto offsets = indices({4, 4});
    EXPECT_EQ(get_connex_parts(connect, neighbors, offsets), 0);
    EXPECT_EQ(connect.rows, 3u);
    EXPECT_EQ(neighbors.rows, 2u);
    EXPECT_EQ(offsets, indices({0}));
}

TEST(ReorderingGetConnexParts, ReordersElementsWhoseNeighboursHaveNoRows)
{
    auto connect = columns({{5}, {6}});
    auto neighbors = dense2D<unsigned>(0, 2);
    dense1D<unsigned> offsets;
    EXPECT_EQ(get_connex_parts(connect, neighbors, offsets), 0);
    EXPECT_EQ(connect, columns({{5}, {6}}));
    EXPECT_EQ(neighbors.rows, 0u);
    EXPECT_EQ(neighbors.cols, 2u);
    EXPECT_EQ(offsets, indices({0, 1, 2}));
}

TEST(ReorderingGetConnexParts, GivesNewBuffersSoThatSharersKeepTheirs)
{
    auto connect = columns({{5}, {6}, {7}});
    auto neighbors = columns({{2}, {N}, {0}});
    dense2D<unsigned> sharer;
    sharer.shallow_copy(connect);
    dense1D<unsigned> offsets;
    EXPECT_EQ(get_connex_parts(connect, neighbors, offsets), 0);
    EXPECT_EQ(connect, columns({{5}, {7}, {6}}));
    EXPECT_EQ(sharer, columns({{5}, {6}, {7}}));
    EXPECT_EQ(connect.buffer->ref_count, 1);
    EXPECT_EQ(neighbors.buffer->ref_count, 1);
}

TEST(ReorderingGetConnexParts, LeavesTheNeighboursWhenBothMatricesAreOneObject)
{
    auto both = columns({{2}, {N}, {0}});
    dense1D<unsigned> offsets;
    EXPECT_EQ(get_connex_parts(both, both, offsets), 0);
    EXPECT_EQ(both, columns({{1}, {0}, {N}}));
    EXPECT_EQ(offsets, indices({0, 2, 3}));
}

TEST(ReorderingGetConnexParts, ReadsMatricesOfOneBufferAsTheyWere)
{
    // Row 0 holds the elements, rows 1 and 2 their neighbours; the offsets look into the same buffer.
    auto whole = columns({{5, 2, N}, {6, N, N}, {7, 0, N}});
    const dense2D<unsigned> as_before = whole;
    auto connect = whole.sub_matrix(0, 0, 1, 3);
    auto neighbors = whole.sub_matrix(1, 0, 2, 3);
    auto offsets = whole.col(0);
    EXPECT_EQ(get_connex_parts(connect, neighbors, offsets), 0);
    EXPECT_EQ(connect, columns({{5}, {7}, {6}}));
    EXPECT_EQ(neighbors, columns({{1, N}, {0, N}, {N, N}}));
    EXPECT_EQ(offsets, indices({0, 2, 3}));
    EXPECT_EQ(whole, as_before);
}

TEST(ReorderingGetConnexParts, AgreesWithTheLiteralQueueOnRandomLinks)
{
    dice random(42);
    for (int trial = 0; trial < 3000; ++trial) {
        const unsigned n = 1 + random.below(60);
        const auto links = random_links(random, 1 + random.below(4), n);
        const auto elements = random_elements(random, EL_NODE, 1 + random.below(4), n, 100);
        const auto expected = slow::connected_parts(links, false);
        auto a = storage_forms(elements, N);
        auto b = storage_forms(links, 0u);
        auto& connect = a[random.below(4)].matrix;
        auto& neighbors = b[random.below(4)].matrix;
        dense1D<unsigned> offsets;
        ASSERT_EQ(get_connex_parts(connect, neighbors, offsets), 0);
        ASSERT_EQ(offsets, indices(expected.offsets)) << "trial " << trial;
        ASSERT_EQ(connect, in_order(elements, expected.elements)) << "trial " << trial;
        ASSERT_EQ(neighbors, renumbered(in_order(links, expected.elements), expected.elements)) << "trial " << trial;
    }
}

TEST(ReorderingGetConnexParts, KeepsTheNeighboursThoseOfTheElements)
{
    auto connect = shuffled(tria_grid(20), 7);
    dense2D<unsigned> neighbors, anew;
    dense1D<unsigned> offsets;
    ASSERT_EQ(get_neighbors(connect, EL_TRIA3, false, neighbors), 0);
    EXPECT_EQ(get_connex_parts(connect, neighbors, offsets), 0);
    ASSERT_EQ(get_neighbors(connect, EL_TRIA3, false, anew), 0);
    EXPECT_EQ(neighbors, anew);
    EXPECT_EQ(offsets, indices({0, 800}));
}
