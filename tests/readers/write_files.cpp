// Writes a mesh of every kind of element with every writer into a folder, for readers of other origin, and beside each
// the mesh itself as plain numbers (NAME.mesh.txt): write_files FOLDER. The mesh does not pass through any writer.
#include <tessolv/tessolv.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

using namespace zeb::tessolv;

namespace {

struct kind {
    const char* name;
    int type;
    std::uint64_t rows;
    unsigned dimensions;  // of the element
};

constexpr kind kinds[] = {
    {"node", EL_NODE, 1, 0},         {"edge2", EL_EDGE2, 2, 1},       {"edge3", EL_EDGE3, 3, 1},
    {"face_mix", EL_FACE_MIX, 4, 2}, {"tria3", EL_TRIA3, 3, 2},       {"quad4", EL_QUAD4, 4, 2},
    {"tria6", EL_TRIA6, 6, 2},       {"quad8", EL_QUAD8, 8, 2},       {"quad9", EL_QUAD9, 9, 2},
    {"tetra4", EL_TETRA4, 4, 3},     {"tetra10", EL_TETRA10, 10, 3},  {"solid_mix", EL_SOLID_MIX, 8, 3},
    {"wedge6", EL_WEDGE6, 6, 3},     {"pyramid5", EL_PYRAMID5, 5, 3}, {"pyramid14", EL_PYRAMID14, 14, 3},
    {"wedge18", EL_WEDGE18, 18, 3},  {"hexa8", EL_HEXA8, 8, 3},       {"hexa20", EL_HEXA20, 20, 3},
    {"hexa27", EL_HEXA27, 27, 3}};

// Nodes that all differ and whose digits no format keeps in full; negative ones too.
dense2D<double> nodes(std::uint64_t rows, unsigned count)
{
    dense2D<double> pos(rows, count);
    for (unsigned j = 0; j < count; ++j)
        for (std::uint64_t i = 0; i < rows; ++i)
            pos(i, j) = std::sqrt(2.0 + j) * (i == 0 ? 1.0 : i == 1 ? -0.37 : 11.3) - static_cast<double>(j * i);
    return pos;
}

// Three elements, the later ones over other nodes in other orders.
dense2D<unsigned> elements(const kind& k)
{
    dense2D<unsigned> connect(k.rows, 3);
    const auto rows = static_cast<unsigned>(k.rows);
    for (unsigned i = 0; i < rows; ++i) {
        connect(i, 0) = i;
        connect(i, 1) = rows + 1 - i;
        connect(i, 2) = 2 + (i + 1) % rows;
    }
    if (k.type == EL_FACE_MIX) connect(3, 1) = NONE_INDEX;
    if (k.type == EL_SOLID_MIX) {
        for (unsigned i = 4; i < 8; ++i) connect(i, 0) = NONE_INDEX;
        for (unsigned i = 6; i < 8; ++i) connect(i, 1) = NONE_INDEX;
    }
    return connect;
}

// The mesh, or what a writer returned, in lines that are easy to read.
void describe(const std::string& name, const dense2D<double>& pos, const std::vector<dense2D<unsigned>>& parts,
              const std::vector<kind>& types)
{
    FILE* file = std::fopen((name + ".mesh.txt").c_str(), "w");
    std::fprintf(file, "nodes %d %d\n", static_cast<int>(pos.rows), static_cast<int>(pos.cols));
    for (std::uint64_t j = 0; j < pos.cols; ++j)
        for (std::uint64_t i = 0; i < pos.rows; ++i)
            std::fprintf(file, "%.17g%c", pos(i, j), i + 1 < pos.rows ? ' ' : '\n');
    for (std::size_t p = 0; p < parts.size(); ++p)
        for (std::uint64_t e = 0; e < parts[p].cols; ++e) {
            std::fprintf(file, "%s", types[p].name);
            for (std::uint64_t i = 0; i < parts[p].rows; ++i)
                if (parts[p](i, e) != NONE_INDEX) std::fprintf(file, " %u", parts[p](i, e));
            std::fprintf(file, "\n");
        }
    std::fclose(file);
}

void report(const std::string& file, int code)
{
    std::printf("%s %d\n", file.substr(file.rfind('/') + 1).c_str(), code);
}

void write_parts(const std::string& base, const dense2D<double>& pos, const std::vector<dense2D<unsigned>>& parts,
                 const std::vector<kind>& chosen)
{
    dense1D<int> types;
    for (const kind& k : chosen) types.push_back(k.type);
    const auto *first = parts.data(), *last = first + parts.size();
    describe(base, pos, parts, chosen);
    report(base + ".vtk", vtk_output((base + ".vtk").c_str(), pos, first, last, types));
    report(base + ".mesh", medit_output((base + ".mesh").c_str(), pos, first, last, types));
    report(base + ".geo", ensight_output((base + ".geo").c_str(), pos, first, last, types));
}

void write(const std::string& folder, const std::string& name, std::uint64_t rows, const std::vector<kind>& chosen)
{
    std::vector<dense2D<unsigned>> parts;
    for (const kind& k : chosen) parts.push_back(elements(k));
    write_parts(folder + "/" + name, nodes(rows, 32), parts, chosen);
}

// A tetrahedron, a wedge and a hexahedron of positive quality, to see which way round readers take them.
void write_sound_solids(const std::string& folder)
{
    dense2D<double> pos(3, 8);
    for (unsigned j = 0; j < 8; ++j) {
        pos(0, j) = j % 4 == 1 || j % 4 == 2;
        pos(1, j) = j % 4 >= 2;
        pos(2, j) = j / 4;
    }
    const unsigned corners[3][8] = {{0, 3, 1, 4}, {0, 1, 3, 4, 5, 7}, {0, 1, 2, 3, 4, 5, 6, 7}};
    const std::vector<kind> solids{kinds[9], kinds[12], kinds[16]};
    std::vector<dense2D<unsigned>> parts;
    dense1D<int> types;
    for (std::size_t k = 0; k < 3; ++k) {
        parts.emplace_back(solids[k].rows, 1);
        for (std::uint64_t i = 0; i < solids[k].rows; ++i) parts.back()(i, 0) = corners[k][i];
        types.push_back(solids[k].type);
    }
    dense1D<double> qualities;
    shape_qualities(pos, parts.data(), parts.data() + 3, types, qualities);
    for (const double quality : qualities) std::printf("sound-3d.quality %d\n", quality > 0 ? 0 : -1);
    write_parts(folder + "/sound-3d", pos, parts, solids);
}

void write_surfaces(const std::string& folder, const std::string& name, std::uint64_t rows,
                    const dense2D<unsigned>& triangles, const dense2D<unsigned>& quads)
{
    const dense2D<double> pos = nodes(rows, 32), normals = nodes(3, 32), uvs = nodes(2, 32), none;
    const std::string base = folder + "/" + name;
    describe(base, pos, {triangles, quads}, {kinds[4], kinds[5]});
    if (quads.empty()) {
        report(base + "-text.stl", STL_output((base + "-text.stl").c_str(), pos, triangles, true));
        report(base + "-binary.stl", STL_output((base + "-binary.stl").c_str(), pos, triangles, false));
    }
    const auto write_obj = [&](const char* suffix, const dense2D<double>& n, const dense2D<double>& t) {
        report(base + suffix, WavefrontOBJ_output((base + suffix).c_str(), pos, n, t, triangles, quads));
    };
    write_obj("-plain.obj", none, none);
    write_obj("-normals.obj", normals, none);
    write_obj("-texture.obj", none, uvs);
    write_obj("-all.obj", normals, uvs);
}

}  // namespace

