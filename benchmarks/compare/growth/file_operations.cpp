#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "growth/operations.h"

namespace compare {
namespace {

mesh tetra(double n, bool shuffled)
{
    return solid(tetrahedra, n, shuffled);
}
mesh tria(double n, bool shuffled)
{
    return surface(triangles, n, shuffled);
}

struct scratch_file {
    std::string name =
        (std::filesystem::temp_directory_path() / ("tessolv_growth_" + std::to_string(getpid()))).string();
    ~scratch_file() { std::filesystem::remove(name); }
    const char* c_str() const { return name.c_str(); }
};

template <class Write>
auto writing(Write write)
{
    return [write](const mesh& m, lap& l) {
        const scratch_file file;
        l.timed([&] { write(file.c_str(), m); });
    };
}

const auto write_vtk = writing([](const char* f, const mesh& m) { vtk_output(f, m.pos, m.connect, m.type); });
const auto write_medit = writing([](const char* f, const mesh& m) { medit_output(f, m.pos, m.connect, m.type); });
const auto write_ensight = writing([](const char* f, const mesh& m) { ensight_output(f, m.pos, m.connect, m.type); });
const auto write_stl_text = writing([](const char* f, const mesh& m) { STL_output(f, m.pos, m.connect, true); });
const auto write_stl_binary = writing([](const char* f, const mesh& m) { STL_output(f, m.pos, m.connect, false); });
const auto write_obj =
    writing([](const char* f, const mesh& m) { WavefrontOBJ_output(f, m.pos, {}, {}, m.connect, {}); });

template <bool Ascii>
void read_stl(const mesh& m, lap& l)
{
    const scratch_file file;
    STL_output(file.c_str(), m.pos, m.connect, Ascii);
    dense2D<double> pos;
    dense2D<unsigned int> connect;
    l.timed([&] { STL_input(file.c_str(), pos, connect, Ascii); });
}
void read_obj(const mesh& m, lap& l)
{
    const scratch_file file;
    std::FILE* const f = std::fopen(file.c_str(), "w");
    for (std::uint64_t j = 0; j < m.pos.cols; ++j)
        std::fprintf(f, "v %f %f %f\n", m.pos(0, j), m.pos(1, j), m.pos(2, j));
    for (std::uint64_t e = 0; e < m.connect.cols; ++e)
        std::fprintf(f, "f %u %u %u\n", m.connect(0, e) + 1, m.connect(1, e) + 1, m.connect(2, e) + 1);
    std::fclose(f);
    dense2D<double> pos, normals, uvs;
    dense2D<unsigned int> trias, quads;
    l.timed([&] { WavefrontOBJ_input(file.c_str(), pos, normals, uvs, trias, quads); });
}

}  // namespace

const std::vector<operation>& file_operations()
{
    static const std::vector<operation> all{
        with("write VTK", tetra, write_vtk),
        with("write MEDIT", tetra, write_medit),
        with("write EnSight", tetra, write_ensight),
        with("write STL text", tria, write_stl_text),
        with("write STL binary", tria, write_stl_binary),
        with("write OBJ", tria, write_obj),
        with("read STL text", tria, read_stl<true>),
        with("read STL binary", tria, read_stl<false>),
        with("read OBJ", tria, read_obj),
    };
    return all;
}

}  // namespace compare
