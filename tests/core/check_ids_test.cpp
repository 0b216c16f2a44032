#include <gtest/gtest.h>

#include <random>
#include <string>

#include "support/matrices.h"
#include "support/random_meshes.h"
#include "support/storage_forms.h"

using namespace zeb::tessolv;
using test::columns;
using test::indices;
using test::N;

namespace {

TEST(Version, IsTheOneOfTheInterface)
{
    EXPECT_STREQ(version(), "3.9.3");
}

struct kind {
    element_type type;
    unsigned nodes;
    unsigned vertices;
};

// Written out once more by hand, so that a slip in either table shows.
const kind kinds[] = {{EL_NONE, 0, 0},   {EL_NODE, 1, 1},     {EL_EDGE_MIX, 0, 2}, {EL_EDGE2, 2, 2},
                      {EL_EDGE3, 3, 2},  {EL_FACE_MIX, 0, 0}, {EL_TRIA3, 3, 3},    {EL_QUAD4, 4, 4},
                      {EL_TRIA6, 6, 3},  {EL_QUAD8, 8, 4},    {EL_QUAD9, 9, 4},    {EL_SOLID_MIX, 0, 0},
                      {EL_TETRA4, 4, 4}, {EL_TETRA10, 10, 4}, {EL_PYRAMID5, 5, 5}, {EL_PYRAMID14, 14, 5},
                      {EL_WEDGE6, 6, 6}, {EL_WEDGE18, 18, 6}, {EL_HEXA8, 8, 8},    {EL_HEXA20, 20, 8},
                      {EL_HEXA27, 27, 8}};

TEST(ElementTables, GiveNodesAndVerticesOfEveryKind)
{
    int value = 0;
    for (const auto& [type, nodes, vertices] : kinds) {
        EXPECT_EQ(type, value);
        EXPECT_EQ(NODES_PER_ELEMENT[value], nodes);
        EXPECT_EQ(VERTICES_PER_ELEMENT[value], vertices);
        ++value;
    }
    EXPECT_EQ(value, 21);
    EXPECT_EQ(zeb::NONE_INDEX, 4294967295u);
}

TEST(CheckIDs, AnEmptyMatrixIsValidForEveryType)
{
    for (int type = -5; type < 40; ++type)
        for (const auto& m : {dense2D<unsigned>(), dense2D<unsigned>(0, 7), dense2D<unsigned>(7, 0)})
            EXPECT_TRUE(check_IDs(m, static_cast<element_type>(type), 0)) << type;
}

TEST(CheckIDs, NothingIsValidForTheKindsWithoutNodesAndForNoKind)
{
    for (const int type : {int{EL_NONE}, int{EL_EDGE_MIX}, -1, 21, 1000, -2147483647})
        for (unsigned rows = 1; rows < 30; ++rows)
            EXPECT_FALSE(check_IDs(dense2D<unsigned>(rows, 1, 0u), static_cast<element_type>(type), N));
}

TEST(CheckIDs, APureKindWantsItsRowsAndNoNone)
{
    for (const auto& [type, nodes, vertices] : kinds) {
        if (nodes == 0) continue;
        for (unsigned rows = 1; rows < 30; ++rows)
            EXPECT_EQ(check_IDs(dense2D<unsigned>(rows, 2, 3u), type, 4), rows == nodes) << type << " " << rows;
        for (unsigned row = 0; row < nodes; ++row) {
            dense2D<unsigned> m(nodes, 3, 0u);
            m(row, 2) = N;
            EXPECT_FALSE(check_IDs(m, type, N)) << type << " " << row;
            m(row, 2) = N - 1;
            EXPECT_TRUE(check_IDs(m, type, N));
            EXPECT_FALSE(check_IDs(m, type, N - 1));
        }
    }
}

TEST(CheckIDs, AThreeRowFaceMixAcceptsNoNoneAndAFourRowOneInRowThreeOnly)
{
    for (unsigned row = 0; row < 3; ++row) {
        dense2D<unsigned> m(3, 1, 0u);
        m(row, 0) = N;
        EXPECT_FALSE(check_IDs(m, EL_FACE_MIX, N));
    }
    for (unsigned row = 0; row < 4; ++row) {
        dense2D<unsigned> m(4, 1, 0u);
        m(row, 0) = N;
        EXPECT_EQ(check_IDs(m, EL_FACE_MIX, N), row == 3);
    }
    EXPECT_FALSE(check_IDs(dense2D<unsigned>(5, 1, 0u), EL_FACE_MIX, N));
    EXPECT_FALSE(check_IDs(dense2D<unsigned>(2, 1, 0u), EL_FACE_MIX, N));
}

TEST(CheckIDs, ASixRowSolidMixIgnoresWhatStandsBelowANoneInRowFour)
{
    EXPECT_TRUE(check_IDs(columns({{0, 1, 2, 3, N, 99}}), EL_SOLID_MIX, 4));
    EXPECT_TRUE(check_IDs(columns({{0, 1, 2, 3, N, N}}), EL_SOLID_MIX, 4));
    EXPECT_FALSE(check_IDs(columns({{0, 1, 2, 3, 2, 99}}), EL_SOLID_MIX, 4));
    EXPECT_FALSE(check_IDs(columns({{0, 1, 2, 3, 2, N}}), EL_SOLID_MIX, 4));
}

TEST(CheckIDs, AnEightRowSolidMixEndsInRowFourOrSix)
{
    for (unsigned row = 0; row < 8; ++row) {
        dense2D<unsigned> m(8, 1, 0u);
        m(row, 0) = N;
        EXPECT_EQ(check_IDs(m, EL_SOLID_MIX, 1), row == 4 || row == 6) << row;
    }
    EXPECT_TRUE(check_IDs(columns({{0, 1, 2, 3, 4, 5, N, 99}}), EL_SOLID_MIX, 6));
    for (unsigned rows = 1; rows < 12; ++rows)
        EXPECT_EQ(check_IDs(dense2D<unsigned>(rows, 1, 0u), EL_SOLID_MIX, 1), rows == 4 || rows == 6 || rows == 8);
    EXPECT_FALSE(check_IDs(columns({{0, 1, 2, N}}), EL_SOLID_MIX, N));
}

TEST(CheckIDs, WithoutATypeNoneIsAcceptedAnywhere)
{
    EXPECT_TRUE(check_IDs(indices({N, 0, N, 4}), 5));
    EXPECT_FALSE(check_IDs(indices({N, 0, N, 5}), 5));
    EXPECT_TRUE(check_IDs(columns({{N, 0}, {4, N}}), 5));
    EXPECT_FALSE(check_IDs(columns({{N, 0}, {5, N}}), 5));
    EXPECT_TRUE(check_IDs(indices({N, N}), 0));
    EXPECT_FALSE(check_IDs(indices({N - 1}), 0));
    EXPECT_TRUE(check_IDs(indices({N - 1, N}), N));
    EXPECT_TRUE(check_IDs(indices({}), 0));
    EXPECT_TRUE(check_IDs(dense2D<unsigned>(0, 3), 0));
}

// What the text of the header says, entry by entry.
bool valid_by_definition(const dense2D<unsigned>& m, element_type type, unsigned n)
{
    if (m.rows * m.cols == 0) return true;
    const bool faces = type == EL_FACE_MIX;
    const bool solids = type == EL_SOLID_MIX;
    if (faces && m.rows != 3 && m.rows != 4) return false;
    if (solids && m.rows != 4 && m.rows != 6 && m.rows != 8) return false;
    if (!faces && !solids && m.rows != kinds[type].nodes) return false;
    for (std::uint64_t j = 0; j < m.cols; ++j)
        for (std::uint64_t i = 0; i < m.rows; ++i) {
            const unsigned v = m(i, j);
            if (v == N && ((faces && i == 3) || (solids && (i == 4 || i == 6)))) break;
            if (v == N || v >= n) return false;
        }
    return true;
}

TEST(CheckIDs, AgreesWithItsDefinitionOnRandomMatricesAndViews)
{
    std::mt19937 random(7);
    int valid = 0;
    for (int round = 0; round < 20000; ++round) {
        const auto type = static_cast<element_type>(random() % 21);
        const unsigned sizes[] = {3, 4, 6, 8};
        const unsigned rows = random() % 8 == 0 || kinds[type].nodes == 0 ? sizes[random() % 4] : kinds[type].nodes;
        dense2D<unsigned> m(rows, random() % 4);
        for (std::uint64_t j = 0; j < m.cols; ++j)
            for (std::uint64_t i = 0; i < rows; ++i) m(i, j) = random() % 12 == 0 ? N : random() % 8;
        const unsigned n = random() % 3 == 0 ? 7 : 8;
        const bool expected = valid_by_definition(m, type, n);
        valid += expected;
        for (const auto& form : test::storage_forms(m, N - 1))
            ASSERT_EQ(check_IDs(form.matrix, type, n), expected) << type << ": " << form.name;
    }
    EXPECT_GT(valid, 2000);
}

TEST(CheckIDs, WithoutATypeAgreesWithItsDefinitionOnRandomMatricesListsAndViews)
{
    test::dice random(8);
    int valid = 0;
    for (int round = 0; round < 4000; ++round) {
        const unsigned n = random.one_in(4) ? N - random.below(2) : random.below(9);
        dense2D<unsigned> m(random.below(5), random.below(5));
        bool expected = true;
        for (std::uint64_t j = 0; j < m.cols; ++j)
            for (std::uint64_t i = 0; i < m.rows; ++i) {
                m(i, j) = random.one_in(4) ? N - random.below(3) : n == 0 ? N : random.below(n);
                expected = expected && (m(i, j) == N || m(i, j) < n);
            }
        valid += expected;
        for (const auto& form : test::storage_forms(m, N - 1)) {
            ASSERT_EQ(check_IDs(form.matrix, n), expected) << form.name;
            bool of_columns = true;
            for (std::uint64_t j = 0; j < m.cols; ++j) of_columns = check_IDs(form.matrix.col(j), n) && of_columns;
            ASSERT_EQ(of_columns, expected) << form.name;
        }
    }
    EXPECT_GT(valid, 500);
    EXPECT_LT(valid, 3500);
}

TEST(CheckIDs, FindsOneBadEntryAnywhereInALongList)
{
    for (const std::uint64_t size : {1u, 1023u, 1024u, 1025u, 5000u})
        for (std::uint64_t at = 0; at < size; at += 1 + at / 3) {
            dense1D<unsigned> ids(size, 3u);
            EXPECT_TRUE(check_IDs(ids, 4));
            ids[at] = 4;
            EXPECT_FALSE(check_IDs(ids, 4)) << at << " of " << size;
        }
}

}  // namespace
