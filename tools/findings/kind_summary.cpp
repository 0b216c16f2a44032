#include "findings/kind_summary.h"

#include <algorithm>
#include <cmath>

#include "findings/measures.h"
#include "mesh/kinds.h"

namespace tool {

kind_summary summary_of(const mesh& m, const element_block& block, const std::vector<double>& qualities,
                        const quality_limits& limits)
{
    kind_summary s;
    s.type = block.type;
    s.count = block.size();
    std::uint64_t numbers = 0;
    double sum = 0;
    for (std::uint64_t e = 0; e < block.size() && info_of(block.type).dimension > 0; ++e) {
        const double q = qualities[e];
        if (std::isnan(q)) {
            s.bad += has_place(m, block, e);
            continue;
        }
        s.min = numbers == 0 ? q : std::min(s.min, q);
        s.max = numbers == 0 ? q : std::max(s.max, q);
        sum += q;
        ++numbers;
        ++(q < 0                ? s.inverted
           : q < limits.bad     ? s.bad
           : q < limits.warning ? s.poor
           : q < limits.good    ? s.fair
                                : s.good);
        if (q >= 0) ++s.histogram[std::min<std::size_t>(static_cast<std::size_t>(10 * q), s.bins - 1)];
    }
    if (numbers != 0) s.mean = sum / static_cast<double>(numbers);
    return s;
}

}  // namespace tool
