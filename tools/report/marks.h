#ifndef TOOLS_REPORT_MARKS_H
#define TOOLS_REPORT_MARKS_H

#include <cstdint>
#include <string>
#include <vector>

#include "report/judgement.h"

namespace tool {

// The elements and nodes that a page names and shows one by one.
struct mark_list {
    struct mark {
        bool is_node;
        std::uint64_t id;                 // column of the node or place of the element
        std::string name;                 // "tetra 12", by the number in the file
        double quality;                   // NaN for nodes
        std::vector<std::size_t> faults;  // places in judgement::faults
    };

    std::vector<mark> marks;
    std::vector<std::vector<std::size_t>> of_faults;  // of each fault the marks of its first ids
    std::vector<std::size_t> worst;                   // the surface elements or solids of least quality
};

// At most so many of each fault.
mark_list marks_of(const judgement& j, std::size_t most);

}  // namespace tool

#endif
