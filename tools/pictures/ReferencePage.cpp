#include "tools/pictures/ReferencePage.h"
#include "host/parameters/Kinds.h"
#include "host/sources/Sources.h"
#include "tools/FieldLines.h"
#include <fmt/format.h>

namespace {

std::string ClassTable(const fernwick::ParameterTable& table, const ReferenceFacts& facts)
{
    std::vector<std::string> identifiers;
    for (const GUID& classID : table.fClassIDs)
        identifiers.push_back('`' + fernwick::GuidText(classID) + '`');
    std::string text = "| | |\n| --- | --- |\n";
    text += fmt::format("| Class identifier | {} |\n",
        identifiers.empty() ? "none: the library has no route to the class"
                            : fmt::format("{}", fmt::join(identifiers, "<br>")));
    text += fmt::format("| Outputs | {} |\n", fernwick::KindsText(table.fOutputKinds));
    if (!facts.fNeeds.empty())
        text += fmt::format("| Needs | {} |\n", facts.fNeeds);
    return text + fmt::format("| Record | `{}Params`, {} bytes |\n", table.fName, table.fRecordSize);
}

/// The pictures in those sections of a page that name a class, each with its heading.
std::string ScenesOf(const std::string& page, const std::string& className)
{
    constexpr std::string_view kHeading = "\n## ";
    std::string pictures;
    for (size_t start = page.find(kHeading); start != std::string::npos;) {
        const size_t end = page.find(kHeading, start + 1);
        const std::string section = page.substr(start + kHeading.size(), end - start - kHeading.size());
        start = end;
        const size_t picture = section.find("![");
        const size_t file = section.find("](", picture);
        const size_t close = section.find(')', file);
        if (close == std::string::npos || section.find('`' + className + '`') == std::string::npos)
            continue;
        pictures += fmt::format("{}](../blender/scenes/{})\n\n[{}](../blender/scenes/README.md)\n\n",
            section.substr(picture, file - picture), section.substr(file + 2, close - file - 2),
            section.substr(0, section.find('\n')));
    }
    return pictures;
}

} // namespace

std::string FieldsTable(const fernwick::ParameterTable& table, const void* record)
{
    std::string lines;
    for (const FieldLine& line : FieldLines(table, record))
        lines += fmt::format("| `{}` | {} | {} | {} | {} |\n", line.name, fernwick::TypeText(line.type),
            line.standard.empty() ? "-" : '`' + line.standard + '`', line.unit,
            line.help + (line.choices.empty() ? "" : "<br>")
                + fmt::format("{}", fmt::join(line.choices, "<br>")));
    if (lines.empty())
        return lines;
    const char* const note
        = lines.find('#') != std::string::npos ? "\n`#` is the number of the element, counted from 1.\n" : "";
    return "| Field | Type | Default | Unit | What it does |\n| --- | --- | --- | --- | --- |\n" + lines
        + note;
}

std::string ReferencePage(const fernwick::ParameterTable& table, const ReferenceFacts& facts)
{
    std::string page = fmt::format("# {}\n\n{}\n\n", table.fName, table.fPurpose);
    const Exhibit* const exhibit = facts.fExhibit;
    if (exhibit != nullptr && !exhibit->fPicture.empty())
        page += fmt::format("![{} at work](../gallery/{})\n\n", table.fName, exhibit->fPicture);
    page += ClassTable(table, facts);
    page += "\n## Parameters\n\n" + FieldsTable(table, facts.fRecord);
    if (!facts.fQuirks.empty())
        page += "\n## Good to know\n\n" + facts.fQuirks;
    if (exhibit != nullptr)
        page += fmt::format(
            "\n## Example\n\n`fernwick {}`\n\n```json\n{}```\n", exhibit->fArguments, facts.fExample);
    if (const std::string scenes = ScenesOf(facts.fScenes, table.fName); !scenes.empty())
        page += "\n## Rendered in Blender\n\n" + scenes;
    return page;
}

std::string ReferenceIndex()
{
    std::string page = "# Shaders\n\nOne page a class, written from the library itself: what it is for, its "
                       "parameters with their defaults, what it asks of the host, and an example.\n\n"
                       "| Class | Outputs | Purpose |\n| --- | --- | --- |\n";
    for (const fernwick::ParameterTable& table : fernwick::AllClasses())
        page += fmt::format("| [{0}]({0}.md) | {1} | {2} |\n", table.fName,
            fernwick::KindsText(table.fOutputKinds), table.fPurpose);
    return page
        + "\nGraphs plug [sources](sources.md) of the host into them: plain colours, pictures, checks and "
          "ramps.\n";
}

std::string SourcesPage()
{
    std::string page
        = "# Sources\n\nThe host's own pluggable shaders: `{\"source\": \"checker\"}` in a graph. They "
          "answer from UV alone.\n";
    for (const fernwick::SourceKind& source : fernwick::AllSources())
        page += fmt::format("\n## {}\n\n{} Outputs: {}.\n\n{}", source.fTable.fName, source.fTable.fPurpose,
            fernwick::KindsText(source.fTable.fOutputKinds), FieldsTable(source.fTable, source.fDefaults));
    return page;
}
