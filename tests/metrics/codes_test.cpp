#include <gtest/gtest.h>

#include "support/fault_pairs.h"
#include "support/matrices.h"

using namespace zeb::tessolv;
using namespace test;

// Every code of every function on fields, alone and against every other; nothing is changed on any of them.

namespace {

using tensors = dense2D<float>;

struct repair_call {
    tensors metrics = matrix_of<float>({{1, 0, 0}, {1, 0, 1}});
    tensors defaults = matrix_of<float>({{2, 0, 2}, {3, 0, 3}});
    dense1D<float> sizes{2, 2.0f};
};

const fault_table<repair_call> field_faults{
    {"no field", 0, [](repair_call& call) { call.metrics = {}; }},
    {"no columns", 0, [](repair_call& call) { call.metrics = filled(4, 0, 0.0f); }},
    {"no rows", 0, [](repair_call& call) { call.metrics = filled(0, 4, 0.0f); }},
    {"four rows", -1, [](repair_call& call) { call.metrics = filled(4, 2, 0.0f); }},
    {"two rows", -1, [](repair_call& call) { call.metrics = filled(2, 2, 0.0f); }},
};
const fault_table<repair_call> default_faults{
    {"defaults of six rows", -2, [](repair_call& call) { call.defaults = filled(6, 2, 1.0f); }},
    {"defaults of four rows", -2, [](repair_call& call) { call.defaults = filled(4, 2, 1.0f); }},
    {"no defaults", -2, [](repair_call& call) { call.defaults = {}; }},
};

TEST(OverwriteInvalidMetricsCodes, AreNothingToDoThenTheFieldThenTheDefaults)
{
    const auto by_metrics = [](repair_call& call) {
        const tensors before = call.metrics;
        const int code = overwrite_invalid_metrics(call.metrics, call.defaults);
        EXPECT_EQ(call.metrics, before);
        return code;
    };
    const auto by_sizes = [](repair_call& call) {
        const tensors before = call.metrics;
        const int code = overwrite_invalid_metrics(call.metrics, call.sizes);
        EXPECT_EQ(call.metrics, before);
        return code;
    };
    expect_codes_in_order(field_faults + default_faults, by_metrics);
    expect_codes_in_order(field_faults, by_sizes);
    repair_call good;
    EXPECT_EQ(overwrite_invalid_metrics(good.metrics, good.defaults), 0);
    EXPECT_EQ(good.metrics, matrix_of<float>({{2, 0, 2}, {1, 0, 1}}));
}

struct projection_call {
    tensors M3 = filled(6, 2, 1.0f);
    dense1D<float> sizes{2, 2.0f};
    dense2D<double> bases = points({{1, 0, 0, 0, 1, 0}, {1, 0, 0, 0, 1, 0}});
    tensors M2 = matrix_of<float>({{7, 8}});
};

const fault_table<projection_call> tensor_faults{
    {"tensors of the plane", -1, [](projection_call& call) { call.M3 = filled(3, 2, 1.0f); }},
    {"no tensors", -1, [](projection_call& call) { call.M3 = {}; }},
    {"columns without rows", -1, [](projection_call& call) { call.M3 = filled(0, 2, 1.0f); }},
};
const fault_table<projection_call> basis_faults{
    {"five rows", -2, [](projection_call& call) { call.bases = filled(5, 2, 1.0); }},
    {"a basis too few", -2, [](projection_call& call) { call.bases = filled(6, 1, 1.0); }},
    {"a basis too many", -2, [](projection_call& call) { call.bases = filled(6, 3, 1.0); }},
    {"no bases", -2, [](projection_call& call) { call.bases = {}; }},
};

TEST(MetricsToThePlaneCodes, AreTheTensorsAndThenTheBases)
{
    const auto of_tensors = [](projection_call& call) {
        const int code = metrics_aniso3d_to_aniso2d(call.M3, call.bases, call.M2);
        EXPECT_EQ(call.M2, matrix_of<float>({{7, 8}}));
        return code;
    };
    const auto of_sizes = [](projection_call& call) {
        const int code = metrics_iso_to_aniso2d(call.sizes, call.bases, call.M2);
        EXPECT_EQ(call.M2, matrix_of<float>({{7, 8}}));
        return code;
    };
    expect_codes_in_order(tensor_faults + basis_faults, of_tensors);
    expect_codes_in_order(basis_faults, of_sizes);
    projection_call good;
    EXPECT_EQ(metrics_aniso3d_to_aniso2d(good.M3, good.bases, good.M2), 0);
    EXPECT_EQ(metrics_iso_to_aniso2d(good.sizes, good.bases, good.M2), 0);
}

struct append_call {
    tensors A = matrix_of<float>({{1, 0, 1}});
    std::vector<tensors> range{matrix_of<float>({{2, 0, 2}, {3, 0, 3}}), matrix_of<float>({{4, 0, 4}})};
    dense1D<unsigned> columns = indices({1, 0});
    dense1D<float> sizes = list_of<float>({1}), more = list_of<float>({2, 3});
    bool reversed = false;
};

TEST(AppendFieldCodes, OfARangeAreItsOrderAndItsRows)
{
    const fault_table<append_call> table{
        {"last before first", -3, [](append_call& call) { call.reversed = true; }},
        {"another row in the first", -3, [](append_call& call) { call.range[0] = filled(6, 1, 1.0f); }},
        {"another row in the second", -3, [](append_call& call) { call.range[1] = filled(6, 1, 1.0f); }},
        {"rows of the field", -3, [](append_call& call) { call.A = filled(6, 0, 1.0f); }},
    };
    expect_codes_in_order(table, [](append_call& call) {
        const tensors before = call.A;
        const tensors* first = call.range.data();
        const int code = call.reversed ? append(call.A, first + 1, first) : append(call.A, first, first + 2);
        EXPECT_EQ(call.A, before);
        EXPECT_EQ(call.A.rows, before.rows);
        return code;
    });
    append_call good;
    EXPECT_EQ(append(good.A, good.range.data(), good.range.data() + 2), 0);
}

TEST(AppendFieldCodes, OfListedColumnsAreNothingToDoThenTheRowsThenTheIndices)
{
    const fault_table<append_call> table{
        {"nothing listed", 0, [](append_call& call) { call.columns.resize(0); }},
        {"another row", -1, [](append_call& call) { call.range[0].resize(6, 2, 1.0f); }},
        {"column 2 of 2", -3, [](append_call& call) { call.columns[0] = 2; }},
        {"a huge column", -3, [](append_call& call) { call.columns[1] = 0xFFFFFFFE; }},
        {"no column", -3, [](append_call& call) { call.columns[1] = N; }},
        {"none to take", -3, [](append_call& call) { call.range[0].resize(call.range[0].rows, 0); }},
    };
    expect_codes_in_order(table, [](append_call& call) {
        const tensors before = call.A;
        const int code = append(call.A, call.range[0], call.columns);
        EXPECT_EQ(call.A, before);
        return code;
    });
    append_call good;
    EXPECT_EQ(append(good.A, good.range[0], good.columns), 0);
}

TEST(AppendSizesCodes, OfListedEntriesAreNothingToDoAndThenTheIndices)
{
    const fault_table<append_call> table{
        {"nothing listed", 0, [](append_call& call) { call.columns.resize(0); }},
        {"entry 2 of 2", -3, [](append_call& call) { call.columns[0] = 2; }},
        {"no entry", -3, [](append_call& call) { call.columns[1] = N; }},
        {"none to take", -3, [](append_call& call) { call.more.resize(0); }},
    };
    expect_codes_in_order(table, [](append_call& call) {
        const int code = append(call.sizes, call.more, call.columns);
        EXPECT_EQ(call.sizes, list_of<float>({1}));
        return code;
    });
    append_call good;
    EXPECT_EQ(append(good.sizes, good.more, good.columns), 0);
}

}  // namespace
