#include <gtest/gtest.h>

#include <cmath>

#include "spatial/merge_model.h"
#include "spatial/random_points.h"
#include "support/matrices.h"

// Merging of random nodes against the procedure as it is defined.

namespace {

using zeb::dense1D;
using zeb::dense2D;
using zeb::tessolv::merge;

std::vector<unsigned> as_vector(const dense1D<unsigned>& list)
{
    return {list.begin(), list.end()};
}

// Often exactly a distance between nodes of the lattice, or one that all nodes are within.
double random_tolerance(test::random_source& random, const dense2D<double>& pos)
{
    const unsigned kind = random.below(8);
    if (kind == 0) return 0.0;
    if (kind == 1) return std::numeric_limits<double>::infinity();
    if (kind == 2) return 3.0 * random.real();
    if (kind == 3) return 1e-3;
    const auto at = [&](unsigned d) { return pos(d, random.below(static_cast<unsigned>(pos.cols))); };
    const double reach = std::hypot(at(0) - at(0), kind > 5 ? at(1) - at(1) : 0.0);
    return std::isnan(reach) ? 0.5 : reach;
}

std::vector<model::mesh> random_meshes(test::random_source& random, unsigned nodes)
{
    std::vector<model::mesh> meshes(random.below(4));
    for (model::mesh& m : meshes) {
        const unsigned rows = 1 + random.below(5);
        m.resize(random.below(20));
        for (auto& column : m) {
            column = test::random_nodes(random, rows, nodes);
            for (unsigned& node : column)
                if (random.one_in(15)) node = zeb::NONE_INDEX;
        }
    }
    return meshes;
}

class MergeModel : public testing::TestWithParam<unsigned> {};

TEST_P(MergeModel, AgreesOnOneList)
{
    for (unsigned seed = 0; seed < 4000; ++seed) {
        SCOPED_TRACE(seed);
        test::random_source random(seed);
        const auto pos = test::random_points(random, GetParam(), 1 + random.below(30), seed % 4 == 3);
        const auto nodes = test::random_nodes(random, 1 + random.below(40), static_cast<unsigned>(pos.cols));
        const double tolerance = random_tolerance(random, pos);
        model::merger expected(pos, tolerance);
        const int merges = expected.merge_sets(nodes, nodes);
        dense1D<unsigned> new_IDs;
        ASSERT_EQ(merge(pos, test::indices(nodes), new_IDs, tolerance), merges);
        ASSERT_EQ(as_vector(new_IDs), expected.new_IDs);
    }
}

TEST_P(MergeModel, AgreesOnTwoLists)
{
    for (unsigned seed = 0; seed < 6000; ++seed) {
        SCOPED_TRACE(seed);
        test::random_source random(seed);
        const auto pos = test::random_points(random, GetParam(), 1 + random.below(30), seed % 4 == 3);
        const auto nodes1 = test::random_nodes(random, 1 + random.below(30), static_cast<unsigned>(pos.cols));
        const auto nodes2 = test::random_nodes(random, 1 + random.below(30), static_cast<unsigned>(pos.cols));
        const double tolerance = random_tolerance(random, pos);
        model::merger expected(pos, tolerance);
        const int merges = expected.merge_sets(nodes1, nodes2);
        dense1D<unsigned> new_IDs;
        ASSERT_EQ(merge(pos, test::indices(nodes1), test::indices(nodes2), new_IDs, tolerance), merges);
        ASSERT_EQ(as_vector(new_IDs), expected.new_IDs);
    }
}

TEST_P(MergeModel, AgreesOnRangesInEveryMode)
{
    for (unsigned seed = 0; seed < 6000; ++seed) {
        SCOPED_TRACE(seed);
        test::random_source random(seed);
        const auto pos = test::random_points(random, GetParam(), 1 + random.below(30), seed % 4 == 3);
        auto meshes = random_meshes(random, static_cast<unsigned>(pos.cols));
        std::vector<dense2D<unsigned>> range;
        for (const auto& m : meshes) range.push_back(test::columns(m));
        const double tolerance = random_tolerance(random, pos);
        const unsigned mode = seed % 3;

        model::merger expected(pos, tolerance);
        const auto nodes = model::nodes_of(meshes);
        const int merges =
            mode == 0 ? expected.merge_sets(nodes, nodes) : expected.merge_in_elements(meshes, mode == 2);
        expected.renumber(meshes);
        dense1D<unsigned> new_IDs;
        ASSERT_EQ(merge(pos, range.data(), range.data() + range.size(), new_IDs, tolerance, mode), merges);
        if (nodes.empty()) {
            ASSERT_TRUE(new_IDs.empty());
        } else {
            ASSERT_EQ(as_vector(new_IDs), expected.new_IDs);
        }
        for (std::size_t k = 0; k < range.size(); ++k) ASSERT_EQ(range[k], test::columns(meshes[k])) << k;
    }
}

TEST_P(MergeModel, AgreesOnAllNodes)
{
    for (unsigned seed = 0; seed < 2000; ++seed) {
        SCOPED_TRACE(seed);
        test::random_source random(seed);
        auto pos = test::random_points(random, GetParam(), 1 + random.below(40), false);
        const auto before = pos;
        const double tolerance = random_tolerance(random, pos);
        model::merger expected(before, tolerance);
        std::vector<unsigned> all(pos.cols);
        std::iota(all.begin(), all.end(), 0u);
        const int merges = expected.merge_sets(all, all);
        dense1D<unsigned> new_IDs;
        ASSERT_EQ(merge(pos, new_IDs, tolerance), merges);
        ASSERT_EQ(as_vector(new_IDs), expected.new_IDs);
        for (unsigned i = 0; i < pos.cols; ++i) ASSERT_EQ(pos.col(i), before.col(expected.new_IDs[i])) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Dimensions, MergeModel, testing::Values(2u, 3u),
                         [](const auto& rows) { return std::to_string(rows.param) + "D"; });

}  // namespace
