#include "host/documents/JoinVertices.h"
#include "host/documents/SmoothNormals.h"
#include "tests/support/BakeText.h"
#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <fmt/format.h>
#include <fstream>
#include <random>

using namespace fernwick;

namespace {

constexpr float kCrease = 60; // degrees

const aiScene& Read(Assimp::Importer& importer, const std::filesystem::path& file, unsigned steps)
{
    importer.SetPropertyFloat(AI_CONFIG_PP_GSN_MAX_SMOOTHING_ANGLE, kCrease);
    const aiScene* const scene = importer.ReadFile(file.string(), aiProcess_Triangulate | steps);
    if (scene == nullptr)
        throw std::runtime_error(importer.GetErrorString());
    return *scene;
}

/// All numbers of a mesh, bit by bit.
std::string BytesOf(const aiMesh& mesh)
{
    std::string bytes;
    const auto append = [&bytes](const void* array, size_t size) {
        if (array != nullptr)
            bytes.append(static_cast<const char*>(array), size);
        bytes += '|';
    };
    append(mesh.mVertices, mesh.mNumVertices * sizeof(aiVector3D));
    append(mesh.mNormals, mesh.mNumVertices * sizeof(aiVector3D));
    append(mesh.mTextureCoords[0], mesh.mNumVertices * sizeof(aiVector3D));
    for (unsigned i = 0; i < mesh.mNumFaces; ++i)
        append(mesh.mFaces[i].mIndices, mesh.mFaces[i].mNumIndices * sizeof(unsigned));
    return bytes;
}

/// Files whose vertices lie on a bumpy sheet that is folded along lines, some of them a little off, so that they are
/// just as close as counts, or just not.
class MeshStepsTest : public testing::Test {
protected:
    static constexpr unsigned kEdge = 40;
    const FreshFolder fFolder;
    std::mt19937 fRandom{7};

    unsigned OneOf(unsigned count) { return static_cast<unsigned>(fRandom() % count); }
    std::string Place(unsigned u, unsigned v)
    {
        // A ten-thousandth of the diagonal is 6e-3.
        const double off = OneOf(3) == 0 ? (OneOf(1001) - 500.0) * 1e-5 : 0;
        const unsigned fold = u % 8 < 4 ? u % 8 : 8 - u % 8;
        return fmt::format("{:.6f} {:.6f} {}", u + off, v - off, 2 * fold + 0.25 * (v % 3));
    }

    /// Quads with corners of their own, and vertices of no face.
    std::string Obj(bool hasUVs, bool hasNormals)
    {
        std::string text
            = "o Sheet\nvt 0 0\nvt 1 0\nvt 1.000005 0\nvt 0 1\nvn 0 0 1\nvn 0 0.000004 1\nvn 0 1 0\n";
        for (unsigned u = 0; u < kEdge; ++u)
            for (unsigned v = 0; v < kEdge; ++v) {
                text += "v 7 7 7\n";
                for (const auto& [x, y] : {std::pair(u, v), {u + 1, v}, {u + 1, v + 1}, {u, v + 1}})
                    text += "v " + Place(x, y) + '\n';
                text += 'f';
                for (int corner = -4; corner < 0; ++corner)
                    text += fmt::format(" {}/{}/{}", corner, hasUVs ? std::to_string(1 + OneOf(4)) : "",
                        hasNormals ? std::to_string(1 + OneOf(3)) : "");
                text += '\n';
            }
        return text;
    }

    /// Triangles and quads that share corners, with colours, and vertices that are there twice.
    std::string Ply()
    {
        std::string vertices;
        std::string faces;
        constexpr unsigned kRow = kEdge + 1;
        for (unsigned u = 0; u <= kEdge; ++u)
            for (unsigned v = 0; v <= kEdge; ++v) {
                vertices += Place(u, v / 2 * 2) + fmt::format(" {} 20 30\n", OneOf(2));
                const unsigned corner = u * kRow + v;
                if (u < kEdge && v < kEdge)
                    faces += OneOf(2) == 0
                        ? fmt::format("3 {} {} {}\n", corner, corner + kRow, corner + kRow + 1)
                        : fmt::format(
                            "4 {} {} {} {}\n", corner, corner + kRow, corner + kRow + 1, corner + 1);
            }
        return fmt::format("ply\nformat ascii 1.0\nelement vertex {}\nproperty float x\nproperty float y\n"
                           "property float z\nproperty uchar red\nproperty uchar green\nproperty uchar blue\n"
                           "element face {}\nproperty list uchar int vertex_indices\nend_header\n{}{}",
            kRow * kRow, kEdge * kEdge, vertices, faces);
    }
};

TEST_F(MeshStepsTest, WhatAssimpMakesOfAMeshIsMadeToTheBit)
{
    const std::pair<const char*, std::string> files[] = {
        {"bare.obj", Obj(false, false)},
        {"uvs.obj", Obj(true, false)},
        {"normals.obj", Obj(true, true)},
        {"colors.ply", Ply()},
        {"flat.obj", "o Flat\nv 1 1 1\nv 1 1 1\nv 1 1 1\nf 1 2 3\n"},
    };
    for (const auto& [name, text] : files) {
        SCOPED_TRACE(name);
        std::ofstream(fFolder / name) << text;
        Assimp::Importer theirs, ours;
        const aiMesh& expected
            = *Read(theirs, fFolder / name, aiProcess_GenSmoothNormals | aiProcess_JoinIdenticalVertices)
                   .mMeshes[0];
        aiMesh& made = *Read(ours, fFolder / name, 0).mMeshes[0];
        const unsigned before = made.mNumVertices;
        AddSmoothNormals(made, kCrease);
        JoinVertices(made);
        EXPECT_EQ(made.mNumVertices, expected.mNumVertices) << "of " << before;
        EXPECT_TRUE(BytesOf(made) == BytesOf(expected));
        EXPECT_LT(made.mNumVertices, before + (std::string_view(name) == "flat.obj" ? 1 : 0));
    }
}

} // namespace
