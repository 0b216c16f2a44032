#include "editing/properties.h"

// Results that are put where the arguments are, or that look into their buffers: everything is read as it was on entry,
// and an argument that is not the result itself stays.

using namespace zeb::tessolv;
using namespace test;

namespace {

class AliasedEditing : public EditingProperties {
protected:
    dense1D<unsigned> part_of(const dense1D<unsigned>& list)
    {
        const unsigned first = below(unsigned(list.size) + 1);
        return list.sub_vector(first, below(unsigned(list.size) - first + 1));
    }

    dense2D<unsigned> part_of(const dense2D<unsigned>& m)
    {
        const unsigned first = below(unsigned(m.cols) + 1);
        return m.sub_matrix(0, first, m.rows, below(unsigned(m.cols) - first + 1));
    }

    // A list of small values, at least one.
    dense1D<unsigned> small_list()
    {
        dense1D<unsigned> values(1 + below(12));
        for (auto& v : values) v = one_in(10) ? N : below(12);
        return values;
    }

    dense2D<unsigned> small_matrix(unsigned rows)
    {
        dense2D<unsigned> m(rows, 1 + below(5));
        for (unsigned j = 0; j < m.cols; ++j)
            for (unsigned i = 0; i < rows; ++i) m(i, j) = below(6);
        return m;
    }
};

TEST_F(AliasedEditing, UniqueIndicesAreAppendedToPartsOfTheirLists)
{
    for (int n = 0; n < cases; ++n) {
        const dense1D<unsigned> values = small_list();
        dense1D<unsigned> in = values;
        auto out = part_of(in);
        const auto exclude = part_of(in);
        dense1D<unsigned> apart = out, apart_exclude = exclude;
        ASSERT_EQ(unique_indices(apart, values, apart_exclude), 0);
        ASSERT_EQ(unique_indices(out, in, exclude), 0);
        ASSERT_EQ(out, apart) << n;

        const auto elements = small_matrix(1 + below(3));
        dense2D<unsigned> connect = elements;
        auto column = connect.col(below(unsigned(connect.cols)));
        apart = column;
        ASSERT_EQ(unique_indices(apart, elements), 0);
        ASSERT_EQ(unique_indices(column, connect), 0);
        ASSERT_EQ(column, apart) << n;
        ASSERT_EQ(connect, elements) << n;
    }
}

TEST_F(AliasedEditing, IndicesAreChangedByATableAmongThem)
{
    for (int n = 0; n < cases; ++n) {
        dense1D<unsigned> whole = small_list();
        auto ids = part_of(whole);
        const auto table = part_of(whole);
        dense1D<unsigned> apart = ids, apart_table = table;
        change_indices(apart, apart_table);
        change_indices(ids, table);
        ASSERT_EQ(ids, apart) << n;

        dense2D<unsigned> connect = small_matrix(1 + below(4));
        const auto column = connect.col(below(unsigned(connect.cols)));
        dense2D<unsigned> apart_connect = connect;
        apart_table = column;
        change_indices(apart_connect, apart_table);
        change_indices(connect, column);
        ASSERT_EQ(connect, apart_connect) << n;
    }
}

TEST_F(AliasedEditing, ValuesArePermutedByAPartOfThem)
{
    for (int n = 0; n < cases; ++n) {
        const dense1D<unsigned> before = small_list();
        dense1D<unsigned> whole = before;
        auto values = part_of(whole);
        const auto perm = part_of(whole);
        dense1D<unsigned> apart = values, apart_perm = perm;
        permutation(apart, apart_perm);
        permutation(values, perm);
        ASSERT_EQ(values, apart) << n;
        ASSERT_EQ(whole, before) << n;
    }
}

TEST_F(AliasedEditing, PositionsReplaceTheListsAndElementsThatAreMatched)
{
    for (int n = 0; n < cases; ++n) {
        dense1D<unsigned> ids1 = small_list(), ids2 = small_list(), in_1, in_2;
        ASSERT_EQ(get_IDs(ids1, ids2, in_1, in_2), 0);
        const bool exchanged = one_in(2);
        auto& first = exchanged ? ids2 : ids1;
        auto& second = exchanged ? ids1 : ids2;
        ASSERT_EQ(get_IDs(ids1, ids2, first, second), 0);
        ASSERT_EQ(first, in_1) << n;
        ASSERT_EQ(second, in_2) << n;

        const auto elements = small_matrix(1 + below(3));
        dense2D<unsigned> connect = elements;
        const auto other = part_of(connect);
        auto column1 = connect.col(0), column2 = connect.col(connect.cols - 1);
        const bool strict = one_in(2);
        ASSERT_EQ(get_IDs(elements, dense2D<unsigned>(other), in_1, in_2, strict), 0);
        ASSERT_EQ(get_IDs(connect, other, column1, column2, strict), 0);
        ASSERT_EQ(column1, in_1) << n;
        ASSERT_EQ(column2, in_2) << n;
        ASSERT_EQ(connect, elements) << n;
    }
}

TEST_F(AliasedEditing, PartsOfAMatrixAreAppendedToOneAnother)
{
    for (int n = 0; n < cases; ++n) {
        dense2D<unsigned> whole = small_matrix(3);
        auto A = part_of(whole);
        const auto B = one_in(2) ? part_of(whole) : A.sub_matrix(0, 0, A.rows, A.cols);
        dense1D<unsigned> cols = whole.col(0);
        for (auto& j : cols) j = B.cols != 0 ? below(unsigned(B.cols)) : 0;
        const dense2D<unsigned> before = whole, apart_B = B;
        dense2D<unsigned> apart = A;
        const int code = append(apart, apart_B, cols);
        ASSERT_EQ(code, B.cols != 0 ? 0 : -3);
        ASSERT_EQ(append(A, B, cols), code);
        ASSERT_EQ(A, apart) << n;
        ASSERT_EQ(append(apart, apart_B), 0);
        ASSERT_EQ(append(A, B), 0);
        ASSERT_EQ(A, apart) << n;
        ASSERT_EQ(whole, before) << n;
    }
}

TEST_F(AliasedEditing, NewNumbersReplaceColumnsOfTheElements)
{
    for (int n = 0; n < cases; ++n) {
        const auto elements = small_matrix(1 + below(4));
        dense2D<unsigned> connect = elements, apart = elements;
        dense1D<unsigned> numbers;
        auto column = connect.col(below(unsigned(connect.cols)));
        const int removed = remove_degenerated(apart, numbers);
        ASSERT_EQ(remove_degenerated(connect, column), removed);
        ASSERT_EQ(connect, apart) << n;
        ASSERT_EQ(column, numbers) << n;

        connect = apart = elements;
        dense2D<double> pos(2, 7, 0.5), apart_pos = pos;
        column.shallow_copy(connect.col(below(unsigned(connect.cols))));
        const int count = simplify(apart_pos, apart, numbers);
        ASSERT_EQ(simplify(pos, connect, column), count);
        ASSERT_EQ(connect, apart) << n;
        ASSERT_EQ(column, numbers) << n;
        ASSERT_EQ(pos, apart_pos) << n;
    }
}

TEST_F(AliasedEditing, CopiedElementsReplaceThoseTheyComeFrom)
{
    for (int n = 0; n < cases; ++n) {
        const auto elements = small_matrix(1 + below(4));
        dense2D<unsigned> whole = elements, apart;
        auto connect = part_of(whole);
        const auto source = one_in(2) ? part_of(whole) : connect.sub_matrix(0, 0, connect.rows, connect.cols);
        dense2D<double> pos(2, 6, 0.5), apart_pos = pos;
        ASSERT_EQ(copy_mesh(apart_pos, apart, dense2D<unsigned>(source)), 0);
        ASSERT_EQ(copy_mesh(pos, connect, source), 0);
        ASSERT_EQ(connect, apart) << n;
        ASSERT_EQ(pos, apart_pos) << n;
        ASSERT_EQ(whole, elements) << n;
    }
}

}  // namespace
