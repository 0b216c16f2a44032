#include <gtest/gtest.h>

#include "support/failing_memory.h"
#include "support/matrices.h"

using namespace zeb::tessolv;
using test::filled;
using test::indices;

// Every request for memory that an operation makes is refused in turn.
namespace {

dense1D<float> sizes(const std::vector<float>& values)
{
    return test::list_of(values);
}
dense2D<float> tensors(const std::vector<std::vector<float>>& columns)
{
    return test::matrix_of(columns);
}

TEST(MetricsAniso3dToAniso2d, WithoutMemoryLeavesTheResultAsItWas)
{
    const auto M3 = filled(6, 2, 1.f);
    const auto bases = test::points({{1, 0, 0, 0, 1, 0}, {1, 0, 0, 0, 1, 0}});
    test::for_each_failure([&](test::attempt& attempt) {
        auto M2 = tensors({{7, 8}});
        const int code = attempt([&] { return metrics_aniso3d_to_aniso2d(M3, bases, M2); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(M2, attempt.failed() ? tensors({{7, 8}}) : filled(3, 2, 1.f));
    });
}

TEST(MetricsIsoToAniso2d, WithoutMemoryLeavesTheResultAsItWas)
{
    const auto bases = test::points({{1, 0, 0, 0, 1, 0}});
    const auto two = sizes({2});
    test::for_each_failure([&](test::attempt& attempt) {
        auto M2 = tensors({{7, 8}});
        const int code = attempt([&] { return metrics_iso_to_aniso2d(two, bases, M2); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(M2, attempt.failed() ? tensors({{7, 8}}) : tensors({{0.25f, 0, 0.25f}}));
    });
}

TEST(OverwriteInvalidMetrics, NeedsMemoryOnlyWhereTheBufferIsShared)
{
    test::for_each_failure([&](test::attempt& attempt) {
        auto whole = sizes({5, 0, 0});
        auto later = whole.sub_vector(1, 2);
        const auto defaults = whole.sub_vector(0, 2);
        const int code = attempt([&] { return overwrite_invalid_metrics(later, defaults); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(whole, attempt.failed() ? sizes({5, 0, 0}) : sizes({5, 5, 0}));
    });
    test::for_each_failure([&](test::attempt& attempt) {
        auto whole = tensors({{1, 0, 1}, {0, 0, 0}});
        auto last = whole.sub_matrix(0, 1, 3, 1);
        const auto defaults = whole.sub_matrix(0, 0, 3, 1);
        const int code = attempt([&] { return overwrite_invalid_metrics(last, defaults); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(whole, attempt.failed() ? tensors({{1, 0, 1}, {0, 0, 0}}) : tensors({{1, 0, 1}, {1, 0, 1}}));
    });
}

TEST(AppendField, WithoutMemoryLeavesTheFieldAsItWas)
{
    const auto held = tensors({{1, 0, 1}});
    const auto more = tensors({{2, 0, 2}, {3, 0, 3}});
    const auto expect = [&](test::attempt& attempt, int code, const dense2D<float>& A, const dense2D<float>& joined) {
        if (code == 0) {  // twice the room was refused and the exact room was had
            EXPECT_EQ(A, joined);
        } else {
            EXPECT_TRUE(attempt.failed());
            EXPECT_EQ(code, -199);
            EXPECT_EQ(A, held);
        }
    };
    test::for_each_failure([&](test::attempt& attempt) {
        auto A = held;
        const int code = attempt([&] { return append(A, more); });
        expect(attempt, code, A, tensors({{1, 0, 1}, {2, 0, 2}, {3, 0, 3}}));
    });
    test::for_each_failure([&](test::attempt& attempt) {
        auto A = held;
        const auto last = indices({1});
        const int code = attempt([&] { return append(A, more, last); });
        expect(attempt, code, A, tensors({{1, 0, 1}, {3, 0, 3}}));
    });
}

TEST(AppendSizes, WithoutMemoryLeavesTheFieldAsItWas)
{
    const auto more = sizes({2, 3, 4, 5, 6, 7});
    test::for_each_failure([&](test::attempt& attempt) {
        auto A = sizes({1});
        const int code = attempt([&] { return append(A, more); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(A, attempt.failed() ? sizes({1}) : sizes({1, 2, 3, 4, 5, 6, 7}));
    });
    const auto entries = indices({0, 0, 0, 1, 5});
    test::for_each_failure([&](test::attempt& attempt) {
        auto A = sizes({1});
        const int code = attempt([&] { return append(A, more, entries); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(A, attempt.failed() ? sizes({1}) : sizes({1, 2, 2, 2, 3, 7}));
    });
}

TEST(AppendSizes, MoreThanMemoryCanCountIsRefused)
{
    auto A = sizes({1});
    auto endless = sizes({2});
    endless.size = ~std::uint64_t{0};  // never read: the sum is refused first
    const dense1D<float> range[] = {A.sub_vector(0, 1), endless.sub_vector(0, endless.size)};
    EXPECT_EQ(append(A, range, range + 2), -199);
    EXPECT_EQ(A, sizes({1}));
    endless.size = 1;
}

}  // namespace
