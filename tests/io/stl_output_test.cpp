#include <bit>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "support/classic_locale.h"
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

struct written {
    int code;
    std::string bytes;
};

written write_stl(const dense2D<double>& pos, const dense2D<unsigned int>& connect, bool ascii)
{
    const temporary_file file;
    const int code = STL_output(file.name(), pos, connect, ascii);
    return {code, file.bytes()};
}

// -- the same by the runtime's formatted print, one facet at a time

void normal_of(const double (&P)[3][3], double (&N)[3])
{
    double E1[3], E2[3];
    for (int i = 0; i < 3; ++i) {
        E1[i] = P[1][i] - P[0][i];
        E2[i] = P[2][i] - P[0][i];
    }
    for (int i = 0; i < 3; ++i) {
        const int j = (i + 1) % 3;
        const int k = (i + 2) % 3;
        N[i] = E1[j] * E2[k] - E1[k] * E2[j];
    }
    const double norm = std::sqrt(N[0] * N[0] + N[1] * N[1] + N[2] * N[2]);
    for (double& n : N) n = norm != 0 ? n / norm : 0.0;
}

std::string line(const char* format, const double (&v)[3])
{
    const test::classic_locale classic;
    char text[200];
    std::snprintf(text, sizeof text, format, v[0], v[1], v[2]);
    return text;
}

std::string floats(const double (&v)[3])
{
    std::string bytes;
    for (const double value : v) {
        const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(value));
        for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(bits >> shift);
    }
    return bytes;
}

std::string model_of(const dense2D<double>& pos, const dense2D<unsigned int>& connect, bool ascii)
{
    std::string bytes = "solid ZEB\n";
    if (!ascii) {
        bytes = "ZEB STL Binary" + std::string(66, '\0');
        for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(connect.cols >> shift);
    }
    for (std::uint64_t j = 0; j < connect.cols; ++j) {
        double P[3][3], N[3];
        for (std::uint64_t k = 0; k < 3; ++k)
            for (std::uint64_t i = 0; i < 3; ++i) P[k][i] = i < pos.rows ? pos(i, connect(k, j)) : 0.0;
        normal_of(P, N);
        if (ascii) {
            bytes += line("   facet normal %le %le %le\n", N) + "      outer loop\n";
            for (const auto& corner : P) bytes += line("         vertex %le %le %le\n", corner);
            bytes += "      endloop\n   endfacet\n";
        } else {
            bytes += floats(N) + floats(P[0]) + floats(P[1]) + floats(P[2]) + std::string(2, '\0');
        }
    }
    return ascii ? bytes + "endsolid ZEB\n" : bytes;
}

const dense2D<double> corner_points = points({{0, 0, 0}, {2, 0, 0}, {0, 2, 0}, {0, 0, 2}});
const dense2D<unsigned int> two_facets = columns({{0, 2, 1}, {1, 2, 3}});

}  // namespace

TEST(STLOutput, WritesTextByteForByte)
{
    const written file = write_stl(corner_points, two_facets, true);
    EXPECT_EQ(file.code, 0);
    EXPECT_EQ(file.bytes,
              "solid ZEB\n"
              "   facet normal 0.000000e+00 0.000000e+00 -1.000000e+00\n"
              "      outer loop\n"
              "         vertex 0.000000e+00 0.000000e+00 0.000000e+00\n"
              "         vertex 0.000000e+00 2.000000e+00 0.000000e+00\n"
              "         vertex 2.000000e+00 0.000000e+00 0.000000e+00\n"
              "      endloop\n"
              "   endfacet\n"
              "   facet normal 5.773503e-01 5.773503e-01 5.773503e-01\n"
              "      outer loop\n"
              "         vertex 2.000000e+00 0.000000e+00 0.000000e+00\n"
              "         vertex 0.000000e+00 2.000000e+00 0.000000e+00\n"
              "         vertex 0.000000e+00 0.000000e+00 2.000000e+00\n"
              "      endloop\n"
              "   endfacet\n"
              "endsolid ZEB\n");
}

TEST(STLOutput, WritesBinaryByteForByte)
{
    const written file = write_stl(corner_points, columns({{0, 2, 1}}), false);
    EXPECT_EQ(file.code, 0);
    ASSERT_EQ(file.bytes.size(), 134U);
    EXPECT_EQ(file.bytes.substr(0, 80), "ZEB STL Binary" + std::string(66, '\0'));
    EXPECT_EQ(file.bytes.substr(80, 4), std::string("\1\0\0\0", 4));
    const std::string zero(4, '\0');
    const std::string two("\0\0\0\x40", 4);
    const std::string minus_one("\0\0\x80\xBF", 4);
    EXPECT_EQ(file.bytes.substr(84), zero + zero + minus_one + zero + zero + zero + zero + two + zero + two + zero +
                                         zero + std::string(2, '\0'));
}

