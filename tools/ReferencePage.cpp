#include "tools/ReferencePage.h"
#include "host/Sources.h"
#include "tools/FieldText.h"
#include "tools/Kinds.h"
#include <algorithm>
#include <fmt/core.h>

namespace {

/// Rows of a record with the names that they have in documents, and the record.
struct Place {
    const fernwick::ParameterTable& table;
    const void* record;
    std::string shown;              // such as `fBands[0..6].`
    std::string label;              // such as `Band #: `
    std::vector<std::string> names; // such as `fBands[0].` to `fBands[6].`
};

/// The names of the elements of an array, outer dimension first; of anything else the name itself.
std::vector<std::string> ElementNames(const std::vector<std::string>& parents, const fernwick::Row& row)
{
    std::vector<std::string> names;
    for (const std::string& parent : parents)
        names.push_back(parent + row.fField.fName);
    for (const size_t count : row.fCounts) {
        std::vector<std::string> elements;
        for (const std::string& name : names)
            for (size_t i = 0; i < count; ++i)
                elements.push_back(fmt::format("{}[{}]", name, i));
        names = std::move(elements);
    }
    return names;
}

std::string Joined(const std::vector<std::string>& texts, const char* between)
{
    std::string joined;
    for (const std::string& text : texts)
        joined += (joined.empty() ? "" : between) + text;
    return joined;
}

/// The value that all elements have; else all of them, in the notation of documents.
std::string DefaultText(const Place& place, const fernwick::Row& row)
{
    if (place.record == nullptr)
        return "-";
    std::vector<std::string> values;
    for (const std::string& name : ElementNames(place.names, row)) {
        const fernwick::Field& field = *place.table.Find(name);
        values.push_back(fernwick::ValueText(field, fernwick::ReadField(field, place.record)));
    }
    if (std::adjacent_find(values.begin(), values.end(), std::not_equal_to<>()) == values.end())
        return '`' + values.front() + '`';
    const size_t length = row.fCounts.size() > 1 ? row.fCounts[1] : values.size();
    std::vector<std::string> lines;
    for (auto line = values.begin(); line != values.end(); line += static_cast<std::ptrdiff_t>(length))
        lines.push_back('[' + Joined({line, line + static_cast<std::ptrdiff_t>(length)}, ", ") + ']');
    return lines.size() == 1 ? '`' + lines.front() + '`' : "`[" + Joined(lines, ", ") + "]`";
}

void AddLines(const Place& place, const std::vector<fernwick::Row>& rows, std::string& lines)
{
    for (const fernwick::Row& row : rows) {
        std::string shown = place.shown + row.fField.fName;
        for (const size_t count : row.fCounts)
            shown += fmt::format("[0..{}]", count - 1);
        fernwick::Field field = row.fField;
        field.fLabel = place.label + field.fLabel;
        if (!row.fRows.empty()) {
            std::vector<std::string> names = ElementNames(place.names, row);
            for (std::string& name : names)
                name += '.';
            AddLines({place.table, place.record, shown + '.', field.fLabel + ": ", names}, row.fRows, lines);
            continue;
        }
        std::string help = HelpText(field);
        if (!row.fLabels.empty())
            help += " In order: " + Joined(row.fLabels, ", ") + '.';
        for (const fernwick::Choice& choice : field.fChoices)
            help += "<br>" + ChoiceText(field, choice);
        lines += fmt::format("| `{}` | {} | {} | {} | {} |\n", shown, fernwick::TypeText(field.fType),
            DefaultText(place, row), field.fUnit, help);
    }
}

std::string ClassTable(const fernwick::ParameterTable& table, const ReferenceFacts& facts)
{
    std::vector<std::string> identifiers;
    for (const GUID& classID : table.fClassIDs)
        identifiers.push_back('`' + fernwick::GuidText(classID) + '`');
    std::string text = "| | |\n| --- | --- |\n";
    text += fmt::format("| Class identifier | {} |\n",
        identifiers.empty() ? "none: the library has no route to the class" : Joined(identifiers, "<br>"));
    text += fmt::format("| Outputs | {} |\n", KindsText(table.fOutputKinds));
    if (!facts.fNeeds.empty())
        text += fmt::format("| Needs | {} |\n", facts.fNeeds);
    return text + fmt::format("| Record | `{}Params`, {} bytes |\n", table.fName, table.fRecordSize);
}

} // namespace

std::string FieldsTable(const fernwick::ParameterTable& table, const void* record)
{
    std::string lines;
    AddLines({table, record, "", "", {""}}, table.fRows, lines);
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
    return page;
}

std::string ReferenceIndex()
{
    std::string page = "# Shaders\n\nOne page a class, written from the library itself: what it is for, its "
                       "parameters with their defaults, what it asks of the host, and an example.\n\n"
                       "| Class | Outputs | Purpose |\n| --- | --- | --- |\n";
    for (const fernwick::ParameterTable& table : fernwick::AllClasses())
        page += fmt::format(
            "| [{0}]({0}.md) | {1} | {2} |\n", table.fName, KindsText(table.fOutputKinds), table.fPurpose);
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
            KindsText(source.fTable.fOutputKinds), FieldsTable(source.fTable, source.fDefaults));
    return page;
}
