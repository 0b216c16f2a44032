#include <CGAL/Fuzzy_iso_box.h>
#include <CGAL/Kd_tree.h>
#include <CGAL/Orthogonal_k_neighbor_search.h>
#include <CGAL/Polygon_mesh_processing/repair_polygon_soup.h>
#include <CGAL/Search_traits_3.h>
#include <CGAL/Simple_cartesian.h>

#include "spatial/input.h"

namespace compare {
namespace {

using kernel = CGAL::Simple_cartesian<double>;
using point = kernel::Point_3;
using traits = CGAL::Search_traits_3<kernel>;
using nearest_search = CGAL::Orthogonal_k_neighbor_search<traits>;
using tree = nearest_search::Tree;

point point_of(const dense2D<double>& pos, std::uint64_t j)
{
    return {pos(0, j), pos(1, j), pos(2, j)};
}

std::vector<point> points_of(const dense2D<double>& pos)
{
    std::vector<point> points;
    for (std::uint64_t j = 0; j < pos.cols; ++j) points.push_back(point_of(pos, j));
    return points;
}

void build(const spatial_input& in, lap& l)
{
    const auto points = points_of(in.pos);
    tree t;
    l.timed([&] {
        t.insert(points.begin(), points.end());
        t.build();
    });
    l.answer(sum_of_distances(
        in, probes, [&](std::uint64_t i) { return nearest_search(t, point_of(in.places, i), 1).begin()->second; }));
}

const tree& made(const spatial_input& in)
{
    return *prepared<std::unique_ptr<tree>>(in, [](const mesh& m) {
        const auto points = points_of(m.pos);
        auto t = std::make_unique<tree>(points.begin(), points.end());
        t->build();
        return t;
    });
}

void nearest(const spatial_input& in, lap& l)
{
    const tree& t = made(in);
    std::vector<double> squares(in.places.cols);
    l.timed([&] {
        for (std::uint64_t i = 0; i < in.places.cols; ++i)
            squares[i] = nearest_search(t, point_of(in.places, i), 1).begin()->second;
    });
    l.answer(sum_of_distances(in, in.places.cols, [&](std::uint64_t i) { return squares[i]; }));
}

void boxes(const spatial_input& in, lap& l)
{
    const tree& t = made(in);
    std::vector<point> found;
    l.timed([&] {
        const kernel::Vector_3 half(in.half, in.half, in.half);
        for (std::uint64_t i = 0; i < in.places.cols; ++i) {
            const point P = point_of(in.places, i);
            t.search(std::back_inserter(found), CGAL::Fuzzy_iso_box<traits>(P - half, P + half));
        }
    });
    double sum = 0.0;
    for (const point& P : found) sum += P.x();
    l.answer({double(found.size()), sum});
}

void weld(const spatial_input& in, lap& l)
{
    auto points = points_of(in.pos);
    std::vector<std::array<std::size_t, 3>> facets(in.connect.cols);
    for (std::uint64_t e = 0; e < facets.size(); ++e)
        for (std::uint64_t i = 0; i < 3; ++i) facets[e][i] = in.connect(i, e);
    l.timed([&] { CGAL::Polygon_mesh_processing::merge_duplicate_points_in_polygon_soup(points, facets); });
    std::vector<std::uint64_t> first(points.size(), ~std::uint64_t{0});
    fingerprint first_of_each;
    for (std::uint64_t c = 0; c < 3 * facets.size(); ++c) {
        auto& f = first[facets[c / 3][c % 3]];
        f = std::min(f, c);
        first_of_each.add(c, f);
    }
    l.answer({double(points.size()), first_of_each.value()});
}

const bool entered = enter<spatial_input>({
    {"detector build", "CGAL", "Kd_tree::insert, build", "copies the points", build},
    {"nearest", "CGAL", "Orthogonal_k_neighbor_search of 1", "gives points, not numbers", nearest},
    {"boxes", "CGAL", "Kd_tree::search with Fuzzy_iso_box", "gives points, not numbers", boxes},
    {"weld", "CGAL", "merge_duplicate_points_in_polygon_soup", "equal positions only; a new point list", weld},
});

}  // namespace
}  // namespace compare
