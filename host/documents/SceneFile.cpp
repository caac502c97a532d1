#include "host/documents/SceneFile.h"
#include "frame/Numbers.h"
#include "host/documents/GltfText.h"
#include "host/documents/JoinVertices.h"
#include "host/documents/RegularFiles.h"
#include "host/documents/SmoothNormals.h"
#include "host/documents/SoundMesh.h"
#include "host/files/RegularFile.h"
#include "host/json/Printable.h"
#include "host/scene/Placement.h"
#include <algorithm>
#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <cmath>
#include <fmt/format.h>
#include <memory>
#include <set>
#include <span>
#include <utility>

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

aiMatrix4x4 MatrixOf(const SceneFileOptions& options)
{
    aiMatrix4x4 matrix;
    for (unsigned i = 0; i < 3; ++i) {
        for (unsigned j = 0; j < 3; ++j)
            matrix[i][j] = options.fPlace.fMatrix[i][j];
        matrix[i][3] = options.fPlace.fTranslation[i];
    }
    const float scale = options.fScale;
    aiMatrix4x4 sized(scale, 0, 0, 0, 0, scale, 0, 0, 0, 0, scale, 0, 0, 0, 0, 1);
    if (options.fZUp)
        sized = aiMatrix4x4(scale, 0, 0, 0, 0, 0, scale, 0, 0, -scale, 0, 0, 0, 0, 0, 1);
    return matrix * sized;
}

constexpr int kDeepestNode = 256; // what reads a scene calls itself as deep

/// The members of one of Assimp's arrays that are there.
template <class Member> std::vector<const Member*> MembersOf(Member* const* members, unsigned count)
{
    std::vector<const Member*> found;
    for (unsigned i = 0; members != nullptr && i < count; ++i)
        if (members[i] != nullptr)
            found.push_back(members[i]);
    return found;
}

/// The first of a name; null when there is none.
template <class Member> const Member* Named(const std::vector<const Member*>& members, const aiString& name)
{
    const auto found = std::find_if(
        members.begin(), members.end(), [&name](const Member* member) { return member->mName == name; });
    return found != members.end() ? *found : nullptr;
}

template <class Visit> void ForEachNode(const aiScene& scene, const Visit& visit)
{
    std::vector<const aiNode*> waiting = {scene.mRootNode};
    while (!waiting.empty()) {
        const aiNode* const node = waiting.back();
        waiting.pop_back();
        if (node == nullptr)
            continue;
        visit(*node);
        for (const aiNode* const child : MembersOf(node->mChildren, node->mNumChildren))
            waiting.push_back(child);
    }
}

/// Keeps the members whose names are among those of nodes.
template <class Member>
void KeepPlaced(const std::set<std::string_view>& nodes, Member**& members, unsigned& count)
{
    unsigned kept = 0;
    for (unsigned i = 0; members != nullptr && i < count; ++i)
        if (members[i] != nullptr && nodes.contains(members[i]->mName.C_Str()))
            members[kept++] = members[i];
        else
            delete members[i];
    count = kept;
    if (kept == 0)
        delete[] std::exchange(members, nullptr);
}

/// Drops lights and cameras of no node, which some readers make: nothing would show them, and Assimp's check of the
/// data refuses a file for them.
void DropUnplaced(aiScene& scene)
{
    std::set<std::string_view> nodes;
    ForEachNode(scene, [&nodes](const aiNode& node) { nodes.insert(node.mName.C_Str()); });
    KeepPlaced(nodes, scene.mLights, scene.mNumLights);
    KeepPlaced(nodes, scene.mCameras, scene.mNumCameras);
}

