#ifndef TESTS_DIGEST_CORPUS_H
#define TESTS_DIGEST_CORPUS_H

#include <vector>

#include <tessolv/tessolv.h>

#include "support/matrices.h"
#include "support/random_meshes.h"

// Meshes and numbers to run operations on: the same in every build. Nothing here calls the mathematical functions of the
// runtime, and no result depends on the order in which arguments of a call are evaluated.
namespace digest {

using namespace zeb::tessolv;

// Coordinates and matrices on them, one element_type each.
struct mesh {
    dense2D<double> pos;
    std::vector<dense2D<unsigned>> parts;
    std::vector<int> types;

    dense2D<unsigned>* first() { return parts.data(); }
    dense2D<unsigned>* last() { return parts.data() + parts.size(); }
    const dense2D<unsigned>* first() const { return parts.data(); }
    const dense2D<unsigned>* last() const { return parts.data() + parts.size(); }
    dense1D<int> type_list() const { return test::list_of(types); }
};

// How coordinates are drawn.
enum class spread {
    plain,   // anywhere in [-1, 1)
    coarse,  // multiples of 1/8: coincident nodes, equal distances, flat elements
    wild     // with NaN, infinities, -0, the largest and the smallest numbers
};

dense2D<double> random_points(test::dice& random, std::uint64_t rows, std::uint64_t nodes, spread kind);

// A grid of n cells a side whose nodes are moved by up to 0.4 of a cell, so that some elements are inverted.
dense2D<double> shaken_grid(test::dice& random, std::uint64_t rows, unsigned n);

// A number in [-1, 1).
double signed_unit(test::dice& random);

// Meshes that hold matrices of every element_type, the mixed kinds in all their shapes: few nodes and many (degenerate
// and sound elements), 2 and 3 coordinates, every spread, compact and as views into something larger; then shaken grids.
const std::vector<mesh>& meshes();

// The mesh without the matrices of other types than these.
mesh only(const mesh& whole, const std::vector<int>& types);

// The corner rows alone, as views.
mesh corners(const mesh& whole);

// A deep copy: what works in place leaves the corpus alone.
mesh copy_of(const mesh& original);

// Index lists, some with repetitions, NONE_INDEX and indices beyond n.
std::vector<dense1D<unsigned>> index_lists(unsigned n);

}  // namespace digest

#endif
