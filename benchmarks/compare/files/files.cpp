// Files of a million triangles or tetrahedra: written, read with the weld, and converted by whole programs. They go to
// the folder for temporary files and are in the page cache when they are read.
#include "files/input.h"
#include "process.h"

namespace compare {
namespace {

using input = files_input;

// -- the inputs

// A wavy sheet that was shaken, so that coordinates have all their digits and triangles differ.
input sheet(bool shuffled)
{
    input m{surface(triangles, 1e6, shuffled)};
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> shake(-0.002, 0.002);
    for (std::uint64_t j = 0; j < m.pos.cols; ++j) {
        const double x = m.pos(0, j);
        const double y = m.pos(1, j);
        m.pos(0, j) = 0.01 * x + shake(random);
        m.pos(1, j) = 0.01 * y + shake(random);
        m.pos(2, j) = std::sin(0.05 * x) * std::cos(0.03 * y);
    }
    return m;
}

input solid_mesh(bool shuffled)
{
    return {solid(tetrahedra, 1e6, shuffled)};
}

input stl_file(bool shuffled, bool ascii)
{
    input m = sheet(shuffled);
    m.file = m.to("in.stl");
    STL_output(m.file.c_str(), m.pos, m.connect, ascii);
    return m;
}
input stl_text_file(bool shuffled)
{
    return stl_file(shuffled, true);
}
input stl_binary_file(bool shuffled)
{
    return stl_file(shuffled, false);
}

input obj_file(bool shuffled)
{
    input m = sheet(shuffled);
    m.file = m.to("in.obj");
    std::FILE* const f = std::fopen(m.file.c_str(), "w");
    for (std::uint64_t j = 0; j < m.pos.cols; ++j)
        std::fprintf(f, "v %f %f %f\n", m.pos(0, j), m.pos(1, j), m.pos(2, j));
    for (std::uint64_t e = 0; e < m.connect.cols; ++e)
        std::fprintf(f, "f %u %u %u\n", m.connect(0, e) + 1, m.connect(1, e) + 1, m.connect(2, e) + 1);
    std::fclose(f);
    return m;
}

// -- what is to be done

template <bool Ascii>
void write_stl(const input& m, lap& l)
{
    write_and_look(m, l, ".stl", Ascii ? in_stl_text : in_stl_binary,
                   [&](const char* name) { STL_output(name, m.pos, m.connect, Ascii); });
}

void write_obj(const input& m, lap& l)
{
    write_and_look(m, l, ".obj", in_obj,
                   [&](const char* name) { WavefrontOBJ_output(name, m.pos, {}, {}, m.connect, {}); });
}

void write_vtk(const input& m, lap& l)
{
    write_and_look(m, l, ".vtk", in_vtk, [&](const char* name) { vtk_output(name, m.pos, m.connect, m.type); });
}

void write_medit(const input& m, lap& l)
{
    write_and_look(m, l, ".mesh", in_medit, [&](const char* name) { medit_output(name, m.pos, m.connect, m.type); });
}

double sum_of(const dense2D<double>& pos)
{
    double sum = 0.0;
    for (std::uint64_t j = 0; j < pos.cols; ++j)
        for (std::uint64_t i = 0; i < 3; ++i) sum += pos(i, j);
    return sum;
}

template <bool Ascii>
void read_stl(const input& m, lap& l)
{
    dense2D<double> pos;
    dense2D<unsigned int> connect;
    l.timed([&] { STL_input(m.file.c_str(), pos, connect, Ascii); });
    l.answer({double(connect.cols), double(pos.cols), sum_of(pos)});
}

void read_obj(const input& m, lap& l)
{
    dense2D<double> pos, normals, uvs;
    dense2D<unsigned int> trias, quads;
    l.timed([&] { WavefrontOBJ_input(m.file.c_str(), pos, normals, uvs, trias, quads); });
    l.answer({double(trias.cols), double(pos.cols), sum_of(pos)});
}

// -- whole programs

struct conversion {
    const char* operation;
    const char* suffix;
    contents look;
};

const std::vector<conversion> conversions{
    {"convert STL binary to text", ".stl", in_stl_text},
    {"convert STL binary to VTK text", ".vtk", in_vtk},
    {"convert STL binary to MEDIT", ".mesh", in_medit},
    {"convert STL binary to OBJ", ".obj", in_obj},
};

using command = std::function<std::vector<std::string>(const std::string& in, const std::string& out)>;

std::function<void(const input&, lap&)> converted(const conversion& c, command of)
{
    return [=](const input& m, lap& l) {
        const new_file out(m, c.suffix);
        const auto words = of(m.file, out.name);
        if (words.front().empty()) return l.decline();
        if (run_process(words, l) && l.asks()) l.answer(c.look(out.name));
    };
}

std::vector<std::string> by_us(const std::string& in, const std::string& out)
{
    const auto here = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    return {(here / "compare_convert").string(), in, out};
}

std::vector<std::string> by_gmsh(const std::string& in, const std::string& out)
{
    return {program("gmsh"), in, "-save", "-save_all", "-o", out};
}

const char* const with_meshio =
    "import sys, meshio; m = meshio.read(sys.argv[1]); o = sys.argv[2]; "
    "f = o.rsplit('.', 1)[1]; k = {'stl': {'binary': False}, 'vtk': {'binary': False}}; "
    "meshio.write(o, m, {'mesh': 'medit'}.get(f, f), **k.get(f, {}))";

std::vector<std::string> by_meshio(const std::string& in, const std::string& out)
{
    static const bool installed = std::system("/usr/bin/python3 -c 'import meshio' 2>/dev/null") == 0;
    return {installed ? "/usr/bin/python3" : "", "-c", with_meshio, in, out};
}

bool enter_conversions()
{
    for (const auto& c : conversions) {
        enter<input>({{c.operation, ours, "a program of STL_input and the writer", "", converted(c, by_us)}});
        if (c.look != in_obj)
            enter<input>({{c.operation, "gmsh", "gmsh -save", "the whole program; exact weld", converted(c, by_gmsh)}});
        enter<input>({{c.operation, "meshio", "python3, meshio.read and write", "the whole program; exact weld",
                       converted(c, by_meshio)}});
    }
    return true;
}

// -- what no machine avoids

double size_of(const input& m, void (*write)(const input&, const char*))
{
    const std::string name = m.to("size");
    write(m, name.c_str());
    return double(std::filesystem::file_size(name));
}

cost text_of_facets(const input& m, bool)
{
    const double bytes =
        size_of(m, [](const input& in, const char* name) { STL_output(name, in.pos, in.connect, true); });
    const double facets = double(m.connect.cols);
    return {.streamed = 2 * bytes, .printed = 3 * double(m.pos.cols) + 3 * facets, .stored = bytes};
}
cost binary_facets(const input& m, bool shuffled)
{
    const double facets = double(m.connect.cols);
    return {.streamed = 62 * facets,
            .scattered = shuffled ? 3 * facets : 0.0,
            .within = 24.0 * double(m.pos.cols),
            .stored = 50 * facets};
}
cost text_of_obj(const input& m, bool)
{
    const double bytes =
        size_of(m, [](const input& in, const char* n) { WavefrontOBJ_output(n, in.pos, {}, {}, in.connect, {}); });
    return {
        .streamed = bytes, .printed = 3 * double(m.pos.cols), .integers = 3 * double(m.connect.cols), .stored = bytes};
}
cost text_of_vtk(const input& m, bool)
{
    const double bytes = size_of(m, [](const input& in, const char* n) { vtk_output(n, in.pos, in.connect, in.type); });
    return {
        .streamed = bytes, .printed = 3 * double(m.pos.cols), .integers = 4 * double(m.connect.cols), .stored = bytes};
}
cost text_of_medit(const input& m, bool)
{
    const double bytes =
        size_of(m, [](const input& in, const char* n) { medit_output(n, in.pos, in.connect, in.type); });
    return {
        .streamed = bytes, .printed = 3 * double(m.pos.cols), .integers = 4 * double(m.connect.cols), .stored = bytes};
}
cost reading(const input& m, bool shuffled)
{
    const double bytes = double(std::filesystem::file_size(m.file));
    const double corners = 3 * double(m.connect.cols);
    const bool obj = m.file.find(".obj") != std::string::npos;
    const bool text = obj || bytes > 60 * double(m.connect.cols);
    return {.streamed = 36 * corners / 3,
            .fresh = 24 * double(m.pos.cols) + 4 * corners,
            .scattered = shuffled && !obj ? corners : 0.0,
            .within = 4 * corners,
            .scanned = obj    ? 3 * double(m.pos.cols) + corners
                       : text ? 3 * corners
                              : 0.0,
            .loaded = bytes};
}

const char* const facets_and_sum = "facets, sum of the coordinates";
const char* const nodes_and_sum = "nodes, sum of the coordinates";
const char* const mesh_and_sum = "triangles, nodes, sum of the coordinates";
const char* const obj_and_sum = "nodes, triangles, sum of the coordinates";

const std::vector<case_of<input>> cases{
    {"write STL text", "1 M facets", facets_and_sum, sheet, text_of_facets, true, 1e-5},
    {"write STL binary", "1 M facets", facets_and_sum, sheet, binary_facets, true, 1e-5},
    {"write OBJ", "1 M tria", obj_and_sum, sheet, text_of_obj, true, 1e-5},
    {"write VTK text", "1 M tetra", nodes_and_sum, solid_mesh, text_of_vtk, true, 1e-5},
    {"write MEDIT", "1 M tetra", nodes_and_sum, solid_mesh, text_of_medit, true, 1e-5},
    {"read STL text, weld", "1 M facets", mesh_and_sum, stl_text_file, reading, true, 1e-5},
    {"read STL binary, weld", "1 M facets", mesh_and_sum, stl_binary_file, reading, true, 1e-5},
    {"read OBJ", "1 M tria", mesh_and_sum, obj_file, reading, true, 1e-5},
    {conversions[0].operation, "1 M facets", facets_and_sum, stl_binary_file, {}, true, 1e-5},
    {conversions[1].operation, "1 M facets", nodes_and_sum, stl_binary_file, {}, true, 1e-5},
    {conversions[2].operation, "1 M facets", nodes_and_sum, stl_binary_file, {}, true, 1e-5},
    {conversions[3].operation, "1 M facets", obj_and_sum, stl_binary_file, {}, true, 1e-5},
};

const bool entered = enter<input>({
                         {"write STL text", ours, "STL_output", "", write_stl<true>},
                         {"write STL binary", ours, "STL_output", "", write_stl<false>},
                         {"write OBJ", ours, "WavefrontOBJ_output", "", write_obj},
                         {"write VTK text", ours, "vtk_output", "", write_vtk},
                         {"write MEDIT", ours, "medit_output", "", write_medit},
                         {"read STL text, weld", ours, "STL_input", "", read_stl<true>},
                         {"read STL binary, weld", ours, "STL_input", "", read_stl<false>},
                         {"read OBJ", ours, "WavefrontOBJ_input", "", read_obj},
                     }) &&
                     enter_conversions();

}  // namespace
}  // namespace compare

int main(int argc, char** argv)
{
    const compare::settings s(argc, argv);
    compare::report all("files", s);
    compare::measure_cases(all, "files", compare::cases);
    return all.agreed() ? 0 : 1;
}
