#include "tools/ShadeDocument.h"
#include "host/documents/HexColor.h"
#include "host/json/JsonNode.h"
#include "host/json/Nearest.h"
#include "host/sources/Sources.h"
#include "tools/Commands.h"
#include "tools/Names.h"
#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <optional>

namespace {

using fernwick::Json;

struct Assignment {
    std::string field;
    std::string value;
};

Assignment Split(const std::string& text, const char* option, const char* example)
{
    const size_t sign = text.find('=');
    if (sign == std::string::npos || sign == 0)
        throw UsageError(
            fmt::format("{}: \"{}\" has no field and value; it is like {}", option, text, example));
    return {text.substr(0, sign), text.substr(sign + 1)};
}

/// `#ff8800`, `#f80` or `1,0.5,0` as the numbers of a colour, else the text as it is. Throws `UsageError` for any
/// other text that begins as a colour of the web, and for an alpha that isn't wanted.
/// @param channels  3, or 4 with alpha
Json ColorOf(const std::string& text, size_t channels, const std::string& place)
{
    const bool isHex = text.starts_with('#');
    const auto color = fernwick::ReadHexColor(text);
    if (isHex && !color)
        throw UsageError(
            fmt::format("{}: \"{}\" is no colour; a colour is like #ff8800, #f80 or 1,0.5,0", place, text));
    const bool hasAlpha
        = isHex && (text.size() == std::size("#rgba") - 1 || text.size() == std::size("#rrggbbaa") - 1);
    if (hasAlpha && channels < 4)
        throw UsageError(fmt::format("{}: this colour has no alpha; leave it out of \"{}\"", place, text));
    if (color) {
        Json numbers = {color->fRed, color->fGreen, color->fBlue};
        if (channels > 3)
            numbers.push_back(color->fAlpha);
        return numbers;
    }
    const std::string list = '[' + text + ']';
    return Json::accept(list) ? Json::parse(list) : Json(text);
}

/// A value as JSON, else the text as it is: `true`, `[0, 1]`, `KEYM`. What a label of a choice or a text looks like,
/// such as `12`, is a text for a field of those.
/// @param shader  what texts call the shader whose field is set
Json ValueOf(const fernwick::ParameterTable& table, const Assignment& set, const std::string& shader)
{
    using fernwick::FieldType;
    const fernwick::Field* const field = table.Find(set.field);
    const FieldType type = field != nullptr ? field->fType : FieldType::kFloat;
    if ((type == FieldType::kRGB || type == FieldType::kRGBA) && !Json::accept(set.value))
        return ColorOf(set.value, type == FieldType::kRGB ? 3 : 4, shader + '.' + set.field);
    const bool isLabel = field != nullptr
        && std::any_of(field->fChoices.begin(), field->fChoices.end(),
            [&set](const fernwick::Choice& choice) { return choice.fLabel == set.value; });
    if (isLabel || !Json::accept(set.value))
        return set.value;
    Json value = fernwick::ParseJson(set.value);
    const bool holdsText = type == FieldType::kString || type == FieldType::kFile;
    return holdsText && !value.is_string() ? Json(set.value) : value;
}

/// Puts a member behind all others: of settings of the same field, the later one counts.
void Put(Json& object, const std::string& key, Json value)
{
    object.erase(key);
    object[key] = std::move(value);
}

/// The setting of a kind of source that is given behind a colon.
struct Argument {
    std::string_view source;
    const char* field;
};

constexpr Argument kArguments[] = {
    {"color", "color"},
    {"value", "value"},
    {"picture", "file"},
    {"ramp", "along"},
    {"gradient", "along"},
};

/// Takes a choice such as `:linear` off the end of a picture's name, unless there is a file of the whole name.
std::optional<std::string> TakeEncoding(const fernwick::Field& encoding, std::string& name)
{
    std::error_code ignored;
    for (const fernwick::Choice& choice : encoding.fChoices)
        if (name.ends_with(':' + choice.fLabel) && !std::filesystem::exists(name, ignored)) {
            name.resize(name.size() - choice.fLabel.size() - 1);
            return choice.fLabel;
        }
    return std::nullopt;
}

/// The source that a text such as `checker`, `ramp:v` or `color:#ff8800` describes.
/// @param shader  what texts call it
Json SourceOf(const std::string& text, const char* option, const std::string& shader)
{
    const size_t colon = text.find(':');
    const std::string name = text.substr(0, colon);
    Json source = {{"source", name}};
    const fernwick::SourceKind* const kind = fernwick::FindSource(name);
    if (colon == std::string::npos || kind == nullptr)
        return source;
    const auto argument = std::find_if(std::begin(kArguments), std::end(kArguments),
        [&name](const Argument& candidate) { return candidate.source == name; });
    if (argument == std::end(kArguments))
        throw UsageError(fmt::format("{}: {} takes nothing behind a colon", option, name));
    std::string value = text.substr(colon + 1);
    if (const fernwick::Field* const encoding = kind->fTable.Find("encoding"))
        if (const auto label = TakeEncoding(*encoding, value))
            source["encoding"] = *label;
    source[argument->field] = ValueOf(kind->fTable, {argument->field, value}, shader);
    return source;
}

bool IsSlot(const fernwick::Field& field) { return field.fType == fernwick::FieldType::kShader; }

/// How many slots an array of this name has; 0 when there is none.
size_t CountSlots(const fernwick::ParameterTable& table, const std::string& name)
{
    return static_cast<size_t>(
        std::count_if(table.fFields.begin(), table.fFields.end(), [&name](const fernwick::Field& field) {
            return IsSlot(field) && field.fName.starts_with(name + '[');
        }));
}

/// Sends what `--set` and `--plug` take for each other to the right one. Unknown fields pass.
void RequireOption(const fernwick::ParameterTable& table, const std::string& name, bool isPlug)
{
    const fernwick::Field* const field = table.Find(name);
    const std::string taken = table.AddressText(name);
    if (isPlug && !taken.empty() && (field == nullptr || !IsSlot(*field)) && CountSlots(table, name) == 0)
        throw UsageError(fmt::format("--plug: {}.{} takes {}; give it with --set", table.fName, name, taken));
    if (!isPlug && ((field != nullptr && IsSlot(*field)) || CountSlots(table, name) > 0))
        throw UsageError(fmt::format("--set: {}.{} takes a shader; give it with --plug", table.fName, name));
}

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

/// A shape as scenes describe it, turned so that it shows well. `Curvature` looks for a surface within a length of 1,
/// so that shapes are some units wide.
struct NamedShape {
    const char* name;
    const char* element;
};

/// The plane of the UV square is what is shaded, for rays to hit.
constexpr NamedShape kShapes[] = {
    {kUVSquareShape, R"({"shape": {"kind": "plane", "size": [1, 1]}})"},
    {"sphere", R"({"rotation": [18, 0, 0], "shape": {"kind": "sphere", "radius": 2.1}})"},
    {"torus", R"({"rotation": [-38, 0, 0], "shape": {"kind": "torus", "radius": 1.7, "tube": 0.8}})"},
    {"plane", R"({"rotation": [-35, 0, 0], "shape": {"kind": "plane", "size": [4, 4]}})"},
    {"box", R"({"rotation": [28, 36, 0], "shape": {"kind": "box", "size": [2.8, 2.8, 2.8]}})"},
    {"saddle", R"({"rotation": [-42, 25, 0], "shape": {"kind": "saddle", "size": 3.6, "height": 1.2}})"},
};

/// Shape, light, target and camera around the middle of the UV square, or four times as large around the origin.
Json SceneOf(const std::string& shape, bool isLit)
{
    const bool isSquare = shape == kUVSquareShape;
    const double scale = isSquare ? 1 : 4;
    const double middle = isSquare ? 0.5 : 0;
    const auto element = [&](Json description, const char* name, double x, double y, double z) {
        description["name"] = name;
        description["position"] = {middle + scale * x, middle + scale * y, scale * z};
        return description;
    };
    const Json light = {{"kind", "point"}, {"range", {0.8 * scale, 2.5 * scale}}};
    Json elements = Json::array({element({{"light", light}}, "Lamp", -0.8, 0.8, 0.8),
        element(Json::object(), "Target", 0.5, 0.5, 0.3),
        element({{"camera", {{"fieldOfView", 38}}}}, "Camera", 0, 0, 2)});
    for (const NamedShape& row : kShapes)
        if (row.name == shape)
            elements.push_back(element(Json::parse(row.element), "Shape", 0, 0, 0));
    elements.back()["shading"] = isLit ? "lit" : "plain";
    return {{"elements", elements}, {"camera", "Camera"}, {"background", {0.05, 0.06, 0.08}}};
}

void ReadSets(const ShadeSettings& settings, const fernwick::ParameterTable& table, Json& shader)
{
    for (const std::string& text : settings.sets) {
        const Assignment set = Split(text, "--set", "fCount=8");
        if (set.field == "class" || set.field == "source")
            throw UsageError(fmt::format("{}.{}: {} has no such field", table.fName, set.field, table.fName));
        RequireOption(table, set.field, false);
        Put(shader, set.field, ValueOf(table, set, table.fName));
    }
}

/// @param shaders  gets what is plugged
void ReadPlugs(
    const ShadeSettings& settings, const fernwick::ParameterTable& table, Json& shader, Json& shaders)
{
    for (const std::string& text : settings.plugs) {
        const Assignment plug = Split(text, "--plug", "fSubShader=checker");
        RequireOption(table, plug.field, true);
        const std::string plugged = settings.name + '.' + plug.field;
        shaders[plugged] = SourceOf(plug.value, "--plug", plugged);
        const size_t count = CountSlots(table, plug.field);
        Put(shader, plug.field, count > 0 ? Json(std::vector(count, plugged)) : Json(plugged));
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

const std::vector<std::string>& ShadeShapes()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        for (const NamedShape& row : kShapes)
            all.emplace_back(row.name);
        return all;
    }();
    return names;
}

fernwick::GraphDocument MakeShadeDocument(const ShadeSettings& settings)
{
    try {
        return fernwick::GraphDocument::Parse(DocumentOf(settings).dump(), "");
    } catch (const fernwick::GraphError& error) {
        throw UsageError(error.what());
    } catch (const Json::exception&) {
        throw UsageError("--set, --plug: a text isn't UTF-8");
    }
}

fernwick::GraphDocument MakeGroundDocument(const std::string& over)
{
    const std::string source = over.substr(0, over.find(':'));
    if (fernwick::FindSource(source) == nullptr) {
        const std::string hint = fernwick::NearestHint(source, SourceNames());
        std::error_code ignored;
        if (!hint.empty() && !std::filesystem::exists(over, ignored))
            throw fernwick::GraphError(
                fmt::format("--over: there is no source or file \"{}\"{}", over, hint));
        try {
            return fernwick::GraphDocument::Read(over);
        } catch (const fernwick::GraphError& error) {
            if (over.ends_with(".json"))
                throw;
            throw fernwick::GraphError(
                fmt::format("{}; a picture is given as picture:{}", error.what(), over));
        }
    }
    const std::string name = "--over";
    const Json document = {{"shaders", {{name, SourceOf(over, "--over", name)}}}, {"output", name}};
    try {
        return fernwick::GraphDocument::Parse(document.dump(), "");
    } catch (const fernwick::GraphError& error) {
        throw UsageError(error.what());
    } catch (const Json::exception&) {
        throw UsageError("--over: the text isn't UTF-8");
    }
}
