#include "report/page.h"

#include <map>
#include <string_view>

#include "report/colours.h"
#include "report/html.h"
#include "report/page_data.h"
#include "report/page_files.h"
#include "report/tables.h"

namespace tool {
namespace {

using json = nlohmann::ordered_json;

// Puts texts into the places {{name}} of the skeleton. What is put in is not looked through again.
std::string filled(std::string_view skeleton, const std::map<std::string_view, std::string>& texts)
{
    std::string page;
    std::size_t done = 0;
    for (std::size_t open; (open = skeleton.find("{{", done)) != std::string_view::npos;) {
        const std::size_t close = skeleton.find("}}", open);
        page += skeleton.substr(done, open - done);
        page += texts.at(skeleton.substr(open + 2, close - open - 2));
        done = close + 2;
    }
    page += skeleton.substr(done);
    return page;
}

std::string file_name(const std::string& path)
{
    return path == "-" ? "standard input" : path.substr(path.find_last_of('/') + 1);
}

}  // namespace

std::string page_of(const judgement& j, const page_options& options)
{
    const mark_list marks = marks_of(j, options.listed);
    const drawing drawn = draw(j.content, j.verdict_on.qualities, options.triangles);
    const group_list groups(j.content);
    json data = page_data(j, drawn, marks, groups);
    data["colours"] = viridis;
    data["inverted"] = colour_of_inverted;
    const std::string version = std::string("tessolv ") + zeb::tessolv::version();
    return filled(page_files::html, {
                                        {"style", std::string(page_files::css)},
                                        {"script", std::string(page_files::js)},
                                        {"file", html(file_name(j.file))},
                                        {"format", html(j.format)},
                                        {"class", j.is_clean ? "clean" : "not-clean"},
                                        {"verdict", j.is_clean ? "Clean" : "Not clean"},
                                        {"reasons", html(j.reasons)},
                                        {"cards", cards(j)},
                                        {"picture note", picture_note(j, drawn)},
                                        {"findings", findings_table(j, marks)},
                                        {"quality", quality_table(j)},
                                        {"histograms", histograms(j)},
                                        {"worst", worst_table(j, marks)},
                                        {"counts", counts_table(j)},
                                        {"box", box_table(j)},
                                        {"groups", groups_table(groups)},
                                        {"notes", notes_list(j)},
                                        {"rules", rules_table(j)},
                                        {"made", version + (options.time.empty() ? "" : ", " + options.time)},
                                        {"check", json_in_script(json::parse(j.json))},
                                        {"data", json_in_script(data)},
                                    });
}

}  // namespace tool
