#ifndef TOOLS_REPORT_PAGE_DATA_H
#define TOOLS_REPORT_PAGE_DATA_H

#include <nlohmann/json.hpp>

#include "report/drawing.h"
#include "report/groups.h"
#include "report/judgement.h"
#include "report/marks.h"

namespace tool {

// What page.js draws: numbers by the ten thousand are in base64, least byte first.
nlohmann::ordered_json page_data(const judgement& j, const drawing& d, const mark_list& marks,
                                 const group_list& groups);

}  // namespace tool

#endif
