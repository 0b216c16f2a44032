#include "digest/corpus.h"
#include "digest/fingerprint.h"

namespace digest {

namespace {

// Calls visit(corner rows, type, index in the corpus) for every matrix.
template <class Visit>
void for_each_part(Visit visit)
{
    for (const auto& whole : meshes()) {
        const mesh linear = corners(whole);
        for (std::size_t k = 0; k < linear.parts.size(); ++k) {
            const auto& part = linear.parts[k];
            visit(part, static_cast<element_type>(linear.types[k]));
            // As the corner rows of a quadratic mesh are passed: under the linear type.
            for (const int type : {EL_EDGE2, EL_TRIA3, EL_QUAD4, EL_TETRA4, EL_HEXA8})
                if (type != linear.types[k] && zeb::NODES_PER_ELEMENT[type] == part.rows)
                    visit(part, static_cast<element_type>(type));
        }
    }
}

void run_connex_parts(fingerprint& f, bool reorder)
{
    for_each_part([&](const dense2D<unsigned>& part, element_type type) {
        dense2D<unsigned> neighbors, connect(part);
        dense1D<unsigned> elements, offsets;
        if (get_neighbors(part, type, true, neighbors) != 0) return;
        if (reorder)
            f.add(get_connex_parts(connect, neighbors, offsets)).add(connect).add(neighbors).add(offsets);
        else
            f.add(get_connex_parts(neighbors, elements, offsets)).add(elements).add(offsets);
    });
}

}  // namespace

void topology()
{
    operation("get_neighbors", [](fingerprint& f) {
        for_each_part([&](const dense2D<unsigned>& part, element_type type) {
            for (const bool link : {false, true}) {
                dense2D<unsigned> neighbors(1, 1, 9u);
                f.add(get_neighbors(part, type, link, neighbors)).add(neighbors);
            }
        });
    });
    operation("get_boundaries", [](fingerprint& f) {
        for_each_part([&](const dense2D<unsigned>& part, element_type type) {
            dense2D<unsigned> neighbors, boundaries(1, 1, 9u);
            get_neighbors(part, type, false, neighbors);
            f.add(get_boundaries(part, neighbors, type, boundaries)).add(boundaries);
        });
    });
    operation("get_ancestors", [](fingerprint& f) {
        for (const auto& m : meshes()) {
            dense1D<unsigned> kept(4, 77u);
            for (const auto& part : m.parts) {
                dense1D<unsigned> ancestors;
                f.add(get_ancestors(part, ancestors)).add(ancestors).add(get_ancestors(part, kept)).add(kept);
            }
        }
    });
    operation("get_connex_parts", [](fingerprint& f) { run_connex_parts(f, false); });
    operation("get_connex_parts(reordering)", [](fingerprint& f) { run_connex_parts(f, true); });
    operation("copy_edges", [](fingerprint& f) {
        for (const auto& m : meshes()) {
            dense2D<unsigned> edges(2, 1, 3u);
            for (std::size_t k = 0; k < m.parts.size(); ++k)
                f.add(copy_edges(m.parts[k], static_cast<element_type>(m.types[k]), edges)).add(edges);
        }
    });
    operation("copy_edges(range)", [](fingerprint& f) {
        for (const auto& m : meshes()) {
            dense2D<unsigned> edges;
            f.add(copy_edges(m.first(), m.last(), m.type_list(), edges)).add(edges);
            f.add(copy_edges(m.first(), m.last(), test::types({1, 2}), edges)).add(edges);
        }
    });
}

}  // namespace digest
