#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <type_traits>

#include "support/matrices.h"

using test::indices;
using test::numbers;
using zeb::misc::histogram;

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

histogram histogram_of(const std::vector<double>& values, histogram h = histogram())
{
    h.process(numbers(values));
    return h;
}

TEST(Histogram, StartsWithTwentyEmptyBins)
{
    const histogram h;
    EXPECT_EQ(h.count(), 0u);
    EXPECT_EQ(h.bins(), test::list_of(std::vector<unsigned>(20, 0)));
    EXPECT_EQ(h.below(), 0u);
    EXPECT_EQ(h.above(), 0u);
    EXPECT_EQ(h.not_a_number(), 0u);
    EXPECT_TRUE(std::isnan(h.minimum()));
    EXPECT_TRUE(std::isnan(h.maximum()));
    EXPECT_TRUE(std::isnan(h.mean()));
    EXPECT_TRUE(std::isnan(h.standard_deviation()));
}

TEST(Histogram, TellsCountExtremesMeanAndDeviation)
{
    const histogram h = histogram_of({2, 4, 4, 4, 5, 5, 7, 9}, histogram(0, 10, 5));
    EXPECT_EQ(h.count(), 8u);
    EXPECT_EQ(h.minimum(), 2);
    EXPECT_EQ(h.maximum(), 9);
    EXPECT_EQ(h.mean(), 5);
    EXPECT_EQ(h.standard_deviation(), 2);
    EXPECT_EQ(h.bins(), indices({0, 1, 5, 1, 1}));
}

TEST(Histogram, HasNoDeviationForOneValue)
{
    const histogram h = histogram_of({-0.25});
    EXPECT_EQ(h.minimum(), -0.25);
    EXPECT_EQ(h.maximum(), -0.25);
    EXPECT_EQ(h.mean(), -0.25);
    EXPECT_EQ(h.standard_deviation(), 0);
}

TEST(Histogram, TakesValuesOneByOneOrTogether)
{
    const std::vector<double> values{0.1, -0.7, 0.3, 1, 1.5, nan, -2};
    histogram one_by_one;
    for (const double v : values) one_by_one.process(v);
    const histogram together = histogram_of(values);
    EXPECT_EQ(one_by_one.count(), together.count());
    EXPECT_EQ(one_by_one.mean(), together.mean());
    EXPECT_EQ(one_by_one.standard_deviation(), together.standard_deviation());
    EXPECT_EQ(one_by_one.bins(), together.bins());
    EXPECT_EQ(together.count(), 6u);
}

TEST(Histogram, AddsAVectorWithoutTheOtherCall)
{
    struct : histogram {
        using histogram::process;
        void process(double) override { ADD_FAILURE() << "one value at a time"; }
    } h;
    h.process(numbers({0, 1}));
    EXPECT_EQ(h.count(), 2u);
}

TEST(Histogram, ReadsThroughAView)
{
    histogram h(0, 4, 4);
    h.process(numbers({9, 0, 1, 1, 9}).sub_vector(1, 3));
    EXPECT_EQ(h.bins(), indices({1, 2, 0, 0}));
    h.process(zeb::dense1D<double>());
    EXPECT_EQ(h.count(), 3u);
}

TEST(Histogram, PutsALowerEdgeIntoItsBinAndTheUpperBoundIntoTheLast)
{
    EXPECT_EQ(histogram_of({0, 1, 2, 3, 4}, histogram(0, 4, 4)).bins(), indices({1, 1, 1, 2}));
    // The edges of the tenths are no binary fractions.
    histogram tenths;
    for (int k = 0; k <= 20; ++k) tenths.process(-1 + 2.0 * k / 20);
    for (unsigned k = 0; k < 20; ++k) EXPECT_EQ(tenths.bins()[k], k < 19 ? 1u : 2u) << k;
    for (int k = 1; k <= 20; ++k) tenths.process(std::nextafter(-1 + 2.0 * k / 20, -9.0));
    for (unsigned k = 0; k < 20; ++k) EXPECT_EQ(tenths.bins()[k], k < 19 ? 2u : 3u) << k;
}

