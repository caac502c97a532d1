#include "host/documents/GltfFile.h"
#include "host/geometry/Cross.h"
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <fmt/format.h>
#include <limits>
#include <nlohmann/json.hpp>

namespace fernwick {

namespace {

using SortedJson = nlohmann::json;

static_assert(std::endian::native == std::endian::little); // as the file is

// The format's numbers for what an accessor and a view hold.
constexpr int kFloats = 5126;
constexpr int kUnsignedInts = 5125;
constexpr int kVertices = 34962;
constexpr int kIndices = 34963;

constexpr size_t kAlignment = 4;

/// Builds the file from its parts.
class Writer {
public:
    /// @param hasNormalMap  tangents are wanted
    void Add(const GltfMesh& mesh, bool hasNormalMap)
    {
        const MeshDescription& description = *mesh.fMesh.fMesh;
        SortedJson attributes = {{"POSITION", AddPoints(mesh)}};
        if (!description.fNormals.empty())
            attributes["NORMAL"] = AddNormals(description);
        if (!description.fNormals.empty() && hasNormalMap)
            attributes["TANGENT"] = AddTangents(mesh.fMesh);
        attributes["TEXCOORD_0"] = AddUVs(description.UVSet(mesh.fMesh.fSet));
        fJson["nodes"].push_back(NodeOf(mesh, fJson["meshes"].size()));
        fJson["scenes"][0]["nodes"].push_back(fJson["nodes"].size() - 1);
        fJson["meshes"].push_back({{"name", mesh.fName},
            {"primitives",
                {{{"attributes", attributes}, {"indices", AddTriangles(description)}, {"material", 0}}}}});
    }

    void Add(const GltfMaps& maps)
    {
        SortedJson surface = {{"metallicFactor", 0}};
        SortedJson material = {{"name", "Baked"}};
        if (!maps.fColor.empty())
            surface["baseColorTexture"]["index"] = AddPicture("color", maps.fColor);
        if (!maps.fRoughness.empty())
            surface["metallicRoughnessTexture"]["index"] = AddPicture("roughness", maps.fRoughness);
        if (!maps.fNormal.empty())
            material["normalTexture"]["index"] = AddPicture("normal", maps.fNormal);
        if (!maps.fOcclusion.empty())
            material["occlusionTexture"]["index"] = AddPicture("occlusion", maps.fOcclusion);
        material["pbrMetallicRoughness"] = surface;
        fJson["materials"].push_back(material);
    }

    std::string Bytes()
    {
        Pad(fBuffer, '\0');
        fJson["buffers"] = {{{"byteLength", fBuffer.size()}}};
        std::string text = fJson.dump(-1, ' ', false, SortedJson::error_handler_t::replace);
        Pad(text, ' ');
        constexpr size_t kHeads = 12 + 8 + 8;
        const size_t length = kHeads + text.size() + fBuffer.size();
        if (length > std::numeric_limits<uint32_t>::max())
            throw GltfError("a .glb file holds 4 GiB at most");
        std::string file = "glTF";
        file.reserve(length);
        AppendNumber(file, 2);
        AppendNumber(file, length);
        AppendNumber(file, text.size());
        file += "JSON" + text;
        AppendNumber(file, fBuffer.size());
        file.append("BIN\0", 4);
        file += fBuffer;
        return file;
    }

private:
    SortedJson fJson = {{"asset", {{"version", "2.0"}, {"generator", "fernwick"}}}, {"scene", 0},
        {"scenes", {{{"nodes", SortedJson::array()}}}}, {"nodes", SortedJson::array()},
        {"meshes", SortedJson::array()}};
    std::string fBuffer;

    static void Pad(std::string& bytes, char with)
    {
        bytes.resize((bytes.size() + kAlignment - 1) / kAlignment * kAlignment, with);
    }
    static void AppendNumber(std::string& bytes, size_t number)
    {
        const auto narrow = static_cast<uint32_t>(number);
        bytes.append(reinterpret_cast<const char*>(&narrow), sizeof narrow);
    }

