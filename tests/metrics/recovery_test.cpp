#include <gtest/gtest.h>

#include "metrics/calls.h"
#include "support/recovery.h"

using namespace test;

class MetricsCall : public testing::TestWithParam<stored_call> {};

TEST_P(MetricsCall, SaysThatMemoryEndsAndSucceedsAfterwards)
{
    expect_recovery(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Memory, MetricsCall, testing::ValuesIn(metrics_calls),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Memory, RefusedCallsOnMetricsNeedNone)
{
    using namespace zeb::tessolv;
    dense2D<float> four = filled(4, 2, 0.0f), flat = metric_arguments::flat;
    const dense2D<float> solid = metric_arguments::solid;
    const dense2D<double> bases = metric_arguments::bases;
    const dense1D<unsigned> beyond = indices({4});
    dense1D<float> sizes = metric_arguments::sizes;
    attempt run(1, true);
    EXPECT_EQ(run([&] { return overwrite_invalid_metrics(four, sizes); }), -1);
    EXPECT_EQ(run([&] { return overwrite_invalid_metrics(four, four); }), -1);
    EXPECT_EQ(run([&] { return overwrite_invalid_metrics(flat, solid); }), -2);
    EXPECT_EQ(run([&] { return metrics_aniso3d_to_aniso2d(four, bases, flat); }), -1);
    EXPECT_EQ(run([&] { return metrics_iso_to_aniso2d(sizes, bases, flat); }), -2);
    EXPECT_EQ(run([&] { return append(flat, solid); }), -3);
    EXPECT_EQ(run([&] { return append(flat, &solid + 1, &solid); }), -3);
    EXPECT_EQ(run([&] { return append(flat, solid, beyond); }), -1);
    EXPECT_EQ(run([&] { return append(flat, flat, beyond); }), -3);
    EXPECT_EQ(run([&] { return append(sizes, &sizes + 1, &sizes); }), -3);
    EXPECT_EQ(run([&] { return append(sizes, sizes, beyond); }), -3);
    EXPECT_EQ(flat, metric_arguments::flat);
    EXPECT_EQ(sizes, metric_arguments::sizes);
}

TEST(Memory, SingleTensorsNeedNone)
{
    using namespace zeb::tessolv;
    using S2 = zeb::symmetric_fixed<double, 2>;
    using S3 = zeb::symmetric_fixed<double, 3>;
    const zeb::matrix_fixed<double, 3, 2> axes(1, 0, 0, 0, 1, 0);
    const S3 M(4, 1, 5, 0, 1, 6), other(5, -1, 4, 1, 0, 3);
    S2 flat;
    S3 solid;
    zeb::vector_fixed<double, 2> two;
    zeb::vector_fixed<double, 3> three;
    attempt run(1, true);
    run([&] {
        metric_iso_to_aniso(2, flat);
        metric_iso_to_aniso(2, solid);
        metric_iso_to_aniso2d(2, axes, flat);
        metric_aniso3d_to_aniso2d(M, axes, flat);
        eigen_pairs(flat, two, {});
        eigen_pairs(M, three, {});
    });
    EXPECT_FALSE(run.failed());
    EXPECT_TRUE(run([&] { return is_valid_metric(flat) && is_valid_metric(M); }));
    EXPECT_FALSE(run([&] { return is_valid_metric(S3(1, 0, 1e-23, 0, 0, 1e-25)); })) << "LAPACK decides";
    EXPECT_TRUE(run([&] { return minimum_metric(flat, flat, flat) && minimum_metric(M, other, solid); }));
    EXPECT_FALSE(run.failed());
}

// Defaults that share the buffer of the field are read as they were on entry: from a copy.
TEST(Memory, DefaultSizesOfTheFieldItselfNeedSome)
{
    using namespace zeb::tessolv;
    const auto before = matrix_of<float>({{0, 0, 0.5f}, {0, 0, 2}});
    for_each_failure([&](attempt& run) {
        dense2D<float> metrics = before;
        const auto sizes = metrics.col(0).sub_vector(1, 2);
        const int code = run([&] { return overwrite_invalid_metrics(metrics, sizes); });
        EXPECT_EQ(code, run.failed() ? -199 : 0);
        EXPECT_EQ(metrics, run.failed() ? before : matrix_of<float>({{0, 0, 0.5f}, {4, 0, 4}}));
    });
}
