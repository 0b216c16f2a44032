#ifndef TOOLS_REPORT_PAGE_FILES_H
#define TOOLS_REPORT_PAGE_FILES_H

#include <string_view>

// The files of tools/report/page/, which the build puts into the program.
namespace tool::page_files {

extern const std::string_view html;
extern const std::string_view css;
extern const std::string_view js;

}  // namespace tool::page_files

#endif
