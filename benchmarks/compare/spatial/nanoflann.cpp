#include <nanoflann.hpp>

#include "spatial/input.h"

namespace compare {
namespace {

struct cloud_view {
    const dense2D<double>* pos;
    std::size_t kdtree_get_point_count() const { return pos->cols; }
    double kdtree_get_pt(std::size_t j, std::size_t i) const { return (*pos)(i, j); }
    template <class Box>
    bool kdtree_get_bbox(Box&) const
    {
        return false;
    }
};

using tree =
    nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, cloud_view>, cloud_view, 3, std::uint32_t>;

struct search {
    cloud_view view;
    std::unique_ptr<tree> built;
    explicit search(const mesh& m) : view{&m.pos} { built = std::make_unique<tree>(3, view); }
};

std::pair<std::uint32_t, double> closest(const tree& t, const double* P)
{
    std::pair<std::uint32_t, double> found{};
    t.knnSearch(P, 1, &found.first, &found.second);
    return found;
}

void build(const spatial_input& in, lap& l)
{
    const cloud_view view{&in.pos};
    std::unique_ptr<tree> t;
    l.timed([&] { t = std::make_unique<tree>(3, view); });
    l.answer(sum_of_distances(in, probes, [&](std::uint64_t i) { return closest(*t, &in.places(0, i)).second; }));
}

const search& made(const spatial_input& in)
{
    return *prepared<std::unique_ptr<search>>(in, [](const mesh& m) { return std::make_unique<search>(m); });
}

void nearest(const spatial_input& in, lap& l)
{
    const tree& t = *made(in).built;
    std::vector<std::uint32_t> found(in.places.cols);
    l.timed([&] {
        for (std::uint64_t i = 0; i < in.places.cols; ++i) found[i] = closest(t, &in.places(0, i)).first;
    });
    l.answer(sum_of_distances(in, in.places.cols, [&](std::uint64_t i) { return squared_distance(in, i, found[i]); }));
}

void boxes(const spatial_input& in, lap& l)
{
    const tree& t = *made(in).built;
    std::vector<std::uint32_t> found;
    l.timed([&] {
        std::vector<std::pair<std::uint32_t, double>> around;
        nanoflann::SearchParams unsorted;
        unsorted.sorted = false;
        for (std::uint64_t i = 0; i < in.places.cols; ++i) {
            const double* const P = &in.places(0, i);
            t.radiusSearch(P, 3 * in.half * in.half * (1 + 1e-12), around, unsorted);
            for (const auto& [n, distance] : around) {
                bool inside = true;
                for (std::uint64_t k = 0; k < 3; ++k) inside = inside && std::abs(in.pos(k, n) - P[k]) <= in.half;
                if (inside) found.push_back(n);
            }
        }
    });
    double sum = 0.0;
    for (const std::uint32_t n : found) sum += in.pos(0, n);
    l.answer({double(found.size()), sum});
}

const bool entered = enter<spatial_input>({
    {"detector build", "nanoflann", "KDTreeSingleIndexAdaptor, leaves of 10", "", build},
    {"nearest", "nanoflann", "knnSearch of 1", "", nearest},
    {"boxes", "nanoflann", "radiusSearch around the box, then a test of each point", "has no search in boxes", boxes},
});

}  // namespace
}  // namespace compare
