#ifndef TESSOLV_SPATIAL_CELL_GRID_H
#define TESSOLV_SPATIAL_CELL_GRID_H

#include <array>

#include <zeb/dense1D.h>

#include "core/scratch.h"
#include "spatial/rough_node.h"
#include "spatial/tree_record.h"

namespace zeb::tessolv {

// Answers most queries of a tree without walking it: the records lie in a grid of cubic cells, two to a cell where they
// are spread evenly. Among a million random nodes a query takes 0.5 us; by the walk, whose random tree is deep, 2.8 us.
// Positions are kept in floats, in widths of a cell; where these cannot tell, exact coordinates do, and of equally close
// nodes it is known from where their records stand which one the walk would find. What remains open is left to the walk.
template <int D>
class cell_grid {
public:
    using table = tree_table<D>;

    // Chooses the cells for so many nodes in an extent, and with them the frame in which their positions are rough: cells
    // are its unit. A grid does not suit coordinates that are no finite numbers or too many digits apart.
    void fit(const extent<D>& nodes, std::size_t count);
    const frame<D>& cells() const { return frame_; }

    // Takes in the nodes of a table in preorder, in their order, and takes over the room for as many. It stays empty where
    // they crowd in few cells. False without memory.
    [[nodiscard]] bool enter(const scratch<rough_node<D>>& nodes, scratch<rough_node<D>>& room);

    // False without memory, and nothing has changed.
    [[nodiscard]] bool copy(const cell_grid& other);

    // Number of records it was built for, 0 if a grid does not suit them.
    std::size_t size() const { return entries_.size(); }

    // As the functions of kd_tree, for the table it was built for, if it is not empty. False, and nothing done, if the walk
    // has to be taken.
    bool find_closest(const table& records, const point<D>& P, unsigned int excluded, unsigned int& closest) const;
    bool find_in_box(const table& records, const box<D>& b, dense1D<unsigned int>& nodes) const;

private:
    using float_point = std::array<float, D>;

    using entry = rough_node<D>;  // with the number of its record
    struct cell_range {
        std::array<unsigned int, D> first;
        std::array<unsigned int, D> last;  // belongs to it
    };
    // The closest entry that was seen and the distance of the next one, squared.
    struct nearest {
        float square;
        float next_square;
        unsigned int record;
    };
    struct query {
        point<D> P;
        point<D> u;
        float_point v;  // u in floats
        unsigned int excluded;
    };

    bool choose_cells(const extent<D>& nodes, std::size_t count);
    std::uint64_t cell_at(const float_point& u) const;
    cell_range cells_between(const point<D>& lower, const point<D>& upper) const;
    template <class Visit>
    void visit(const cell_range& cells, Visit visit_run) const;
    nearest nearest_within(const table& records, const query& q, double radius) const;
    bool settle_tie(const table& records, const query& q, double reach, unsigned int& closest) const;

    frame<D> frame_;
    bool suits_ = false;
    double blur_ = 0;        // what is wrong with a distance in floats, at most
    double blur_exact_ = 0;  // what rounding of coordinates does to a distance in the walk, at most
    std::array<unsigned int, D> shape_{};
    scratch<unsigned int> starts_;  // of the cells in the table of entries, x varying first
    scratch<entry> entries_;
};

extern template class cell_grid<2>;
extern template class cell_grid<3>;

}  // namespace zeb::tessolv

#endif
