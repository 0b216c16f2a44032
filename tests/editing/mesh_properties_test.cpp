#include "editing/properties.h"

#include <map>
#include <type_traits>

using namespace zeb::tessolv;
using namespace test;

namespace {

// A matrix as the rules of appending see it: columns may have no rows, rows no columns.
template <class T>
struct table {
    std::size_t rows = 0;
    std::vector<std::vector<T>> cols;

    bool empty() const { return rows == 0 || cols.empty(); }

    void take_rows(std::size_t r)
    {
        rows = r;
        for (auto& c : cols) c.resize(r, T{0});
    }

    int append(const table& B, const list& listed)
    {
        if (listed.empty()) return 0;
        if (!empty() && rows != B.rows) return -1;
        if (*std::max_element(listed.begin(), listed.end()) >= B.cols.size()) return -3;
        if (empty()) take_rows(B.rows);
        for (const unsigned j : listed) cols.push_back(B.cols[j]);
        return 0;
    }

    int append(const std::vector<table>& range)
    {
        constexpr bool of_coordinates = std::is_same_v<T, double>;
        std::size_t r = rows;
        for (const table& B : range)
            if (r == 0 && (of_coordinates || !B.empty())) r = B.rows;
        for (const table& B : range)
            if (B.rows != r && (of_coordinates || !B.empty())) return -1;
        take_rows(r);
        for (const table& B : range)
            if (B.rows == r) cols.insert(cols.end(), B.cols.begin(), B.cols.end());
        return 0;
    }
};

template <class T>
class AppendProperties : public EditingProperties {
protected:
    table<T> random_table()
    {
        table<T> t{one_in(3) ? 0 : 2 + below(2), std::vector<std::vector<T>>(below(4))};
        for (auto& c : t.cols)
            for (c.resize(t.rows); auto& v : c) v = T(below(100));
        return t;
    }

    dense2D<T> hold(const table<T>& t)
    {
        dense2D<T> m(t.rows, t.cols.size());
        for (std::size_t j = 0; j < m.cols; ++j)
            for (std::size_t i = 0; i < m.rows; ++i) m(i, j) = t.cols[j][i];
        return EditingProperties::hold(m);
    }