    /// @param target  0 for none
    size_t AddView(const void* bytes, size_t count, int target)
    {
        Pad(fBuffer, '\0');
        SortedJson view = {{"buffer", 0}, {"byteOffset", fBuffer.size()}, {"byteLength", count}};
        if (target != 0)
            view["target"] = target;
        fBuffer.append(static_cast<const char*>(bytes), count);
        fJson["bufferViews"].push_back(view);
        return fJson["bufferViews"].size() - 1;
    }

    template <class Number>
    size_t AddNumbers(
        const std::vector<Number>& numbers, int type, const char* kind, size_t perEntry, int target)
    {
        const size_t view = AddView(numbers.data(), numbers.size() * sizeof(Number), target);
        fJson["accessors"].push_back({{"bufferView", view}, {"componentType", type}, {"type", kind},
            {"count", numbers.size() / perEntry}});
        return fJson["accessors"].size() - 1;
    }

    size_t AddPoints(const GltfMesh& mesh)
    {
        std::vector<float> numbers;
        constexpr float kInfinity = std::numeric_limits<float>::infinity();
        std::vector<float> least(3, kInfinity);
        std::vector<float> most(3, -kInfinity);
        for (const TVector3& point : mesh.fMesh.fMesh->fPoints)
            for (uint32_t axis = 0; axis < 3; ++axis) {
                if (!std::isfinite(point[axis]))
                    throw GltfError(fmt::format("\"{}\" has a point that is no number", mesh.fName));
                numbers.push_back(point[axis]);
                least[axis] = std::min(least[axis], point[axis]);
                most[axis] = std::max(most[axis], point[axis]);
            }
        const size_t accessor = AddNumbers(numbers, kFloats, "VEC3", 3, kVertices);
        fJson["accessors"][accessor]["min"] = least;
        fJson["accessors"][accessor]["max"] = most;
        return accessor;
    }

    static TVector3 UnitNormal(TVector3 normal)
    {
        Normalize(normal);
        const double length = Length(normal);
        return length > 0 && std::isfinite(length) ? normal : TVector3(0, 0, 1);
    }

    size_t AddNormals(const MeshDescription& mesh)
    {
        std::vector<float> numbers;
        for (const TVector3& given : mesh.fNormals) {
            const TVector3 normal = UnitNormal(given);
            for (uint32_t axis = 0; axis < 3; ++axis)
                numbers.push_back(normal[axis]);
        }
        return AddNumbers(numbers, kFloats, "VEC3", 3, kVertices);
    }

    /// What U and V have in common at a vertex, of all its triangles.
    struct Axes {
        TVector3 alongU;
        TVector3 alongV;
    };

    /// Along U at right angles to the normal, and on which side of the two V runs.
    size_t AddTangents(const UVMesh& mesh)
    {
        const MeshDescription& description = *mesh.fMesh;
        std::vector<Axes> axes(description.fPoints.size());
        for (const std::array<unsigned, 3>& corners : description.fTriangles) {
            SurfacePoint point;
            point.fNormal = UnitNormal(description.fNormals[corners[0]]);
            FindDerivatives(description, description.UVSet(mesh.fSet), corners, point);
            Normalize(point.fDerivU);
            Normalize(point.fDerivV);
            if (!std::isfinite(Length(point.fDerivU) + Length(point.fDerivV)))
                continue;
            for (const unsigned corner : corners) {
                axes[corner].alongU += point.fDerivU;
                axes[corner].alongV += point.fDerivV;
            }
        }
        std::vector<float> numbers;
        for (size_t i = 0; i < axes.size(); ++i) {
            const TVector3 normal = UnitNormal(description.fNormals[i]);
            const TVector3 tangent = Across(normal, axes[i].alongU);
            for (uint32_t axis = 0; axis < 3; ++axis)
                numbers.push_back(tangent[axis]);
            numbers.push_back(Dot(Cross(normal, tangent), axes[i].alongV) < 0 ? -1.0f : 1.0f);
        }
        return AddNumbers(numbers, kFloats, "VEC4", 4, kVertices);
    }

