#include "host/parameters/Kinds.h"
#include "host/shading/Description.h"
#include "host/sources/Sources.h"
#include "tools/Commands.h"
#include "tools/LibraryOption.h"
#include "tools/Names.h"
#include <fmt/core.h>

namespace {

constexpr const char* kLine = "{:<18}{:<16}{:<38}{}\n"; // name, outputs, identifier, purpose

void PrintClass(const fernwick::ParameterTable& table, const std::string& identifier)
{
    fmt::print(kLine, table.fName, fernwick::KindsText(table.fOutputKinds), identifier, table.fPurpose);
}

void PrintTables()
{
    fmt::print(kLine, "CLASS", "OUTPUTS", "IDENTIFIER", "PURPOSE");
    for (const fernwick::ParameterTable& table : fernwick::AllClasses()) {
        if (table.fClassIDs.empty())
            PrintClass(table, "no route");
        for (const GUID& classID : table.fClassIDs)
            PrintClass(table, fernwick::GuidText(classID));
    }
    fmt::print("\n");
    fmt::print(kLine, "SOURCE", "OUTPUTS", "", "PURPOSE");
    for (const fernwick::SourceKind& source : fernwick::AllSources())
        PrintClass(source.fTable, "");
}

void PrintJson()
{
    fernwick::Json list = {{"classes", fernwick::Json::array()}, {"sources", fernwick::Json::array()}};
    for (const fernwick::ParameterTable& table : fernwick::AllClasses())
        list["classes"].push_back(fernwick::EntryOf(table, false));
    for (const fernwick::SourceKind& source : fernwick::AllSources())
        list["sources"].push_back(fernwick::EntryOf(source.fTable, true));
    fmt::print("{}\n", list.dump(2));
}

} // namespace

void AddListCommand(CLI::App& app)
{
    const auto asJson = std::make_shared<bool>(false);
    CLI::App& command
        = *app.add_subcommand("list", "Lists the classes of the library and the host's own sources.");
    command.add_flag("--json", *asJson, "Prints JSON");
    command.footer(
        "Classes come in the order of their routes. A class with several identifiers is listed under each;\n"
        "one without a route can't be made by the library. Sources are plugged into slots by graphs.\n\n"
        "Example:\n  fernwick list");
    command.callback([asJson] {
        RequireNamedLibrary();
        *asJson ? PrintJson() : PrintTables();
    });
}
