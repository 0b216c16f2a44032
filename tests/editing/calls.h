#ifndef TESTS_EDITING_CALLS_H
#define TESTS_EDITING_CALLS_H

#include "support/stored_call.h"

namespace test {

// Every operation on indices and on whole matrices.
inline const stored_call editing_calls[] = {
    {"unique_indices_of_a_list",
     [](setting& s) {
         const auto& in = s.input(indices({4, 6, 4, N, 1, 2}));
         const auto& exclude = s.input(indices({1, 77}));
         auto& out = s.kept(indices({6}));
         s.run([&] { return zeb::tessolv::unique_indices(out, in, exclude); }, 0);
     }},
    {"unique_indices_of_a_list_without_exclusion",
     [](setting& s) {
         const auto& in = s.input(indices({4, 6, 4, N, 1, 2}));
         auto& out = s.kept(indices({}));
         s.run([&] { return zeb::tessolv::unique_indices(out, in); }, 0);
     }},
    {"unique_indices_of_a_range",
     [](setting& s) {
         const auto* first = s.input_range<unsigned>({columns({{3, 1}}), columns({{1, 0, N}, {9, 3, 4000000000}})});
         auto& out = s.kept(indices({1}));
         s.run([&] { return zeb::tessolv::unique_indices(out, first, first + 2); });
     }},
    {"unique_indices_of_a_matrix",
     [](setting& s) {
         const auto& connect = s.input(columns({{5, 2, 5}, {2, N, 7}}));
         auto& out = s.kept(indices({8, 9}));
         s.run([&] { return zeb::tessolv::unique_indices(out, connect); });
     }},
    {"count_unique_indices_of_a_range",
     [](setting& s) {
         const auto* first = s.input_range<unsigned>({columns({{3, 1}}), columns({{1, 0, N}, {9, 3, 8}})});
         s.run([&] { return zeb::tessolv::count_unique_indices(first, first + 2); });
     }},
    {"count_unique_indices_of_a_matrix",
     [](setting& s) {
         const auto& connect = s.input(columns({{5, 2, 5}, {2, N, 4000000000}}));
         s.run([&] { return zeb::tessolv::count_unique_indices(connect); });
     }},
    {"get_IDs_of_lists",
     [](setting& s) {
         const auto& ids1 = s.input(indices({10, 30, 20, 30}));
         const auto& ids2 = s.input(indices({30, 5, 10}));
         auto& pos_in_1 = s.emptied(indices({7}));
         auto& pos_in_2 = s.emptied(indices({7, 8, 9, 7}));
         s.run([&] { return zeb::tessolv::get_IDs(ids1, ids2, pos_in_1, pos_in_2); });
     }},
    {"get_IDs_of_elements",
     [](setting& s) {
         const auto& connect1 = s.input(columns({{1, 2, 3}, {4, 5, 6}}));
         const auto& connect2 = s.input(columns({{6, 5, 4}, {1, 2, 4}, {2, 3, 1}}));
         auto& pos_in_1 = s.emptied(indices({7}));
         auto& pos_in_2 = s.emptied(indices({7, 8, 9}));
         s.run([&] { return zeb::tessolv::get_IDs(connect1, connect2, pos_in_1, pos_in_2, false); });
     }},
    {"get_IDs_of_elements_as_they_stand",
     [](setting& s) {
         const auto& connect1 = s.input(columns({{1, 2, 3}, {4, 5, 6}}));
         const auto& connect2 = s.input(columns({{4, 5, 6}, {2, 3, 1}}));
         auto& pos_in_1 = s.emptied(indices({}));
         auto& pos_in_2 = s.emptied(indices({7, 8}));
         s.run([&] { return zeb::tessolv::get_IDs(connect1, connect2, pos_in_1, pos_in_2, true); });
     }},
    {"append_listed_columns_of_coordinates",
     [](setting& s) {
         auto& A = s.kept(points({{1, 2}, {3, 4}}));
         const auto& B = s.input(points({{5, 6}, {7, 8}, {9, 0}}));
         const auto& cols = s.input(indices({2, 0, 2}));
         s.run([&] { return zeb::tessolv::append(A, B, cols); });
     }},
    {"append_listed_columns_of_a_connectivity",
     [](setting& s) {
         auto& A = s.kept(columns({{1, 2}, {3, 4}}));
         const auto& B = s.input(columns({{5, 6}, {7, 8}, {9, 0}}));
         const auto& cols = s.input(indices({2, 0, 2}));
         s.run([&] { return zeb::tessolv::append(A, B, cols); });
     }},
    {"append_a_range_of_coordinates",
     [](setting& s) {
         auto& A = s.kept(points({{1, 2, 3}}));
         const auto* first = s.input_range<double>({points({{4, 5, 6}}), filled(3, 0, 0.0), points({{7, 8, 9}})});
         s.run([&] { return zeb::tessolv::append(A, first, first + 3); });
     }},
    {"append_a_range_of_connectivities",
     [](setting& s) {
         auto& A = s.kept(zeb::dense2D<unsigned>());
         const auto* first = s.input_range<unsigned>({columns({{4, 5}, {6, N}}), {}, columns({{7, 8}})});
         s.run([&] { return zeb::tessolv::append(A, first, first + 3); });
     }},
    {"append_coordinates",
     [](setting& s) {
         auto& A = s.kept(points({{1, 2}}));
         const auto& B = s.input(points({{5, 6}, {7, 8}}));
         s.run([&] { return zeb::tessolv::append(A, B); });
     }},
    {"append_a_connectivity",
     [](setting& s) {
         auto& A = s.kept(columns({{1, 2}}));
         const auto& B = s.input(columns({{5, 6}, {7, 8}}));
         s.run([&] { return zeb::tessolv::append(A, B); });
     }},
    {"simplify_a_range",
     [](setting& s) {
         auto& pos = s.kept(points({{0, 1}, {2, 3}, {4, 5}, {6, 7}}));
         auto* first = s.written_range<unsigned>({columns({{3, 0}}), columns({{0, N, 2}, {2, 3, 0}})});
         auto& new_IDs = s.emptied(indices({7}));
         s.run([&] { return zeb::tessolv::simplify(pos, first, first + 2, new_IDs); });
     }},
    {"simplify_a_matrix",
     [](setting& s) {
         auto& pos = s.kept(points({{0, 1, 2}, {3, 4, 5}, {6, 7, 8}}));
         auto& connect = s.written(columns({{2, 0}, {0, N}}));
         auto& new_IDs = s.emptied(indices({7, 7, 7}));
         s.run([&] { return zeb::tessolv::simplify(pos, connect, new_IDs); });
     }},
    {"simplify_a_matrix_that_uses_every_node",
     [](setting& s) {
         auto& pos = s.written(points({{0, 1}, {2, 3}, {4, 5}}));
         auto& connect = s.written(columns({{2, 0}, {0, 1}}));
         auto& new_IDs = s.emptied(indices({7}));
         s.run([&] { return zeb::tessolv::simplify(pos, connect, new_IDs); });
     }},
    {"simplify_a_matrix_without_new_numbers",
     [](setting& s) {
         auto& pos = s.kept(points({{0, 1}, {2, 3}, {4, 5}}));
         auto& connect = s.written(columns({{2, 0}}));
         s.run([&] { return zeb::tessolv::simplify(pos, connect); });
     }},
    {"simplify_a_range_without_new_numbers",
     [](setting& s) {
         auto& pos = s.kept(points({{0, 1}, {2, 3}, {4, 5}}));
         auto* first = s.written_range<unsigned>({columns({{2, 0}}), columns({{0}})});
         s.run([&] { return zeb::tessolv::simplify(pos, first, first + 2); });
     }},
    {"copy_mesh",
     [](setting& s) {
         auto& pos = s.kept(points({{0, 1}, {2, 3}, {4, 5}}));
         auto& connect = s.kept(columns({{1}}));
         const auto& source = s.input(columns({{2, 0}, {0, N}}));
         s.run([&] { return zeb::tessolv::copy_mesh(pos, connect, source); });
     }},
    {"copy_mesh_that_uses_every_node",
     [](setting& s) {
         auto& pos = s.kept(points({{0, 1}, {2, 3}}));
         auto& connect = s.kept(zeb::dense2D<unsigned>());
         const auto& source = s.input(columns({{1, 0, 1}}));
         s.run([&] { return zeb::tessolv::copy_mesh(pos, connect, source); });
     }},
    {"remove_degenerated",
     [](setting& s) {
         auto& connect = s.written(columns({{1, 2, 1}, {1, 2, 3}, {N, 2, N}, {4, 4, 4}}));
         auto& new_IDs = s.kept(indices({9}));
         s.run([&] { return zeb::tessolv::remove_degenerated(connect, new_IDs); });
     }},
    {"change_indices_of_a_list",
     [](setting& s) {
         auto& ids = s.written(indices({2, 0, 3, N, 1}));
         const auto& new_IDs = s.input(indices({7, N, 0}));
         s.run([&] { zeb::tessolv::change_indices(ids, new_IDs); }, 0);
     },
     false},
    {"change_indices_of_a_matrix",
     [](setting& s) {
         auto& connect = s.written(columns({{2, 0}, {3, N}}));
         const auto& new_IDs = s.input(indices({7, N, 0}));
         s.run([&] { zeb::tessolv::change_indices(connect, new_IDs); }, 0);
     },
     false},
    {"permutation_of_indices",
     [](setting& s) {
         auto& values = s.kept(indices({10, 20, 30}));
         const auto& perm = s.input(indices({2, 0, 1}));
         s.run([&] { zeb::tessolv::permutation(values, perm); }, 0);
     }},
    {"permutation_of_numbers",
     [](setting& s) {
         auto& values = s.kept(numbers({0.5, 1.5, -2.5}));
         const auto& perm = s.input(indices({2, 7}));
         s.run([&] { zeb::tessolv::permutation(values, perm); }, 0);
     }},
};

}  // namespace test

#endif
