#include "host/documents/SceneFile.h"
#include "frame/Numbers.h"
#include "host/geometry/Mesh.h"
#include "host/scene/Placement.h"
#include <algorithm>
#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <cmath>
#include <fmt/format.h>

namespace fernwick {

namespace {

TVector3 VectorOf(const aiVector3D& vector) { return {vector.x, vector.y, vector.z}; }

/// A node's transform as a rigid place and what is left of it for the points of its shapes.
struct Split {
    TTransform3D place; ///< to world space
    TVector3 scale;
    aiMatrix4x4 rest; ///< from the node's coordinates to those of its element
};

Split SplitTransform(const aiMatrix4x4& toWorld)
{
    aiVector3D scale;
    aiQuaternion rotation;
    aiVector3D position;
    toWorld.Decompose(scale, rotation, position);
    const aiMatrix3x3 turn = rotation.GetMatrix();
    Split split;
    for (unsigned i = 0; i < 3; ++i)
        for (unsigned j = 0; j < 3; ++j)
            split.place.fMatrix[i][j] = turn[i][j];
    split.place.fTranslation = VectorOf(position);
    split.scale = VectorOf(scale);
    aiMatrix4x4 rigid(turn);
    rigid.a4 = position.x;
    rigid.b4 = position.y;
    rigid.c4 = position.z;
    split.rest = rigid.Inverse() * toWorld;
    return split;
}

class SceneFileReader {
public:
    SceneFileReader(const aiScene& scene, bool isGltf) : fScene(scene), fIsGltf(isGltf) { }

    SceneFile Read()
    {
        const aiNode& root = *fScene.mRootNode;
        // A root that only holds the others together, under a name that the reader made up, is left out.
        const bool isHolder = root.mNumMeshes == 0 && root.mTransformation.IsIdentity();
        if (isHolder)
            for (unsigned i = 0; i < root.mNumChildren; ++i)
                fFile.fElements.push_back(ReadNode(*root.mChildren[i], aiMatrix4x4(), {}));
        else
            fFile.fElements.push_back(ReadNode(root, aiMatrix4x4(), {}));
        return std::move(fFile);
    }

private:
    const aiScene& fScene;
    bool fIsGltf;
    SceneFile fFile;

    ElementDescription ReadNode(
        const aiNode& node, const aiMatrix4x4& parent, const TTransform3D& parentPlace)
    {
        const aiMatrix4x4 toWorld = parent * node.mTransformation;
        const Split split = SplitTransform(toWorld);
        ElementDescription element;
        element.fName = node.mName.C_Str();
        element.fPlace = Composed(Inverse(parentPlace), split.place);
        element.fScale = split.scale;
        if (node.mNumMeshes > 0)
            element.fGeometry = ReadShape(node, split);
        element.fLight = ReadLight(node);
        element.fCamera = ReadCamera(node);
        for (unsigned i = 0; i < node.mNumChildren; ++i)
            element.fChildren.push_back(ReadNode(*node.mChildren[i], toWorld, split.place));
        return element;
    }

    std::shared_ptr<const Geometry> ReadShape(const aiNode& node, const Split& split)
    {
        MeshDescription all;
        bool hasUVs = true;
        for (unsigned i = 0; i < node.mNumMeshes; ++i)
            hasUVs = hasUVs && fScene.mMeshes[node.mMeshes[i]]->HasTextureCoords(0);
        aiMatrix3x3 forNormals(split.rest);
        forNormals.Inverse().Transpose();
        for (unsigned i = 0; i < node.mNumMeshes; ++i) {
            const aiMesh& mesh = *fScene.mMeshes[node.mMeshes[i]];
            const auto first = static_cast<unsigned>(all.fPoints.size());
            for (unsigned j = 0; j < mesh.mNumVertices; ++j) {
                all.fPoints.push_back(VectorOf(split.rest * mesh.mVertices[j]));
                TVector3 normal = VectorOf(forNormals * mesh.mNormals[j]);
                Normalize(normal);
                all.fNormals.push_back(normal);
                if (hasUVs)
                    all.fUVs.emplace_back(mesh.mTextureCoords[0][j].x, mesh.mTextureCoords[0][j].y);
            }
            for (unsigned j = 0; j < mesh.mNumFaces; ++j) {
                const aiFace& face = mesh.mFaces[j];
                if (face.mNumIndices != 3)
                    continue;
                const unsigned* const corners = face.mIndices;
                all.fTriangles.push_back({first + corners[0], first + corners[1], first + corners[2]});
            }
        }
        if (all.fTriangles.empty())
            return nullptr;
        if (!hasUVs)
            fFile.fNotices.push_back(fmt::format(
                "{} has no UV; its place in its bounding box along X and Y stands in", node.mName.C_Str()));
        return MakeMesh(std::move(all));
    }

