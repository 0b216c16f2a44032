#include "digest/corpus.h"
#include "digest/fingerprint.h"

namespace digest {

namespace {

using zeb::misc::histogram;

// Types that have a measure.
const std::vector<int> measured{EL_EDGE2,  EL_EDGE3,   EL_FACE_MIX, EL_TRIA3,   EL_QUAD4,    EL_TRIA6,
                                EL_QUAD8,  EL_QUAD9,   EL_TETRA4,   EL_TETRA10, EL_PYRAMID5, EL_PYRAMID14,
                                EL_WEDGE6, EL_WEDGE18, EL_HEXA8,    EL_HEXA27};

dense1D<float> sizes_of_nodes(std::uint64_t nodes, unsigned seed)
{
    test::dice random(seed);
    dense1D<float> sizes;
    for (std::uint64_t i = 0; i < nodes; ++i)
        sizes.push_back(random.one_in(12) ? 0.5f : static_cast<float>(random.below(4000)) / 1000.0f);
    return sizes;
}

void shapes()
{
    operation("shape_qualities", [](fingerprint& f) {
        for (const auto& whole : meshes()) {
            const mesh m = corners(whole);
            for (std::size_t k = 0; k < m.parts.size(); ++k) {
                dense1D<double> qualities(1, 3.0);
                f.add(shape_qualities(m.pos, m.parts[k], static_cast<element_type>(m.types[k]), qualities));
                f.add(qualities);
            }
        }
    });
    operation("shape_qualities(range)", [](fingerprint& f) {
        for (const auto& whole : meshes()) {
            const mesh m = corners(only(whole, measured));
            dense1D<double> qualities(1, 3.0);
            f.add(shape_qualities(m.pos, m.first(), m.last(), m.type_list(), qualities)).add(qualities);
            f.add(shape_qualities(whole.pos, whole.first(), whole.last(), whole.type_list(), qualities)).add(qualities);
        }
    });
    operation("shape_qualities(histogram)", [](fingerprint& f) {
        histogram h;
        for (const auto& whole : meshes()) {
            const mesh m = corners(whole);
            for (std::size_t k = 0; k < m.parts.size(); ++k)
                f.add(shape_qualities(m.pos, m.parts[k], static_cast<element_type>(m.types[k]), h)).add(h);
        }
    });
    operation("shape_qualities(range,histogram)", [](fingerprint& f) {
        for (const auto& whole : meshes()) {
            const mesh m = corners(only(whole, measured));
            histogram h(-4, 2, 33);
            f.add(shape_qualities(m.pos, m.first(), m.last(), m.type_list(), h)).add(h);
        }
    });
}

void edges()
{
    operation("edge_lengths", [](fingerprint& f) {
        for (const auto& m : meshes()) {
            dense2D<unsigned> edges;
            copy_edges(m.first(), m.last(), m.type_list(), edges);
            dense2D<double> lengths(1, 1, 2.0);
            f.add(edge_lengths(m.pos, edges, lengths)).add(lengths);
            for (const auto& part : m.parts) f.add(edge_lengths(m.pos, part, lengths)).add(lengths);
        }
    });
    operation("edge_qualities", [](fingerprint& f) {
        for (const auto& m : meshes()) {
            const auto sizes = sizes_of_nodes(m.pos.cols, 8);
            for (std::size_t k = 0; k < m.parts.size(); ++k) {
                histogram h(0, 4, 16);
                f.add(edge_qualities(m.pos, m.parts[k], static_cast<element_type>(m.types[k]), sizes, h)).add(h);
            }
        }
    });
    operation("edge_qualities(range)", [](fingerprint& f) {
        for (const auto& m : meshes()) {
            histogram h(0, 4, 16);
            const auto sizes = sizes_of_nodes(m.pos.cols, 9);
            f.add(edge_qualities(m.pos, m.first(), m.last(), m.type_list(), sizes, h)).add(h);
            f.add(edge_qualities(m.pos, m.last(), m.first(), m.type_list(), sizes, h)).add(h);
        }
    });
}

}  // namespace

void quality()
{
    shapes();
    edges();
}

}  // namespace digest
