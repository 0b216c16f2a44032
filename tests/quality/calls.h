#ifndef TESTS_QUALITY_CALLS_H
#define TESTS_QUALITY_CALLS_H

#include "quality/recording_histogram.h"
#include "support/stored_call.h"

namespace test {

namespace quality_arguments {

inline const auto pos = points({{0, 0, 0}, {1, 0, 0}, {1, 1.5, 0}, {0, 1, 0.25}, {0, 0, 1}, {1, 0, 1}});
inline const auto faces = columns({{0, 1, 2, 3}, {3, 4, 5, N}, {5, 4, 1, 0}});
inline const auto tetras = columns({{0, 2, 1, 4}, {0, 1, 3, 5}});
inline const auto sizes = list_of<float>({1, 0.5f, 1, 2, 1, 3});

}  // namespace quality_arguments

// Every operation on the quality of elements and edges.
inline const stored_call quality_calls[] = {
    {"shape_qualities_of_a_matrix",
     [](setting& s) {
         const auto& pos = s.input(quality_arguments::pos);
         const auto& connect = s.input(quality_arguments::faces);
         auto& qualities = s.emptied(numbers({7, 8}));
         s.run([&] { return zeb::tessolv::shape_qualities(pos, connect, zeb::EL_FACE_MIX, qualities); });
     }},
    {"shape_qualities_of_a_range",
     [](setting& s) {
         const auto& pos = s.input(quality_arguments::pos);
         const auto* first = s.input_range<unsigned>({quality_arguments::tetras, quality_arguments::faces});
         const auto& kinds = s.input(types({zeb::EL_TETRA4, zeb::EL_FACE_MIX}));
         auto& qualities = s.emptied(numbers({7, 8, 9, 7, 8}));
         s.run([&] { return zeb::tessolv::shape_qualities(pos, first, first + 2, kinds, qualities); });
     }},
    {"shape_qualities_of_a_matrix_into_a_histogram",
     [](setting& s) {
         const auto& pos = s.input(quality_arguments::pos);
         const auto& connect = s.input(quality_arguments::tetras);
         recording_histogram h(10);
         s.run([&] { return zeb::tessolv::shape_qualities(pos, connect, zeb::EL_TETRA10, h); });
         s.note(h.values);
     }},
    {"shape_qualities_of_a_range_into_a_histogram",
     [](setting& s) {
         const auto& pos = s.input(quality_arguments::pos);
         const auto* first = s.input_range<unsigned>({quality_arguments::faces, quality_arguments::tetras});
         const auto& kinds = s.input(types({zeb::EL_FACE_MIX, zeb::EL_TETRA4}));
         recording_histogram h(10);
         s.run([&] { return zeb::tessolv::shape_qualities(pos, first, first + 2, kinds, h); });
         s.note(h.values);
     }},
    {"edge_lengths",
     [](setting& s) {
         const auto& pos = s.input(quality_arguments::pos);
         const auto& edges = s.input(columns({{0, 1}, {2, 1}, {5, 0}, {5, 5}}));
         auto& lengths = s.emptied(filled(3, 6, 9.0));
         s.run([&] { return zeb::tessolv::edge_lengths(pos, edges, lengths); });
     }},
    {"edge_qualities_of_a_matrix",
     [](setting& s) {
         const auto& pos = s.input(quality_arguments::pos);
         const auto& connect = s.input(quality_arguments::faces);
         const auto& sizes = s.input(quality_arguments::sizes);
         recording_histogram h(20);
         s.run([&] { return zeb::tessolv::edge_qualities(pos, connect, zeb::EL_FACE_MIX, sizes, h); });
         s.note(h.values);
     }},
    {"edge_qualities_of_a_range",
     [](setting& s) {
         const auto& pos = s.input(quality_arguments::pos);
         const auto* first = s.input_range<unsigned>({quality_arguments::faces, quality_arguments::tetras});
         const auto& kinds = s.input(types({zeb::EL_FACE_MIX, zeb::EL_TETRA4}));
         const auto& sizes = s.input(quality_arguments::sizes);
         recording_histogram h(20);
         s.run([&] { return zeb::tessolv::edge_qualities(pos, first, first + 2, kinds, sizes, h); });
         s.note(h.values);
     }},
};

}  // namespace test

#endif
