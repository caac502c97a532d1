#include "host/documents/GraphSettings.h"
#include "host/documents/GraphSequence.h"
#include "host/json/FieldReader.h"
#include "host/json/Nearest.h"
#include <filesystem>
#include <fmt/format.h>
#include <optional>

namespace fernwick {

namespace {

/// A field that the command line gives, and whose it is.
struct Target {
    std::string shader;
    std::string field;

    std::string Name() const { return shader + '.' + field; }
};

/// What one option gives.
struct Given {
    Target target;
    const ParameterTable& table; ///< of the shader
    std::string value;
};

/// A relative name of a file starts at the current folder, where the shell completes it.
void MakeAbsolute(Json& file)
{
    if (file.is_string() && !file.get_ref<const std::string&>().empty())
        file = std::filesystem::absolute(file.get<std::string>()).string();
}

/// Takes settings into the shaders of a document.
class Setter {
public:
    Setter(Json& shaders, std::string output, const TellSlip& tell)
        : fShaders(shaders), fOutput(std::move(output)), fRepetitions(tell)
    { }

    void Plug(const std::string& text)
    {
        const auto given = Read(text, "--plug", "drop.fSubShader=checker", true);
        if (!given)
            return;
        const auto& [target, table, value] = *given;
        Json plugged = value;
        if (!value.empty() && !fShaders.contains(value)) {
            plugged = NewName(target.Name());
            Json source = SourceOf(value, "--plug", target.Name());
            if (source.contains("file"))
                MakeAbsolute(source["file"]);
            fShaders[plugged.get<std::string>()] = std::move(source);
        }
        const size_t count = CountSlots(table, target.field);
        Store("--plug", table, target, count > 0 ? Json(std::vector(count, plugged)) : plugged);
    }

    void Set(const std::string& text)
    {
        const auto given = Read(text, "--set", "drop.fCount=8", false);
        if (!given)
            return;
        const auto& [target, table, written] = *given;
        Json value = ValueOf(table, {target.field, written}, "--set " + target.shader);
        if (const Field* const field = table.Find(target.field);
            field != nullptr && field->fType == FieldType::kFile)
            MakeAbsolute(value);
        Store("--set", table, target, std::move(value));
    }

private:
    Json& fShaders;
    std::string fOutput;
    Repetitions fRepetitions;

    /// @return nothing for a shader whose description isn't right, which whoever reads the document refuses
    std::optional<Given> Read(const std::string& text, const char* option, const char* example, bool isPlug)
    {
        auto [address, value] = Split(text, option, example);
        Target target = FindTarget(address, option);
        const ParameterTable* const table = TableOf(fShaders[target.shader]);
        if (table == nullptr)
            return std::nullopt;
        RequireOption(*table, target.field, isPlug, target.shader);
        fRepetitions.Add(option, target.Name());
        return Given{std::move(target), *table, std::move(value)};
    }

    Target FindTarget(const std::string& address, const char* option) const
    {
        std::string found;
        std::vector<std::string> names;
        for (const auto& [name, shader] : fShaders.items()) {
            names.push_back(name);
            if (address.starts_with(name + '.') && name.size() >= found.size())
                found = name;
        }
        if (!found.empty())
            return {found, address.substr(found.size() + 1)};
        const size_t dot = address.find('.');
        const ParameterTable* const table = TableOf(fShaders[fOutput]);
        const bool isOutputs
            = table != nullptr && !table->AddressText(address.substr(0, address.find_first_of(".["))).empty();
        if (dot == std::string::npos || isOutputs)
            return {fOutput, address};
        const std::string name = address.substr(0, dot);
        throw SettingError(
            fmt::format("{}: there is no shader \"{}\"{}", option, name, NearestHint(name, names)));
    }

    /// A name that no shader has.
    std::string NewName(std::string name) const
    {
        while (fShaders.contains(name))
            name += '+';
        return name;
    }

    /// Stores what the field can take, and throws for what it can't.
    void Store(const char* option, const ParameterTable& table, const Target& target, Json value)
    {
        ShaderNames names;
        for (const auto& [name, shader] : fShaders.items())
            names.emplace(name, names.size());
        const std::filesystem::path nowhere;
        const Json first = AtFirstFrame(table, target.field, value);
        const JsonNode node(first, fmt::format("{} {}", option, target.Name()));
        std::vector<FieldSetting> ignored;
        FieldReader(table, names, nowhere).Read(target.field, node, ignored);
        Put(fShaders[target.shader], target.field, std::move(value));
    }

    /// What a value that may be keyed is at first.
    static Json AtFirstFrame(const ParameterTable& table, const std::string& field, const Json& value)
    {
        const char* const sort = FindSource(table.fName) != nullptr ? "source" : "class";
        const std::string given = "--set";
        Json document = {{"shaders", {{given, {{sort, table.fName}, {field, value}}}}}};
        Keys(document).Store(kFirstFrame);
        return document["shaders"][given][field];
    }
};

} // namespace

void Apply(const GraphSettings& settings, Json& document, const TellSlip& tell)
{
    if (!document.is_object() || !document.contains("shaders") || !document.contains("output"))
        return;
    Json& shaders = document["shaders"];
    const Json& output = document["output"];
    if (!shaders.is_object() || !output.is_string() || !shaders.contains(output.get<std::string>()))
        return;
    try {
        Setter setter(shaders, output.get<std::string>(), tell);
        for (const std::string& plug : settings.plugs)
            setter.Plug(plug);
        for (const std::string& set : settings.sets)
            setter.Set(set);
    } catch (const GraphError& error) {
        throw SettingError(error.what());
    } catch (const Json::exception&) {
        throw SettingError("--set, --plug: a text isn't UTF-8");
    }
}

} // namespace fernwick
