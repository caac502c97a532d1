#include "tools/FieldLines.h"
#include "tools/FieldText.h"
#include <algorithm>
#include <fmt/format.h>

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

/// In the notation of documents.
std::string DefaultText(const Place& place, const fernwick::Row& row)
{
    if (place.record == nullptr)
        return "";
    std::vector<std::string> values;
    for (const std::string& name : ElementNames(place.names, row)) {
        const fernwick::Field& field = *place.table.Find(name);
        values.push_back(fernwick::ValueText(field, fernwick::ReadField(field, place.record)));
    }
    if (std::adjacent_find(values.begin(), values.end(), std::not_equal_to<>()) == values.end())
        return values.front();
    const size_t length = row.fCounts.size() > 1 ? row.fCounts[1] : values.size();
    std::vector<std::string> lines;
    for (auto line = values.begin(); line != values.end(); line += static_cast<std::ptrdiff_t>(length))
        lines.push_back(
            fmt::format("[{}]", fmt::join(line, line + static_cast<std::ptrdiff_t>(length), ", ")));
    return lines.size() == 1 ? lines.front() : fmt::format("[{}]", fmt::join(lines, ", "));
}

void AddLines(const Place& place, const std::vector<fernwick::Row>& rows, std::vector<FieldLine>& lines)
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
        FieldLine& line = lines.emplace_back();
        line.name = shown;
        line.type = field.fType;
        line.standard = DefaultText(place, row);
        line.unit = field.fUnit;
        line.help = HelpText(field, row.fFirstOnlyWith);
        if (!row.fLabels.empty())
            line.help += fmt::format(" In order: {}.", fmt::join(row.fLabels, ", "));
        for (const fernwick::Choice& choice : field.fChoices)
            line.choices.push_back(ChoiceText(field, choice));
    }
}

} // namespace

std::vector<FieldLine> FieldLines(const fernwick::ParameterTable& table, const void* record)
{
    std::vector<FieldLine> lines;
    AddLines({table, record, "", "", {""}}, table.fRows, lines);
    return lines;
}
