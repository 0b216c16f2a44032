#include <gtest/gtest.h>

#include "support/faults.h"
#include "support/matrices.h"

// Every set of faults that the arguments of a call may have: the code of the first check, and the outputs as it leaves
// them.

using namespace zeb::tessolv;
using namespace test;

namespace {

struct range_arguments {
    dense2D<unsigned> range[2] = {columns({{4, 2}}), columns({{2, 0, N}})};
    unsigned begin = 0, end = 2;

    dense2D<unsigned>* first() { return range + begin; }
    dense2D<unsigned>* last() { return range + end; }
    void be_empty() { begin = end = 1; }
    void be_reversed()
    {
        begin = 2;
        end = 0;
    }
};
using range_faults = std::vector<fault<range_arguments>>;

constexpr auto be_empty = [](range_arguments& a) { a.be_empty(); };
constexpr auto be_reversed = [](range_arguments& a) { a.be_reversed(); };
constexpr auto name_no_node = [](range_arguments& a) { a.range[1](0, 0) = 5; };

template <class T>
struct append_arguments {
    dense2D<T> A{2, 1, T{1}}, B{2, 2, T{5}};
    dense1D<unsigned> cols = indices({1});
    bool reversed = false;
};

template <class T>
class AppendCodes : public testing::Test {
};
using entry_types = testing::Types<double, unsigned>;
TYPED_TEST_SUITE(AppendCodes, entry_types, );

TYPED_TEST(AppendCodes, OfListedColumns)
{
    using arguments = append_arguments<TypeParam>;
    const std::vector<fault<arguments>> in_order{
        {0, outputs::kept, [](arguments& a) { a.cols.clear(); }},
        {-1, outputs::kept, [](arguments& a) { a.B.resize(3, 2, TypeParam{5}); }},
        {-3, outputs::kept, [](arguments& a) {
             a.cols = indices({0, 2});
         }}};
    for_every_set_of_faults(arguments(), in_order, [](const arguments& a, const auto* first) {
        dense2D<TypeParam> A = a.A;
        EXPECT_EQ(append(A, a.B, a.cols), first != nullptr ? first->code : 0);
        EXPECT_EQ(A, first != nullptr ? a.A : matrix_of<TypeParam>({{1, 1}, {5, 5}}));
    });
}

TYPED_TEST(AppendCodes, OfRanges)
{
    using arguments = append_arguments<TypeParam>;
    const std::vector<fault<arguments>> in_order{
        {-2, outputs::kept, [](arguments& a) { a.reversed = true; }},
        {-1, outputs::kept, [](arguments& a) { a.B.resize(3, 2, TypeParam{5}); }}};
    for_every_set_of_faults(arguments(), in_order, [](const arguments& a, const auto* first) {
        dense2D<TypeParam> A = a.A;
        EXPECT_EQ(a.reversed ? append(A, &a.B + 1, &a.B) : append(A, &a.B, &a.B + 1),
                  first != nullptr ? first->code : 0);
        EXPECT_EQ(A, first != nullptr ? a.A : matrix_of<TypeParam>({{1, 1}, {5, 5}, {5, 5}}));
        if (a.reversed) return;
        A = a.A;
        EXPECT_EQ(append(A, a.B), first != nullptr ? first->code : 0);
    });
}

TEST(EditingCodes, OfSimplify)
{
    const range_faults in_order{
        {0, outputs::emptied, be_empty}, {-3, outputs::emptied, be_reversed}, {-2, outputs::emptied, name_no_node}};
    for_every_set_of_faults(range_arguments(), in_order, [](const range_arguments& before, const auto* first) {
        const auto nodes = points({{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}});
        const int code = first != nullptr ? first->code : 3;
        for (const bool lists_new_IDs : {true, false}) {
            range_arguments a = before;
            dense2D<double> pos = nodes;
            dense1D<unsigned> new_IDs = indices({7});
            EXPECT_EQ(lists_new_IDs ? simplify(pos, a.first(), a.last(), new_IDs) : simplify(pos, a.first(), a.last()),
                      code);
            EXPECT_EQ(pos, code == 3 ? points({{4, 0}, {2, 0}, {0, 0}}) : nodes);
            EXPECT_EQ(a.range[0], code == 3 ? columns({{0, 1}}) : before.range[0]);
            EXPECT_EQ(a.range[1], code == 3 ? columns({{1, 2, N}}) : before.range[1]);
            if (lists_new_IDs) {
                EXPECT_EQ(new_IDs, code == 3 ? indices({2, N, 1, N, 0}) : indices({}));
            }
        }
    });
}

TEST(EditingCodes, OfCopyMesh)
{
    const range_faults in_order{{-3, outputs::kept, name_no_node}};
    for_every_set_of_faults(range_arguments(), in_order, [](const range_arguments& a, const auto* first) {
        const auto nodes = points({{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}});
        dense2D<double> pos = nodes;
        dense2D<unsigned> connect = columns({{7}});
        EXPECT_EQ(copy_mesh(pos, connect, a.range[1]), first != nullptr ? first->code : 0);
        EXPECT_EQ(connect, first != nullptr ? columns({{7}}) : columns({{5, 6, N}}));
        EXPECT_EQ(pos.cols, first != nullptr ? 5u : 7u);
        EXPECT_EQ(pos.sub_matrix(0, 0, 2, 5), nodes);
    });
}

TEST(EditingCodes, OfUniqueIndicesAndTheirCount)
{
    const range_faults in_order{{0, outputs::kept, be_empty}, {-3, outputs::kept, be_reversed}};
    for_every_set_of_faults(range_arguments(), in_order, [](range_arguments& a, const auto* first) {
        dense1D<unsigned> out = indices({7});
        EXPECT_EQ(unique_indices(out, a.first(), a.last()), first != nullptr ? first->code : 0);
        EXPECT_EQ(out, first != nullptr ? indices({7}) : indices({7, 4, 2, 0}));
        const int count = first == nullptr ? 3 : first->code == -3 ? -2 : 0;  // a code of its own
        EXPECT_EQ(count_unique_indices(a.first(), a.last()), count);
    });
}

TEST(EditingCodes, OfMatchingElements)
{
    const range_faults in_order{{-2, outputs::emptied, [](range_arguments& a) { a.range[0].resize(3, 1, 0u); }}};
    for_every_set_of_faults(range_arguments(), in_order, [](const range_arguments& a, const auto* first) {
        for (const bool strict : {true, false}) {
            dense1D<unsigned> pos_in_1 = indices({7, 7}), pos_in_2 = indices({8});
            EXPECT_EQ(get_IDs(a.range[0], columns({{5, 5}, {4, 2}}), pos_in_1, pos_in_2, strict),
                      first != nullptr ? first->code : 0);
            EXPECT_EQ(pos_in_1, first != nullptr ? indices({}) : indices({N, 0}));
            EXPECT_EQ(pos_in_2, first != nullptr ? indices({}) : indices({1}));
        }
    });
}

}  // namespace
