#ifndef TOOLS_FORMATS_FORMAT_H
#define TOOLS_FORMATS_FORMAT_H

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "formats/sink.h"
#include "formats/source.h"
#include "mesh/mesh.h"

namespace tool {

struct write_options {
    bool ascii = false;    // text where a format has both
    bool lossy = false;    // leave out, and tell, what the format cannot hold, instead of refusing
    bool library = false;  // the library's own writer instead of the complete one
    bool advises = true;   // messages may name --format, --lossy and --writer: the command has them
    // What was left out or changed, for people.
    std::vector<std::string>* notes = nullptr;

    void note(std::string text) const
    {
        if (notes != nullptr) notes->push_back(std::move(text));
    }
};

// What the program knows about one format.
struct format {
    std::string_view name;   // of --format
    std::string_view title;  // for people
    std::vector<std::string_view> suffixes;
    // Whether a file begins like this one; null for a format that is not read, or not told by its content.
    bool (*detect)(std::string_view head);
    // The same where the beginning does not tell.
    bool (*detect_whole)(const source& from);
    // Throws `unreadable`. What reads as a mesh but is wrong in itself comes out as it is.
    mesh (*read)(const source& from);
    // Throws `unwritable` for what the format cannot hold. The mesh is sound.
    void (*write)(const mesh& m, sink& to, const write_options& options);
};

// Every format, those whose content tells more first.
std::span<const format> all_formats();

// The format of that name; throws `wrong_usage` with the names that there are for the option.
const format& format_named(std::string_view name, const char* option = "--format");

// How an input is to be read: by name, which the option gave, else by content, else by suffix. Throws `unreadable`.
const format& input_format(const source& from, const std::optional<std::string>& name, const char* option = "--format");

// How an output is to be written: by name, else by suffix. Throws `wrong_usage`.
const format& output_format(const std::string& path, const std::optional<std::string>& name,
                            const write_options& options = {});

// Reads a mesh. Throws `unreadable`.
mesh read_mesh(const source& from, const std::optional<std::string>& name = {});

// Writes a mesh to a path, "-" for standard output. Throws `wrong_usage` and `unwritable`.
void write_mesh(const mesh& m, const std::string& path, const std::optional<std::string>& name = {},
                const write_options& options = {});

}  // namespace tool

#endif
