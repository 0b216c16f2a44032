#include <gtest/gtest.h>

#include <cmath>

#include "spatial/merge_model.h"
#include "spatial/random_points.h"
#include "support/stored_call.h"

// Merging of random nodes against the procedure as it is defined.

namespace {

using zeb::dense1D;
using zeb::dense2D;
using zeb::tessolv::merge;

template <class Container>
Container held(test::storeroom& store, test::random_source& random, const Container& values)
{
    return store.hold(values, test::every_storage[random.below(4)]);
}

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

model::mesh random_mesh(test::random_source& random, unsigned nodes)
{
    const unsigned rows = 1 + random.below(5);
    model::mesh m(random.below(20));
    for (auto& column : m) {
        column = test::random_nodes(random, rows, nodes);
        for (unsigned& node : column)
            if (random.one_in(15)) node = zeb::NONE_INDEX;
    }
    return m;
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
        test::storeroom store;
        const auto held_pos = held(store, random, pos);
        ASSERT_EQ(merge(held_pos, held(store, random, test::indices(nodes)), new_IDs, tolerance), merges);
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
        test::storeroom store;
        const auto list1 = held(store, random, test::indices(nodes1));
        const auto list2 = held(store, random, test::indices(nodes2));
        ASSERT_EQ(merge(held(store, random, pos), list1, list2, new_IDs, tolerance), merges);
        ASSERT_EQ(as_vector(new_IDs), expected.new_IDs);
    }
}

TEST_P(MergeModel, AgreesOnAllNodes)
{
    for (unsigned seed = 0; seed < 2000; ++seed) {
        SCOPED_TRACE(seed);
        test::random_source random(seed);
        const auto before = test::random_points(random, GetParam(), 1 + random.below(40), false);
        const double tolerance = random_tolerance(random, before);
        model::merger expected(before, tolerance);
        std::vector<unsigned> all(before.cols);
        std::iota(all.begin(), all.end(), 0u);
        const int merges = expected.merge_sets(all, all);
        test::storeroom store;
        dense1D<unsigned> new_IDs;
        auto pos = held(store, random, before);
        auto also_pos = held(store, random, before);
        ASSERT_EQ(merge(pos, new_IDs, tolerance), merges);
        ASSERT_EQ(merge(also_pos, tolerance), merges);
        ASSERT_EQ(as_vector(new_IDs), expected.new_IDs);
        for (unsigned i = 0; i < pos.cols; ++i) ASSERT_EQ(pos.col(i), before.col(expected.new_IDs[i])) << i;
        ASSERT_EQ(also_pos, pos);
    }
}

TEST_P(MergeModel, AgreesOnHundredsOfNodes)
{
    for (unsigned seed = 0; seed < 16; ++seed) {
        SCOPED_TRACE(seed);
        test::random_source random(seed);
        const auto pos = test::many_random_points(random, GetParam(), 150 + random.below(250), seed % 4 == 3);
        const unsigned nodes = static_cast<unsigned>(pos.cols);
        const double tolerance = seed % 3 == 0 ? random_tolerance(random, pos) : 0.02 * (seed % 12);
        const auto list = test::random_nodes(random, 2 * nodes, nodes);
        model::merger expected(pos, tolerance);
        const int merges = expected.merge_sets(list, list);
        dense1D<unsigned> new_IDs;
        ASSERT_EQ(merge(pos, test::indices(list), new_IDs, tolerance), merges);
        ASSERT_EQ(as_vector(new_IDs), expected.new_IDs);

        std::vector<model::mesh> meshes(1, model::mesh(nodes / 2));
        for (auto& column : meshes[0]) column = test::random_nodes(random, 4, 1 + random.below(nodes));
        dense2D<unsigned> connect = test::columns(meshes[0]);
        model::merger in_elements(pos, tolerance);
        const int within = in_elements.merge_in_elements(meshes, true);
        ASSERT_EQ(merge(pos, connect, new_IDs, tolerance, 2), within);
        ASSERT_EQ(as_vector(new_IDs), in_elements.new_IDs);
        ASSERT_EQ(connect, test::columns(meshes[0]));
    }
}

