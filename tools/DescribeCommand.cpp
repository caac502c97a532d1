#include "host/Library.h"
#include "host/Nearest.h"
#include "host/ShaderWrapper.h"
#include "host/Sources.h"
#include "tools/Commands.h"
#include "tools/FieldText.h"
#include "tools/Kinds.h"
#include "tools/LibraryOption.h"
#include "tools/ReportSummary.h"
#include <algorithm>
#include <fmt/core.h>

namespace {

struct DescribeOptions {
    std::string name;
    std::string library;
};

/// The columns of the table of fields, as wide as their longest entry.
struct Widths {
    size_t name = 5;
    size_t type = 4;
    size_t standard = 7;
    size_t unit = 4;

    void Hold(const fernwick::Field& field, const std::string& standardText)
    {
        name = std::max(name, field.fName.size());
        type = std::max(type, fernwick::TypeText(field.fType).size());
        standard = std::max(standard, standardText.size());
        unit = std::max(unit, field.fUnit.size());
    }
    std::string Line(std::string_view nameText, std::string_view typeText, std::string_view standardText,
        std::string_view unitText, std::string_view help) const
    {
        return fmt::format("{:<{}}  {:<{}}  {:<{}}  {:<{}}  {}\n", nameText, name, typeText, type,
            standardText, standard, unitText, unit, help);
    }
};

/// @param record  a fresh one, whose values are the defaults; null when there is none to read
void PrintFields(const fernwick::ParameterTable& table, const void* record)
{
    Widths widths;
    std::vector<std::string> standards;
    for (const fernwick::Field& field : table.fFields) {
        standards.push_back(
            record == nullptr ? "-" : fernwick::ValueText(field, fernwick::ReadField(field, record)));
        widths.Hold(field, standards.back());
    }
    fmt::print("\n{}", widths.Line("FIELD", "TYPE", "DEFAULT", "UNIT", "WHAT IT DOES"));
    for (size_t i = 0; i < table.fFields.size(); ++i) {
        const fernwick::Field& field = table.fFields[i];
        fmt::print("{}",
            widths.Line(
                field.fName, fernwick::TypeText(field.fType), standards[i], field.fUnit, HelpText(field)));
        for (const fernwick::Choice& choice : field.fChoices)
            fmt::print("{}", widths.Line("", "", "", "", "  " + ChoiceText(field, choice)));
    }
}

void PrintHead(const fernwick::ParameterTable& table)
{
    fmt::print("{}: {}\n\n", table.fName, table.fPurpose);
    fmt::print("Outputs     {}\n", KindsText(table.fOutputKinds));
}

void DescribeSource(const fernwick::SourceKind& source)
{
    PrintHead(source.fTable);
    fmt::print("Source      of the host: {{\"source\": \"{}\"}} in a graph\n", source.fTable.fName);
    PrintFields(source.fTable, source.fDefaults);
}

void DescribeClass(const fernwick::ParameterTable& table, const std::string& libraryName)
{
    PrintHead(table);
    if (table.fClassIDs.empty()) {
        fmt::print("Identifier  none: the library has no route to the class\n");
        fmt::print("Record      {} bytes\n", table.fRecordSize);
        PrintFields(table, nullptr);
        return;
    }
    fernwick::Library library(FindLibrary(libraryName));
    const ReportSummary reports(library.HostUtilities().Debug());
    const auto shader = fernwick::ShaderWrapper::Make(library, table.fClassIDs.front());
    if (!shader)
        throw fernwick::LibraryError(library.Path().string() + ": doesn't make the class " + table.fName);
    ShadingFlags flags;
    shader->GetShadingFlags(flags);
    for (const GUID& classID : table.fClassIDs)
        fmt::print("Identifier  {}\n", fernwick::GuidText(classID));
    fmt::print("Needs       {}\n", NeedsText(flags));
    fmt::print("Record      {} bytes\n", shader->Exchanger().GetParamsBufferSize());
    PrintFields(table, shader->Exchanger().GetExtensionDataBuffer());
}

std::vector<std::string> AllNames()
{
    std::vector<std::string> names;
    for (const fernwick::ParameterTable& table : fernwick::AllClasses())
        names.push_back(table.fName);
    for (const fernwick::SourceKind& source : fernwick::AllSources())
        names.push_back(source.fTable.fName);
    return names;
}

void RunDescribe(const DescribeOptions& options)
{
    if (const fernwick::SourceKind* const source = fernwick::FindSource(options.name))
        DescribeSource(*source);
    else if (const fernwick::ParameterTable* const table = fernwick::FindClass(options.name))
        DescribeClass(*table, options.library);
    else
        throw UsageError(fmt::format("there is no class or source \"{}\"{}; `fernwick list` names them",
            options.name, fernwick::NearestHint(options.name, AllNames())));
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
    AddLibraryOption(command, options->library);
    command.footer("Defaults are read from an object that the library has just made.\n\n"
                   "Example:\n  fernwick describe Key");
    command.callback([options] { RunDescribe(*options); });
}
