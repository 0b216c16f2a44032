#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include <tessolv/tessolv.h>

#include "support/fault_pairs.h"
#include "support/matrices.h"
#include "support/open_files.h"
#include "support/temporary_file.h"

// What the writers of meshes have in common: their forms, and what they do about faults and about their file.

using namespace zeb::tessolv;
using namespace test;

namespace {

struct mesh_writer {
    const char* name;
    int (*of_a_range)(const char*, const dense2D<double>&, const dense2D<unsigned>*, const dense2D<unsigned>*,
                      const dense1D<int>&);
    int (*of_two)(const char*, const dense2D<double>&, const dense2D<unsigned>&, const dense2D<unsigned>&, element_type,
                  element_type);
    int (*of_one)(const char*, const dense2D<double>&, const dense2D<unsigned>&, element_type);
    bool checks_before_it_opens;
    bool knows_cells_and_nodes;  // looks at indices and refuses what it has no cell for
};

enum class form { range, two, one };
constexpr form every_form[] = {form::range, form::two, form::one};

struct writer_call {
    temporary_file file;
    const char* name = file.name();
    dense2D<double> pos = points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 1}});
    std::vector<dense2D<unsigned>> matrices = {columns({{0, 1, 2, 3}, {1, 2, 3, 4}}), columns({{0, 1, 2}})};
    dense1D<int> types = test::types({EL_TETRA4, EL_TRIA3});
    bool reversed = false;

    int run(const mesh_writer& writer, form how) const
    {
        const auto type = [this](std::uint64_t k) { return static_cast<element_type>(types[k]); };
        const dense2D<unsigned>* first = matrices.data();
        const dense2D<unsigned>* last = first + matrices.size();
        switch (how) {
            case form::one:
                return writer.of_one(name, pos, matrices[0], type(0));
            case form::two:
                return writer.of_two(name, pos, matrices[0], matrices[1], type(0), type(1));
            default:
                return writer.of_a_range(name, pos, reversed ? last : first, reversed ? first : last, types);
        }
    }
};

using faults = fault_table<writer_call>;

const faults file_faults{
    {"no file name", -1, [](writer_call& call) { call.name = nullptr; }},
    {"empty file name", -1, [](writer_call& call) { call.name = ""; }},
    {"directory", -1, [](writer_call& call) { call.name = "/"; }},
    {"missing directory", -1, [](writer_call& call) { call.name = "/no such directory/file"; }},
};
const faults row_faults{
    {"no coordinates", -2, [](writer_call& call) { call.pos = {}; }},
    {"four rows", -2, [](writer_call& call) { call.pos = filled(4, 5, 1.0); }},
};
const faults one_row{{"one row", -2, [](writer_call& call) { call.pos = filled(1, 5, 1.0); }}};
const faults range_faults{
    {"last before first", -4, [](writer_call& call) { call.reversed = true; }},
    {"too few types", -5, [](writer_call& call) { call.types.resize(call.types.size - 1); }},
    {"too many types", -5, [](writer_call& call) { call.types.resize(call.types.size + 1, EL_TRIA3); }},
};
const faults matrix_faults{
    {"wrong rows", -3,
     [](writer_call& call) {
         call.matrices[0] = columns({{0, 1, 2}});
     }},
    {"none in a pure matrix", -3, [](writer_call& call) { call.matrices[0](3, 1) = N; }},
    {"type 21", -3, [](writer_call& call) { call.types[0] = 21; }},
    {"type -1", -3, [](writer_call& call) { call.types[0] = -1; }},
    {"pyramid among solids", -3,
     [](writer_call& call) {
         call.matrices[0] = columns({{0, 1, 2, 3, 4, N, N, N}});
         call.types[0] = EL_SOLID_MIX;
     }},
};
const faults node_beyond{{"node 5 of 5", -3, [](writer_call& call) { call.matrices[0](2, 0) = 5; }},
                         {"a huge index", -3, [](writer_call& call) { call.matrices[0](0, 1) = 0xFFFFFFFE; }}};
const faults no_cell{{"node elements", -2, [](writer_call& call) {
                          call.matrices.push_back(columns({{0}}));
                          call.types.resize(call.types.size + 1, EL_NODE);
                      }}};

faults faults_of(const mesh_writer& writer, form how)
{
    const bool range = how == form::range, knowing = writer.knows_cells_and_nodes;
    const faults none;
    const faults checks = row_faults + (knowing ? one_row : none) + (range ? range_faults : none) + matrix_faults +
                          (knowing ? node_beyond : none) + (knowing && range ? no_cell : none);
    return writer.checks_before_it_opens ? checks + file_faults : file_faults + checks;
}

