#include <gtest/gtest.h>

#include <limits>

#include "support/fault_pairs.h"
#include "support/matrices.h"

using namespace zeb::tessolv;
using namespace test;

// Every code of boxes and clipping, alone and against every other; nothing is changed on any of them.

namespace {

using vec3 = vector_fixed<double, 3>;

template <std::size_t D>
vector_fixed<double, D> all(double value)
{
    vector_fixed<double, D> v;
    for (double& x : v) x = value;
    return v;
}

template <std::size_t D>
struct box_call {
    dense2D<double> pos = filled(D, 3, 9.0);
    dense1D<unsigned> nodes = indices({2, N, 0});
    dense2D<unsigned> connect = columns({{2, 0, N}, {1, 2, 2}});
    vector_fixed<double, D> min = all<D>(0.5), max = all<D>(0.5);

    bool is_untouched() const { return min == all<D>(0.5) && max == all<D>(0.5); }
};

template <std::size_t D>
fault_table<box_call<D>> row_faults()
{
    using call = box_call<D>;
    return {{"a row too few", -1, [](call& c) { c.pos = filled(D - 1, 3, 9.0); }},
            {"a row too many", -1, [](call& c) { c.pos = filled(D + 1, 3, 9.0); }},
            {"no coordinates", -1, [](call& c) { c.pos = {}; }}};
}

template <std::size_t D>
void expect_box_codes()
{
    using call = box_call<D>;
    const fault_table<call> nothing_listed{{"nothing listed", 0, [](call& c) { c.nodes.resize(0); }}};
    const fault_table<call> listed{
        {"node 3 of 3", -2, [](call& c) { c.nodes[1] = 3; }},
        {"a huge index", -2, [](call& c) { c.nodes[2] = 0xFFFFFFFE; }},
        {"no nodes to name", -2, [](call& c) { c.pos.resize(c.pos.rows, 0); }},
    };
    const fault_table<call> nothing_named{
        {"no node", 0, [](call& c) { c.connect = filled(3, 2, N); }},
        {"no rows", 0, [](call& c) { c.connect = filled(0, 2, 0u); }},
        {"no columns", 0, [](call& c) { c.connect = filled(3, 0, 0u); }},
    };
    const fault_table<call> named{
        {"node 3 of 3", -2, [](call& c) { c.connect(0, 1) = 3; }},
        {"a huge index", -2, [](call& c) { c.connect(2, 1) = 0xFFFFFFFE; }},
        {"no nodes to name", -2, [](call& c) { c.pos.resize(c.pos.rows, 0); }},
    };
    expect_codes_in_order(row_faults<D>(), [](call& c) {
        const int code = inc_bounding_box(c.pos, c.min, c.max);
        EXPECT_TRUE(c.is_untouched());
        return code;
    });
    expect_codes_in_order(nothing_listed + row_faults<D>() + listed, [](call& c) {
        const int code = inc_bounding_box(c.pos, c.nodes, c.min, c.max);
        EXPECT_TRUE(c.is_untouched());
        return code;
    });
    expect_codes_in_order(nothing_named + row_faults<D>() + named, [](call& c) {
        const int code = inc_bounding_box(c.pos, c.connect, c.min, c.max);
        EXPECT_TRUE(c.is_untouched());
        return code;
    });
    call c;
    EXPECT_EQ(inc_bounding_box(c.pos, c.min, c.max), 0);
    EXPECT_EQ(inc_bounding_box(c.pos, c.nodes, c.min, c.max), 0);
    EXPECT_EQ(inc_bounding_box(c.pos, c.connect, c.min, c.max), 0);
    EXPECT_EQ(c.min, all<D>(0.5));
    EXPECT_EQ(c.max, all<D>(9.0));
}

TEST(IncBoundingBoxCodes, AreNothingToDoThenTheRowsThenTheIndicesInThePlane)
{
    expect_box_codes<2>();
}

TEST(IncBoundingBoxCodes, AreNothingToDoThenTheRowsThenTheIndicesInSpace)
{
    expect_box_codes<3>();
}

struct clip_call {
    dense2D<double> pos = points({{0, 0, 1}, {1, 0, 1}, {0, 1, 1}});
    dense2D<unsigned> connect = columns({{0, 1}, {1, 2}});
    vec3 normal{0, 0, 1};
    dense2D<unsigned> out = columns({{8, 9}});
};

TEST(ClipCodes, AreNothingToDoThenTheIndicesThenTheNormalThenTheOutput)
{
    const fault_table<clip_call> table{
        {"no elements", 0, [](clip_call& call) { call.connect = {}; }},
        {"no columns", 0, [](clip_call& call) { call.connect = filled(4, 0, 0u); }},
        {"no rows", 0, [](clip_call& call) { call.connect = filled(0, 4, 0u); }},
        {"node 3 of 3", -2, [](clip_call& call) { call.connect(1, 1) = 3; }},
        {"a huge index", -2, [](clip_call& call) { call.connect(0, 0) = 0xFFFFFFFE; }},
        {"no coordinates", -2, [](clip_call& call) { call.pos = {}; }},
        {"no normal", -4, [](clip_call& call) { call.normal = {}; }},
        {"normal of 1e-13", -4, [](clip_call& call) { call.normal = vec3(0, 0, 1e-13); }},
        {"normal of less than 1e-12", -4, [](clip_call& call) { call.normal = vec3(0, -9.99999e-13, 0); }},
        {"an output of one row", -5, [](clip_call& call) { call.out = columns({{3}}); }},
        {"an output of three rows", -5,
         [](clip_call& call) {
             call.out = columns({{3, 4, 5}});
         }},
    };
    expect_codes_in_order(table, [](clip_call& call) {
        const auto before = call.out;
        const int code = clip(call.pos, call.connect, vec3(), call.normal, call.out);
        EXPECT_EQ(call.out, before);
        return code;
    });
    clip_call good;
    EXPECT_EQ(clip(good.pos, good.connect, vec3(), good.normal, good.out), 0);
    EXPECT_EQ(good.out, columns({{8, 9}, {0, 1}, {1, 2}}));
}

}  // namespace
