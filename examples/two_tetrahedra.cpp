// The neighbours of two tetrahedra that share a face.
#include <tessolv/tessolv.h>

#include <cstdio>

using namespace zeb::tessolv;

int main()
{
    const unsigned nodes[2][4] = {{0, 1, 2, 3}, {1, 2, 3, 4}};
    dense2D<unsigned> connect(4, 2), neighbors;
    for (unsigned e = 0; e < 2; ++e)
        for (unsigned i = 0; i < 4; ++i) connect(i, e) = nodes[e][i];

    if (const int code = get_neighbors(connect, EL_TETRA4, false, neighbors); code != 0) return -code;

    for (unsigned e = 0; e < 2; ++e) {
        std::printf("tetrahedron %u:", e);
        for (unsigned k = 0; k < 4; ++k)
            neighbors(k, e) == NONE_INDEX ? std::printf("  -") : std::printf("  %u", neighbors(k, e));
        std::printf("\n");
    }
}
