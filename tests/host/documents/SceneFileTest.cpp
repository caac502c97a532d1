#include "host/documents/SceneFile.h"
#include "host/geometry/Mesh.h"
#include "host/scene/Placement.h"
#include "tests/support/BakeText.h"
#include <fstream>
#include <sys/stat.h>

using namespace fernwick;

namespace {

class SceneFileTest : public testing::Test {
protected:
    const FreshFolder fPlace;

    std::filesystem::path Store(const std::string& name, const std::string& text) const
    {
        std::ofstream(fPlace / name) << text;
        return fPlace / name;
    }
    static std::string ErrorOf(const std::filesystem::path& file)
    {
        try {
            ReadSceneFile(file);
        } catch (const SceneFileError& error) {
            return error.what();
        }
        return "read";
    }
};

/// A node that is scaled and turned, below it a light and two cameras.
constexpr const char* kTree = R"({"asset": {"version": "2.0"}, "extensionsUsed": ["KHR_lights_punctual"],
    "extensions": {"KHR_lights_punctual": {"lights": [
        {"type": "spot", "color": [1, 0.5, 0.25], "intensity": 4, "range": 7,
         "spot": {"innerConeAngle": 0.5235988, "outerConeAngle": 1.0471976}},
        {"type": "directional", "intensity": 2}, {"type": "point"}]}},
    "cameras": [{"type": "perspective", "perspective": {"yfov": 0.7, "znear": 0.1, "aspectRatio": 1.5}},
                {"type": "perspective", "perspective": {"yfov": 0.7, "znear": 0.1}}],
    "scene": 0, "scenes": [{"nodes": [0, 4, 5]}],
    "nodes": [{"name": "Group", "translation": [1, 2, 3], "scale": [2, 2, 2], "rotation": [0, 0.70710678, 0, 0.70710678],
               "children": [1, 2, 3]},
              {"name": "Spot", "translation": [0, 0, -1], "extensions": {"KHR_lights_punctual": {"light": 0}}},
              {"name": "Wide", "camera": 0}, {"name": "Free", "camera": 1},
              {"name": "Sun", "extensions": {"KHR_lights_punctual": {"light": 1}}},
              {"name": "Bulb", "extensions": {"KHR_lights_punctual": {"light": 2}}}]})";

TEST_F(SceneFileTest, NodesBecomeTheTreeWithLightsAndCameras)
{
    const SceneFile file = ReadSceneFile(Store("tree.gltf", kTree));
    ASSERT_EQ(file.fElements.size(), 3u);
    SceneDescription description;
    description.fElements = file.fElements;
    const auto scene = MakeCounted<Scene>(description);
    std::map<std::string, SceneElement*> named;
    for (const auto& element : scene->Elements())
        named[element->Name()] = element.get();

    TTreeTransform full;
    named["Group"]->GetTreeTransform(full);
    EXPECT_LT(Length(full.fScale - TVector3(2, 2, 2)), 1e-5);
    EXPECT_EQ(named["Spot"]->Parent(), named["Group"]);
    // Two along -Z, as scaled, which the group turns to -X; its matrix is a rotation alone.
    EXPECT_LT(Length(named["Spot"]->Transform().fTranslation - TVector3(-1, 2, 3)), 1e-5);
    EXPECT_LT(Length(Turned(named["Spot"]->Transform(), {0, 0, -1}) - TVector3(-1, 0, 0)), 1e-5);

    const LightDescription& spot = *file.fElements[0].fChildren[0].fLight;
    EXPECT_EQ(spot.fKind, LightKind::kSpot);
    EXPECT_EQ(spot.fBrightness, 4);
    EXPECT_EQ(spot.fColor.fGreen, 0.5f);
    EXPECT_NEAR(spot.fInnerAngle, 30, 1e-3);
    EXPECT_NEAR(spot.fOuterAngle, 60, 1e-3);
    EXPECT_EQ(spot.fNearRange, 0);
    EXPECT_EQ(spot.fFarRange, 7);
    EXPECT_EQ(file.fElements[1].fLight->fKind, LightKind::kDistant);
    EXPECT_EQ(file.fElements[2].fLight->fKind, LightKind::kPoint);
    EXPECT_EQ(file.fElements[2].fLight->fFarRange, LightDescription::kEverywhere);
    for (const char* const camera : {"Wide", "Free"}) {
        ASSERT_TRUE(named[camera]->Camera()) << camera;
        EXPECT_NEAR(named[camera]->Camera()->fFieldOfView, 0.7 * 57.29578, 1e-3) << camera;
    }
    EXPECT_FALSE(named["Group"]->Camera());
}

