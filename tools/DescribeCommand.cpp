#include "host/library/Library.h"
#include "host/parameters/Kinds.h"
#include "host/shading/Description.h"
#include "host/sources/Sources.h"
#include "tools/Commands.h"
#include "tools/FieldTable.h"
#include "tools/LibraryOption.h"
#include "tools/Names.h"
#include "tools/ReportSummary.h"
#include "tools/Wrap.h"
#include <fmt/core.h>

namespace {

struct DescribeOptions {
    std::string name;
    bool asJson = false;
    std::string library;
};

/// A class or source, and of a class an object that can be asked, where there is one.
struct Described {
    const fernwick::ParameterTable& table;
    const fernwick::SourceKind* source;
    MCCountedPtr<fernwick::ShaderWrapper> specimen;

    /// Whose values are the defaults; null for none.
    const void* Record() const
    {
        if (source != nullptr)
            return source->fDefaults;
        return specimen ? specimen->Exchanger().GetExtensionDataBuffer() : nullptr;
    }
};

void PrintText(const Described& described)
{
    const fernwick::ParameterTable& table = described.table;
    fmt::print("{}: {}\n\n", table.fName, table.fPurpose);
    fmt::print("Outputs     {}\n", fernwick::KindsText(table.fOutputKinds));
    if (described.source != nullptr) {
        fmt::print("Source      of the host: {{\"source\": \"{}\"}} in a graph\n", table.fName);
    } else {
        if (table.fClassIDs.empty())
            fmt::print("Identifier  none: the library has no route to the class\n");
        for (const GUID& classID : table.fClassIDs)
            fmt::print("Identifier  {}\n", fernwick::GuidText(classID));
        if (described.specimen) {
            ShadingFlags flags;
            described.specimen->GetShadingFlags(flags);
            fmt::print("Needs       {}\n", fernwick::Joined(fernwick::NeedNames(flags)));
        }
        fmt::print("Record      {} bytes\n", table.fRecordSize);
    }
    fmt::print("\n{}", FieldTable(FieldLines(table, described.Record()), TerminalWidth()));
}

void Print(const DescribeOptions& options, const Described& described)
{
    if (options.asJson)
        fmt::print("{}\n", DescriptionOf(described.table, described.specimen.Get()).dump(2));
    else
        PrintText(described);
}

void Describe(const DescribeOptions& options)
{
    const fernwick::ParameterTable& table = RequireTable(options.name);
    if (const fernwick::SourceKind* const source = fernwick::FindSource(options.name)) {
        RequireNamedLibrary(options.library);
        return Print(options, {table, source, {}});
    }
    fernwick::Library library(FindLibrary(options.library));
    const ReportSummary reports(library.HostUtilities().Debug());
    Print(options, {table, nullptr, MakeSpecimen(library, table)});
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
    command.callback([options] { Describe(*options); });
}
