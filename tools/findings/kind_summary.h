#ifndef TOOLS_FINDINGS_KIND_SUMMARY_H
#define TOOLS_FINDINGS_KIND_SUMMARY_H

#include <array>
#include <cstdint>
#include <limits>
#include <vector>

#include "findings/rules.h"
#include "mesh/mesh.h"

namespace tool {

// Elements of one kind by their quality. Those without a finite place are in none of the numbers but `count`; those
// with a place whose measure is no number count as bad.
struct kind_summary {
    static constexpr std::size_t bins = 10;
    static constexpr double none = std::numeric_limits<double>::quiet_NaN();

    zeb::element_type type;
    std::uint64_t count = 0;
    double min = none;  // of the numbers; NaN where there is none
    double mean = none;
    double max = none;
    std::uint64_t inverted = 0;  // below 0
    std::uint64_t bad = 0;
    std::uint64_t poor = 0;
    std::uint64_t fair = 0;
    std::uint64_t good = 0;
    std::array<std::uint64_t, bins> histogram{};  // of [0, 1]; what is inverted is not in it
};

kind_summary summary_of(const mesh& m, const element_block& block, const std::vector<double>& qualities,
                        const quality_limits& limits);

}  // namespace tool

#endif
