#include <gtest/gtest.h>

#include "quality/recording_histogram.h"
#include "support/fault_pairs.h"
#include "support/matrices.h"

using namespace zeb::tessolv;
using namespace test;

// Every code of every function, alone and against every other, and what is left behind.

namespace {

// Arguments of all forms; those of one matrix take the first.
struct mesh_call {
    dense2D<double> pos =
        points({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}});
    std::vector<dense2D<unsigned>> connects{columns({{0, 1, 2, 3, 4, 5, 6, 7}}), columns({{0, 1, 2}, {4, 5, 6}})};
    dense1D<int> types = test::types({EL_HEXA8, EL_TRIA3});
    dense1D<float> sizes{8, 1.0f};
    bool reversed = false;

    bool is_reversed() const { return reversed && !connects.empty(); }
    const dense2D<unsigned>* first() const { return connects.data() + (is_reversed() ? 1 : 0); }
    const dense2D<unsigned>* last() const { return connects.data() + (is_reversed() ? 0 : connects.size()); }
    element_type type() const { return static_cast<element_type>(types[0]); }
};

using faults = fault_table<mesh_call>;

faults type_faults(std::uint64_t k, int code, const std::vector<int>& refused)
{
    faults table;
    for (const int type : refused)
        table.push_back({"a type that is refused", code, [=](mesh_call& call) { call.types[k] = type; }});
    return table;
}

faults matrix_faults(std::uint64_t k)
{
    return {
        {"node 8 of 8", -2, [=](mesh_call& call) { call.connects[k](2, 0) = 8; }},
        {"a huge index", -2, [=](mesh_call& call) { call.connects[k](0, 0) = 0xFFFFFFFE; }},
        {"no node", -2, [=](mesh_call& call) { call.connects[k](1, 0) = N; }},
        {"two rows", -2,
         [=](mesh_call& call) {
             call.connects[k] = columns({{0, 1}});
         }},
        {"ten rows", -2, [=](mesh_call& call) { call.connects[k] = filled(10, 2, 0u); }},
    };
}

const std::vector<int> no_measure{-1, EL_NONE, EL_NODE, EL_EDGE_MIX, EL_SOLID_MIX, EL_HEXA20, 21, 0x7FFFFFFF};
const faults reversed_range{{"last before first", -3, [](mesh_call& call) { call.reversed = true; }}};
const faults types_of_another_length{
    {"a type too few", -4, [](mesh_call& call) { call.types.resize(1); }},
    {"a type too many", -4, [](mesh_call& call) { call.types.resize(3, EL_TRIA3); }},
    {"a matrix too many", -4,
     [](mesh_call& call) {
         call.connects.push_back(columns({{0, 1, 2}}));
     }},
};
const faults shape_faults_of_one = type_faults(0, -3, no_measure) + matrix_faults(0);
const faults shape_faults_of_a_range =
    reversed_range + types_of_another_length + shape_faults_of_one + type_faults(1, -3, no_measure) + matrix_faults(1);

template <class Form>
void expect_shape_codes(const faults& table, Form form)
{
    const auto into_a_vector = [&](const mesh_call& call) {
        auto qualities = numbers({7, 7});
        const int code = form(call, qualities);
        EXPECT_EQ(qualities.size, 0u);
        return code;
    };
    const auto into_a_histogram = [&](const mesh_call& call) {
        recording_histogram h;
        const int code = form(call, h);
        EXPECT_EQ(h.vectors + h.single_values, 0);
        return code;
    };
    expect_codes_in_order<mesh_call>(table, into_a_vector);
    expect_codes_in_order<mesh_call>(table, into_a_histogram);
    dense1D<double> qualities;
    EXPECT_EQ(form(mesh_call(), qualities), 0);
}

TEST(ShapeQualitiesCodes, OfOneMatrixAreTheTypeAndThenTheIndices)
{
    expect_shape_codes(shape_faults_of_one, [](const mesh_call& call, auto& output) {
        return shape_qualities(call.pos, call.connects[0], call.type(), output);
    });
}