/// Reads what Assimp made of a file. Not all that its readers make is whole: no node, index or count is trusted.
class SceneFileReader {
public:
    SceneFileReader(aiScene& scene, bool isGltf, const SceneFileOptions& options)
        : fMeshes(scene.mMeshes), fMeshCount(scene.mMeshes != nullptr ? scene.mNumMeshes : 0),
          fLights(MembersOf(scene.mLights, scene.mNumLights)),
          fCameras(MembersOf(scene.mCameras, scene.mNumCameras)), fIsGltf(isGltf), fOptions(options)
    {
        ForEachNode(scene, [this](const aiNode& node) {
            for (const aiMesh* const mesh : MeshesOf(node))
                ++fUses[mesh];
        });
        for (unsigned i = 0; scene.mMaterials != nullptr && i < scene.mNumMaterials; ++i)
            fFile.fMaterials.emplace_back(
                scene.mMaterials[i] != nullptr ? scene.mMaterials[i]->GetName().C_Str() : "");
    }

    /// Reads it once: what no later node needs is freed meanwhile.
    /// @param name  of the file, for what is told of it
    SceneFile Read(const aiNode& root, const std::string& name)
    {
        // A root that only holds the others together, under a name that the reader made up, is left out.
        const bool isHolder = root.mNumMeshes == 0 && root.mTransformation.IsIdentity();
        if (isHolder)
            for (const aiNode* const child : MembersOf(root.mChildren, root.mNumChildren))
                fFile.fElements.push_back(ReadNode(*child, MatrixOf(fOptions), {}));
        else
            fFile.fElements.push_back(ReadNode(root, MatrixOf(fOptions), {}));
        TellMissingUVs(name);
        TellDamages(name);
        return std::move(fFile);
    }

private:
    struct Damaged {
        std::string node;
        std::vector<std::string> damages;
    };

    aiMesh* const* fMeshes;
    unsigned fMeshCount;
    std::map<const aiMesh*, size_t> fUses; // by nodes that aren't read yet
    std::vector<const aiLight*> fLights;
    std::vector<const aiCamera*> fCameras;
    bool fIsGltf;
    const SceneFileOptions& fOptions;
    int fDepth = 0;
    std::vector<std::string> fWithoutUVs; // names of nodes
    std::vector<Damaged> fDamaged;
    SceneFile fFile;

    ElementDescription ReadNode(
        const aiNode& node, const aiMatrix4x4& parent, const TTransform3D& parentPlace)
    {
        if (++fDepth > kDeepestNode)
            throw SceneFileError(fmt::format("its nodes are nested more than {} deep", kDeepestNode));
        const aiMatrix4x4 toWorld = parent * node.mTransformation;
        const Split split = SplitTransform(toWorld);
        ElementDescription element;
        element.fName = node.mName.C_Str();
        element.fPlace = Composed(Inverse(parentPlace), split.place);
        element.fScale = split.scale;
        ReadShapes(node, split, element);
        element.fLight = ReadLight(node);
        element.fCamera = ReadCamera(node);
        for (const aiNode* const child : MembersOf(node.mChildren, node.mNumChildren))
            element.fChildren.push_back(ReadNode(*child, toWorld, split.place));
        --fDepth;
        return element;
    }

    std::vector<aiMesh*> MeshesOf(const aiNode& node) const
    {
        std::vector<aiMesh*> meshes;
        for (unsigned i = 0; node.mMeshes != nullptr && i < node.mNumMeshes; ++i) {
            aiMesh* const mesh = node.mMeshes[i] < fMeshCount ? fMeshes[node.mMeshes[i]] : nullptr;
            if (mesh != nullptr && mesh->HasPositions() && mesh->HasNormals() && mesh->HasFaces())
                meshes.push_back(mesh);
        }
        return meshes;
    }

    std::string MaterialOf(const aiMesh& mesh) const
    {
        return mesh.mMaterialIndex < fFile.fMaterials.size() ? fFile.fMaterials[mesh.mMaterialIndex] : "";
    }

    /// The shader of a mesh by its material; nothing when none is given.
    std::optional<std::string> ShaderOf(const aiMesh& mesh) const
    {
        const auto found = fOptions.fShaders.find(MaterialOf(mesh));
        return found != fOptions.fShaders.end() ? std::optional(found->second) : std::nullopt;
    }

