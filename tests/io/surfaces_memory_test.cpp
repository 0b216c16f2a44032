#include <string>

#include <gtest/gtest.h>

#include "io/stl_model.h"
#include "io/wavefront_obj_model.h"
#include "support/failing_memory.h"
#include "support/open_files.h"

using namespace zeb::tessolv;
using namespace test;

namespace {

bool is_empty(const auto& m)
{
    return m.size == 0 && m.rows == 0 && m.cols == 0;
}

// Whether `part` is the beginning of `whole`.
template <class T>
bool begins(const dense2D<T>& part, const dense2D<T>& whole)
{
    return part.cols == 0 || (part.cols <= whole.cols && part == whole.sub_matrix(0, 0, whole.rows, part.cols));
}

}  // namespace

TEST(STLInput, GivesItsCodeAndEmptyOutputsWithoutMemory)
{
    for (const bool ascii : {true, false}) {
        const temporary_file file(stl_bytes(cube_facets(1), ascii));
        const stl_mesh whole = read_stl_file(file.name(), ascii);
        ASSERT_EQ(whole.code, 12);
        const std::ptrdiff_t before = open_files();
        int refused = 0;
        for_each_failure([&](attempt& run) {
            stl_mesh m{77, points({{1, 2}}), columns({{5, 6}})};
            m.code = run([&] { return STL_input(file.name(), m.pos, m.connect, ascii); });
            if (m.code == -199) {
                ++refused;
                EXPECT_TRUE(run.failed() && is_empty(m.pos) && is_empty(m.connect));
            } else {
                EXPECT_EQ(m, whole) << "what gets around a refusal gives the same";
            }
        });
        EXPECT_GT(refused, 10);
        EXPECT_EQ(open_files(), before);
    }
}

TEST(STLInput, TakesMemoryForWhatTheFileHoldsNotForItsCount)
{
    const temporary_file file(stl_binary(cube_facets(1), 0xFFFFFFFF));
    dense2D<double> pos;
    dense2D<unsigned> connect;
    const failing_memory watch(0, false);
    EXPECT_EQ(STL_input(file.name(), pos, connect, false), 12);
    EXPECT_LT(watch.largest_request(), 1000000U);
}

TEST(WavefrontOBJInput, HoldsNoLineInMemory)
{
    const temporary_file file("v 1 1 1\n#" + std::string(5000000, 'x') + "\nf" + std::string(5000000, ' ') + "1 1 1");
    obj_mesh m;
    const failing_memory watch(0, false);
    EXPECT_EQ(WavefrontOBJ_input(file.name(), m.pos, m.normals, m.uvs, m.trias, m.quads), 0);
    EXPECT_EQ(m.trias.cols, 1U);
    EXPECT_LT(watch.largest_request(), 1000000U);
}

TEST(STLInput, HoldsNoLineInMemory)
{
    const temporary_file file("solid\n facet normal 0 0 1\n x\nvertex " + std::string(5000000, '0') + "1 0 0\n");
    stl_mesh m;
    const failing_memory watch(0, false);
    EXPECT_EQ(STL_input(file.name(), m.pos, m.connect, true), 0);
    EXPECT_EQ(m.pos.cols, 1U);
    EXPECT_LT(watch.largest_request(), 1000000U);
}

TEST(STLInput, ReadsALargeFileWhenOnlyItsForesightIsRefused)
{
    std::vector<facet_corners> facets(5000);
    for (std::size_t k = 0; k < facets.size(); ++k) {
        const double x = 3.0 * static_cast<double>(k);
        facets[k] = {{x, 0, 0}, {x + 1, 0, 0}, {x, 1, 0}};
    }
    const temporary_file file(stl_text(facets));
    int survived = 0;
    for_each_failure([&](attempt& run) {
        dense2D<double> pos;
        dense2D<unsigned> connect;
        const int code = run([&] { return STL_input(file.name(), pos, connect, true); });
        if (code == 5000) {
            EXPECT_EQ(pos.cols, 15000U);
            survived += run.failed();
        } else {
            EXPECT_EQ(code, -199);
            EXPECT_TRUE(is_empty(pos) && is_empty(connect));
        }
    });
    EXPECT_GT(survived, 0) << "room for the whole file is a convenience";
}