TEST(STLOutput, WritesZeroForTheThirdCoordinateInThePlane)
{
    const dense2D<double> plane = points({{0, 0}, {2, 0}, {0, 2}});
    const dense2D<double> space = points({{0, 0, 0}, {2, 0, 0}, {0, 2, 0}});
    for (const bool ascii : {true, false}) {
        const written file = write_stl(plane, columns({{0, 1, 2}}), ascii);
        EXPECT_EQ(file.code, 0);
        EXPECT_EQ(file.bytes, write_stl(space, columns({{0, 1, 2}}), ascii).bytes);
    }
}

TEST(STLOutput, WritesTheNormalZeroForATriangleWithoutArea)
{
    const dense2D<double> pos = points({{1, 1, 1}, {2, 2, 2}, {-3, -3, -3}});
    for (const auto& connect : {columns({{0, 1, 2}}), columns({{2, 1, 1}}), columns({{0, 0, 0}})}) {
        EXPECT_NE(write_stl(pos, connect, true).bytes.find("normal 0.000000e+00 0.000000e+00 0.000000e+00\n"),
                  std::string::npos);
        EXPECT_EQ(write_stl(pos, connect, false).bytes.substr(84, 12), std::string(12, '\0'));
    }
}

TEST(STLOutput, WritesAnEmptySolid)
{
    for (const auto& connect : {dense2D<unsigned int>(), dense2D<unsigned int>(3, 0), dense2D<unsigned int>(0, 5)}) {
        for (const auto& pos : {corner_points, dense2D<double>(3, 0), dense2D<double>(2, 0)}) {
            EXPECT_EQ(write_stl(pos, connect, true).code, 0);
            EXPECT_EQ(write_stl(pos, connect, true).bytes, "solid ZEB\nendsolid ZEB\n");
            EXPECT_EQ(write_stl(pos, connect, false).code, 0);
            EXPECT_EQ(write_stl(pos, connect, false).bytes, "ZEB STL Binary" + std::string(70, '\0'));
        }
    }
}

TEST(STLOutput, WritesWhatHasNoFiniteValue)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const dense2D<double> pos = points({{1e300, -1e300, 0}, {-infinity, infinity, std::nan("")}, {1e-310, -0.0, 1e39}});
    const dense2D<unsigned int> connect = columns({{0, 1, 2}, {2, 2, 0}});
    EXPECT_EQ(write_stl(pos, connect, true).bytes, model_of(pos, connect, true));
    EXPECT_EQ(write_stl(pos, connect, false).bytes, model_of(pos, connect, false));
    EXPECT_NE(write_stl(pos, connect, true).bytes.find("vertex -inf inf nan\n"), std::string::npos);
}

TEST(STLOutput, WritesTheBytesThatTheRuntimeWouldPrint)
{
    std::mt19937 random(1);
    const double special[] = {0.0, -0.0, 1e-320, 1e100, -1e-100, 0.5, 999999.95, 9.9999995e10, 1e7, 12345678.5};
    for (int k = 0; k < 2100; ++k) {
        const std::uint64_t nodes = 3 + random() % 5;
        dense2D<double> pos(2 + random() % 2, nodes);
        for (std::uint64_t j = 0; j < nodes; ++j)
            for (std::uint64_t i = 0; i < pos.rows; ++i)
                pos(i, j) = random() % 8 == 0
                                ? special[random() % std::size(special)]
                                : std::ldexp(static_cast<double>(random()) - 2e9, static_cast<int>(random() % 60) - 50);
        dense2D<unsigned int> connect(3, 1 + random() % 8);
        for (std::uint64_t j = 0; j < connect.cols; ++j)
            for (std::uint64_t i = 0; i < 3; ++i) connect(i, j) = static_cast<unsigned int>(random() % nodes);
        for (const bool ascii : {true, false}) {
            const std::string expected = model_of(pos, connect, ascii);
            const written file = write_stl(pos, connect, ascii);
            ASSERT_EQ(file.code, 0);
            ASSERT_EQ(file.bytes, expected);
            ASSERT_EQ(write_stl(as_padded_view(pos, 7.0), as_padded_view(connect, 99U), ascii).bytes, expected);
        }
    }
}

