#ifndef TESTS_SPATIAL_CALLS_H
#define TESTS_SPATIAL_CALLS_H

#include <optional>

#include "support/stored_call.h"

namespace test {

namespace detail {

// Two pairs of coincident nodes, and one node alone.
inline const zeb::dense2D<double> nodes_to_merge = points({{0, 0}, {2, 0}, {0, 0}, {2, 1e-7}, {5, 5}});

// Number of nodes of a detector, the closest node to each, and what a box holds.
inline void note_answers(setting& s, const zeb::tessolv::node_detector& detector)
{
    s.note(detector.size());
    for (unsigned node = 0; node < 4; ++node) s.note(detector.find_closest(node));
    zeb::dense1D<unsigned> hits;
    detector.find_in_box(zeb::vector_fixed<double, 3>(-1, -1, -1), zeb::vector_fixed<double, 3>(2, 2, 2), hits);
    s.note(hits);
}

// A detector that is made anew, or made over, by `build`.
template <class Build>
void call_detector(setting& s, const zeb::dense2D<double>& nodes, long failure, Build build)
{
    const auto& pos = s.input(nodes);
    std::optional<zeb::tessolv::node_detector> detector(std::in_place);
    s.run([&] { return build(detector, pos); }, failure);
    note_answers(s, *detector);
}

}  // namespace detail

// The ways to a detector; 1 for one that has its nodes, 0 for one without.
inline const stored_call detector_calls[] = {
    {"detector_of_all_nodes",
     [](setting& s) {
         detail::call_detector(s, detail::nodes_to_merge, 0,
                               [](auto& d, const auto& pos) { return int(d.emplace(pos).size() != 0); });
     }},
    {"detector_of_a_list",
     [](setting& s) {
         const auto& nodes = s.input(indices({3, 0, 4}));
         detail::call_detector(s, detail::nodes_to_merge, 0,
                               [&](auto& d, const auto& pos) { return int(d.emplace(pos, nodes).size() != 0); });
     }},
    {"detector_of_a_matrix",
     [](setting& s) {
         const auto& connect = s.input(columns({{3, 0, N}, {4, 3, 0}}));
         detail::call_detector(s, detail::nodes_to_merge, 0,
                               [&](auto& d, const auto& pos) { return int(d.emplace(pos, connect).size() != 0); });
     }},
    {"detector_of_a_range",
     [](setting& s) {
         const auto* first = s.input_range<unsigned>({columns({{3, 0, N}}), columns({{4}, {1}})});
         detail::call_detector(
             s, points({{0, 0, 0}, {1, 0, 2}, {0, 1, 0}, {2, 1, 1}, {5, 5, 5}}), 0,
             [=](auto& d, const auto& pos) { return int(d.emplace(pos, first, first + 2).size() != 0); });
     }},
    {"reinit_over_all_nodes",
     [](setting& s) {
         detail::call_detector(s, detail::nodes_to_merge, -199,
                               [](auto& d, const auto& pos) { return d->reinit(pos); });
     }},
    {"reinit_over_a_list",
     [](setting& s) {
         const auto& nodes = s.input(indices({3, 0, N, 4}));
         detail::call_detector(s, detail::nodes_to_merge, -199,
                               [&](auto& d, const auto& pos) { return d->reinit(pos, nodes); });
     }},
    {"reinit_over_a_matrix",
     [](setting& s) {
         const auto& connect = s.input(columns({{3, 0, N}, {4, 3, 0}}));
         detail::call_detector(s, detail::nodes_to_merge, -199,
                               [&](auto& d, const auto& pos) { return d->reinit(pos, connect); });
     }},
    {"reinit_over_a_range",
     [](setting& s) {
         const auto* first = s.input_range<unsigned>({columns({{3, 0, N}}), columns({{4}, {1}})});
         detail::call_detector(s, points({{0, 0, 0}, {1, 0, 2}, {0, 1, 0}, {2, 1, 1}, {5, 5, 5}}), -199,
                               [=](auto& d, const auto& pos) { return d->reinit(pos, first, first + 2); });
     }},
    {"insert_a_list",
     [](setting& s) {
         const auto& nodes = s.input(indices({3, 0, 9, 4}));
         detail::call_detector(s, detail::nodes_to_merge, 0, [&](auto& d, const auto& pos) {
             if (d->size() == 0) d->reinit(pos, zeb::dense1D<unsigned>());
             return d->insert(nodes);
         });
     }},
    {"insert_a_matrix",
     [](setting& s) {
         const auto& connect = s.input(columns({{3, 0, N}, {4, 3, 0}}));
         detail::call_detector(s, detail::nodes_to_merge, 0, [&](auto& d, const auto& pos) {
             if (d->size() == 0) d->reinit(pos, zeb::dense1D<unsigned>());
             return d->insert(connect);
         });
     }},
};

// Every form of merging.
inline const stored_call merge_calls[] = {
    {"merge_two_lists",
     [](setting& s) {
         const auto& pos = s.input(detail::nodes_to_merge);
         const auto& nodes1 = s.input(indices({3, 0, 3}));
         const auto& nodes2 = s.input(indices({0, 1, 2, 3}));
         auto& new_IDs = s.emptied(indices({7}));
         s.run([&] { return zeb::tessolv::merge(pos, nodes1, nodes2, new_IDs, 1e-6); });
     }},
    {"merge_a_list",
     [](setting& s) {
         const auto& pos = s.input(detail::nodes_to_merge);
         const auto& nodes = s.input(indices({3, 0, 1, 2}));
         auto& new_IDs = s.emptied(indices({7, 7, 7, 7, 7}));
         s.run([&] { return zeb::tessolv::merge(pos, nodes, new_IDs, 1e-6); });
     }},
    {"merge_a_range",
     [](setting& s) {
         const auto& pos = s.input(detail::nodes_to_merge);
         auto* first = s.written_range<unsigned>({columns({{2, 0, N}}), columns({{3, 1}, {4, 0}})});
         auto& new_IDs = s.emptied(indices({7}));
         s.run([&] { return zeb::tessolv::merge(pos, first, first + 2, new_IDs, 1e-6, 0); });
     }},
    {"merge_a_range_in_elements",
     [](setting& s) {
         const auto& pos = s.input(detail::nodes_to_merge);
         auto* first = s.written_range<unsigned>({columns({{2, 0, N}}), columns({{3, 4}, {1, 0}})});
         auto& new_IDs = s.emptied(indices({7}));
         s.run([&] { return zeb::tessolv::merge(pos, first, first + 2, new_IDs, 1e-6, 1); });
     }},
    {"merge_a_range_without_new_numbers",
     [](setting& s) {
         const auto& pos = s.input(detail::nodes_to_merge);
         auto* first = s.written_range<unsigned>({columns({{2, 0, N}}), columns({{3, 1}, {4, 0}})});
         s.run([&] { return zeb::tessolv::merge(pos, first, first + 2, 1e-6, 2); });
     }},
    {"merge_a_matrix",
     [](setting& s) {
         const auto& pos = s.input(detail::nodes_to_merge);
         auto& connect = s.written(columns({{3, 1}, {2, 0}}));
         auto& new_IDs = s.emptied(indices({7}));
         s.run([&] { return zeb::tessolv::merge(pos, connect, new_IDs, 1e-6, 2); });
     }},
    {"merge_a_matrix_without_new_numbers",
     [](setting& s) {
         const auto& pos = s.input(detail::nodes_to_merge);
         auto& connect = s.written(columns({{3, 1}, {2, 4}}));
         s.run([&] { return zeb::tessolv::merge(pos, connect, 1e-6); });
     }},
    {"merge_a_matrix_within_a_millionth",
     [](setting& s) {
         const auto& pos = s.input(detail::nodes_to_merge);
         auto& connect = s.written(columns({{3, 1}, {2, 4}}));
         s.run([&] { return zeb::tessolv::merge(pos, connect); });
     }},
    {"merge_two_matrices",
     [](setting& s) {
         const auto& pos = s.input(detail::nodes_to_merge);
         auto& connect1 = s.kept(columns({{3, 1}, {2, 4}}));
         auto& connect2 = s.kept(columns({{0, 2, 3}}));
         auto& new_IDs = s.emptied(indices({7}));
         s.run([&] { return zeb::tessolv::merge(pos, connect1, connect2, new_IDs, 1e-6, 1); });
     }},
    {"merge_two_matrices_without_new_numbers",
     [](setting& s) {
         const auto& pos = s.input(detail::nodes_to_merge);
         auto& connect1 = s.kept(columns({{3, 1}, {2, 4}}));
         auto& connect2 = s.kept(columns({{0, 2, 3}}));
         s.run([&] { return zeb::tessolv::merge(pos, connect1, connect2, 1e-6); });
     }},
    {"merge_two_matrices_within_a_millionth",
     [](setting& s) {
         const auto& pos = s.input(detail::nodes_to_merge);
         auto& connect1 = s.kept(columns({{3, 1}, {2, 4}}));
         auto& connect2 = s.kept(columns({{0, 2, 3}}));
         s.run([&] { return zeb::tessolv::merge(pos, connect1, connect2); });
     }},
    {"merge_columns",
     [](setting& s) {
         auto& pos = s.kept(detail::nodes_to_merge);
         auto& new_IDs = s.emptied(indices({7}));
         s.run([&] { return zeb::tessolv::merge(pos, new_IDs, 1e-6); });
     }},
    {"merge_columns_without_new_numbers",
     [](setting& s) {
         auto& pos = s.kept(detail::nodes_to_merge);
         s.run([&] { return zeb::tessolv::merge(pos, 1e-6); });
     }},
};

}  // namespace test

#endif