    /// One shape of a node, or one for each shader of its materials.
    void ReadShapes(const aiNode& node, const Split& split, ElementDescription& element)
    {
        std::vector<std::pair<std::optional<std::string>, std::vector<aiMesh*>>> groups;
        for (aiMesh* const mesh : MeshesOf(node)) {
            const auto shader = ShaderOf(*mesh);
            auto group = std::find_if(
                groups.begin(), groups.end(), [&shader](const auto& one) { return one.first == shader; });
            if (group == groups.end())
                group = groups.insert(group, {shader, {}});
            group->second.push_back(mesh);
        }
        for (size_t i = 0; i < groups.size(); ++i) {
            const auto& [shader, meshes] = groups[i];
            ElementDescription part;
            part.fGeometry = ReadShape(node, meshes, split, part.fUVSets);
            part.fLook.fOwnShader = shader;
            for (const aiMesh* const mesh : meshes)
                if (const std::string material = MaterialOf(*mesh);
                    std::find(part.fMaterials.begin(), part.fMaterials.end(), material)
                    == part.fMaterials.end())
                    part.fMaterials.push_back(material);
            if (i == 0) {
                element.fGeometry = std::move(part.fGeometry);
                element.fUVSets = part.fUVSets;
                element.fLook = std::move(part.fLook);
                element.fMaterials = std::move(part.fMaterials);
            } else {
                part.fName = fmt::format("{}.{}", element.fName, part.fMaterials.front());
                part.fScale = element.fScale;
                element.fChildren.push_back(std::move(part));
            }
        }
    }

    /// Those that all meshes have, up to the first that one lacks.
    static unsigned CountUVSets(const std::vector<aiMesh*>& meshes)
    {
        const auto haveAll = [&meshes](unsigned set) {
            return std::all_of(meshes.begin(), meshes.end(),
                [set](const aiMesh* mesh) { return mesh->HasTextureCoords(set); });
        };
        unsigned count = 0;
        while (count < AI_MAX_NUMBER_OF_TEXTURECOORDS && haveAll(count))
            ++count;
        return count;
    }

    /// @param uvSets  gets how many all of the meshes have
    std::shared_ptr<const Geometry> ReadShape(
        const aiNode& node, const std::vector<aiMesh*>& meshes, const Split& split, size_t& uvSets)
    {
        uvSets = CountUVSets(meshes);
        std::vector<TVector2> uvs(uvSets); // of a vertex
        aiMatrix3x3 forNormals(split.rest);
        forNormals.Inverse().Transpose();
        SoundMesh all(uvSets);
        size_t vertices = 0;
        size_t triangles = 0;
        for (const aiMesh* const mesh : meshes) {
            vertices += mesh->mNumVertices;
            triangles += mesh->mNumFaces;
        }
        all.Reserve(vertices, triangles);
        size_t first = 0; // vertex of the mesh among all
        for (aiMesh* const mesh : meshes) {
            for (unsigned j = 0; j < mesh->mNumVertices; ++j) {
                TVector3 normal = VectorOf(forNormals * mesh->mNormals[j]);
                Normalize(normal);
                for (unsigned set = 0; set < uvSets; ++set)
                    uvs[set] = {mesh->mTextureCoords[set][j].x, mesh->mTextureCoords[set][j].y};
                all.AddVertex(VectorOf(split.rest * mesh->mVertices[j]), normal, uvs);
            }
            for (unsigned j = 0; j < mesh->mNumFaces; ++j)
                AddTriangle(mesh->mFaces[j], first, mesh->mNumVertices, all);
            first += mesh->mNumVertices;
            if (--fUses[mesh] == 0)
                FreeArrays(*mesh);
        }
        if (std::vector<std::string> damages = all.Damages(); !damages.empty())
            fDamaged.push_back({node.mName.C_Str(), std::move(damages)});
        if (all.IsEmpty())
            return nullptr;
        if (uvSets == 0)
            fWithoutUVs.emplace_back(node.mName.C_Str());
        return MakeMesh(all.Take());
    }

