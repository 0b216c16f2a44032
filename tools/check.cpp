#include "check.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

#include "errors.h"
#include "json_report.h"
#include "surface_report.h"
#include "terminal.h"
#include "text_report.h"

namespace tool {
namespace {

void complain(const std::string& file, const std::string& reason)
{
    std::fprintf(stderr, "tessolv: %s: %s\n", printable(file).c_str(), reason.c_str());
}

void print(const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), stdout);
}

exit_status write_vtk(const std::string& path, const surface& surface)
{
    const int result = zeb::tessolv::vtk_output(path.c_str(), surface.pos, surface.connect, zeb::EL_TRIA3);
    constexpr int cannot_write = -1;
    if (result == cannot_write) {
        complain(path, "cannot be written");
        return exit_unwritable;
    }
    checked(result, "vtk_output");
    return exit_clean;
}

class checker {
public:
    explicit checker(const check_options& options) : options_(options), terminal_(standard_output_terminal()) {}

    // Whatever happens to one file, the next ones are still looked at.
    exit_status run(const std::string& path)
    {
        try {
            return check_file(path);
        } catch (const unreadable& reason) {
            return fail(path, exit_unreadable, "unreadable", reason.what());
        } catch (const std::bad_alloc&) {
            return fail(path, exit_internal, "failed", "out of memory");
        } catch (const std::exception& error) {
            return fail(path, exit_internal, "failed", std::string("internal error: ") + error.what());
        }
    }

private:
    exit_status check_file(const std::string& path)
    {
        const input_file file(path);
        if (options_.output && file.is_same_file(*options_.output)) {
            complain(*options_.output, "is the input file, which is never overwritten");
            return exit_usage;
        }
        surface surface;
        const surface_report report = inspect(path, file, options_.format, surface);
        const exit_status written = options_.output ? write_vtk(*options_.output, surface) : exit_clean;
        show(report);
        return std::max(written, report.is_clean() ? exit_clean : exit_problems);
    }

    void show(const surface_report& report)
    {
        if (options_.json) {
            print(json_line(report));
        } else if (options_.quiet) {
            print(verdict_line(report, terminal_));
        } else {
            if (std::exchange(separate_, true)) print("\n");
            print(text_report(report, terminal_));
        }
    }

    exit_status fail(const std::string& path, exit_status status, const char* verdict, const std::string& reason)
    {
        complain(path, reason);
        if (options_.json) print(json_line_without_report(path, verdict, reason));
        return status;
    }

    const check_options& options_;
    terminal terminal_;
    bool separate_ = false;
};

}  // namespace

exit_status check(const check_options& options)
{
    checker checker(options);
    exit_status worst = exit_clean;
    for (const std::string& path : options.files) {
        worst = std::max(worst, checker.run(path));
        if (std::fflush(stdout) != 0)
            break;  // nobody would see the rest; flushing also keeps the order of both streams
    }
    return worst;
}

}  // namespace tool
