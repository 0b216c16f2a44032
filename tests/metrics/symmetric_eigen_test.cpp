#include "metrics/symmetric_eigen.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "metrics/certain_validity.h"
#include "metrics/direct_spectrum.h"
#include "metrics/reference.h"

using namespace zeb;
using namespace zeb::tessolv;

namespace {

using S2 = symmetric_fixed<double, 2>;
using S3 = symmetric_fixed<double, 3>;
using matrix2 = matrix_fixed<double, 2, 2>;

struct decomposition_2d {
    const char* name;
    S2 M;
    vector_fixed<double, 2> values;
    matrix2 vectors;
};
class Decomposition2D : public testing::TestWithParam<decomposition_2d> {};

TEST_P(Decomposition2D, HasTheValuesAndVectors)
{
    const auto& row = GetParam();
    const auto found = eigen_decomposition(row.M);
    EXPECT_EQ(found.values, row.values);
    for (unsigned k = 0; k < 4; ++k) EXPECT_DOUBLE_EQ(found.vectors[k], row.vectors[k]);
}

const double root = std::sqrt(0.5);

INSTANTIATE_TEST_SUITE_P(
    SymmetricEigen, Decomposition2D,
    testing::Values(decomposition_2d{"identity", {1, 0, 1}, {1, 1}, matrix2(1, 0, 0, 1)},
                    decomposition_2d{"the_greater_first", {3, 0, 1}, {1, 3}, matrix2(0, 1, -1, 0)},
                    decomposition_2d{"the_lesser_first", {1, 0, 3}, {1, 3}, matrix2(-1, 0, 0, -1)},
                    decomposition_2d{"diagonal_direction", {2, 1, 2}, {1, 3}, matrix2(-root, root, -root, -root)},
                    decomposition_2d{"zero", {0, 0, 0}, {0, 0}, matrix2(1, 0, 0, 1)},
                    decomposition_2d{"indefinite", {0, 2, 0}, {-2, 2}, matrix2(-root, root, -root, -root)},
                    // Below 1e-12 the direction counts as none.
                    decomposition_2d{"small", {1e-13, 1e-13, 1e-13}, {0, 2e-13}, matrix2(1, 0, 0, 1)}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(SymmetricEigen, SmallRootsIn2DAreSpelledOutByTheDeterminant)
{
    EXPECT_EQ(eigenvalues(S2(1, 0, 1e-20))[0], 1e-20);
    EXPECT_EQ(eigenvalues(S2(1, 0, -1e-20))[0], -1e-20);
    EXPECT_EQ(eigenvalues(S2(-1, 0, 1e-20))[1], 1e-20);
    EXPECT_EQ(eigenvalues(S2(1, 0, 1e-300))[0], 1e-300);
    EXPECT_EQ(eigenvalues(S2(1, 0, 0))[0], 0.0);
    // d / t, which is 1e-13 less than d over the greater root.
    EXPECT_EQ(eigenvalues(S2(1, 0, 1e-13))[0], 1e-13 / (1 + 1e-13));
    EXPECT_NE(1e-13 / (1 + 1e-13), 1e-13);
}

// Spreads from equal to a ratio of 1e24 eigenvalues, in random directions.
template <std::size_t N>
test::values_of<N> random_values(std::mt19937_64& random, int round)
{
    std::uniform_real_distribution<double> unit;
    test::values_of<N> values;
    const double decades[] = {0, 1e-9, 1e-3, 1, 6, 24};
    for (auto& v : values) v = std::pow(10.0, decades[round % 6] * unit(random));
    if (round % 5 == 0) values[0] = values[N - 1];
    if (round % 7 == 0) values[0] = -values[0];
    if (round % 11 == 0) values[0] = 0;
    const double scale = std::pow(10.0, (round % 3 == 0 ? 260 : 40) * (unit(random) - 0.5));
    for (auto& v : values) v *= scale;
    return values;
}

template <std::size_t N>
void expect_orthonormal(const matrix_fixed<double, N, N>& V)
{
    for (std::size_t i = 0; i < N; ++i) {
        for (std::size_t j = 0; j < N; ++j) {
            double product = 0;
            for (std::size_t k = 0; k < N; ++k) product += V(k, i) * V(k, j);
            ASSERT_NEAR(product, i == j ? 1.0 : 0.0, 1e-14);
        }
    }
}

TEST(SymmetricEigen, OfDiagonalTensorsIn3DIsExact)
{
    const auto found = eigen_decomposition(S3(3, 0, 0.1, 0, 0, 2));
    EXPECT_EQ(found.values, (vector_fixed<double, 3>(0.1, 2, 3)));
    EXPECT_EQ(found.vectors, (matrix_fixed<double, 3, 3>(0, 1, 0, 0, 0, 1, 1, 0, 0)));
    EXPECT_EQ(eigen_decomposition(S3()).values, (vector_fixed<double, 3>()));
    EXPECT_EQ(eigen_decomposition(S3(1e300, 0, -1e300, 0, 0, 5)).values, (vector_fixed<double, 3>(-1e300, 5, 1e300)));
}

// The three pairs of axes: the first of them alone makes LAPACK's reduction trivial.
TEST(SymmetricEigen, OfTensorsThatCoupleTwoAxesAlone)
{
    for (const auto& M : {S3(2, 1, 2, 0, 0, 7), S3(2, 0, 7, 1, 0, 2), S3(7, 0, 2, 0, 1, 2)}) {
        const auto found = eigen_decomposition(M);
        EXPECT_DOUBLE_EQ(found.values[0], 1);
        EXPECT_DOUBLE_EQ(found.values[1], 3);
        EXPECT_DOUBLE_EQ(found.values[2], 7);
    }
}

TEST(SymmetricEigen, In3DIsExactToTheSizeOfTheTensor)
{
    std::mt19937_64 random(5);
    for (int round = 0; round < 4000 && !HasFatalFailure(); ++round) {
        const auto M = test::tensor_of(test::random_frame<3>(random), random_values<3>(random, round));
        const auto expected = test::sorted_eigenvalues(M);
        const auto found = eigen_decomposition(M);
        const auto values = eigenvalues(M);
        const long double tolerance = 1e-14L * std::max(std::abs(expected[0]), std::abs(expected[2]));
        for (unsigned k = 0; k < 3; ++k) {
            ASSERT_LE(std::abs(found.values[k] - expected[k]), tolerance) << "round " << round;
            ASSERT_LE(std::abs(values[k] - expected[k]), tolerance) << "round " << round;
            for (unsigned i = 0; i < 3; ++i) {  // M v = lambda v
                long double sum = 0;
                for (unsigned j = 0; j < 3; ++j) sum += static_cast<long double>(M(i, j)) * found.vectors(j, k);
                ASSERT_LE(std::abs(sum - static_cast<long double>(found.values[k]) * found.vectors(i, k)), tolerance);
            }
        }
        expect_orthonormal(found.vectors);
    }
}

void expect_direct_values(const S3& M, long double roundings)
{
    const auto expected = test::sorted_eigenvalues(M);
    const auto found = direct_eigenvalues(M);
    const long double size = std::max(std::abs(expected[0]), std::abs(expected[2]));
    for (unsigned k = 0; k < 3; ++k)
        ASSERT_LE(std::abs(found[k] - expected[k]), roundings * 1.1e-16L * size) << testing::PrintToString(M);
    ASSERT_TRUE(found[0] <= found[1] && found[1] <= found[2]) << testing::PrintToString(found);
}

// Small whole numbers make equal eigenvalues common, tiny ones leave the range of the formulas.
TEST(SymmetricEigen, DirectValuesIn3DAreExactToTheSizeOfTheTensor)
{
    std::mt19937_64 random(5);
    const auto entry = [&](int kind) {
        const double whole = static_cast<double>(random() % 5) - 2.0;
        return kind == 0 ? whole : kind == 1 ? whole * 1e-120 : static_cast<double>(random() % 1000000) * 4e-6 - 2.0;
    };
    for (int trial = 0; trial < 6000 && !HasFatalFailure(); ++trial) {
        S3 M;
        for (double& m : M) m = entry(trial % 3);
        expect_direct_values(M, 40);
        expect_direct_values(test::tensor_of(test::random_frame<3>(random), random_values<3>(random, trial)), 40);
    }
}

// Two eigenvalues that differ in the last digits, where the roots of the polynomial have half of their digits.
TEST(SymmetricEigen, DirectValuesIn3DKeepNearlyEqualOnesApart)
{
    std::mt19937_64 random(6);
    for (int trial = 0; trial < 2000 && !HasFatalFailure(); ++trial) {
        const long double gap = std::pow(10.0L, -17.0L * static_cast<long double>(random() % 1000) / 1000);
        const test::values_of<3> values{1, trial % 2 == 0 ? 1 + gap : 2, trial % 2 == 0 ? -3 : 2 - gap};
        expect_direct_values(test::tensor_of(test::random_frame<3>(random), values), 20);
    }
}

TEST(SymmetricEigen, DirectFormulasTellWhatTheyDoNotReach)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    direct_spectrum s;
    EXPECT_TRUE(solve_directly(S3(2, 1, 3, 0, 1, 4), s));
    EXPECT_TRUE(solve_directly(S3(1e-30, 0, 0, 0, 1e-40, 0), s));
    for (const S3& M : {S3(), S3(5, 0, 5, 0, 0, 5), S3(1, 1e-70, 1, 0, 0, 1), S3(1e60, 1, 1, 0, 0, 1),
                        S3(1, 0, 1, 0, infinity, 1), S3(std::numeric_limits<double>::quiet_NaN(), 0, 1, 0, 1, 1)})
        EXPECT_FALSE(solve_directly(M, s)) << testing::PrintToString(M);
}

// The least eigenvalue over the greatest goes from the precision of a double up to what is certain.
TEST(CertainValidity, IsNeverThatOfNearlySingularOrIndefiniteTensors)
{
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> unit;
    int certain = 0;
    for (int trial = 0; trial < 6000; ++trial) {
        const double least = std::pow(10.0, -16.0 + 12.0 * unit(random)) * (trial % 3 == 0 ? -1 : 1);
        const double between = trial % 2 == 0 ? std::pow(10.0, -6 * unit(random)) : trial % 5 == 0 ? -unit(random) : 1;
        const double scale = std::pow(10.0, 60 * unit(random) - 30);
        const auto M = test::tensor_of(test::random_frame<3>(random),
                                       {least * scale, between * scale, (trial % 7 == 0 ? -1 : 1) * scale});
        const double entries[] = {M[0], M[1], M[2], M[3], M[4], M[5]};
        if (!is_certainly_valid(entries)) continue;
        ++certain;
        const auto values = test::sorted_eigenvalues(M);
        ASSERT_GT(values[0], 9e-13L * values[2]) << testing::PrintToString(M);
    }
    EXPECT_GT(certain, 500);
}

TEST(CertainValidity, IsNotThatOfEntriesBeyondTheRange)
{
    for (const double odd :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e200}) {
        for (unsigned k = 0; k < 6; ++k) {
            double entries[] = {1, 0, 1, 0, 0, 1};
            EXPECT_TRUE(is_certainly_valid(entries));
            entries[k] = odd;
            EXPECT_FALSE(is_certainly_valid(entries)) << odd << " in " << k;
        }
    }
    EXPECT_FALSE(is_certainly_valid({1e-60, 0.0, 1e-60, 0.0, 0.0, 1e-60}));
}

// A root of x^2 - t x + d with an error of e in the discriminant is wrong by sqrt(e) where two roots meet.
TEST(SymmetricEigen, In2DIsExactToTheGapOfTheEigenvalues)
{
    std::mt19937_64 random(6);
    for (int round = 0; round < 4000 && !HasFatalFailure(); ++round) {
        const auto M = test::tensor_of(test::random_frame<2>(random), random_values<2>(random, round));
        const auto expected = test::sorted_eigenvalues(M);
        const auto found = eigen_decomposition(M);
        const long double size = std::max(std::abs(expected[0]), std::abs(expected[1]));
        const long double gap = std::max((expected[1] - expected[0]) / size, 1e-8L);
        for (unsigned k = 0; k < 2; ++k)
            ASSERT_LE(std::abs(found.values[k] - expected[k]), 2e-15L * size * (1 + 1 / gap)) << "round " << round;
        ASSERT_EQ(eigenvalues(M), found.values);
        expect_orthonormal(found.vectors);
    }
}

TEST(SymmetricEigen, EndsForEntriesThatAreNoNumbers)
{
    const double odd[] = {std::numeric_limits<double>::quiet_NaN(),
                          std::numeric_limits<double>::infinity(),
                          -std::numeric_limits<double>::infinity(),
                          std::numeric_limits<double>::max(),
                          5e-324,
                          1.0};
    for (const double a : odd) {
        for (const double b : odd) {
            for (const double c : odd) {
                const auto in_3d = eigen_decomposition(S3(a, b, c, b, a, c));
                const auto in_2d = eigen_decomposition(S2(a, b, c));
                if (std::isnan(a)) {
                    EXPECT_FALSE(in_3d.values[0] > 0 && in_3d.values[1] > 0 && in_3d.values[2] > 0);
                    EXPECT_FALSE(in_2d.values[0] > 0 || in_2d.values[1] > 0);
                }
            }
        }
    }
}

}  // namespace