TEST(STLOutput, WritesFilesOfManyBlocksAndNodes)
{
    constexpr std::uint64_t nodes = 50000;
    dense2D<double> pos(3, nodes);
    for (std::uint64_t j = 0; j < nodes; ++j)
        for (std::uint64_t i = 0; i < 3; ++i) pos(i, j) = std::sin(static_cast<double>(7 * j + i));
    dense2D<unsigned int> connect(3, 20000);
    std::mt19937 random(2);
    for (std::uint64_t j = 0; j < connect.cols; ++j)  // some nodes again soon, some later, many once
        for (std::uint64_t i = 0; i < 3; ++i)
            connect(i, j) = static_cast<unsigned int>((j / 3 * 4096 + random() % 2 * 16384 + random() % 3) % nodes);
    for (const bool ascii : {true, false})
        EXPECT_TRUE(write_stl(pos, connect, ascii).bytes == model_of(pos, connect, ascii));
}

TEST(STLOutput, IsTheSameInEveryLocale)
{
    const std::string expected = write_stl(corner_points, two_facets, true).bytes;
    const test::comma_locale changed;
    EXPECT_EQ(write_stl(corner_points, two_facets, true).bytes, expected);
}

TEST(STLOutput, ReplacesTheFile)
{
    const temporary_file file(std::string(10000, 'x'));
    for (const bool ascii : {true, false}) {
        EXPECT_EQ(STL_output(file.name(), corner_points, two_facets, ascii), 0);
        EXPECT_EQ(file.bytes(), model_of(corner_points, two_facets, ascii));
    }
    EXPECT_EQ(STL_output(file.name(), {}, two_facets, true), -2);
    EXPECT_EQ(file.bytes(), "");
}

// -- what is refused

namespace {

struct stl_call {
    const char* name = nullptr;  // of its own file
    dense2D<double> pos = corner_points;
    dense2D<unsigned int> connect = two_facets;
};

const test::fault_table<stl_call> faults{
    {"no file name", -1, [](stl_call& call) { call.name = ""; }},
    {"a directory", -1, [](stl_call& call) { call.name = "/tmp"; }},
    {"a missing directory", -1, [](stl_call& call) { call.name = "/nowhere/at/all"; }},
    {"one row", -2, [](stl_call& call) { call.pos = filled(1, 4, 0.0); }},
    {"four rows", -2, [](stl_call& call) { call.pos = filled(4, 4, 0.0); }},
    {"no coordinates", -2, [](stl_call& call) { call.pos = {}; }},
    {"node 4 of 4", -3, [](stl_call& call) { call.connect(2, 0) = 4; }},
    {"no node", -3, [](stl_call& call) { call.connect(1, 1) = test::N; }},
    {"a huge index", -3, [](stl_call& call) { call.connect(0, 1) = 0xFFFFFFFE; }},
    {"lines", -3,
     [](stl_call& call) {
         call.connect = columns({{0, 1}});
     }},
    {"quadrilaterals", -3,
     [](stl_call& call) {
         call.connect = columns({{0, 1, 2, 3}});
     }},
    {"no nodes", -3, [](stl_call& call) { call.pos.resize(call.pos.rows, 0); }},
};

}  // namespace

TEST(STLOutput, FindsFaultsInTheirOrderAndLeavesAnEmptyFile)
{
    const std::ptrdiff_t before = test::open_files();
    for (const bool ascii : {true, false})
        test::expect_codes_in_order(faults, [&](const stl_call& call) {
            const temporary_file file("from before");
            const int code = STL_output(call.name != nullptr ? call.name : file.name(), call.pos, call.connect, ascii);
            EXPECT_EQ(file.bytes(), code == -1 ? "from before" : "");
            return code;
        });
    EXPECT_EQ(test::open_files(), before);
}

TEST(STLOutput, RefusesAFileThatCannotBeOpened)
{
    for (const bool ascii : {true, false})
        for (const char* name : {static_cast<const char*>(nullptr), "", "/tmp", "/tmp/", "/nowhere/at/all"})
            EXPECT_EQ(STL_output(name, corner_points, two_facets, ascii), -1) << (name != nullptr ? name : "null");
}

TEST(STLOutput, ReportsAFullDisk)
{
    const std::ptrdiff_t before = test::open_files();
    const dense2D<unsigned int> many = filled(3, 20000, 1U);
    for (const bool ascii : {true, false})
        for (const auto& connect : {dense2D<unsigned int>(), two_facets, many})
            EXPECT_EQ(STL_output("/dev/full", corner_points, connect, ascii), -1);
    EXPECT_EQ(test::open_files(), before);
}
