#include "host/shading/Graph.h"
#include "host/sources/Sources.h"
#include "tests/support/BakeText.h"
#include <chrono>
#include <csignal>
#include <fstream>
#include <sys/stat.h>
#include <thread>

using namespace fernwick;

namespace {

/// A document with these shaders, the output named `key`.
std::string WithShaders(const std::string& shaders, const std::string& rest = "")
{
    return R"({"shaders": {)" + shaders + R"(}, "output": "key")" + rest + '}';
}

const std::string kGreen = R"("green": {"source": "color", "color": [0, 1, 0, 0.25]})";

class GraphTest : public ShaderTest {
protected:
    static GraphDocument Parse(const std::string& text) { return GraphDocument::Parse(text, "/nowhere"); }

    static std::string ErrorOf(const std::string& text)
    {
        try {
            Parse(text);
        } catch (const GraphError& error) {
            return error.what();
        }
        return "taken: " + text;
    }

    TMCColorRGBA Shade(const std::string& text)
    {
        const Graph graph(TestedLibrary(), Parse(text));
        TMCColorRGBA color{9, 9, 9, 9};
        graph.Output().ShadeColor(color, fFullArea, fIn);
        return color;
    }
};

TEST_F(GraphTest, ShadersGetTheirFieldsAndKeepTheDefaultsOfTheOthers)
{
    EXPECT_THAT(Shade(WithShaders(R"("key": {"class": "Key", "fSubShader": "green"}, )" + kGreen)),
        IsColor(0, 0, 0, 0.25f));
    EXPECT_THAT(Shade(WithShaders(
                    R"("key": {"class": "Key", "fMode": "Cut-out", "fSubShader": "green"}, )" + kGreen)),
        IsColor(0, 1, 0, 0));
    EXPECT_THAT(Shade(WithShaders(
                    R"("key": {"class": "Key", "fRedRange": [5, 10], "fSubShader": "green"}, )" + kGreen)),
        IsColor(1, 1, 1, 0.25f));
    for (const char* empty : {"null", "\"\""})
        EXPECT_THAT(
            Shade(WithShaders(R"("key": {"class": "Key", "fSubShader": )" + std::string(empty) + '}')),
            IsColor(1, 0, 0, 1));
}

TEST_F(GraphTest, ShadersComeBehindWhatTheyPlugInAndUnusedOnesBehindTheOutput)
{
    const GraphDocument document = Parse(WithShaders(
        R"("unused": {"class": "Key", "fSubShader": "key"}, "key": {"class": "Key", "fSubShader": "mid"},
           "mid": {"class": "Key", "fSubShader": "green"}, )"
        + kGreen));
    std::vector<std::string> names;
    for (const DocumentShader& shader : document.Shaders())
        names.push_back(shader.fName);
    EXPECT_THAT(names, testing::ElementsAre("green", "mid", "key", "unused"));
    EXPECT_EQ(document.OutputIndex(), 2u);
    EXPECT_EQ(document.OutputKinds(), static_cast<uint32_t>(kOutputColor));

    const auto live = [] { return TestedLibrary().HostUtilities().Memory().LiveBlocks(); };
    const auto before = live();
    const Graph graph(TestedLibrary(), document);
    EXPECT_EQ(live() - before, 2); // the unused one isn't made
    EXPECT_NE(graph.OutputExtension(), nullptr);
    EXPECT_EQ(graph.OutputKinds(), static_cast<uint32_t>(kOutputColor));
}

TEST_F(GraphTest, GraphsOfOneDocumentShareNothingButItsSources)
{
    const GraphDocument document = Parse(
        WithShaders(R"("key": {"class": "Key", "fSubShader": "green"}, )" + kGreen, R"(, "scene": {})"));
    const Graph first(TestedLibrary(), document);
    const Graph second(TestedLibrary(), document);
    EXPECT_NE(&first.Output(), &second.Output());
    EXPECT_NE(first.Instance(), second.Instance());

    const GraphDocument source = Parse(R"({"shaders": {)" + kGreen + R"(}, "output": "green"})");
    const Graph graph(TestedLibrary(), source);
    EXPECT_EQ(&graph.Output(), source.Output().fSource.Get());
    EXPECT_EQ(graph.OutputExtension(), nullptr);
    EXPECT_EQ(graph.Instance(), nullptr);
}

