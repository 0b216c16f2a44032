#include <gtest/gtest.h>

#include <numeric>

#include "spatial/random_points.h"
#include "spatial/spread_nodes.h"
#include "spatial/tree_model.h"
#include "support/stored_call.h"

// Detectors over random nodes against the tree as it is defined: equal distances and coincident nodes abound.

namespace {

using zeb::dense1D;
using zeb::dense2D;
using zeb::vector_fixed;
using zeb::tessolv::node_detector;

std::vector<unsigned> all_columns(const dense2D<double>& pos)
{
    std::vector<unsigned> nodes(pos.cols);
    std::iota(nodes.begin(), nodes.end(), 0u);
    return nodes;
}

std::vector<unsigned> as_vector(const dense1D<unsigned>& list)
{
    return {list.begin(), list.end()};
}

unsigned long find_closest(const node_detector& detector, const model::position& P)
{
    return P.size() == 2 ? detector.find_closest(vector_fixed<double, 2>(P[0], P[1]))
                         : detector.find_closest(vector_fixed<double, 3>(P[0], P[1], P[2]));
}

std::vector<unsigned> find_in_box(const node_detector& detector, const model::position& a, const model::position& b)
{
    dense1D<unsigned> nodes;
    if (a.size() == 2)
        detector.find_in_box(vector_fixed<double, 2>(a[0], a[1]), vector_fixed<double, 2>(b[0], b[1]), nodes);
    else
        detector.find_in_box(vector_fixed<double, 3>(a[0], a[1], a[2]), vector_fixed<double, 3>(b[0], b[1], b[2]),
                             nodes);
    return as_vector(nodes);
}

void expect_same_answers(const node_detector& detector, const model::tree& expected, const dense2D<double>& pos,
                         test::random_source& random, bool odd_values, unsigned every = 1)
{
    ASSERT_EQ(detector.size(), expected.size());
    const auto query = [&] {
        const dense2D<double> P = test::random_points(random, static_cast<unsigned>(pos.rows), 1, odd_values);
        return model::position(&P(0, 0), &P(0, 0) + P.rows);
    };
    for (int k = 0; k < 6; ++k) {
        const model::position P = query();
        ASSERT_EQ(find_closest(detector, P), expected.find_closest(P)) << testing::PrintToString(P);
        const model::position Q = query();
        std::vector<unsigned> hits;
        expected.find_in_box(P, Q, hits);
        ASSERT_EQ(find_in_box(detector, P, Q), hits);
    }
    for (unsigned node = 0; node < pos.cols; node += every)
        ASSERT_EQ(detector.find_closest(node), expected.find_closest_to(node)) << node;
    const double most = std::numeric_limits<double>::infinity();
    std::vector<unsigned> hits;
    expected.find_in_box(model::position(pos.rows, -most), model::position(pos.rows, most), hits);
    ASSERT_EQ(find_in_box(detector, model::position(pos.rows, -most), model::position(pos.rows, most)), hits);
}

class NodeDetectorModel : public testing::TestWithParam<unsigned> {};

TEST_P(NodeDetectorModel, AgreesOverAllColumns)
{
    for (unsigned seed = 0; seed < 1000; ++seed) {
        SCOPED_TRACE(seed);
        test::random_source random(seed);
        const bool odd = seed % 4 == 3;
        test::storeroom store;
        const dense2D<double> pos = store.hold(test::random_points(random, GetParam(), 1 + random.below(60), odd),
                                               test::every_storage[random.below(4)]);
        model::tree expected(pos);
        expected.insert(all_columns(pos));
        expect_same_answers(node_detector(pos), expected, pos, random, odd);
        if (HasFatalFailure()) return;
    }
}

TEST_P(NodeDetectorModel, AgreesAfterSeveralInsertionsOfLists)
{
    for (unsigned seed = 0; seed < 600; ++seed) {
        SCOPED_TRACE(seed);
        test::random_source random(seed);
        const bool odd = seed % 4 == 3;
        test::storeroom store;
        const dense2D<double> pos = store.hold(test::random_points(random, GetParam(), 1 + random.below(40), odd),
                                               test::every_storage[random.below(4)]);
        const unsigned bound = static_cast<unsigned>(pos.cols);
        model::tree expected(pos);
        node_detector detector(pos, dense1D<unsigned>());
        for (unsigned k = random.below(5); k != 0; --k) {
            const auto nodes =
                test::random_nodes(random, random.below(random.one_in(2) ? 3 : 50), bound + random.below(3));
            ASSERT_EQ(detector.insert(test::indices(nodes)), expected.insert(nodes));
        }
        expect_same_answers(detector, expected, pos, random, odd);
        if (HasFatalFailure()) return;
    }
}

TEST_P(NodeDetectorModel, AgreesAfterTheMatrixHasShrunkAndGrownAgain)
{
    for (unsigned seed = 0; seed < 600; ++seed) {
        SCOPED_TRACE(seed);
        test::random_source random(seed);
        dense2D<double> pos = test::random_points(random, GetParam(), 2 + random.below(40), false);
        model::tree expected(pos);
        expected.insert(all_columns(pos));
        node_detector detector(pos);
        const std::uint64_t cols = pos.cols;
        pos.resize(pos.rows, random.below(static_cast<unsigned>(cols)));
        expect_same_answers(detector, expected, pos, random, false);
        if (HasFatalFailure()) return;
        const auto more = test::random_nodes(random, random.below(30), static_cast<unsigned>(cols));
        ASSERT_EQ(detector.insert(test::indices(more)), expected.insert(more));
        expect_same_answers(detector, expected, pos, random, false);
        if (HasFatalFailure()) return;
        pos.resize(pos.rows, cols);
        expect_same_answers(detector, expected, pos, random, false);
        if (HasFatalFailure()) return;
    }
}

TEST_P(NodeDetectorModel, AgreesOverThousandsOfNodes)
{
    for (unsigned seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(seed);
        test::random_source random(seed);
        const bool odd = seed % 4 == 3;
        const dense2D<double> pos = test::many_random_points(random, GetParam(), 500 + random.below(1500), odd);
        model::tree expected(pos);
        expected.insert(all_columns(pos));
        expect_same_answers(node_detector(pos), expected, pos, random, odd, 17);
        if (HasFatalFailure()) return;
    }
}

// Nodes one by one into a tree over hundreds: near to nodes that are there, at equal distances, coincident, no numbers.
TEST_P(NodeDetectorModel, AgreesAfterEachOfFewInsertionsIntoHundredsOfNodes)
{
    for (unsigned seed = 0; seed < 54; ++seed) {
        SCOPED_TRACE(seed);
        test::random_source random(seed);
        const auto kind = static_cast<test::spread>(seed % static_cast<unsigned>(test::spread::count));
        dense2D<double> pos = test::spread_points(random, kind, GetParam(), 400);
        if (seed % 4 == 3) pos(0, 399) = std::numeric_limits<double>::quiet_NaN();
        std::vector<unsigned> early = all_columns(pos);
        const std::vector<unsigned> late(early.end() - 6, early.end());
        early.resize(early.size() - late.size());
        model::tree expected(pos);
        expected.insert(early);
        node_detector detector(pos, test::indices(early));
        for (const unsigned node : late) {
            expected.insert({node});
            ASSERT_EQ(detector.insert(test::indices({node})), 1u);
            for (unsigned k = 0; k < 400; ++k) ASSERT_EQ(detector.find_closest(k), expected.find_closest_to(k)) << k;
            for (int k = 0; k < 40; ++k) {
                const model::position P = test::spread_position(random, kind, GetParam());
                ASSERT_EQ(find_closest(detector, P), expected.find_closest(P)) << testing::PrintToString(P);
                model::position Q = P;
                for (double& value : Q) value += 0.3 * random.real() * (kind == test::spread::lattice ? 9 : 1);
                std::vector<unsigned> hits;
                expected.find_in_box(P, Q, hits);
                ASSERT_EQ(find_in_box(detector, P, Q), hits);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Dimensions, NodeDetectorModel, testing::Values(2u, 3u),
                         [](const auto& rows) { return std::to_string(rows.param) + "D"; });

}  // namespace
