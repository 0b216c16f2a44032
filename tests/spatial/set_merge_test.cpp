#include "spatial/set_merge.h"

#include <gtest/gtest.h>

#include "spatial/merge_model.h"
#include "spatial/random_points.h"
#include "support/matrices.h"

// Merging divided into rounds of growing distance.

namespace {

using zeb::dense1D;
using zeb::dense2D;
using zeb::tessolv::merge_closest_first;

std::vector<unsigned> identity(std::uint64_t count)
{
    std::vector<unsigned> values(count);
    std::iota(values.begin(), values.end(), 0u);
    return values;
}

void expect_same_as_model(const dense2D<double>& pos, const std::vector<unsigned>& visitors,
                          const std::vector<unsigned>& targets, double tolerance, std::uint64_t most)
{
    model::merger expected(pos, tolerance);
    const int count = expected.merge_sets(visitors, targets);
    std::vector<unsigned> new_IDs = identity(pos.cols);
    std::uint64_t merges = 0;
    const auto first = test::indices(visitors);
    const auto second =
        visitors == targets ? dense1D<unsigned>(first.sub_vector(0, first.size)) : test::indices(targets);
    ASSERT_TRUE(merge_closest_first(pos, first, second, tolerance, most, new_IDs.data(), merges));
    ASSERT_EQ(merges, static_cast<std::uint64_t>(count));
    ASSERT_EQ(new_IDs, expected.new_IDs);
}

class MergeClosestFirst : public testing::TestWithParam<unsigned> {};

TEST_P(MergeClosestFirst, GivesTheSameInRoundsAsAtOnce)
{
    for (unsigned seed = 0; seed < 3000; ++seed) {
        SCOPED_TRACE(seed);
        test::random_source random(seed);
        const auto pos = test::random_points(random, GetParam(), 1 + random.below(40), seed % 4 == 3);
        const auto nodes = model::distinct(test::random_nodes(random, 60, static_cast<unsigned>(pos.cols)));
        const double tolerance = random.one_in(3) ? std::numeric_limits<double>::infinity() : 2.0 * random.real();
        expect_same_as_model(pos, nodes, nodes, tolerance, random.below(60));
        if (HasFatalFailure()) return;
    }
}

TEST_P(MergeClosestFirst, GivesTheSameInRoundsForTwoSets)
{
    for (unsigned seed = 0; seed < 3000; ++seed) {
        SCOPED_TRACE(seed);
        test::random_source random(seed);
        const auto pos = test::random_points(random, GetParam(), 1 + random.below(40), seed % 4 == 3);
        const unsigned bound = static_cast<unsigned>(pos.cols);
        const auto visitors = model::distinct(test::random_nodes(random, 1 + random.below(40), bound));
        const auto targets = model::distinct(test::random_nodes(random, 1 + random.below(40), bound));
        const double tolerance = random.one_in(3) ? std::numeric_limits<double>::infinity() : 2.0 * random.real();
        expect_same_as_model(pos, visitors, targets, tolerance, random.below(60));
        if (HasFatalFailure()) return;
    }
}

// Clusters within clusters, from far beyond the range of float to below it.
TEST_P(MergeClosestFirst, GivesTheSameOverAllScales)
{
    for (unsigned seed = 0; seed < 1000; ++seed) {
        SCOPED_TRACE(seed);
        test::random_source random(seed);
        dense2D<double> pos(GetParam(), 30, 0.0);
        for (unsigned j = 0; j < pos.cols; ++j)
            for (unsigned i = 0; i < pos.rows; ++i)
                pos(i, j) = std::ldexp(random.below(4), static_cast<int>(random.below(1200)) - 600);
        const auto nodes = identity(pos.cols);
        const double tolerance = random.one_in(2) ? std::numeric_limits<double>::infinity()
                                                  : std::ldexp(1.0, static_cast<int>(random.below(1200)) - 600);
        expect_same_as_model(pos, nodes, nodes, tolerance, random.below(100));
        if (HasFatalFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(Dimensions, MergeClosestFirst, testing::Values(2u, 3u),
                         [](const auto& rows) { return std::to_string(rows.param) + "D"; });

}  // namespace
