#ifndef TOOLS_REPORT_PAGE_H
#define TOOLS_REPORT_PAGE_H

#include <optional>
#include <string>

#include "report/judgement.h"

namespace tool {

struct page_options {
    std::uint64_t triangles = 300'000;  // drawn at most
    std::size_t listed = 500;           // items of one fault that are named and shown at most
    std::string time;                   // when the page was made, if it is to say so
};

// The whole page: one HTML file without any reference to outside. Nothing in it depends on when or where it is made.
std::string page_of(const judgement& j, const page_options& options);

}  // namespace tool

#endif
