#include <ctime>
#include <limits>
#include <memory>

#include "check/check.h"
#include "commands/command.h"
#include "commands/files.h"
#include "commands/tables.h"
#include "formats/sink.h"
#include "report/judgement.h"
#include "report/page.h"

namespace tool {
namespace {

struct report_options {
    check_options judged;
    page_options page;
    bool time = false;
};

std::string now()
{
    const std::time_t seconds = std::time(nullptr);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M UTC", &parts);
    return text;
}

void write_page(const judgement& j, const report_options& options)
{
    const shared_options& shared = options.judged.shared;
    require_no_input(*shared.output, shared);
    page_options page = options.page;
    if (options.judged.ids) page.listed = std::numeric_limits<std::size_t>::max();
    if (options.time) page.time = now();
    try {
        sink to(*shared.output);
        to.text(page_of(j, page));
        to.commit();
    } catch (const std::exception&) {
        throw failure_of(*shared.output, std::current_exception());
    }
}

exit_status report(const std::string& path, const report_options& options)
{
    const shared_options& shared = options.judged.shared;
    const judgement j = judge(path, options.judged);
    write_page(j, options);
    if (shared.json)
        tell(shared, j.json);
    else if (!shared.quiet)
        tell(shared, j.verdict);
    return j.is_clean ? exit_clean : exit_problems;
}

}  // namespace

std::function<exit_status()> declare_report(CLI::App& app)
{
    const auto options = std::make_shared<report_options>();
    check_options& judged = options->judged;
    declare_file(app, judged.shared);
    declare_input_format(app, judged.shared);
    app.add_option("--output", judged.shared.output, "the page to write; - is standard output")
        ->required()
        ->type_name("FILE");
    app.add_flag("--force", judged.shared.force, "an input may be overwritten");
    declare_json(app, judged.shared);
    declare_quiet(app, judged.shared);
    app.add_option("--profile", judged.profile, "judge by the rules for this purpose")
        ->type_name("{default,solver,shell,closed}");
    app.add_option("--rules", judged.rules_file, "judge by the rules of this JSON file")->type_name("FILE");
    app.add_flag("--ids", judged.ids, "list all nodes and elements at fault, not the first 500 of each fault");
    app.add_option("--triangles", options->page.triangles,
                   "draw at most so many triangles, 300000 unless given; a larger surface is drawn coarser")
        ->check(CLI::Range(0, 10'000'000));
    app.add_flag("--time", options->time, "say on the page when it was made");
    return [options] {
        const shared_options& shared = options->judged.shared;
        return for_each_file(
            shared, [&](const std::string& path) { return report(path, *options); },
            [&](const failure& failed) {
                if (shared.json) tell(shared, json_of_failure(shared.files.front(), failed));
            });
    };
}

}  // namespace tool
