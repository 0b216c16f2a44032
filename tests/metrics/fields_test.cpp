#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <random>

#include <sys/mman.h>

#include "support/matrices.h"

using namespace zeb::tessolv;
using test::filled;
using test::indices;
using test::points;

namespace {

constexpr float inf = std::numeric_limits<float>::infinity();
constexpr float nan_value = std::numeric_limits<float>::quiet_NaN();

using field = dense1D<float>;
using tensor_field = dense2D<float>;

field sizes(const std::vector<float>& values)
{
    return test::list_of(values);
}
tensor_field tensors(const std::vector<std::vector<float>>& columns)
{
    return test::matrix_of(columns);
}

// NaN equals NaN here.
void expect_same(const field& found, const field& expected)
{
    ASSERT_EQ(found.size, expected.size);
    for (std::uint64_t i = 0; i < found.size; ++i)
        EXPECT_TRUE(found[i] == expected[i] || (std::isnan(found[i]) && std::isnan(expected[i])))
            << "entry " << i << " is " << found[i];
}

const std::vector<float> flat_unit{1, 0, 1}, flat_bad{1, 0, 0}, solid_unit{1, 0, 1, 0, 0, 1},
    solid_bad{1, 0, 1, 0, 0, -1};

TEST(AreValidMetrics, OfSizesAreTrueForNoneAndFalseForZeroNegativeNaNAndInfinity)
{
    EXPECT_TRUE(are_valid_metrics(field()));
    EXPECT_TRUE(are_valid_metrics(sizes({1, 1e-45f, 3e38f})));
    EXPECT_FALSE(are_valid_metrics(sizes({1, 0})));
    EXPECT_FALSE(are_valid_metrics(sizes({1, -0.0f})));
    EXPECT_FALSE(are_valid_metrics(sizes({1, -1})));
    EXPECT_FALSE(are_valid_metrics(sizes({1, nan_value})));
    EXPECT_FALSE(are_valid_metrics(sizes({inf, 1})));
}

TEST(AreValidMetrics, OfListedSizes)
{
    const auto some = sizes({1, 0, 2});
    EXPECT_TRUE(are_valid_metrics(indices({}), some));
    EXPECT_TRUE(are_valid_metrics(indices({}), field()));
    EXPECT_TRUE(are_valid_metrics(indices({0, 2, 2}), some));
    EXPECT_FALSE(are_valid_metrics(indices({0, 1}), some));
    EXPECT_FALSE(are_valid_metrics(indices({0, 3}), some));
    EXPECT_FALSE(are_valid_metrics(indices({0xFFFFFFFE}), some));
    EXPECT_FALSE(are_valid_metrics(indices({test::N}), some));
    EXPECT_FALSE(are_valid_metrics(indices({0}), field()));
}

TEST(AreValidMetrics, OfTensors)
{
    EXPECT_TRUE(are_valid_metrics(tensors({flat_unit, {1, 0, 1e-23f}})));
    EXPECT_FALSE(are_valid_metrics(tensors({flat_unit, {1, 0, 1e-25f}})));
    EXPECT_FALSE(are_valid_metrics(tensors({flat_bad, flat_unit})));
    EXPECT_TRUE(are_valid_metrics(tensors({solid_unit, {2, 1, 2, 0, 1, 2}})));
    EXPECT_FALSE(are_valid_metrics(tensors({solid_unit, solid_bad})));
    EXPECT_FALSE(are_valid_metrics(tensors({{1, 0, nan_value}})));
    EXPECT_FALSE(are_valid_metrics(tensors({{1, 0, 1, 0, 0, inf}})));
}

// The columns are looked at several at a time, and once more where a first look leaves them open.
TEST(AreValidMetrics, OfTensorsAreFalseForABadOneInAnyPlace)
{
    const std::vector<float> sound = {2, 1, 2, 0, 1, 2}, long_and_thin = {1, 0, 1e-7f, 0, 0, 1e-7f};
    for (std::size_t columns = 1; columns <= 9; ++columns) {
        for (std::size_t place = 0; place < columns; ++place) {
            std::vector<std::vector<float>> all(columns, sound);
            all[place] = long_and_thin;
            EXPECT_TRUE(are_valid_metrics(tensors(all))) << place << " of " << columns;
            for (const std::vector<float>& bad : {std::vector<float>{2, 3, 2, 0, 1, 2},
                                                  {-1, 0, -1, 0, 0, 1},
                                                  {1, 0, 1, 0, 0, 0},
                                                  {1, 0, 1, 0, 0, nan_value},
                                                  {inf, 0, 1, 0, 0, 1}}) {
                all[place] = bad;
                EXPECT_FALSE(are_valid_metrics(tensors(all))) << place << " of " << columns;
            }
        }
    }
}

TEST(AreValidMetrics, OfTensorsAreFalseForFourRowsAndTrueForThreeOrSixWithoutColumns)
{
    EXPECT_TRUE(are_valid_metrics(filled(3, 0, 0.f)));
    EXPECT_TRUE(are_valid_metrics(filled(6, 0, 0.f)));
    EXPECT_FALSE(are_valid_metrics(tensor_field()));
    EXPECT_FALSE(are_valid_metrics(filled(4, 0, 0.f)));
    EXPECT_FALSE(are_valid_metrics(filled(0, 2, 0.f)));
    EXPECT_FALSE(are_valid_metrics(filled(4, 2, 1.f)));
    EXPECT_FALSE(are_valid_metrics(filled(1, 2, 1.f)));
    EXPECT_FALSE(are_valid_metrics(filled(9, 2, 1.f)));
}

TEST(AreValidMetrics, OfListedTensors)
{
    const auto flat = tensors({flat_unit, flat_bad, flat_unit});
    const auto solid = tensors({solid_bad, solid_unit});
    EXPECT_TRUE(are_valid_metrics(indices({0, 2, 0}), flat));
    EXPECT_FALSE(are_valid_metrics(indices({0, 1}), flat));
    EXPECT_FALSE(are_valid_metrics(indices({0, 3}), flat));
    EXPECT_FALSE(are_valid_metrics(indices({test::N}), flat));
    EXPECT_TRUE(are_valid_metrics(indices({1}), solid));
    EXPECT_FALSE(are_valid_metrics(indices({1, 0}), solid));
    EXPECT_FALSE(are_valid_metrics(indices({0}), filled(3, 0, 0.f)));
    EXPECT_FALSE(are_valid_metrics(indices({0}), filled(4, 2, 1.f)));
}

TEST(AreValidMetrics, OfAnEmptyListOfTensors)
{
    EXPECT_TRUE(are_valid_metrics(indices({}), tensor_field()));
    EXPECT_TRUE(are_valid_metrics(indices({}), filled(4, 0, 0.f)));
    EXPECT_TRUE(are_valid_metrics(indices({}), filled(0, 4, 0.f)));
    EXPECT_TRUE(are_valid_metrics(indices({}), tensors({flat_bad})));
    EXPECT_TRUE(are_valid_metrics(indices({}), tensors({solid_bad})));
    EXPECT_FALSE(are_valid_metrics(indices({}), filled(4, 2, 1.f)));
}

TEST(AreValidMetrics, InViews)
{
    EXPECT_TRUE(are_valid_metrics(test::as_padded_view(tensors({solid_unit, solid_unit}), nan_value)));
    EXPECT_FALSE(are_valid_metrics(test::as_padded_view(tensors({flat_unit, flat_bad}), 1.f)));
    EXPECT_TRUE(are_valid_metrics(sizes({0, 1, 2, 0}).sub_vector(1, 2)));
}

TEST(OverwriteInvalidMetrics, OfSizesLeavesNaNAndInfinity)
{
    auto some = sizes({0, nan_value, inf, -1, -0.0f, -inf, 5});
    EXPECT_EQ(overwrite_invalid_metrics(some, sizes({2, 2, 2, 2, 2, 2, 2})), 0);
    expect_same(some, sizes({2, nan_value, inf, 2, 2, 2, 5}));
    some = sizes({0, nan_value});
    EXPECT_EQ(overwrite_invalid_metrics(some, sizes({2, 2})), 0);
    expect_same(some, sizes({2, nan_value}));
}

TEST(OverwriteInvalidMetrics, OfSizesTakesPositiveDefaultsOnly)
{
    auto some = sizes({0, -1, -2, -3, -4, -5});
    EXPECT_EQ(overwrite_invalid_metrics(some, sizes({0, -7, nan_value, inf})), 0);
    expect_same(some, sizes({0, -1, -2, inf, -4, -5}));
    EXPECT_EQ(overwrite_invalid_metrics(some, sizes({1, 1, 1, 1, 1, 1, 1, 1})), 0);
    expect_same(some, sizes({1, 1, 1, inf, 1, 1}));
    auto nothing = field();
    EXPECT_EQ(overwrite_invalid_metrics(nothing, some), 0);
    EXPECT_EQ(nothing.size, 0u);
    EXPECT_EQ(overwrite_invalid_metrics(some, field()), 0);
}

TEST(OverwriteInvalidMetrics, ByDefaultSizes)
{
    auto flat = tensors({{1, 0, 1e-25f}, {3, 1, 3}, {0, 0, 0}, {nan_value, 0, 1}, {0, 0, 0}});
    EXPECT_EQ(overwrite_invalid_metrics(flat, sizes({2, 2, 0, 0.5f})), 0);
    EXPECT_EQ(flat, tensors({{0.25f, 0, 0.25f}, {3, 1, 3}, {0, 0, 0}, {4, 0, 4}, {0, 0, 0}}));

    auto solid = tensors({{1, 2, 1, 2, 2, 1}, {2, 1, 2, 0, 1, 2}, {0, 0, 0, 0, 0, 0}, {-1, 0, 1, 0, 0, 1}});
    EXPECT_EQ(overwrite_invalid_metrics(solid, sizes({2, 2, nan_value, -2, 7, 7})), 0);
    EXPECT_EQ(solid,
              tensors({{0.25f, 0, 0.25f, 0, 0, 0.25f}, {2, 1, 2, 0, 1, 2}, {0, 0, 0, 0, 0, 0}, {-1, 0, 1, 0, 0, 1}}));
}

TEST(OverwriteInvalidMetrics, ByDefaultSizesComputesInDoublePrecisionAndRoundsOnce)
{
    auto flat = tensors({flat_bad, flat_bad, flat_bad});
    EXPECT_EQ(overwrite_invalid_metrics(flat, sizes({0.1f, 1e-30f, inf})), 0);
    const float mu = static_cast<float>(1.0 / (static_cast<double>(0.1f) * static_cast<double>(0.1f)));
    EXPECT_EQ(flat, tensors({{mu, 0, mu}, {inf, 0, inf}, {0, 0, 0}}));
}

TEST(OverwriteInvalidMetrics, ByDefaultMetrics)
{
    auto flat = tensors({flat_bad, {5, 1, 5}, flat_bad, flat_bad});
    EXPECT_EQ(overwrite_invalid_metrics(flat, tensors({{2, 1, 2}, {3, 0, 3}, {1, 2, 1}})), 0);
    EXPECT_EQ(flat, tensors({{2, 1, 2}, {5, 1, 5}, flat_bad, flat_bad}));

    auto solid = tensors({solid_bad, solid_bad});
    EXPECT_EQ(overwrite_invalid_metrics(solid, tensors({solid_bad, {2, 1, 2, 0, 1, 2}, solid_unit})), 0);
    EXPECT_EQ(solid, tensors({solid_bad, {2, 1, 2, 0, 1, 2}}));
}

TEST(OverwriteInvalidMetrics, OfFourRowsIsRefused)
{
    auto metrics = filled(4, 2, 0.f);
    EXPECT_EQ(overwrite_invalid_metrics(metrics, sizes({2, 2})), -1);
    EXPECT_EQ(overwrite_invalid_metrics(metrics, filled(4, 2, 1.f)), -1);
    EXPECT_EQ(metrics, filled(4, 2, 0.f));
}

TEST(OverwriteInvalidMetrics, OfThreeRowsByDefaultsOfSixIsRefusedAndChangesNothing)
{
    auto flat = tensors({flat_bad}), solid = tensors({solid_bad});
    EXPECT_EQ(overwrite_invalid_metrics(flat, tensors({solid_unit})), -2);
    EXPECT_EQ(overwrite_invalid_metrics(solid, tensors({flat_unit})), -2);
    EXPECT_EQ(flat, tensors({flat_bad}));
    EXPECT_EQ(solid, tensors({solid_bad}));
    EXPECT_EQ(overwrite_invalid_metrics(flat, filled(3, 0, 1.f)), 0);
    EXPECT_EQ(flat, tensors({flat_bad}));
}

TEST(OverwriteInvalidMetrics, NeverTakesADefaultThatIsInvalidItself)
{
    auto flat = tensors({flat_bad, {1, 0, nan_value}}), solid = tensors({solid_bad});
    EXPECT_EQ(overwrite_invalid_metrics(flat, tensors({{1, 2, 1}, {7, 0, 0}})), 0);
    EXPECT_EQ(overwrite_invalid_metrics(solid, tensors({{2, 3, 2, 0, 0, 1}})), 0);
    EXPECT_EQ(flat.sub_matrix(0, 0, 3, 1), tensors({flat_bad}));
    EXPECT_TRUE(std::isnan(flat(2, 1)));
    EXPECT_EQ(solid, tensors({solid_bad}));
}

TEST(OverwriteInvalidMetrics, OfATensorOfRatio1e25ByADefaultSizeIsIsotropic)
{
    auto flat = tensors({{1, 0, 1e-25f}});
    EXPECT_EQ(overwrite_invalid_metrics(flat, sizes({2})), 0);
    EXPECT_EQ(flat, tensors({{0.25f, 0, 0.25f}}));
}

TEST(OverwriteInvalidMetrics, WritesThroughViewsAndSharedBuffers)
{
    auto view = test::as_padded_view(tensors({flat_bad, flat_unit}), 9.f);
    tensor_field shared;
    shared.shallow_copy(view);
    EXPECT_EQ(overwrite_invalid_metrics(view, sizes({2, 2})), 0);
    EXPECT_EQ(shared, tensors({{0.25f, 0, 0.25f}, flat_unit}));

    auto some = sizes({0, 0, 0});
    auto middle = some.sub_vector(1, 1);
    EXPECT_EQ(overwrite_invalid_metrics(middle, sizes({3})), 0);
    EXPECT_EQ(some, sizes({0, 3, 0}));
}

// Puts the buffer record of a container where writing to it ends the program, as long as this lives.
template <class Container>
class locked_record {
public:
    explicit locked_record(Container& container) : container_(container), own_(container.buffer)
    {
        page_ = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (page_ == MAP_FAILED) throw std::bad_alloc();
        container.buffer = new (page_) zeb::dense_buffer<float>(*own_);
        mprotect(page_, size, PROT_READ);
    }
    locked_record(const locked_record&) = delete;
    locked_record& operator=(const locked_record&) = delete;
    ~locked_record()
    {
        container_.buffer = own_;
        munmap(page_, size);
    }

private:
    static constexpr std::size_t size = 4096;
    Container& container_;
    zeb::dense_buffer<float>* own_;
    void* page_;
};

TEST(OverwriteInvalidMetrics, LeavesTheReferenceCountersOfDefaultsToOtherThreads)
{
    field default_sizes = sizes({2, 2});
    tensor_field default_metrics = tensors({{4, 0, 4}, {9, 0, 9}});
    const locked_record locked_sizes(default_sizes);
    const locked_record locked_metrics(default_metrics);

    field isotropic = sizes({0, 3});
    EXPECT_EQ(overwrite_invalid_metrics(isotropic, default_sizes), 0);
    expect_same(isotropic, sizes({2, 3}));
    tensor_field by_sizes = tensors({{1, 0, 1}, {0, 0, 0}});
    EXPECT_EQ(overwrite_invalid_metrics(by_sizes, default_sizes), 0);
    EXPECT_EQ(by_sizes, tensors({{1, 0, 1}, {0.25f, 0, 0.25f}}));
    tensor_field by_metrics = tensors({{1, 0, 1}, {0, 0, 0}});
    EXPECT_EQ(overwrite_invalid_metrics(by_metrics, default_metrics), 0);
    EXPECT_EQ(by_metrics, tensors({{1, 0, 1}, {9, 0, 9}}));
}

TEST(OverwriteInvalidMetrics, ReadsDefaultsAsTheyWereOnEntry)
{
    auto some = sizes({5, 0, 0, 0});
    auto later = some.sub_vector(1, 3);
    EXPECT_EQ(overwrite_invalid_metrics(later, some.sub_vector(0, 3)), 0);
    EXPECT_EQ(some, sizes({5, 5, 0, 0}));
    EXPECT_EQ(overwrite_invalid_metrics(some, some), 0);
    EXPECT_EQ(some, sizes({5, 5, 0, 0}));

    auto metrics = tensors({flat_unit, flat_bad, flat_bad});
    auto tail = metrics.sub_matrix(0, 1, 3, 2);
    EXPECT_EQ(overwrite_invalid_metrics(tail, metrics.sub_matrix(0, 0, 3, 2)), 0);
    EXPECT_EQ(metrics, tensors({flat_unit, flat_unit, flat_bad}));

    metrics = tensors({{0, 0, 0.5f}, {0, 0, 2}});  // (0, 0.5) and (2, ...) as sizes of its own columns
    EXPECT_EQ(overwrite_invalid_metrics(metrics, metrics.col(0).sub_vector(1, 2)), 0);
    EXPECT_EQ(metrics, tensors({{0, 0, 0.5f}, {4, 0, 4}}));
}

// Bases: the first two axes; the second and twice the third; neither orthogonal nor of unit length.
const dense2D<double> bases = points({{1, 0, 0, 0, 1, 0}, {0, 1, 0, 0, 0, 2}, {1, 1, 0, 0, 1, -1}});

TEST(MetricsAniso3dToAniso2d, ProjectsEveryTensorByItsBasis)
{
    tensor_field M2;
    const auto M3 = tensors({{1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6}});
    EXPECT_EQ(metrics_aniso3d_to_aniso2d(M3, bases, M2), 0);
    // third: M b0 = (3, 5, 9), M b1 = (-2, -2, -1)
    EXPECT_EQ(M2, tensors({{1, 2, 3}, {3, 10, 24}, {8, -4, -1}}));
    EXPECT_EQ(metrics_aniso3d_to_aniso2d(test::as_padded_view(M3, 7.f), test::as_padded_view(bases, 5.0), M2), 0);
    EXPECT_EQ(M2, tensors({{1, 2, 3}, {3, 10, 24}, {8, -4, -1}}));
    EXPECT_EQ(M2.buffer->ref_count, 1);
}

TEST(MetricsIsoToAniso2d, ScalesTheGramMatrixOfEveryBasis)
{
    tensor_field M2 = filled(7, 9, 4.f);
    EXPECT_EQ(metrics_iso_to_aniso2d(sizes({2, 0.5f, 1}), test::as_padded_view(bases, 5.0), M2), 0);
    EXPECT_EQ(M2, tensors({{0.25f, 0, 0.25f}, {4, 0, 16}, {2, 1, 2}}));
    EXPECT_EQ(metrics_iso_to_aniso2d(sizes({0, -1, nan_value}), bases, M2), 0);
    EXPECT_EQ(M2, filled(3, 3, 0.f));
    EXPECT_EQ(metrics_iso_to_aniso2d(sizes({inf, 1e-30f, 1}), bases, M2), 0);
    EXPECT_EQ(M2, tensors({{0, 0, 0}, {inf, 0, inf}, {2, 1, 2}}));
    EXPECT_EQ(M2.buffer->ref_count, 1);
}

TEST(MetricsIsoToAniso2d, AndTheOtherFormMakeEmptyFieldsOfThreeRows)
{
    tensor_field M2 = filled(3, 2, 4.f);
    EXPECT_EQ(metrics_iso_to_aniso2d(field(), filled(6, 0, 0.0), M2), 0);
    EXPECT_EQ(M2.rows, 3u);
    EXPECT_EQ(M2.cols, 0u);
    M2 = filled(3, 2, 4.f);
    EXPECT_EQ(metrics_aniso3d_to_aniso2d(filled(6, 0, 0.f), filled(6, 0, 0.0), M2), 0);
    EXPECT_EQ(M2.rows, 3u);
    EXPECT_EQ(M2.cols, 0u);
}

TEST(MetricsAniso3dToAniso2d, MayReplaceItsInput)
{
    auto M = tensors({{1, 2, 3, 4, 5, 6}, {1, 0, 1, 0, 0, 9}});
    tensor_field shared;
    shared.shallow_copy(M);
    EXPECT_EQ(metrics_aniso3d_to_aniso2d(M, bases.sub_matrix(0, 0, 6, 2), M), 0);
    EXPECT_EQ(M, tensors({{1, 2, 3}, {1, 0, 36}}));
    EXPECT_EQ(shared, tensors({{1, 2, 3, 4, 5, 6}, {1, 0, 1, 0, 0, 9}}));
}

TEST(MetricsIsoToAniso2d, MayReplaceTheMatrixThatHoldsItsSizes)
{
    auto M = tensors({{2, 0.5f, 1}});
    EXPECT_EQ(metrics_iso_to_aniso2d(M.col(0), bases, M), 0);
    EXPECT_EQ(M, tensors({{0.25f, 0, 0.25f}, {4, 0, 16}, {2, 1, 2}}));
}

// Random fields against the rules column by column, with LAPACK called here.

bool is_valid_in_double(const tensor_field& metrics, std::uint64_t j)
{
    const bool flat = metrics.rows == 3;
    double ap[6], values[3], work[9];
    for (std::uint64_t i = 0; i < metrics.rows; ++i) {
        ap[i] = metrics(i, j);
        if (!std::isfinite(ap[i])) return false;
    }
    long info = 0;
    zeb::lapack::dspev('N', 'U', flat ? 2 : 3, ap, values, nullptr, 1, work, info);
    return values[0] > 0 && values[0] > 1e-24 * values[flat ? 1 : 2];
}

// Small integers, so that singular and indefinite tensors are common; some entries are no numbers.
tensor_field random_field(std::mt19937& random, std::uint64_t rows)
{
    tensor_field metrics(rows, random() % 6);
    for (std::uint64_t j = 0; j < metrics.cols; ++j) {
        for (std::uint64_t i = 0; i < rows; ++i) {
            const bool on_diagonal = i == 0 || i == 2 || i == 5;
            metrics(i, j) = static_cast<float>(random() % 4) - (on_diagonal ? 0.f : 1.f);
            if (random() % 60 == 0) metrics(i, j) = random() % 2 ? nan_value : inf;
        }
    }
    return metrics;
}

bool same_bits(const tensor_field& a, const tensor_field& b)
{
    if (a.rows != b.rows || a.cols != b.cols) return false;
    for (std::uint64_t j = 0; j < a.cols; ++j)
        if (std::memcmp(&a(0, j), &b(0, j), a.rows * sizeof(float)) != 0) return false;
    return true;
}

TEST(AreValidMetrics, AgreesWithTheRuleOnRandomFields)
{
    std::mt19937 random(31);
    int valid_fields = 0;
    for (int round = 0; round < 4000; ++round) {
        const auto metrics = random_field(random, random() % 2 ? 3 : 6);
        dense1D<unsigned> nodes(random() % 4);
        bool all = true, listed = true;
        for (unsigned& i : nodes) {
            i = static_cast<unsigned>(random() % (metrics.cols + 1));
            listed = listed && i < metrics.cols && is_valid_in_double(metrics, i);
        }
        for (std::uint64_t j = 0; j < metrics.cols; ++j) all = all && is_valid_in_double(metrics, j);
        ASSERT_EQ(are_valid_metrics(metrics), all) << testing::PrintToString(metrics);
        ASSERT_EQ(are_valid_metrics(nodes, test::as_padded_view(metrics, 8.f)), listed);
        valid_fields += all && metrics.cols > 1;
    }
    EXPECT_GT(valid_fields, 50);
}

TEST(OverwriteInvalidMetrics, AgreesWithTheRuleOnRandomFields)
{
    std::mt19937 random(32);
    for (int round = 0; round < 4000; ++round) {
        const std::uint64_t rows = random() % 2 ? 3 : 6;
        const auto metrics = random_field(random, rows), defaults = random_field(random, rows);
        field default_sizes(random() % 6);
        for (float& h : default_sizes) h = static_cast<float>(random() % 4) - 1.f;

        auto by_sizes = metrics, by_metrics = metrics;
        for (std::uint64_t j = 0; j < metrics.cols; ++j) {
            if (is_valid_in_double(metrics, j)) continue;
            if (j < default_sizes.size && default_sizes[j] > 0)
                for (std::uint64_t i = 0; i < rows; ++i)
                    by_sizes(i, j) = i == 0 || i == 2 || i == 5 ? 1 / (default_sizes[j] * default_sizes[j]) : 0;
            if (j < defaults.cols && is_valid_in_double(defaults, j))
                for (std::uint64_t i = 0; i < rows; ++i) by_metrics(i, j) = defaults(i, j);
        }
        auto found = test::as_padded_view(metrics, 3.f);
        ASSERT_EQ(overwrite_invalid_metrics(found, default_sizes), 0);
        ASSERT_TRUE(same_bits(found, by_sizes)) << testing::PrintToString(metrics);
        found = test::as_padded_view(metrics, 3.f);
        ASSERT_EQ(overwrite_invalid_metrics(found, test::as_padded_view(defaults, 3.f)), 0);
        ASSERT_TRUE(same_bits(found, by_metrics)) << testing::PrintToString(metrics);
    }
}

}  // namespace
