// Trees of a million points, searches in them, and the weld of a surface that comes as separate facets.
#include "spatial/input.h"

namespace compare {
namespace {

using input = spatial_input;

// -- the inputs

// "Ordered" points come cell by cell of a coarse grid, row by row; the places to search at too.
dense2D<double> random_points(std::uint64_t count, unsigned int seed, bool shuffled)
{
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> coordinate(0.0, 1.0);
    std::vector<std::array<double, 3>> points(count);
    for (auto& P : points)
        for (double& x : P) x = coordinate(random);
    const double cells = std::cbrt(double(count) / 8);
    const auto cell_of = [&](const std::array<double, 3>& P) {
        return (std::floor(P[2] * cells) * 1e3 + std::floor(P[1] * cells)) * 1e3 + std::floor(P[0] * cells);
    };
    if (!shuffled)
        std::sort(points.begin(), points.end(), [&](const auto& a, const auto& b) { return cell_of(a) < cell_of(b); });
    dense2D<double> pos(3, count);
    for (std::uint64_t j = 0; j < count; ++j) std::copy(points[j].begin(), points[j].end(), &pos(0, j));
    return pos;
}

input cloud(double points, double places, bool shuffled)
{
    input in{{random_points(std::uint64_t(points / shrink), 1, shuffled)},
             random_points(std::uint64_t(places / shrink), 2, shuffled)};
    in.half = 0.5 * std::cbrt(8.0 / double(in.pos.cols));
    return in;
}

// A wavy sheet with a node of its own for every corner of every triangle.
input soup(double facets, bool shuffled)
{
    const auto n = static_cast<unsigned int>(std::sqrt(facets / shrink / 2));
    std::vector<unsigned int> facet(2 * n * n);
    std::iota(facet.begin(), facet.end(), 0u);
    if (shuffled) std::shuffle(facet.begin(), facet.end(), std::mt19937(1));
    input m{{dense2D<double>(3, 3 * facet.size()), dense2D<unsigned int>(3, facet.size()), EL_TRIA3}};
    const auto at = [](unsigned int i, unsigned int j) {
        return std::array<double, 3>{0.1 * i, 0.1 * j, std::sin(0.03 * i) * std::cos(0.05 * j)};
    };
    for (std::uint64_t f = 0; f < facet.size(); ++f) {
        const unsigned int i = facet[f] / 2 % n;
        const unsigned int j = facet[f] / 2 / n;
        const std::array<std::array<double, 3>, 3> corners = facet[f] % 2 == 0
                                                                 ? std::array{at(i, j), at(i + 1, j), at(i + 1, j + 1)}
                                                                 : std::array{at(i, j), at(i + 1, j + 1), at(i, j + 1)};
        for (unsigned int k = 0; k < 3; ++k) {
            std::copy(corners[k].begin(), corners[k].end(), &m.pos(0, 3 * f + k));
            m.connect(k, f) = static_cast<unsigned int>(3 * f + k);
        }
    }
    m.tolerance = 0.05 * 0.07;
    return m;
}

// -- what is to be found

void build(const input& in, lap& l)
{
    node_detector detector;
    l.timed([&] { detector.reinit(in.pos); });
    l.answer(sum_of_distances(
        in, probes, [&](std::uint64_t i) { return squared_distance(in, i, detector.find_closest(in.place(i))); }));
}

void nearest(const input& in, lap& l)
{
    const auto& detector = prepared<node_detector>(in, [](const mesh& m) { return node_detector(m.pos); });
    std::vector<unsigned long> found(in.places.cols);
    l.timed([&] {
        for (std::uint64_t i = 0; i < in.places.cols; ++i) found[i] = detector.find_closest(in.place(i));
    });
    l.answer(sum_of_distances(in, in.places.cols, [&](std::uint64_t i) { return squared_distance(in, i, found[i]); }));
}

void boxes(const input& in, lap& l)
{
    const auto& detector = prepared<node_detector>(in, [](const mesh& m) { return node_detector(m.pos); });
    dense1D<unsigned int> found;
    l.timed([&] {
        for (std::uint64_t i = 0; i < in.places.cols; ++i) {
            const auto P = in.place(i);
            const double h = in.half;
            detector.find_in_box({P[0] - h, P[1] - h, P[2] - h}, {P[0] + h, P[1] + h, P[2] + h}, found);
        }
    });
    double sum = 0.0;
    for (const unsigned int n : found) sum += in.pos(0, n);
    l.answer({double(found.size), sum});
}

void weld(const input& in, lap& l)
{
    dense2D<unsigned int> connect = in.connect;
    dense1D<unsigned int> new_IDs;
    int merged = 0;
    l.timed([&] { merged = merge(in.pos, connect, new_IDs, in.tolerance); });
    fingerprint first_of_each;
    for (std::uint64_t e = 0; e < connect.cols; ++e)
        for (std::uint64_t i = 0; i < 3; ++i) first_of_each.add(3 * e + i, connect(i, e));
    l.answer({double(in.pos.cols) - merged, first_of_each.value()});
}

// -- what no machine avoids

cost for_build(const input& in, bool shuffled)
{
    const double points = double(in.pos.cols);
    return {.streamed = 24 * points + 40 * points,
            .fresh = 40 * points,
            .scattered = shuffled ? points : 0.0,
            .within = 40 * points};
}

cost for_nearest(const input& in, bool shuffled)
{
    const double searches = double(in.places.cols);
    return {.streamed = 24 * searches,
            .fresh = 4 * searches,
            .scattered = (shuffled ? 30 : 10) * searches,
            .within = shuffled ? 40.0 * double(in.pos.cols) : 1e6};
}

cost for_weld(const input& in, bool shuffled)
{
    const double corners = double(in.pos.cols);
    return {.streamed = 24 * corners + 8 * corners,
            .fresh = 4 * corners,
            .scattered = shuffled ? corners : 0.0,
            .within = 4 * corners};
}

const char* const distances = "sum of the distances";

const std::vector<case_of<input>> cases{
    {"detector build", "1 M points", "sum of the distances of 1000 searches", [](bool s) { return cloud(1e6, 1e5, s); },
     for_build, true, 1e-12},
    {"nearest", "1 M in 1 M points", distances, [](bool s) { return cloud(1e6, 1e6, s); }, for_nearest, true, 1e-12},
    {"boxes", "0.25 M of 8 in 1 M points", "points found, sum of their x", [](bool s) { return cloud(1e6, 250e3, s); },
     for_nearest, true, 1e-12},
    {"weld", "soup of 1 M facets", "nodes left, first node of each corner's place", [](bool s) { return soup(1e6, s); },
     for_weld},
};

const bool entered = enter<input>({
    {"detector build", ours, "node_detector::reinit", "", build},
    {"nearest", ours, "node_detector::find_closest", "", nearest},
    {"boxes", ours, "node_detector::find_in_box", "", boxes},
    {"weld", ours, "merge", "", weld},
});

}  // namespace
}  // namespace compare

int main(int argc, char** argv)
{
    const compare::settings s(argc, argv);
    compare::report all("spatial", s);
    compare::measure_cases(all, "spatial", compare::cases);
    return all.agreed() ? 0 : 1;
}
