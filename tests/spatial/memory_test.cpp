#include <gtest/gtest.h>

#include <limits>
#include <optional>

#include "support/failing_memory.h"
#include "support/matrices.h"

// Detectors and merging with any of their requests for memory refused.

namespace {

using namespace zeb::tessolv;
using test::attempt;
using test::columns;
using test::indices;
using zeb::dense1D;
using zeb::dense2D;

using point2 = zeb::vector_fixed<double, 2>;

constexpr unsigned long none = 4294967295ul;

// Nodes in growing order with some at one place: deep enough for every way of building a tree.
dense2D<double> many_nodes(unsigned rows, unsigned count)
{
    dense2D<double> pos(rows, count, 0.25);
    for (unsigned j = 0; j < count / 4; ++j) pos(0, j) = j;
    return pos;
}

dense1D<unsigned> first_nodes(unsigned count)
{
    dense1D<unsigned> nodes(count);
    for (unsigned i = 0; i < count; ++i) nodes[i] = i;
    return nodes;
}

TEST(NodeDetectorMemory, IsWithoutTreeWhereConstructionFails)
{
    for (const unsigned rows : {2u, 3u}) {
        const auto pos = many_nodes(rows, 1000);
        const auto connect = columns({{1, 2, 3}, {3, 4, 5}});
        test::for_each_failure([&](attempt& run) {
            std::optional<node_detector> detector;
            run([&] { detector.emplace(pos); });
            EXPECT_EQ(detector->size(), run.failed() ? 0u : 1000u);
            EXPECT_EQ(detector->find_closest(0u) == none, run.failed());
        });
        test::for_each_failure([&](attempt& run) {
            std::optional<node_detector> detector;
            run([&] { detector.emplace(pos, connect); });
            EXPECT_EQ(detector->size(), run.failed() ? 0u : 5u);
        });
    }
}

TEST(NodeDetectorMemory, IsCopiedWithoutTreeWhereMemoryEnds)
{
    const auto pos = many_nodes(3, 300);
    test::for_each_failure([&](attempt& run) {
        const node_detector original(pos);
        std::optional<node_detector> copy;
        run([&] { copy.emplace(original); });
        EXPECT_EQ(copy->size(), run.failed() ? 0u : 300u);
        EXPECT_EQ(original.size(), 300u);
    });
    const auto flat = many_nodes(2, 300);
    test::for_each_failure([&](attempt& run) {
        const node_detector original(pos);
        node_detector assigned(flat);
        run([&] { assigned = original; });
        EXPECT_EQ(assigned.size(), run.failed() ? 0u : 300u);
    });
}

TEST(NodeDetectorMemory, HasNoTreeAfterReinitOverAllColumnsFails)
{
    const auto pos = many_nodes(2, 1000);
    const auto old = many_nodes(3, 10);
    test::for_each_failure([&](attempt& run) {
        node_detector detector(old);
        const int code = run([&] { return detector.reinit(pos); });
        EXPECT_EQ(code, run.failed() ? -199 : 0);
        EXPECT_EQ(detector.size(), run.failed() ? 0u : 1000u);
    });
}

TEST(NodeDetectorMemory, StaysAsItWasWhenReinitOverNodesFails)
{
    const auto pos = many_nodes(2, 1000);
    const auto old = many_nodes(3, 10);
    const auto nodes = first_nodes(700);
    const dense2D<unsigned> meshes[] = {columns({{1, 2, 3}, {3, 4, 5}}), columns({{6}})};
    const auto expect = [&](attempt& run, const auto& reinit, std::uint64_t size) {
        node_detector detector(old);
        const int code = run([&] { return reinit(detector); });
        EXPECT_EQ(code, run.failed() ? -199 : 0);
        EXPECT_EQ(detector.size(), run.failed() ? 10u : size);
        EXPECT_NE(detector.find_closest(1u), none);
    };
    test::for_each_failure([&](attempt& run) {
        expect(
            run, [&](node_detector& detector) { return detector.reinit(pos, nodes); }, 700);
    });
    test::for_each_failure([&](attempt& run) {
        expect(
            run, [&](node_detector& detector) { return detector.reinit(pos, meshes[0]); }, 5);
    });
    test::for_each_failure([&](attempt& run) {
        expect(
            run, [&](node_detector& detector) { return detector.reinit(pos, meshes, meshes + 2); }, 6);
    });
}

TEST(NodeDetectorMemory, CountsWhatItCouldInsert)
{
    const auto pos = many_nodes(2, 1000);
    for (const unsigned count : {1u, 20u, 600u}) {
        const auto nodes = first_nodes(count);
        test::for_each_failure([&](attempt& run) {
            node_detector detector(pos, first_nodes(100));
            const auto inserted = run([&] { return detector.insert(nodes); });
            EXPECT_EQ(detector.size(), 100 + inserted);
            EXPECT_EQ(inserted == count, !run.failed());
            EXPECT_NE(detector.find_closest(1u), none);
        });
    }
    const auto connect = columns({{1, 2, 3}, {3, 4, 5}});
    test::for_each_failure([&](attempt& run) {
        node_detector detector(pos, first_nodes(100));
        const auto inserted = run([&] { return detector.insert(connect); });
        EXPECT_EQ(detector.size(), 100 + inserted);
        EXPECT_EQ(inserted == 5, !run.failed());
    });
}

TEST(NodeDetectorMemory, AsksForNoneToFindTheClosestNode)
{
    for (const unsigned count : {10u, 5000u}) {
        const auto pos = many_nodes(2, count);
        const node_detector detector(pos);
        const test::failing_memory memory(1, true);
        for (unsigned node = 0; node < 10; ++node) EXPECT_NE(detector.find_closest(node), none);
        EXPECT_EQ(detector.find_closest(point2(0.25, 0.25)) == none, false);
        EXPECT_FALSE(memory.triggered());
    }
}

TEST(FindInBoxMemory, LosesOnlyTheHitsThatFindNoRoom)
{
    const auto pos = many_nodes(2, 40);
    const node_detector detector(pos);
    dense1D<unsigned> all;
    detector.find_in_box(point2(0, 0), point2(99, 99), all);
    ASSERT_EQ(all.size, 40u);
    test::for_each_failure([&](attempt& run) {
        dense1D<unsigned> nodes;
        run([&] { detector.find_in_box(point2(0, 0), point2(99, 99), nodes); });
        if (!run.failed()) {
            EXPECT_EQ(nodes, all);
            return;
        }
        EXPECT_LT(nodes.size, 40u);
        std::uint64_t next = 0;  // what is left stands in the old order
        for (const unsigned node : nodes) {
            while (next < 40 && all[next] != node) ++next;
            ASSERT_LT(next++, 40u);
        }
    });
}

struct merge_case {
    const char* name;
    dense2D<double> pos;
    double tolerance;
};

const merge_case merge_cases[] = {
    {"far_apart", test::points({{0, 0}, {5, 0}, {0, 0}, {9, 9}}), 0.5},
    {"close_together", test::points({{0, 0}, {0.1, 0}, {0.2, 0}, {0.3, 0.1}}), 0.15},
    {"at_one_place", test::filled(3, 4, 0.5), 0.0},
    {"without_numbers", test::points({{0, std::numeric_limits<double>::quiet_NaN()}, {0, 0}, {0, 0}, {0, 0}}), 0.5},
    {"any_distance", test::points({{0, 0, 1}, {5, 0, 1}, {0, 7, 1}, {9, 9, 9}}),
     std::numeric_limits<double>::infinity()},
};

void PrintTo(const merge_case& row, std::ostream* out)
{
    *out << row.name;
}

class MergeMemory : public testing::TestWithParam<merge_case> {};

// Runs a form in peace for the result it should have, then with each request refused: it fails and changes nothing.
TEST_P(MergeMemory, FailsWithoutChangingAnything)
{
    const dense2D<double>& pos = GetParam().pos;
    const double tolerance = GetParam().tolerance;
    const auto connect = columns({{0, 1}, {1, 2}, {2, 3}, {3, 0}});
    for (unsigned kind = 0; kind < 3; ++kind) {
        dense2D<unsigned> expected_mesh = connect;
        dense1D<unsigned> expected_IDs;
        const int merges = merge(pos, expected_mesh, expected_IDs, tolerance, kind);
        ASSERT_GE(merges, 0);
        test::for_each_failure([&](attempt& run) {
            dense2D<unsigned> meshes[] = {connect, columns({{3, 2}})};
            dense1D<unsigned> new_IDs = indices({4, 4});
            const int code = run([&] { return merge(pos, meshes, meshes + 1, new_IDs, tolerance, kind); });
            EXPECT_EQ(code, run.failed() ? -199 : merges);
            EXPECT_EQ(meshes[0], run.failed() ? connect : expected_mesh);
            EXPECT_EQ(new_IDs, run.failed() ? dense1D<unsigned>() : expected_IDs);
        });
        test::for_each_failure([&](attempt& run) {
            dense2D<unsigned> one = connect;
            dense2D<unsigned> two = columns({{0}});
            const int code = run([&] { return merge(pos, one, two, tolerance, kind); });
            EXPECT_EQ(code, run.failed() ? -199 : merges);
            EXPECT_EQ(one, run.failed() ? connect : expected_mesh);
        });
    }
}

TEST_P(MergeMemory, FailsWithEmptyNewNumbersOnLists)
{
    const dense2D<double>& pos = GetParam().pos;
    const double tolerance = GetParam().tolerance;
    const auto nodes1 = indices({1, 0, 1});
    const auto nodes2 = indices({3, 0, 2, 1});
    dense1D<unsigned> expected;
    const int merges = merge(pos, nodes1, nodes2, expected, tolerance);
    test::for_each_failure([&](attempt& run) {
        dense1D<unsigned> new_IDs = indices({4, 4});
        const int code = run([&] { return merge(pos, nodes1, nodes2, new_IDs, tolerance); });
        EXPECT_EQ(code, run.failed() ? -199 : merges);
        EXPECT_EQ(new_IDs, run.failed() ? dense1D<unsigned>() : expected);
    });
}

TEST_P(MergeMemory, FailsWithoutMovingColumns)
{
    const dense2D<double>& before = GetParam().pos;
    const double tolerance = GetParam().tolerance;
    dense2D<double> expected = before;
    const int merges = merge(expected, tolerance);
    test::for_each_failure([&](attempt& run) {
        dense2D<double> pos = before;
        dense1D<unsigned> new_IDs = indices({4, 4});
        const int code = run([&] { return merge(pos, new_IDs, tolerance); });
        EXPECT_EQ(code, run.failed() ? -199 : merges);
        EXPECT_EQ(new_IDs.size, run.failed() ? 0u : before.cols);
        for (unsigned j = 0; j < before.cols; ++j)
            for (unsigned i = 0; i < before.rows; ++i) {
                const double kept = run.failed() ? before(i, j) : expected(i, j);
                EXPECT_TRUE(pos(i, j) == kept || (pos(i, j) != pos(i, j) && kept != kept));
            }
    });
}

INSTANTIATE_TEST_SUITE_P(Merge, MergeMemory, testing::ValuesIn(merge_cases),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
