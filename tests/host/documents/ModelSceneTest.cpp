#include "host/documents/ModelScene.h"
#include "host/documents/SceneFile.h"
#include "tests/support/BakeText.h"
#include "tests/support/Shell.h"

using namespace fernwick;

namespace {

constexpr const char* kModel = "v 1 0 0\nv 3 0 0\nv 3 4 0\nvt 0 0\nvt 1 0\nvt 1 1\n"
                               "o Left\nf 1/1 2/2 3/3\no Right\nf 1/1 2/2 3/3\n";

class ModelSceneTest : public testing::Test {
protected:
    DocumentFiles fFiles;
    const FreshFolder fFolder;
    const std::filesystem::path fModel = fFolder / "model.obj";

    void SetUp() override { Store(fModel, kModel); }

    GraphDocument Document(const std::string& scene) const
    {
        return GraphDocument::Parse(R"({"shaders": {"a": {"source": "checker"}}, "output": "a")"
                + (scene.empty() ? "" : ", \"scene\": " + scene) + '}',
            fFolder.Path());
    }
    OntoModel Put(const GraphDocument& document, const std::filesystem::path& model, const std::string& node)
    {
        return PutOnto(document, fFiles, model, node);
    }
    std::string ErrorOf(
        const GraphDocument& document, const std::filesystem::path& model, const std::string& node)
    {
        try {
            Put(document, model, node);
        } catch (const GraphError& error) {
            return error.what();
        }
        return "put";
    }
    /// The targets' names, and the names of all elements.
    static std::pair<std::string, std::string> NamesOf(const OntoModel& onto)
    {
        const auto scene = MakeCounted<Scene>(*onto.fDocument.Scene(), Scene::Shaded::kNone);
        std::pair<std::string, std::string> names;
        for (const size_t target : onto.fTargets)
            names.first += scene->Shapes()[target]->Name() + ' ';
        for (const auto& element : scene->Elements())
            names.second += element->Name() + ' ';
        return names;
    }
};

using testing::Pair;

TEST_F(ModelSceneTest, AGraphWithoutASceneGetsOneAroundTheModel)
{
    const OntoModel onto = Put(Document(""), fModel, "");
    EXPECT_THAT(NamesOf(onto), Pair("Left Right ", "Scene Left Right Lamp Target Camera "));
    const SceneDescription& scene = *onto.fDocument.Scene();
    const ElementDescription& lamp = scene.fElements[2];
    EXPECT_LT(Length(lamp.fPlace.fTranslation - TVector3(2 - 3.2f, 2 + 3.2f, 3.2f)), 1e-5);
    EXPECT_EQ(lamp.fLight->fFarRange, 10);
    EXPECT_THAT(CameraNames(scene), testing::ElementsAre("Camera"));
    EXPECT_THAT(NamesOf(Put(Document(""), fModel, "Right")).first, "Right ");
    EXPECT_EQ(
        Put(Document(""), fModel, "").fDocument.Scene()->fElements[0].fGeometry, scene.fElements[0].fGeometry)
        << "read again for the next frame";
}

TEST_F(ModelSceneTest, TheGraphsOwnSceneStays)
{
    EXPECT_THAT(NamesOf(Put(Document(R"({"file": "model.obj"})"), fModel, "")),
        Pair("Left Right ", "Scene Left Right "));
    EXPECT_THAT(NamesOf(Put(Document(R"({"file": "model.obj"})"), "", "Left")).first, "Left ");

    const OntoModel placed = Put(
        Document(
            R"({"elements": [{"name": "Ball", "shape": {"kind": "sphere"}}, {"name": "Stand", "children": [
            {"name": "Right", "position": [7, 0, 0]}, {"name": "Box", "shape": {"kind": "box"}}]}]})"),
        fModel, "");
    EXPECT_THAT(NamesOf(placed), Pair("Right Left ", "Scene Ball Stand Right Box Left "));
    const ElementDescription& right = placed.fDocument.Scene()->fElements[1].fChildren[0];
    EXPECT_EQ(right.fPlace.fTranslation[0], 7);
    EXPECT_EQ(NamesOf(Put(placed.fDocument, "", "Stand")).first, "Right Box ");
}

TEST_F(ModelSceneTest, WhatIsNoMeshIsTold)
{
    const std::string ball = R"({"elements": [{"name": "Ball", "shape": {"kind": "sphere"}}]})";
    EXPECT_EQ(ErrorOf(Document(""), "", "Left"),
        "the graph has no \"scene\" with an element to bake onto; name a model before the #");
    EXPECT_EQ(ErrorOf(Document(ball), "", "Ball"),
        "\"Ball\" has no triangles; a bake goes onto a mesh, which is a box or out of a file");
    EXPECT_EQ(ErrorOf(Document(ball), fModel, "Lift"),
        "there is no element \"Lift\" with a mesh; did you mean \"Left\"?");
    EXPECT_EQ(ErrorOf(Document(ball), fModel, "Ball"),
        "\"Ball\" has no triangles; a bake goes onto a mesh, which is a box or out of a file");
    EXPECT_THROW(Put(Document(""), fFolder / "none.obj", ""), SceneFileError);
}

} // namespace
