#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <assimp/Importer.hpp>

#include <gtest/gtest.h>

#include "formats/format.h"
#include "tools/formats/every_kind.h"
#include "tools/stl_files.h"

// What is written is read by assimp, where its headers are installed.

namespace {

using namespace tool;

// Number of faces, and of corners of all of them, in all meshes of a file.
std::pair<unsigned int, unsigned int> faces_and_corners(const std::string& path)
{
    Assimp::Importer importer;
    const aiScene* scene = importer.ReadFile(path, 0);
    std::pair<unsigned int, unsigned int> found{0, 0};
    for (unsigned int k = 0; scene != nullptr && k < scene->mNumMeshes; ++k) {
        const aiMesh& part = *scene->mMeshes[k];
        found.first += part.mNumFaces;
        for (unsigned int f = 0; f < part.mNumFaces; ++f) found.second += part.mFaces[f].mNumIndices;
    }
    return found;
}

TEST(AssimpAndOurs, AgreeOnSurfaces)
{
    const test::temporary_folder folder;
    write_options text;
    text.ascii = true;
    const mesh triangles = test::two_elements(zeb::EL_TRIA3);
    write_mesh(triangles, folder.path("bytes.stl"));
    write_mesh(triangles, folder.path("text.stl"), {}, text);
    write_mesh(test::mesh_of({zeb::EL_TRIA3, zeb::EL_QUAD4}), folder.path("ours.obj"));
    EXPECT_EQ(faces_and_corners(folder.path("bytes.stl")), std::pair(2u, 6u));
    EXPECT_EQ(faces_and_corners(folder.path("text.stl")), std::pair(2u, 6u));
    EXPECT_EQ(faces_and_corners(folder.path("ours.obj")), std::pair(4u, 14u));
}

}  // namespace
