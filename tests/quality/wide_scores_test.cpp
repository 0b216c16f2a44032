#include "quality/wide_scores.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "core/processor.h"
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

struct measured_kind {
    const char* name;
    element_type type;
    std::size_t corners;
    std::uint64_t rows;  // of the coordinates; 0: any
    score_function* (*choose)(const score_functions&);
};

constexpr measured_kind kinds[] = {
    {"tetrahedra", EL_TETRA4, 4, 0, [](const score_functions& all) { return all.tetrahedra; }},
    {"pyramids", EL_PYRAMID5, 5, 0, [](const score_functions& all) { return all.pyramids; }},
    {"wedges", EL_WEDGE6, 6, 0, [](const score_functions& all) { return all.wedges; }},
    {"hexahedra", EL_HEXA8, 8, 0, [](const score_functions& all) { return all.hexahedra; }},
    {"triangles in the plane", EL_TRIA3, 3, 2, [](const score_functions& all) { return all.triangles[0]; }},
    {"triangles in space", EL_TRIA3, 3, 3, [](const score_functions& all) { return all.triangles[1]; }},
    {"quadrangles in the plane", EL_QUAD4, 4, 2, [](const score_functions& all) { return all.quadrangles[0]; }},
    {"quadrangles in space", EL_QUAD4, 4, 3, [](const score_functions& all) { return all.quadrangles[1]; }},
};

void expect_the_same(const measured_kind& kind, const score_functions& wider)
{
    dice random(static_cast<unsigned>(kind.corners));
    for (int trial = 0; trial < 1000; ++trial) {
        const unsigned nodes = static_cast<unsigned>(kind.corners) + random.below(20);
        const unsigned elements = 1 + random.below(40), first = random.below(elements);
        const auto pos = random_nodes(random, kind.rows != 0 ? kind.rows : 2 + random.below(3), nodes);
        const auto connect = random_elements(random, kind.type, kind.corners, elements, nodes);
        std::vector<double> narrow(elements + 1, 7.0), wide = narrow;
        kind.choose(two_at_a_time)(pos, connect, first, elements, narrow.data());
        kind.choose(wider)(pos, connect, first, elements, wide.data());
        for (std::size_t e = 0; e <= elements; ++e)
            ASSERT_TRUE(same_bits(wide[e], narrow[e])) << kind.name << ", trial " << trial << ", element " << e << ": "
                                                       << wide[e] << " instead of " << narrow[e];
    }
}

}  // namespace

TEST(WideScores, FourAtATimeAreThoseOfTwoAtATimeToTheBit)
{
    if (!has_avx2()) GTEST_SKIP() << "a processor without AVX2";
    for (const auto& kind : kinds) expect_the_same(kind, four_at_a_time);
}

TEST(WideScores, EightAtATimeAreThoseOfTwoAtATimeToTheBit)
{
    if (!has_avx512()) GTEST_SKIP() << "a processor without AVX-512";
    for (const auto& kind : kinds) expect_the_same(kind, eight_at_a_time);
}
