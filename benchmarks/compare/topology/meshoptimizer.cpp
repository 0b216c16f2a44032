#include <meshoptimizer.h>

#include "topology/input.h"

namespace compare {
namespace {

void adjacency(const topology_input& m, lap& l)
{
    if (m.type != EL_TRIA3) return l.decline();
    const std::vector<float> positions(&m.pos(0, 0), &m.pos(0, 0) + m.pos.size);
    std::vector<unsigned int> found;
    l.timed([&] {
        found.resize(6 * m.connect.cols);
        meshopt_generateAdjacencyIndexBuffer(found.data(), entries(m.connect), 3 * m.connect.cols, positions.data(),
                                             m.pos.cols, 3 * sizeof(float));
    });
    double links = 0.0;
    for (std::size_t i = 0; i < found.size(); i += 2) links += found[i + 1] != found[i] ? 1.0 : 0.0;
    l.answer({links});
}

const bool entered = enter<topology_input>({
    {"neighbours", "meshoptimizer", "meshopt_generateAdjacencyIndexBuffer",
     "the node opposite each edge in place of the element; joins equal positions first", adjacency},
});

}  // namespace
}  // namespace compare