    std::optional<LightDescription> ReadLight(const aiNode& node) const
    {
        const auto end = fScene.mLights + fScene.mNumLights;
        const auto found = std::find_if(
            fScene.mLights, end, [&node](const aiLight* light) { return light->mName == node.mName; });
        if (found == end)
            return std::nullopt;
        const aiLight& source = **found;
        LightDescription light;
        if (source.mType == aiLightSource_DIRECTIONAL)
            light.fKind = LightKind::kDistant;
        else if (source.mType == aiLightSource_SPOT)
            light.fKind = LightKind::kSpot;
        else if (source.mType != aiLightSource_POINT)
            return std::nullopt;
        const aiColor3D& color = source.mColorDiffuse;
        const float strongest = std::max({color.r, color.g, color.b});
        light.fBrightness = strongest > 0 ? strongest : 1;
        light.fColor
            = {color.r / light.fBrightness, color.g / light.fBrightness, color.b / light.fBrightness};
        if (light.fKind == LightKind::kSpot) {
            light.fInnerAngle = static_cast<float>(source.mAngleInnerCone * kDegreesPerRadian);
            light.fOuterAngle = static_cast<float>(source.mAngleOuterCone * kDegreesPerRadian);
        }
        float range = 0;
        if (node.mMetaData != nullptr && node.mMetaData->Get("PBR_LightRange", range) && range > 0) {
            light.fNearRange = 0;
            light.fFarRange = range;
        }
        return light;
    }

    std::optional<CameraDescription> ReadCamera(const aiNode& node) const
    {
        const auto end = fScene.mCameras + fScene.mNumCameras;
        const auto found = std::find_if(
            fScene.mCameras, end, [&node](const aiCamera* camera) { return camera->mName == node.mName; });
        if (found == end)
            return std::nullopt;
        const aiCamera& source = **found;
        const double aspect = source.mAspect > 0 ? source.mAspect : 1;
        const double across = source.mHorizontalFOV;
        // Assimp's reader of glTF gives the upright angle times the aspect, not the angle across.
        const double upright = fIsGltf ? across / aspect : 2 * std::atan(std::tan(across / 2) / aspect);
        CameraDescription camera;
        camera.fFieldOfView = static_cast<float>(std::clamp(upright * kDegreesPerRadian, 1.0, 170.0));
        return camera;
    }
};

} // namespace

SceneFile ReadSceneFile(const std::filesystem::path& file)
{
    if (!std::filesystem::exists(file))
        throw SceneFileError(file.string() + " can't be read: there is no such file");
    Assimp::Importer importer;
    return ReadSceneFile(file, importer);
}

SceneFile ReadSceneFile(const std::filesystem::path& file, Assimp::Importer& importer)
{
    constexpr float kCreaseAngle = 60; // degrees
    importer.SetPropertyFloat(AI_CONFIG_PP_GSN_MAX_SMOOTHING_ANGLE, kCreaseAngle);
    importer.SetPropertyInteger(AI_CONFIG_PP_SBP_REMOVE, aiPrimitiveType_POINT | aiPrimitiveType_LINE);
    const aiScene* const scene = importer.ReadFile(file.string(),
        aiProcess_Triangulate | aiProcess_GenSmoothNormals | aiProcess_GenUVCoords | aiProcess_SortByPType
            | aiProcess_JoinIdenticalVertices);
    if (scene == nullptr || scene->mRootNode == nullptr)
        throw SceneFileError(fmt::format("{} can't be read: {}", file.string(), importer.GetErrorString()));
    std::string ending = file.extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(),
        [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    SceneFile read = SceneFileReader(*scene, ending == ".gltf" || ending == ".glb").Read();
    if (read.fElements.empty())
        throw SceneFileError(file.string() + " holds no scene");
    return read;
}

} // namespace fernwick