TEST_F(SceneFileTest, AMeshWithoutUVIsToldAndGetsItsBoundingBox)
{
    const SceneFile file
        = ReadSceneFile(Store("sheet.obj", "o Sheet\nv 1 0 0\nv 3 0 0\nv 3 4 0\nv 1 4 0\nf 1 2 3 4\n"));
    ASSERT_EQ(file.fElements.size(), 1u);
    EXPECT_THAT(file.fNotices,
        testing::ElementsAre(
            "sheet.obj: \"Sheet\" has no UV; its place in its bounding box along X and Y stands in"));
    const Geometry& shape = *file.fElements[0].fGeometry;
    const auto hit = shape.Cast({1.5f, 3, 1}, {0, 0, -1}, 0, 2);
    ASSERT_TRUE(hit);
    const SurfacePoint point = shape.PointAt(*hit);
    EXPECT_NEAR(point.fUV[0], 0.25, 1e-6);
    EXPECT_NEAR(point.fUV[1], 0.75, 1e-6);
    EXPECT_LT(Length(point.fDerivU - TVector3(2, 0, 0)), 1e-5);
    EXPECT_LT(Length(point.fDerivV - TVector3(0, 4, 0)), 1e-5);
    EXPECT_LT(Length(point.fNormal - TVector3(0, 0, 1)), 1e-6);
}

TEST_F(SceneFileTest, WhatManyMeshesLackIsToldOnce)
{
    const std::string quad = "v 1 0 0\nv 3 0 0\nv 3 4 0\nf -3 -2 -1\n";
    const SceneFile file
        = ReadSceneFile(Store("sheets.obj", "o A\x1b\n" + quad + "o B\n" + quad + "o C\n" + quad));
    EXPECT_THAT(file.fNotices,
        testing::ElementsAre(
            "sheets.obj: \"A\\u001b\" and 2 more have no UV; their places in their bounding boxes "
            "along X and Y stand in"));
}

TEST_F(SceneFileTest, DamagedMeshesAreMendedAndTold)
{
    const SceneFile file = ReadSceneFile(Store("hurt.obj",
        "o A\nv 0 0 0\nv 2 0 0\nv 0 2 0\nv nan 0 0\nv 1e38 0 1\nv 5 0 0\nvt 0 0\nvt 1 0\nvt nan 1\n"
        "vn 0 0 1\nvn nan 0 0\nf 1/1/1 2/2/1 3/3/2\nf 2/1/1 4/2/1 3/2/1\nf 2/1/1 5/2/1 3/2/1\nf 1/1/1 2/2/1 "
        "6/2/1\n"));
    ASSERT_EQ(file.fElements.size(), 1u);
    EXPECT_THAT(file.fNotices,
        testing::ElementsAre(
            testing::MatchesRegex(
                "hurt.obj: \"A\": 2 of [0-9]+ vertices have a NaN, an infinity or a coordinate "
                "beyond 1e18; they and 2 of 4 triangles are left out"),
            testing::MatchesRegex(
                "hurt.obj: \"A\": 1 of [0-9]+ vertices have a NaN or an infinity in their normal "
                "or UV; the normal of the triangle and 0 stand in"),
            "hurt.obj: \"A\": 1 of 4 triangles have no area, and no ray meets them"));
    const Geometry& shape = *file.fElements[0].fGeometry;
    EXPECT_EQ(shape.Bounds().fMax[0], 5);
    const auto hit = shape.Cast({0.5f, 0.5f, 1}, {0, 0, -1}, 0, 2);
    ASSERT_TRUE(hit);
    const SurfacePoint point = shape.PointAt(*hit);
    EXPECT_LT(Length(point.fNormal - TVector3(0, 0, 1)), 1e-6);
    EXPECT_NEAR(point.fUV[0], 0.25, 1e-6);
    EXPECT_NEAR(point.fUV[1], 0.25, 1e-6);
    EXPECT_EQ(ReadSceneFile(Store("lost.obj", "o A\nv nan 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n"))
                  .fElements[0]
                  .fGeometry,
        nullptr);
}

TEST_F(SceneFileTest, ScaledAndMirroredMeshesKeepTheirOuterSide)
{
    for (const float mirror : {1.0f, -1.0f}) {
        const std::string text = R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
            "nodes": [{"name": "Sail", "mesh": 0, "translation": [5, 0, 0], "scale": [)"
            + std::to_string(3 * mirror) + R"(, 2, 1]}],
            "meshes": [{"primitives": [{"attributes": {"POSITION": 0}}]}],
            "accessors": [{"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3",
                           "min": [0, 0, 0], "max": [1, 1, 0]}],
            "bufferViews": [{"buffer": 0, "byteLength": 36}],
            "buffers": [{"byteLength": 36, "uri": "data:application/octet-stream;base64,AAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAAAAAAAAgD8AAAAA"}]})";
        SceneDescription description;
        description.fElements = ReadSceneFile(Store("sail.gltf", text)).fElements;
        const auto scene = MakeCounted<Scene>(description);
        SceneElement& sail = *scene->Elements()[1];
        TBBox3D box;
        sail.GetBoundingBox(box, 0, false);
        EXPECT_LT(Length(box.fMin - TVector3(mirror > 0 ? 5 : 2, 0, 0)), 1e-5);
        EXPECT_LT(Length(box.fMax - TVector3(mirror > 0 ? 8 : 5, 2, 0)), 1e-5);
        const TTransform3D toLocal = Inverse(sail.Transform());
        const Geometry& shape = sail.Shape()->Shape();
        const auto hit
            = shape.Cast(Placed(toLocal, {5 + mirror, 0.5f, 1}), Turned(toLocal, {0, 0, -1}), 0, 2);
        ASSERT_TRUE(hit);
        EXPECT_NEAR(hit->fDistance, 1, 1e-5);
        EXPECT_LT(Length(Turned(sail.Transform(), shape.PointAt(*hit).fNormal) - TVector3(0, 0, 1)), 1e-5);
    }
}

