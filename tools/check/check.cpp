#include "check/check.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

#include "check/mesh_report.h"
#include "check/surface_json_report.h"
#include "check/surface_report.h"
#include "check/surface_text_report.h"
#include "commands/files.h"
#include "errors.h"
#include "findings/bad_elements.h"
#include "formats/file_beside.h"
#include "progress.h"
#include "terminal.h"
#include "words.h"

namespace tool {
namespace {

// What cannot be opened, or tells nothing of itself, goes the way of STL too if its name says so.
bool is_stl_file(const std::string& path, const std::optional<std::string>& format)
{
    const source from = source::open(path);
    if (from.size() == 0) return true;
    return input_format(from, format).name == "stl";
}

// The library's own writer, whose file is seen once it is whole.
exit_status write_vtk(const std::string& path, const surface& surface)
{
    try {
        progress::stage("writing", path);
        file_beside file(path);
        constexpr int cannot_write = -1;
        const int result = zeb::tessolv::vtk_output(file.name().c_str(), surface.pos, surface.connect, zeb::EL_TRIA3);
        if (result == cannot_write) throw unwritable("cannot be written");
        checked(result, "vtk_output");
        file.commit();
        return exit_clean;
    } catch (const unwritable&) {
        complain(path, "cannot be written");
        return exit_unwritable;
    }
}

class checker {
public:
    checker(const check_options& options, const rules& by)
        : options_(options), shared_(options.shared), rules_(by), terminal_(standard_output_terminal())
    {
    }

    // Whatever happens to one file, the next ones are still looked at.
    exit_status run(const std::string& path)
    {
        const progress shown(!shared_.json && !shared_.quiet, path);
        try {
            progress::stage("reading", path);
            return is_told_by_facets(path, options_) ? check_facets(path) : check_mesh(path);
        } catch (const std::exception&) {
            const failure failed = failure_of(path, std::current_exception());
            complain(failed.file, failed.reason);
            const bool unread = failed.status == exit_unreadable;
            if (shared_.json && failed.status != exit_usage && failed.status != exit_unwritable)
                print(json_line_without_report(path, unread ? "unreadable" : "failed", failed.reason));
            return unread && shared_.skip_unreadable ? exit_clean : failed.status;
        }
    }

private:
    exit_status check_facets(const std::string& path)
    {
        const input_file file(path);
        if (shared_.output && file.is_same_file(*shared_.output)) {
            complain(*shared_.output, "is the input file, which is never overwritten");
            return exit_usage;
        }
        surface surface;
        const surface_report report = inspect(path, file, options_.stl, surface);
        const exit_status written = shared_.output ? write_vtk(*shared_.output, surface) : exit_clean;
        show([&] { return json_line(report); }, [&] { return verdict_line(report, terminal_); },
             [&] { return text_report(report, terminal_); });
        return std::max(written, report.is_clean() ? exit_clean : exit_problems);
    }

    exit_status check_mesh(const std::string& path)
    {
        if (shared_.output) throw wrong_usage("--output is for the surfaces of STL files; see --extract and 'convert'");
        const loaded input = load(path, shared_);
        const rules by = rules_for(input.content);
        const examination verdict = examine(input.content, by);
        if (options_.extract) extract(input.content, verdict);
        const mesh_report report{
            path, std::string(input.as->name), std::string(input.as->title), input.content, verdict, by, options_.ids};
        show([&] { return json_of(report); }, [&] { return verdict_of(report, terminal_); },
             [&] { return text_of(report, terminal_); });
        return verdict.is_clean() ? exit_clean : exit_problems;
    }

    // The rules with the tolerance of the command line, which is a distance, in diagonals of this mesh.
    rules rules_for(const mesh& m) const
    {
        rules by = rules_;
        const double diagonal = box_of(m).diagonal();
        if (shared_.tolerance && diagonal > 0) by.coincident = *shared_.tolerance / diagonal;
        return by;
    }

    void extract(const mesh& m, const examination& verdict) const
    {
        std::uint64_t left_out = 0;
        const mesh bad = bad_elements(m, verdict, left_out);
        shared_options to = shared_;
        to.output = options_.extract;
        to.format.reset();
        if (left_out != 0 && !shared_.quiet)
            remark(*to.output, counted(left_out, "element or node", "elements or nodes") + " without a place left out");
        save(bad, to);
    }

    template <class Json, class Verdict, class Text>
    void show(Json json, Verdict verdict, Text text)
    {
        if (shared_.json) {
            print(json());
        } else if (shared_.quiet) {
            print(verdict());
        } else {
            if (std::exchange(separate_, true)) print("\n");
            print(text());
        }
    }

    const check_options& options_;
    const shared_options& shared_;
    const rules& rules_;
    terminal terminal_;
    bool separate_ = false;
};

}  // namespace

rules rules_in_force(const check_options& options)
{
    const std::string named = options.rules_file.value_or("--profile");
    try {
        rules base = rules_of_profile(options.profile.value_or("default"));
        if (!options.rules_file) return base;
        const source from = source::open(*options.rules_file);
        std::string text(from.size(), '\0');
        from.read_at(0, text.data(), text.size());
        return rules_from_json(text, base);
    } catch (const std::exception&) {
        throw failure_of(named, std::current_exception());
    }
}

bool is_told_by_facets(const std::string& path, const check_options& options)
{
    if (options.is_general() || path == "-") return false;
    return options.stl || is_stl_file(path, options.shared.format);
}

exit_status check(const check_options& options)
{
    rules by;
    try {
        by = rules_in_force(options);
    } catch (const failure& failed) {
        complain(failed.file, failed.reason);
        return failed.status;
    }
    checker checker(options, by);
    exit_status worst = exit_clean;
    for (const std::string& path : options.shared.files) {
        worst = std::max(worst, checker.run(path));
        if (std::fflush(stdout) != 0)
            break;  // nobody would see the rest; flushing also keeps the order of both streams
    }
    return worst;
}

}  // namespace tool