TEST(STLOutput, LeavesAnEmptyFileWithoutMemory)
{
    const dense2D<double> pos = points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    const dense2D<unsigned> connect = columns({{0, 1, 2}});
    for (const bool ascii : {true, false}) {
        const temporary_file file;
        const std::ptrdiff_t before = open_files();
        for_each_failure([&](attempt& run) {
            const int code = run([&] { return STL_output(file.name(), pos, connect, ascii); });
            EXPECT_EQ(code, run.failed() ? -199 : 0);
            EXPECT_EQ(file.bytes().empty(), run.failed());
        });
        EXPECT_EQ(open_files(), before);
    }
}

TEST(WavefrontOBJInput, KeepsWhatWasReadWithoutMemory)
{
    std::string text = every_form;
    for (int k = 0; k < 40; ++k) text += "\nv 1 2 3\nvn 1 2 3\nvt 1 2\nf 1 2 3\nf 1 2 3 4";
    const obj_mesh whole = read_text(text);
    ASSERT_EQ(whole.code, 0);
    const temporary_file file(text);
    const std::ptrdiff_t before = open_files();
    for_each_failure([&](attempt& run) {
        obj_mesh m{7, points({{1, 2}}), points({{3}}), points({{4}}), columns({{5}}), columns({{6}})};
        m.code = run([&] { return WavefrontOBJ_input(file.name(), m.pos, m.normals, m.uvs, m.trias, m.quads); });
        EXPECT_EQ(m.code, run.failed() ? -1 : 0);
        EXPECT_TRUE(begins(m.pos, whole.pos) && begins(m.normals, whole.normals) && begins(m.uvs, whole.uvs));
        EXPECT_TRUE(begins(m.trias, whole.trias) && begins(m.quads, whole.quads));
        if (!run.failed()) {
            EXPECT_EQ(m, whole);
        }
    });
    EXPECT_EQ(open_files(), before);
}

TEST(WavefrontOBJInput, ReadsALargeFileWhenOnlyItsForesightIsRefused)
{
    constexpr unsigned nodes = 20000;
    const std::string end = std::string(200, ' ') + '\n';
    std::string text;
    for (unsigned j = 0; j < nodes; ++j) text += "v " + std::to_string(j) + ".25 0 1" + end;
    for (unsigned j = 2; j < nodes; ++j)
        text += "f " + std::to_string(j - 1) + ' ' + std::to_string(j) + ' ' + std::to_string(j + 1) + end;
    const temporary_file file(text);
    int survived = 0;
    for_each_failure([&](attempt& run) {
        obj_mesh m;
        m.code = run([&] { return WavefrontOBJ_input(file.name(), m.pos, m.normals, m.uvs, m.trias, m.quads); });
        if (m.code != 0) return;
        survived += run.failed();
        ASSERT_EQ(m.pos.cols, nodes);
        ASSERT_EQ(m.trias.cols, nodes - 2);
        for (unsigned j = 0; j < nodes; ++j) ASSERT_EQ(m.pos(0, j), j + 0.25);
        for (unsigned j = 0; j < nodes - 2; ++j) ASSERT_EQ(m.trias(2, j), j + 2);
    });
    EXPECT_GT(survived, 0) << "room for the rest of the file is a convenience";
}

TEST(WavefrontOBJInput, ReservesNoMoreThanTheFileMayHold)
{
    std::string text;
    for (int k = 0; k < 300000; ++k) text += "v 1 2 3\n";
    constexpr std::size_t bytes_of_line = 8;
    const std::size_t lines = text.size() / bytes_of_line;
    text += std::string(8000000, '\n');
    const temporary_file file(text);
    obj_mesh m;
    const failing_memory watch(0, false);
    EXPECT_EQ(WavefrontOBJ_input(file.name(), m.pos, m.normals, m.uvs, m.trias, m.quads), 0);
    EXPECT_EQ(m.pos.cols, lines);
    EXPECT_LT(watch.largest_request(), 2 * sizeof(double[3]) * text.size() / bytes_of_line);
}

TEST(WavefrontOBJOutput, LeavesAnEmptyFileWithoutMemory)
{
    const dense2D<double> pos = points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    const dense2D<unsigned> trias = columns({{0, 1, 2}});
    const temporary_file file;
    for_each_failure([&](attempt& run) {
        const int code = run([&] { return WavefrontOBJ_output(file.name(), pos, pos, {}, trias, {}); });
        EXPECT_EQ(code, run.failed() ? -199 : 0);
        EXPECT_EQ(file.bytes().empty(), run.failed());
    });
}
