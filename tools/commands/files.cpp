#include "commands/files.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <optional>

#include "commands/tables.h"
#include "errors.h"
#include "formats/medit_read.h"
#include "progress.h"
#include "terminal.h"

namespace tool {
namespace {

void add_solution(const std::string& path, mesh& m)
{
    try {
        read_medit_solution(source::open(path), m);
    } catch (const std::exception&) {
        throw failure_of(path, std::current_exception());
    }
}

// The reason, with the name of the file that it is about where that is another one.
std::string told(const failure& failed, const std::string& path)
{
    return failed.file == path ? failed.reason : failed.file + ": " + failed.reason;
}

// Whether two outputs would end up in one place.
bool outputs_collide(const shared_options& options)
{
    if (options.json && (options.output == "-" || options.table == "-")) return true;
    return options.output && options.output == options.table;
}

}  // namespace

void print(const std::string& text)
{
    progress::erase();
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void complain(const std::string& file, const std::string& reason)
{
    progress::erase();
    std::fflush(stdout);  // what was told before stands before, also where both streams lead to one file
    std::fprintf(stderr, "tessolv: %s: %s\n", printable(file).c_str(), printable(reason).c_str());
}

void remark(const std::string& file, const std::string& text)
{
    complain(file, "note: " + text);
}

failure failure_of(const std::string& file, const std::exception_ptr& error)
{
    try {
        std::rethrow_exception(error);
    } catch (const failure& known) {
        return known;
    } catch (const unreadable& reason) {
        return {exit_unreadable, file, reason.what()};
    } catch (const unwritable& reason) {
        return {exit_unwritable, file, reason.what()};
    } catch (const wrong_usage& reason) {
        return {exit_usage, file, reason.what()};
    } catch (const std::bad_alloc&) {
        return {exit_internal, file, "out of memory"};
    } catch (const std::exception& other) {
        return {exit_internal, file, std::string("internal error: ") + other.what()};
    }
}

loaded load(const std::string& path, const shared_options& options)
{
    try {
        progress::stage("reading", path);
        source from = source::open(path);
        const format& as =
            input_format(from, options.format_of_inputs(), options.writes_mesh ? "--input-format" : "--format");
        mesh content = read_mesh(from, std::string(as.name));
        if (options.solution) add_solution(*options.solution, content);
        progress::stage("working on", path);
        return {std::move(from), &as, std::move(content)};
    } catch (const std::exception&) {
        throw failure_of(path, std::current_exception());
    }
}

loaded load_sound(const std::string& path, const shared_options& options)
{
    loaded input = load(path, options);
    try {
        require_sound(input.content);
    } catch (const std::exception&) {
        throw failure_of(path, std::current_exception());
    }
    return input;
}

void require_no_input(const std::string& path, const shared_options& options)
{
    const auto is_output = [&](const std::string& file) {
        return file != "-" && path != "-" && source::open(file).is_same_file(path);
    };
    std::vector<std::string> inputs = options.files;
    if (options.solution) inputs.push_back(*options.solution);
    if (!options.force && std::ranges::any_of(inputs, is_output))
        throw failure(exit_usage, path, "is the input file, which is overwritten with --force only");
}

void save(const mesh& m, const shared_options& options)
{
    const std::string& path = options.output.value();
    std::vector<std::string> notes;
    try {
        require_no_input(path, options);
        progress::stage("writing", path);
        write_options how;
        how.ascii = options.ascii;
        how.lossy = options.lossy;
        how.library = options.writer == "library";
        how.advises = options.writes_mesh;
        how.notes = &notes;
        write_mesh(m, path, options.format, how);
    } catch (const std::exception&) {
        throw failure_of(path, std::current_exception());
    }
    for (const std::string& note : notes)
        if (!options.quiet) remark(path, note);
}

void save_with_table(const mesh& m, const shared_options& options, const std::function<void(sink&)>& write)
{
    std::optional<sink> table;
    const auto on_table = [&](auto work) {
        try {
            if (options.table) work();
        } catch (const std::exception&) {
            throw failure_of(*options.table, std::current_exception());
        }
    };
    on_table([&] {
        require_no_input(*options.table, options);
        progress::stage("writing", *options.table);
        table.emplace(*options.table);
        write(*table);
        table->finish();
    });
    if (options.output) save(m, options);
    on_table([&] { table->commit(); });
}

exit_status for_each_file(const shared_options& options, const std::function<exit_status(const std::string&)>& work,
                          const std::function<void(const failure&)>& on_failure)
{
    if (outputs_collide(options)) {
        const bool standard = options.output == "-" || options.table == "-";
        complain(standard ? "standard output" : *options.output, "has two outputs to take");
        return exit_usage;
    }
    exit_status worst = exit_clean;
    for (const std::string& path : options.files) {
        const progress shown(!options.json && !options.quiet, path);
        try {
            worst = std::max(worst, work(path));
        } catch (const std::exception&) {
            const failure failed = failure_of(path, std::current_exception());
            complain(failed.file, failed.reason);
            if (on_failure)
                on_failure(failed);
            else if (options.json)
                print_json({{"file", path}, {"error", told(failed, path)}, {"status", int{failed.status}}});
            const bool skipped = options.skip_unreadable && failed.status == exit_unreadable;
            worst = std::max(worst, skipped ? exit_clean : failed.status);
        }
        if (std::fflush(stdout) != 0)
            break;  // nobody would see the rest; flushing also keeps the order of both streams
    }
    return worst;
}

}  // namespace tool
