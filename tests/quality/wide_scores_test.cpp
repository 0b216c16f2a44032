#include "quality/wide_scores.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "quality/score.h"
#include "quality/shape_measures.h"
#include "support/random_meshes.h"

using namespace zeb::tessolv;
using namespace zeb::tessolv::quality;
using namespace test;

namespace {

// Mostly coordinates of a coarse grid, so that flat elements and coincident corners are common; a few far out of range.
dense2D<double> random_nodes(dice& random, std::uint64_t rows, unsigned nodes)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double odd[] = {
        std::numeric_limits<double>::quiet_NaN(), infinity, -infinity, 1e300, -1e300, 1e-300, 5e-324, -0.0};
    dense2D<double> pos(rows, nodes);
    for (unsigned j = 0; j < nodes; ++j)
        for (std::uint64_t i = 0; i < rows; ++i)
            pos(i, j) = random.below(100) == 0 ? random.one_of(odd)
                        : random.below(3) == 0 ? random.below(3)
                                               : 1e-3 * random.below(3000);
    return pos;
}

bool same_bits(double a, double b)
{
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (std::isnan(a) && std::isnan(b));
}

template <std::size_t N>
void expect_the_same(element_type type, shape_measure<3, N> measure, wide_score* four_at_a_time)
{
    if (!has_wide_lanes()) GTEST_SKIP() << "a processor without AVX2";
    dice random(N);
    for (int trial = 0; trial < 2000; ++trial) {
        const unsigned nodes = static_cast<unsigned>(N) + random.below(20), elements = 1 + random.below(20);
        const auto pos = random_nodes(random, 2 + random.below(3), nodes);
        const auto connect = random_elements(random, type, N, elements, nodes);
        std::vector<double> narrow(elements + 1, 7.0), wide = narrow;
        score(node_positions(pos), connect, 0, elements, narrow.data(), measure);
        four_at_a_time(pos, connect, wide.data());
        for (std::size_t e = 0; e <= elements; ++e)
            ASSERT_TRUE(same_bits(wide[e], narrow[e]))
                << "trial " << trial << ", element " << e << ": " << wide[e] << " instead of " << narrow[e];
    }
}

}  // namespace

TEST(WideScores, OfTetrahedraAreThoseOfTwoAtATimeToTheBit)
{
    expect_the_same(EL_TETRA4, tetrahedron, score_tetrahedra_four_at_a_time);
}

TEST(WideScores, OfWedgesAreThoseOfTwoAtATimeToTheBit)
{
    expect_the_same(EL_WEDGE6, wedge, score_wedges_four_at_a_time);
}

TEST(WideScores, OfHexahedraAreThoseOfTwoAtATimeToTheBit)
{
    expect_the_same(EL_HEXA8, hexahedron, score_hexahedra_four_at_a_time);
}
