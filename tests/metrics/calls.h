#ifndef TESTS_METRICS_CALLS_H
#define TESTS_METRICS_CALLS_H

#include "support/stored_call.h"

namespace test {

namespace metric_arguments {

inline const auto flat = matrix_of<float>({{1, 0, 1}, {1, 0, 0}, {2, 1, 2}, {0, 0, 0}});
inline const auto solid = matrix_of<float>({{1, 0, 1, 0, 0, 1}, {2, 1, 2, 0, 1, 2}, {1, 0, 1, 0, 0, -1}});
inline const auto sizes = list_of<float>({2, 0, -1, 0.5f});
inline const auto bases = points({{1, 0, 0, 0, 1, 0}, {0, 1, 0, 0, 0, 2}, {1, 1, 0, 0, 1, -1}});

}  // namespace metric_arguments

// Every operation on fields of metrics; the predicates give 0 or 1.
inline const stored_call metrics_calls[] = {
    {"are_valid_sizes",
     [](setting& s) {
         const auto& sizes = s.input(list_of<float>({2, 1, 0.5f}));
         s.run([&] { return zeb::tessolv::are_valid_metrics(sizes); });
     },
     false},
    {"are_valid_listed_sizes",
     [](setting& s) {
         const auto& nodes = s.input(indices({3, 0, 3}));
         const auto& sizes = s.input(metric_arguments::sizes);
         s.run([&] { return zeb::tessolv::are_valid_metrics(nodes, sizes); });
     },
     false},
    {"are_valid_tensors",
     [](setting& s) {
         const auto& metrics = s.input(matrix_of<float>({{1, 0, 1, 0, 0, 1}, {2, 1, 2, 0, 1, 2}}));
         s.run([&] { return zeb::tessolv::are_valid_metrics(metrics); });
     },
     false},
    {"are_valid_listed_tensors",
     [](setting& s) {
         const auto& nodes = s.input(indices({2, 0, 2}));
         const auto& metrics = s.input(metric_arguments::flat);
         s.run([&] { return zeb::tessolv::are_valid_metrics(nodes, metrics); });
     },
     false},
    {"overwrite_sizes",
     [](setting& s) {
         auto& sizes = s.written(metric_arguments::sizes);
         const auto& defaults = s.input(list_of<float>({9, 8, 7}));
         s.run([&] { return zeb::tessolv::overwrite_invalid_metrics(sizes, defaults); });
     },
     false},
    {"overwrite_tensors_by_sizes",
     [](setting& s) {
         auto& metrics = s.written(metric_arguments::flat);
         const auto& defaults = s.input(list_of<float>({9, 2, 7, 0.5f}));
         s.run([&] { return zeb::tessolv::overwrite_invalid_metrics(metrics, defaults); });
     },
     false},
    {"overwrite_tensors_by_tensors",
     [](setting& s) {
         auto& metrics = s.written(matrix_of<float>({{2, 1, 2, 0, 1, 2}, {1, 0, 1, 0, 0, -1}}));
         const auto& defaults = s.input(matrix_of<float>({{7, 0, 7, 0, 0, 7}, {3, 0, 3, 0, 0, 3}}));
         s.run([&] { return zeb::tessolv::overwrite_invalid_metrics(metrics, defaults); });
     },
     false},
    {"project_tensors",
     [](setting& s) {
         const auto& M3 = s.input(metric_arguments::solid);
         const auto& bases = s.input(metric_arguments::bases);
         auto& M2 = s.kept(filled(3, 3, 7.0f));
         s.run([&] { return zeb::tessolv::metrics_aniso3d_to_aniso2d(M3, bases, M2); });
     }},
    {"project_sizes",
     [](setting& s) {
         const auto& sizes = s.input(list_of<float>({2, 0, 0.5f}));
         const auto& bases = s.input(metric_arguments::bases);
         auto& M2 = s.kept(filled(2, 5, 7.0f));
         s.run([&] { return zeb::tessolv::metrics_iso_to_aniso2d(sizes, bases, M2); });
     }},
    {"append_a_field",
     [](setting& s) {
         auto& A = s.kept(metric_arguments::flat);
         const auto& B = s.input(matrix_of<float>({{5, 6, 7}, {8, 9, 0}}));
         s.run([&] { return zeb::tessolv::append(A, B); });
     }},
    {"append_fields_of_a_range",
     [](setting& s) {
         auto& A = s.kept(matrix_of<float>({{1, 0, 1}}));
         const auto* first = s.input_range<float>({matrix_of<float>({{5, 6, 7}, {8, 9, 0}}), metric_arguments::flat});
         s.run([&] { return zeb::tessolv::append(A, first, first + 2); });
     }},
    {"append_listed_columns",
     [](setting& s) {
         auto& A = s.kept(matrix_of<float>({{1, 0, 1}}));
         const auto& B = s.input(metric_arguments::flat);
         const auto& columns = s.input(indices({2, 0, 2}));
         s.run([&] { return zeb::tessolv::append(A, B, columns); });
     }},
    {"append_sizes",
     [](setting& s) {
         auto& A = s.kept(list_of<float>({1, 2}));
         const auto& B = s.input(metric_arguments::sizes);
         s.run([&] { return zeb::tessolv::append(A, B); });
     }},
    {"append_sizes_of_a_range",
     [](setting& s) {
         auto& A = s.kept(list_of<float>({1, 2}));
         zeb::dense1D<float> range[2];
         range[0].shallow_copy(s.input(metric_arguments::sizes));
         range[1].shallow_copy(s.input(list_of<float>({8, 9})));
         s.run([&] { return zeb::tessolv::append(A, range, range + 2); });
     }},
    {"append_listed_sizes",
     [](setting& s) {
         auto& A = s.kept(list_of<float>({1, 2}));
         const auto& B = s.input(metric_arguments::sizes);
         const auto& entries = s.input(indices({3, 0, 3}));
         s.run([&] { return zeb::tessolv::append(A, B, entries); });
     }},
};

}  // namespace test

#endif
