#include "tools/FieldTable.h"
#include "tools/Wrap.h"
#include <algorithm>
#include <fmt/format.h>

namespace {

constexpr size_t kGap = 2; // between columns

std::string Blanks(size_t count) { return std::string(count, ' '); }

/// An entry of a column, and what is left of the column behind it.
std::string Entry(std::string_view text, size_t width) { return fmt::format("{:<{}}", text, width + kGap); }

void DropBlanksAtTheEnd(std::string& line) { line.erase(line.find_last_not_of(' ') + 1); }

/// The columns, as wide as their longest entry, but for defaults that are very long.
class Columns {
public:
    Columns(const std::vector<FieldLine>& lines, size_t width) : fWidth(std::max<size_t>(width, 60))
    {
        constexpr size_t kLongestDefault = 24;
        constexpr size_t kNarrowestHelp = 40;
        for (const FieldLine& line : lines) {
            fName = std::max(fName, line.name.size());
            fType = std::max(fType, fernwick::TypeText(line.type).size());
            if (line.standard.size() <= kLongestDefault)
                fDefault = std::max(fDefault, line.standard.size());
            fUnit = std::max(fUnit, line.unit.size());
        }
        const size_t beforeHelp = fName + fType + fDefault + fUnit + 4 * kGap;
        fIsHelpBeside = beforeHelp + kNarrowestHelp <= fWidth;
        fHelpIndent = fIsHelpBeside ? beforeHelp : 2 * kGap;
    }

    std::string Head() const
    {
        std::string head = Entry("FIELD", fName) + Entry("TYPE", fType) + Entry("DEFAULT", fDefault)
            + Entry("UNIT", fUnit);
        if (!fIsHelpBeside) {
            DropBlanksAtTheEnd(head);
            head += '\n' + Blanks(fHelpIndent);
        }
        return head + "WHAT IT DOES\n";
    }

    std::string TextOf(const FieldLine& line) const
    {
        const std::string& value = line.standard;
        std::string text = Entry(line.name, fName) + Entry(fernwick::TypeText(line.type), fType);
        const bool fits = value.size() <= fDefault;
        text += Entry(value.empty() ? "-" : fits ? value : "below", fDefault) + Entry(line.unit, fUnit);
        std::vector<std::string> lines = HelpOf(line);
        if (!fits)
            for (const std::string& row : RowsOf(value))
                lines.push_back(row);
        for (size_t i = 0; i < lines.size(); ++i) {
            if (i > 0 || !fIsHelpBeside) {
                DropBlanksAtTheEnd(text);
                text += '\n' + Blanks(fHelpIndent);
            }
            text += lines[i];
        }
        return text + '\n';
    }

private:
    size_t fWidth;
    size_t fName = 5;
    size_t fType = 4;
    size_t fDefault = 7;
    size_t fUnit = 4;
    bool fIsHelpBeside;
    size_t fHelpIndent;

    /// A long default, in lines: an array of arrays by its rows.
    std::vector<std::string> RowsOf(std::string_view value) const
    {
        std::vector<std::string> rows;
        std::string start = Blanks(kGap);
        while (!value.empty()) {
            const size_t end = std::min(value.find("], "), value.size() - 1) + 1;
            const size_t comma = end < value.size() ? 1 : 0;
            for (const std::string& part :
                Wrapped(value.substr(0, end + comma), fWidth - fHelpIndent - kGap - 1)) {
                rows.push_back(start + part);
                start = Blanks(kGap + 1);
            }
            value.remove_prefix(std::min(end + 2 * comma, value.size()));
        }
        return rows;
    }

    /// The help and the choices, in lines.
    std::vector<std::string> HelpOf(const FieldLine& line) const
    {
        std::vector<std::string> lines = Wrapped(line.help, fWidth - fHelpIndent);
        for (const std::string& choice : line.choices) {
            std::string start = Blanks(kGap);
            for (const std::string& part : Wrapped(choice, fWidth - fHelpIndent - 2 * kGap)) {
                lines.push_back(start + part);
                start = Blanks(2 * kGap);
            }
        }
        return lines;
    }
};

} // namespace

std::string FieldTable(const std::vector<FieldLine>& lines, size_t width)
{
    const Columns columns(lines, width);
    std::string table = columns.Head();
    for (const FieldLine& line : lines)
        table += columns.TextOf(line);
    return table;
}
