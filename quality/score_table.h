#ifndef TESSOLV_QUALITY_SCORE_TABLE_H
#define TESSOLV_QUALITY_SCORE_TABLE_H

#include "quality/score.h"
#include "quality/shape_measures.h"
#include "quality/wide_scores.h"

namespace zeb::tessolv::quality {
inline namespace TESSOLV_LANES {

template <std::size_t D, std::size_t N, shape_measure<D, N> Measure>
static void score_by(const dense2D<double>& pos, const dense2D<unsigned int>& connect, std::uint64_t first,
                     std::uint64_t last, double* qualities)
{
    score(node_positions(pos), connect, first, last, qualities, Measure);
}

// Every measure with the lanes of the source that includes this.
static constexpr score_functions score_table{
    .tetrahedra = score_by<3, 4, tetrahedron>,
    .pyramids = score_by<3, 5, pyramid>,
    .wedges = score_by<3, 6, wedge>,
    .hexahedra = score_by<3, 8, hexahedron>,
    .triangles = {score_by<2, 3, triangle>, score_by<3, 3, triangle>},
    .quadrangles = {score_by<2, 4, quadrangle>, score_by<3, 4, quadrangle>},
};

}  // namespace TESSOLV_LANES
}  // namespace zeb::tessolv::quality

#endif