TEST(Histogram, PutsEveryValueBetweenTheEdgesOfItsBin)
{
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        const double lower = static_cast<double>(random() % 2000) / 7 - 100;
        const double width = static_cast<double>(1 + random() % 2000) / 9;
        const double upper = lower + width;
        const unsigned bins = 1 + static_cast<unsigned>(random() % 50);
        const unsigned edge = static_cast<unsigned>(random() % (bins + 1));
        const double value = std::min(upper, lower + (upper - lower) * edge / bins);
        const histogram h = histogram_of({value}, histogram(lower, upper, bins));
        EXPECT_EQ(h.bins()[std::min(edge, bins - 1)], 1u) << lower << " " << upper << " " << bins << " " << edge;
    }
}

TEST(Histogram, CountsValuesOutsideItsRangeApart)
{
    const histogram h = histogram_of({-1.0000001, 1.0000001, -5, 1, -1, 7});
    EXPECT_EQ(h.below(), 2u);
    EXPECT_EQ(h.above(), 2u);
    EXPECT_EQ(h.count(), 6u);
    EXPECT_EQ(h.bins()[0], 1u);
    EXPECT_EQ(h.bins()[19], 1u);
    EXPECT_EQ(h.minimum(), -5);
    EXPECT_EQ(h.maximum(), 7);
}

TEST(Histogram, CountsANaNNowhereElse)
{
    const histogram h = histogram_of({nan, 0.5, nan});
    EXPECT_EQ(h.not_a_number(), 2u);
    EXPECT_EQ(h.count(), 1u);
    EXPECT_EQ(h.mean(), 0.5);
    EXPECT_EQ(h.minimum(), 0.5);
    EXPECT_EQ(histogram_of({nan}).count(), 0u);
    EXPECT_TRUE(std::isnan(histogram_of({nan}).minimum()));
}

TEST(Histogram, HasAnInfiniteMeanWithAnInfiniteValue)
{
    const histogram h = histogram_of({1, infinity, 2});
    EXPECT_EQ(h.mean(), infinity);
    EXPECT_EQ(h.maximum(), infinity);
    EXPECT_EQ(h.minimum(), 1);
    EXPECT_EQ(h.above(), 2u);
    EXPECT_TRUE(std::isnan(h.standard_deviation()));
    EXPECT_EQ(histogram_of({-infinity}).below(), 1u);
}

TEST(Histogram, KeepsTheDeviationOfValuesFarFromZero)
{
    const histogram h = histogram_of({1e9 + 4, 1e9 + 7, 1e9 + 13, 1e9 + 16});
    EXPECT_EQ(h.mean(), 1e9 + 10);
    EXPECT_NEAR(h.standard_deviation(), std::sqrt(22.5), 1e-12);
}

TEST(Histogram, CollectsWithoutBinsToo)
{
    const histogram h = histogram_of({0, 3}, histogram(-1, 1, 0));
    EXPECT_EQ(h.count(), 2u);
    EXPECT_EQ(h.above(), 1u);
    EXPECT_TRUE(h.bins().empty());
}

TEST(Histogram, HoldsARangeOfOneValueOrOfAllNumbers)
{
    constexpr double largest = std::numeric_limits<double>::max();
    const histogram point = histogram_of({2, 2, 1, 3}, histogram(2, 2, 1));
    EXPECT_EQ(point.bins(), indices({2}));
    const histogram line = histogram_of({-largest, 0, largest, infinity}, histogram(-largest, largest, 4));
    EXPECT_EQ(line.count(), 4u);
    EXPECT_EQ(line.above(), 1u);
    unsigned held = 0;
    for (const unsigned n : line.bins()) held += n;
    EXPECT_EQ(held, 3u);
}

TEST(Histogram, GivesItsBinsAway)
{
    histogram h = histogram_of({0});
    zeb::dense1D<unsigned> bins = h.bins();
    EXPECT_EQ(bins.buffer->ref_count, 1);
    bins[10] = 77;
    EXPECT_EQ(h.bins()[10], 1u);
}

TEST(Histogram, CopiesAreIndependent)
{
    histogram a = histogram_of({0});
    histogram b = a;
    b.process(0.0);
    EXPECT_EQ(a.bins()[10], 1u);
    EXPECT_EQ(b.bins()[10], 2u);
    a = b;
    b.process(1.0);
    EXPECT_EQ(a.count(), 2u);
    EXPECT_EQ(b.count(), 3u);
}

TEST(Histogram, IsABaseForOthers)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<histogram>);
    EXPECT_FALSE(std::is_final_v<histogram>);
    EXPECT_TRUE(std::is_copy_constructible_v<histogram> && std::is_copy_assignable_v<histogram>);
}

}  // namespace
