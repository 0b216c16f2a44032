#include "spatial/mersenne_twister.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <vector>

#include "spatial/tree_model.h"

namespace {

using zeb::tessolv::mersenne_twister;

TEST(MersenneTwister, DrawsTheStreamOfTheMultiplicativeSeeding)
{
    mersenne_twister random(1);
    EXPECT_EQ(random.draw(), 3796174982u);
    EXPECT_EQ(random.draw(), 4182529786u);
    EXPECT_EQ(random.draw(), 2180050607u);
    EXPECT_NE(std::mt19937(1)(), 3796174982u);
}

TEST(MersenneTwister, MakesEvenSeedsOdd)
{
    EXPECT_EQ(mersenne_twister(6).draw(), mersenne_twister(7).draw());
    EXPECT_EQ(mersenne_twister(0).draw(), 3796174982u);
    EXPECT_NE(mersenne_twister(3).draw(), 3796174982u);
}

TEST(MersenneTwister, AgreesWithARecurrenceWrittenOutOverManyBlocks)
{
    mersenne_twister random(1);
    model::generator expected(1);
    for (int k = 0; k < 5000; ++k) ASSERT_EQ(random.draw(), expected.draw()) << k;
}

TEST(Shuffle, RunsForwardByRemainders)
{
    std::vector<unsigned> values(10);
    std::iota(values.begin(), values.end(), 0u);
    zeb::tessolv::shuffle(values.data(), values.size());
    EXPECT_EQ(values, (std::vector<unsigned>{5, 8, 4, 3, 7, 1, 0, 6, 2, 9}));
}

TEST(Shuffle, GivesTheSameOrderInEveryCall)
{
    std::vector<unsigned> once(100, 0);
    std::iota(once.begin(), once.end(), 7u);
    std::vector<unsigned> again = once;
    zeb::tessolv::shuffle(once.data(), once.size());
    zeb::tessolv::shuffle(again.data(), again.size());
    EXPECT_EQ(once, again);
}

TEST(Shuffle, LeavesNothingAndOneValueAlone)
{
    unsigned value = 3;
    zeb::tessolv::shuffle(nullptr, 0);
    zeb::tessolv::shuffle(&value, 1);
    EXPECT_EQ(value, 3u);
}

}  // namespace