using mesh_range = std::vector<dense2D<unsigned>>;

struct matrix_merge {
    const dense2D<double>& pos;
    mesh_range& m;
    dense1D<unsigned>& ids;
    double within;
    unsigned mode;
};

struct matrix_form {
    const char* name;
    std::size_t matrices;
    bool fixed;  // tolerance and mode are those of the form
    bool lists_new_IDs;
    int (*merge_all)(matrix_merge);
};

const matrix_form matrix_forms[] = {
    {"range", 3, false, true,
     [](matrix_merge a) { return merge(a.pos, a.m.data(), a.m.data() + 3, a.ids, a.within, a.mode); }},
    {"range_alone", 3, false, false,
     [](matrix_merge a) { return merge(a.pos, a.m.data(), a.m.data() + 3, a.within, a.mode); }},
    {"matrix", 1, false, true, [](matrix_merge a) { return merge(a.pos, a.m[0], a.ids, a.within, a.mode); }},
    {"matrix_alone", 1, false, false, [](matrix_merge a) { return merge(a.pos, a.m[0], a.within, a.mode); }},
    {"matrix_by_default", 1, true, false, [](matrix_merge a) { return merge(a.pos, a.m[0]); }},
    {"two_matrices", 2, false, true,
     [](matrix_merge a) { return merge(a.pos, a.m[0], a.m[1], a.ids, a.within, a.mode); }},
    {"two_matrices_alone", 2, false, false,
     [](matrix_merge a) { return merge(a.pos, a.m[0], a.m[1], a.within, a.mode); }},
    {"two_matrices_by_default", 2, true, false, [](matrix_merge a) { return merge(a.pos, a.m[0], a.m[1]); }},
};

class MergeForm : public testing::TestWithParam<matrix_form> {};

TEST_P(MergeForm, AgreesInEveryModeHoweverItsArgumentsAreStored)
{
    const matrix_form& form = GetParam();
    int merged = 0;
    for (unsigned seed = 0; seed < 2400; ++seed) {
        SCOPED_TRACE(seed);
        test::random_source random(seed);
        const auto pos = test::random_points(random, 2 + seed % 2, 1 + random.below(30), seed % 8 > 5);
        const double tolerance = form.fixed ? 1e-6 : random_tolerance(random, pos);
        const unsigned mode = form.fixed ? 0 : seed / 2 % 3;
        std::vector<model::mesh> meshes(form.matrices);
        for (auto& m : meshes) m = random_mesh(random, static_cast<unsigned>(pos.cols));
        test::storeroom store;
        mesh_range range;
        for (const auto& m : meshes) range.push_back(held(store, random, test::columns(m)));

        model::merger expected(pos, tolerance);
        const auto nodes = model::nodes_of(meshes);
        const int merges =
            mode == 0 ? expected.merge_sets(nodes, nodes) : expected.merge_in_elements(meshes, mode == 2);
        expected.renumber(meshes);
        const auto held_pos = held(store, random, pos);
        dense1D<unsigned> new_IDs = test::indices({7});
        ASSERT_EQ(form.merge_all({held_pos, range, new_IDs, tolerance, mode}), merges);
        merged += merges;
        for (std::size_t k = 0; k < range.size(); ++k) ASSERT_EQ(range[k], test::columns(meshes[k])) << k;
        if (form.lists_new_IDs) {
            ASSERT_EQ(as_vector(new_IDs), nodes.empty() ? std::vector<unsigned>() : expected.new_IDs);
        }
    }
    EXPECT_GT(merged, 1000);
}

INSTANTIATE_TEST_SUITE_P(Merge, MergeForm, testing::ValuesIn(matrix_forms),
                         [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(Dimensions, MergeModel, testing::Values(2u, 3u),
                         [](const auto& rows) { return std::to_string(rows.param) + "D"; });

}  // namespace
