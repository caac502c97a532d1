#include "host/documents/GraphDocument.h"
#include "tests/support/CommandTest.h"

namespace {

const std::string kSchema = FERNWICK_EXAMPLES "/../docs/graph.schema.json";

class SchemaTest : public CommandTest {
protected:
    /// Whether each file satisfies the schema, as "1" or "0"; nothing without a validator.
    static std::string Validate(const std::vector<std::filesystem::path>& files)
    {
        std::string command
            = "/usr/bin/python3 -c '"
              "import json, sys, jsonschema\n"
              "schema = json.load(open(sys.argv[1]))\n"
              "jsonschema.Draft202012Validator.check_schema(schema)\n"
              "validator = jsonschema.Draft202012Validator(schema)\n"
              "for name in sys.argv[2:]: print(int(validator.is_valid(json.load(open(name)))), "
              "end=\"\")' '"
            + kSchema + "'";
        for (const std::filesystem::path& file : files)
            command += " '" + file.string() + "'";
        return Shell(command).text;
    }

    static bool HasValidator()
    {
        return Shell("/usr/bin/python3 -c 'import jsonschema; jsonschema.Draft202012Validator'").status == 0;
    }
};

TEST_F(SchemaTest, TheOneInTheDocumentationIsUpToDate)
{
    const Answer answer = Run("schema");
    EXPECT_EQ(answer.status, 0);
    EXPECT_TRUE(answer.out == FileText(kSchema)) << "run: fernwick schema -o docs/graph.schema.json";
    EXPECT_EQ(Run("schema -o written.json").out, "");
    EXPECT_EQ(FileText(fFolder / "written.json"), answer.out);
    EXPECT_EQ(Run("schema -o missing/written.json").status, 1);
}

TEST_F(SchemaTest, AgreesWithTheReaderAboutExamplesAndMistakes)
{
    if (!HasValidator())
        GTEST_SKIP() << "python3-jsonschema isn't installed";
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(FERNWICK_EXAMPLES))
        if (entry.path().extension() == ".json") {
            files.push_back(entry.path());
            EXPECT_THAT(FileText(entry.path()),
                testing::StartsWith("{\n    \"$schema\": \"../docs/graph.schema.json\""))
                << entry;
        }
    const auto shader = [](const std::string& members) {
        return R"({"shaders": {"a": {)" + members + R"(}, "b": {"source": "checker"}}, "output": "a"})";
    };
    const auto scene = [](const std::string& members) {
        return R"({"shaders": {"a": {"source": "color"}}, "output": "a", "scene": {)" + members + "}}";
    };
    const auto element = [&scene](const std::string& members) {
        return scene(R"("elements": [{"name": "e", )" + members + "}]");
    };
    const std::vector<std::string> right = {
        shader(R"("class": "Key", "fMode": "Cut-out", "fSubShader": "b", "fKeyColor": [1, 0, 0])"),
        shader(R"("class": "Key", "fMode": 17, "fSubShader": null, "fKeyColor": [1, 0, 0, 1])"),
        shader(R"("class": "Iridescent", "fBands[2]": {"fWidth": 1}, "fBands[6].fColor": [0, 0, 1])"),
        shader(R"("class": "Weave", "fPattern[1]": [true, true, false, true, true], "fPattern[4][4]": true)"),
        shader(R"("class": "Super_mixer", "fSubShader[11]": "b", "fRange[9]": [0, 1])"),
        shader(R"("source": "ramp", "along": 1)"),
        shader(R"("source": "gradient", "along": "v", "colors": [[1, 1, 1], [0, 0, 0, 0]])"),
        R"({"$schema": "s", "shaders": {"a": {"source": "color"}}, "output": "a", "scene": {"camera": "Eye",
            "elements": [{"name": "Eye", "children": [{"name": "b"}]}], "shaded": {"position": [0, 1, 2]}}})",
        scene(R"("elements": [{"name": "e"}, {"name": "f"}], "background": [0, 0, 1],
            "nodes": {"e": "a", "f": {"shading": "lit", "shader": "a", "hotPoint": [0, 1, 0]}})"),
        element(
            R"("shape": {"kind": "torus", "radius": 2, "tube": 1}, "shading": "plain", "lookAt": [1, 0, 0])"),
        element(R"("shape": {"kind": "plane", "size": [1, 2]}, "light": {"range": [0, 1]})"),
        element(R"("shape": {"kind": "saddle", "height": -1}, "light": {"kind": "spot", "cone": [1, 2]})"),
        element(R"("shape": {"kind": "box", "size": [1, 2, 3]}, "camera": {"fieldOfView": 170})"),
        shader(R"("class": "Key", "fMode": {"keys": [[1, "KEYM"], [2, 17]], "between": "step"},
            "fRedRange": {"keys": [[1, [0, 1]]], "between": "smooth"}, "fGreenRange": [0, {"keys": [[0.5, 1]]}],
            "fSubShader": {"keys": [[1, "b"], [2, null]]}, "fKeyColor": {"keys": [[-1, [0, 1, 0]]]})"),
        element(R"("shape": {"kind": "model", "file": ")" FERNWICK_EXAMPLES
                R"(/pebble.obj", "up": "Z", "radius": 2})"),
        scene(R"("file": {"path": ")" FERNWICK_EXAMPLES R"(/studio.gltf", "up": "Y", "scale": 2,
            "position": [0, 0, 1], "rotation": [0, 90, 0]}, "materials": {})"),
        shader(R"("class": "Weave", "fPattern[1]": {"keys": [[1, [true, true, false, true, true]]]})"),
        shader(R"("source": "gradient", "colors": [[1, 1, 1], {"keys": [[1, [0, 0, 0, 0]]]}])"),
        element(
            R"("position": {"keys": [[1, [0, 0, 0]], [2, [0, 1, 0]]]}, "rotation": [0, {"keys": [[1, 0]]}, 0],
            "shape": {"kind": "sphere", "radius": {"keys": [[1, 1]]}}, "shading": {"keys": [[1, "lit"]]},
            "light": {"color": {"keys": [[1, [1, 1, 1]]]}, "range": {"keys": [[1, [1, 2]]]}},
            "camera": {"fieldOfView": {"keys": [[1, 40]], "between": "linear"}}, "shader": {"keys": [[1, "a"]]})"),
    };
    const std::vector<std::string> wrong = {
        R"({"shaders": {"a": {"source": "color"}}})",
        R"({"shaders": {"a": {"source": "color"}}, "output": "a", "scenes": {}})",
        R"({"shaders": {"": {"source": "color"}}, "output": ""})",
        scene(R"("elements": [{}])"),
        scene(R"("shaded": {"position": [0, 1]})"),
        scene(R"("background": [0, 1])"),
        scene(R"("elements": [{"name": "e"}], "nodes": {"e": {"position": [0, 0, 0]}})"),
        element(R"("rotation": [0, 0, 0], "lookAt": [1, 0, 0])"),
        element(R"("shading": "shiny")"),
        element(R"("shape": {"kind": "sphere", "size": 1})"),
        element(R"("shape": {"kind": "sphere", "radius": 0})"),
        element(R"("shape": {"kind": "plane", "size": [1, 2, 3]})"),
        element(R"("shape": {"kind": "cone"})"),
        element(R"("shape": {"radius": 1})"),
        element(R"("light": {"kind": "distant", "range": [0, 1]})"),
        element(R"("light": {"cone": [0, 1]})"),
        element(R"("light": {"kind": "spot", "cone": [-1, 1]})"),
        element(R"("camera": {"fieldOfView": 0.5})"),
        shader(R"("class": "Key", "source": "checker")"),
        shader(R"("class": "Rainbow")"),
        shader(R"("fMode": "KEYM")"),
        shader(R"("class": "Key", "fMode": "KEYX")"),
        shader(R"("class": "Key", "countU": 8)"),
        shader(R"("class": "Key", "fRedRange": [1, 2, 3])"),
        shader(R"("class": "Key", "fSubShader": 1)"),
        shader(R"("class": "Super_mixer", "fSubShader[12]": "b")"),
        shader(R"("class": "Super_mixer", "fColorLevel": 5)"),
        shader(R"("class": "Iridescent", "fBands[0]": {"fColour": [0, 0, 1]})"),
        shader(R"("class": "Weave", "fPattern": [true])"),
        shader(R"("source": "checker", "countU": 0)"),
        shader(R"("source": "checker", "countU": 1.5)"),
        shader(R"("source": "ramp", "along": 2)"),
        shader(R"("class": "Key", "fMode": {"keys": [[1, "KEYM"]], "between": "linear"})"),
        shader(R"("source": "value", "value": {"keys": []})"),
        shader(R"("source": "value", "value": {"keys": [[1]]})"),
        shader(R"("source": "value", "value": {"keys": [[1, 2]], "over": "all"})"),
        shader(R"("source": "value", "value": {"keys": [["1", 2]]})"),
        shader(R"("class": {"keys": [[1, "Key"]]})"),
        element(R"("shape": {"kind": "model"})"),
        scene(R"("file": {"scale": 2})"),
        scene(R"("materials": {"Leather": "a"})"),
        element(R"("light": {"kind": {"keys": [[1, "spot"]]}})"),
        scene(R"("shaded": {"name": {"keys": [[1, "b"]]}})"),
    };
    std::string read(files.size(), '1');
    std::vector<std::string> documents = right;
    documents.insert(documents.end(), wrong.begin(), wrong.end());
    for (const std::string& text : documents) {
        files.push_back(fFolder / (std::to_string(files.size()) + ".json"));
        Store(files.back(), text);
        try {
            fernwick::GraphDocument::Parse(text, "");
            read += '1';
        } catch (const fernwick::GraphError&) {
            read += '0';
        }
    }
    EXPECT_EQ(Validate(files), read);
    EXPECT_EQ(read, std::string(files.size() - wrong.size(), '1') + std::string(wrong.size(), '0'));
}

} // namespace
