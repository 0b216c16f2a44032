#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "support/matrices.h"

using namespace zeb::tessolv;
using test::columns;
using test::filled;
using test::indices;
using test::points;

namespace {

using vec3 = vector_fixed<double, 3>;
const double pi = std::acos(-1.0);
constexpr double inf = std::numeric_limits<double>::infinity();

void expect_near(const dense2D<double>& found, const dense2D<double>& expected, double tolerance)
{
    ASSERT_EQ(found.rows, expected.rows);
    ASSERT_EQ(found.cols, expected.cols);
    for (std::uint64_t j = 0; j < found.cols; ++j)
        for (std::uint64_t i = 0; i < found.rows; ++i)
            EXPECT_NEAR(found(i, j), expected(i, j), tolerance) << i << ", " << j;
}

// The nine forms as one: whatever holds for all of them is tested in all of them.
struct form {
    const char* name;
    std::function<int(dense2D<double>&)> nothing;  // with the argument that changes nothing
    std::function<int(dense2D<double>&)> act;      // moves node 1
};

const vec3 t(1, 2, 3), centre(1, 1, 1), quarter(0, 0, std::acos(-1.0) / 2), zero;
const dense1D<unsigned> list = indices({1});
const dense2D<unsigned> elements = columns({{1, test::N}});

const form forms[] = {
    {"translate_all", [](auto& p) { return translate(p, zero); }, [](auto& p) { return translate(p, t); }},
    {"translate_list", [](auto& p) { return translate(p, zero, list); }, [](auto& p) { return translate(p, t, list); }},
    {"translate_connectivity", [](auto& p) { return translate(p, zero, elements); },
     [](auto& p) { return translate(p, t, elements); }},
    {"rotate_all", [](auto& p) { return rotate(p, centre, zero); }, [](auto& p) { return rotate(p, centre, quarter); }},
    {"rotate_list", [](auto& p) { return rotate(p, centre, zero, list); },
     [](auto& p) { return rotate(p, centre, quarter, list); }},
    {"rotate_connectivity", [](auto& p) { return rotate(p, centre, zero, elements); },
     [](auto& p) { return rotate(p, centre, quarter, elements); }},
    {"zoom_all", [](auto& p) { return zoom(p, centre, 1.0); }, [](auto& p) { return zoom(p, centre, 2.0); }},
    {"zoom_list", [](auto& p) { return zoom(p, centre, 1.0, list); },
     [](auto& p) { return zoom(p, centre, 2.0, list); }},
    {"zoom_connectivity", [](auto& p) { return zoom(p, centre, 1.0, elements); },
     [](auto& p) { return zoom(p, centre, 2.0, elements); }},
};

class Transform : public testing::TestWithParam<form> {};

TEST_P(Transform, MakesThreeRowsAlsoWhereThereIsNothingToDo)
{
    auto pos = points({{1, 2}, {3, 4}, {5, 6}, {7, 8}});
    EXPECT_EQ(GetParam().nothing(pos), 0);
    EXPECT_EQ(pos, points({{1, 2, 0}, {3, 4, 0}, {5, 6, 0}, {7, 8, 0}}));

    pos = points({{1}, {3}});
    EXPECT_EQ(GetParam().nothing(pos), 0);
    EXPECT_EQ(pos, points({{1, 0, 0}, {3, 0, 0}}));
}

TEST_P(Transform, MakesThreeRowsOfAnEmptyMatrix)
{
    for (const std::uint64_t rows : {0, 2, 3, 5}) {
        for (const auto& call : {GetParam().nothing, GetParam().act}) {
            auto pos = filled(rows, 0, 1.0);
            EXPECT_EQ(call(pos), 0);
            EXPECT_EQ(pos.rows, 3u);
            EXPECT_EQ(pos.cols, 0u);
            EXPECT_EQ(pos.size, 0u);
        }
    }
}

TEST_P(Transform, ColumnsWithoutRowsBecomeNodesAtTheOrigin)
{
    auto pos = filled(0, 2, 1.0);
    EXPECT_EQ(GetParam().nothing(pos), 0);
    EXPECT_EQ(pos, points({{0, 0, 0}, {0, 0, 0}}));

    auto moved = filled(0, 2, 1.0), expected = pos;
    GetParam().act(moved);
    GetParam().act(expected);
    EXPECT_EQ(moved, expected);
}

TEST_P(Transform, DropsRowsBeyondTheThird)
{
    auto pos = points({{1, 2, 3, 4}, {5, 6, 7, 8}});
    auto expected = points({{1, 2, 3}, {5, 6, 7}});
    GetParam().act(pos);
    GetParam().act(expected);
    EXPECT_EQ(pos, expected);
    EXPECT_EQ(pos.ld, 4u);  // in place: nobody else looks into the buffer
}

TEST_P(Transform, WritesThroughViewsAndSharedBuffersOfThreeRows)
{
    auto expected = points({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
    auto whole = filled(6, 5, -9.0);
    auto view = whole.sub_matrix(2, 1, 3, 3);
    for (unsigned j = 0; j < 3; ++j)
        for (unsigned i = 0; i < 3; ++i) view(i, j) = expected(i, j);
    dense2D<double> shared;
    shared.shallow_copy(view);

    GetParam().act(expected);
    GetParam().act(view);
    EXPECT_EQ(view, expected);
    EXPECT_EQ(shared, expected);
    EXPECT_EQ(whole.sub_matrix(2, 1, 3, 3), expected);
    std::uint64_t untouched = 0;
    for (unsigned j = 0; j < 5; ++j)
        for (unsigned i = 0; i < 6; ++i) untouched += whole(i, j) == -9.0;
    EXPECT_EQ(untouched, 30u - 9u);
}

TEST_P(Transform, MovesToABufferOfItsOwnWhereTheRowsChangeAndOthersShareIt)
{
    for (const std::uint64_t rows : {2, 4}) {
        auto pos = filled(rows, 3, 1.5);
        dense2D<double> shared;
        shared.shallow_copy(pos);
        auto expected = filled(3, 3, 1.5);
        if (rows == 2) expected = points({{1.5, 1.5, 0}, {1.5, 1.5, 0}, {1.5, 1.5, 0}});
        GetParam().act(pos);
        GetParam().act(expected);
        EXPECT_EQ(pos, expected);
        EXPECT_EQ(shared, filled(rows, 3, 1.5));
        EXPECT_NE(shared.buffer, pos.buffer);
        EXPECT_EQ(pos.buffer->ref_count, 1);
    }
}

TEST_P(Transform, TakesMemoryOfTheHost)
{
    double memory[] = {1, 2, 3, 4, 5, 6};
    auto expected = points({{1, 2, 3}, {4, 5, 6}});
    GetParam().act(expected);
    {
        dense2D<double> pos;
        pos.buffer = new dense_buffer<double>{memory, 1, 6, 0, 1};
        pos.rows = pos.ld = 3;
        pos.cols = 2;
        pos.size = 6;
        GetParam().act(pos);
        EXPECT_EQ(pos.buffer->data, memory);
    }
    for (unsigned i = 0; i < 6; ++i) EXPECT_EQ(memory[i], expected(i % 3, i / 3));
}

TEST_P(Transform, MorePlacesThanMemoryCanHoldAreRefused)
{
    dense2D<double> pos;
    ASSERT_TRUE(pos.resize(0, std::uint64_t{1} << 63));
    EXPECT_EQ(GetParam().act(pos), -199);
    EXPECT_EQ(pos.rows, 0u);
    EXPECT_EQ(pos.cols, std::uint64_t{1} << 63);
}

INSTANTIATE_TEST_SUITE_P(InEveryForm, Transform, testing::ValuesIn(forms),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Translate, MovesEveryNode)
{
    auto pos = points({{1, 2, 3}, {-1, 0, 5}});
    EXPECT_EQ(translate(pos, vec3(10, 20, 30)), 2);
    EXPECT_EQ(pos, points({{11, 22, 33}, {9, 20, 35}}));
}

TEST(Translate, LiftsAFlatMesh)
{
    auto pos = points({{1, 2}, {3, 4}});
    EXPECT_EQ(translate(pos, vec3(0, 0, 5)), 2);
    EXPECT_EQ(pos, points({{1, 2, 5}, {3, 4, 5}}));
}

TEST(Translate, MovesANodeTwiceThatIsListedTwiceAndSkipsIndicesBeyond)
{
    auto pos = points({{0, 0, 0}, {1, 1, 1}, {2, 2, 2}});
    EXPECT_EQ(translate(pos, vec3(1, 0, 0), indices({0, 0, 7})), 2);
    EXPECT_EQ(pos, points({{2, 0, 0}, {1, 1, 1}, {2, 2, 2}}));
    EXPECT_EQ(translate(pos, vec3(1, 0, 0), indices({3, 0xFFFFFFFE, test::N})), 0);
    EXPECT_EQ(pos, points({{2, 0, 0}, {1, 1, 1}, {2, 2, 2}}));
    EXPECT_EQ(translate(pos, vec3(1, 0, 0), indices({})), 0);
}

TEST(Translate, MovesEachNodeOfAConnectivityOnce)
{
    auto pos = points({{0, 0, 0}, {1, 1, 1}, {2, 2, 2}});
    EXPECT_EQ(translate(pos, vec3(0, 1, 0), columns({{2, 0, 2}, {0, 9, test::N}})), 2);
    EXPECT_EQ(pos, points({{0, 1, 0}, {1, 1, 1}, {2, 3, 2}}));
    EXPECT_EQ(translate(pos, vec3(0, 1, 0), dense2D<unsigned>()), 0);
    EXPECT_EQ(translate(pos, vec3(0, 1, 0), columns({{test::N}})), 0);
}

TEST(Translate, ByMinusZeroIsNothingToDo)
{
    auto pos = points({{1, 2}});
    EXPECT_EQ(translate(pos, vec3(-0.0, 0.0, -0.0)), 0);
    EXPECT_EQ(pos, points({{1, 2, 0}}));
}

TEST(Translate, ByOneComponentThatIsNotZeroIsSomethingToDo)
{
    for (unsigned k = 0; k < 3; ++k) {
        vec3 by;
        by[k] = 5e-324;
        auto pos = points({{0, 0, 0}});
        EXPECT_EQ(translate(pos, by), 1);
        EXPECT_EQ(pos(k, 0), 5e-324);
    }
}

TEST(Rotate, AQuarterAboutZTakesXToY)
{
    auto pos = points({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
    EXPECT_EQ(rotate(pos, vec3(), vec3(0, 0, pi / 2)), 3);
    expect_near(pos, points({{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}), 1e-15);
}

TEST(Rotate, AQuarterAboutEachAxisFollowsTheRightHand)
{
    auto about_x = points({{0, 1, 0}}), about_y = points({{0, 0, 1}});
    EXPECT_EQ(rotate(about_x, vec3(), vec3(pi / 2, 0, 0)), 1);
    EXPECT_EQ(rotate(about_y, vec3(), vec3(0, pi / 2, 0)), 1);
    expect_near(about_x, points({{0, 0, 1}}), 1e-15);
    expect_near(about_y, points({{1, 0, 0}}), 1e-15);
}

// Where a component of the axis is 0, the other two alone give an entry of the matrix that is nothing but b x y.
TEST(Rotate, ByAnAngleOfAFifthTakesTheSeriesAndByMoreTheClosedForm)
{
    const auto turned = [](double x, double y) {
        auto pos = points({{1, 0, 0}});
        EXPECT_EQ(rotate(pos, vec3(), vec3(x, y, 0)), 1);
        return pos(1, 0);
    };
    const double x = 0.12, y = 0.16, more = std::nextafter(y, 1.0) + 1e-16;
    const auto closed_form = [](double angle) { return (1.0 - std::cos(angle)) / (angle * angle); };
    ASSERT_EQ(std::sqrt(x * x + y * y), 0.2);
    const double s = 0.2 * 0.2;
    const double series = 1.0 / 2.0 - s / 24.0 + s * s / 720.0 - s * s * s / 40320.0 + s * s * s * s / 3628800.0;
    EXPECT_DOUBLE_EQ(turned(x, y), series * (x * y));
    EXPECT_NE(turned(x, y), closed_form(0.2) * (x * y));
    const double beyond = std::sqrt(x * x + more * more);
    ASSERT_GT(beyond, 0.2);
    EXPECT_EQ(turned(x, more), closed_form(beyond) * (x * more));
}

TEST(Rotate, TurnsAFlatMeshOutOfItsPlane)
{
    auto pos = points({{1, 0}, {1, 2}});
    EXPECT_EQ(rotate(pos, vec3(1, 0, 0), vec3(pi / 2, 0, 0)), 2);
    expect_near(pos, points({{1, 0, 0}, {1, 0, 2}}), 1e-15);
}

TEST(Rotate, LeavesTheCentreWhereItIs)
{
    auto pos = points({{1, 2, 3}});
    EXPECT_EQ(rotate(pos, vec3(1, 2, 3), vec3(0.3, -4, 1e9)), 1);
    EXPECT_EQ(pos, points({{1, 2, 3}}));
    EXPECT_EQ(rotate(pos, vec3(1, 2, 3), vec3(inf, 0, 0)), 1);
    EXPECT_EQ(pos, points({{1, 2, 3}}));
}

TEST(Rotate, CountsListedIndicesAndDistinctNodes)
{
    const auto start = points({{1, 0, 0}, {0, 1, 0}, {3, 3, 3}});
    auto pos = start;
    EXPECT_EQ(rotate(pos, vec3(), vec3(0, 0, pi / 2), indices({0, 0, 3, 1, test::N})), 3);
    expect_near(pos, points({{-1, 0, 0}, {-1, 0, 0}, {3, 3, 3}}), 1e-15);

    pos = start;
    EXPECT_EQ(rotate(pos, vec3(), vec3(0, 0, pi / 2), columns({{0, 0, 1}, {1, 8, test::N}})), 2);
    expect_near(pos, points({{0, 1, 0}, {-1, 0, 0}, {3, 3, 3}}), 1e-15);
}

TEST(Zoom, DoublesTheDistanceFromTheCentre)
{
    auto pos = points({{2, 1, 1}, {0, 3, 1}});
    EXPECT_EQ(zoom(pos, vec3(1, 1, 1), 2.0), 2);
    EXPECT_EQ(pos, points({{3, 1, 1}, {-1, 5, 1}}));
}

TEST(Zoom, ByOneTouchesNothing)
{
    auto pos = points({{2, 1, 1}, {inf, 0, 0}});
    EXPECT_EQ(zoom(pos, vec3(1, 1, 1), 1.0), 0);
    EXPECT_EQ(pos, points({{2, 1, 1}, {inf, 0, 0}}));
}

TEST(Zoom, OfAListGivesZeroAndSkipsIndicesBeyond)
{
    auto pos = points({{2, 1, 1}, {1, 2, 1}});
    EXPECT_EQ(zoom(pos, vec3(1, 1, 1), 2.0, indices({0, 0, 2, test::N, 0xFFFFFFFE})), 0);
    EXPECT_EQ(pos, points({{5, 1, 1}, {1, 2, 1}}));
}

TEST(Zoom, OfAConnectivityGivesZeroAndMovesEachNodeOnce)
{
    auto pos = points({{2, 1, 1}, {1, 2, 1}, {9, 9, 9}});
    EXPECT_EQ(zoom(pos, vec3(1, 1, 1), 2.0, columns({{0, 1}, {1, 0}, {7, test::N}})), 0);
    EXPECT_EQ(pos, points({{3, 1, 1}, {1, 3, 1}, {9, 9, 9}}));
}

}  // namespace
