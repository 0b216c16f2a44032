#ifndef TESTS_SUPPORT_SLOW_TOPOLOGY_H
#define TESTS_SUPPORT_SLOW_TOPOLOGY_H

#include <cstdint>
#include <utility>
#include <vector>

#include <tessolv/tessolv.h>

// The topology operations once more, by the plainest means there are and with local numberings of their own: what the
// library is compared with. Elements are lists of nodes; a short list of a mixed kind is its shape.
namespace test::slow {

using nodes = std::vector<unsigned>;

// Columns of a connectivity as lists; those of mixed surface matrices end before a NONE_INDEX in row 3.
std::vector<nodes> elements_of(const zeb::dense2D<unsigned>& connect, zeb::element_type type);

// Local faces in their order, by global vertices in the order of a boundary.
std::vector<nodes> faces_of(const nodes& element, zeb::element_type type);

// Local edges in their order. Empty for kinds without.
std::vector<std::pair<unsigned, unsigned>> edges_of(const nodes& element, zeb::element_type type);

// Buckets by the sum of the vertices, equal faces found by comparing all with all: quadratic.
zeb::dense2D<unsigned> neighbors(const zeb::dense2D<unsigned>& connect, zeb::element_type type, bool link_nonmanifold);

// The same by a map of faces, for meshes that are too large for the other.
zeb::dense2D<unsigned> neighbors_by_map(const zeb::dense2D<unsigned>& connect, zeb::element_type type,
                                        bool link_nonmanifold);

// Faces whose entry of `neighbors` is NONE_INDEX, then as many columns of NONE_INDEX as entries were no faces.
zeb::dense2D<unsigned> boundaries(const zeb::dense2D<unsigned>& connect, const zeb::dense2D<unsigned>& neighbors,
                                  zeb::element_type type);

struct parts {
    std::vector<unsigned> elements, offsets;
};

// Elements are marked when they leave the queue, which holds some of them several times. `lists_count` tells whether an
// entry equal to the number of elements is listed.
parts connected_parts(const zeb::dense2D<unsigned>& neighbors, bool lists_count);

// Distinct edges in the order in which they are first seen.
std::vector<std::pair<unsigned, unsigned>> edges(const std::vector<zeb::dense2D<unsigned>>& matrices,
                                                 const std::vector<int>& types);

}  // namespace test::slow

#endif
