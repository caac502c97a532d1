#include "tools/pictures/ShadeDocument.h"
#include "host/documents/SettingText.h"
#include "host/documents/ShapeScene.h"
#include "host/sources/Sources.h"
#include "tools/Names.h"
#include "tools/Outcome.h"
#include "tools/Tell.h"
#include <algorithm>
#include <filesystem>
#include <fmt/format.h>

namespace {

using fernwick::Json;

/// A field that names an element of the scene, and which one it names unless told otherwise.
struct ElementName {
    std::string_view className;
    const char* field;
    const char* element;
};

constexpr ElementName kElementNames[] = {
    {"Lit", "fLightName", "Lamp"},
    {"Translucent", "fLightName", "Lamp"},
    {"Translucent", "fCameraName", "Camera"},
    {"Proximity", "fTargetName", "Target"},
    {"Coordinate_Shift", "fObjectName", "Target"},
    {"Iridescent", "fObjectName", "Target"},
    {"Curvature", "fObjectName", "Target"},
    {"Curvature", "fSurfaceName", "Shape"},
};

/// All of a model, as wide as the others.
Json ModelOf(const std::string& file)
{
    constexpr double kRadius = 2.4;
    return {{"shape",
        {{"kind", "model"}, {"file", std::filesystem::absolute(file).string()}, {"radius", kRadius}}}};
}

Json SceneOf(const std::string& shape, bool isLit)
{
    const fernwick::NamedShape* const named = fernwick::FindShadeShape(shape);
    return fernwick::ShapeScene(named != nullptr ? Json::parse(named->element) : ModelOf(shape),
        shape == fernwick::kUVSquareShape, isLit);
}

void ReadSets(const ShadeSettings& settings, const fernwick::ParameterTable& table, Json& shader)
{
    fernwick::Repetitions repetitions(Tell);
    for (const std::string& text : settings.sets) {
        const fernwick::Assignment set = fernwick::Split(text, "--set", "fCount=8");
        if (set.field == "class" || set.field == "source")
            throw UsageError(fmt::format("{}.{}: {} has no such field", table.fName, set.field, table.fName));
        RequireOption(table, set.field, false, table.fName);
        repetitions.Add("--set", table.fName + '.' + set.field);
        fernwick::Put(shader, set.field, ValueOf(table, set, table.fName));
    }
}

/// @param shaders  gets what is plugged
void ReadPlugs(
    const ShadeSettings& settings, const fernwick::ParameterTable& table, Json& shader, Json& shaders)
{
    fernwick::Repetitions repetitions(Tell);
    for (const std::string& text : settings.plugs) {
        const fernwick::Assignment plug = fernwick::Split(text, "--plug", "fSubShader=checker");
        RequireOption(table, plug.field, true, table.fName);
        repetitions.Add("--plug", table.fName + '.' + plug.field);
        const std::string plugged = settings.name + '.' + plug.field;
        shaders[plugged] = fernwick::SourceOf(plug.value, "--plug", plugged);
        const size_t count = CountSlots(table, plug.field);
        fernwick::Put(shader, plug.field, count > 0 ? Json(std::vector(count, plugged)) : Json(plugged));
    }
}

Json DocumentOf(const ShadeSettings& settings)
{
    const fernwick::ParameterTable& table = RequireTable(settings.name);
    const bool isSource = fernwick::FindSource(settings.name) != nullptr;
    Json shader = {{isSource ? "source" : "class", settings.name}};
    for (const ElementName& row : kElementNames)
        if (row.className == settings.name)
            shader[row.field] = row.element;
    Json shaders = Json::object();
    ReadSets(settings, table, shader);
    ReadPlugs(settings, table, shader, shaders);
    shaders[settings.name] = std::move(shader);
    return {
        {"shaders", shaders}, {"output", settings.name}, {"scene", SceneOf(settings.shape, settings.isLit)}};
}

} // namespace

fernwick::GraphDocument MakeShadeDocument(const ShadeSettings& settings)
{
    try {
        return fernwick::GraphDocument::Parse(DocumentOf(settings).dump(), "");
    } catch (const fernwick::GraphError& error) {
        const std::string text = error.what();
        if (text.starts_with("scene.")) // only the model of --on can fail there
            throw fernwick::GraphError("--on" + text.substr(text.find(": ")));
        throw UsageError(text);
    } catch (const Json::exception&) {
        throw UsageError("--set, --plug: a text isn't UTF-8");
    }
}
