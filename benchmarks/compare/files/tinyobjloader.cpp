#include <tiny_obj_loader.h>

#include "files/input.h"

namespace compare {
namespace {

void read(const files_input& m, lap& l)
{
    tinyobj::attrib_t nodes;
    std::vector<tinyobj::shape_t> shapes;
    std::vector<tinyobj::material_t> materials;
    std::string warning, error;
    l.timed([&] { tinyobj::LoadObj(&nodes, &shapes, &materials, &warning, &error, m.file.c_str()); });
    double count = 0.0;
    double sum = 0.0;
    for (const auto& s : shapes) count += double(s.mesh.num_face_vertices.size());
    for (const auto x : nodes.vertices) sum += x;
    l.answer({count, double(nodes.vertices.size() / 3), sum});
}

const bool entered = enter<files_input>({{"read OBJ", "tinyobjloader", "LoadObj", "single precision", read}});

}  // namespace
}  // namespace compare
