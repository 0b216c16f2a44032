#ifndef TOOLS_FINDINGS_WORDS_OF_IDS_H
#define TOOLS_FINDINGS_WORDS_OF_IDS_H

#include <string>
#include <vector>

#include "findings/examine.h"

namespace tool {

// Items of one kind by the numbers that they have in their file.
struct numbered_items {
    std::string kind;  // "node", or the name of a kind of elements
    std::vector<std::uint64_t> numbers;
};

// The first `most` items of a fault, by kinds in the order of the blocks.
std::vector<numbered_items> items_of(const mesh& m, const found& f, std::size_t most);

// "tetra 3 7, wedge 12"; with dots where there are more than `most`.
std::string words_of(const mesh& m, const found& f, std::size_t most);

// "3 edges below 1e-06, which the library's vtk (6 digits behind the point) does not keep apart".
std::string words_of(const lost_edges& lost);

// Percent of what was looked at, in two significant digits: "0.12".
std::string percent_of(const found& f);

}  // namespace tool

#endif
