#include "spatial/wide_partition.h"

#include <bit>

#ifdef __x86_64__
#include <immintrin.h>
#endif

namespace zeb::tessolv {

#ifdef __x86_64__

// The nodes of one side are moved together in a register; what is stored behind them is overwritten by the next four.
[[gnu::target("avx512f")]] void deal_by_four(dealing<3>& nodes, const rough_node<3>* end, int d, float c)
{
    const __m512 root = _mm512_set1_ps(c);
    const auto of_each = static_cast<__mmask16>(0x1111 << d);  // coordinate d
    auto [next, left, right] = nodes;
    for (; end - next >= 4; next += 4) {
        const __m512i four = _mm512_loadu_si512(next);
        const __m512 u = _mm512_castsi512_ps(four);
        const unsigned int less = _mm512_mask_cmp_ps_mask(of_each, u, root, _CMP_LT_OQ);
        const unsigned int greater = _mm512_mask_cmp_ps_mask(of_each, u, root, _CMP_GT_OQ);
        if ((less | greater) != of_each) break;
        _mm512_storeu_si512(right, _mm512_maskz_compress_epi32(static_cast<__mmask16>((greater >> d) * 15), four));
        _mm512_storeu_si512(left, _mm512_maskz_compress_epi32(static_cast<__mmask16>((less >> d) * 15), four));
        left += std::popcount(less);
        right += std::popcount(greater);
    }
    nodes = {next, left, right};
}

#else

void deal_by_four(dealing<3>&, const rough_node<3>*, int, float) {}

#endif

}  // namespace zeb::tessolv
