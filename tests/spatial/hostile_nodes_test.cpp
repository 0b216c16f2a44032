#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <numeric>

#include "spatial/tree_model.h"
#include "support/failing_memory.h"
#include "support/matrices.h"
#include "support/small_stack.h"

// Nodes that make a tree as deep as it has records: everything has to end soon, on a small stack.

namespace {

using namespace zeb::tessolv;
using test::indices;
using test::run_on_small_stack;
using zeb::dense1D;
using zeb::dense2D;

using point3 = zeb::vector_fixed<double, 3>;

constexpr unsigned many = 200000;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

// Nodes that enter a tree in the order of the positions: node order[i] is the i-th to be inserted.
dense2D<double> inserted_as(unsigned count, const std::function<point3(unsigned)>& position)
{
    std::vector<unsigned> order(count);
    std::iota(order.begin(), order.end(), 0u);
    order = model::shuffled(order);
    dense2D<double> pos(3, count);
    for (unsigned i = 0; i < count; ++i) {
        const point3 x = position(i);
        for (unsigned d = 0; d < 3; ++d) pos(d, order[i]) = x[d];
    }
    return pos;
}

struct hostile {
    const char* name;
    dense2D<double> (*nodes)();
};

const hostile hostile_nodes[] = {
    {"one_place", [] { return test::filled(3, many, 0.5); }},
    {"a_line",
     [] {
         dense2D<double> pos(3, many, 2.0);
         for (unsigned i = 0; i < many; ++i) pos(1, i) = i;
         return pos;
     }},
    {"one_place_and_a_few",
     [] {
         dense2D<double> pos(3, many, 0.5);
         for (unsigned i = 0; i < many; i += 1000) pos(0, i) = pos(2, i) = 0.5 + 1e-6 * i;
         return pos;
     }},
    {"growing", [] { return inserted_as(many, [](unsigned i) { return point3(i, i, i); }); }},
    {"falling", [] { return inserted_as(many, [](unsigned i) { return point3(-1.0 * i, -1.0 * i, -1.0 * i); }); }},
    {"closing_in",
     [] {
         return inserted_as(many, [](unsigned i) {
             const double x = i % 2 == 0 ? i : 2.0 * many - i;
             return point3(x, x, x);
         });
     }},
    {"rows", [] { return inserted_as(many, [](unsigned i) { return point3(i % 1000, i / 1000, 0); }); }},
    {"not_a_number", [] { return test::filled(3, many, nan); }},
    {"partly_not_a_number",
     [] {
         dense2D<double> pos(3, many, 0.5);
         for (unsigned i = 0; i < many; ++i) pos(1, i) = i % 2 == 0 ? nan : i;
         return pos;
     }},
};

class HostileNodes : public testing::TestWithParam<hostile> {};

TEST_P(HostileNodes, AreBuiltAndSearchedOnASmallStack)
{
    const dense2D<double> pos = GetParam().nodes();
    run_on_small_stack([&] {
        node_detector detector(pos);
        ASSERT_EQ(detector.size(), pos.cols);
        const bool has_numbers = pos(0, 0) == pos(0, 0);
        for (unsigned node = 0; node < pos.cols; node += 50) {
            const unsigned long closest = detector.find_closest(node);
            const bool is_number = pos(1, node) == pos(1, node);
            ASSERT_EQ(closest != 4294967295ul, has_numbers && is_number);
            ASSERT_NE(closest, node);
        }
        for (unsigned k = 0; k < 10000; ++k) {
            dense1D<unsigned> hits;
            const double x = 100.25 * k;
            detector.find_in_box(point3(x, x, x), point3(x + 1, x + 1, x + 1), hits);
        }
        dense1D<unsigned> all;
        detector.find_in_box(point3(-infinity, -infinity, -infinity), point3(infinity, infinity, infinity), all);
        ASSERT_LE(all.size, pos.cols);
        EXPECT_EQ(detector.insert(indices({0, 1, 2})), 3u);
        const node_detector copy(detector);
        EXPECT_EQ(copy.size(), pos.cols + 3);
        EXPECT_EQ(copy.find_closest(0u), detector.find_closest(0u));
    });
}

TEST_P(HostileNodes, AreMergedOnASmallStack)
{
    const dense2D<double> nodes = GetParam().nodes();
    run_on_small_stack([&] {
        for (const double tolerance : {0.0, 0.1}) {
            dense2D<double> pos = nodes;
            dense1D<unsigned> new_IDs;
            const int merges = merge(pos, new_IDs, tolerance);
            ASSERT_GE(merges, 0);
            ASSERT_EQ(new_IDs.size, pos.cols);
            int changed = 0;
            for (unsigned i = 0; i < pos.cols; ++i) changed += new_IDs[i] != i;
            ASSERT_EQ(changed, merges);
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Many, HostileNodes, testing::ValuesIn(hostile_nodes),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(HostileNodes, OfOnePlaceAreHitInTheOrderOfTheTree)
{
    // A chain on the right: the last one inserted comes first.
    const unsigned count = 3000;
    const dense2D<double> pos = test::filled(3, count, 1.0);
    std::vector<unsigned> order(count);
    std::iota(order.begin(), order.end(), 0u);
    order = model::shuffled(order);
    const node_detector detector(pos);
    dense1D<unsigned> hits;
    detector.find_in_box(point3(1, 1, 1), point3(1, 1, 1), hits);
    EXPECT_EQ(std::vector<unsigned>(hits.begin(), hits.end()), std::vector<unsigned>(order.rbegin(), order.rend()));
    EXPECT_EQ(detector.find_closest(point3(1, 1, 1)), order[0]);
    EXPECT_EQ(detector.find_closest(order[0]), order[1]);
    EXPECT_EQ(detector.find_closest(order[7]), order[0]);
}

TEST(HostileNodes, InsertedInPartsAnswerAsTheTreeOfAllParts)
{
    const unsigned count = 2000;
    dense2D<double> pos = inserted_as(count, [](unsigned i) { return point3(i / 2, i / 2, i / 2); });
    for (const unsigned part : {1u, 7u, 300u, 1999u}) {
        SCOPED_TRACE(part);
        node_detector detector(pos, dense1D<unsigned>());
        model::tree expected(pos);
        for (unsigned first = 0; first < count; first += part) {
            std::vector<unsigned> nodes(std::min(part, count - first));
            std::iota(nodes.begin(), nodes.end(), first);
            ASSERT_EQ(detector.insert(indices(nodes)), expected.insert(nodes));
            if (part == 1 && first % 50 != 0) continue;
            for (unsigned node = first / 2; node < first + part && node < count; node += 37)
                ASSERT_EQ(detector.find_closest(node), expected.find_closest_to(node)) << node;
        }
    }
}

TEST(HostileNodes, AreNotFoundWhenADeepTreeLosesColumns)
{
    const unsigned count = 1500;
    dense2D<double> pos = test::filled(3, count, 1.0);
    for (unsigned i = 0; i < count; i += 2) pos(0, i) = 1.5;
    const node_detector detector(pos);
    model::tree expected(pos);
    std::vector<unsigned> all(count);
    std::iota(all.begin(), all.end(), 0u);
    expected.insert(all);
    pos.resize(3, count / 2);
    for (unsigned node = 0; node < count; node += 11)
        ASSERT_EQ(detector.find_closest(node), node < count / 2 ? expected.find_closest_to(node) : 4294967295ul)
            << node;
    dense1D<unsigned> hits;
    std::vector<unsigned> expected_hits;
    detector.find_in_box(point3(0, 0, 0), point3(2, 2, 2), hits);
    expected.find_in_box({0, 0, 0}, {2, 2, 2}, expected_hits);
    EXPECT_EQ(std::vector<unsigned>(hits.begin(), hits.end()), expected_hits);
}

TEST(HostileNodes, OfATreeThatIsDeepLoseTheLastHitsWithoutMemory)
{
    const dense2D<double> pos = test::filled(3, 1000, 1.0);
    const node_detector detector(pos);
    dense1D<unsigned> all;
    detector.find_in_box(point3(0, 0, 0), point3(2, 2, 2), all);
    ASSERT_EQ(all.size, 1000u);
    for (long request = 1; request < 8; ++request) {
        dense1D<unsigned> hits;
        {
            const test::failing_memory memory(request, true);
            detector.find_in_box(point3(0, 0, 0), point3(2, 2, 2), hits);
        }
        ASSERT_LT(hits.size, 1000u);
        EXPECT_EQ(hits, all.sub_vector(0, hits.size));
    }
}

// -- merging where pairs would be too many

TEST(HostileMerge, OfAnyDistanceLeavesOneNode)
{
    dense2D<double> pos(3, many);
    std::uint64_t state = 1;
    for (unsigned i = 0; i < many; ++i)
        for (unsigned d = 0; d < 3; ++d) {
            state = state * 6364136223846793005u + 1442695040888963407u;
            pos(d, i) = static_cast<double>(state >> 40);
        }
    run_on_small_stack([&] { EXPECT_EQ(merge(pos, infinity), static_cast<int>(many - 1)); });
}

// A chain of edges of which each pass brings only the next one together.
TEST(HostileMerge, OfModeTwoWithAPassForEveryNode)
{
    const unsigned count = 100000;
    dense2D<double> pos(2, count, 0.0);
    dense2D<unsigned> edges(2, count - 1);
    for (unsigned i = 1; i < count; ++i) {
        pos(0, i) = i % 2 == 0 ? 0.9 : -0.9;
        edges(0, i - 1) = i - 1;
        edges(1, i - 1) = i;
    }
    dense1D<unsigned> new_IDs;
    EXPECT_EQ(merge(pos, edges, new_IDs, 1.0, 2), static_cast<int>(count - 1));
    EXPECT_EQ(new_IDs, dense1D<unsigned>(count, 0u));
    EXPECT_EQ(edges, test::filled(2, count - 1, 0u));
}

}  // namespace
