#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "support/comma_locale.h"
#include "support/fault_pairs.h"
#include "support/matrices.h"
#include "support/open_files.h"
#include "support/temporary_file.h"

using namespace zeb::tessolv;
using test::as_padded_view;
using test::columns;
using test::filled;
using test::points;
using test::temporary_file;

namespace {

struct obj_arguments {
    dense2D<double> pos{}, normals{}, uvs{};
    dense2D<unsigned int> trias{}, quads{};
};

struct written {
    int code;
    std::string bytes;
};

int write_to(const char* name, const obj_arguments& mesh)
{
    return WavefrontOBJ_output(name, mesh.pos, mesh.normals, mesh.uvs, mesh.trias, mesh.quads);
}

written write_obj(const obj_arguments& mesh)
{
    const temporary_file file;
    const int code = write_to(file.name(), mesh);
    return {code, file.bytes()};
}

// -- the same through a standard stream

void print_vectors(std::ostream& out, const char* keyword, const dense2D<double>& m, bool with_zero)
{
    for (std::uint64_t j = 0; m.rows != 0 && j < m.cols; ++j) {
        out << keyword;
        for (std::uint64_t i = 0; i < m.rows; ++i) out << m(i, j) << " ";
        if (with_zero) out << 0 << " ";
        out << "\n";
    }
}

void print_faces(std::ostream& out, const obj_arguments& mesh, const dense2D<unsigned int>& connect)
{
    for (std::uint64_t j = 0; connect.rows != 0 && j < connect.cols; ++j) {
        out << " f ";
        for (std::uint64_t i = 0; i < connect.rows; ++i) {
            const unsigned int n = connect(i, j) + 1;
            out << n << "/";
            if (!mesh.uvs.empty()) out << n;
            out << "/";
            if (!mesh.normals.empty()) out << n;
        }
        out << " \n";
    }
}

std::string model_of(const obj_arguments& mesh)
{
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out.flags(std::ios::scientific);
    out.precision(8);
    print_vectors(out, " v ", mesh.pos, mesh.pos.rows == 2);
    print_vectors(out, " vt ", mesh.uvs, false);
    print_vectors(out, " vn ", mesh.normals, false);
    print_faces(out, mesh, mesh.trias);
    print_faces(out, mesh, mesh.quads);
    return out.str();
}

const dense2D<double> square = points({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
const dense2D<double> upwards = points({{0, 0, 1}, {0, 0, 1}, {0, 0, 1}, {0, 0, 1}});

}  // namespace

TEST(WavefrontOBJOutput, WritesByteForByte)
{
    const written file =
        write_obj({points({{0, -1.5, 1e100}, {1. / 3, 2, 3}, {4, 5, 6}}), {}, {}, columns({{0, 1, 2}}), {}});
    EXPECT_EQ(file.code, 0);
    EXPECT_EQ(file.bytes,
              " v 0.00000000e+00 -1.50000000e+00 1.00000000e+100 \n"
              " v 3.33333333e-01 2.00000000e+00 3.00000000e+00 \n"
              " v 4.00000000e+00 5.00000000e+00 6.00000000e+00 \n"
              " f 1//2//3// \n");
}

TEST(WavefrontOBJOutput, WritesAZeroForTheThirdCoordinateInThePlane)
{
    const written file = write_obj({square, {}, {}, {}, columns({{0, 1, 2, 3}})});
    EXPECT_EQ(file.code, 0);
    EXPECT_EQ(file.bytes,
              " v 0.00000000e+00 0.00000000e+00 0 \n"
              " v 1.00000000e+00 0.00000000e+00 0 \n"
              " v 1.00000000e+00 1.00000000e+00 0 \n"
              " v 0.00000000e+00 1.00000000e+00 0 \n"
              " f 1//2//3//4// \n");
}

TEST(WavefrontOBJOutput, WritesTheSameNumberThreeTimesWithTexturesAndNormals)
{
    const written file = write_obj({square, upwards, square, columns({{3, 2, 1}}), columns({{0, 1, 2, 3}})});
    const std::size_t faces = file.bytes.find(" f ");
    ASSERT_NE(faces, std::string::npos);
    EXPECT_EQ(file.bytes.substr(faces), " f 4/4/43/3/32/2/2 \n f 1/1/12/2/23/3/34/4/4 \n");
    EXPECT_EQ(file.bytes.substr(file.bytes.find(" vt "), 35), " vt 0.00000000e+00 0.00000000e+00 \n");
}

TEST(WavefrontOBJOutput, LeavesOutTheNumbersOfWhatThereIsNot)
{
    const dense2D<unsigned int> tria = columns({{0, 1, 2}});
    const auto faces = [](const obj_arguments& mesh) {
        const std::string bytes = write_obj(mesh).bytes;
        return bytes.substr(bytes.find(" f "));
    };
    EXPECT_EQ(faces({square, {}, square, tria, {}}), " f 1/1/2/2/3/3/ \n");
    EXPECT_EQ(faces({square, upwards, {}, tria, {}}), " f 1//12//23//3 \n");
    EXPECT_EQ(faces({square, filled(0, 9, 0.0), filled(5, 0, 0.0), tria, {}}), " f 1//2//3// \n");
}

TEST(WavefrontOBJOutput, WritesIndicesAsTheyAreAndUnsigned)
{
    const written file = write_obj({dense2D<double>(3, 0), {}, {}, columns({{0x7FFFFFFF, 0xFFFFFFFE, 0}}), {}});
    EXPECT_EQ(file.code, 0);
    EXPECT_EQ(file.bytes, " f 2147483648//4294967295//1// \n");
}

TEST(WavefrontOBJOutput, WritesNothingOfAnEmptyMesh)
{
    EXPECT_EQ(write_obj({dense2D<double>(3, 0), {}, {}, {}, {}}).bytes, "");
    EXPECT_EQ(write_obj({dense2D<double>(2, 0), {}, {}, dense2D<unsigned int>(0, 4), dense2D<unsigned int>(7, 0)}).code,
              0);
}

TEST(WavefrontOBJOutput, WritesTheBytesOfAStandardStream)
{
    std::mt19937 random(1);
    const double special[] = {
        0.0, -0.0, 1e-320,      1e300,        std::nan(""), -std::numeric_limits<double>::infinity(),
        0.5, 1e22, 9.999999995, 9.9999999949, 123456789.5,  1e-7};
    const auto random_matrix = [&](std::uint64_t rows, std::uint64_t cols) {
        dense2D<double> m(rows, cols);
        for (std::uint64_t j = 0; j < cols; ++j)
            for (std::uint64_t i = 0; i < rows; ++i)
                m(i, j) = random() % 8 == 0
                              ? special[random() % std::size(special)]
                              : std::ldexp(static_cast<double>(random()) - 2e9, static_cast<int>(random() % 60) - 50);
        return m;
    };
    const auto random_faces = [&](std::uint64_t rows) {
        dense2D<unsigned int> m(rows, random() % 4);
        for (std::uint64_t j = 0; j < m.cols; ++j)
            for (std::uint64_t i = 0; i < rows; ++i)
                m(i, j) = static_cast<unsigned int>(random() >> (random() % 32)) & 0xFFFFFFFE;
        return m;
    };
    for (int k = 0; k < 2100; ++k) {
        const std::uint64_t nodes = random() % 6;
        obj_arguments mesh{random_matrix(2 + random() % 2, nodes), {}, {}, random_faces(3), random_faces(4)};
        if (random() % 2 != 0) mesh.normals = random_matrix(3, nodes);
        if (random() % 2 != 0) mesh.uvs = random_matrix(2, nodes);
        const std::string expected = model_of(mesh);
        ASSERT_EQ(write_obj(mesh).bytes, expected);
        const obj_arguments views{as_padded_view(mesh.pos, 7.0), as_padded_view(mesh.normals, 7.0),
                                  as_padded_view(mesh.uvs, 7.0), as_padded_view(mesh.trias, 9U),
                                  as_padded_view(mesh.quads, 9U)};
        ASSERT_EQ(write_obj(views).bytes, expected);
    }
}

TEST(WavefrontOBJOutput, WritesFilesOfManyBlocks)
{
    obj_arguments mesh{filled(3, 10000, 1. / 3), {}, {}, filled(3, 20000, 123456U), filled(4, 20000, 7U)};
    mesh.normals = mesh.pos;
    EXPECT_TRUE(write_obj(mesh).bytes == model_of(mesh));
}

TEST(WavefrontOBJOutput, IsTheSameInEveryLocale)
{
    const obj_arguments mesh{points({{1234.5, 0.25}}), {}, {}, columns({{123456, 1234567, 0}}), {}};
    const std::string expected = model_of(mesh);
    const test::comma_locale changed;
    EXPECT_EQ(write_obj(mesh).bytes, expected);
}

// -- what is refused

namespace {

const obj_arguments good_mesh{square, upwards, square, columns({{0, 1, 2}}), columns({{0, 1, 2, 3}})};

}  // namespace

TEST(WavefrontOBJOutput, ReplacesTheFile)
{
    const temporary_file file(std::string(10000, 'x'));
    EXPECT_EQ(write_to(file.name(), good_mesh), 0);
    EXPECT_EQ(file.bytes(), model_of(good_mesh));
    EXPECT_EQ(write_to(file.name(), {}), -2);
    EXPECT_EQ(file.bytes(), "");
}

TEST(WavefrontOBJOutput, FindsFaultsInTheirOrderAndLeavesAnEmptyFile)
{
    struct obj_call {
        const char* name = nullptr;  // of its own file
        obj_arguments mesh = good_mesh;
    };
    const test::fault_table<obj_call> faults{
        {"no file name", -1, [](obj_call& call) { call.name = ""; }},
        {"a missing directory", -1, [](obj_call& call) { call.name = "/nowhere/at/all"; }},
        {"no coordinates", -2, [](obj_call& call) { call.mesh.pos = {}; }},
        {"one row", -2, [](obj_call& call) { call.mesh.pos = filled(1, 4, 0.0); }},
        {"four rows", -2, [](obj_call& call) { call.mesh.pos = filled(4, 4, 0.0); }},
        {"normals of two rows", -3, [](obj_call& call) { call.mesh.normals = filled(2, 4, 0.0); }},
        {"a normal too few", -3, [](obj_call& call) { call.mesh.normals = filled(3, 3, 0.0); }},
        {"a normal too many", -3, [](obj_call& call) { call.mesh.normals = filled(3, 5, 0.0); }},
        {"textures of one row", -4, [](obj_call& call) { call.mesh.uvs = filled(1, 4, 0.0); }},
        {"textures of three rows", -4, [](obj_call& call) { call.mesh.uvs = filled(3, 4, 0.0); }},
        {"a texture too few", -4, [](obj_call& call) { call.mesh.uvs = filled(2, 3, 0.0); }},
        {"triangles of two rows", -5,
         [](obj_call& call) {
             call.mesh.trias = columns({{0, 1}});
         }},
        {"a triangle without a node", -5,
         [](obj_call& call) {
             call.mesh.trias = columns({{0, 1, test::N}});
         }},
        {"quadrilaterals of three rows", -6,
         [](obj_call& call) {
             call.mesh.quads = columns({{0, 1, 2}});
         }},
        {"a quadrilateral without a node", -6, [](obj_call& call) { call.mesh.quads(3, 0) = test::N; }},
    };
    const std::ptrdiff_t before = test::open_files();
    test::expect_codes_in_order(faults, [](const obj_call& call) {
        const temporary_file file("from before");
        const int code = write_to(call.name != nullptr ? call.name : file.name(), call.mesh);
        EXPECT_EQ(file.bytes(), code == -1 ? "from before" : "");
        return code;
    });
    EXPECT_EQ(test::open_files(), before);
}

TEST(WavefrontOBJOutput, TakesMatricesWithoutEntriesForNoneAndAnyIndex)
{
    const auto code_with = [](auto change) {
        obj_arguments mesh = good_mesh;
        change(mesh);
        return write_obj(mesh).code;
    };
    EXPECT_EQ(code_with([](obj_arguments&) {}), 0);
    EXPECT_EQ(code_with([](obj_arguments& m) { m.normals = filled(2, 0, 0.0); }), 0);
    EXPECT_EQ(code_with([](obj_arguments& m) { m.uvs = filled(0, 7, 0.0); }), 0);
    EXPECT_EQ(code_with([](obj_arguments& m) { m.trias = columns({{0, 1, 0xFFFFFFFE}}); }), 0);
    EXPECT_EQ(code_with([](obj_arguments& m) { m.trias = filled(9, 0, 0U); }), 0);
}

TEST(WavefrontOBJOutput, RefusesAFileThatCannotBeOpened)
{
    for (const char* name : {static_cast<const char*>(nullptr), "", "/tmp", "/tmp/", "/nowhere/at/all"})
        EXPECT_EQ(write_to(name, good_mesh), -1) << (name != nullptr ? name : "null");
}

TEST(WavefrontOBJOutput, ReportsAFullDisk)
{
    const std::ptrdiff_t before = test::open_files();
    EXPECT_EQ(write_to("/dev/full", good_mesh), -1);
    EXPECT_EQ(write_to("/dev/full", {filled(3, 100000, 1.0), {}, {}, {}, {}}), -1);
    EXPECT_EQ(write_to("/dev/full", {dense2D<double>(3, 0), {}, {}, {}, {}}), 0) << "there is nothing to be written";
    EXPECT_EQ(test::open_files(), before);
}
