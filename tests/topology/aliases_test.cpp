#include <gtest/gtest.h>

#include "support/matrices.h"
#include "support/random_meshes.h"

// Results that are put where the arguments are, or that look into their buffers: everything is read as it was on entry,
// and an argument that is not the result itself stays.

using namespace zeb::tessolv;
using namespace test;

namespace {

struct faced_kind {
    element_type type;
    unsigned rows, faces;
};
constexpr faced_kind faced_kinds[] = {{EL_EDGE2, 2, 2},    {EL_TRIA3, 3, 3},  {EL_QUAD4, 4, 4},
                                      {EL_FACE_MIX, 4, 4}, {EL_TETRA4, 4, 4}, {EL_HEXA8, 8, 6}};

// A view of some columns and rows of m, or of all.
dense2D<unsigned> view_of(dice& random, const dense2D<unsigned>& m, std::uint64_t rows)
{
    const auto i0 = random.below(unsigned(m.rows - rows) + 1), j0 = random.below(unsigned(m.cols));
    return m.sub_matrix(i0, j0, rows, 1 + random.below(unsigned(m.cols) - j0));
}

dense1D<unsigned> column_of(dice& random, const dense2D<unsigned>& m)
{
    return m.col(random.below(unsigned(m.cols)));
}

// Gives the call a result that is the argument itself, or a view of it, and expects what a separate result holds.
template <class Call>
void expect_same_result(dice& random, const dense2D<unsigned>& argument, Call call)
{
    dense2D<unsigned> apart;
    const int code = call(argument, apart);
    dense2D<unsigned> connect = argument;
    if (random.one_in(3)) {
        ASSERT_EQ(call(connect, connect), code);
        ASSERT_EQ(connect, apart);
        return;
    }
    dense2D<unsigned> result = view_of(random, connect, 1 + random.below(unsigned(connect.rows)));
    ASSERT_EQ(call(connect, result), code);
    ASSERT_EQ(result, apart);
    ASSERT_EQ(connect, argument);
}

}  // namespace

TEST(AliasedTopology, NeighborsAndBoundariesReplaceTheirArguments)
{
    dice random(71);
    for (int trial = 0; trial < 2000; ++trial) {
        SCOPED_TRACE(trial);
        const auto kind = random.one_of(faced_kinds);
        const auto connect = random_elements(random, kind.type, kind.rows, 1 + random.below(12), 1 + random.below(12));
        const bool link = random.one_in(2);
        expect_same_result(random, connect,
                           [&](const auto& in, auto& out) { return get_neighbors(in, kind.type, link, out); });
        dense2D<unsigned> neighbors;
        ASSERT_EQ(get_neighbors(connect, kind.type, link, neighbors), 0);
        expect_same_result(random, connect,
                           [&](const auto& in, auto& out) { return get_boundaries(in, neighbors, kind.type, out); });
        expect_same_result(random, neighbors,
                           [&](const auto& in, auto& out) { return get_boundaries(connect, in, kind.type, out); });
        if (HasFatalFailure()) return;
    }
}

TEST(AliasedTopology, AncestorsAreWrittenAmongTheElements)
{
    dice random(72);
    for (int trial = 0; trial < 2000; ++trial) {
        const auto elements = random_elements(random, EL_NODE, 1 + random.below(6), 1 + random.below(8), 8);
        dense2D<unsigned> connect = elements;
        auto ancestors = column_of(random, connect);
        dense1D<unsigned> apart = ancestors;
        ASSERT_EQ(get_ancestors(elements, apart), 0);
        ASSERT_EQ(get_ancestors(connect, ancestors), 0);
        ASSERT_EQ(ancestors, apart) << "trial " << trial;
    }
}

TEST(AliasedTopology, ListsOfPartsReplaceColumnsOfTheNeighbours)
{
    dice random(73);
    for (int trial = 0; trial < 2000; ++trial) {
        const unsigned n = 1 + random.below(8);
        const auto links = random_elements(random, EL_NODE, 1 + random.below(4), n, 2 * n);
        dense2D<unsigned> neighbors = links;
        dense1D<unsigned> elements, offsets;
        ASSERT_EQ(get_connex_parts(links, elements, offsets), 0);
        auto first = column_of(random, neighbors), second = column_of(random, neighbors);
        ASSERT_EQ(get_connex_parts(neighbors, first, second), 0);
        ASSERT_EQ(first, elements) << "trial " << trial;
        ASSERT_EQ(second, offsets) << "trial " << trial;
        ASSERT_EQ(neighbors, links) << "trial " << trial;
    }
}

TEST(AliasedTopology, ReorderedMatricesMayBeRowsOfOneMatrix)
{
    dice random(74);
    for (int trial = 0; trial < 2000; ++trial) {
        const unsigned n = 1 + random.below(8), nodes = 1 + random.below(3);
        const auto all = random_elements(random, EL_NODE, nodes + 2, n, 2 * n);
        dense2D<unsigned> connect = all.sub_matrix(0, 0, nodes, n), neighbors = all.sub_matrix(nodes, 0, 2, n);
        dense1D<unsigned> offsets;
        dense2D<unsigned> whole = all, apart_connect(connect), apart_neighbors(neighbors);
        ASSERT_EQ(get_connex_parts(apart_connect, apart_neighbors, offsets), 0);
        connect.shallow_copy(whole.sub_matrix(0, 0, nodes, n));
        neighbors.shallow_copy(whole.sub_matrix(nodes, 0, 2, n));
        auto listed = column_of(random, whole);
        ASSERT_EQ(get_connex_parts(connect, neighbors, listed), 0);
        ASSERT_EQ(connect, apart_connect) << "trial " << trial;
        ASSERT_EQ(neighbors, apart_neighbors) << "trial " << trial;
        ASSERT_EQ(listed, offsets) << "trial " << trial;
        ASSERT_EQ(whole, all) << "trial " << trial;
    }
}

TEST(AliasedTopology, EdgesAreAppendedToRowsOfTheElements)
{
    dice random(75);
    for (int trial = 0; trial < 2000; ++trial) {
        SCOPED_TRACE(trial);
        const auto kind = random.one_of(faced_kinds);
        const auto elements = random_elements(random, kind.type, kind.rows, 1 + random.below(8), 8);
        dense2D<unsigned> range[] = {elements, random_elements(random, EL_EDGE2, 2, random.below(4), 8)};
        const bool is_second = random.one_in(3);
        dense2D<unsigned> edges = view_of(random, range[0], 2);
        dense2D<unsigned> apart = is_second ? range[1] : edges;
        const auto kinds = types({kind.type, EL_EDGE2});
        const dense2D<unsigned> copies[] = {range[0], range[1]};
        ASSERT_EQ(copy_edges(copies, copies + 2, kinds, apart), 0);
        auto& out = is_second ? range[1] : edges;
        ASSERT_EQ(copy_edges(range, range + 2, kinds, out), 0);
        ASSERT_EQ(out, apart);
        ASSERT_EQ(range[0], elements);
    }
}
