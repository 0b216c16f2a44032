#include "stl/stl_survey.h"

#include <algorithm>
#include <string_view>

#include "errors.h"
#include "stl/stl_text.h"
#include "stl/stl_words.h"
#include "words.h"

namespace tool {
namespace {

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

void note_text_oddities(const text_words& words, std::vector<std::string>& notes)
{
    if (!words.begins_with_solid) notes.emplace_back("the text does not begin with 'solid'");
    if (words.solids > 1) notes.push_back(std::to_string(words.solids) + " solids in the file");
    if (!words.last_solid_ends) notes.emplace_back("no 'endsolid' at the end");
    if (words.bytes_after_end != 0) notes.push_back(counted(words.bytes_after_end, "byte", "bytes") + " after the end");
}

stl_survey survey_text(const input_file& file)
{
    byte_source as_words(file);
    const text_words words = count_words(as_words);
    byte_source as_reader(file);
    const text_scan scan = scan_text(as_reader);

    stl_survey survey;
    survey.format = stl_format::ascii;
    survey.solids = words.solids;
    survey.facets_in_file = std::max(words.facets, scan.facets);
    survey.facets_read = scan.facets;
    if (survey.facets_read < survey.facets_in_file) survey.why_not_read = why_reading_stopped(scan);
    note_text_oddities(words, survey.notes);
    return survey;
}

bool header_begins_with_solid(const input_file& file)
{
    constexpr std::string_view solid = "solid";
    unsigned char begin[solid.size()] = {};
    return file.read_at(0, begin, sizeof begin) == sizeof begin && std::ranges::equal(begin, solid);
}

stl_survey survey_binary(const input_file& file)
{
    if (file.size() < binary_layout::header_bytes)
        throw unreadable("is no binary STL file: " + counted(file.size(), "byte", "bytes") +
                         ", the header alone has 84");
    const binary_layout layout = layout_of(file);

    stl_survey survey;
    survey.format = stl_format::binary;
    survey.facets_in_file = layout.announced;
    survey.facets_read = std::min(layout.announced, layout.room);
    if (survey.facets_read < survey.facets_in_file)
        survey.why_not_read = "the file is cut short at " + counted(file.size(), "byte", "bytes");
    if (header_begins_with_solid(file))
        survey.notes.emplace_back("the header begins with 'solid' like that of a text file");
    const std::uint64_t used = binary_layout::header_bytes + binary_layout::facet_bytes * layout.announced;
    if (file.size() > used) survey.notes.push_back(counted(file.size() - used, "byte", "bytes") + " after the end");
    return survey;
}

}  // namespace

stl_survey survey_stl(const input_file& file, std::optional<stl_format> format)
{
    if (!format) format = detect_format(file);
    return *format == stl_format::ascii ? survey_text(file) : survey_binary(file);
}

}  // namespace tool
