#include "formats/format.h"

#include <algorithm>
#include <array>

#include "errors.h"
#include "formats/cursor.h"
#include "formats/gmsh_read.h"
#include "formats/gmsh_write.h"
#include "formats/library_write.h"
#include "formats/medit_read.h"
#include "formats/medit_write.h"
#include "formats/obj_read.h"
#include "formats/obj_write.h"
#include "formats/stl_read.h"
#include "formats/stl_write.h"
#include "formats/vtk_read.h"
#include "formats/vtk_write.h"
#include "formats/vtu_read.h"
#include "formats/vtu_write.h"
#include "words.h"

namespace tool {
namespace {

const std::vector<format>& table()
{
    static const std::vector<format> formats{
        {"stl", "STL", {".stl", ".stla", ".stlb"}, nullptr, is_stl, read_stl, write_stl},
        {"obj", "Wavefront OBJ", {".obj"}, is_obj, nullptr, read_obj, write_obj},
        {"gmsh", "Gmsh", {".msh"}, is_gmsh, nullptr, read_gmsh, write_gmsh41},
        {"gmsh22", "Gmsh 2.2", {".msh2", ".msh22"}, nullptr, nullptr, read_gmsh, write_gmsh22},
        {"medit", "MEDIT", {".mesh"}, is_medit, nullptr, read_medit, write_medit},
        {"sol", "MEDIT solution", {".sol"}, is_medit_solution, nullptr, refuse_medit_solution, write_medit_solution},
        {"vtu", "VTK XML", {".vtu"}, is_vtu, nullptr, read_vtu, write_vtu},
        {"ensight", "EnSight", {".case", ".geo"}, nullptr, nullptr, nullptr, nullptr},
        {"vtk", "VTK legacy", {".vtk"}, is_vtk, nullptr, read_vtk, write_vtk},
    };
    return formats;
}

bool has_suffix(std::string_view path, std::string_view suffix)
{
    return path.size() > suffix.size() && equal_words(path.substr(path.size() - suffix.size()), suffix);
}

// Without the mark that some programs put before a text.
std::string_view without_mark(std::string_view head)
{
    if (head.starts_with("\xEF\xBB\xBF")) head.remove_prefix(3);
    if (head.starts_with("\xFE\xFF") || head.starts_with("\xFF\xFE"))
        throw unreadable("is a text in UTF-16, which is not supported");
    return head;
}

const format* format_by_suffix(std::string_view path)
{
    for (const format& f : table())
        for (const std::string_view suffix : f.suffixes)
            if (has_suffix(path, suffix)) return &f;
    return nullptr;
}

void refuse_packed(std::string_view head)
{
    constexpr std::pair<std::string_view, const char*> packers[] = {{"\x1F\x8B", "gzip"},
                                                                    {"BZh", "bzip2"},
                                                                    {"\xFD\x37zXZ", "xz"},
                                                                    {"\x28\xB5\x2F\xFD", "zstd"},
                                                                    {"PK\x03\x04", "zip"}};
    for (const auto& [begin, packer] : packers)
        if (head.starts_with(begin)) throw unreadable(std::string("is packed by ") + packer + ": unpack it first");
}

std::string known_names()
{
    std::vector<std::string> names;
    for (const format& f : table()) names.emplace_back(f.name);
    return joined(names);
}

std::string written_suffixes()
{
    std::vector<std::string> suffixes;
    for (const format& f : table())
        if (f.write != nullptr) suffixes.emplace_back(f.suffixes.front());
    return joined(suffixes);
}

}  // namespace

std::span<const format> all_formats()
{
    return table();
}

const format& format_named(std::string_view name, const char* option)
{
    for (const format& f : table())
        if (f.name == name) return f;
    throw wrong_usage(std::string(option) + ' ' + std::string(name) + ": the formats are " + known_names());
}

const format& input_format(const source& from, const std::optional<std::string>& name, const char* option)
{
    if (name) return format_named(*name, option);
    if (from.size() == 0) throw unreadable("is empty");
    const std::string bytes = from.head();
    const std::string_view head = without_mark(bytes);
    for (const format& f : table())
        if (f.detect != nullptr && f.detect(head)) return f;
    for (const format& f : table())
        if (f.detect_whole != nullptr && f.detect_whole(from)) return f;
    refuse_packed(head);
    const format* by_suffix = format_by_suffix(from.name());
    if (by_suffix != nullptr && by_suffix->read != nullptr) return *by_suffix;
    throw unreadable("is of no known format: neither its content nor its name tells one");
}

const format& output_format(const std::string& path, const std::optional<std::string>& name,
                            const write_options& options)
{
    if (name) return format_named(*name);
    if (const format* found = format_by_suffix(path)) return *found;
    if (!options.advises)
        throw wrong_usage((path == "-" ? "standard output has no suffix that tells the format, as "
                                       : "no format has this suffix: there are ") +
                          written_suffixes());
    throw wrong_usage(path == "-" ? "standard output needs --format: one of " + known_names()
                                  : "no format has this suffix; --format takes one of " + known_names());
}

mesh read_mesh(const source& from, const std::optional<std::string>& name)
{
    const format& f = input_format(from, name);
    if (f.read == nullptr) throw unreadable(std::string(f.title) + " files are only written");
    return f.read(from);
}

void write_mesh(const mesh& m, const std::string& path, const std::optional<std::string>& name,
                const write_options& options)
{
    const format& f = output_format(path, name, options);
    if (options.library) return write_by_library(m, f.name, path, options);
    if (f.write == nullptr)
        throw wrong_usage(std::string(f.title) + " files are written with --writer library only" +
                          (options.advises ? "" : ", which 'convert' has"));
    sink to(path);
    f.write(m, to, options);
    to.commit();
}

}  // namespace tool
