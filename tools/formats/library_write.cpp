#include "formats/library_write.h"

#include <algorithm>

#include "errors.h"
#include "formats/capability.h"
#include "formats/file_beside.h"
#include "mesh/kinds.h"

namespace tool {
namespace {

namespace library = zeb::tessolv;

void require_written(int result)
{
    constexpr int not_written = -1;
    constexpr int out_of_memory = -199;
    if (result == not_written) throw unwritable("cannot be written");
    if (result == out_of_memory) throw std::bad_alloc();
    if (result < 0) throw internal_error("the library's writer gave " + std::to_string(result));
}

// Kinds that a writer refuses, and kinds that it passes over.
bool is_refused(std::string_view format, zeb::element_type type)
{
    if (format == "stl") return type != zeb::EL_TRIA3;
    if (format == "obj") return type != zeb::EL_TRIA3 && type != zeb::EL_QUAD4;
    return format == "vtk" && (type == zeb::EL_NODE || type == zeb::EL_PYRAMID5 || type == zeb::EL_PYRAMID14);
}

bool is_passed_over(std::string_view format, zeb::element_type type)
{
    const bool wedge = type == zeb::EL_WEDGE6 || type == zeb::EL_WEDGE18;
    const bool other = type == zeb::EL_NODE || type == zeb::EL_PYRAMID5 || type == zeb::EL_PYRAMID14;
    return (format == "medit" && (wedge || other)) || (format == "ensight" && other);
}

// The blocks for the writer, sharing the memory of the mesh.
mesh accepted(const mesh& m, std::string_view format, const write_options& options)
{
    mesh taken;
    taken.pos.shallow_copy(m.pos);
    for (const element_block& block : m.blocks) {
        const std::string told = counted_elements(block.size(), block.type);
        const bool refused = is_refused(format, block.type);
        if (refused && !options.lossy)
            throw unwritable("the library's writer refuses " + told + "; --lossy leaves them out");
        if (refused || is_passed_over(format, block.type)) {
            options.note(told + " left out");
            continue;
        }
        element_block& copy = taken.blocks.emplace_back();
        copy.type = block.type;
        copy.connect.shallow_copy(block.connect);
        copy.groups = block.groups;
    }
    return taken;
}

const connectivity& block_of(const mesh& m, zeb::element_type type)
{
    static const connectivity none;
    const auto found = std::ranges::find(m.blocks, type, &element_block::type);
    return found != m.blocks.end() ? found->connect : none;
}

// The groups of one kind are references; with several kinds the library numbers these.
int write_medit(const char* name, const mesh& m, const write_options& options)
{
    const bool has_references =
        m.has_groups() && m.blocks.size() == 1 &&
        std::ranges::all_of(m.blocks[0].groups, [](std::int32_t g) { return g >= 0 && g < 1000000; });
    if (has_references) {
        zeb::dense1D<unsigned int> references;
        if (!references.resize(m.blocks[0].size())) throw std::bad_alloc();
        std::ranges::copy(m.blocks[0].groups, references.begin());
        return library::medit_output(name, m.pos, m.blocks[0].connect, m.blocks[0].type, references);
    }
    if (m.has_groups()) options.note("the references are those of the kinds, the groups are left out");
    const block_range range = range_of(m);
    return library::medit_output(name, m.pos, range.begin(), range.end(), range.types);
}

int write_one(const char* name, std::string_view format, const mesh& m, const write_options& options)
{
    const block_range range = range_of(m);
    if (format == "vtk") return library::vtk_output(name, m.pos, range.begin(), range.end(), range.types);
    if (format == "ensight") return library::ensight_output(name, m.pos, range.begin(), range.end(), range.types);
    if (format == "medit") return write_medit(name, m, options);
    if (format == "stl") return library::STL_output(name, m.pos, block_of(m, zeb::EL_TRIA3), options.ascii);
    const zeb::dense2D<double> none;
    return library::WavefrontOBJ_output(name, m.pos, none, none, block_of(m, zeb::EL_TRIA3),
                                        block_of(m, zeb::EL_QUAD4));
}

std::string with_suffix(const std::string& path, const std::string& suffix)
{
    const std::size_t folder = path.rfind('/');
    const std::size_t dot = path.rfind('.');
    const bool has_suffix = dot != path.npos && (folder == path.npos || dot > folder);
    return (has_suffix ? path.substr(0, dot) : path) + suffix;
}

std::string case_text(const std::string& geometry)
{
    const std::size_t folder = geometry.rfind('/');
    return "FORMAT\ntype: ensight\n\nGEOMETRY\nmodel: " + geometry.substr(folder == geometry.npos ? 0 : folder + 1) +
           '\n';
}

}  // namespace

void write_by_library(const mesh& m, std::string_view format, const std::string& path, const write_options& options)
{
    constexpr std::string_view known[] = {"vtk", "medit", "ensight", "stl", "obj"};
    if (std::ranges::find(known, format) == std::end(known))
        throw wrong_usage("the library writes vtk, medit, ensight, stl and obj, and no " + std::string(format));
    if (path == "-") throw wrong_usage("the library's writers need a file");
    const bool is_case = format == "ensight" && path.ends_with(".case");
    const std::string geometry = is_case ? with_suffix(path, ".geo") : path;
    const mesh taken = accepted(m, format, options);
    note_fields(m, "the library's output", options);
    file_beside file(geometry);
    require_written(write_one(file.name().c_str(), format, taken, options));
    if (format != "ensight") return file.commit();
    sink beside(with_suffix(geometry, ".case"));
    beside.text(case_text(geometry));
    beside.finish();
    file.commit();
    beside.commit();
}

}  // namespace tool
