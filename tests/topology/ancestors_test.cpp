#include <gtest/gtest.h>

#include "support/matrices.h"
#include "support/random_meshes.h"
#include "support/storage_forms.h"

using namespace zeb::tessolv;
using namespace test;

TEST(GetAncestors, GivesEachNodeItsLastElement)
{
    dense1D<unsigned> ancestors;
    EXPECT_EQ(get_ancestors(columns({{0, 1, 2}, {2, 1, 5}, {5, 7, 0}}), ancestors), 0);
    EXPECT_EQ(ancestors, indices({2, 1, 1, N, N, 2, N, 2}));
}

TEST(GetAncestors, IgnoresNodesBeyondTheEndOfAGivenList)
{
    auto ancestors = indices({50, 51, 52});
    EXPECT_EQ(get_ancestors(columns({{0, 1, 3}, {9, 1, 0xFFFFFFFE}}), ancestors), 0);
    EXPECT_EQ(ancestors, indices({0, 1, 52}));
}

TEST(GetAncestors, RefusesMissingNodesWithoutAGivenListOnly)
{
    const auto mixed = columns({{0, 1, 2, N}, {0, 2, 3, 4}});
    dense1D<unsigned> ancestors;
    EXPECT_EQ(get_ancestors(mixed, ancestors), -1);
    EXPECT_EQ(ancestors.size, 0u);

    ancestors = indices({9, 9, 9, 9, 9, 9});
    EXPECT_EQ(get_ancestors(mixed, ancestors), 0);
    EXPECT_EQ(ancestors, indices({1, 0, 1, 1, 1, 9}));
}

TEST(GetAncestors, LeavesTheListUntouchedWhenThereAreNoElements)
{
    for (const auto& empty : {dense2D<unsigned>(), dense2D<unsigned>(3, 0), dense2D<unsigned>(0, 3)}) {
        auto ancestors = indices({4, 5});
        EXPECT_EQ(get_ancestors(empty, ancestors), 0);
        EXPECT_EQ(ancestors, indices({4, 5}));
        ancestors.clear();
        EXPECT_EQ(get_ancestors(empty, ancestors), 0);
        EXPECT_EQ(ancestors.size, 0u);
    }
}

TEST(GetAncestors, WritesAGivenListInPlace)
{
    dense1D<unsigned> whole(6, 8);
    auto middle = whole.sub_vector(2, 3);
    EXPECT_EQ(get_ancestors(columns({{0, 2}, {2, 9}}), middle), 0);
    EXPECT_EQ(whole, indices({8, 8, 0, 8, 1, 8}));
}

TEST(GetAncestors, ReadsTheElementsAsTheyWereWhenTheListLiesAmongThem)
{
    auto connect = columns({{1, 2, 0}, {0, 3, 1}, {2, 0, 3}});
    auto ancestors = connect.col(1);
    EXPECT_EQ(get_ancestors(connect, ancestors), 0);
    EXPECT_EQ(ancestors, indices({2, 1, 2}));
    EXPECT_EQ(connect, columns({{1, 2, 0}, {2, 1, 2}, {2, 0, 3}}));
}

TEST(GetAncestors, MakesANewListWhenTheGivenOneIsEmptyThoughItsBufferIsShared)
{
    auto connect = columns({{1, 2, 0}, {0, 3, 1}});
    const dense2D<unsigned> as_before = connect;
    auto ancestors = connect.col(0);
    ancestors.clear();
    EXPECT_EQ(get_ancestors(connect, ancestors), 0);
    EXPECT_EQ(ancestors, indices({1, 1, 0, 1}));
    EXPECT_EQ(connect, as_before);
    EXPECT_EQ(ancestors.buffer->ref_count, 1);
}

TEST(GetAncestors, AgreesWithASearchFromTheLastElementOnRandomMeshes)
{
    dice random(31);
    for (int trial = 0; trial < 2500; ++trial) {
        const unsigned rows = 1 + random.below(5), nodes = 1 + random.below(30);
        auto connect = random_elements(random, EL_NODE, rows, 1 + random.below(15), nodes);
        unsigned largest = 0;
        for (std::uint64_t e = 0; e < connect.cols; ++e)
            for (std::uint64_t i = 0; i < rows; ++i) largest = std::max(largest, connect(i, e));
        const bool given = random.one_in(2);
        const bool has_gaps = given && random.one_in(2);
        if (has_gaps) connect(random.below(rows), random.below(unsigned(connect.cols))) = N;

        dense1D<unsigned> expected =
            given ? dense1D<unsigned>(1 + random.below(40)) : dense1D<unsigned>(largest + 1, N);
        if (given)
            for (unsigned& entry : expected) entry = 1000 + random.below(100);
        dense1D<unsigned> ancestors = given ? expected : dense1D<unsigned>();
        for (unsigned node = 0; node < expected.size; ++node)
            for (std::uint64_t e = connect.cols; e-- > 0;) {
                const auto element = connect.col(e);
                if (std::count(element.begin(), element.end(), node) == 0) continue;
                expected[node] = static_cast<unsigned>(e);
                break;
            }
        for (const auto& form : storage_forms(connect, 0u)) {
            dense1D<unsigned> found = ancestors;
            ASSERT_EQ(get_ancestors(form.matrix, found), 0) << "trial " << trial << ": " << form.name;
            ASSERT_EQ(found, expected) << "trial " << trial << ": " << form.name;
        }
    }
}
