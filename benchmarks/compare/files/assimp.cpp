#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <assimp/Exporter.hpp>
#include <assimp/Importer.hpp>

#include "files/input.h"

namespace compare {
namespace {

void fill(aiScene& scene, const mesh& m)
{
    auto* const surface = new aiMesh;
    surface->mPrimitiveTypes = aiPrimitiveType_TRIANGLE;
    surface->mNumVertices = unsigned(m.pos.cols);
    surface->mVertices = new aiVector3D[m.pos.cols];
    for (std::uint64_t j = 0; j < m.pos.cols; ++j)
        surface->mVertices[j] = aiVector3D(float(m.pos(0, j)), float(m.pos(1, j)), float(m.pos(2, j)));
    surface->mNumFaces = unsigned(m.connect.cols);
    surface->mFaces = new aiFace[m.connect.cols];
    for (std::uint64_t e = 0; e < m.connect.cols; ++e) {
        surface->mFaces[e].mNumIndices = 3;
        surface->mFaces[e].mIndices = new unsigned int[3]{m.connect(0, e), m.connect(1, e), m.connect(2, e)};
    }
    scene.mNumMeshes = 1;
    scene.mMeshes = new aiMesh* [1] { surface };
    scene.mNumMaterials = 1;
    scene.mMaterials = new aiMaterial* [1] { new aiMaterial };
    scene.mRootNode = new aiNode;
    scene.mRootNode->mNumMeshes = 1;
    scene.mRootNode->mMeshes = new unsigned int[1]{0};
}

void write(const files_input& m, lap& l, const char* format, const char* suffix, contents look)
{
    aiScene scene;
    fill(scene, m);
    write_and_look(m, l, suffix, look, [&](const char* name) { Assimp::Exporter().Export(&scene, format, name); });
}

void stl_text(const files_input& m, lap& l)
{
    write(m, l, "stl", ".stl", in_stl_text);
}
void stl_binary(const files_input& m, lap& l)
{
    write(m, l, "stlb", ".stl", in_stl_binary);
}
void obj(const files_input& m, lap& l)
{
    write(m, l, "objnomtl", ".obj", in_obj);
}

void read(const files_input& m, lap& l)
{
    Assimp::Importer importer;
    const aiScene* scene = nullptr;
    l.timed([&] { scene = importer.ReadFile(m.file, aiProcess_JoinIdenticalVertices); });
    if (scene == nullptr) return;
    double faces = 0.0;
    double nodes = 0.0;
    for (unsigned int i = 0; i < scene->mNumMeshes; ++i) {
        faces += scene->mMeshes[i]->mNumFaces;
        nodes += scene->mMeshes[i]->mNumVertices;
    }
    l.answer({faces, nodes});
}

void read_stl(const files_input& m, lap& l)
{
    read(m, l);
    if (l.answers.size() == 2) l.answers.pop_back();  // normals of the facets keep corners apart
}

const bool entered = enter<files_input>({
    {"write STL text", "assimp", "Exporter, stl", "single precision", stl_text},
    {"write STL binary", "assimp", "Exporter, stlb", "single precision", stl_binary},
    {"write OBJ", "assimp", "Exporter, objnomtl", "single precision", obj},
    {"read STL text, weld", "assimp", "Importer with JoinIdenticalVertices", "joins corners of equal normals only",
     read_stl},
    {"read STL binary, weld", "assimp", "Importer with JoinIdenticalVertices", "joins corners of equal normals only",
     read_stl},
    {"read OBJ", "assimp", "Importer with JoinIdenticalVertices",
     "single precision; its faces come without common nodes", read},
});

}  // namespace
}  // namespace compare