TEST_F(SceneFileTest, AllSetsOfUVAreRead)
{
    const SceneFile file = ReadSceneFile(Store("sets.gltf", R"({"asset": {"version": "2.0"}, "scene": 0,
        "scenes": [{"nodes": [0]}], "nodes": [{"name": "Sail", "mesh": 0}],
        "meshes": [{"primitives": [{"attributes": {"POSITION": 0, "TEXCOORD_0": 1, "TEXCOORD_1": 2}}]}],
        "accessors": [{"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3",
                       "min": [0, 0, 0], "max": [1, 1, 0]},
                      {"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC2"},
                      {"bufferView": 0, "byteOffset": 12, "componentType": 5126, "count": 3, "type": "VEC2"}],
        "bufferViews": [{"buffer": 0, "byteLength": 36}],
        "buffers": [{"byteLength": 36, "uri": "data:application/octet-stream;base64,AAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAAAAAAAAgD8AAAAA"}]})"));
    const MeshDescription& mesh = *file.fElements[0].fGeometry->Mesh();
    ASSERT_EQ(mesh.UVSetCount(), 2u);
    EXPECT_EQ(mesh.UVSet(0)[1][0], 0);
    EXPECT_EQ(mesh.UVSet(1)[0][0], 1);
    EXPECT_EQ(mesh.UVSet(1)[1][0], 0);
    EXPECT_EQ(mesh.UVSet(1)[1][1], 1); // the file's V runs down
}

TEST_F(SceneFileTest, FilesThatHoldNoSceneAreRefusedByName)
{
    EXPECT_THAT(
        ErrorOf(fPlace / "none.gltf"), testing::EndsWith("none.gltf can't be read: there is no such file"));
    EXPECT_THAT(
        ErrorOf(Store("broken.gltf", "{\"asset\":")), testing::HasSubstr("broken.gltf can't be read: "));
    EXPECT_THAT(ErrorOf(Store("scene.xyz", "?")), testing::HasSubstr("scene.xyz can't be read: "));
    EXPECT_THAT(ErrorOf(fPlace.Path()), testing::EndsWith(" can't be read: it is a folder"));
    EXPECT_THAT(ErrorOf("/dev/zero"), testing::EndsWith(" can't be read: it is a device"));
}

TEST_F(SceneFileTest, DamagedScenesAreRefused)
{
    // Assimp's reader leaves a node out of each group of triangles.
    const std::string group = "0.5 0.5 0.5 0 0 0 0 1 0 1 0 0\n";
    EXPECT_THAT(ErrorOf(Store("groups.raw", "First\n" + group + "Second\n" + group)),
        testing::HasSubstr("groups.raw can't be read: "));
    // A part that isn't a file would never end.
    mkfifo((fPlace / "part.bin").c_str(), 0600);
    EXPECT_THAT(
        ErrorOf(Store("pipe.gltf", R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
        "nodes": [{"mesh": 0}], "meshes": [{"primitives": [{"attributes": {"POSITION": 0}}]}],
        "accessors": [{"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3"}],
        "bufferViews": [{"buffer": 0, "byteLength": 36}], "buffers": [{"byteLength": 36, "uri": "part.bin"}]})")),
        testing::HasSubstr("pipe.gltf can't be read: "));
    // A loop of lines, none of whose vertices is there.
    EXPECT_THAT(
        ErrorOf(Store("loop.gltf", R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
        "nodes": [{"mesh": 0}], "meshes": [{"primitives": [{"attributes": {}, "indices": 0, "mode" : 2}]}],
        "accessors": [{"bufferView": 0, "componentType": 5123, "count": 3, "type": "SCALAR"}],
        "bufferViews": [{"buffer": 0, "byteLength": 6}],
        "buffers": [{"byteLength": 6, "uri": "data:application/octet-stream;base64,AAABAAIA"}]})")),
        testing::HasSubstr("loop.gltf can't be read: "));
    std::string nodes = R"({"name": "n0"})";
    for (int i = 1; i < 400; ++i)
        nodes += ", {\"children\": [" + std::to_string(i - 1) + "]}";
    EXPECT_THAT(ErrorOf(Store("deep.gltf",
                    R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [399]}], "nodes": [)"
                        + nodes + "]}")),
        testing::EndsWith("deep.gltf can't be read: its nodes are nested more than 256 deep"));
}

} // namespace