    /// What of a vector is at right angles to a unit one, in unit length; where nothing is, any such vector.
    static TVector3 Across(const TVector3& normal, const TVector3& vector)
    {
        for (const TVector3& candidate : {vector, TVector3(1, 0, 0), TVector3(0, 1, 0)}) {
            TVector3 along = normal;
            along *= static_cast<float>(Dot(normal, candidate));
            TVector3 across = candidate - along;
            constexpr double kShortest = 1e-3;
            if (!(Length(across) > kShortest))
                continue;
            Normalize(across);
            return across;
        }
        return {1, 0, 0};
    }

    size_t AddUVs(const std::vector<TVector2>& uvs)
    {
        std::vector<float> numbers;
        for (const TVector2& uv : uvs) {
            numbers.push_back(std::isfinite(uv[0]) ? uv[0] : 0);
            numbers.push_back(std::isfinite(uv[1]) ? 1 - uv[1] : 0);
        }
        return AddNumbers(numbers, kFloats, "VEC2", 2, kVertices);
    }

    size_t AddTriangles(const MeshDescription& mesh)
    {
        std::vector<uint32_t> numbers;
        for (std::array<unsigned, 3> corners : mesh.fTriangles) {
            if (!IsCounterClockwise(mesh, corners))
                std::swap(corners[1], corners[2]);
            numbers.insert(numbers.end(), corners.begin(), corners.end());
        }
        return AddNumbers(numbers, kUnsignedInts, "SCALAR", 1, kIndices);
    }

    /// Seen from the side of the normals.
    static bool IsCounterClockwise(const MeshDescription& mesh, const std::array<unsigned, 3>& corners)
    {
        if (mesh.fNormals.empty())
            return true;
        const TVector3& start = mesh.fPoints[corners[0]];
        const TVector3 across = Cross(mesh.fPoints[corners[1]] - start, mesh.fPoints[corners[2]] - start);
        double along = 0;
        for (const unsigned corner : corners)
            if (const double share = Dot(mesh.fNormals[corner], across); std::isfinite(share))
                along += share;
        return !(along < 0);
    }

    static SortedJson NodeOf(const GltfMesh& mesh, size_t index)
    {
        SortedJson node = {{"name", mesh.fName}, {"mesh", index}};
        const TTransform3D& place = mesh.fPlace;
        std::vector<float> columns;
        for (int column = 0; column < 3; ++column) {
            for (int row = 0; row < 3; ++row)
                columns.push_back(place.fMatrix[row][column]);
            columns.push_back(0);
        }
        for (uint32_t axis = 0; axis < 3; ++axis)
            columns.push_back(place.fTranslation[axis]);
        columns.push_back(1);
        if (columns != std::vector<float>{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1})
            node["matrix"] = columns;
        return node;
    }

    /// @return the number of its texture
    size_t AddPicture(const char* name, const std::string& bytes)
    {
        const size_t view = AddView(bytes.data(), bytes.size(), 0);
        fJson["images"].push_back({{"name", name}, {"bufferView", view}, {"mimeType", "image/png"}});
        fJson["textures"].push_back({{"source", fJson["images"].size() - 1}});
        return fJson["textures"].size() - 1;
    }
};

} // namespace

std::string GltfFile(const std::vector<GltfMesh>& meshes, const GltfMaps& maps)
{
    Writer writer;
    for (const GltfMesh& mesh : meshes)
        writer.Add(mesh, !maps.fNormal.empty());
    writer.Add(maps);
    return writer.Bytes();
}

} // namespace fernwick
