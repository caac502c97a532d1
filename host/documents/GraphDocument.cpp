#include "host/documents/GraphDocument.h"
#include "host/documents/GraphSequence.h"
#include "host/documents/SceneReader.h"
#include "host/documents/StandInLight.h"
#include "host/json/FieldReader.h"
#include "host/json/Nearest.h"
#include "host/json/Printable.h"
#include "host/parameters/Doubts.h"
#include "host/sources/Sources.h"
#include <algorithm>
#include <fmt/format.h>

namespace fernwick {

namespace {

constexpr size_t kDeepestPlug = 256; // shaders call each other as deep as they are plugged

/// The table that `name` is the name of.
template <class Tables, class TableOf>
const ParameterTable& FindTable(const JsonNode& node, const char* what, const Tables& all, TableOf tableOf)
{
    const std::string name = node.Name();
    std::vector<std::string> known;
    for (const auto& entry : all) {
        if (tableOf(entry).fName == name)
            return tableOf(entry);
        known.push_back(tableOf(entry).fName);
    }
    node.Fail(fmt::format("there is no {} \"{}\"{}", what, name, NearestHint(name, known)));
}

const ParameterTable& ReadTable(const JsonNode& shader)
{
    const auto className = shader.Find("class");
    const auto sourceName = shader.Find("source");
    if (className.has_value() == sourceName.has_value())
        shader.Fail("expected either a \"class\" or a \"source\"");
    if (sourceName)
        return FindTable(*sourceName, "source", AllSources(),
            [](const SourceKind& kind) -> const ParameterTable& { return kind.fTable; });
    return FindTable(*className, "class", AllClasses(),
        [](const ParameterTable& entry) -> const ParameterTable& { return entry; });
}

/// Puts shaders behind those that they plug in.
class Sorter {
public:
    explicit Sorter(const std::vector<DocumentShader>& shaders) : fShaders(shaders), fStates(shaders.size())
    { }

    /// Adds a shader behind everything below it. Throws `GraphError` for a circle.
    void Add(size_t place)
    {
        if (fStates[place] == State::kDone)
            return;
        fPath.push_back(place);
        if (fStates[place] == State::kOpen)
            FailCircle();
        if (fPath.size() > kDeepestPlug)
            throw GraphError(Printable(fmt::format(
                "{}: shaders are plugged more than {} deep", fShaders[place].fName, kDeepestPlug)));
        fStates[place] = State::kOpen;
        for (const size_t below : PluggedIn(fShaders[place]))
            Add(below);
        fStates[place] = State::kDone;
        fPath.pop_back();
        fOrder.push_back(place);
    }

    const std::vector<size_t>& Order() const { return fOrder; }

private:
    enum class State { kNew, kOpen, kDone };

    const std::vector<DocumentShader>& fShaders;
    std::vector<State> fStates;
    std::vector<size_t> fPath;
    std::vector<size_t> fOrder;

