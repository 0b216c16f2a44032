// Neighbours, boundaries, edges, parts and node lists of a million elements.
#include "topology/input.h"

namespace compare {
namespace {

using input = topology_input;

// -- the inputs

topology_input tetra_mesh(double count, bool shuffled)
{
    return topology_input(solid(tetrahedra, count, shuffled));
}
topology_input hexa_mesh(double count, bool shuffled)
{
    return topology_input(solid(hexahedra, count, shuffled));
}
topology_input tria_mesh(double count, bool shuffled)
{
    return topology_input(surface(triangles, count, shuffled));
}

// Four meshes beside each other; when they are shuffled their elements take turns.
topology_input in_four_parts(const mesh& one, bool shuffled)
{
    mesh all{dense2D<double>(one.pos.rows, 4 * one.pos.cols),
             dense2D<unsigned int>(one.connect.rows, 4 * one.connect.cols), one.type};
    for (std::uint64_t p = 0; p < 4; ++p) {
        for (std::uint64_t j = 0; j < one.pos.cols; ++j)
            for (std::uint64_t i = 0; i < 3; ++i) all.pos(i, p * one.pos.cols + j) = one.pos(i, j) + 1e4 * double(p);
        for (std::uint64_t e = 0; e < one.connect.cols; ++e)
            for (std::uint64_t i = 0; i < one.connect.rows; ++i)
                all.connect(i, shuffled ? 4 * e + p : p * one.connect.cols + e) =
                    static_cast<unsigned int>(one.connect(i, e) + p * one.pos.cols);
    }
    return topology_input(std::move(all));
}

// -- what is to be found

std::vector<double> links(const dense2D<unsigned int>& neighbors)
{
    fingerprint found;
    for (std::uint64_t e = 0; e < neighbors.cols; ++e)
        for (std::uint64_t k = 0; k < neighbors.rows; ++k)
            if (neighbors(k, e) != NONE_INDEX) found.add(e, neighbors(k, e));
    return {found.count(), found.value()};
}

void neighbors(const input& m, lap& l)
{
    dense2D<unsigned int> found;
    l.timed([&] { get_neighbors(m.connect, m.type, false, found); });
    l.answer(links(found));
}

void neighbors_and_boundary(const input& m, lap& l)
{
    dense2D<unsigned int> found, open;
    l.timed([&] {
        get_neighbors(m.connect, m.type, false, found);
        get_boundaries(m.connect, found, m.type, open);
    });
    l.answer({static_cast<double>(open.cols)});
}

void boundary(const input& m, lap& l)
{
    dense2D<unsigned int> open;
    l.timed([&] { get_boundaries(m.connect, m.neighbors, m.type, open); });
    l.answer({static_cast<double>(open.cols)});
}

void ancestors(const input& m, lap& l)
{
    dense1D<unsigned int> found;
    l.timed([&] { get_ancestors(m.connect, found); });
    fingerprint sum;
    for (std::uint64_t i = 0; i < found.size; ++i) sum.add(i, found[i]);
    l.answer({sum.count(), sum.value()});
}

void edges(const input& m, lap& l)
{
    dense2D<unsigned int> found;
    l.timed([&] { copy_edges(m.connect, m.type, found); });
    fingerprint sum;
    for (std::uint64_t e = 0; e < found.cols; ++e)
        sum.add(std::min(found(0, e), found(1, e)), std::max(found(0, e), found(1, e)));
    l.answer({sum.count(), sum.value()});
}

void parts(const input& m, lap& l)
{
    dense1D<unsigned int> elements, offsets;
    l.timed([&] { get_connex_parts(m.neighbors, elements, offsets); });
    double squares = 0.0;
    for (std::uint64_t p = 0; p + 1 < offsets.size; ++p) squares += std::pow(double(offsets[p + 1] - offsets[p]), 2);
    l.answer({static_cast<double>(offsets.size - 1), squares});
}

void node_list(const input& m, lap& l)
{
    dense1D<unsigned int> nodes;
    l.timed([&] { unique_indices(nodes, m.connect); });
    fingerprint sum;
    for (const unsigned int n : nodes) sum.add(n);
    l.answer({sum.count(), sum.value()});
}

// -- what no machine avoids: reading the elements, writing the result, one scattered access for each face, edge or
// element met when the numbering is shuffled

double bytes(const dense2D<unsigned int>& m)
{
    return 4.0 * double(m.rows * m.cols);
}

cost for_neighbors(const input& m, bool shuffled)
{
    const double out = bytes(m.neighbors);
    return {.streamed = bytes(m.connect) + out, .fresh = out, .scattered = shuffled ? out / 4 : 0.0, .within = out};
}

cost for_boundary(const input& m, bool)
{
    return {.streamed = bytes(m.connect) + bytes(m.neighbors)};
}

cost for_ancestors(const input& m, bool shuffled)
{
    const double nodes = 4.0 * double(m.pos.cols);
    return {.streamed = bytes(m.connect),
            .fresh = nodes,
            .scattered = shuffled ? bytes(m.connect) / 4 : 0.0,
            .within = nodes};
}

cost for_edges(const input& m, bool shuffled)
{
    const double entered = m.type == EL_TRIA3 ? 3 : m.type == EL_TETRA4 ? 6 : 12;
    const double distinct = m.type == EL_TRIA3 ? 1.5 : m.type == EL_TETRA4 ? 1.2 : 3.0;
    const double out = 8.0 * distinct * double(m.connect.cols);
    return {.streamed = bytes(m.connect) + out,
            .fresh = out,
            .scattered = shuffled ? entered * double(m.connect.cols) : 0.0,
            .within = out};
}

cost for_parts(const input& m, bool shuffled)
{
    const double out = 4.0 * double(m.connect.cols);
    return {.streamed = bytes(m.neighbors) + out,
            .fresh = out,
            .scattered = shuffled ? double(m.connect.cols) : 0.0,
            .within = bytes(m.neighbors)};
}

cost for_nodes(const input& m, bool shuffled)
{
    return {.streamed = bytes(m.connect),
            .fresh = 4.0 * double(m.pos.cols),
            .scattered = shuffled ? bytes(m.connect) / 4 : 0.0,
            .within = double(m.pos.cols) / 8};
}

const char* const all_links = "links, sum over all pairs of element and neighbour";
const char* const open_faces = "faces without a neighbour";
const char* const all_edges = "edges, sum over all pairs of nodes";

const std::vector<case_of<input>> cases{
    {"neighbours", "1 M tetra", all_links, [](bool s) { return tetra_mesh(1e6, s); }, for_neighbors},
    {"neighbours", "6 M tetra", all_links, [](bool s) { return tetra_mesh(6e6, s); }, for_neighbors},
    {"neighbours", "1 M hexa", all_links, [](bool s) { return hexa_mesh(1e6, s); }, for_neighbors},
    {"neighbours", "2 M tria", all_links, [](bool s) { return tria_mesh(2e6, s); }, for_neighbors},
    {"neighbours and boundary", "1 M tetra", open_faces, [](bool s) { return tetra_mesh(1e6, s); }, for_neighbors},
    {"neighbours and boundary", "1 M hexa", open_faces, [](bool s) { return hexa_mesh(1e6, s); }, for_neighbors},
    {"boundary alone", "1 M tetra", open_faces, [](bool s) { return tetra_mesh(1e6, s); }, for_boundary},
    {"ancestors", "1 M tetra", "nodes, sum over all", [](bool s) { return tetra_mesh(1e6, s); }, for_ancestors},
    {"edges", "1 M tetra", all_edges, [](bool s) { return tetra_mesh(1e6, s); }, for_edges},
    {"edges", "1 M hexa", all_edges, [](bool s) { return hexa_mesh(1e6, s); }, for_edges},
    {"edges", "2 M tria", all_edges, [](bool s) { return tria_mesh(2e6, s); }, for_edges},
    {"connected parts", "1 M tria", "parts, squares of their sizes",
     [](bool s) { return in_four_parts(surface(triangles, 250e3, s), s); }, for_parts},
    {"connected parts", "1 M tetra", "parts, squares of their sizes",
     [](bool s) { return in_four_parts(solid(tetrahedra, 250e3, s), s); }, for_parts},
    {"unique indices", "1 M tetra", "nodes, sum over all", [](bool s) { return tetra_mesh(1e6, s); }, for_nodes},
};

const bool entered = enter<input>({
    {"neighbours", ours, "get_neighbors", "", neighbors},
    {"neighbours and boundary", ours, "get_neighbors, get_boundaries", "", neighbors_and_boundary},
    {"boundary alone", ours, "get_boundaries", "", boundary},
    {"ancestors", ours, "get_ancestors", "", ancestors},
    {"edges", ours, "copy_edges", "", edges},
    {"connected parts", ours, "get_connex_parts", "", parts},
    {"unique indices", ours, "unique_indices", "", node_list},
});

}  // namespace
}  // namespace compare

int main(int argc, char** argv)
{
    const compare::settings s(argc, argv);
    compare::report all("topology", s);
    compare::measure_cases(all, "topology", compare::cases);
    return all.agreed() ? 0 : 1;
}
