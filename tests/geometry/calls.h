#ifndef TESTS_GEOMETRY_CALLS_H
#define TESTS_GEOMETRY_CALLS_H

#include <limits>

#include "support/stored_call.h"

namespace test {

namespace geometry_arguments {

using vec2 = zeb::vector_fixed<double, 2>;
using vec3 = zeb::vector_fixed<double, 3>;

inline constexpr double infinity = std::numeric_limits<double>::infinity();
inline const vec3 t(1, 2, 3), centre(1, 1, 1), turn(0, 0, 0.5);
inline const auto plane = points({{1, 2}, {3, 4}, {5, 6}});
inline const auto space = points({{1, 2, 3}, {4, 5, 6}, {7, 8, -9}});
inline const auto list = indices({0, 2, 0});
inline const auto elements = columns({{0, 2, N}, {2, 2, 0}});

// The three forms of inc_bounding_box in one dimension.
template <class Vector>
void make_boxes(setting& s, const zeb::dense2D<double>& coordinates, Vector min, Vector max)
{
    const auto& pos = s.input(coordinates);
    const auto& nodes = s.input(list);
    const auto& connect = s.input(elements);
    s.run([&] {
        Vector low = min, high = max;
        return zeb::tessolv::inc_bounding_box(pos, low, high) + zeb::tessolv::inc_bounding_box(pos, nodes, low, high) +
               zeb::tessolv::inc_bounding_box(pos, connect, low, high);
    });
    zeb::tessolv::inc_bounding_box(pos, nodes, min, max);
    for (const double x : min) s.note(x);
    for (const double x : max) s.note(x);
}

}  // namespace geometry_arguments

// Every operation on coordinates. Those in space are changed where they are; those in the plane move to a buffer of
// their own, but for the forms that find the nodes of a connectivity first and ask for memory in both.
inline const stored_call geometry_calls[] = {
    {"translate_space",
     [](setting& s) {
         auto& pos = s.written(geometry_arguments::space);
         s.run([&] { return zeb::tessolv::translate(pos, geometry_arguments::t); });
     },
     false},
    {"translate_plane",
     [](setting& s) {
         auto& pos = s.kept(geometry_arguments::plane);
         s.run([&] { return zeb::tessolv::translate(pos, geometry_arguments::t); });
     }},
    {"translate_listed_nodes",
     [](setting& s) {
         auto& pos = s.written(geometry_arguments::space);
         const auto& nodes = s.input(geometry_arguments::list);
         s.run([&] { return zeb::tessolv::translate(pos, geometry_arguments::t, nodes); });
     },
     false},
    {"translate_nodes_of_a_connectivity",
     [](setting& s) {
         auto& pos = s.written(geometry_arguments::space);
         const auto& connect = s.input(geometry_arguments::elements);
         s.run([&] { return zeb::tessolv::translate(pos, geometry_arguments::t, connect); });
     }},
    {"rotate_space",
     [](setting& s) {
         auto& pos = s.written(geometry_arguments::space);
         s.run([&] { return zeb::tessolv::rotate(pos, geometry_arguments::centre, geometry_arguments::turn); });
     },
     false},
    {"rotate_plane",
     [](setting& s) {
         auto& pos = s.kept(geometry_arguments::plane);
         s.run([&] { return zeb::tessolv::rotate(pos, geometry_arguments::centre, geometry_arguments::turn); });
     }},
    {"rotate_listed_nodes_of_the_plane",
     [](setting& s) {
         auto& pos = s.kept(geometry_arguments::plane);
         const auto& nodes = s.input(geometry_arguments::list);
         s.run([&] { return zeb::tessolv::rotate(pos, geometry_arguments::centre, geometry_arguments::turn, nodes); });
     }},
    {"rotate_nodes_of_a_connectivity",
     [](setting& s) {
         auto& pos = s.written(geometry_arguments::space);
         const auto& connect = s.input(geometry_arguments::elements);
         s.run(
             [&] { return zeb::tessolv::rotate(pos, geometry_arguments::centre, geometry_arguments::turn, connect); });
     }},
    {"zoom_space",
     [](setting& s) {
         auto& pos = s.written(geometry_arguments::space);
         s.run([&] { return zeb::tessolv::zoom(pos, geometry_arguments::centre, 3.0); });
     },
     false},
    {"zoom_plane",
     [](setting& s) {
         auto& pos = s.kept(geometry_arguments::plane);
         s.run([&] { return zeb::tessolv::zoom(pos, geometry_arguments::centre, 3.0); });
     }},
    {"zoom_listed_nodes",
     [](setting& s) {
         auto& pos = s.written(geometry_arguments::space);
         const auto& nodes = s.input(geometry_arguments::list);
         s.run([&] { return zeb::tessolv::zoom(pos, geometry_arguments::centre, 3.0, nodes); });
     },
     false},
    {"zoom_nodes_of_a_connectivity_of_the_plane",
     [](setting& s) {
         auto& pos = s.kept(geometry_arguments::plane);
         const auto& connect = s.input(geometry_arguments::elements);
         s.run([&] { return zeb::tessolv::zoom(pos, geometry_arguments::centre, 3.0, connect); });
     }},
    {"make_space_of_four_rows_where_there_is_nothing_to_do",
     [](setting& s) {
         auto& pos = s.input(points({{1, 2, 3, 4}, {5, 6, 7, 8}}));
         zeb::dense2D<double> shared;
         shared.shallow_copy(pos);
         s.run([&] { return zeb::tessolv::zoom(shared, geometry_arguments::centre, 1.0); });
         s.note(shared);
     }},
    {"boxes_in_the_plane",
     [](setting& s) {
         using geometry_arguments::infinity;
         geometry_arguments::make_boxes(s, geometry_arguments::plane, geometry_arguments::vec2(infinity, infinity),
                                        geometry_arguments::vec2(-infinity, -infinity));
     },
     false},
    {"boxes_in_space",
     [](setting& s) {
         using geometry_arguments::infinity;
         geometry_arguments::make_boxes(s, geometry_arguments::space,
                                        geometry_arguments::vec3(infinity, infinity, infinity),
                                        geometry_arguments::vec3(-infinity, -infinity, -infinity));
     },
     false},
    {"clip",
     [](setting& s) {
         const auto& pos = s.input(geometry_arguments::space);
         const auto& connect = s.input(columns({{0, 1}, {1, 2}, {1, 0}}));
         auto& out = s.kept(columns({{8, 9}}));
         s.run([&] {
             return zeb::tessolv::clip(pos, connect, geometry_arguments::vec3(), geometry_arguments::vec3(0, 0, 1),
                                       out);
         });
     }},
};

}  // namespace test

#endif
