#ifndef TESSOLV_IO_FACET_SOUP_H
#define TESSOLV_IO_FACET_SOUP_H

#include <limits>

#include <zeb/dense2D.h>

namespace zeb::tessolv {

// What an STL file holds: facets that share no node, three new nodes for each. A facet that the file breaks off in
// leaves nodes that no triangle names, behind all others.
class facet_soup {
public:
    dense2D<double> pos;
    dense2D<unsigned int> connect;

    // Provides room for so many facets at once, which costs less than growing by and by. False without memory.
    [[nodiscard]] bool reserve(std::uint64_t facets);

    // Both give false without memory, or when there are more nodes than an index can tell apart.
    [[nodiscard]] bool add_corner(const double* corner);
    [[nodiscard]] bool add_facet_of_last_corners();

    // The least height of the whole facets, without those of no height; the largest double if there is none.
    double least_height() const { return least_height_; }

    // Makes one node of those that coincide and drops what is left over; nothing if no facet has a height. Gives
    // success or a negative code.
    [[nodiscard]] int weld();

private:
    double least_height_ = std::numeric_limits<double>::max();
};

}  // namespace zeb::tessolv

#endif