void PrintTo(const mesh_writer& writer, std::ostream* out)
{
    *out << writer.name;
}

class MeshWriter : public testing::TestWithParam<mesh_writer> {};

TEST_P(MeshWriter, FindsFaultsInTheirOrderAndLeavesNoFileOrAnEmptyOne)
{
    for (const form how : every_form) {
        SCOPED_TRACE(testing::Message() << "form " << static_cast<int>(how));
        expect_codes_in_order(faults_of(GetParam(), how), [&](const writer_call& call) {
            const int code = call.run(GetParam(), how);
            const bool opened = !GetParam().checks_before_it_opens && code != -1;
            EXPECT_EQ(std::filesystem::exists(call.file.name()), opened);
            EXPECT_EQ(call.file.bytes(), "");
            return code;
        });
        EXPECT_EQ(writer_call().run(GetParam(), how), 0);
    }
}

TEST_P(MeshWriter, EmptiesAnOlderFileOnlyIfItOpensItFirst)
{
    writer_call call;
    call.file.write("from before");
    call.types[0] = EL_HEXA8;
    EXPECT_EQ(call.run(GetParam(), form::one), -3);
    EXPECT_EQ(call.file.bytes(), GetParam().checks_before_it_opens ? "from before" : "");
}

TEST_P(MeshWriter, ReplacesALongerFile)
{
    const writer_call fresh, old;
    old.file.write(std::string(10000, 'x'));
    EXPECT_EQ(fresh.run(GetParam(), form::range), 0);
    EXPECT_EQ(old.run(GetParam(), form::range), 0);
    EXPECT_NE(fresh.file.bytes(), "");
    EXPECT_EQ(old.file.bytes(), fresh.file.bytes());
}

TEST_P(MeshWriter, WritesOneAndTwoMatricesAsItWritesARange)
{
    const writer_call range, two, one;
    writer_call range_of_one;
    range_of_one.matrices.pop_back();
    range_of_one.types.resize(1);
    EXPECT_EQ(range.run(GetParam(), form::range), 0);
    EXPECT_EQ(two.run(GetParam(), form::two), 0);
    EXPECT_EQ(two.file.bytes(), range.file.bytes());
    EXPECT_EQ(range_of_one.run(GetParam(), form::range), 0);
    EXPECT_EQ(one.run(GetParam(), form::one), 0);
    EXPECT_EQ(one.file.bytes(), range_of_one.file.bytes());
    EXPECT_NE(one.file.bytes(), two.file.bytes());
}

TEST_P(MeshWriter, ReportsAFullDisk)
{
    writer_call small, large;
    small.name = large.name = "/dev/full";
    large.pos = filled(3, 20000, 1.0);
    for (const form how : every_form) {
        EXPECT_EQ(small.run(GetParam(), how), -1) << "found when the file is closed";
        EXPECT_EQ(large.run(GetParam(), how), -1);
    }
}

TEST_P(MeshWriter, ClosesItsFileOnEveryReturn)
{
    const auto before = open_files();
    for (const auto& fault : faults_of(GetParam(), form::range)) {
        writer_call call;
        fault.put_into(call);
        call.run(GetParam(), form::range);
    }
    writer_call good, full;
    full.name = "/dev/full";
    EXPECT_EQ(good.run(GetParam(), form::range), 0);
    EXPECT_EQ(full.run(GetParam(), form::range), -1);
    EXPECT_EQ(open_files(), before);
}

TEST_P(MeshWriter, TouchesNoReferenceCounterOfTheHost)
{
    const writer_call call;
    for (const form how : every_form) EXPECT_EQ(call.run(GetParam(), how), 0);
    for (const auto& connect : call.matrices) EXPECT_EQ(connect.buffer->ref_count, 1);
    EXPECT_EQ(call.types.buffer->ref_count, 1);
    EXPECT_EQ(call.pos.buffer->ref_count, 1);
}

INSTANTIATE_TEST_SUITE_P(InEveryFormat, MeshWriter,
                         testing::Values(mesh_writer{"vtk", vtk_output, vtk_output, vtk_output, false, true},
                                         mesh_writer{"medit", medit_output, medit_output, medit_output, true, false},
                                         mesh_writer{"ensight", ensight_output, ensight_output, ensight_output, false,
                                                     false}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