int main(int count, char** arguments)
{
    if (count != 2) return 1;
    const std::string folder = arguments[1];
    for (const kind& k : kinds) {
        write(folder, std::string(k.name) + "-3d", 3, {k});
        if (k.dimensions < 3) write(folder, std::string(k.name) + "-2d", 2, {k});
    }
    write(folder, "several-3d", 3, {kinds[1], kinds[4], kinds[5], kinds[9], kinds[16], kinds[4]});
    // Two sections or parts of one shape; a matrix that MEDIT and EnSight leave out between others.
    write(folder, "orders-3d", 3, {kinds[1], kinds[2], kinds[4], kinds[6], kinds[9], kinds[10], kinds[16], kinds[17]});
    write(folder, "gaps-3d", 3, {kinds[9], kinds[11], kinds[12], kinds[4]});
    write(folder, "nothing-3d", 3, {});
    write_sound_solids(folder);
    for (const std::uint64_t rows : {2, 3}) {
        const std::string suffix = rows == 2 ? "-2d" : "-3d";
        write_surfaces(folder, "triangles" + suffix, rows, elements(kinds[4]), dense2D<unsigned>());
        write_surfaces(folder, "quads" + suffix, rows, dense2D<unsigned>(), elements(kinds[5]));
        write_surfaces(folder, "faces" + suffix, rows, elements(kinds[4]), elements(kinds[5]));
        dense2D<float> field(rows == 2 ? 3 : 6, 4);
        for (std::uint64_t j = 0; j < 4; ++j)
            for (std::uint64_t i = 0; i < field.rows; ++i) field(i, j) = static_cast<float>(i + 1);
        const std::string file = folder + "/tensors" + suffix + ".sol";
        report(file, medit_tensor(file.c_str(), field));
    }
}