TEST_F(GraphTest, WrongDocumentsAreRefusedWithThePlace)
{
    const auto key = [](const std::string& members) { return WithShaders(R"("key": {)" + members + '}'); };
    const struct {
        std::string text;
        const char* error;
    } rows[] = {
        {"[]", "expected an object, got an empty array"},
        {"{}", "there is no \"shaders\"; a graph needs its \"shaders\" and the name of the \"output\""},
        {R"({"shaders": {}})", "there is no \"output\"; a graph needs the name of the shader that is shown"},
        {R"({"shader": {}, "output": "key"})", "shader: there is no such key; did you mean \"shaders\"?"},
        {R"({"shaders": [], "output": "key"})", "shaders: expected an object, got an empty array"},
        {R"({"shaders": {"": {"class": "Key"}}, "output": ""})", "shaders: a shader needs a name"},
        {R"({"shaders": {"a": {"class": "Key"}}, "output": "A"})",
            "output: there is no shader \"A\"; did you mean \"a\"?"},
        {R"({"shaders": {"key": "Key"}, "output": "key"})", "key: expected an object, got \"Key\""},
        {R"({"shaders": {}, "output": 1})", "output: expected the name of a shader, got 1"},
        {key(""), "key: expected either a \"class\" or a \"source\""},
        {key(R"("class": "Key", "source": "color")"), "key: expected either a \"class\" or a \"source\""},
        {key(R"("class": "Kay")"), "key.class: there is no class \"Kay\"; did you mean \"Key\"?"},
        {key(R"("source": "colour")"), "key.source: there is no source \"colour\"; did you mean \"color\"?"},
        {key(R"("class": "Key", "fSubshader": "key")"),
            "key.fSubshader: Key has no such field; did you mean \"fSubShader\"?"},
        {key(R"("class": "Key", "fMode": true)"),
            "key.fMode: expected one of \"KEYM\" (Mask), \"KEYA\" (Cut-out), got true"},
        {key(R"("class": "Key", "fMode": "mask")"),
            "key.fMode: expected one of \"KEYM\" (Mask), \"KEYA\" (Cut-out), got \"mask\"; did you mean "
            "\"Mask\"?"},
        {key(R"("class": "Key", "fSubShader": "key")"),
            "key: the shaders are plugged in a circle: key -> key"},
        {WithShaders(R"("key": {"class": "Key", "fSubShader": "a"}, "a": {"class": "Key", "fSubShader": "b"},
            "b": {"class": "Key", "fSubShader": "a"})"),
            "a: the shaders are plugged in a circle: a -> b -> a"},
        {key(R"("source": "picture", "file": "none.png")"),
            "key.file: /nowhere/none.png can't be read: there is no such file"},
        {key(R"("source": "picture")"), "key.file: expected the name of a picture file, got none"},
        {key(R"("source": "gradient", "colors": [[1, 1, 1]])"), "key.colors: expected two colours or more"},
        {key(R"("source": "ramp", "along": 2)"), "key.along: expected one of 0 (u), 1 (v), got 2"},
        {key(R"("source": "checker", "countV": 0)"), "key.countV: expected an integer, 1 or more, got 0"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ErrorOf(row.text), row.error) << row.text;

    EXPECT_THAT(
        ErrorOf("{\"shaders\":\n  {,"), testing::StartsWith("not JSON: parse error at line 2, column 4:"));
    EXPECT_EQ(ErrorOf(std::string(1000000, '[')), "arrays and objects are nested more than 256 deep");
    EXPECT_THAT(ErrorOf(key(R"("class": "Key", "fRedRange": [0, 1e999])")), testing::HasSubstr("1e999"));
    EXPECT_THAT(ErrorOf(key(R"("class": "Key", "fRedRange": [0, NaN])")), testing::StartsWith("not JSON: "));
}

TEST_F(GraphTest, AChainThatIsTooDeepIsRefused)
{
    const auto chain = [](int length) {
        std::string shaders = R"("key": {"class": "Key", "fSubShader": "s1"})";
        for (int i = 1; i < length; ++i)
            shaders += ", \"s" + std::to_string(i) + R"(": {"class": "Key", "fSubShader": )"
                + (i + 1 < length ? "\"s" + std::to_string(i + 1) + '"' : "null") + '}';
        return WithShaders(shaders);
    };
    EXPECT_EQ(Parse(chain(256)).Shaders().size(), 256u);
    EXPECT_EQ(ErrorOf(chain(257)), "s256: shaders are plugged more than 256 deep");
}

TEST_F(GraphTest, AFailedBuildLeavesNothingBehind)
{
    const GraphDocument document = Parse(WithShaders(
        R"("key": {"class": "Key", "fSubShader": "mid"}, "mid": {"class": "Key"})", R"(, "scene": {})"));
    MemoryService& memory = TestedLibrary().HostUtilities().Memory();
    const auto before = memory.LiveBlocks();
    for (int64_t allowed = 0;; ++allowed) {
        memory.RefuseAfter(allowed);
        try {
            const Graph graph(TestedLibrary(), document);
            break;
        } catch (const GraphError& error) {
            EXPECT_THAT(error.what(), testing::EndsWith(": the library doesn't make a Key"));
        }
        EXPECT_EQ(memory.LiveBlocks(), before);
        EXPECT_FALSE(TestedLibrary().HasLiveComponents());
        ASSERT_LT(allowed, 20);
    }
    memory.RefuseAfter(-1);
}

std::string ReadErrorOf(const std::filesystem::path& file)
{
    try {
        GraphDocument::Read(file);
    } catch (const GraphError& error) {
        return error.what();
    }
    return "read";
}

TEST_F(GraphTest, WhatIsNoFileIsCalledByItsNameAndWhatNeverEndsEnds)
{
    const FreshFolder place;
    EXPECT_THAT(ReadErrorOf(place.Path()), testing::EndsWith(": can't be read: it is a folder"));
    EXPECT_THAT(ReadErrorOf(place / "none"), testing::EndsWith("none: can't be read: there is no such file"));
    EXPECT_EQ(ReadErrorOf("/dev/zero"),
        "/dev/zero: can't be read: it goes on behind 64 MiB, and a graph is shorter");

    const auto pipe = place / "pipe";
    mkfifo(pipe.c_str(), 0600);
    const auto fed = [&pipe](const std::string& text, bool isEndless) {
        std::thread writer([&] {
            std::signal(SIGPIPE, SIG_IGN);
            for (std::ofstream stream(pipe); stream << text << std::flush && isEndless;) { }
        });
        const std::string error = ReadErrorOf(pipe);
        writer.join();
        return error;
    };
    EXPECT_EQ(fed(WithShaders(R"("key": {"source": "color"})"), false), "read");
    EXPECT_THAT(fed(std::string(100000, ' '), true), testing::HasSubstr("it goes on behind 64 MiB"));

    const auto file = [](const std::string& source) {
        return WithShaders(R"("key": {"source": "color"})", R"(, "scene": {"file": ")" + source + "\"}");
    };
    EXPECT_THAT(ErrorOf(file(place.Path())), testing::HasSubstr("can't be read: it is a folder"));
    EXPECT_THAT(ErrorOf(file(pipe)), testing::HasSubstr("can't be read: it is a pipe; "));
    EXPECT_THAT(ErrorOf(WithShaders(R"("key": {"source": "picture", "file": "/dev/zero"})")),
        testing::EndsWith("/dev/zero can't be read: it is a device"));
}