TEST(ShapeQualitiesCodes, OfARangeAreItsOrderItsTypesAndThenMatrixAfterMatrix)
{
    expect_shape_codes(shape_faults_of_a_range, [](const mesh_call& call, auto& output) {
        return shape_qualities(call.pos, call.first(), call.last(), call.types, output);
    });
}

TEST(EdgeLengthsCodes, AreNothingToDoAndThenTheIndices)
{
    struct edges_call {
        dense2D<double> pos = points({{0, 0}, {2, 0}, {0, 7}});
        dense2D<unsigned> edges = columns({{0, 1}, {1, 2}});
    };
    const fault_table<edges_call> table{
        {"no columns", 0, [](edges_call& call) { call.edges = filled(9, 0, 0u); }},
        {"no rows", 0, [](edges_call& call) { call.edges = filled(0, 9, 0u); }},
        {"node 3 of 3", -2, [](edges_call& call) { call.edges(1, 1) = 3; }},
        {"no node", -2, [](edges_call& call) { call.edges(0, 0) = N; }},
        {"triangles", -2,
         [](edges_call& call) {
             call.edges = columns({{0, 1, 2}});
         }},
        {"no coordinates", -2, [](edges_call& call) { call.pos = {}; }},
    };
    expect_codes_in_order(table, [](const edges_call& call) {
        auto lengths = points({{1, 2}});
        const int code = edge_lengths(call.pos, call.edges, lengths);
        EXPECT_EQ(lengths.size + lengths.rows + lengths.cols, 0u);
        return code;
    });
}

// What ends the feeding comes after all checks and is no error.
const faults silent_stops{
    {"sizes of other nodes", 0, [](mesh_call& call) { call.sizes.resize(7); }},
    {"no sizes", 0, [](mesh_call& call) { call.sizes.resize(0); }},
    {"a size of 0", 0, [](mesh_call& call) { call.sizes[0] = call.sizes[1] = 0; }},
};
const faults nothing_to_measure{
    {"no columns", 0, [](mesh_call& call) { call.connects[0] = filled(3, 0, 0u); }},
    {"no rows", 0, [](mesh_call& call) { call.connects[0] = filled(0, 3, 0u); }},
};
const std::vector<int> no_type{-1, EL_NONE, EL_EDGE_MIX, EL_TETRA4, 21};

template <class Form>
void expect_edge_codes(const faults& table, Form form)
{
    expect_codes_in_order<mesh_call>(table, [&](const mesh_call& call) {
        recording_histogram h;
        const int code = form(call, h);
        EXPECT_EQ(h.vectors + h.single_values, 0);
        return code;
    });
    recording_histogram h;
    EXPECT_EQ(form(mesh_call(), h), 0);
    EXPECT_GE(h.single_values, 12);
}

TEST(EdgeQualitiesCodes, OfOneMatrixAreNothingToDoAndThenItsIndicesUnderItsType)
{
    expect_edge_codes(nothing_to_measure + type_faults(0, -2, no_type) + matrix_faults(0) + silent_stops,
                      [](const mesh_call& call, auto& h) {
                          return edge_qualities(call.pos, call.connects[0], call.type(), call.sizes, h);
                      });
}

TEST(EdgeQualitiesCodes, OfARangeAreNothingToDoItsLengthAndThenItsMatrices)
{
    const faults empty_range{{"an empty range", 0, [](mesh_call& call) { call.connects.clear(); }}};
    const faults last_before_first{{"last before first", -4, [](mesh_call& call) { call.reversed = true; }}};
    expect_edge_codes(empty_range + last_before_first + types_of_another_length + type_faults(0, -2, no_type) +
                          matrix_faults(0) + type_faults(1, -2, no_type) + matrix_faults(1) + silent_stops,
                      [](const mesh_call& call, auto& h) {
                          return edge_qualities(call.pos, call.first(), call.last(), call.types, call.sizes, h);
                      });
}

}  // namespace
