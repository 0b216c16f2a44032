#include <gtest/gtest.h>

#include <cmath>

#include <tessolv/tessolv.h>

namespace {

TEST(Dspev, GivesEigenvaluesInAscendingOrderAndVectorsAsColumns)
{
    // The matrix 2 1 0 / 1 2 0 / 0 0 5 in packed upper storage.
    double packed[] = {2, 1, 2, 0, 0, 5};
    double w[3];
    double z[9];
    double work[9];
    long info = -1;
    EXPECT_EQ(zeb::lapack::dspev('V', 'U', 3, packed, w, z, 3, work, info), 0);
    EXPECT_EQ(info, 0);
    EXPECT_NEAR(w[0], 1, 1e-14);
    EXPECT_NEAR(w[1], 3, 1e-14);
    EXPECT_NEAR(w[2], 5, 1e-14);
    EXPECT_NEAR(z[0] * z[3] + z[1] * z[4] + z[2] * z[5], 0, 1e-14);
    EXPECT_NEAR(std::abs(z[0]), std::sqrt(0.5), 1e-14);
    EXPECT_NEAR(z[0] + z[1], 0, 1e-14);
    EXPECT_NEAR(std::abs(z[8]), 1, 1e-14);
}

TEST(Dspev, NeedsNoVectorsForEigenvaluesAlone)
{
    double packed[] = {1, 0, -4, 0, 0, 2};
    double w[3];
    double work[9];
    long info = -1;
    zeb::lapack::dspev('N', 'U', 3, packed, w, nullptr, 1, work, info);
    EXPECT_EQ(info, 0);
    EXPECT_NEAR(w[0], -4, 1e-14);
    EXPECT_NEAR(w[2], 2, 1e-14);
}

TEST(Dspev, ReportsAnInvalidArgumentInsteadOfStoppingTheProgram)
{
    double ap[6] = {};
    double w[3];
    double z[9];
    double work[9];
    long info = 0;
    EXPECT_EQ(zeb::lapack::dspev('x', 'U', 3, ap, w, z, 3, work, info), -1);
    EXPECT_EQ(info, -1);
    EXPECT_EQ(zeb::lapack::dspev('V', 'x', 3, ap, w, z, 3, work, info), -2);
    EXPECT_EQ(zeb::lapack::dspev('V', 'U', -1, ap, w, z, 3, work, info), -3);
    EXPECT_EQ(zeb::lapack::dspev('V', 'U', 1L << 40, ap, w, z, 1L << 40, work, info), -3);
    EXPECT_EQ(zeb::lapack::dspev('V', 'U', 3, nullptr, w, z, 3, work, info), -4);
    EXPECT_EQ(zeb::lapack::dspev('V', 'U', 3, ap, nullptr, z, 3, work, info), -5);
    EXPECT_EQ(zeb::lapack::dspev('V', 'U', 3, ap, w, nullptr, 3, work, info), -6);
    EXPECT_EQ(zeb::lapack::dspev('V', 'U', 3, ap, w, z, 2, work, info), -7);
    EXPECT_EQ(zeb::lapack::dspev('N', 'U', 3, ap, w, z, 0, work, info), -7);
    EXPECT_EQ(zeb::lapack::dspev('V', 'U', 3, ap, w, z, 3, nullptr, info), -8);
    EXPECT_EQ(zeb::lapack::dspev('V', 'L', 0, nullptr, nullptr, nullptr, 1, nullptr, info), 0);
}

}  // namespace