TEST_F(GraphTest, ManyShadersAndElementsAreReadInTimeThatGrowsWithTheirNumber)
{
    constexpr int kCount = 30000;
    std::string shaders = kGreen;
    std::string elements;
    std::string looks;
    for (int i = 0; i < kCount; ++i) {
        const std::string number = std::to_string(i);
        shaders += ", \"s" + number + R"(": {"class": "Key", "fSubShader": "green"})";
        elements += std::string(i > 0 ? ", " : "") + R"({"name": "e)" + number + "\"}";
        looks += std::string(i > 0 ? ", " : "") + "\"e" + number + "\": \"s" + number + '"';
    }
    const auto start = std::chrono::steady_clock::now();
    const GraphDocument document = GraphDocument::Parse("{\"shaders\": {" + shaders
            + R"(}, "output": "s7", "scene": {"elements": [)" + elements + "], \"nodes\": {" + looks + "}}}",
        "");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
    EXPECT_EQ(document.Shaders().size(), kCount + 1u);
    EXPECT_EQ(document.Scene()->fElements[kCount - 1].fLook.fShader, "s" + std::to_string(kCount - 1));
}

TEST_F(GraphTest, DoubtsAndErrorsNameThePlaceInPlainCharacters)
{
    const GraphDocument document = Parse(WithShaders(R"("key": {"class": "Fresnel", "fWavelength": 5000,
        "fTemperature": 3000}, "\u001b[1m": {"class": "Key", "fMode": 17})"));
    EXPECT_THAT(document.Doubts(),
        testing::ElementsAre(
            "key.fWavelength: expected 380 to 825 nm, got 5000; the shader takes it in its own way",
            "key.fTemperature: it counts only where fIlluminantPreset is 15, which it isn't",
            "\\u001b[1m.fMode: expected one of \"KEYM\" (Mask), \"KEYA\" (Cut-out), got 17; the shader takes "
            "it "
            "in its own way"));
    EXPECT_THAT(ErrorOf(WithShaders(R"("key": {"class": "Key", "\u001b]0;x\u0007": 1})")),
        testing::StartsWith("key.\\u001b]0;x\\u0007: Key has no such field"));
}

