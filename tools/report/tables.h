#ifndef TOOLS_REPORT_TABLES_H
#define TOOLS_REPORT_TABLES_H

#include <string>

#include "report/drawing.h"
#include "report/groups.h"
#include "report/judgement.h"
#include "report/marks.h"

namespace tool {

// The sections of the page in HTML; empty where there is nothing to say.
std::string cards(const judgement& j);
std::string findings_table(const judgement& j, const mark_list& marks);
std::string quality_table(const judgement& j);
std::string histograms(const judgement& j);
std::string worst_table(const judgement& j, const mark_list& marks);
std::string counts_table(const judgement& j);
std::string box_table(const judgement& j);
std::string groups_table(const group_list& groups);
std::string rules_table(const judgement& j);
std::string notes_list(const judgement& j);

// What of the mesh is in the picture.
std::string picture_note(const judgement& j, const drawing& d);

}  // namespace tool

#endif
