#ifndef TOOLS_REPORT_COLOURS_H
#define TOOLS_REPORT_COLOURS_H

#include <array>
#include <string>

namespace tool {

// The colour map viridis at 0, 0.1, ... 1: even steps for the eye, also for colour-blind readers and in print.
// S. van der Walt, N. Smith. A better default colormap for Matplotlib. SciPy 2015.
inline constexpr std::array<const char*, 11> viridis{"#440154", "#482475", "#414487", "#355f8d", "#2a788e", "#21918c",
                                                     "#22a884", "#44bf70", "#7ad151", "#bddf26", "#fde725"};

// Apart from the map: what is below 0. Okabe-Ito's vermilion.
inline constexpr const char* colour_of_inverted = "#d55e00";

}  // namespace tool

#endif
