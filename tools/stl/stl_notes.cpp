#include "stl/stl_notes.h"

#include "words.h"

namespace tool {

std::string why_reading_stopped(const text_scan& scan)
{
    const std::string line = "line " + std::to_string(scan.line);
    if (scan.facets == 0 && scan.first_line_too_long) return "the first line is longer than 255 characters";
    switch (scan.stop) {
        case scan_stop::end_of_solid:
            return "reading ends with the first solid in " + line;
        case scan_stop::end_of_file:
            return "the file ends in " + line;
        case scan_stop::cut_short:
            return "the file is cut short within a facet, in " + line;
        case scan_stop::no_facet:
            return line + " is not 'facet normal' and three numbers";
        case scan_stop::no_vertex:
            return line + " is not 'vertex' and three numbers";
    }
    return {};
}

std::vector<std::string> notes_on(const text_words& words)
{
    std::vector<std::string> notes;
    if (!words.begins_with_solid) notes.emplace_back("the text does not begin with 'solid'");
    if (words.solids > 1) notes.push_back(std::to_string(words.solids) + " solids in the file");
    if (!words.last_solid_ends) notes.emplace_back("no 'endsolid' at the end");
    if (words.bytes_after_end != 0) notes.push_back(counted(words.bytes_after_end, "byte", "bytes") + " after the end");
    return notes;
}

}  // namespace tool
