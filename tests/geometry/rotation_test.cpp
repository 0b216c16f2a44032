#include "geometry/rotation.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include <tessolv/geometry.h>

using namespace zeb;
using namespace zeb::tessolv;

namespace {

TEST(RotationCoefficients, UseTheClosedFormsOnlyAboveAFifth)
{
    const auto closed_b = [](double t) { return (1.0 - std::cos(t)) / (t * t); };
    const double next = std::nextafter(0.2, 1.0);
    EXPECT_EQ(coefficients_of_angle(next).b, closed_b(next));
    EXPECT_EQ(coefficients_of_angle(next).a, std::sin(next) / next);

    // At 0.2 itself the series, cut after t^8; the closed form is a few units in the last place away.
    const long double s = 0.2L * 0.2L;
    const long double series = 0.5L - s / 24 + s * s / 720 - s * s * s / 40320 + s * s * s * s / 3628800;
    EXPECT_NEAR(coefficients_of_angle(0.2).b, static_cast<double>(series), 1e-16);
    EXPECT_NE(coefficients_of_angle(0.2).b, closed_b(0.2));
}

TEST(RotationCoefficients, AreExactToTheLastDigitsInTheSeries)
{
    for (double t = 0.2; t > 1e-9; t *= 0.7) {
        const long double half = std::sin(static_cast<long double>(t) / 2);
        const long double squared = static_cast<long double>(t) * t;
        EXPECT_NEAR(coefficients_of_angle(t).a, static_cast<double>(std::sin(static_cast<long double>(t)) / t), 3e-16);
        EXPECT_NEAR(coefficients_of_angle(t).b, static_cast<double>(2 * half * half / squared), 4e-16);
    }
    EXPECT_EQ(coefficients_of_angle(0.0).a, 1.0);
    EXPECT_EQ(coefficients_of_angle(0.0).b, 0.5);
}

TEST(RotationMatrix, IsOrthogonalAndKeepsItsAxis)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> component(-4, 4);
    for (int round = 0; round < 2000; ++round) {
        const double scale = round % 2 == 0 ? 1.0 : 0.04;
        const vector_fixed<double, 3> r(scale * component(random), scale * component(random),
                                        scale * component(random));
        const auto R = rotation_matrix(r);
        for (unsigned i = 0; i < 3; ++i) {
            double along = 0;
            for (unsigned j = 0; j < 3; ++j) {
                double product = 0;
                for (unsigned k = 0; k < 3; ++k) product += R(k, i) * R(k, j);
                ASSERT_NEAR(product, i == j ? 1.0 : 0.0, 1e-14);
                along += R(i, j) * r[j];
            }
            ASSERT_NEAR(along, r[i], 1e-14);
        }
    }
}

// Column by column of the matrix, beginning with 0 and leaving out what lies at the centre.
vector_fixed<double, 3> turned_about(const vector_fixed<double, 3>& c, const matrix_fixed<double, 3, 3>& R,
                                     const double* p)
{
    vector_fixed<double, 3> turned;
    for (unsigned j = 0; j < 3; ++j)
        for (unsigned k = 0; k < 3; ++k)
            if (p[j] - c[j] != 0.0) turned[k] += R(k, j) * (p[j] - c[j]);
    return {c[0] + turned[0], c[1] + turned[1], c[2] + turned[2]};
}

TEST(Rotate, GivesTheSumsInTheirOrderToTheBitWhateverTheSignsOfZeros)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double values[] = {0.0, -0.0, 1.0, -0.7, 5e-324, -5e-324, 1e300, -infinity};
    constexpr double angles[] = {0.0, -0.0, 0.1, -0.15, 1.5707963267948966, -3.0, infinity};
    std::mt19937 random(4);
    const auto any_of = [&](const auto& list) { return list[random() % std::size(list)]; };
    for (int trial = 0; trial < 200000; ++trial) {
        const vector_fixed<double, 3> c(any_of(values), any_of(values), any_of(values));
        const vector_fixed<double, 3> r(any_of(angles), any_of(angles), any_of(angles));
        if (r == vector_fixed<double, 3>()) continue;
        dense2D<double> pos(3, 1);
        for (unsigned i = 0; i < 3; ++i) pos(i, 0) = any_of(values);
        const auto expected = turned_about(c, rotation_matrix(r), &pos(0, 0));
        ASSERT_EQ(rotate(pos, c, r), 1);
        for (unsigned i = 0; i < 3; ++i) {
            if (std::isnan(expected[i])) {
                ASSERT_TRUE(std::isnan(pos(i, 0))) << "trial " << trial;
            } else {
                ASSERT_EQ(std::bit_cast<std::uint64_t>(pos(i, 0)), std::bit_cast<std::uint64_t>(expected[i]))
                    << "trial " << trial;
            }
        }
    }
}

}  // namespace
