#include "host/SceneReader.h"
#include "host/Nearest.h"
#include <algorithm>
#include <fmt/format.h>

namespace fernwick {

namespace {

void ReadPlace(const JsonNode& node, ElementDescription& element)
{
    if (const auto position = node.Find("position"))
        element.fPosition = position->Vector3();
    if (const auto rotation = node.Find("rotation"))
        element.fRotation = rotation->Vector3();
    if (const auto hotPoint = node.Find("hotPoint"))
        element.fHotPoint = hotPoint->Vector3();
}

std::vector<ElementDescription> ReadElements(const JsonNode& node)
{
    if (!node.IsArray())
        node.Refuse("an array of elements");
    std::vector<ElementDescription> elements;
    for (size_t i = 0; i < node.Count(); ++i) {
        const JsonNode child = node.Element(i);
        child.RequireKeys({"name", "position", "rotation", "hotPoint", "children"});
        const auto name = child.Find("name");
        if (!name)
            child.Fail("an element needs a \"name\"");
        ElementDescription& element = elements.emplace_back();
        element.fName = name->Name();
        ReadPlace(child, element);
        if (const auto children = child.Find("children"))
            element.fChildren = ReadElements(*children);
    }
    return elements;
}

void CollectNames(const std::vector<ElementDescription>& elements, std::vector<std::string>& names)
{
    for (const ElementDescription& element : elements) {
        names.push_back(element.fName);
        CollectNames(element.fChildren, names);
    }
}

std::string ReadCamera(const JsonNode& node, const SceneDescription& scene)
{
    std::vector<std::string> names{scene.fShaded.fName};
    CollectNames(scene.fElements, names);
    const std::string camera = node.Name();
    if (std::find(names.begin(), names.end(), camera) == names.end())
        node.Fail(fmt::format("there is no element \"{}\"{}", camera, NearestHint(camera, names)));
    return camera;
}

} // namespace

SceneDescription ReadScene(const JsonNode& node)
{
    node.RequireKeys({"elements", "shaded", "camera"});
    SceneDescription scene;
    if (const auto elements = node.Find("elements"))
        scene.fElements = ReadElements(*elements);
    if (const auto shaded = node.Find("shaded")) {
        shaded->RequireKeys({"name", "position", "rotation", "hotPoint"});
        if (const auto name = shaded->Find("name"))
            scene.fShaded.fName = name->Name();
        ReadPlace(*shaded, scene.fShaded);
    }
    if (const auto camera = node.Find("camera"))
        scene.fCamera = ReadCamera(*camera, scene);
    return scene;
}

} // namespace fernwick
