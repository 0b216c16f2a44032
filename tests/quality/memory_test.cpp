#include <gtest/gtest.h>

#include "quality/recording_histogram.h"
#include "support/failing_memory.h"
#include "support/matrices.h"

using namespace zeb::tessolv;
using test::columns;
using test::numbers;
using test::points;

// Every request for memory that an operation makes is refused in turn.
namespace {

const dense2D<double> unit_square = points({{0, 0}, {1, 0}, {1, 1}, {0, 1}});

TEST(ShapeQualities, WithoutMemoryReportItAndAreEmpty)
{
    const auto square = columns({{0, 1, 2, 3}});
    test::for_each_failure([&](test::attempt& attempt) {
        auto qualities = numbers({5, 5});
        const int code = attempt([&] { return shape_qualities(unit_square, square, EL_QUAD4, qualities); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(qualities, attempt.failed() ? dense1D<double>() : numbers({1}));
    });
}

TEST(ShapeQualities, OfARangeWithoutMemoryReportItAndAreEmpty)
{
    const dense2D<unsigned> connects[] = {columns({{0, 1, 2, 3}, {3, 2, 1, 0}}), columns({{0, 1}})};
    const auto types = test::types({EL_QUAD4, EL_EDGE2});
    test::for_each_failure([&](test::attempt& attempt) {
        auto qualities = numbers({5, 5});
        const int code =
            attempt([&] { return shape_qualities(unit_square, connects, connects + 2, types, qualities); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(qualities, attempt.failed() ? dense1D<double>() : numbers({1, -1, 1}));
    });
}

TEST(ShapeQualities, WithoutMemoryLeaveTheHistogramAlone)
{
    const auto squares = columns({{0, 1, 2, 3}, {3, 2, 1, 0}});
    const auto types = test::types({EL_QUAD4});
    for (const bool one_matrix : {true, false}) {
        test::for_each_failure([&](test::attempt& attempt) {
            test::recording_histogram h(2);
            const int code = attempt([&] {
                return one_matrix ? shape_qualities(unit_square, squares, EL_QUAD4, h)
                                  : shape_qualities(unit_square, &squares, &squares + 1, types, h);
            });
            EXPECT_EQ(code, attempt.failed() ? -199 : 0);
            EXPECT_EQ(h.vectors, attempt.failed() ? 0 : 1);
            EXPECT_EQ(h.values, attempt.failed() ? std::vector<double>() : (std::vector<double>{1, -1}));
        });
    }
}

TEST(EdgeLengths, WithoutMemoryReportItAndAreEmpty)
{
    const auto edges = columns({{0, 1}});
    test::for_each_failure([&](test::attempt& attempt) {
        auto lengths = points({{5}});
        const int code = attempt([&] { return edge_lengths(unit_square, edges, lengths); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(lengths.rows, attempt.failed() ? 0u : 3u);
        EXPECT_EQ(lengths.cols, attempt.failed() ? 0u : 4u);
        EXPECT_EQ(lengths.size, attempt.failed() ? 0u : 12u);
    });
}

TEST(EdgeQualities, WithoutMemoryReportItAndMeasureNothing)
{
    const auto square = columns({{0, 1, 2, 3}});
    const auto types = test::types({EL_QUAD4});
    const dense1D<float> sizes(4, 1.0f);
    for (const bool one_matrix : {true, false}) {
        test::for_each_failure([&](test::attempt& attempt) {
            test::recording_histogram h(4);
            const int code = attempt([&] {
                return one_matrix ? edge_qualities(unit_square, square, EL_QUAD4, sizes, h)
                                  : edge_qualities(unit_square, &square, &square + 1, types, sizes, h);
            });
            EXPECT_EQ(code, attempt.failed() ? -199 : 0);
            EXPECT_EQ(h.values.size(), attempt.failed() ? 0u : 4u);
        });
    }
}

}  // namespace
