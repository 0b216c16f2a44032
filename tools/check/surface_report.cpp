#include "check/surface_report.h"

#include "errors.h"
#include "formats/stl_read.h"
#include "words.h"

namespace tool {
namespace {

using zeb::tessolv::remove_degenerated;
using zeb::tessolv::simplify;
using zeb::tessolv::STL_input;

// As the library's reader makes it.
void read_one_solid(const std::string& path, stl_format format, surface& result)
{
    constexpr int not_opened = -1;
    const int triangles = STL_input(path.c_str(), result.pos, result.connect, format == stl_format::ascii);
    if (triangles == not_opened) throw unreadable("cannot be read as an STL file");
    checked(triangles, "STL_input");
}

// That reader ends with the first solid of a text. Here are all of them, welded and without collapsed facets as there.
void read_all_solids(const std::string& path, stl_survey& survey, surface& result)
{
    const mesh m = read_stl(source::open(path));
    survey.facets_in_file = m.facets->in_file;
    survey.facets_read = m.facets->read;
    survey.why_not_read = m.facets->why_not_read;
    result.pos = m.pos;
    if (!m.blocks.empty()) result.connect = m.blocks.front().connect;
    zeb::dense1D<unsigned int> new_numbers;
    checked(remove_degenerated(result.connect, new_numbers), "remove_degenerated");
}

// Without a positive height the reader leaves the nodes of an incomplete facet in place; nobody uses them. What is left
// when nothing was read is still a surface in space.
void read_surface(const std::string& path, stl_survey& survey, surface& result)
{
    if (survey.solids > 1)
        read_all_solids(path, survey, result);
    else
        read_one_solid(path, survey.format, result);
    checked(simplify(result.pos, result.connect), "simplify");
    if (result.pos.empty()) result.pos.resize(3, 0);
}

void add(std::vector<std::string>& to, std::uint64_t count, const char* one, const char* many)
{
    if (count != 0) to.push_back(counted(count, one, many));
}

std::vector<std::string> problems_of(const surface_report& report)
{
    const stl_survey& survey = report.survey;
    const surface_numbers& numbers = report.numbers;
    std::vector<std::string> problems;
    if (const std::uint64_t unread = survey.facets_in_file - survey.facets_read; unread != 0)
        problems.push_back(counted(unread, "facet", "facets") + " not read (" + survey.why_not_read + ')');
    if (numbers.triangles == 0) problems.emplace_back("no triangle");
    add(problems, numbers.nodes_not_finite, "node without a finite place", "nodes without a finite place");
    add(problems, report.degenerate, "degenerate triangle", "degenerate triangles");
    add(problems, numbers.duplicates.count, "duplicate triangle", "duplicate triangles");
    add(problems, numbers.free_edges.count, "free edge", "free edges");
    add(problems, numbers.nonmanifold_edges.count, "edge of three or more triangles",
        "edges of three or more triangles");
    return problems;
}

std::vector<std::string> notes_of(const surface_report& report)
{
    const surface_numbers& numbers = report.numbers;
    std::vector<std::string> notes = report.survey.notes;
    if (numbers.parts > 1) notes.push_back(std::to_string(numbers.parts) + " separate parts");
    if (numbers.triangles != 0 && report.merged_nodes == 0)
        notes.emplace_back("no corners coincide: nothing was welded");
    return notes;
}

}  // namespace

surface_report inspect(const std::string& path, const input_file& file, std::optional<stl_format> format,
                       surface& result)
{
    surface_report report;
    report.file = path;
    report.survey = survey_stl(file, format);
    read_surface(path, report.survey, result);
    report.numbers = measure_surface(result.pos, result.connect);

    const std::uint64_t corners = 3 * report.survey.facets_read;
    if (report.survey.facets_read < report.numbers.triangles || corners < report.numbers.nodes)
        throw internal_error("more triangles than facets: did the file change while it was read?");
    report.merged_nodes = corners - report.numbers.nodes;
    report.degenerate = report.survey.facets_read - report.numbers.triangles;
    report.problems = problems_of(report);
    report.notes = notes_of(report);
    return report;
}

}  // namespace tool
