// Shape qualities of a million elements of every kind.
#include "meshes.h"

namespace compare {
namespace {

void qualities(const mesh& m, lap& l)
{
    dense1D<double> found;
    l.timed([&] { shape_qualities(m.pos, m.connect, m.type, found); });
    double positive = 0.0;
    double sum = 0.0;
    for (const double q : found) positive += q > 0.0 ? 1.0 : 0.0, sum += q;
    l.answer({positive, sum});
}

cost limit(const mesh& m, bool shuffled)
{
    const double corners = double(m.connect.rows * m.connect.cols);
    const double nodes = 8.0 * double(m.pos.rows * m.pos.cols);
    return {.streamed = 4 * corners + nodes + 8.0 * double(m.connect.cols),
            .fresh = 8.0 * double(m.connect.cols),
            .scattered = shuffled ? corners : 0.0,
            .within = nodes};
}

const char* const sums = "elements of positive quality, sum of the qualities";

const std::vector<case_of<mesh>> cases{
    {"quality", "1 M tetra", sums, [](bool s) { return solid(tetrahedra, 1e6, s); }, limit, true, 1e-9},
    {"quality", "1 M hexa", sums, [](bool s) { return solid(hexahedra, 1e6, s); }, limit, true, 1e-9},
    {"quality", "2 M tria, 3-D", sums, [](bool s) { return surface(triangles, 2e6, s); }, limit, true, 1e-9},
    {"quality", "1 M quad, 3-D", sums, [](bool s) { return surface(quadrangles, 1e6, s); }, limit, true, 1e-9},
    {"quality", "1 M wedge", sums, [](bool s) { return solid(wedges, 1e6, s); }, limit, true, 1e-9},
    {"quality", "1 M pyramid", sums, [](bool s) { return solid(pyramids, 1e6, s); }, limit, true, 1e-9},
};

const bool entered = enter<mesh>({{"quality", ours, "shape_qualities", "", qualities}});

}  // namespace
}  // namespace compare

int main(int argc, char** argv)
{
    const compare::settings s(argc, argv);
    compare::report all("quality", s);
    compare::measure_cases(all, "quality", compare::cases);
    return all.agreed() ? 0 : 1;
}
