#include <gtest/gtest.h>

#include <unistd.h>

#include <vector>

#include <tessolv/tessolv.h>

#include "support/failing_memory.h"
#include "support/matrices.h"
#include "support/temporary_file.h"

// Writers without memory. What a C stream needs comes from the C runtime and is not refused here.

using namespace zeb::tessolv;
using namespace test;

namespace {

struct sample {
    dense2D<double> pos = points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 1}});
    std::vector<dense2D<unsigned>> matrices = {columns({{0, 1, 2, 3}, {0, 1, 2, N}}), columns({{0, 1, 2, 4}}),
                                               columns({{0, 1, 2}})};
    dense1D<int> kinds = types({EL_FACE_MIX, EL_TETRA4, EL_TRIA3});
    dense2D<float> field = filled(3, 4, 1.0f);

    const dense2D<unsigned>* first() const { return matrices.data(); }
    const dense2D<unsigned>* last() const { return matrices.data() + matrices.size(); }
};

// -199 without memory; the file then is empty, or not there at all.
template <class Write>
void expect_no_memory(bool creates_its_file_first, Write write)
{
    const sample given;
    for_each_failure([&](attempt& attempt) {
        const temporary_file file;
        const char* name = file.name();
        const int code = attempt([&] { return write(name, given); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(access(name, F_OK) == 0, creates_its_file_first || !attempt.failed());
        EXPECT_EQ(file.bytes().empty(), attempt.failed());
    });
}

TEST(WritersWithoutMemory, LeaveAnEmptyVtkFile)
{
    expect_no_memory(true, [](const char* name, const sample& given) {
        return vtk_output(name, given.pos, given.first(), given.last(), given.kinds);
    });
    expect_no_memory(true, [](const char* name, const sample& given) {
        return vtk_output(name, given.pos, given.matrices[0], given.matrices[1], EL_FACE_MIX, EL_TETRA4);
    });
    expect_no_memory(true, [](const char* name, const sample& given) {
        return vtk_output(name, given.pos, given.matrices[0], EL_FACE_MIX);
    });
}

TEST(WritersWithoutMemory, LeaveNoMeditFile)
{
    expect_no_memory(false, [](const char* name, const sample& given) {
        return medit_output(name, given.pos, given.first(), given.last(), given.kinds);
    });
    expect_no_memory(false, [](const char* name, const sample& given) {
        return medit_output(name, given.pos, given.matrices[0], given.matrices[1], EL_FACE_MIX, EL_TETRA4);
    });
}

TEST(WritersWithoutMemory, LeaveAnEmptyTensorFile)
{
    expect_no_memory(true, [](const char* name, const sample& given) { return medit_tensor(name, given.field); });
}

TEST(WritersWithoutMemory, LeaveAnEmptyEnsightFile)
{
    expect_no_memory(true, [](const char* name, const sample& given) {
        return ensight_output(name, given.pos, given.first(), given.last(), given.kinds);
    });
}

TEST(WritersWithoutMemory, FindOtherFaultsFirst)
{
    const sample given;
    const failing_memory none(1, true);
    EXPECT_EQ(vtk_output("/", given.pos, given.first(), given.last(), given.kinds), -1);
    EXPECT_EQ(vtk_output("/dev/null", given.pos, given.matrices[1], EL_TRIA3), -3);
    EXPECT_EQ(medit_output("/", given.pos, given.matrices[1], EL_TRIA3), -3);
    EXPECT_EQ(ensight_output("/dev/null", given.pos, given.matrices[1], EL_TRIA3), -3);
    EXPECT_EQ(vtk_output("/dev/full", given.pos, given.matrices[1], EL_TETRA4), -199);
}

TEST(WritersWithoutMemory, GiveTheStreamOfTheHostNothing)
{
    const sample given;
    const dense1D<unsigned> cells = indices({2, 0, 1});
    const dense1D<unsigned> kinds = indices({3});
    for_each_failure([&](attempt& attempt) {
        const temporary_file file;
        std::FILE* f = std::fopen(file.name(), "w");
        const int code = attempt([&] { return vtk_output(f, given.pos, 1, cells, kinds); });
        std::fclose(f);
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(file.bytes().empty(), attempt.failed());
    });
}

TEST(WritersWithoutMemory, LeaveTheStreamsOfVtkAsTheyWere)
{
    const dense2D<unsigned> connect = filled(6, 50, 3u);
    for_each_failure([&](attempt& attempt) {
        unsigned count = 5;
        dense1D<unsigned> cells = indices({2, 8, 9});
        dense1D<unsigned> kinds = indices({3});
        const int code = attempt([&] { return vtk_convert(connect, EL_TRIA6, count, cells, kinds); });
        EXPECT_EQ(code, attempt.failed() ? -199 : 0);
        EXPECT_EQ(count, attempt.failed() ? 5u : 105u);
        EXPECT_EQ(cells.size, attempt.failed() ? 3u : 403u);
        EXPECT_EQ(cells.sub_vector(0, 3), indices({2, 8, 9}));
        EXPECT_EQ(kinds.size, attempt.failed() ? 1u : 101u);
        EXPECT_EQ(kinds[0], 3u);
    });
}

TEST(WritersWithoutMemory, RefuseTheTableOfReferencesWithACodeOfItsOwn)
{
    const sample given;
    for (const unsigned largest : {3u, 0xFFFFFFFEu}) {
        const dense1D<unsigned> refs = indices({largest, 1});
        const temporary_file file;
        const failing_memory first(1, false);
        EXPECT_EQ(medit_output(file.name(), given.pos, given.matrices[0], EL_FACE_MIX, refs), -6);
        EXPECT_NE(access(file.name(), F_OK), 0);
    }
    std::vector<int> codes;
    const dense1D<unsigned> refs = indices({3, 1});
    for_each_failure([&](attempt& attempt) {
        const temporary_file file;
        const char* name = file.name();
        codes.push_back(attempt([&] { return medit_output(name, given.pos, given.matrices[0], EL_FACE_MIX, refs); }));
        EXPECT_EQ(access(name, F_OK) == 0, !attempt.failed());
    });
    // In peace; then the table, the order, the blocks and the text refused, and nothing.
    EXPECT_EQ(codes, (std::vector<int>{0, -6, -199, -199, -199, 0, -6, -199, -199, -199, 0}));
}

TEST(WritersWithoutMemory, FindTheLengthOfReferencesFirst)
{
    const sample given;
    const dense1D<unsigned> refs = indices({3, 1, 1});
    const failing_memory none(1, true);
    EXPECT_EQ(medit_output("/", given.pos, given.matrices[0], EL_FACE_MIX, refs), -5);
}

}  // namespace
