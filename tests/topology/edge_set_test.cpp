#include "topology/edge_set.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/matrices.h"

using namespace zeb::tessolv;
using namespace test;

namespace {

using edge_list = std::vector<std::pair<unsigned, unsigned>>;

edge_list listed(const edge_set& edges)
{
    edge_list found;
    edges.walk([&](unsigned a, unsigned b) {
        found.emplace_back(a, b);
        return true;
    });
    return found;
}

}  // namespace

TEST(EdgeSet, WalksTheEdgesOfAllMatricesInTheOrderInWhichTheyAreFirstSeen)
{
    const dense2D<unsigned> matrices[] = {columns({{9, 8}, {4, 4}}), dense2D<unsigned>(), filled(20, 1, 3u),
                                          columns({{8, 9, 7, N}, {7, 8, 4, 4}})};
    const auto kinds = types({EL_EDGE2, EL_TRIA3, EL_HEXA20, EL_FACE_MIX});
    edge_set edges({{matrices, matrices + 4}, kinds});
    ASSERT_TRUE(edges.collect());
    EXPECT_EQ(edges.size(), 6u);
    EXPECT_EQ(listed(edges), (edge_list{{8, 9}, {4, 4}, {7, 9}, {7, 8}, {4, 8}, {4, 7}}));
}

TEST(EdgeSet, EndsAWalkWhenTheVisitorSaysSo)
{
    const dense2D<unsigned> matrices[] = {columns({{0, 1, 2}}), columns({{5, 6}})};
    const auto kinds = types({EL_TRIA3, EL_EDGE2});
    edge_set edges({{matrices, matrices + 2}, kinds});
    ASSERT_TRUE(edges.collect());
    unsigned visits = 0;
    edges.walk([&](unsigned, unsigned) { return ++visits < 2; });
    EXPECT_EQ(visits, 2u);
}

TEST(EdgeSet, IsEmptyForAnEmptyRange)
{
    edge_set edges({{nullptr, nullptr}, types({})});
    ASSERT_TRUE(edges.collect());
    EXPECT_EQ(edges.size(), 0u);
    EXPECT_EQ(listed(edges), edge_list());
}

TEST(EdgeSet, FindsTheFirstEdgesOfElementsWhoseNumbersCrossAWord)
{
    // Twelve edges an element do not divide 64: the sixth hexahedron begins in one word and ends in the next.
    dense2D<unsigned> hexahedra(8, 40);
    for (unsigned e = 0; e < 40; ++e)
        for (unsigned i = 0; i < 8; ++i) hexahedra(i, e) = 8 * e + i;
    const auto kinds = types({EL_HEXA8});
    edge_set edges({{&hexahedra, &hexahedra + 1}, kinds});
    ASSERT_TRUE(edges.collect());
    EXPECT_EQ(edges.size(), 480u);
    const auto found = listed(edges);
    ASSERT_EQ(found.size(), 480u);
    for (unsigned e = 0; e < 40; ++e) EXPECT_EQ(found[12 * e + 7], std::pair(8 * e + 4, 8 * e + 7));
}