    [[noreturn]] void FailCircle() const
    {
        std::string circle;
        const auto start = std::find(fPath.begin(), fPath.end(), fPath.back());
        for (auto place = start; place != fPath.end(); ++place)
            circle += (place == start ? "" : " -> ") + fShaders[*place].fName;
        throw GraphError(Printable(fmt::format(
            "{}: the shaders are plugged in a circle: {}", fShaders[fPath.back()].fName, circle)));
    }
};

/// The shaders in the given order, with the places in their slots moved along.
std::vector<DocumentShader> Reordered(
    const std::vector<DocumentShader>& shaders, const std::vector<size_t>& order)
{
    std::vector<size_t> newPlaces(order.size());
    for (size_t i = 0; i < order.size(); ++i)
        newPlaces[order[i]] = i;
    std::vector<DocumentShader> sorted;
    for (const size_t place : order) {
        DocumentShader& shader = sorted.emplace_back(shaders[place]);
        for (FieldSetting& setting : shader.fSettings)
            if (auto* const plugged = std::get_if<PluggedShader>(&setting.fValue); plugged && plugged->fIndex)
                plugged->fIndex = newPlaces[*plugged->fIndex];
    }
    return sorted;
}

void MakeSource(DocumentShader& shader, DocumentFiles& files)
{
    const SourceKind* const kind = FindSource(shader.fTable->fName);
    if (kind == nullptr || &kind->fTable != shader.fTable)
        return;
    try {
        shader.fSource = files.MakeSource(*kind, shader.fSettings);
    } catch (const SourceError& error) {
        throw GraphError(Printable(fmt::format("{}.{}", shader.fName, error.what())));
    }
}

/// What shaders call the light that they look for.
std::vector<std::string> LightNames(const std::vector<DocumentShader>& shaders)
{
    std::vector<std::string> names;
    for (const DocumentShader& shader : shaders) {
        std::string name;
        for (const FieldSetting& setting : shader.fSettings)
            if (setting.fField->fName == "fLightName")
                name = std::get<std::string>(setting.fValue);
        names.push_back(name);
    }
    return names;
}

} // namespace

std::vector<size_t> PluggedIn(const DocumentShader& shader)
{
    std::map<const Field*, std::optional<size_t>> slots;
    for (const FieldSetting& setting : shader.fSettings)
        if (const auto* const plugged = std::get_if<PluggedShader>(&setting.fValue))
            slots[setting.fField] = plugged->fIndex;
    std::vector<size_t> places;
    for (const auto& [field, place] : slots)
        if (place)
            places.push_back(*place);
    return places;
}

std::string TitleOf(const DocumentShader& shader, const void* record)
{
    std::string title = fmt::format("{} ({}", shader.fName, shader.fTable->fName);
    for (const Field& field : shader.fTable->fFields)
        if (field.fType == FieldType::kString && !field.fName.ends_with(']')) // arrays of texts are labels
            title += fmt::format(", {} {}", field.fName, ValueText(field, ReadField(field, record)));
    return title + ')';
}

GraphDocument GraphDocument::Read(const std::filesystem::path& file)
{
    return GraphSequence(ReadGraphFile(file), file).At(kFirstFrame);
}

GraphDocument GraphDocument::Parse(const std::string& text, const std::filesystem::path& folder)
{
    return GraphSequence(ParseJson(text), "", folder).At(kFirstFrame);
}

GraphDocument GraphDocument::Make(const Json& json, const std::filesystem::path& folder, DocumentFiles& files)
{
    const JsonNode root(json, "");
    root.RequireKeys({"$schema", "shaders", "output", "scene"});
    const auto shaders = root.Find("shaders");
    const auto output = root.Find("output");
    if (!shaders)
        root.Fail("there is no \"shaders\"; a graph needs its \"shaders\" and the name of the \"output\"");
    if (!output)
        root.Fail("there is no \"output\"; a graph needs the name of the shader that is shown");

    ShaderNames names;
    for (const auto& [name, node] : shaders->Members())
        names.emplace(name, names.size());
    if (names.contains(""))
        shaders->Fail("a shader needs a name");

    GraphDocument document;
    std::vector<DocumentShader> read;
    for (const auto& [name, member] : shaders->Members()) {
        const JsonNode node = member.At(name);
        DocumentShader& shader = read.emplace_back();
        shader.fName = name;
        shader.fTable = &ReadTable(node);
        const FieldReader reader(*shader.fTable, names, folder);
        for (const auto& [address, value] : node.Members())
            if (address != "class" && address != "source")
                reader.Read(address, value, shader.fSettings);
        for (const std::string& doubt : FindDoubts(shader.fSettings, shader.fTable->fStandard))
            document.fDoubts.push_back(Printable(fmt::format("{}.{}", name, doubt)));
    }

    Sorter sorter(read);
    sorter.Add(FindShader(*output, names));
    document.fOutputIndex = sorter.Order().size() - 1;
    for (size_t place = 0; place < read.size(); ++place)
        sorter.Add(place);
    document.fShaders = Reordered(read, sorter.Order());
    if (const auto scene = root.Find("scene")) {
        document.fScene = ReadScene(*scene, names, folder, files);
        for (const std::string& shared : FindSharedNames(*document.fScene))
            document.fDoubts.push_back(Printable(shared));
        AddStandInLights(LightNames(document.fShaders), *document.fScene);
    }
    for (DocumentShader& shader : document.fShaders)
        MakeSource(shader, files);
    return document;
}

} // namespace fernwick
