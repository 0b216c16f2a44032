#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "support/classic_locale.h"
#include "support/matrices.h"

// A connectivity is empty when rows x columns is 0, whichever of the two it is: every operation then does the same.

using namespace zeb::tessolv;
using test::columns;
using test::indices;
using test::points;

namespace {

template <class... Values>
std::string text(const Values&... values)
{
    const test::classic_locale classic;
    std::ostringstream out;
    ((out << testing::PrintToString(values) << "; "), ...);
    return out.str();
}

struct operation {
    const char* name;
    std::string (*outcome)(dense2D<unsigned> empty);
    std::string expected;
};

void PrintTo(const operation& row, std::ostream* out)
{
    *out << row.name;
}

const auto before = columns({{7, 8}, {8, 9}});
const auto before_list = indices({7, 8});
const auto nodes = points({{0, 0}, {0, 0}});

const operation operations[] = {
    {"check_IDs", [](dense2D<unsigned> m) { return text(check_IDs(m, 0), check_IDs(m, EL_HEXA8, 0)); },
     text(true, true)},
    {"get_neighbors",
     [](dense2D<unsigned> m) {
         auto out = before;
         return text(get_neighbors(m, EL_TRIA3, true, out), out);
     },
     text(0, before)},
    {"get_boundaries",
     [](dense2D<unsigned> m) {
         auto out = before;
         return text(get_boundaries(m, before, EL_TRIA3, out), out);
     },
     text(0, before)},
    {"get_ancestors",
     [](dense2D<unsigned> m) {
         auto out = before_list;
         return text(get_ancestors(m, out), out);
     },
     text(0, before_list)},
    {"copy_edges",
     [](dense2D<unsigned> m) {
         auto one = before, ranged = before;
         const auto kinds = test::types({EL_TRIA3});
         return text(copy_edges(m, EL_TRIA3, one), one, copy_edges(&m, &m + 1, kinds, ranged), ranged);
     },
     text(0, before, 0, before)},
    {"unique_indices",
     [](dense2D<unsigned> m) {
         auto out = before_list;
         return text(unique_indices(out, m), out, count_unique_indices(m));
     },
     text(0, before_list, 0)},
    {"change_indices",
     [](dense2D<unsigned> m) {
         const auto shape = m;
         change_indices(m, before_list);
         return text(m == shape);
     },
     text(true)},
    {"append",
     [](dense2D<unsigned> m) {
         auto out = before;
         return text(append(out, m), out, append(out, &m, &m + 1), out);
     },
     text(0, before, 0, before)},
    {"simplify",
     [](dense2D<unsigned> m) {
         auto pos = nodes;
         dense1D<unsigned> new_IDs;
         return text(simplify(pos, m, new_IDs), new_IDs, pos);
     },
     text(0, indices({test::N, test::N}), dense2D<double>(2, 0))},
    {"merge",
     [](dense2D<unsigned> m) {
         auto new_IDs = before_list, also = before_list;
         return text(merge(nodes, m, new_IDs, 1.0), new_IDs, merge(nodes, &m, &m + 1, also, 1.0, 2), also);
     },
     text(0, indices({}), 0, indices({}))},
    {"node_detector",
     [](dense2D<unsigned> m) {
         node_detector detector(nodes);
         const auto inserted = detector.insert(m);
         const int code = detector.reinit(nodes, m);
         return text(node_detector(nodes, m).size(), inserted, code, detector.size());
     },
     text(0ul, 0ul, 0, 0ul)},
};

class EmptyMatrix : public testing::TestWithParam<operation> {};

TEST_P(EmptyMatrix, WithRowsOrWithColumnsIsEmptyAlike)
{
    for (const auto& empty : {dense2D<unsigned>(), dense2D<unsigned>(3, 0), dense2D<unsigned>(0, 3)})
        EXPECT_EQ(GetParam().outcome(empty), GetParam().expected) << empty.rows << " x " << empty.cols;
}

INSTANTIATE_TEST_SUITE_P(Operations, EmptyMatrix, testing::ValuesIn(operations),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