TEST_F(GraphTest, NamesThatSeveralElementsHaveAreDoubtful)
{
    const auto doubts = [](const std::string& scene) {
        return Parse(WithShaders(R"("key": {"class": "Key"})", ", \"scene\": " + scene)).Doubts();
    };
    EXPECT_THAT(doubts(R"({"elements": [{"name": "Lamp", "children": [{"name": "Lamp"}, {"name": "Eye"}]},
                    {"name": "Scene"}, {"name": "Lamp"}], "shaded": {"name": "Eye"}})"),
        testing::ElementsAre("scene: 3 elements are named \"Lamp\"; what looks for the name finds the first",
            "scene: 2 elements are named \"Scene\", as the root is; what looks for the name finds the first",
            "scene: 2 elements are named \"Eye\"; what looks for the name finds the first"));
    EXPECT_THAT(doubts(R"({"elements": [{"name": "Lamp"}, {"name": "lamp"}]})"), testing::IsEmpty());
}

TEST_F(GraphTest, FilesAreFoundFromTheDocumentsFolder)
{
    const auto folder = std::filesystem::path(testing::TempDir()) / "fernwick graph";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "red.ppm") << "P3 1 1 255 255 0 0\n";
    std::ofstream(folder / "graph.json")
        << WithShaders(R"("key": {"source": "picture", "file": "./red.ppm"})");
    const Graph graph(TestedLibrary(), GraphDocument::Read(folder / "graph.json"));
    TMCColorRGBA color{};
    graph.Output().ShadeColor(color, fFullArea, fIn);
    EXPECT_THAT(color, IsColor(1, 0, 0, 1));
    for (const auto& file : {folder, folder / "none.json"})
        EXPECT_THROW(GraphDocument::Read(file), GraphError);
    std::filesystem::remove_all(folder);
}

const std::string kSceneText = R"(, "scene": {"elements": [
    {"name": "Group", "position": [1, 2, 3], "rotation": [0, 0, 90], "hotPoint": [0, 1, 0], "children": [
        {"name": "Lamp", "position": [2, 0, 0], "rotation": [90, 0, 0]}, {"name": "Twin", "position": [5, 5, 5]}]},
    {"name": "Twin"}], "shaded": {"position": [0, 7, 0]}, "camera": "Lamp"})";

/// The element of a name, as a shader finds it; null when there is none.
MCCountedPtr<ITreeElement> Find(IScene& scene, std::string_view name)
{
    MCCountedPtr<ITreeElement> element;
    scene.GetTreeByName(element.Address(), TMCString255(name));
    return element;
}

TVector3 PositionOf(ITreeElement& element)
{
    TTransform3D transform;
    element.GetGlobalTransform(transform);
    return transform.fTranslation;
}

MCCountedPtr<ITreeElement> ElementOf(IMCUnknown& object)
{
    void* face = nullptr;
    EXPECT_EQ(object.QueryInterface(IID_ITreeElement, &face), MC_S_OK);
    MCCountedPtr<ITreeElement> element;
    *element.Address() = static_cast<ITreeElement*>(face);
    return element;
}

