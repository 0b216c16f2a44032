#include <gtest/gtest.h>

#include <numeric>
#include <type_traits>

#include <tessolv/tessolv.h>

using namespace zeb::tessolv;

namespace {

TEST(FixedTypes, HoldTheirValuesAndNothingElse)
{
    EXPECT_EQ(sizeof(vector_fixed<double, 2>), 2 * sizeof(double));
    EXPECT_EQ(sizeof(vector_fixed<double, 3>), 3 * sizeof(double));
    EXPECT_EQ(sizeof(matrix_fixed<double, 3, 2>), 6 * sizeof(double));
    EXPECT_EQ(sizeof(symmetric_fixed<double, 2>), 3 * sizeof(double));
    EXPECT_EQ(sizeof(symmetric_fixed<double, 3>), 6 * sizeof(double));
    EXPECT_TRUE((std::is_trivially_copyable_v<symmetric_fixed<double, 3>>));
}

TEST(FixedTypes, AreZeroByDefault)
{
    const vector_fixed<double, 3> v;
    const symmetric_fixed<double, 3> s;
    EXPECT_EQ(v, (vector_fixed<double, 3>(0, 0, 0)));
    EXPECT_EQ(std::accumulate(s.begin(), s.end(), 1.0), 1.0);
}

TEST(FixedTypes, TakeExactlyTheirNumberOfValuesOfAnyArithmeticType)
{
    const vector_fixed<double, 3> v(1, 2.5f, 3u);
    EXPECT_EQ(v[0] + v[1] + v[2], 6.5);
    EXPECT_TRUE((std::is_constructible_v<vector_fixed<double, 2>, int, double>));
    EXPECT_FALSE((std::is_constructible_v<vector_fixed<double, 2>, int>));
    EXPECT_FALSE((std::is_constructible_v<vector_fixed<double, 2>, int, int, int>));
    EXPECT_FALSE((std::is_constructible_v<symmetric_fixed<double, 2>, int, int, int, int>));
    const vector_fixed<double, 2> braces{1, 2};
    EXPECT_EQ(braces(1), 2.0);
}

TEST(MatrixFixed, IsStoredColumnByColumnAndWrittenThroughItsColumns)
{
    matrix_fixed<double, 3, 2> m(1, 2, 3, 4, 5, 6);
    EXPECT_EQ(m(0, 1), 4.0);
    EXPECT_EQ(m(2, 0), 3.0);
    auto c = m.col(1);
    c[2] = 60;
    *c = 40;
    EXPECT_EQ(m[3], 40.0);
    EXPECT_EQ(m[5], 60.0);
}

TEST(SegmentIterator, WalksOverTheEntriesOfAColumn)
{
    const matrix_fixed<double, 3, 2> m(1, 2, 3, 4, 5, 6);
    auto at = m.col(1);
    const auto start = at;
    EXPECT_EQ(*at++, 4.0);
    EXPECT_EQ(*++at, 6.0);
    EXPECT_EQ(*--at, 5.0);
    EXPECT_EQ(*at--, 5.0);
    EXPECT_TRUE(at == start);
    EXPECT_EQ(at + 3 - start, 3);
    EXPECT_TRUE(start < start + 1);
    EXPECT_TRUE(start + 1 != start);
    EXPECT_EQ(*(start + 3 - 1), 6.0);
    EXPECT_EQ(at.operator->(), &m(0, 1));
}

TEST(SymmetricFixed, PacksTheUpperTriangleByColumns)
{
    symmetric_fixed<double, 3> s(0, 1, 11, 2, 12, 22);
    EXPECT_EQ(s(0, 0), 0.0);
    EXPECT_EQ(s(0, 1), 1.0);
    EXPECT_EQ(s(1, 0), 1.0);
    EXPECT_EQ(s(2, 0), 2.0);
    EXPECT_EQ(s(1, 2), 12.0);
    s(2, 1) = 21;
    EXPECT_EQ(s[4], 21.0);
    const symmetric_fixed<double, 2> t(5, 6, 7);
    EXPECT_EQ(t(1, 1), 7.0);
    EXPECT_EQ(t(1, 0), 6.0);
}

}  // namespace
