#include "host/documents/GraphDocument.h"
#include "host/documents/SceneFile.h"
#include "host/documents/SceneSummary.h"
#include "host/json/Printable.h"
#include "tools/PictureCommands.h"
#include "tools/Tell.h"
#include <fmt/format.h>

namespace {

using fernwick::Json;

fernwick::SceneDescription ReadFile(const std::string& file)
{
    if (file.ends_with(".json")) {
        const auto document = fernwick::GraphDocument::Read(file);
        if (!document.Scene())
            throw fernwick::GraphError(file + ": the document has no \"scene\"");
        return *document.Scene();
    }
    fernwick::SceneFile model = fernwick::ReadSceneFile(file);
    fernwick::SceneDescription scene;
    scene.fElements = std::move(model.fElements);
    scene.fNotices = std::move(model.fNotices);
    return scene;
}

/// A number with as few digits as read back the same.
std::string Text(float number) { return fmt::format("{}", number); }

template <class Vector> std::string Text(const Vector& vector, uint32_t count)
{
    std::string text;
    for (uint32_t i = 0; i < count; ++i)
        text += (i == 0 ? "" : ", ") + Text(vector[i]);
    return text;
}

std::string Text(const fernwick::UVRange& range)
{
    return fmt::format("({}) to ({})", Text(range.fMin, 2), Text(range.fMax, 2));
}

std::string Text(const TBBox3D& box)
{
    return fmt::format("({}) to ({})", Text(box.fMin, 3), Text(box.fMax, 3));
}

const char* KindOf(const fernwick::LightDescription& light)
{
    switch (light.fKind) {
    case fernwick::LightKind::kPoint:
        return "point";
    case fernwick::LightKind::kSpot:
        return "spot";
    case fernwick::LightKind::kDistant:
        break;
    }
    return "distant";
}

bool HasRange(const fernwick::LightDescription& light)
{
    return light.fKind != fernwick::LightKind::kDistant
        && light.fFarRange < fernwick::LightDescription::kEverywhere;
}

std::string Count(size_t count, const char* one, const char* more)
{
    return fmt::format("{} {}", count, count == 1 ? one : more);
}

std::string TextOf(const fernwick::LightDescription& light)
{
    const TVector3 color = {light.fColor.fRed, light.fColor.fGreen, light.fColor.fBlue};
    std::string text = fmt::format(
        "{} light, colour {}, brightness {}", KindOf(light), Text(color, 3), Text(light.fBrightness));
    if (HasRange(light))
        text += fmt::format(", range {} to {}", Text(light.fNearRange), Text(light.fFarRange));
    if (light.fKind == fernwick::LightKind::kSpot)
        text += fmt::format(", cone {} to {} degrees", Text(light.fInnerAngle), Text(light.fOuterAngle));
    return text;
}

std::vector<std::string> FactsOf(const fernwick::ElementSummary& summary)
{
    const fernwick::ElementDescription& element = *summary.fElement;
    std::vector<std::string> facts;
    if (summary.fTriangles > 0)
        facts.push_back(Count(summary.fTriangles, "triangle", "triangles") + ", "
            + Count(summary.fVertices, "vertex", "vertices"));
    else if (element.fGeometry != nullptr)
        facts.emplace_back("a shape with exact curvature");
    for (size_t i = 0; i < summary.fUVSets.size(); ++i)
        facts.push_back(fmt::format(
            "UV{} {}", summary.fUVSets.size() > 1 ? fmt::format(" {}", i) : "", Text(summary.fUVSets[i])));
    if (summary.fTriangles > 0 && summary.fUVSets.empty())
        facts.emplace_back("no UV");
    if (!element.fMaterials.empty())
        facts.push_back(fmt::format("{} {}", element.fMaterials.size() == 1 ? "material" : "materials",
            fmt::join(element.fMaterials, ", ")));
    if (summary.fBox)
        facts.push_back("box " + Text(*summary.fBox));
    else
        facts.push_back(fmt::format("at ({})", Text(summary.fPosition, 3)));
    if (element.fLight)
        facts.push_back(TextOf(*element.fLight));
    if (element.fCamera)
        facts.push_back(fmt::format("camera, field of view {} degrees", Text(element.fCamera->fFieldOfView)));
    if (element.fLook.fShader)
        facts.push_back("shader " + *element.fLook.fShader);
    if (element.fLook.fLit)
        facts.emplace_back(*element.fLook.fLit ? "lit" : "plain");
    return facts;
}

size_t CountOf(const fernwick::SceneSummary& summary, bool (*counts)(const fernwick::ElementSummary&))
{
    return static_cast<size_t>(std::count_if(summary.fElements.begin(), summary.fElements.end(), counts));
}

void PrintText(const std::string& file, const fernwick::SceneSummary& summary)
{
    using Summary = fernwick::ElementSummary;
    size_t triangles = 0;
    size_t widest = 0;
    for (const Summary& element : summary.fElements) {
        triangles += element.fTriangles;
        widest = std::max(widest, 2 * element.fDepth + fernwick::Printable(element.fElement->fName).size());
    }
    const size_t shapes
        = CountOf(summary, [](const Summary& element) { return element.fElement->fGeometry != nullptr; });
    const size_t lights
        = CountOf(summary, [](const Summary& element) { return element.fElement->fLight.has_value(); });
    const size_t cameras
        = CountOf(summary, [](const Summary& element) { return element.fElement->fCamera.has_value(); });
    fmt::print("{}: {}, {}, {}, {}, {}\n", fernwick::Printable(file),
        Count(summary.fElements.size(), "element", "elements"), Count(shapes, "shape", "shapes"),
        Count(triangles, "triangle", "triangles"), Count(lights, "light", "lights"),
        Count(cameras, "camera", "cameras"));
    if (summary.fBox)
        fmt::print("Box {}\n", Text(*summary.fBox));
    fmt::print("\n");
    constexpr size_t kLongestName = 32;
    for (const Summary& element : summary.fElements) {
        const std::string name = std::string(2 * element.fDepth, ' ') + element.fElement->fName;
        fmt::print("{}\n",
            fernwick::Printable(fmt::format(
                "{:<{}}  {}", name, std::min(widest, kLongestName), fmt::join(FactsOf(element), "; "))));
    }
}

/// A number as the command prints it.
Json Number(float number) { return Json::parse(Text(number), nullptr, false); }

template <class Vector> Json Numbers(const Vector& vector, uint32_t count)
{
    Json numbers = Json::array();
    for (uint32_t i = 0; i < count; ++i)
        numbers.push_back(Number(vector[i]));
    return numbers;
}

Json JsonOf(const TBBox3D& box) { return {{"min", Numbers(box.fMin, 3)}, {"max", Numbers(box.fMax, 3)}}; }

Json JsonOf(const fernwick::LightDescription& light)
{
    const TVector3 color = {light.fColor.fRed, light.fColor.fGreen, light.fColor.fBlue};
    Json json
        = {{"kind", KindOf(light)}, {"color", Numbers(color, 3)}, {"brightness", Number(light.fBrightness)}};
    if (HasRange(light))
        json["range"] = {Number(light.fNearRange), Number(light.fFarRange)};
    if (light.fKind == fernwick::LightKind::kSpot)
        json["cone"] = {Number(light.fInnerAngle), Number(light.fOuterAngle)};
    return json;
}

Json ShapeOf(const fernwick::ElementSummary& summary)
{
    Json shape = Json::object();
    if (summary.fTriangles > 0) {
        shape["triangles"] = summary.fTriangles;
        shape["vertices"] = summary.fVertices;
        shape["uvSets"] = Json::array();
        for (const fernwick::UVRange& range : summary.fUVSets)
            shape["uvSets"].push_back({{"min", Numbers(range.fMin, 2)}, {"max", Numbers(range.fMax, 2)}});
        shape["materials"] = summary.fElement->fMaterials;
    }
    return shape;
}

Json JsonOf(const fernwick::ElementSummary& summary)
{
    const fernwick::ElementDescription& element = *summary.fElement;
    Json json = {{"name", element.fName}, {"position", Numbers(summary.fPosition, 3)}};
    if (summary.fBox)
        json["box"] = JsonOf(*summary.fBox);
    if (element.fGeometry != nullptr)
        json["shape"] = ShapeOf(summary);
    if (element.fLight)
        json["light"] = JsonOf(*element.fLight);
    if (element.fCamera)
        json["camera"] = {{"fieldOfView", Number(element.fCamera->fFieldOfView)}};
    if (element.fLook.fShader)
        json["shader"] = *element.fLook.fShader;
    if (element.fLook.fLit)
        json["shading"] = *element.fLook.fLit ? "lit" : "plain";
    json["children"] = Json::array();
    return json;
}

/// The elements from `next` on that lie at a depth, each with what is below it.
Json TreeOf(const std::vector<fernwick::ElementSummary>& elements, size_t depth, size_t& next)
{
    Json tree = Json::array();
    while (next < elements.size() && elements[next].fDepth == depth) {
        Json element = JsonOf(elements[next++]);
        element["children"] = TreeOf(elements, depth + 1, next);
        tree.push_back(std::move(element));
    }
    return tree;
}

void PrintJson(const fernwick::SceneDescription& scene, const fernwick::SceneSummary& summary)
{
    size_t next = 0;
    Json json = {{"elements", TreeOf(summary.fElements, 0, next)}, {"notices", scene.fNotices}};
    if (summary.fBox)
        json["box"] = JsonOf(*summary.fBox);
    if (!scene.fCamera.empty())
        json["camera"] = scene.fCamera;
    fmt::print("{}\n", json.dump(2, ' ', false, Json::error_handler_t::replace));
}

} // namespace

void RunScene(const SceneOptions& options)
{
    const fernwick::SceneDescription scene = ReadFile(options.file);
    const fernwick::SceneSummary summary = fernwick::Summarize(scene);
    if (options.asJson) {
        PrintJson(scene, summary);
        return;
    }
    PrintText(options.file, summary);
    for (const std::string& notice : scene.fNotices)
        Tell(notice);
}
