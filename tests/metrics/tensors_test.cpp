#include <gtest/gtest.h>

#include <limits>

#include "metrics/reference.h"

using namespace zeb::tessolv;

namespace {

using S2 = symmetric_fixed<double, 2>;
using S3 = symmetric_fixed<double, 3>;
using V2 = vector_fixed<double, 2>;
using V3 = vector_fixed<double, 3>;
using basis = matrix_fixed<double, 3, 2>;
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();
const basis unit_axes(1, 0, 0, 0, 1, 0);

TEST(MetricIsoToAniso, OfSizeTwoHasAQuarterOnTheDiagonal)
{
    S2 flat(9, 9, 9);
    metric_iso_to_aniso(2.0, flat);
    EXPECT_EQ(flat, S2(0.25, 0, 0.25));
    S3 solid(9, 9, 9, 9, 9, 9);
    metric_iso_to_aniso(2.0, solid);
    EXPECT_EQ(solid, S3(0.25, 0, 0.25, 0, 0, 0.25));
    metric_iso_to_aniso(3.0, solid);
    EXPECT_EQ(solid, S3(1.0 / 9, 0, 1.0 / 9, 0, 0, 1.0 / 9));
}

TEST(MetricIsoToAniso, OfZeroOfNegativeAndOfWhatIsNoSizeIsZero)
{
    for (const double h : {0.0, -0.0, -2.0, -inf, inf, nan_value}) {
        S2 flat(9, 9, 9);
        metric_iso_to_aniso(h, flat);
        EXPECT_EQ(flat, S2()) << h;
        S3 solid(9, 9, 9, 9, 9, 9);
        metric_iso_to_aniso(h, solid);
        EXPECT_EQ(solid, S3()) << h;
    }
}

TEST(MetricIsoToAniso2d, IsTheGramMatrixOfTheBasisOverTheSquareOfTheSize)
{
    S2 M(9, 9, 9);
    metric_iso_to_aniso2d(2.0, unit_axes, M);
    EXPECT_EQ(M, S2(0.25, 0, 0.25));
    metric_iso_to_aniso2d(0.5, basis(1, 2, 3, -1, 0, 2), M);
    EXPECT_EQ(M, S2(4 * 14, 4 * 5, 4 * 5));
}

TEST(MetricIsoToAniso2d, IsZeroForWhatIsNoSizeWhateverTheBasis)
{
    for (const double h : {0.0, -1.0, inf, nan_value, 1e200}) {
        S2 M(9, 9, 9);
        metric_iso_to_aniso2d(h, basis(inf, nan_value, 1, 1, 1, 1), M);
        EXPECT_EQ(M, S2()) << h;
    }
}

TEST(MetricAniso3dToAniso2d, WithTheFirstTwoAxesIsTheLeadingBlock)
{
    S2 M(9, 9, 9);
    metric_aniso3d_to_aniso2d(S3(1, 2, 3, 4, 5, 6), unit_axes, M);
    EXPECT_EQ(M, S2(1, 2, 3));
}

TEST(MetricAniso3dToAniso2d, IsTheTensorBetweenTheVectorsOfTheBasis)
{
    // M b0 = (15, 24, 32), M b1 = (7, 8, 8) for b0 = (1, 1, 3), b1 = (-1, 0, 2).
    S2 M;
    metric_aniso3d_to_aniso2d(S3(1, 2, 7, 4, 5, 6), basis(1, 1, 3, -1, 0, 2), M);
    EXPECT_EQ(M, S2(15 + 24 + 27 * 3, 7 + 8 + 8 * 3, -7 + 8 * 2));
}

TEST(EigenPairs, GivesOneTwiceForTheIdentityAndOneAndThreeForDiagonalThreeAndOne)
{
    V2 flat;
    eigen_pairs(S2(1, 0, 1), flat, matrix_fixed<double, 2, 2>());
    EXPECT_EQ(flat, V2(1, 1));
    eigen_pairs(S2(3, 0, 1), flat, matrix_fixed<double, 2, 2>());
    EXPECT_EQ(flat, V2(1, 3));
    V3 solid;
    eigen_pairs(S3(3, 0, 1, 0, 0, 2), solid, matrix_fixed<double, 3, 3>());
    for (unsigned k = 0; k < 3; ++k) EXPECT_DOUBLE_EQ(solid[k], k + 1.0);
    eigen_pairs(S3(2, -1, 2, 0, 0, -5), solid, matrix_fixed<double, 3, 3>());
    EXPECT_DOUBLE_EQ(solid[0], -5);
    EXPECT_DOUBLE_EQ(solid[1], 1);
    EXPECT_DOUBLE_EQ(solid[2], 3);
}

TEST(EigenPairs, LeavesTheMatrixOfTheCallerAsItWas)
{
    V2 flat;
    matrix_fixed<double, 2, 2> vectors(5, 6, 7, 8);
    eigen_pairs(S2(2, 1, 2), flat, vectors);
    EXPECT_EQ(vectors, (matrix_fixed<double, 2, 2>(5, 6, 7, 8)));
    V3 solid;
    matrix_fixed<double, 3, 3> vectors_3d(1, 2, 3, 4, 5, 6, 7, 8, 9);
    eigen_pairs(S3(2, 1, 2, 0, 0, 1), solid, vectors_3d);
    EXPECT_EQ(vectors_3d, (matrix_fixed<double, 3, 3>(1, 2, 3, 4, 5, 6, 7, 8, 9)));
}

struct validity {
    const char* name;
    double least, other;  // eigenvalues; in 3-D `other` twice
    bool is_valid;
};
class Validity : public testing::TestWithParam<validity> {};

TEST_P(Validity, OfDiagonalTensorsInEveryOrder)
{
    const auto& [name, a, b, expected] = GetParam();
    EXPECT_EQ(is_valid_metric(S2(a, 0, b)), expected);
    EXPECT_EQ(is_valid_metric(S2(b, 0, a)), expected);
    EXPECT_EQ(is_valid_metric(S3(a, 0, b, 0, 0, b)), expected);
    EXPECT_EQ(is_valid_metric(S3(b, 0, a, 0, 0, b)), expected);
    EXPECT_EQ(is_valid_metric(S3(b, 0, b, 0, 0, a)), expected);
}

INSTANTIATE_TEST_SUITE_P(
    IsValidMetric, Validity,
    testing::Values(validity{"unit", 1, 1, true}, validity{"ratio_1e_minus_25", 1e-25, 1, false},
                    validity{"ratio_1e_minus_23", 1e-23, 1, true},
                    validity{"ratio_1e_minus_23_in_other_units", 1e-3, 1e20, true},
                    validity{"ratio_1e_minus_25_in_other_units", 1e-5, 1e20, false}, validity{"zero", 0, 1, false},
                    validity{"negative", -1, 1, false}, validity{"slightly_negative", -1e-20, 1, false},
                    validity{"nothing", 0, 0, false}, validity{"both_negative", -1, -1, false},
                    validity{"tiny", 1e-200, 1e-200, true}, validity{"huge", 1e200, 1e200, true},
                    validity{"not_a_number", nan_value, 1, false}, validity{"only_nan", nan_value, nan_value, false},
                    validity{"infinite", 1, inf, false}, validity{"only_infinite", inf, inf, false},
                    validity{"minus_infinity", -inf, 1, false}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(IsValidMetric, IsFalseForNaNAndInfinityInAnyEntry)
{
    for (const double odd : {nan_value, inf, -inf}) {
        for (unsigned k = 0; k < 3; ++k) {
            S2 M(1, 0, 1);
            M[k] = odd;
            EXPECT_FALSE(is_valid_metric(M)) << odd << " in " << k;
        }
        for (unsigned k = 0; k < 6; ++k) {
            S3 M(1, 0, 1, 0, 0, 1);
            M[k] = odd;
            EXPECT_FALSE(is_valid_metric(M)) << odd << " in " << k;
        }
    }
}

// The rule by the eigenvalues that LAPACK gives.
bool is_valid_by_lapack(S3 M)
{
    double values[3], work[9];
    long info = 0;
    zeb::lapack::dspev('N', 'U', 3, M.data(), values, nullptr, 1, work, info);
    return values[0] > 0 && values[0] > 1e-24 * values[2];
}

TEST(IsValidMetric, In3DIsTheRuleByLapackHoweverNearToSingular)
{
    std::mt19937_64 random(12);
    std::uniform_real_distribution<double> unit;
    int valid = 0, invalid = 0;
    for (int round = 0; round < 30000; ++round) {
        // The least eigenvalue from -1 over -1e-30 and 1e-30 to 1, relative to the others.
        const double least = std::pow(10.0, -30 * unit(random)) * (random() % 2 ? 1 : -1);
        const double scale = std::pow(10.0, round % 3 == 0 ? 260 * unit(random) - 130 : 20 * unit(random) - 10);
        const auto M = test::tensor_of<3>(test::random_frame<3>(random),
                                          {scale * least, scale * std::pow(10.0, -12 * unit(random)), scale});
        const bool expected = is_valid_by_lapack(M);
        ASSERT_EQ(is_valid_metric(M), expected) << testing::PrintToString(M);
        ++(expected ? valid : invalid);
    }
    EXPECT_GT(valid, 5000);
    EXPECT_GT(invalid, 5000);
}

TEST(IsValidMetric, In3DIsTheRuleByLapackForSmallIntegers)
{
    for (int code = 0; code < 5 * 5 * 5 * 5 * 5 * 5; ++code) {
        S3 M;
        for (int k = 0, rest = code; k < 6; ++k, rest /= 5) M[k] = rest % 5 - 2;
        ASSERT_EQ(is_valid_metric(M), is_valid_by_lapack(M)) << testing::PrintToString(M);
    }
}

TEST(IsValidMetric, In2DFollowsTheSignsOfTheEigenvaluesAwayFromZero)
{
    std::mt19937_64 random(13);
    std::uniform_real_distribution<double> unit;
    for (int round = 0; round < 4000; ++round) {
        const double least = std::pow(10.0, -12 * unit(random)) * (random() % 2 ? 1 : -1);
        const auto M = test::tensor_of<2>(test::random_frame<2>(random), {least, 1.0});
        ASSERT_EQ(is_valid_metric(M), least > 0) << testing::PrintToString(M);
    }
}

}  // namespace
