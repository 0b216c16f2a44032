#include <meshoptimizer.h>

#include "spatial/input.h"

namespace compare {
namespace {

void weld(const spatial_input& in, lap& l)
{
    std::vector<unsigned int> remap(in.pos.cols), connect(3 * in.connect.cols);
    std::size_t left = 0;
    l.timed([&] {
        left = meshopt_generateVertexRemap(remap.data(), entries(in.connect), connect.size(), &in.pos(0, 0),
                                           in.pos.cols, 3 * sizeof(double));
        meshopt_remapIndexBuffer(connect.data(), entries(in.connect), connect.size(), remap.data());
    });
    std::vector<std::uint64_t> first(left, ~std::uint64_t{0});
    fingerprint first_of_each;
    for (std::uint64_t c = 0; c < connect.size(); ++c) {
        auto& f = first[connect[c]];
        f = std::min(f, c);
        first_of_each.add(c, f);
    }
    l.answer({double(left), first_of_each.value()});
}

const bool entered = enter<spatial_input>({
    {"weld", "meshoptimizer", "meshopt_generateVertexRemap, meshopt_remapIndexBuffer", "equal positions only", weld},
});

}  // namespace
}  // namespace compare