TEST_F(GraphTest, TheSceneAnswersThroughTheShadedObject)
{
    MCCountedPtr<ITreeElement> kept;
    {
        const Graph graph(TestedLibrary(), Parse(WithShaders(R"("key": {"class": "Key"})", kSceneText)));
        kept = ElementOf(*graph.Instance());
        MCCountedPtr<IScene> scene;
        kept->GetScene(scene.Address());
        EXPECT_EQ(PositionOf(*kept), TVector3(0, 7, 0));

        TMCString255 name;
        kept->GetName(name);
        EXPECT_EQ(name, std::string_view("Shaded object"));
        const auto lamp = Find(*scene, "Lamp");
        ASSERT_TRUE(lamp);
        const TVector3 position = PositionOf(*lamp);
        EXPECT_NEAR(position[0], 1, 1e-6); // two along the group's X axis, which points along Y
        EXPECT_NEAR(position[1], 4, 1e-6);
        EXPECT_NEAR(position[2], 3, 1e-6);
        TTransform3D transform;
        lamp->GetGlobalTransform(
            transform); // takes (0, 0, -1) to (0, 1, 0), which the group turns to (-1, 0, 0)
        EXPECT_NEAR(-transform.fMatrix[0][2], -1, 1e-6);
        EXPECT_NEAR(-transform.fMatrix[1][2], 0, 1e-6);

        EXPECT_FALSE(Find(*scene, "lamp"));
        EXPECT_FALSE(Find(*scene, ""));
        EXPECT_FALSE(PositionOf(*Find(*scene, "Twin")) == TVector3()); // the first in tree order

        MCCountedPtr<IRenderingModule> module;
        scene->GetRenderingModule(module.Address());
        module->GetRenderingCameraName(name);
        EXPECT_EQ(name, std::string_view("Lamp"));
    }
    EXPECT_EQ(PositionOf(*kept), TVector3(0, 7, 0)); // what is held outlives the graph
    void* face = this;
    EXPECT_EQ(kept->QueryInterface(IID_ILight, &face), kMCNoInterface);
    EXPECT_EQ(face, nullptr);
}

TEST_F(GraphTest, TheTreeCanBeWalkedFromTheRoot)
{
    const Graph graph(TestedLibrary(), Parse(WithShaders(R"("key": {"class": "Key"})", kSceneText)));
    MCCountedPtr<IGroup> group;
    graph.SceneOrNull()->GetRootGroup(group.Address());
    MCCountedPtr<ITreeElement> element = ElementOf(*group);
    using Step = void (ITreeElement::*)(ITreeElement**);
    const struct {
        Step step;
        const char* name; ///< null where the way ends
    } way[] = {
        {&ITreeElement::GetFirstChild, "Group"},
        {&ITreeElement::GetFirstChild, "Lamp"},
        {&ITreeElement::GetFirstChild, nullptr},
        {&ITreeElement::GetNextSibling, "Twin"},
        {&ITreeElement::GetNextSibling, nullptr},
        {&ITreeElement::GetParent, "Group"},
        {&ITreeElement::GetNextSibling, "Twin"},
        {&ITreeElement::GetNextSibling, "Shaded object"},
        {&ITreeElement::GetNextSibling, nullptr},
        {&ITreeElement::GetParent, "Scene"},
        {&ITreeElement::GetParent, nullptr},
    };
    for (const auto& [step, name] : way) {
        MCCountedPtr<ITreeElement> next;
        (&*element->*step)(next.Address());
        ASSERT_EQ(static_cast<bool>(next), name != nullptr);
        if (name == nullptr)
            continue;
        element = next;
        TMCString255 text;
        element->GetName(text);
        EXPECT_EQ(text, std::string_view(name));
    }
}

TEST_F(GraphTest, WrongScenesAreRefusedWithThePlace)
{
    const struct {
        std::string scene;
        const char* error;
    } rows[] = {
        {"[]", "scene: expected an object, got an empty array"},
        {R"({"cameras": "x"})", "scene.cameras: there is no such key; did you mean \"camera\"?"},
        {R"({"elements": [{}]})", "scene.elements[0]: an element needs a \"name\""},
        {R"({"elements": [{"name": ""}]})", "scene.elements[0].name: expected a name, got \"\""},
        {R"({"elements": [{"name": "a", "position": [1, 2]}]})",
            "scene.elements[0].position: expected three numbers, got [1,2]"},
        {R"({"elements": [{"name": "a", "hotpoint": [1, 2, 3]}]})",
            "scene.elements[0].hotpoint: there is no such key; did you mean \"hotPoint\"?"},
        {R"({"elements": [{"name": "Lamp"}], "camera": "Lamb"})",
            "scene.camera: there is no element \"Lamb\"; did you mean \"Lamp\"?"},
        {R"({"shaded": {"children": []}})", "scene.shaded.children: there is no such key"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ErrorOf(WithShaders(R"("key": {"class": "Key"})", ", \"scene\": " + row.scene)), row.error);
}

} // namespace
