// Clipping a million tetrahedra, and what is done to their nodes.
#include "geometry/input.h"

namespace compare {
namespace {

geometry_input tetra_mesh(bool shuffled)
{
    geometry_input m{solid(tetrahedra, 1e6, shuffled)};
    const double middle = 0.5 * std::cbrt(double(m.connect.cols) / 6);
    m.C = {middle, middle, middle};
    return m;
}

void clipped(const geometry_input& m, lap& l)
{
    dense2D<unsigned int> kept;
    l.timed([&] { clip(m.pos, m.connect, m.C, m.N, kept); });
    l.answer({double(kept.cols)});
}

void box(const geometry_input& m, lap& l)
{
    const double huge = 1e300;
    vector_fixed<double, 3> low(huge, huge, huge), high(-huge, -huge, -huge);
    l.timed([&] { inc_bounding_box(m.pos, low, high); });
    l.answer({low[0], low[1], low[2], high[0], high[1], high[2]});
}

void rotated(const geometry_input& m, lap& l)
{
    dense2D<double> pos = m.pos;
    l.timed([&] { rotate(pos, m.C, {0.0, 0.0, m.angle}); });
    l.answer(sums(&pos(0, 0), pos.cols));
}

cost for_clip(const geometry_input& m, bool shuffled)
{
    const double corners = 4.0 * double(m.connect.cols);
    const double nodes = double(m.pos.cols);
    return {.streamed = 24 * nodes + 4 * corners + 2 * corners,
            .fresh = 2 * corners,
            .scattered = shuffled ? corners : 0.0,
            .within = nodes};
}
cost for_box(const geometry_input& m, bool)
{
    return {.streamed = 24.0 * double(m.pos.cols)};
}
cost for_rotation(const geometry_input& m, bool)
{
    return {.streamed = 48.0 * double(m.pos.cols)};
}

const std::vector<case_of<geometry_input>> cases{
    {"clip", "1 M tetra", "elements kept", tetra_mesh, for_clip},
    {"bounding box", "nodes of 1 M tetra", "the box", tetra_mesh, for_box},
    {"rotate", "nodes of 1 M tetra", "sums of the coordinates", tetra_mesh, for_rotation, true, 1e-9},
};

const bool entered = enter<geometry_input>({
    {"clip", ours, "clip", "", clipped},
    {"bounding box", ours, "inc_bounding_box", "", box},
    {"rotate", ours, "rotate", "", rotated},
});

}  // namespace
}  // namespace compare

int main(int argc, char** argv)
{
    const compare::settings s(argc, argv);
    compare::report all("geometry", s);
    compare::measure_cases(all, "geometry", compare::cases);
    return all.agreed() ? 0 : 1;
}
