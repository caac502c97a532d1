#include "host/documents/HexColor.h"
#include "host/json/FieldReader.h"
#include "host/json/Nearest.h"
#include "host/shading/Answers.h"
#include "host/shading/BakeChannels.h"
#include "host/shading/Description.h"
#include "host/shading/SurfaceLayers.h"
#include "host/shading/Tiles.h"
#include "host/sources/Sources.h"
#include "python/native/LoadedLibrary.h"
#include "python/native/Rooms.h"
#include <array>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace {

using fernwick::Json;

const fernwick::ParameterTable& TableOf(const std::string& name)
{
    if (const fernwick::SourceKind* const source = fernwick::FindSource(name))
        return source->fTable;
    if (const fernwick::ParameterTable* const table = fernwick::FindClass(name))
        return *table;
    throw py::key_error(name);
}

std::string Describe(const std::string& name)
{
    const fernwick::ParameterTable& table = TableOf(name);
    const fernwick::Library* const library = LibraryOrNull();
    if (library == nullptr || fernwick::FindSource(name) != nullptr)
        return DescriptionOf(table, nullptr).dump();
    const auto lock = fernwick::LockGraphs();
    return DescriptionOf(table, MakeSpecimen(*library, table).Get()).dump();
}

Json JsonOf(const std::vector<fernwick::Row>& rows)
{
    Json json = Json::array();
    for (const fernwick::Row& row : rows) {
        Json entry = {{"name", row.fField.fName}, {"counts", row.fCounts}, {"field", EntryOf(row.fField)}};
        if (!row.fRows.empty())
            entry["rows"] = JsonOf(row.fRows);
        json.push_back(std::move(entry));
    }
    return json;
}

Json ParseValue(const std::string& address, const std::string& json)
{
    try {
        return fernwick::ParseJson(json);
    } catch (const fernwick::GraphError& error) {
        throw fernwick::GraphError(address + ": " + error.what());
    }
}

void CheckField(const std::string& name, const std::string& address, const std::string& json,
    const std::vector<std::string>& shaders)
{
    const fernwick::ParameterTable& table = TableOf(name);
    const Json value = ParseValue(address, json);
    fernwick::ShaderNames names;
    for (const std::string& shader : shaders)
        names.emplace(shader, names.size());
    const std::filesystem::path folder;
    std::vector<fernwick::FieldSetting> settings;
    fernwick::FieldReader(table, names, folder).Read(address, fernwick::JsonNode(value, address), settings);
}

std::map<std::string, std::vector<std::string>> Operations()
{
    std::map<std::string, std::vector<std::string>> operations;
    for (const fernwick::ShadingOperation& operation : fernwick::ShadingOperations())
        operations[std::string(operation.fName)].assign(operation.fNumbers.begin(), operation.fNumbers.end());
    return operations;
}

std::optional<std::array<float, 4>> HexColor(const std::string& text)
{
    const auto color = fernwick::ReadHexColor(text);
    if (!color)
        return std::nullopt;
    return std::array{color->fRed, color->fGreen, color->fBlue, color->fAlpha};
}

template <class Rows, class NameOf> std::vector<std::string> Names(const Rows& rows, const NameOf& nameOf)
{
    std::vector<std::string> names;
    for (const auto& row : rows)
        names.emplace_back(nameOf(row));
    return names;
}

} // namespace

void AddTables(py::module_& module)
{
    module.def("class_names",
        [] { return Names(fernwick::AllClasses(), [](const auto& table) { return table.fName; }); });
    module.def("source_names", &fernwick::SourceNames);
    module.def("describe", &Describe, py::arg("name"));
    module.def(
        "layout", [](const std::string& name) { return JsonOf(TableOf(name).fRows).dump(); },
        py::arg("name"));
    module.def("check_field", &CheckField, py::arg("table"), py::arg("address"), py::arg("json"),
        py::arg("shaders"));
    module.def("channel_names",
        [] { return Names(fernwick::BakeChannels(), [](const auto& channel) { return channel.name; }); });
    module.def(
        "has_ground",
        [](const std::string& channel) {
            const auto found = fernwick::FindBakeChannel(channel);
            return found && HasGround(*found);
        },
        py::arg("channel"));
    module.def("layer_groups", &fernwick::SurfaceLayerGroups);
    module.def(
        "layers",
        [](const std::vector<std::string>& groups) {
            return Names(fernwick::SurfaceLayersOf(groups), [](const auto& layer) { return layer.fName; });
        },
        py::arg("groups"));
    module.def("operations", &Operations);
    module.def("hex_color", &HexColor, py::arg("text"));
    module.def("nearest_hint", &fernwick::NearestHint, py::arg("name"), py::arg("known"));
}
