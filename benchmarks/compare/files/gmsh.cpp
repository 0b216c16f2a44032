#include "files/input.h"

// The library of gmsh; its headers are a package of their own.
extern "C" {
void gmshInitialize(int argc, char** argv, int read_configuration, int* error);
void gmshClear(int* error);
void gmshOptionSetNumber(const char* name, double value, int* error);
int gmshModelAddDiscreteEntity(int dimension, int tag, int* boundary, std::size_t boundary_count, int* error);
void gmshModelMeshAddNodes(int dimension, int tag, std::size_t* nodes, std::size_t node_count, double* coordinates,
                           std::size_t coordinate_count, double* parameters, std::size_t parameter_count, int* error);
void gmshModelMeshAddElementsByType(int tag, int type, std::size_t* elements, std::size_t element_count,
                                    std::size_t* nodes, std::size_t node_count, int* error);
void gmshWrite(const char* name, int* error);
}

namespace compare {
namespace {

void fill(const mesh& m)
{
    static int error = 0;
    static const bool started = (gmshInitialize(0, nullptr, 0, &error), error == 0);
    if (!started) std::abort();
    gmshOptionSetNumber("General.Verbosity", 0, &error);
    gmshOptionSetNumber("Mesh.SaveAll", 1, &error);
    gmshClear(&error);
    const bool flat = m.type == EL_TRIA3;
    const int entity = gmshModelAddDiscreteEntity(flat ? 2 : 3, 1, nullptr, 0, &error);
    std::vector<std::size_t> nodes(m.pos.cols), elements(m.connect.cols), corners(m.connect.rows * m.connect.cols);
    std::iota(nodes.begin(), nodes.end(), std::size_t{1});
    std::iota(elements.begin(), elements.end(), std::size_t{1});
    std::transform(entries(m.connect), entries(m.connect) + corners.size(), corners.begin(),
                   [](unsigned int n) { return std::size_t{n} + 1; });
    std::vector<double> coordinates(&m.pos(0, 0), &m.pos(0, 0) + 3 * m.pos.cols);
    gmshModelMeshAddNodes(flat ? 2 : 3, entity, nodes.data(), nodes.size(), coordinates.data(), coordinates.size(),
                          nullptr, 0, &error);
    gmshModelMeshAddElementsByType(entity, flat ? 2 : 4, elements.data(), elements.size(), corners.data(),
                                   corners.size(), &error);
}

void write(const files_input& m, lap& l, const char* suffix, contents look)
{
    fill(m);
    write_and_look(m, l, suffix, look, [](const char* name) {
        int error = 0;
        gmshWrite(name, &error);
    });
}

void stl_text(const files_input& m, lap& l)
{
    write(m, l, ".stl", in_stl_text);
}
void vtk(const files_input& m, lap& l)
{
    write(m, l, ".vtk", in_vtk);
}
void medit(const files_input& m, lap& l)
{
    write(m, l, ".mesh", in_medit);
}

const bool entered = enter<files_input>({
    {"write STL text", "gmsh", "gmshWrite of a discrete surface", "16 digits", stl_text},
    {"write VTK text", "gmsh", "gmshWrite of a discrete volume", "16 digits", vtk},
    {"write MEDIT", "gmsh", "gmshWrite of a discrete volume", "16 digits", medit},
});

}  // namespace
}  // namespace compare
