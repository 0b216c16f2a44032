#include "commands/files.h"

#include <algorithm>
#include <cstdio>
#include <new>

#include "errors.h"
#include "formats/medit_read.h"
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

}  // namespace

void print(const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void complain(const std::string& file, const std::string& reason)
{
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
        source from = source::open(path);
        const format& as = input_format(from, options.format_of_inputs());
        mesh content = read_mesh(from, std::string(as.name));
        if (options.solution) add_solution(*options.solution, content);
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
    if (!options.force && std::ranges::any_of(options.files, is_output))
        throw failure(exit_usage, path, "is the input file, which is overwritten with --force only");
}

void save(const mesh& m, const shared_options& options)
{
    const std::string& path = options.output.value();
    std::vector<std::string> notes;
    try {
        require_no_input(path, options);
        write_options how;
        how.ascii = options.ascii;
        how.lossy = options.lossy;
        how.library = options.writer == "library";
        how.notes = &notes;
        write_mesh(m, path, options.format, how);
    } catch (const std::exception&) {
        throw failure_of(path, std::current_exception());
    }
    for (const std::string& note : notes)
        if (!options.quiet) remark(path, note);
}

exit_status for_each_file(const shared_options& options, const std::function<exit_status(const std::string&)>& work,
                          const std::function<void(const failure&)>& on_failure)
{
    exit_status worst = exit_clean;
    for (const std::string& path : options.files) {
        try {
            worst = std::max(worst, work(path));
        } catch (const std::exception&) {
            const failure failed = failure_of(path, std::current_exception());
            complain(failed.file, failed.reason);
            if (on_failure) on_failure(failed);
            const bool skipped = options.skip_unreadable && failed.status == exit_unreadable;
            worst = std::max(worst, skipped ? exit_clean : failed.status);
        }
        if (std::fflush(stdout) != 0)
            break;  // nobody would see the rest; flushing also keeps the order of both streams
    }
    return worst;
}

}  // namespace tool
