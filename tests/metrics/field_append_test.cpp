#include <gtest/gtest.h>

#include <random>

#include "support/matrices.h"

using namespace zeb::tessolv;
using test::filled;
using test::indices;

namespace {

using field = dense1D<float>;
using tensor_field = dense2D<float>;

field sizes(const std::vector<float>& values)
{
    return test::list_of(values);
}
tensor_field tensors(const std::vector<std::vector<float>>& columns)
{
    return test::matrix_of(columns);
}

TEST(AppendField, PutsTheColumnsOfTheMatricesBehindThoseOfTheFirst)
{
    auto A = tensors({{1, 0, 1}});
    const tensor_field more[] = {tensors({{2, 0, 2}, {3, 0, 3}}), tensor_field(), filled(7, 0, 0.f),
                                 tensors({{4, 0, 4}})};
    EXPECT_EQ(append(A, more, more + 4), 0);
    EXPECT_EQ(A, tensors({{1, 0, 1}, {2, 0, 2}, {3, 0, 3}, {4, 0, 4}}));
    EXPECT_EQ(append(A, more[0]), 0);
    EXPECT_EQ(A.cols, 6u);
}

TEST(AppendField, WithoutRowsTakesThoseOfTheFirstMatrixThatHasEntries)
{
    tensor_field A;
    const tensor_field more[] = {filled(3, 0, 0.f), tensors({{1, 2, 3, 4, 5, 6}})};
    EXPECT_EQ(append(A, more, more + 2), 0);
    EXPECT_EQ(A, more[1]);
    EXPECT_NE(A.buffer, more[1].buffer);
    tensor_field B;
    EXPECT_EQ(append(B, more[1]), 0);
    EXPECT_EQ(B, more[1]);
}

TEST(AppendField, OfNothingLeavesTheFieldAsItWas)
{
    auto A = tensors({{1, 0, 1}});
    EXPECT_EQ(append(A, static_cast<const tensor_field*>(nullptr), static_cast<const tensor_field*>(nullptr)), 0);
    EXPECT_EQ(append(A, filled(6, 0, 0.f)), 0);
    EXPECT_EQ(append(A, tensor_field()), 0);
    EXPECT_EQ(append(A, filled(4, 4, 1.f), indices({})), 0);
    EXPECT_EQ(A, tensors({{1, 0, 1}}));
}

TEST(AppendField, RefusesOtherRowsAndReversedRangesWithMinusThree)
{
    const auto before = tensors({{1, 0, 1}});
    auto A = before;
    const tensor_field more[] = {before, tensors({{1, 2, 3, 4, 5, 6}}), before};
    EXPECT_EQ(append(A, more[1]), -3);
    EXPECT_EQ(append(A, more, more + 3), -3);
    EXPECT_EQ(append(A, more + 1, more), -3);
    EXPECT_EQ(append(A, more + 2, more + 1), -3);
    EXPECT_EQ(A, before);
    tensor_field nothing;
    EXPECT_EQ(append(nothing, more, more + 2), -3);
    EXPECT_TRUE(nothing.empty());
    auto rows_only = filled(6, 0, 0.f);  // rows count also without columns
    EXPECT_EQ(append(rows_only, before), -3);
    EXPECT_EQ(append(rows_only, more[1]), 0);
    EXPECT_EQ(rows_only, more[1]);
}

TEST(AppendField, TakesListedColumnsInTheOrderOfTheList)
{
    const auto B = tensors({{1, 0, 1}, {2, 0, 2}, {3, 0, 3}});
    auto A = tensors({{9, 0, 9}});
    EXPECT_EQ(append(A, B, indices({2, 0, 2})), 0);
    EXPECT_EQ(A, tensors({{9, 0, 9}, {3, 0, 3}, {1, 0, 1}, {3, 0, 3}}));
    auto fresh = filled(6, 0, 0.f);  // a field without entries takes any rows
    EXPECT_EQ(append(fresh, B, indices({1})), 0);
    EXPECT_EQ(fresh, tensors({{2, 0, 2}}));
}

TEST(AppendField, RefusesListedColumnsOfOtherRowsAndBeyondTheLast)
{
    const auto B = tensors({{1, 0, 1}, {2, 0, 2}});
    const auto before = tensors({{1, 2, 3, 4, 5, 6}});
    auto A = before;
    EXPECT_EQ(append(A, B, indices({0})), -1);
    EXPECT_EQ(append(A, B, indices({2})), -1);  // rows before indices
    EXPECT_EQ(append(A, A, indices({0, 1})), -3);
    EXPECT_EQ(append(A, A, indices({0xFFFFFFFE})), -3);
    EXPECT_EQ(append(A, A, indices({test::N})), -3);
    EXPECT_EQ(A, before);
    tensor_field nothing;
    EXPECT_EQ(append(nothing, tensor_field(), indices({0})), -3);
}

TEST(AppendField, MayTakeItself)
{
    auto A = tensors({{1, 0, 1}, {2, 0, 2}});
    EXPECT_EQ(append(A, A), 0);
    EXPECT_EQ(A, tensors({{1, 0, 1}, {2, 0, 2}, {1, 0, 1}, {2, 0, 2}}));
    EXPECT_EQ(append(A, A, indices({3, 0})), 0);
    EXPECT_EQ(A.cols, 6u);
    EXPECT_EQ(A.sub_matrix(0, 4, 3, 2), tensors({{2, 0, 2}, {1, 0, 1}}));
    tensor_field range[] = {tensors({{5, 5, 5}}), tensors({{6, 6, 6}})};
    EXPECT_EQ(append(range[0], range, range + 2), 0);
    EXPECT_EQ(range[0], tensors({{5, 5, 5}, {5, 5, 5}, {6, 6, 6}}));
}

TEST(AppendSizes, PutsTheVectorsBehindTheFirst)
{
    auto A = sizes({1});
    const field more[] = {sizes({2, 3}), field(), sizes({4})};
    EXPECT_EQ(append(A, more, more + 3), 0);
    EXPECT_EQ(A, sizes({1, 2, 3, 4}));
    EXPECT_EQ(append(A, more[0]), 0);
    EXPECT_EQ(A, sizes({1, 2, 3, 4, 2, 3}));
    field fresh;
    EXPECT_EQ(append(fresh, field()), 0);
    EXPECT_EQ(fresh.size, 0u);
    EXPECT_EQ(append(fresh, more[0]), 0);
    EXPECT_EQ(fresh, sizes({2, 3}));
    EXPECT_NE(fresh.buffer, more[0].buffer);
    EXPECT_EQ(append(fresh, static_cast<const field*>(nullptr), static_cast<const field*>(nullptr)), 0);
}

TEST(AppendSizes, RefusesAReversedRange)
{
    auto A = sizes({1});
    const field more[] = {sizes({2, 3}), sizes({4})};
    EXPECT_EQ(append(A, more + 1, more), -3);
    EXPECT_EQ(A, sizes({1}));
}

TEST(AppendSizes, TakesListedEntriesInTheOrderOfTheList)
{
    auto A = sizes({1});
    EXPECT_EQ(append(A, sizes({5, 6, 7}), indices({2, 0, 2})), 0);
    EXPECT_EQ(A, sizes({1, 7, 5, 7}));
    EXPECT_EQ(append(A, field(), indices({})), 0);
    EXPECT_EQ(append(A, sizes({5}), indices({0, 1})), -3);
    EXPECT_EQ(append(A, sizes({5}), indices({test::N})), -3);
    EXPECT_EQ(append(A, field(), indices({0})), -3);
    EXPECT_EQ(A, sizes({1, 7, 5, 7}));
}

TEST(AppendSizes, MayTakeItself)
{
    auto A = sizes({1, 2});
    EXPECT_EQ(append(A, A), 0);
    EXPECT_EQ(A, sizes({1, 2, 1, 2}));
    EXPECT_EQ(append(A, A, indices({1, 0})), 0);
    EXPECT_EQ(A, sizes({1, 2, 1, 2, 2, 1}));
    field range[] = {sizes({5}), sizes({6}), sizes({7})};
    EXPECT_EQ(append(range[1], range, range + 3), 0);
    EXPECT_EQ(range[1], sizes({6, 5, 6, 7}));
}

TEST(AppendSizes, LeavesOthersThatShareTheBufferAlone)
{
    auto whole = sizes({1, 2, 3, 4});
    auto A = whole.sub_vector(0, 1);
    EXPECT_EQ(append(A, whole.sub_vector(2, 2)), 0);
    EXPECT_EQ(A, sizes({1, 3, 4}));
    EXPECT_EQ(whole, sizes({1, 2, 3, 4}));
    auto B = whole.sub_vector(0, 2);
    EXPECT_EQ(append(B, whole, indices({3, 2})), 0);
    EXPECT_EQ(B, sizes({1, 2, 4, 3}));
    EXPECT_EQ(whole, sizes({1, 2, 3, 4}));
}

TEST(AppendField, LeavesOthersThatShareTheBufferAlone)
{
    const auto values = tensors({{1, 0, 1}, {2, 0, 2}, {3, 0, 3}});
    auto whole = values;
    auto A = whole.sub_matrix(0, 0, 3, 1);
    EXPECT_EQ(append(A, whole.sub_matrix(0, 2, 3, 1)), 0);
    EXPECT_EQ(A, tensors({{1, 0, 1}, {3, 0, 3}}));
    EXPECT_EQ(whole, values);
}

// Every form on random fields, as appending to a standard vector.
TEST(AppendSizes, AgreesWithStandardVectors)
{
    std::mt19937 random(33);
    const auto random_values = [&] {
        std::vector<float> values(random() % 5);
        for (float& v : values) v = static_cast<float>(random() % 100);
        return values;
    };
    for (int round = 0; round < 2000; ++round) {
        auto expected = random_values();
        auto A = sizes(expected);
        std::vector<field> more;
        for (unsigned long k = random() % 4; k > 0; --k) {
            const auto values = random_values();
            more.push_back(sizes(values));
            expected.insert(expected.end(), values.begin(), values.end());
        }
        ASSERT_EQ(append(A, more.data(), more.data() + more.size()), 0);
        const auto B = random_values();
        dense1D<unsigned> entries(B.empty() ? 0 : random() % 4);
        for (unsigned& i : entries) {
            i = static_cast<unsigned>(random() % B.size());
            expected.push_back(B[i]);
        }
        ASSERT_EQ(append(A, sizes(B), entries), 0);
        ASSERT_EQ(A, sizes(expected));

        // The same as a matrix of three equal rows, from views.
        tensor_field M(3, 0);
        const auto as_matrix = [](const field& values) {
            tensor_field m(3, values.size);
            for (std::uint64_t j = 0; j < values.size; ++j)
                for (unsigned i = 0; i < 3; ++i) m(i, j) = values[j];
            return test::as_padded_view(m, -1.f);
        };
        const std::uint64_t first = random() % (A.size + 1);
        ASSERT_EQ(append(M, as_matrix(A.sub_vector(0, first))), 0);
        dense1D<unsigned> rest(A.size - first);
        for (std::uint64_t k = 0; k < rest.size; ++k) rest[k] = static_cast<unsigned>(first + k);
        ASSERT_EQ(append(M, as_matrix(A), rest), 0);
        ASSERT_EQ(M, as_matrix(A));
    }
}

}  // namespace
