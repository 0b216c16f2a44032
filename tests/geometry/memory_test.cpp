#include <gtest/gtest.h>

#include "support/failing_memory.h"
#include "support/matrices.h"

using namespace zeb::tessolv;
using test::columns;
using test::indices;
using test::points;

// Every request for memory that an operation makes is refused in turn.
namespace {

using vec3 = vector_fixed<double, 3>;

// The operation turns a flat mesh into `moved` with result `result`, or gives -199 and leaves it flat.
template <class Operation>
void expect_flat_mesh_or(const dense2D<double>& moved, int result, Operation operation)
{
    const auto flat = points({{1, 2}, {3, 4}});
    test::for_each_failure([&](test::attempt& attempt) {
        auto pos = flat;
        const int code = attempt([&] { return operation(pos); });
        EXPECT_EQ(code, attempt.failed() ? -199 : result);
        EXPECT_EQ(pos, attempt.failed() ? flat : moved);
    });
}

const vec3 up(0, 0, 1), origin;
const auto first_node = indices({0});
const auto elements = columns({{0, 0, 4000000000}});  // a large index: a hash set

TEST(Translate, WithoutMemoryLeavesAFlatMeshFlat)
{
    expect_flat_mesh_or(points({{1, 2, 1}, {3, 4, 1}}), 2, [](auto& pos) { return translate(pos, up); });
    expect_flat_mesh_or(points({{1, 2, 1}, {3, 4, 0}}), 1, [](auto& pos) { return translate(pos, up, first_node); });
    expect_flat_mesh_or(points({{1, 2, 1}, {3, 4, 0}}), 1, [](auto& pos) { return translate(pos, up, elements); });
    expect_flat_mesh_or(points({{1, 2, 0}, {3, 4, 0}}), 0, [](auto& pos) { return translate(pos, vec3()); });
}

TEST(Rotate, WithoutMemoryLeavesAFlatMeshFlat)
{
    const vec3 first(1, 2, 0);
    const auto same = points({{1, 2, 0}, {3, 4, 0}});
    expect_flat_mesh_or(same, 1, [&](auto& pos) { return rotate(pos, first, up, first_node); });
    expect_flat_mesh_or(same, 1, [&](auto& pos) { return rotate(pos, first, up, elements); });
    expect_flat_mesh_or(same, 0, [&](auto& pos) { return rotate(pos, first, vec3()); });
}

TEST(Zoom, WithoutMemoryLeavesAFlatMeshFlat)
{
    expect_flat_mesh_or(points({{2, 4, 0}, {6, 8, 0}}), 2, [](auto& pos) { return zoom(pos, origin, 2.0); });
    expect_flat_mesh_or(points({{2, 4, 0}, {3, 4, 0}}), 0,
                        [](auto& pos) { return zoom(pos, origin, 2.0, first_node); });
    expect_flat_mesh_or(points({{2, 4, 0}, {3, 4, 0}}), 0, [](auto& pos) { return zoom(pos, origin, 2.0, elements); });
}

TEST(Translate, OfAConnectivityWithoutMemoryMovesNoNodeOfASpatialMeshEither)
{
    const auto before = points({{1, 2, 0}, {3, 4, 0}});
    test::for_each_failure([&](test::attempt& attempt) {
        auto pos = before;
        const int code = attempt([&] { return translate(pos, up, elements); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 1);
        EXPECT_EQ(pos, attempt.failed() ? before : points({{1, 2, 1}, {3, 4, 0}}));
    });
}

TEST(Translate, OfSharedMemoryThatMustBeLeftLeavesBothAsTheyWere)
{
    test::for_each_failure([&](test::attempt& attempt) {
        auto pos = points({{1, 2, 3, 4}});
        dense2D<double> shared;
        shared.shallow_copy(pos);
        const int code = attempt([&] { return translate(pos, up); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 1);
        EXPECT_EQ(pos, attempt.failed() ? points({{1, 2, 3, 4}}) : points({{1, 2, 4}}));
        EXPECT_EQ(shared, points({{1, 2, 3, 4}}));
    });
}

TEST(Clip, WithoutMemoryLeavesTheOutputAsItWas)
{
    const auto pos = points({{0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {0, 0, -1}});
    const auto connect = columns({{0, 1, 2}, {0, 1, 3}, {2, 1, 0}});
    const auto held = columns({{7, 8, 9}});
    test::for_each_failure([&](test::attempt& attempt) {
        auto out = held;
        const int code = attempt([&] { return clip(pos, connect, origin, up, out); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(out, attempt.failed() ? held : columns({{7, 8, 9}, {0, 1, 2}, {2, 1, 0}}));
    });
}

TEST(Clip, WithoutMemoryLeavesTheConnectivityAsItWasThatIsTheOutput)
{
    const auto pos = points({{0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {0, 0, -1}});
    const auto before = columns({{0, 1, 2}, {0, 1, 3}});
    test::for_each_failure([&](test::attempt& attempt) {
        auto connect = before;
        const int code = attempt([&] { return clip(pos, connect, origin, up, connect); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(connect, attempt.failed() ? before : columns({{0, 1, 2}, {0, 1, 3}, {0, 1, 2}}));
    });
}

}  // namespace