    /// Frees what a big model has most of, before its shape is built.
    static void FreeArrays(aiMesh& mesh)
    {
        for (aiVector3D** const array : {&mesh.mVertices, &mesh.mNormals, &mesh.mTangents, &mesh.mBitangents})
            delete[] std::exchange(*array, nullptr);
        for (aiVector3D*& array : mesh.mTextureCoords)
            delete[] std::exchange(array, nullptr);
        for (aiColor4D*& array : mesh.mColors)
            delete[] std::exchange(array, nullptr);
        delete[] std::exchange(mesh.mFaces, nullptr);
    }

    /// @param first  place of the mesh's first vertex among all
    /// @param count  of the mesh's vertices
    static void AddTriangle(const aiFace& face, size_t first, unsigned count, SoundMesh& all)
    {
        if (face.mNumIndices != 3 || face.mIndices == nullptr)
            return;
        const unsigned* const corners = face.mIndices;
        if (corners[0] >= count || corners[1] >= count || corners[2] >= count)
            throw SceneFileError("a triangle has a corner that the file doesn't hold");
        all.AddTriangle({first + corners[0], first + corners[1], first + corners[2]});
    }

    void TellDamages(const std::string& name)
    {
        constexpr size_t kMost = 5;
        const size_t told = std::min(fDamaged.size(), kMost);
        for (size_t i = 0; i < told; ++i)
            for (const std::string& damage : fDamaged[i].damages)
                fFile.fNotices.push_back(
                    Printable(fmt::format("{}: \"{}\": {}", name, fDamaged[i].node, damage)));
        if (told < fDamaged.size())
            fFile.fNotices.push_back(Printable(
                fmt::format("{}: {} more nodes are damaged in the same ways", name, fDamaged.size() - told)));
    }

    void TellMissingUVs(const std::string& name)
    {
        if (fWithoutUVs.empty())
            return;
        const size_t others = fWithoutUVs.size() - 1;
        const std::string& node = fWithoutUVs.front();
        fFile.fNotices.push_back(Printable(others == 0
                ? fmt::format(
                    "{}: \"{}\" has no UV; its place in its bounding box along X and Y stands in", name, node)
                : fmt::format(
                    "{}: \"{}\" and {} more have no UV; their places in their bounding boxes along X "
                    "and Y stand in",
                    name, node, others)));
    }

    std::optional<LightDescription> ReadLight(const aiNode& node) const
    {
        const aiLight* const found = Named(fLights, node.mName);
        if (found == nullptr)
            return std::nullopt;
        const aiLight& source = *found;
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
            light.fFarRange = range * fOptions.fScale;
        }
        return light;
    }

    std::optional<CameraDescription> ReadCamera(const aiNode& node) const
    {
        const aiCamera* const found = Named(fCameras, node.mName);
        if (found == nullptr)
            return std::nullopt;
        const aiCamera& source = *found;
        const double aspect = source.mAspect > 0 ? source.mAspect : 1;
        const double across = source.mHorizontalFOV;
        // Assimp's reader of glTF gives the upright angle times the aspect, not the angle across.
        const double upright = fIsGltf ? across / aspect : 2 * std::atan(std::tan(across / 2) / aspect);
        CameraDescription camera;
        if (std::isfinite(upright))
            camera.fFieldOfView = static_cast<float>(std::clamp(upright * kDegreesPerRadian, 1.0, 170.0));
        return camera;
    }
};

/// What an importer tells of a file that it didn't read; of one that no reader takes, which are taken.
std::string WhyNotRead(const Assimp::Importer& importer)
{
    const std::string reason = importer.GetErrorString();
    if (reason.find("mNumMeshes is 0") != std::string::npos)
        return "it holds no mesh";
    if (!reason.starts_with("No suitable reader"))
        return reason;
    std::string endings; // such as "*.3d;*.3ds"
    importer.GetExtensionList(endings);
    for (size_t star = endings.find("*."); star != std::string::npos; star = endings.find("*.", star))
        endings.replace(star, 2, star == 0 ? "." : " .");
    std::replace(endings.begin(), endings.end(), ';', ',');
    return "no reader takes it for its own; files are read that end in " + endings;
}

