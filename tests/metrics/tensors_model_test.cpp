#include <gtest/gtest.h>

#include <limits>

#include "metrics/reference.h"
#include "support/matrices.h"

using namespace zeb::tessolv;

// Tensors of random sizes and in random bases against sums of products in extended precision.

namespace {

using S2 = symmetric_fixed<double, 2>;
using S3 = symmetric_fixed<double, 3>;
using basis = matrix_fixed<double, 3, 2>;
constexpr double inf = std::numeric_limits<double>::infinity();

class random_arguments {
public:
    explicit random_arguments(unsigned seed) : random_(seed) {}

    // Small integers, so that zeros and equal numbers are common, and any others.
    double component()
    {
        const unsigned long sort = random_() % 4;
        if (sort == 0) return static_cast<double>(random_() % 5) - 2;
        return std::normal_distribution<double>()(random_) * (sort == 1 ? 1e6 : 1);
    }

    double size()
    {
        const double odd[] = {0, -1, inf, -inf, std::numeric_limits<double>::quiet_NaN(), 1e200, 1e-3, 3};
        return random_() % 3 == 0 ? odd[random_() % std::size(odd)] : std::abs(component());
    }

    basis plane()
    {
        basis B;
        for (double& b : B) b = component();
        return B;
    }

    template <std::size_t D>
    symmetric_fixed<double, D> tensor()
    {
        symmetric_fixed<double, D> M;
        for (double& m : M) m = component();
        return M;
    }

private:
    std::mt19937_64 random_;
};

// B' M B of M in full, and the sum of the magnitudes that rounding goes by.
void expect_projection(const S2& found, const S3& M, const basis& B)
{
    for (std::size_t i = 0; i < 2; ++i)
        for (std::size_t j = i; j < 2; ++j) {
            long double sum = 0, magnitude = 0;
            for (std::size_t k = 0; k < 3; ++k)
                for (std::size_t l = 0; l < 3; ++l) {
                    const long double product = static_cast<long double>(B(k, i)) * M(k, l) * B(l, j);
                    sum += product;
                    magnitude += std::abs(product);
                }
            ASSERT_LE(std::abs(found(i, j) - sum), 2e-15L * magnitude);
        }
}

TEST(MetricAniso3dToAniso2d, AgreesWithTheSumsOverAllProductsOnRandomTensors)
{
    random_arguments random(41);
    for (int round = 0; round < 3000 && !HasFatalFailure(); ++round) {
        const S3 M = random.tensor<3>();
        const basis B = random.plane();
        S2 found(9, 9, 9);
        metric_aniso3d_to_aniso2d(M, B, found);
        expect_projection(found, M, B);
    }
}

TEST(MetricIsoToAniso, AndItsFormInAPlaneAgreeWithTheScaledUnitTensorOnRandomSizes)
{
    random_arguments random(42);
    for (int round = 0; round < 3000 && !HasFatalFailure(); ++round) {
        const double h = random.size();
        const basis B = random.plane();
        const double mu = h > 0 ? 1 / (h * h) : 0;
        S2 flat(9, 9, 9), in_plane(9, 9, 9);
        S3 solid(9, 9, 9, 9, 9, 9);
        metric_iso_to_aniso(h, flat);
        metric_iso_to_aniso(h, solid);
        metric_iso_to_aniso2d(h, B, in_plane);
        ASSERT_EQ(flat, S2(mu, 0, mu)) << h;
        ASSERT_EQ(solid, S3(mu, 0, mu, 0, 0, mu)) << h;
        expect_projection(in_plane, solid, B);
    }
}

// The characteristic polynomial vanishes, and its coefficients are the sums and products of the values.
TEST(EigenPairs, AgreeWithExtendedPrecisionOnRandomTensors)
{
    random_arguments random(43);
    for (int round = 0; round < 3000 && !HasFatalFailure(); ++round) {
        const S2 flat = random.tensor<2>();
        const S3 solid = random.tensor<3>();
        vector_fixed<double, 2> two;
        vector_fixed<double, 3> three;
        eigen_pairs(flat, two, {});
        eigen_pairs(solid, three, {});
        const auto expected_two = test::sorted_eigenvalues(flat);
        const auto expected_three = test::sorted_eigenvalues(solid);
        // In the plane the closed form loses half of its digits where the two meet.
        const long double error_two = 4e-8L * test::largest_entry(flat);
        for (std::size_t k = 0; k < 2; ++k) ASSERT_LE(std::abs(two[k] - expected_two[k]), error_two) << round;
        const long double error_three = 3e-14L * test::largest_entry(solid);
        for (std::size_t k = 0; k < 3; ++k) ASSERT_LE(std::abs(three[k] - expected_three[k]), error_three) << round;
        ASSERT_LE(two[0], two[1]);
        ASSERT_TRUE(three[0] <= three[1] && three[1] <= three[2]);
    }
}

// Fields hold the tensors in single precision: each column is that of its own.
TEST(MetricsToThePlane, AgreeWithTheSingleTensorsOnRandomFields)
{
    random_arguments random(44);
    for (int round = 0; round < 2000 && !HasFatalFailure(); ++round) {
        const std::uint64_t n = static_cast<std::uint64_t>(round) % 6;
        dense2D<float> M3(6, n), found, found_iso;
        dense1D<float> sizes(n);
        dense2D<double> bases(6, n);
        dense2D<float> expected(3, n), expected_iso(3, n);
        for (std::uint64_t j = 0; j < n; ++j) {
            S3 M = random.tensor<3>();
            const basis B = random.plane();
            for (std::uint64_t i = 0; i < 6; ++i) {
                M3(i, j) = static_cast<float>(M[i]);
                M[i] = M3(i, j);
                bases(i, j) = B.data()[i];
            }
            sizes[j] = static_cast<float>(random.size());
            S2 projected, of_size;
            metric_aniso3d_to_aniso2d(M, B, projected);
            metric_iso_to_aniso2d(sizes[j], B, of_size);
            for (std::uint64_t i = 0; i < 3; ++i) {
                expected(i, j) = static_cast<float>(projected[i]);
                expected_iso(i, j) = static_cast<float>(of_size[i]);
            }
        }
        ASSERT_EQ(metrics_aniso3d_to_aniso2d(test::as_padded_view(M3, 7.f), test::as_padded_view(bases, 5.0), found),
                  0);
        ASSERT_EQ(found, expected);
        ASSERT_EQ(metrics_iso_to_aniso2d(sizes, test::as_padded_view(bases, 5.0), found_iso), 0);
        ASSERT_EQ(found_iso, expected_iso);
    }
}

}  // namespace
