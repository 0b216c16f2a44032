#include "quality/wide_scores.h"

#include "quality/score.h"
#include "quality/shape_measures.h"

// Compiled with four lanes for processors with AVX2; elsewhere with two like everything else, and not called.
namespace zeb::tessolv::quality {

void score_tetrahedra_four_at_a_time(const dense2D<double>& pos, const dense2D<unsigned int>& connect,
                                     double* qualities)
{
    score(node_positions(pos), connect, 0, connect.cols, qualities, tetrahedron);
}

void score_wedges_four_at_a_time(const dense2D<double>& pos, const dense2D<unsigned int>& connect, double* qualities)
{
    score(node_positions(pos), connect, 0, connect.cols, qualities, wedge);
}

void score_hexahedra_four_at_a_time(const dense2D<double>& pos, const dense2D<unsigned int>& connect, double* qualities)
{
    score(node_positions(pos), connect, 0, connect.cols, qualities, hexahedron);
}

}  // namespace zeb::tessolv::quality
