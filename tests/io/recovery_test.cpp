#include <gtest/gtest.h>

#include "io/calls.h"
#include "support/recovery.h"

using namespace test;

class FileCall : public testing::TestWithParam<stored_call> {};

TEST_P(FileCall, SaysThatMemoryEndsAndSucceedsAfterwards)
{
    expect_recovery(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Memory, FileCall, testing::ValuesIn(io_calls),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Memory, RefusedFileCallsNeedNone)
{
    using namespace zeb::tessolv;
    const dense2D<double> pos = file_arguments::pos, four = filled(4, 5, 0.0);
    const dense2D<unsigned> bad = columns({{0, 9, N}}), good = file_arguments::trias;
    const dense2D<float> field = filled(4, 2, 0.0f);
    dense1D<unsigned> cells = indices({1}), kinds = indices({2}), no_refs;
    unsigned count = 3;
    const char* nowhere = "/no such directory/file";
    attempt run(1, true);
    EXPECT_EQ(run([&] { return vtk_convert(bad, zeb::EL_TRIA3, count, cells, kinds); }), -1);
    EXPECT_EQ(run([&] { return vtk_convert(bad, zeb::EL_NODE, count, cells, kinds); }), -2);
    EXPECT_EQ(run([&] { return vtk_output(static_cast<std::FILE*>(nullptr), pos, 0, cells, kinds); }), -1);
    EXPECT_EQ(run([&] { return medit_output(nowhere, pos, good, zeb::EL_TRIA3, no_refs); }), -5);
    EXPECT_EQ(run([&] { return medit_tensor("/dev/null", field); }), -2);
    EXPECT_EQ(run([&] { return STL_output(nowhere, pos, good, true); }), -1);
    EXPECT_EQ(run([&] { return STL_output("/dev/null", four, bad, true); }), -2);
    EXPECT_EQ(run([&] { return STL_output("/dev/null", pos, bad, false); }), -3);
    EXPECT_EQ(run([&] { return WavefrontOBJ_output("/dev/null", four, {}, {}, bad, {}); }), -2);
    EXPECT_EQ(run([&] { return WavefrontOBJ_output("/dev/null", pos, four, {}, bad, {}); }), -3);
    EXPECT_EQ(run([&] { return WavefrontOBJ_output("/dev/null", pos, {}, four, bad, {}); }), -4);
    EXPECT_EQ(run([&] { return WavefrontOBJ_output("/dev/null", pos, {}, {}, bad, {}); }), -5);
    EXPECT_EQ(run([&] { return WavefrontOBJ_output("/dev/null", pos, {}, {}, good, bad); }), -6);
    EXPECT_EQ(run([&] { return WavefrontOBJ_output(nowhere, pos, {}, {}, bad, {}); }), -1);
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(cells, indices({1}));
    EXPECT_EQ(kinds, indices({2}));
}

TEST(Memory, AMissingFileIsFoundWithoutAny)
{
    stl_mesh stl{0, points({{1, 2}}), columns({{3}})};
    attempt run(1, true);
    EXPECT_EQ(run([&] { return zeb::tessolv::STL_input("", stl.pos, stl.connect, false); }), -1);
    EXPECT_EQ(stl.pos.size + stl.connect.size, 0u);
    obj_mesh obj{0, points({{1, 2}}), points({{1, 2}}), points({{1, 2}}), columns({{3}}), columns({{3}})};
    EXPECT_EQ(
        run([&] { return zeb::tessolv::WavefrontOBJ_input("", obj.pos, obj.normals, obj.uvs, obj.trias, obj.quads); }),
        -1);
    EXPECT_EQ(obj.pos.size + obj.normals.size + obj.uvs.size + obj.trias.size + obj.quads.size, 0u);
}
