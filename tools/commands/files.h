#ifndef TOOLS_COMMANDS_FILES_H
#define TOOLS_COMMANDS_FILES_H

#include <functional>
#include <string>

#include "commands/options.h"
#include "exit_status.h"
#include "formats/format.h"
#include "mesh/mesh.h"

namespace tool {

// What ends the work on one file: the status, the file, and the reason in words.
struct failure : std::exception {
    failure(exit_status s, std::string f, std::string r) : status(s), file(std::move(f)), reason(std::move(r)) {}
    const char* what() const noexcept override { return reason.c_str(); }

    exit_status status;
    std::string file;
    std::string reason;
};

// "tessolv: FILE: REASON" on standard error.
void complain(const std::string& file, const std::string& reason);
// The same for what is no error.
void remark(const std::string& file, const std::string& text);

// An input with the mesh that it holds.
struct loaded {
    source from;
    const format* as;
    mesh content;
};

// Reads one input as the options say. `load` takes what is wrong in itself too, `load_sound` refuses it. Both throw
// `failure`.
loaded load(const std::string& path, const shared_options& options);
loaded load_sound(const std::string& path, const shared_options& options);

// Throws `failure` when a path leads to one of the inputs, unless --force is given.
void require_no_input(const std::string& path, const shared_options& options);

// Writes the mesh to options.output. An input is not overwritten without --force. Remarks go to standard error, unless
// --quiet. Throws `failure`.
void save(const mesh& m, const shared_options& options);

// Runs work(path) for every file; whatever happens to one, the next ones are still looked at. The highest status
// counts. With --json a failure has its line too, in the place of a result; on_failure, if any, writes it in its own way.
exit_status for_each_file(const shared_options& options, const std::function<exit_status(const std::string&)>& work,
                          const std::function<void(const failure&)>& on_failure = {});

// Writes the mesh, and by write(sink) the second output, as far as they are asked for: both or none. Throws `failure`.
void save_with_table(const mesh& m, const shared_options& options, const std::function<void(sink&)>& write);

// Puts any exception into the form of a failure of that file.
failure failure_of(const std::string& file, const std::exception_ptr& error);

// Standard output, flushed when the program ends.
void print(const std::string& text);

}  // namespace tool

#endif