/// Whom `ShowSceneFiles` named last.
std::function<SceneFileProgress(const std::filesystem::path&)> gBeginFile;

/// About what a big file takes of the time, after one step and the others before it.
constexpr double kShareRead = 0.35;
constexpr double kShareSmooth = 0.65;
constexpr double kShareJoined = 0.75;

/// Gives all meshes normals, and joins their vertices.
void Finish(aiScene& scene, const SceneFileProgress& show)
{
    constexpr float kCrease = 60; // degrees
    const std::span meshes(scene.mMeshes, scene.mMeshes != nullptr ? scene.mNumMeshes : 0);
    const auto forEach = [&](double before, double after, const auto& work) {
        for (size_t i = 0; i < meshes.size(); ++i) {
            if (meshes[i] != nullptr)
                work(*meshes[i]);
            show(before + (after - before) * static_cast<double>(i + 1) / static_cast<double>(meshes.size()));
        }
    };
    forEach(kShareRead, kShareSmooth, [](aiMesh& mesh) { AddSmoothNormals(mesh, kCrease); });
    forEach(kShareSmooth, kShareJoined, [](aiMesh& mesh) { JoinVertices(mesh); });
}

SceneFile ReadWith(Assimp::Importer& importer, const std::filesystem::path& file,
    const SceneFileOptions& options, const SceneFileProgress& show)
{
    importer.SetPropertyInteger(AI_CONFIG_PP_SBP_REMOVE, aiPrimitiveType_POINT | aiPrimitiveType_LINE);
    // Both are the importer's own, which are no constants.
    auto* scene = const_cast<aiScene*>(importer.ReadFile(file.string(), 0));
    if (scene != nullptr) {
        DropUnplaced(*scene);
        scene = const_cast<aiScene*>(importer.ApplyPostProcessing(aiProcess_ValidateDataStructure
            | aiProcess_Triangulate | aiProcess_GenUVCoords | aiProcess_SortByPType));
    }
    if (scene == nullptr || scene->mRootNode == nullptr)
        throw SceneFileError(fmt::format("{} can't be read: {}", file.string(), WhyNotRead(importer)));
    Finish(*scene, show);
    try {
        SceneFile read = SceneFileReader(*scene, IsGltf(file), options)
                             .Read(*scene->mRootNode, file.filename().string());
        if (read.fElements.empty())
            throw SceneFileError("it holds no scene");
        return read;
    } catch (const SceneFileError& error) {
        throw SceneFileError(fmt::format("{} can't be read: {}", file.string(), error.what()));
    }
}

} // namespace

void ShowSceneFiles(std::function<SceneFileProgress(const std::filesystem::path& file)> begin)
{
    gBeginFile = std::move(begin);
}

SceneFile ReadSceneFile(const std::filesystem::path& file, const SceneFileOptions& options)
{
    if (const std::string reason = WhyNoFile(file); !reason.empty())
        throw SceneFileError(file.string() + " can't be read: " + reason);
    const SceneFileProgress show = gBeginFile ? gBeginFile(file) : [](double) {};
    Assimp::Importer importer;
    auto* const files = new RegularFiles(file.string(), [&show](double share) { show(kShareRead * share); });
    importer.SetIOHandler(files); // which it owns
    SceneFile scene = ReadWith(importer, file, options, show);
    scene.fFiles = files->Opened();
    return scene;
}

SceneFile ReadSceneFile(
    const std::filesystem::path& file, Assimp::Importer& importer, const SceneFileOptions& options)
{
    return ReadWith(importer, file, options, [](double) {});
}

} // namespace fernwick
