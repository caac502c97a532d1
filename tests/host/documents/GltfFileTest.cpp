#include "host/documents/GltfFile.h"
#include "host/documents/SceneFile.h"
#include "host/scene/Placement.h"
#include "tests/support/BakeText.h"
#include "tests/support/Shell.h"
#include <cstring>
#include <nlohmann/json.hpp>

using namespace fernwick;
using nlohmann::json;

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

/// A square in two triangles, the second clockwise, with a normal and a UV that are no numbers.
MeshDescription Square()
{
    MeshDescription mesh;
    mesh.fPoints = {{0, 0, 0}, {2, 0, 0}, {2, 1, 0.1f}, {0, 1, 0}};
    mesh.fNormals = {{0, 0, 1}, {0, 0, 2}, {0, kNaN, 1}, {0, 0, 1}};
    mesh.fUVs = {{0, 0}, {0, 0}, {0, 0}, {0, 0}};
    mesh.fFurtherUVs = {{{0, 0.25f}, {1, 0.25f}, {1, 1}, {0, 1}}};
    mesh.fTriangles = {{0, 1, 2}, {0, 3, 2}};
    return mesh;
}

uint32_t NumberAt(const std::string& bytes, size_t place)
{
    uint32_t number;
    std::memcpy(&number, bytes.data() + place, sizeof number);
    return number;
}

/// The parts of a file, whose frame is checked as they are taken.
struct Parts {
    json text;
    std::string buffer;

    explicit Parts(const std::string& file)
    {
        EXPECT_EQ(file.substr(0, 4), "glTF");
        EXPECT_EQ(NumberAt(file, 4), 2u);
        EXPECT_EQ(NumberAt(file, 8), file.size());
        const size_t length = NumberAt(file, 12);
        EXPECT_EQ(length % 4, 0u);
        EXPECT_EQ(file.substr(16, 4), "JSON");
        text = json::parse(file.substr(20, length));
        buffer = file.substr(28 + length);
        EXPECT_EQ(NumberAt(file, 20 + length), buffer.size());
        EXPECT_EQ(buffer.size() % 4, 0u);
    }
};

class GltfFileTest : public testing::Test {
protected:
    const FreshFolder fFolder;

    std::string Png(const std::string& name) const
    {
        Picture(4, 4, PictureContent::kColor).Save(fFolder / name);
        return FileText(fFolder / name);
    }
};

TEST_F(GltfFileTest, ItIsReadBackAsItWas)
{
    const MeshDescription square = Square();
    TTransform3D place = RotatedBy({10, 20, 30});
    place.fTranslation = {1, 2, 3};
    const std::string png = Png("color.png");
    const std::string file
        = GltfFile({{"Sail\xff", place, {&square, 1}}, {"Flag", {}, {&square, 1}}}, {png, png, png, png});
    const Parts parts(file);
    EXPECT_EQ(parts.text["buffers"][0]["byteLength"], parts.buffer.size());
    for (const json& view : parts.text["bufferViews"]) {
        EXPECT_EQ(view["byteOffset"].get<size_t>() % 4, 0u);
        EXPECT_LE(view["byteOffset"].get<size_t>() + view["byteLength"].get<size_t>(), parts.buffer.size());
    }
    const json& tangents
        = parts.text["accessors"]
                    [parts.text["meshes"][0]["primitives"][0]["attributes"]["TANGENT"].get<size_t>()];
    EXPECT_EQ(tangents["type"], "VEC4");
    const size_t first = parts.text["bufferViews"][tangents["bufferView"].get<size_t>()]["byteOffset"];
    for (const size_t vertex : {0, 3}) { // of the triangles that have UV: along X, V to the left of it
        float tangent[4];
        std::memcpy(tangent, parts.buffer.data() + first + vertex * sizeof tangent, sizeof tangent);
        EXPECT_NEAR(tangent[0], 1, 1e-6);
        EXPECT_NEAR(tangent[1], 0, 1e-6);
        EXPECT_EQ(tangent[3], 1);
    }
    const json& points = parts.text["accessors"][0];
    EXPECT_EQ(points["min"], json({0, 0, 0}));
    EXPECT_EQ(points["max"].get<std::vector<float>>(), (std::vector<float>{2, 1, 0.1f}));
    const json& material = parts.text["materials"][0];
    const json& surface = material["pbrMetallicRoughness"];
    int next = 0;
    for (const json& texture : {surface["baseColorTexture"], surface["metallicRoughnessTexture"],
             material["normalTexture"], material["occlusionTexture"]}) {
        EXPECT_EQ(texture["index"], next++);
        const json& view
            = parts.text["bufferViews"][parts.text["images"][next - 1]["bufferView"].get<size_t>()];
        EXPECT_EQ(parts.buffer.substr(view["byteOffset"], view["byteLength"]), png);
    }

    Store(fFolder / "model.glb", file);
    const SceneFile read = ReadSceneFile(fFolder / "model.glb");
    ASSERT_EQ(read.fElements.size(), 2u);
    EXPECT_EQ(read.fElements[1].fName, "Flag");
    EXPECT_LT(Length(read.fElements[0].fPlace.fTranslation - place.fTranslation), 1e-6);
    EXPECT_LT(Length(Turned(read.fElements[0].fPlace, {1, 2, 3}) - Turned(place, {1, 2, 3})), 1e-5);
    const MeshDescription& mesh = *read.fElements[0].fGeometry->Mesh();
    ASSERT_EQ(mesh.fPoints.size(), 4u);
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_LT(Length(mesh.fPoints[i] - square.fPoints[i]), 1e-6);
        EXPECT_LT(Length(mesh.fNormals[i] - TVector3(0, 0, 1)), 1e-6);
        EXPECT_NEAR(mesh.fUVs[i][1], square.fFurtherUVs[0][i][1], 1e-7);
    }
    EXPECT_THAT(mesh.fTriangles, testing::ElementsAre(std::array{0u, 1u, 2u}, std::array{0u, 2u, 3u}));
}

TEST_F(GltfFileTest, WhatTheFormatCantHoldIsRefused)
{
    MeshDescription square = Square();
    square.fUVs[1][0] = kNaN;
    GltfFile({{"Sail", {}, {&square}}}, {}); // 0 stands in
    square.fPoints[1][2] = kNaN;
    try {
        GltfFile({{"Sail", {}, {&square}}}, {});
        FAIL();
    } catch (const GltfError& error) {
        EXPECT_STREQ(error.what(), "\"Sail\" has a point that is no number");
    }
}

} // namespace
