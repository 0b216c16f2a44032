#include "check/check.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

#include "errors.h"
#include "findings/bad_elements.h"
#include "formats/file_beside.h"
#include "formats/format.h"
#include "formats/stl_read.h"
#include "progress.h"
#include "terminal.h"
#include "words.h"

namespace tool {
namespace {

// Any bytes can be read as binary facets, but only STL as a text with facets.
bool is_of_another_format(const source& from, const check_options& options)
{
    const std::optional<std::string>& named = options.shared.format;
    if (!named && options.stl == stl_format::ascii) return false;
    try {
        return input_format(from, named).name != "stl";
    } catch (const unreadable&) {
        return false;  // what tells nothing of itself may be a damaged STL file
    }
}

loaded load_stl(const std::string& path, const check_options& options)
{
    progress::stage("reading", path);
    source from = source::open(path);
    if (from.size() == 0) throw unreadable("is empty");
    if (is_of_another_format(from, options)) throw unreadable("is no STL file, and --ascii and --binary are for these");
    mesh content = read_stl_as(from, *options.stl);
    progress::stage("working on", path);
    return {std::move(from), &format_named("stl"), std::move(content)};
}

// The triangles without collapsed ones, by the library's own writer; the file is seen once it is whole.
void write_vtk(const std::string& path, const mesh& m)
{
    zeb::dense2D<double> pos = m.pos;
    zeb::dense2D<unsigned int> connect;
    if (!m.blocks.empty()) connect = m.blocks.front().connect;
    if (pos.cols != m.pos.cols || connect.cols != m.element_count()) throw std::bad_alloc();
    zeb::dense1D<unsigned int> new_numbers;
    checked(zeb::tessolv::remove_degenerated(connect, new_numbers), "remove_degenerated");
    checked(zeb::tessolv::simplify(pos, connect), "simplify");
    if (pos.empty()) resize(pos, 3, 0);

    progress::stage("writing", path);
    try {
        file_beside file(path);
        constexpr int cannot_write = -1;
        const int result = zeb::tessolv::vtk_output(file.name().c_str(), pos, connect, zeb::EL_TRIA3);
        if (result == cannot_write) throw unwritable("the library's writer failed");
        checked(result, "vtk_output");
        file.commit();
    } catch (const unwritable& reason) {
        throw unwritable(std::string("cannot be written: ") + reason.what());
    }
}

// A name that tells no format is told of, whether or not there will be anything to write.
void require_format_of_extract(const check_options& options)
{
    try {
        if (options.extract) output_format(*options.extract, {});
    } catch (const std::exception&) {
        throw failure_of(*options.extract, std::current_exception());
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
            return look_at(path);
        } catch (const std::exception&) {
            const failure failed = failure_of(path, std::current_exception());
            complain(failed.file, failed.reason);
            if (shared_.json) print(json_of_failure(path, failed));
            return failed.status == exit_unreadable && shared_.skip_unreadable ? exit_clean : failed.status;
        }
    }

private:
    exit_status look_at(const std::string& path)
    {
        const loaded input = load_to_check(path, options_);
        if (shared_.output) require_surface(input, *shared_.output);
        const rules by = rules_for(input.content);
        const examination verdict = examine(input.content, by);
        const exit_status written = write_outputs(input.content, verdict);
        const mesh_report report = report_on(input, path, verdict, by, options_.ids);
        show([&] { return json_of(report); }, [&] { return verdict_of(report, terminal_); },
             [&] { return text_of(report, terminal_); });
        return std::max(written, verdict.is_clean() ? exit_clean : exit_problems);
    }

    static void require_surface(const loaded& input, const std::string& output)
    {
        if (!input.content.facets)
            throw wrong_usage("--output is for the surfaces of STL files; see --extract and 'convert'");
        if (input.from.is_same_file(output))
            throw failure(exit_usage, output, "is the input file, which is never overwritten");
    }

    // The verdict is told also where its elements cannot be written.
    exit_status write_outputs(const mesh& m, const examination& verdict) const
    {
        exit_status status = exit_clean;
        const auto write = [&](const std::optional<std::string>& path, auto work) {
            try {
                if (path) work(*path);
            } catch (const std::exception&) {
                const failure failed = failure_of(*path, std::current_exception());
                complain(failed.file, failed.reason);
                status = std::max(status, failed.status);
            }
        };
        write(shared_.output, [&](const std::string& path) { write_vtk(path, m); });
        write(options_.extract, [&](const std::string&) { extract(m, verdict); });
        return status;
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
        const auto tell = [&](const std::string& text) {
            if (!shared_.quiet) remark(*to.output, text);
        };
        if (left_out != 0)
            tell(counted(left_out, "element or node", "elements or nodes") + " without a place left out");
        if (bad.blocks.empty()) return tell("not written: no element and no node is at fault");
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
        return rules_from_json(text, base, options.profile.has_value());
    } catch (const std::exception&) {
        throw failure_of(named, std::current_exception());
    }
}

loaded load_to_check(const std::string& path, const check_options& options)
{
    if (!options.stl) return load(path, options.shared);
    try {
        return load_stl(path, options);
    } catch (const std::exception&) {
        throw failure_of(path, std::current_exception());
    }
}

mesh_report report_on(const loaded& input, const std::string& path, const examination& verdict, const rules& by,
                      bool all_ids)
{
    std::string name(input.as->name);
    std::string title(input.as->title);
    if (const auto& facets = input.content.facets; facets) {
        name = facets->ascii ? "ascii" : "binary";
        title = facets->ascii ? "text STL" : "binary STL";
    }
    return {path, name, title, input.content, verdict, by, all_ids};
}

std::string json_of_failure(const std::string& path, const failure& failed)
{
    const bool unread = failed.status == exit_unreadable;
    const std::string of = failed.file == path ? "" : failed.file + ": ";
    return json_without_report(path, unread ? "unreadable" : "failed", of + failed.reason);
}

exit_status check(const check_options& options)
{
    rules by;
    try {
        by = rules_in_force(options);
        require_format_of_extract(options);
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
