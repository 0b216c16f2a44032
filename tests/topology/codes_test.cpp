#include <gtest/gtest.h>

#include "support/faults.h"
#include "support/matrices.h"
#include "support/stored_call.h"

// Every set of faults that the arguments of a call may have: the code of the first check, and the outputs as it leaves
// them.

using namespace zeb::tessolv;
using namespace test;

namespace {

struct arguments {
    dense2D<unsigned> connect, neighbors, edges;
    element_type type;
};
const arguments good{columns({{0, 1, 2}, {2, 1, 3}}), columns({{1, N, N}, {N, N, 0}}), columns({{8, 9}}), EL_TRIA3};
using faults = std::vector<fault<arguments>>;

void remove_elements(arguments& a)
{
    a.connect.resize(a.connect.rows, 0);
}
void spoil_an_index(arguments& a)
{
    a.connect(1, 0) = N;
}
void make_it_wedges(arguments& a)
{
    a.type = EL_WEDGE6;
    a.connect.resize(6, 2, 1u);
}
void make_it_quadratic(arguments& a)
{
    a.type = EL_TRIA6;
    a.connect.resize(6, 2, 1u);
}
void lose_a_column_of_neighbors(arguments& a)
{
    a.neighbors.resize(3, 1);
}
void give_edges_three_rows(arguments& a)
{
    a.edges = columns({{8, 9, 10}});
}

void expect_output(const fault<arguments>* first, int code, const dense2D<unsigned>& out,
                   const dense2D<unsigned>& before, const dense2D<unsigned>& result)
{
    EXPECT_EQ(code, first != nullptr ? first->code : 0);
    if (first == nullptr) {
        EXPECT_EQ(out, result);
    } else if (first->state == outputs::kept) {
        EXPECT_EQ(out, before);
    } else {
        EXPECT_TRUE(is_empty_throughout(out)) << testing::PrintToString(out);
    }
}

const auto before = columns({{77, 78}});

}  // namespace

TEST(TopologyCodes, OfGetNeighbors)
{
    const faults in_order{{0, outputs::kept, remove_elements},
                          {-1, outputs::kept, spoil_an_index},
                          {-2, outputs::kept, make_it_wedges},
                          {-1, outputs::emptied, make_it_quadratic}};
    for_every_set_of_faults(good, in_order, [](const arguments& a, const auto* first) {
        dense2D<unsigned> out = before;
        expect_output(first, get_neighbors(a.connect, a.type, true, out), out, before, good.neighbors);
    });
}

TEST(TopologyCodes, OfGetBoundaries)
{
    const faults in_order{{0, outputs::kept, remove_elements},
                          {-1, outputs::kept, spoil_an_index},
                          {-2, outputs::kept, make_it_wedges},
                          {-1, outputs::emptied, make_it_quadratic},
                          {-2, outputs::emptied, lose_a_column_of_neighbors}};
    for_every_set_of_faults(good, in_order, [](const arguments& a, const auto* first) {
        dense2D<unsigned> out = before;
        expect_output(first, get_boundaries(a.connect, a.neighbors, a.type, out), out, before,
                      columns({{2, 0}, {0, 1}, {1, 3}, {3, 2}}));
    });
}

TEST(TopologyCodes, OfGetAncestors)
{
    const faults in_order{{0, outputs::kept, remove_elements}, {-1, outputs::kept, spoil_an_index}};
    for_every_set_of_faults(good, in_order, [](const arguments& a, const auto* first) {
        dense1D<unsigned> ancestors;
        EXPECT_EQ(get_ancestors(a.connect, ancestors), first != nullptr ? first->code : 0);
        EXPECT_EQ(ancestors, first != nullptr ? indices({}) : indices({0, 1, 1, 1}));
    });
}

TEST(TopologyCodes, OfCopyEdges)
{
    const faults in_order{{0, outputs::kept, remove_elements},
                          {-1, outputs::kept, spoil_an_index},
                          {-3, outputs::kept, give_edges_three_rows}};
    for_every_set_of_faults(good, in_order, [](const arguments& a, const auto* first) {
        dense2D<unsigned> out = a.edges;
        expect_output(first, copy_edges(a.connect, a.type, out), out, a.edges,
                      columns({{8, 9}, {1, 2}, {0, 2}, {0, 1}, {1, 3}, {2, 3}}));
    });
}

TEST(TopologyCodes, OfCopyEdgesOverARange)
{
    struct range_arguments : arguments {
        dense1D<int> types = test::types({EL_EDGE2, EL_TRIA3});
        bool reversed = false;
    };
    const std::vector<fault<range_arguments>> in_order{
        {-2, outputs::kept, [](range_arguments& a) { a.reversed = true; }},
        {-3, outputs::kept, [](range_arguments& a) { a.types.resize(1); }},
        {-4, outputs::kept, [](range_arguments& a) { give_edges_three_rows(a); }},
        {-1, outputs::kept, [](range_arguments& a) { spoil_an_index(a); }}};
    for_every_set_of_faults(range_arguments{good}, in_order, [](const range_arguments& a, const auto* first) {
        const dense2D<unsigned> range[] = {columns({{3, 2}}), a.connect};
        dense2D<unsigned> out = a.edges;
        const int code =
            a.reversed ? copy_edges(range + 2, range, a.types, out) : copy_edges(range, range + 2, a.types, out);
        EXPECT_EQ(code, first != nullptr ? first->code : 0);
        EXPECT_EQ(out, first != nullptr ? a.edges : columns({{8, 9}, {2, 3}, {1, 2}, {0, 2}, {0, 1}, {1, 3}}));
    });
}