    void expect_equal(const dense2D<T>& m, const table<T>& t)
    {
        ASSERT_EQ(m.rows, t.rows);
        ASSERT_EQ(m.cols, t.cols.size());
        ASSERT_EQ(m.size, t.rows * t.cols.size());
        for (std::size_t j = 0; j < m.cols; ++j)
            for (std::size_t i = 0; i < m.rows; ++i) ASSERT_EQ(m(i, j), t.cols[j][i]) << i << ", " << j;
    }
};
using entry_types = testing::Types<double, unsigned>;
TYPED_TEST_SUITE(AppendProperties, entry_types, );

TYPED_TEST(AppendProperties, ListedColumnsFollowTheRules)
{
    int appended = 0;
    for (int n = 0; n < cases; ++n) {
        table<TypeParam> expected = this->random_table();
        const table<TypeParam> source = this->random_table();
        list listed(this->below(4));
        const unsigned bound = unsigned(source.cols.size()) + (this->one_in(4) ? 2 : 0);
        for (auto& j : listed) j = this->below(std::max(bound, 1u));
        auto A = this->hold(expected);
        const int code = expected.append(source, listed);
        appended += code == 0 && !listed.empty();
        ASSERT_EQ(append(A, this->hold(source), this->EditingProperties::hold(listed)), code);
        this->expect_equal(A, expected);
        if (this->HasFatalFailure()) return;
    }
    EXPECT_GT(appended, cases / 6);
}

TYPED_TEST(AppendProperties, RangesFollowTheRules)
{
    int appended = 0;
    for (int n = 0; n < cases; ++n) {
        table<TypeParam> expected = this->random_table();
        std::vector<table<TypeParam>> tables(this->below(4));
        std::vector<dense2D<TypeParam>> range;
        for (auto& t : tables) {
            t = this->random_table();
            if (this->one_in(2)) t.take_rows(expected.rows);
            range.push_back(this->hold(t));
        }
        auto A = this->hold(expected);
        const int code = expected.append(tables);
        appended += code == 0 && !tables.empty();
        ASSERT_EQ(append(A, range.data(), range.data() + range.size()), code);
        this->expect_equal(A, expected);
        if (this->HasFatalFailure()) return;
        if (tables.empty()) continue;
        const int second = expected.append({tables[0]});
        ASSERT_EQ(append(A, range[0]), second);
        this->expect_equal(A, expected);
        if (this->HasFatalFailure()) return;
        ASSERT_EQ(append(A, range.data() + range.size(), range.data()), -2);
    }
    EXPECT_GT(appended, cases / 6);
}

TEST_F(EditingProperties, SimplifyDropsTheNodesThatAreNotInUse)
{
    int dropped = 0, kept = 0;
    for (int n = 0; n < cases; ++n) {
        const unsigned nodes = 1 + below(12);
        std::vector<element_list> meshes;
        std::vector<dense2D<unsigned>> range;
        for (unsigned k = 1 + below(3); k > 0; --k) {
            const std::size_t rows = 1 + below(4);
            meshes.push_back(random_elements(rows, 6, nodes, entries::nodes));
            range.push_back(hold(rows, meshes.back()));
        }
        dense2D<double> pos(2, nodes);
        for (unsigned j = 0; j < nodes; ++j) pos(0, j) = -(pos(1, j) = 10.0 + j);

        list used = distinct(flattened(meshes), {});
        const bool all = used.size() == nodes;
        (all ? kept : dropped)++;
        if (all) std::sort(used.begin(), used.end());
        std::map<unsigned, unsigned> number{{N, N}};
        for (unsigned i = 0; i < used.size(); ++i) number[used[i]] = i;

        dense1D<unsigned> new_IDs = indices({7});
        const int expected_result = all ? 0 : static_cast<int>(used.size());
        ASSERT_EQ(range.size() == 1 ? simplify(pos, range[0], new_IDs)
                                    : simplify(pos, range.data(), range.data() + range.size(), new_IDs),
                  expected_result);
        ASSERT_EQ(pos.cols, used.size());
        for (unsigned i = 0; i < used.size(); ++i) ASSERT_TRUE(pos(1, i) == 10.0 + used[i] && pos(0, i) == -pos(1, i));
        ASSERT_EQ(new_IDs.size, nodes);
        for (unsigned j = 0; j < nodes; ++j) ASSERT_EQ(new_IDs[j], number.count(j) != 0 ? number[j] : N);
        for (std::size_t k = 0; k < meshes.size(); ++k) {
            for (auto& e : meshes[k])
                for (auto& v : e) v = number[v];
            ASSERT_EQ(values_of(range[k]), meshes[k]);
        }
    }
    EXPECT_GT(std::min(dropped, kept), cases / 20);
}

TEST_F(EditingProperties, SimplifyAndCopyMeshRefuseIndicesThatAreNoNodes)
{
    int refused = 0;
    for (int n = 0; n < cases; ++n) {
        const unsigned nodes = 1 + below(12);
        const std::size_t rows = 1 + below(4);
        const element_list meshes[] = {random_elements(rows, 6, nodes + below(2), entries::any),
                                       random_elements(rows, 6, nodes + below(2), entries::any)};
        dense2D<unsigned> range[] = {hold(rows, meshes[0]), hold(rows, meshes[1])};
        const auto fits = [&](unsigned k) {
            const list all = flattened({meshes[k]});
            return std::all_of(all.begin(), all.end(), [&](unsigned v) { return v == N || v < nodes; });
        };
        const dense2D<double> before(3, nodes, 0.5);
        dense2D<double> pos = before;
        if (!fits(0)) {
            dense2D<unsigned> connect = columns({{7}});
            ASSERT_EQ(copy_mesh(pos, connect, range[0]), -3);
            ASSERT_EQ(connect, columns({{7}}));
            ASSERT_EQ(pos, before);
        }
        if (fits(0) && fits(1)) continue;
        ++refused;
        dense1D<unsigned> new_IDs = indices({7});
        ASSERT_EQ(simplify(pos, range, range + 2, new_IDs), -2);
        ASSERT_EQ(new_IDs.size, 0u);
        ASSERT_EQ(pos, before);
        for (unsigned k = 0; k < 2; ++k) ASSERT_EQ(values_of(range[k]), meshes[k]);
    }
    EXPECT_GT(refused, cases / 2);
    EXPECT_LT(refused, cases - 50);
}

TEST_F(EditingProperties, CopyMeshCopiesElementsWithTheirNodes)
{
    for (int n = 0; n < cases; ++n) {
        const unsigned nodes = 1 + below(8);
        const std::size_t rows = 1 + below(4);
        const auto elements = random_elements(rows, 6, nodes, entries::nodes);
        dense2D<double> pos(1, nodes);
        for (unsigned j = 0; j < nodes; ++j) pos(0, j) = j;
        list used = distinct(flattened({elements}), {});
        if (used.size() == nodes) std::sort(used.begin(), used.end());
        dense2D<unsigned> connect;
        ASSERT_EQ(copy_mesh(pos, connect, hold(rows, elements)), 0);
        ASSERT_EQ(pos.cols, nodes + used.size());
        for (unsigned j = 0; j < pos.cols; ++j) ASSERT_EQ(pos(0, j), j < nodes ? j : used[j - nodes]);
        ASSERT_EQ(connect.cols, elements.size());
        for (std::size_t e = 0; e < elements.size(); ++e) {
            for (std::size_t i = 0; i < rows; ++i) {
                ASSERT_EQ(connect(i, e) == N, elements[e][i] == N);
                if (connect(i, e) == N) continue;
                ASSERT_GE(connect(i, e), nodes);
                ASSERT_EQ(pos(0, connect(i, e)), elements[e][i]);
            }
        }
    }
}

TEST_F(EditingProperties, RemoveDegeneratedKeepsElementsOfDistinctNodes)
{
    for (int n = 0; n < cases; ++n) {
        const std::size_t rows = 1 + below(12);
        const auto elements =
            random_elements(rows, 10, static_cast<unsigned>(1 + rows * rows / 2 + below(9)), entries::any);
        element_list kept;
        list numbers;
        for (const auto& e : elements) {
            std::map<unsigned, int> uses;
            for (const unsigned v : e) ++uses[v];
            uses.erase(N);
            const bool degenerate = std::any_of(uses.begin(), uses.end(), [](const auto& u) { return u.second > 1; });
            numbers.push_back(degenerate ? N : static_cast<unsigned>(kept.size()));
            if (!degenerate) kept.push_back(e);
        }
        auto connect = hold(rows, elements);
        dense1D<unsigned> new_IDs;
        ASSERT_EQ(remove_degenerated(connect, new_IDs), elements.size() - kept.size());
        ASSERT_EQ(values_of(connect), kept);
        ASSERT_EQ(values_of(new_IDs), numbers);
    }
}

}  // namespace
