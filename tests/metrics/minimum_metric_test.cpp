#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "metrics/reference.h"

using namespace zeb::tessolv;

namespace {

using S2 = symmetric_fixed<double, 2>;
using S3 = symmetric_fixed<double, 3>;
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();

template <std::size_t N>
symmetric_fixed<double, N> diagonal(const std::array<double, N>& entries)
{
    symmetric_fixed<double, N> M;
    for (std::size_t k = 0; k < N; ++k) M(k, k) = entries[k];
    return M;
}

template <std::size_t N>
void expect_close(const symmetric_fixed<double, N>& found, const symmetric_fixed<double, N>& expected,
                  long double error)
{
    for (std::size_t k = 0; k < N * (N + 1) / 2; ++k)
        ASSERT_LE(std::abs(static_cast<long double>(found[k]) - expected[k]), error)
            << testing::PrintToString(found) << " instead of " << testing::PrintToString(expected);
}

TEST(MinimumMetric, OfTheUnitTensorAndFourTimesItIsTheLatter)
{
    S2 flat;
    EXPECT_TRUE(minimum_metric(S2(1, 0, 1), S2(4, 0, 4), flat));
    EXPECT_EQ(flat, S2(4, 0, 4));
    S3 solid;
    EXPECT_TRUE(minimum_metric(S3(1, 0, 1, 0, 0, 1), S3(4, 0, 4, 0, 0, 4), solid));
    expect_close(solid, S3(4, 0, 4, 0, 0, 4), 1e-14L);
}

TEST(MinimumMetric, TakesTheSmallerSizeOfEachDirection)
{
    S2 flat;
    EXPECT_TRUE(minimum_metric(diagonal<2>({9, 1}), diagonal<2>({4, 25}), flat));
    expect_close(flat, diagonal<2>({9, 25}), 1e-13L);
    S3 solid;
    EXPECT_TRUE(minimum_metric(diagonal<3>({9, 1, 5}), diagonal<3>({4, 25, 5}), solid));
    expect_close(solid, diagonal<3>({9, 25, 5}), 1e-13L);
}

TEST(MinimumMetric, WithoutAPositiveDefiniteFirstTensorIsFalseAndLeavesTheResult)
{
    for (const S2 M1 : {S2(1, 0, 0), S2(0, 0, 1), S2(1, 1, 1), S2(1, 2, 1), S2(-1, 0, -1), S2()}) {
        S2 out(7, 8, 9);
        EXPECT_FALSE(minimum_metric(M1, S2(1, 0, 1), out));
        EXPECT_EQ(out, S2(7, 8, 9));
    }
    for (const S3 M1 :
         {diagonal<3>({1, 1, 0}), diagonal<3>({1, 0, 1}), diagonal<3>({0, 1, 1}), S3(1, 0, 1, 1, 0, 1), S3()}) {
        S3 out(4, 5, 6, 7, 8, 9);
        EXPECT_FALSE(minimum_metric(M1, diagonal<3>({1, 1, 1}), out));
        EXPECT_EQ(out, S3(4, 5, 6, 7, 8, 9));
    }
}

TEST(MinimumMetric, OfEntriesThatAreNoNumbersIsFalseAndLeavesTheResult)
{
    for (const double odd : {nan_value, inf, -inf}) {
        for (unsigned k = 0; k < 3; ++k) {
            const S2 good(2, 0, 2);
            S2 bad = good, out(7, 8, 9);
            bad[k] = odd;
            EXPECT_FALSE(minimum_metric(bad, good, out)) << odd << " in " << k;
            EXPECT_FALSE(minimum_metric(good, bad, out)) << odd << " in " << k;
            EXPECT_EQ(out, S2(7, 8, 9));
        }
        for (unsigned k = 0; k < 6; ++k) {
            const S3 good(2, 0, 2, 0, 0, 2);
            S3 bad = good, out(4, 5, 6, 7, 8, 9);
            bad[k] = odd;
            EXPECT_FALSE(minimum_metric(bad, good, out)) << odd << " in " << k;
            EXPECT_FALSE(minimum_metric(good, bad, out)) << odd << " in " << k;
            EXPECT_EQ(out, S3(4, 5, 6, 7, 8, 9));
        }
    }
}

TEST(MinimumMetric, BeyondTheRangeOfDoubleIsFalseAndLeavesTheResult)
{
    S2 flat(7, 8, 9);
    EXPECT_FALSE(minimum_metric(diagonal<2>({1e-200, 1e-200}), diagonal<2>({1e200, 1e200}), flat));
    EXPECT_EQ(flat, S2(7, 8, 9));
    S3 solid(4, 5, 6, 7, 8, 9);
    EXPECT_FALSE(minimum_metric(diagonal<3>({1e-200, 1, 1}), diagonal<3>({1e200, 1, 1}), solid));
    EXPECT_EQ(solid, S3(4, 5, 6, 7, 8, 9));
}

// Squares of such entries are beyond the range of double.
TEST(MinimumMetric, OfTinyAndOfHugeTensorsInSpaceIsThatOfOrdinaryOnesTimesThePower)
{
    const S3 M1(4, 1, 3, 0.5, -1, 5), M2(2, -1, 6, 0.25, 1, 3);
    const auto times = [](S3 M, int exponent) {
        for (double& m : M) m = std::ldexp(m, exponent);
        return M;
    };
    S3 ordinary;
    ASSERT_TRUE(minimum_metric(M1, M2, ordinary));
    for (const int exponent : {-1000, -900, -600, 470, 600, 900, 1000}) {
        S3 out;
        ASSERT_TRUE(minimum_metric(times(M1, exponent), times(M2, exponent), out)) << exponent;
        expect_close(times(out, -exponent), ordinary, 1e-14L);
    }
}

TEST(MinimumMetric, OfATinyFirstTensorInSpaceThatIsIndefiniteIsFalse)
{
    for (const double size : {1.0, 1e-200, 1e-300, 1e200, 1e300}) {
        S3 out(4, 5, 6, 7, 8, 9);
        EXPECT_FALSE(minimum_metric(S3(size, 2 * size, size, 0, 0, size), S3(size, 0, size, 0, 0, size), out)) << size;
        EXPECT_EQ(out, S3(4, 5, 6, 7, 8, 9));
    }
}

TEST(MinimumMetric, InDirectionsWhereTheSecondTensorIsNotPositiveTheFirstAloneCounts)
{
    S2 flat;
    EXPECT_TRUE(minimum_metric(diagonal<2>({2, 3}), diagonal<2>({-5, 7}), flat));
    expect_close(flat, diagonal<2>({2, 7}), 1e-14L);
    EXPECT_TRUE(minimum_metric(diagonal<2>({2, 3}), S2(), flat));
    expect_close(flat, diagonal<2>({2, 3}), 1e-14L);
    S3 solid;
    EXPECT_TRUE(minimum_metric(diagonal<3>({2, 3, 4}), diagonal<3>({-5, 0, 7}), solid));
    expect_close(solid, diagonal<3>({2, 3, 7}), 1e-14L);
}

TEST(MinimumMetric, MayBeStoredInEitherTensor)
{
    const S3 first(4, 1, 5, 0, 1, 6), second(5, -1, 4, 1, 0, 3);
    S3 expected;
    ASSERT_TRUE(minimum_metric(first, second, expected));
    S3 in_first = first, in_second = second, in_both = first;
    EXPECT_TRUE(minimum_metric(in_first, second, in_first));
    EXPECT_TRUE(minimum_metric(first, in_second, in_second));
    EXPECT_TRUE(minimum_metric(in_both, in_both, in_both));
    EXPECT_EQ(in_first, expected);
    EXPECT_EQ(in_second, expected);
    expect_close(in_both, first, 1e-14L);

    const S2 flat(4, 1, 5), other(5, -1, 4);
    S2 wanted, in_flat = flat, in_other = other;
    ASSERT_TRUE(minimum_metric(flat, other, wanted));
    EXPECT_TRUE(minimum_metric(in_flat, other, in_flat));
    EXPECT_TRUE(minimum_metric(flat, in_other, in_other));
    EXPECT_EQ(in_flat, wanted);
    EXPECT_EQ(in_other, wanted);
}

// The stated procedure with directions P, their inverse and the two sizes in each, in extended precision: the columns v
// of P have unit length and M2 v = mu M1 v.
template <std::size_t N>
test::square<N> inverse(test::square<N> A)
{
    test::square<N> B{};
    for (std::size_t i = 0; i < N; ++i) B[i][i] = 1;
    for (std::size_t k = 0; k < N; ++k) {
        std::size_t pivot = k;
        for (std::size_t i = k; i < N; ++i)
            if (std::abs(A[i][k]) > std::abs(A[pivot][k])) pivot = i;
        std::swap(A[k], A[pivot]);
        std::swap(B[k], B[pivot]);
        for (std::size_t i = 0; i < N; ++i) {
            const long double factor = i == k ? 0 : A[i][k] / A[k][k];
            for (std::size_t j = 0; j < N; ++j) A[i][j] -= factor * A[k][j], B[i][j] -= factor * B[k][j];
        }
    }
    for (std::size_t i = 0; i < N; ++i)
        for (std::size_t j = 0; j < N; ++j) B[i][j] /= A[i][i];
    return B;
}

template <std::size_t N>
test::square<N> product(const test::square<N>& A, const test::square<N>& B, bool second_transposed)
{
    test::square<N> C{};
    for (std::size_t i = 0; i < N; ++i)
        for (std::size_t j = 0; j < N; ++j)
            for (std::size_t k = 0; k < N; ++k) C[i][j] += A[i][k] * (second_transposed ? B[j][k] : B[k][j]);
    return C;
}

template <std::size_t N>
symmetric_fixed<double, N> intersected(const symmetric_fixed<double, N>& M1, const symmetric_fixed<double, N>& M2)
{
    // The square root of M1 in place of its Cholesky factor.
    test::values_of<N> values;
    test::square<N> vectors;
    test::jacobi(test::widened(M1), values, vectors);
    test::square<N> root{};
    for (std::size_t i = 0; i < N; ++i)
        for (std::size_t j = 0; j < N; ++j)
            for (std::size_t k = 0; k < N; ++k) root[i][j] += vectors[i][k] * std::sqrt(values[k]) * vectors[j][k];
    const auto unroot = inverse(root);
    test::values_of<N> mu;
    test::square<N> W;
    test::jacobi(product(product(unroot, test::widened(M2), false), unroot, true), mu, W);

    auto P = product(unroot, W, false);
    for (std::size_t k = 0; k < N; ++k) {
        long double squared = 0;
        for (const auto& row : P) squared += row[k] * row[k];
        for (auto& row : P) row[k] /= std::sqrt(squared);
    }
    const auto Q = inverse(P);
    test::square<N> sum{};
    for (std::size_t k = 0; k < N; ++k) {
        long double s = 0;
        for (std::size_t i = 0; i < N; ++i)
            for (std::size_t j = 0; j < N; ++j) s += P[i][k] * M1(i, j) * P[j][k];
        const long double t = mu[k] * s, largest = std::numeric_limits<double>::max();
        const long double h = std::min(s > 0 ? 1 / std::sqrt(s) : largest, t > 0 ? 1 / std::sqrt(t) : largest);
        for (std::size_t i = 0; i < N; ++i)
            for (std::size_t j = 0; j < N; ++j) sum[i][j] += Q[k][i] * Q[k][j] / (h * h);
    }
    return test::rounded(sum);
}

template <std::size_t N>
symmetric_fixed<double, N> random_tensor(std::mt19937_64& random, double decades)
{
    std::uniform_real_distribution<double> unit;
    test::values_of<N> values;
    for (auto& v : values) v = std::pow(10.0, decades * unit(random));
    return test::tensor_of(test::random_frame<N>(random), values);
}

// How much the closed form in 2-D magnifies rounding: the roots by the nearness of the two, the direction (root - c, b)
// by its shortness.
long double magnification(const symmetric_fixed<double, 2>& M1, const symmetric_fixed<double, 2>& M2)
{
    const long double l00 = std::sqrt(static_cast<long double>(M1[0])), l10 = M1[1] / l00;
    const long double l11 = std::sqrt(M1[2] - l10 * l10);
    const long double a = M2[0] / (l00 * l00), x10 = (M2[1] - l10 * M2[0] / l00) / l11;  // row 1 of L^-1 M2
    const long double x11 = (M2[2] - l10 * M2[1] / l00) / l11;
    const long double b = x10 / l00, c = (x11 - b * l10) / l11;
    const long double gap = std::hypot(a - c, 2 * b), size = std::abs(a) + std::abs(c) + gap;
    return size / std::max(std::min(gap, std::hypot((a + c - gap) / 2 - c, b)), 1e-8L * size);
}

long double magnification(const symmetric_fixed<double, 3>&, const symmetric_fixed<double, 3>&)
{
    return 1;
}

// The procedure loses digits with the condition of M1.
template <std::size_t N>
void check_random_pairs(unsigned seed)
{
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> unit;
    for (int round = 0; round < 4000 && !testing::Test::HasFatalFailure(); ++round) {
        const double decades = 8.0 * (round % 5) / 4;
        const auto M1 = random_tensor<N>(random, decades);
        auto M2 = random_tensor<N>(random, decades);
        const double scale = std::pow(10.0, 6 * unit(random) - 3) * (round % 13 == 0 ? -1 : 1);
        for (double& m : M2) m *= scale;
        if (round % 17 == 0) M2[0] = -M2[0];  // indefinite

        const auto expected = intersected(M1, M2);
        symmetric_fixed<double, N> found;
        ASSERT_TRUE(minimum_metric(M1, M2, found)) << "round " << round;
        const auto values = test::sorted_eigenvalues(M1);
        const long double error = 1e-15L * magnification(M1, M2) * values[N - 1] / values[0];
        expect_close(found, expected, (1e-14L + error) * test::largest_entry(expected));
    }
}

TEST(MinimumMetric, AgreesWithTheProcedureByDirectionsOnRandomPairsIn2D)
{
    check_random_pairs<2>(21);
}

TEST(MinimumMetric, AgreesWithTheProcedureByDirectionsOnRandomPairsIn3D)
{
    check_random_pairs<3>(22);
}

// In a common frame the answer is known without any procedure.
TEST(MinimumMetric, InACommonFrameTakesTheGreaterEigenvalues)
{
    std::mt19937_64 random(23);
    std::uniform_real_distribution<double> unit;
    for (int round = 0; round < 2000 && !HasFatalFailure(); ++round) {
        const auto Q = test::random_frame<3>(random);
        test::values_of<3> a, b, greater;
        for (unsigned k = 0; k < 3; ++k) {
            a[k] = std::pow(10.0, 4 * unit(random));
            b[k] = random() % 4 == 0 ? a[k] : std::pow(10.0, 4 * unit(random));
            greater[k] = std::max(a[k], b[k]);
        }
        const auto expected = test::tensor_of(Q, greater);
        S3 found;
        ASSERT_TRUE(minimum_metric(test::tensor_of(Q, a), test::tensor_of(Q, b), found));
        expect_close(found, expected, 1e-11L * test::largest_entry(expected));
    }
}

// Two eigenvalues are 1 but for little more than the rounding of the third.
TEST(MinimumMetric, OfTheUnitTensorAndANeedleIsTheNeedleMadeRound)
{
    std::mt19937_64 random(24);
    std::uniform_real_distribution<double> unit;
    for (int round = 0; round < 4000 && !HasFatalFailure(); ++round) {
        const auto Q = test::random_frame<3>(random);
        const long double greatest = std::pow(10.0L, 10 * unit(random));
        const long double gap = greatest * std::pow(10.0L, -12 - 3 * unit(random));
        S3 found;
        ASSERT_TRUE(minimum_metric(diagonal<3>({1, 1, 1}), test::tensor_of<3>(Q, {1 - gap, 1, greatest}), found));
        expect_close(found, test::tensor_of<3>(Q, {1, 1, greatest}), 1e-14L * greatest);
    }
}

// Where the two tensors are nearly the same, all eigenvalues of the one in terms of the other lie around 1.
TEST(MinimumMetric, OfNearlyEqualTensorsIsNearBoth)
{
    std::mt19937_64 random(24);
    std::normal_distribution<double> normal;
    for (int round = 0; round < 2000 && !HasFatalFailure(); ++round) {
        const auto M1 = random_tensor<3>(random, 3);
        const double closeness = std::pow(10.0, -static_cast<double>(round % 18));
        S3 M2 = M1, found;
        for (double& m : M2) m += closeness * 1e-4 * normal(random);
        ASSERT_TRUE(minimum_metric(M1, M2, found));
        const long double error = 1e-14L + 1e-15L * test::sorted_eigenvalues(M1)[2] / test::sorted_eigenvalues(M1)[0];
        expect_close(found, intersected(M1, M2), error * test::largest_entry(M1));
    }
}

TEST(MinimumMetric, OfATensorAndAGreaterOneIsTheGreaterToTheBit)
{
    const S3 lesser(4, 1, 5, 0, 1, 6), greater(8, 2, 11, 0, 2, 13);
    S3 found;
    EXPECT_TRUE(minimum_metric(lesser, greater, found));
    EXPECT_EQ(found, greater);
    EXPECT_TRUE(minimum_metric(greater, lesser, found));
    EXPECT_EQ(found, greater);
}

// The closed form in 2-D knows nearly equal eigenvalues to 1e-8; the axes it must not exchange.
TEST(MinimumMetric, OfTensorsWithTheSameAxesIn2DKeepsTheAxes)
{
    const std::vector<double> sizes = {1, 0.5, 0.25, 0.2, 0.1, 0.05, 0.02, 0.01, 0.001};
    std::vector<double> entries;
    for (const double h : sizes) entries.push_back(1 / (h * h));
    for (const double a : entries)
        for (const double b : entries)
            for (const double c : entries)
                for (const double d : entries) {
                    S2 found;
                    ASSERT_TRUE(minimum_metric(diagonal<2>({a, b}), diagonal<2>({c, d}), found));
                    const std::string pair = "diag(" + std::to_string(a) + ", " + std::to_string(b) + ") and diag(" +
                                             std::to_string(c) + ", " + std::to_string(d) + ")";
                    EXPECT_NEAR(found(0, 0), std::max(a, c), 1e-7 * std::max(a, c)) << pair;
                    EXPECT_NEAR(found(1, 1), std::max(b, d), 1e-7 * std::max(b, d)) << pair;
                    EXPECT_EQ(found(0, 1), 0.0) << pair;
                }
}

// Anisotropy of 1e8: a ratio of 1e16 of the eigenvalues, in frames that double can still hold.
TEST(MinimumMetric, KeepsItsDigitsWhereTheRatioOfSizesIsGreat)
{
    for (const double ratio : {1e8, 1e12, 1e16, 1e24}) {
        S3 found;
        ASSERT_TRUE(minimum_metric(diagonal<3>({1, ratio, 1 / ratio}), diagonal<3>({4, 1, 9 / ratio}), found));
        EXPECT_DOUBLE_EQ(found(0, 0), 4);
        EXPECT_DOUBLE_EQ(found(1, 1), ratio);
        EXPECT_DOUBLE_EQ(found(2, 2), 9 / ratio);
    }
}

}  // namespace
