#include <gtest/gtest.h>

#include "support/matrices.h"

using namespace zeb::tessolv;
using test::as_padded_view;
using test::filled;
using test::indices;
using test::matrix_of;
using test::N;

namespace {

// Coordinates and connectivities alike, but where a test says so.
template <class T>
class Append : public testing::Test {
protected:
    using matrix = dense2D<T>;
    static matrix of(const std::vector<std::vector<T>>& cols) { return matrix_of(cols); }
};
using entry_types = testing::Types<double, unsigned>;
TYPED_TEST_SUITE(Append, entry_types, );

TYPED_TEST(Append, OfListedColumnsFollowsTheList)
{
    auto A = this->of({{1, 2}});
    EXPECT_EQ(append(A, this->of({{3, 4}, {5, 6}, {7, 8}}), indices({2, 0})), 0);
    EXPECT_EQ(A, this->of({{1, 2}, {7, 8}, {3, 4}}));
}

TYPED_TEST(Append, OfAColumnListedTwiceAppendsItTwice)
{
    auto A = this->of({{1, 2}});
    EXPECT_EQ(append(A, this->of({{3, 4}, {5, 6}, {7, 8}}), indices({2, 2})), 0);
    EXPECT_EQ(A, this->of({{1, 2}, {7, 8}, {7, 8}}));
}

TYPED_TEST(Append, OfNoListedColumnDoesNothingWhateverTheMatrices)
{
    auto A = this->of({{1, 2}});
    EXPECT_EQ(append(A, this->of({{3, 4, 5}}), dense1D<unsigned>()), 0);
    EXPECT_EQ(append(A, typename TestFixture::matrix(), dense1D<unsigned>()), 0);
    EXPECT_EQ(A, this->of({{1, 2}}));
}

TYPED_TEST(Append, OfListedColumnsGivesAnEmptyMatrixTheRowsOfTheSource)
{
    typename TestFixture::matrix A;
    EXPECT_EQ(append(A, this->of({{3, 4}, {5, 6}}), indices({1})), 0);
    EXPECT_EQ(A, this->of({{5, 6}}));
    auto no_columns = filled<TypeParam>(3, 0, 0);
    EXPECT_EQ(append(no_columns, this->of({{3, 4}, {5, 6}}), indices({1})), 0);
    EXPECT_EQ(no_columns, this->of({{5, 6}}));
}

TYPED_TEST(Append, KeepsColumnsWithoutRowsAsColumnsOfZeros)
{
    auto listed = filled<TypeParam>(0, 2, 0);
    EXPECT_EQ(append(listed, this->of({{3, 4}, {5, 6}}), indices({1})), 0);
    EXPECT_EQ(listed, this->of({{0, 0}, {0, 0}, {5, 6}}));
    auto whole = filled<TypeParam>(0, 2, 0);
    EXPECT_EQ(append(whole, this->of({{3, 4}, {5, 6}})), 0);
    EXPECT_EQ(whole, this->of({{0, 0}, {0, 0}, {3, 4}, {5, 6}}));
}

TYPED_TEST(Append, CountsColumnsWithoutRowsAmongTheirLike)
{
    auto A = filled<TypeParam>(0, 2, 0);
    EXPECT_EQ(append(A, filled<TypeParam>(0, 3, 0)), 0);
    EXPECT_EQ(A.rows, 0u);
    EXPECT_EQ(A.cols, 5u);
    EXPECT_EQ(append(A, A), 0);
    EXPECT_EQ(A.cols, 10u);
    EXPECT_EQ(append(A, A, indices({9, 9})), 0);
    EXPECT_EQ(A.cols, 12u);
}

TYPED_TEST(Append, OfListedColumnsChecksRowsThenColumns)
{
    const auto before = this->of({{1, 2}});
    auto A = before;
    const auto other_rows = this->of({{1, 2, 3}});
    const auto same_rows = this->of({{1, 2}, {3, 4}});
    EXPECT_EQ(append(A, other_rows, indices({0})), -1);
    EXPECT_EQ(append(A, other_rows, indices({5})), -1);
    EXPECT_EQ(append(A, same_rows, indices({0, 2})), -3);
    EXPECT_EQ(append(A, same_rows, indices({N, 0})), -3);
    EXPECT_EQ(append(A, filled<TypeParam>(2, 0, 0), indices({0})), -3);
    EXPECT_EQ(append(A, typename TestFixture::matrix(), indices({0})), -1);
    EXPECT_EQ(A, before);
    typename TestFixture::matrix empty;
    EXPECT_EQ(append(empty, same_rows, indices({2})), -3);
    EXPECT_EQ(empty.rows + empty.cols + empty.size, 0u);
}

TYPED_TEST(Append, OfARangeTakesAllColumnsInOrder)
{
    const typename TestFixture::matrix matrices[] = {this->of({{1, 2}}), this->of({{3, 4}, {5, 6}})};
    typename TestFixture::matrix A;
    EXPECT_EQ(append(A, matrices, matrices + 2), 0);
    EXPECT_EQ(A, this->of({{1, 2}, {3, 4}, {5, 6}}));
    EXPECT_EQ(append(A, matrices[0]), 0);
    EXPECT_EQ(A, this->of({{1, 2}, {3, 4}, {5, 6}, {1, 2}}));
}

TYPED_TEST(Append, OfAnEmptyRangeDoesNothing)
{
    const typename TestFixture::matrix* null = nullptr;
    auto A = this->of({{1, 2}});
    EXPECT_EQ(append(A, null, null), 0);
    EXPECT_EQ(append(A, &A, &A), 0);
    EXPECT_EQ(A, this->of({{1, 2}}));
    auto no_rows = filled<TypeParam>(0, 4, 0);
    EXPECT_EQ(append(no_rows, null, null), 0);
    EXPECT_EQ(no_rows.cols, 4u);
}

TYPED_TEST(Append, OfARangeChecksItsOrderThenTheRows)
{
    const typename TestFixture::matrix matrices[] = {this->of({{1, 2}}), this->of({{3, 4, 5}})};
    auto A = this->of({{7, 8}});
    EXPECT_EQ(append(A, matrices + 2, matrices), -2);
    EXPECT_EQ(append(A, matrices, matrices + 2), -1);
    EXPECT_EQ(append(A, matrices[1]), -1);
    EXPECT_EQ(A, this->of({{7, 8}}));
    typename TestFixture::matrix empty;
    EXPECT_EQ(append(empty, matrices, matrices + 2), -1);
    EXPECT_EQ(empty.rows + empty.cols, 0u);
}

TYPED_TEST(Append, KeepsTheRowsOfAMatrixWithoutColumns)
{
    auto A = filled<TypeParam>(3, 0, 0);
    EXPECT_EQ(append(A, this->of({{1, 2}})), -1);
    EXPECT_EQ(A.rows, 3u);
    EXPECT_EQ(append(A, this->of({{1, 2, 3}})), 0);
    EXPECT_EQ(A, this->of({{1, 2, 3}}));
}

TYPED_TEST(Append, OfAMatrixToItselfDoublesIt)
{
    auto A = this->of({{1, 2}, {3, 4}});
    EXPECT_EQ(append(A, A), 0);
    EXPECT_EQ(A, this->of({{1, 2}, {3, 4}, {1, 2}, {3, 4}}));
    EXPECT_EQ(append(A, A, indices({3, 0})), 0);
    EXPECT_EQ(A, this->of({{1, 2}, {3, 4}, {1, 2}, {3, 4}, {3, 4}, {1, 2}}));
}

TYPED_TEST(Append, OfARangeWithItselfInItReadsItAsItWas)
{
    typename TestFixture::matrix matrices[] = {this->of({{5, 6}}), this->of({{1, 2}}), this->of({{3, 4}})};
    EXPECT_EQ(append(matrices[1], matrices, matrices + 3), 0);
    EXPECT_EQ(matrices[1], this->of({{1, 2}, {5, 6}, {1, 2}, {3, 4}}));

    auto padded = as_padded_view(this->of({{1, 2}, {3, 4}}), TypeParam{9});
    EXPECT_EQ(append(padded, padded), 0);
    EXPECT_EQ(padded, this->of({{1, 2}, {3, 4}, {1, 2}, {3, 4}}));
}

TYPED_TEST(Append, ReadsViewsOfTheMatrixThatItExtends)
{
    auto A = this->of({{1, 2}, {3, 4}, {5, 6}});
    const auto B = A.sub_matrix(0, 1, 2, 2);
    EXPECT_EQ(append(A, B), 0);
    EXPECT_EQ(A, this->of({{1, 2}, {3, 4}, {5, 6}, {3, 4}, {5, 6}}));
    EXPECT_EQ(B, this->of({{3, 4}, {5, 6}}));
}

TYPED_TEST(Append, ToAViewLeavesTheColumnsBehindItAlone)
{
    auto whole = this->of({{1, 2}, {3, 4}, {5, 6}});
    auto head = whole.sub_matrix(0, 0, 2, 1);
    EXPECT_EQ(append(head, whole, indices({2, 1})), 0);
    EXPECT_EQ(head, this->of({{1, 2}, {5, 6}, {3, 4}}));
    EXPECT_EQ(whole, this->of({{1, 2}, {3, 4}, {5, 6}}));
}

TYPED_TEST(Append, ReadsPaddedMatrices)
{
    auto A = this->of({{7, 8}});
    EXPECT_EQ(append(A, as_padded_view(this->of({{1, 2}, {3, 4}}), TypeParam{9})), 0);
    EXPECT_EQ(append(A, as_padded_view(this->of({{1, 2}, {3, 4}}), TypeParam{9}), indices({1})), 0);
    EXPECT_EQ(A, this->of({{7, 8}, {1, 2}, {3, 4}, {3, 4}}));
}

TYPED_TEST(Append, GrowsInAMatrixThatIsTheOnlyOwnerOfItsPadding)
{
    typename TestFixture::matrix A;
    {
        typename TestFixture::matrix whole(4, 6, TypeParam{9});
        A = typename TestFixture::matrix();
        A.shallow_copy(whole.sub_matrix(1, 0, 2, 3));
    }
    EXPECT_EQ(append(A, this->of({{1, 2}, {3, 4}})), 0);
    EXPECT_EQ(A, this->of({{9, 9}, {9, 9}, {9, 9}, {1, 2}, {3, 4}}));
    EXPECT_EQ(append(A, this->of({{5, 6}, {7, 8}, {0, 1}, {2, 3}})), 0);
    EXPECT_EQ(A, this->of({{9, 9}, {9, 9}, {9, 9}, {1, 2}, {3, 4}, {5, 6}, {7, 8}, {0, 1}, {2, 3}}));
}

TYPED_TEST(Append, UsesReservedRoom)
{
    auto A = this->of({{1, 2}});
    ASSERT_TRUE(A.reserve(2, 50));
    const auto* block = A.buffer->data;
    EXPECT_EQ(append(A, this->of({{3, 4}})), 0);
    EXPECT_EQ(append(A, A, indices({0, 1})), 0);
    EXPECT_EQ(A.buffer->data, block);
    EXPECT_EQ(A, this->of({{1, 2}, {3, 4}, {1, 2}, {3, 4}}));
}

// Moving all columns for each part would copy terabytes.
TYPED_TEST(Append, PartByPartStaysLinear)
{
    typename TestFixture::matrix A;
    const auto part = this->of({{1, 2, 3}});
    for (unsigned k = 0; k < 400000; ++k) ASSERT_EQ(append(A, part), 0);
    for (unsigned k = 0; k < 400000; ++k) ASSERT_EQ(append(A, A, indices({k})), 0);
    EXPECT_EQ(A.cols, 800000u);
    EXPECT_EQ(A.sub_matrix(0, 799999, 3, 1), part);
}

TYPED_TEST(Append, BeyondAnyMemoryChangesNothing)
{
    auto A = filled<TypeParam>(0, 5, 0);
    auto B = filled<TypeParam>(0, ~std::uint64_t{0}, 0);
    EXPECT_EQ(append(A, B), -199);
    EXPECT_EQ(A.cols, 5u);
    auto wide = filled<TypeParam>(0, std::uint64_t{1} << 62, 0);
    EXPECT_EQ(append(wide, this->of({{1, 2}})), -199);
    EXPECT_EQ(wide.rows, 0u);
    EXPECT_EQ(wide.cols, std::uint64_t{1} << 62);
}

TEST(AppendOfCoordinates, RefusesAnEmptyMatrixOfOtherRows)
{
    auto A = test::points({{1, 2, 3}});
    EXPECT_EQ(append(A, dense2D<double>()), -1);
    EXPECT_EQ(append(A, filled(2, 0, 0.0)), -1);
    EXPECT_EQ(append(A, filled(0, 2, 0.0)), -1);
    EXPECT_EQ(append(A, filled(3, 0, 0.0)), 0);
    const dense2D<double> matrices[] = {test::points({{1, 2, 3}}), dense2D<double>()};
    EXPECT_EQ(append(A, matrices, matrices + 2), -1);
    EXPECT_EQ(A, test::points({{1, 2, 3}}));
}

TEST(AppendOfCoordinates, TakesTheRowsOfTheFirstMatrixThatHasSome)
{
    const dense2D<double> matrices[] = {filled(2, 0, 0.0), test::points({{1, 2}})};
    dense2D<double> A;
    EXPECT_EQ(append(A, matrices, matrices + 2), 0);
    EXPECT_EQ(A, test::points({{1, 2}}));
    const dense2D<double> without_rows_first[] = {dense2D<double>(), test::points({{1, 2}})};
    dense2D<double> B;
    EXPECT_EQ(append(B, without_rows_first, without_rows_first + 2), -1);
    EXPECT_EQ(B.rows, 0u);
    auto C = filled(0, 2, 0.0);
    EXPECT_EQ(append(C, filled(3, 0, 0.0)), 0);
    EXPECT_EQ(C, filled(3, 2, 0.0));
}

TEST(AppendOfConnectivities, PassesOverMatricesWithoutEntries)
{
    const dense2D<unsigned> matrices[] = {filled(4, 0, 0u), filled(0, 2, 0u), test::columns({{1, 2}}),
                                          dense2D<unsigned>()};
    auto A = test::columns({{7, 8}});
    EXPECT_EQ(append(A, matrices, matrices + 4), 0);
    EXPECT_EQ(A, test::columns({{7, 8}, {1, 2}}));
    dense2D<unsigned> B;
    EXPECT_EQ(append(B, matrices, matrices + 4), 0);
    EXPECT_EQ(B, test::columns({{1, 2}}));
    EXPECT_EQ(append(B, dense2D<unsigned>()), 0);
    EXPECT_EQ(B, test::columns({{1, 2}}));
}

TEST(AppendOfConnectivities, TakesAListThatLiesInTheMatrix)
{
    auto A = test::columns({{1, 0}, {3, 4}});
    EXPECT_EQ(append(A, A, A.col(0)), 0);
    EXPECT_EQ(A, test::columns({{1, 0}, {3, 4}, {3, 4}, {1, 0}}));
}

}  // namespace
