#include "geometry/rotation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

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

}  // namespace
