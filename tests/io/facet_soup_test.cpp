#include "io/facet_soup.h"

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "io/stl_model.h"

using namespace zeb::tessolv;

namespace {

using facets = std::vector<test::facet_corners>;

double least_height_of(const facets& all)
{
    facet_soup soup;
    for (const auto& facet : all) {
        for (const auto& corner : facet) EXPECT_TRUE(soup.add_corner(corner.data()));
        EXPECT_TRUE(soup.add_facet_of_last_corners());
    }
    return soup.least_height();
}

// By the formula alone, facet by facet.
double model_of(const facets& all)
{
    test::stl_model model;
    for (const auto& facet : all) model.add_facet(facet);
    return model.least_height();
}

constexpr double none = std::numeric_limits<double>::max();

}  // namespace

TEST(FacetSoup, TakesTheLeastHeight)
{
    EXPECT_EQ(least_height_of({}), none);
    EXPECT_EQ(least_height_of({{{0, 0, 0}, {4, 0, 0}, {0, 3, 0}}}), 2.4);
    EXPECT_EQ(least_height_of({{{0, 0, 0}, {4, 0, 0}, {0, 3, 0}}, {{0, 0, 0}, {1, 0, 0}, {0, 1, 1}}}),
              model_of({{{0, 0, 0}, {1, 0, 0}, {0, 1, 1}}}));
    EXPECT_EQ(least_height_of({{{1, 2, 3}, {1, 2, 3}, {4, 5, 6}}, {{0, 0, 0}, {1, 1, 1}, {2, 2, 2}}}), none);
    EXPECT_EQ(least_height_of({{{NAN, 0, 0}, {4, 0, 0}, {0, 3, 0}}, {{HUGE_VAL, 0, 0}, {4, 0, 0}, {0, 3, 0}}}), none);
}

TEST(FacetSoup, FindsTheHeightThatTheFormulaGivesToTheBit)
{
    std::mt19937_64 random(1);
    std::normal_distribution<double> normal;
    std::uniform_int_distribution<int> die(0, 9);
    for (int k = 0; k < 20000; ++k) {
        facets all(2 + random() % 12);
        // Now and then where squares of squares vanish, or anywhere in the range.
        const int power = die(random) == 0   ? static_cast<int>(random() % 30) - 280
                          : die(random) == 0 ? static_cast<int>(random() % 2000) - 1000
                                             : die(random);
        const double scale = std::ldexp(1.0, power);
        const bool alike = die(random) < 3;
        for (auto& facet : all) {
            facet = {{0, 0, 0}, {1, 0, 0}, {0.25, 0.75, 0}};
            const double noise = alike ? 1e-4 : 1.0;
            const double offset = die(random) == 0 ? 1e6 : 0.0;
            for (auto& corner : facet)
                for (double& x : corner) x = (offset + x + noise * normal(random)) * scale;
            if (die(random) == 0)  // a needle
                for (std::size_t i = 0; i < 3; ++i)
                    facet[2][i] = facet[0][i] + (facet[1][i] - facet[0][i]) * (0.3 + 1e-13 * normal(random));
            if (die(random) == 0) facet[2] = facet[random() % 2];
            if (random() % 100 == 0) facet[random() % 3][random() % 3] = die(random) < 5 ? NAN : HUGE_VAL;
        }
        ASSERT_EQ(std::bit_cast<std::uint64_t>(least_height_of(all)), std::bit_cast<std::uint64_t>(model_of(all)));
    }
}

TEST(FacetSoup, ComparesTinyHeightsExactly)
{
    // Around 2^-268 the fourth powers are a few units of the smallest double.
    std::mt19937_64 random(2);
    std::normal_distribution<double> normal;
    std::uniform_real_distribution<double> factor(1.0, 1.4);
    for (int k = 0; k < 20000; ++k) {
        facets all;
        const double scale = std::ldexp(1.0, static_cast<int>(random() % 8) - 272);
        for (const double size : {factor(random) * scale, scale}) {
            test::facet_corners facet(3, {0, 0, 0});
            for (std::size_t corner = 1; corner < 3; ++corner)
                for (double& x : facet[corner]) x = size * normal(random);
            all.push_back(facet);
        }
        ASSERT_EQ(least_height_of(all), model_of(all));
    }
}
