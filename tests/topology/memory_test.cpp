#include <gtest/gtest.h>

#include "support/failing_memory.h"
#include "support/matrices.h"
#include "support/mesh_builders.h"
#include "support/recovery.h"
#include "topology/calls.h"

using namespace zeb::tessolv;
using namespace test;

namespace {

const dense2D<unsigned> before = columns({{77, 78}});

}  // namespace

TEST(Memory, GetNeighborsEmptiesItsOutput)
{
    const std::vector<std::pair<element_type, dense2D<unsigned>>> meshes{
        {EL_EDGE2, columns({{0, 1}, {1, 2}})},
        {EL_TRIA3, tria_grid(3)},
        {EL_QUAD4, quad_grid(3)},
        {EL_FACE_MIX, columns({{0, 1, 2, N}, {0, 2, 3, 4}})},
        {EL_FACE_MIX, tria_grid(2)},
        {EL_TETRA4, tetra_grid(2)},
        {EL_HEXA8, hexa_grid(2)}};
    for (const auto& [type, connect] : meshes) {
        dense2D<unsigned> expected;
        ASSERT_EQ(get_neighbors(connect, type, true, expected), 0);
        for_each_failure([&, type = type, &connect = connect](attempt& run) {
            dense2D<unsigned> neighbors = before;
            const int code = run([&] { return get_neighbors(connect, type, true, neighbors); });
            EXPECT_EQ(code, run.failed() ? -199 : 0);
            if (run.failed()) {
                EXPECT_TRUE(is_empty_throughout(neighbors));
            } else {
                EXPECT_EQ(neighbors, expected);
            }
        });
    }
}

TEST(Memory, GetNeighborsEmptiesAnOutputThatIsItsInput)
{
    for_each_failure([](attempt& run) {
        dense2D<unsigned> connect = tria_grid(2);
        const int code = run([&] { return get_neighbors(connect, EL_TRIA3, true, connect); });
        EXPECT_EQ(code, run.failed() ? -199 : 0);
        EXPECT_EQ(is_empty_throughout(connect), run.failed());
    });
}

TEST(Memory, GetBoundariesSaysNothingAndEmptiesItsOutput)
{
    const auto connect = tetra_grid(2);
    dense2D<unsigned> neighbors, expected;
    ASSERT_EQ(get_neighbors(connect, EL_TETRA4, false, neighbors), 0);
    ASSERT_EQ(get_boundaries(connect, neighbors, EL_TETRA4, expected), 0);
    for_each_failure([&](attempt& run) {
        dense2D<unsigned> boundaries = before;
        EXPECT_EQ(run([&] { return get_boundaries(connect, neighbors, EL_TETRA4, boundaries); }), 0);
        if (run.failed()) {
            EXPECT_TRUE(is_empty_throughout(boundaries));
        } else {
            EXPECT_EQ(boundaries, expected);
        }
    });
}

TEST(Memory, GetAncestorsHasACodeOfItsOwnAndLeavesAnEmptyListEmpty)
{
    for_each_failure([](attempt& run) {
        dense1D<unsigned> ancestors;
        const auto connect = columns({{0, 2}});
        const int code = run([&] { return get_ancestors(connect, ancestors); });
        EXPECT_EQ(code, run.failed() ? -2 : 0);
        EXPECT_EQ(ancestors, run.failed() ? indices({}) : indices({0, N, 0}));
    });
}

TEST(Memory, GetAncestorsLeavesAListAmongTheElementsUntouched)
{
    for_each_failure([](attempt& run) {
        auto connect = columns({{1, 0}, {3, 1}});
        auto ancestors = connect.col(0);
        const int code = run([&] { return get_ancestors(connect, ancestors); });
        EXPECT_EQ(code, run.failed() ? -2 : 0);
        EXPECT_EQ(ancestors, run.failed() ? indices({1, 0}) : indices({0, 1}));
    });
}

TEST(Memory, GetAncestorsNeedsNoneForAListThatIsGiven)
{
    const auto connect = columns({{0, 2}});
    auto ancestors = indices({7, 7, 7});
    attempt run(1, true);
    EXPECT_EQ(run([&] { return get_ancestors(connect, ancestors); }), 0);
    EXPECT_EQ(ancestors, indices({0, 7, 0}));
}

TEST(Memory, GetConnexPartsSaysNothingAndEmptiesBothLists)
{
    dense2D<unsigned> neighbors = filled(2, 40, N);  // forty parts: the offsets grow more than once
    neighbors(0, 3) = 40;
    for_each_failure([&](attempt& run) {
        auto elements = indices({5, 5}), offsets = indices({6});
        EXPECT_EQ(run([&] { return get_connex_parts(neighbors, elements, offsets); }), 0);
        EXPECT_EQ(elements.size, run.failed() ? 0u : 41u);
        EXPECT_EQ(offsets.size, run.failed() ? 0u : 41u);
    });
}

TEST(Memory, ReorderingGetConnexPartsSaysNothingAndLeavesTheMatrices)
{
    for_each_failure([](attempt& run) {
        auto connect = columns({{5, 6}, {6, 7}, {5, 7}}), neighbors = columns({{2}, {N}, {0}});
        auto offsets = indices({6});
        EXPECT_EQ(run([&] { return get_connex_parts(connect, neighbors, offsets); }), 0);
        EXPECT_EQ(connect, run.failed() ? columns({{5, 6}, {6, 7}, {5, 7}}) : columns({{5, 6}, {5, 7}, {6, 7}}));
        EXPECT_EQ(neighbors, run.failed() ? columns({{2}, {N}, {0}}) : columns({{1}, {0}, {N}}));
        EXPECT_EQ(offsets, run.failed() ? indices({}) : indices({0, 2, 3}));
    });
}

TEST(Memory, CopyEdgesLeavesItsOutput)
{
    const auto kinds = types({EL_TRIA3, EL_TETRA4});
    const dense2D<unsigned> range[] = {tria_grid(2), tetra_grid(1)};
    for_each_failure([&](attempt& run) {
        dense2D<unsigned> edges = before;
        const int code = run([&] { return copy_edges(range, range + 2, kinds, edges); });
        EXPECT_EQ(code, run.failed() ? -199 : 0);
        EXPECT_EQ(edges == before, run.failed());
    });
    for_each_failure([&](attempt& run) {
        dense2D<unsigned> edges = before;
        const int code = run([&] { return copy_edges(range[0], EL_TRIA3, edges); });
        EXPECT_EQ(code, run.failed() ? -199 : 0);
        EXPECT_EQ(edges.cols, run.failed() ? 1u : 17u);
    });
}

class TopologyCall : public testing::TestWithParam<stored_call> {};

TEST_P(TopologyCall, SaysThatMemoryEndsAndSucceedsAfterwards)
{
    expect_recovery(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Memory, TopologyCall, testing::ValuesIn(topology_calls),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Memory, RefusedCallsNeedNone)
{
    const auto bad = columns({{0, 1, N}});
    dense2D<unsigned> out = before;
    dense1D<unsigned> ancestors;
    attempt run(1, true);
    EXPECT_EQ(run([&] { return get_neighbors(bad, EL_TRIA3, true, out); }), -1);
    EXPECT_EQ(run([&] { return get_boundaries(bad, bad, EL_TRIA3, out); }), -1);
    EXPECT_EQ(run([&] { return get_ancestors(bad, ancestors); }), -1);
    EXPECT_EQ(run([&] { return copy_edges(bad, EL_TRIA3, out); }), -1);
    EXPECT_EQ(out, before);
}
