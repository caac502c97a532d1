#include "host/json/JsonNode.h"
#include "host/library/Library.h"
#include "host/parameters/FieldValue.h"
#include "host/shading/MakeShader.h"
#include "host/sources/Sources.h"
#include "tools/Commands.h"
#include "tools/FieldTable.h"
#include "tools/Kinds.h"
#include "tools/LibraryOption.h"
#include "tools/Names.h"
#include "tools/ReportSummary.h"
#include "tools/Wrap.h"
#include <fmt/core.h>

namespace {

using fernwick::Json;

struct DescribeOptions {
    std::string name;
    bool asJson = false;
    std::string library;
};

/// All that is told of a class or source.
struct Description {
    const fernwick::ParameterTable& table;
    bool isSource = false;
    std::optional<std::vector<std::string>> needs = {}; ///< of a class that can be made
    std::vector<FieldLine> lines = {};
    std::vector<std::string> defaults = {}; ///< of each field, as documents have it; empty for none to read
};

/// @param record  a fresh one; null when there is none
void AddFields(const void* record, Description& description)
{
    description.lines = FieldLines(description.table, record);
    if (record != nullptr)
        for (const fernwick::Field& field : description.table.fFields)
            description.defaults.push_back(fernwick::ValueText(field, fernwick::ReadField(field, record)));
}

/// Makes an object of the class. Null for a class without a route where the module that makes it isn't there, as in an
/// installed tree.
MCCountedPtr<fernwick::ShaderWrapper> Specimen(
    const fernwick::Library& library, const fernwick::ParameterTable& table)
{
    try {
        auto shader = fernwick::MakeShader(library, table);
        if (!shader)
            throw fernwick::LibraryError(library.Path().string() + ": doesn't make the class " + table.fName);
        return shader;
    } catch (const fernwick::LibraryError&) {
        if (!table.fClassIDs.empty())
            throw;
        return {};
    }
}

Description Describe(const DescribeOptions& options)
{
    Description description = {RequireTable(options.name)};
    if (const fernwick::SourceKind* const source = fernwick::FindSource(options.name)) {
        RequireNamedLibrary(options.library);
        description.isSource = true;
        AddFields(source->fDefaults, description);
        return description;
    }
    fernwick::Library library(FindLibrary(options.library));
    const ReportSummary reports(library.HostUtilities().Debug());
    const auto shader = Specimen(library, description.table);
    if (shader) {
        ShadingFlags flags;
        shader->GetShadingFlags(flags);
        description.needs = NeedNames(flags);
    }
    AddFields(shader ? shader->Exchanger().GetExtensionDataBuffer() : nullptr, description);
    return description;
}

void PrintText(const Description& description)
{
    const fernwick::ParameterTable& table = description.table;
    fmt::print("{}: {}\n\n", table.fName, table.fPurpose);
    fmt::print("Outputs     {}\n", KindsText(table.fOutputKinds));
    if (description.isSource) {
        fmt::print("Source      of the host: {{\"source\": \"{}\"}} in a graph\n", table.fName);
    } else {
        if (table.fClassIDs.empty())
            fmt::print("Identifier  none: the library has no route to the class\n");
        for (const GUID& classID : table.fClassIDs)
            fmt::print("Identifier  {}\n", fernwick::GuidText(classID));
        if (description.needs)
            fmt::print("Needs       {}\n", Joined(*description.needs));
        fmt::print("Record      {} bytes\n", table.fRecordSize);
    }
    fmt::print("\n{}", FieldTable(description.lines, TerminalWidth()));
}

/// A text in the notation of documents as a value; null where it is none, such as a slot's.
Json JsonOf(const std::string& text)
{
    const Json value = Json::parse(text, nullptr, false);
    return value.is_discarded() ? Json() : value;
}

Json ChoicesOf(const fernwick::Field& field)
{
    Json choices = Json::array();
    for (const fernwick::Choice& choice : field.fChoices)
        choices.push_back(
            {{"value", JsonOf(fernwick::ValueText(field, choice.fValue))}, {"label", choice.fLabel}});
    return choices;
}

Json FieldsOf(const Description& description)
{
    Json fields = Json::array();
    for (size_t i = 0; i < description.table.fFields.size(); ++i) {
        const fernwick::Field& field = description.table.fFields[i];
        Json entry = {{"name", field.fName}, {"type", fernwick::TypeName(field.fType)},
            {"label", field.fLabel}, {"help", field.fHelp}};
        if (!description.defaults.empty())
            entry["default"] = JsonOf(description.defaults[i]);
        if (!field.fUnit.empty())
            entry["unit"] = field.fUnit;
        if (field.fMinimum)
            entry["minimum"] = *field.fMinimum;
        if (field.fMaximum)
            entry["maximum"] = *field.fMaximum;
        if (field.fIsLoose)
            entry["loose"] = true;
        if (field.fCondition)
            entry["onlyWith"] = {{"field", field.fCondition->fField}, {"value", field.fCondition->fValue}};
        if (!field.fChoices.empty())
            entry["choices"] = ChoicesOf(field);
        if (field.fDerived)
            entry["derived"] = true;
        fields.push_back(std::move(entry));
    }
    return fields;
}

void PrintJson(const Description& description)
{
    Json json = EntryOf(description.table, description.isSource);
    if (description.needs)
        json["needs"] = *description.needs;
    if (!description.isSource)
        json["recordSize"] = description.table.fRecordSize;
    json["fields"] = FieldsOf(description);
    fmt::print("{}\n", json.dump(2));
}

} // namespace

void AddDescribeCommand(CLI::App& app)
{
    const auto options = std::make_shared<DescribeOptions>();
    CLI::App& command
        = *app.add_subcommand("describe", "Tells all about a class or source: its outputs and its fields.");
    command.add_option("class", options->name, "A name out of `fernwick list`")
        ->required()
        ->type_name("CLASS");
    command.add_flag("--json", options->asJson, "Prints JSON");
    AddLibraryOption(command, options->library);
    command.footer(
        "Defaults are read from an object that the library has just made. An array is one line; a\n"
        "document, or --set of `fernwick shade`, takes it whole or by element, such as fRange[3]. Lines are\n"
        "as long as those of the terminal, or 80 columns.\n\n"
        "Example:\n  fernwick describe Key");
    command.callback([options] {
        const Description description = Describe(*options);
        options->asJson ? PrintJson(description) : PrintText(description);
    });
}
