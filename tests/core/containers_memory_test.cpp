#include <gtest/gtest.h>

#include <new>

#include "support/failing_memory.h"
#include "support/matrices.h"

using namespace zeb::tessolv;
using test::columns;
using test::indices;

// Containers when requests for memory are refused: false or nothing done, and what was there stays.
namespace {

TEST(Dense1D, AFailedGrowthDropsThePushedValueAndKeepsTheSize)
{
    test::for_each_failure([](test::attempt& attempt) {
        auto v = indices({1, 2, 3, 4});
        v.buffer->capacity = 4;
        attempt([&] { v.push_back(5); });
        EXPECT_EQ(v, attempt.failed() ? indices({1, 2, 3, 4}) : indices({1, 2, 3, 4, 5}));
    });
}

TEST(Dense1D, AFirstPushWithoutMemoryLeavesNoBuffer)
{
    test::for_each_failure([](test::attempt& attempt) {
        dense1D<double> v;
        attempt([&] { v.push_back(5); });
        EXPECT_EQ(v.size, attempt.failed() ? 0u : 1u);
        EXPECT_EQ(v.buffer == nullptr, attempt.failed());
    });
}

TEST(Dense1D, ResizeAndReserveWithoutMemoryChangeNothing)
{
    for (const bool shared : {false, true}) {
        test::for_each_failure([&](test::attempt& attempt) {
            auto v = indices({1, 2});
            dense1D<unsigned> other;
            if (shared) other.shallow_copy(v);
            const auto* block = v.data();
            const bool done = attempt([&] { return v.resize(5000, 7u); });
            EXPECT_NE(done, attempt.failed());
            if (attempt.failed()) {
                EXPECT_EQ(v, indices({1, 2}));
                EXPECT_EQ(v.data(), block);
            }
        });
        test::for_each_failure([&](test::attempt& attempt) {
            auto v = indices({1, 2});
            dense1D<unsigned> other;
            if (shared) other.shallow_copy(v);
            const bool done = attempt([&] { return v.reserve(5000); });
            EXPECT_NE(done, attempt.failed());
            EXPECT_EQ(v, indices({1, 2}));
        });
    }
}

TEST(Dense1D, CopiesWithoutMemoryLeaveTheTargetOrAreEmpty)
{
    const auto source = indices({1, 2, 3});
    test::for_each_failure([&](test::attempt& attempt) {
        auto target = indices({9});
        const bool done = attempt([&] { return target.copy(source); });
        EXPECT_NE(done, attempt.failed());
        EXPECT_EQ(target, attempt.failed() ? indices({9}) : source);
    });
    test::for_each_failure([&](test::attempt& attempt) {
        auto target = indices({9});
        attempt([&] { target = source; });
        EXPECT_EQ(target, attempt.failed() ? indices({9}) : source);
    });
    test::for_each_failure([&](test::attempt& attempt) {
        const auto made = attempt([&] { return dense1D<unsigned>(source); });
        EXPECT_EQ(made, attempt.failed() ? indices({}) : source);
    });
    test::for_each_failure([&](test::attempt& attempt) {
        const auto made = attempt([&] { return dense1D<unsigned>(3, 8u); });
        EXPECT_EQ(made, attempt.failed() ? indices({}) : indices({8, 8, 8}));
    });
}

TEST(Dense2D, ResizeReserveAndPushBackWithoutMemoryChangeNothing)
{
    for (const bool shared : {false, true}) {
        const auto original = columns({{1, 2}, {3, 4}});
        dense2D<unsigned> other;
        const auto made = [&] {
            dense2D<unsigned> m(original);
            other.shallow_copy(shared ? m : dense2D<unsigned>());
            return m;
        };
        test::for_each_failure([&](test::attempt& attempt) {
            auto m = made();
            const bool done = attempt([&] { return m.resize(3, 5000, 7u); });
            EXPECT_NE(done, attempt.failed());
            if (attempt.failed()) {
                EXPECT_EQ(m, original);
            }
            other.shallow_copy(dense2D<unsigned>());
        });
        test::for_each_failure([&](test::attempt& attempt) {
            auto m = made();
            const bool done = attempt([&] { return m.reserve(2, 5000); });
            EXPECT_NE(done, attempt.failed());
            EXPECT_EQ(m, original);
            other.shallow_copy(dense2D<unsigned>());
        });
        test::for_each_failure([&](test::attempt& attempt) {
            auto m = made();
            const auto added = indices({5, 6});
            m.buffer->capacity = 4;
            const bool done = attempt([&] { return m.push_back(added); });
            EXPECT_NE(done, attempt.failed());
            EXPECT_EQ(m, attempt.failed() ? original : columns({{1, 2}, {3, 4}, {5, 6}}));
            other.shallow_copy(dense2D<unsigned>());
        });
    }
}

TEST(Dense2D, CopiesWithoutMemoryLeaveTheTargetOrAreEmpty)
{
    const auto source = columns({{1, 2}, {3, 4}});
    test::for_each_failure([&](test::attempt& attempt) {
        auto target = columns({{9}});
        const bool done = attempt([&] { return target.copy(source); });
        EXPECT_NE(done, attempt.failed());
        EXPECT_EQ(target, attempt.failed() ? columns({{9}}) : source);
    });
    test::for_each_failure([&](test::attempt& attempt) {
        auto target = columns({{9}});
        attempt([&] { target = source; });
        EXPECT_EQ(target, attempt.failed() ? columns({{9}}) : source);
    });
    test::for_each_failure([&](test::attempt& attempt) {
        auto target = columns({{9}});
        attempt([&] { target = source.sub_matrix(0, 0, 2, 1); });
        EXPECT_EQ(target, attempt.failed() ? columns({{9}}) : columns({{1, 2}}));
    });
    test::for_each_failure([&](test::attempt& attempt) {
        const auto made = attempt([&] { return dense2D<unsigned>(2, 3); });
        EXPECT_EQ(made.rows, attempt.failed() ? 0u : 2u);
        EXPECT_EQ(made.cols, attempt.failed() ? 0u : 3u);
        EXPECT_EQ(made.buffer == nullptr, attempt.failed());
    });
    test::for_each_failure([&](test::attempt& attempt) {
        const auto made = attempt([&] { return dense2D<unsigned>(source); });
        EXPECT_EQ(made, attempt.failed() ? dense2D<unsigned>() : source);
    });
    test::for_each_failure([&](test::attempt& attempt) {
        const auto made = attempt([&] { return dense2D<unsigned>(2, 2, 8u); });
        EXPECT_EQ(made, attempt.failed() ? dense2D<unsigned>() : columns({{8, 8}, {8, 8}}));
    });
}

TEST(Histogram, WithoutMemoryCollectsEverythingButBins)
{
    test::for_each_failure([&](test::attempt& attempt) {
        // In memory of its own: for_each_failure counts what the histogram itself requests.
        alignas(zeb::misc::histogram) unsigned char place[sizeof(zeb::misc::histogram)];
        auto* h = attempt([&] { return new (place) zeb::misc::histogram(0, 1, 4); });
        h->process(0.25);
        EXPECT_EQ(h->count(), 1u);
        EXPECT_EQ(h->bins().size, attempt.failed() ? 0u : 4u);
        h->~histogram();
    });
}

}  // namespace
