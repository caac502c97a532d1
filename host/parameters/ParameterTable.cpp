#include "host/parameters/ParameterTable.h"
#include "frame/Numbers.h"
#include "host/parameters/Notation.h"
#include <algorithm>
#include <fmt/format.h>

// The classes with a table, each in a file of its own under host/parameters: those with a route in the order of
// the routes, then those without.
#define FERNWICK_CLASSES(CLASS)                                                                              \
    CLASS(Weave)                                                                                             \
    CLASS(Gray)                                                                                              \
    CLASS(Super_mixer)                                                                                       \
    CLASS(Super_mixer_top)                                                                                   \
    CLASS(Iridescent)                                                                                        \
    CLASS(Location)                                                                                          \
    CLASS(Fresnel)                                                                                           \
    CLASS(Proximity)                                                                                         \
    CLASS(Translucent)                                                                                       \
    CLASS(Lit)                                                                                               \
    CLASS(Drip)                                                                                              \
    CLASS(MultiPassControl)                                                                                  \
    CLASS(MultiPassManager)                                                                                  \
    CLASS(Coordinate_Shift)                                                                                  \
    CLASS(Key)                                                                                               \
    CLASS(Spoke)                                                                                             \
    CLASS(Curvature)                                                                                         \
    CLASS(Corners)                                                                                           \
    CLASS(Shadow_pass)

#define FERNWICK_DECLARE(name) fernwick::ParameterTable name##Table();
FERNWICK_CLASSES(FERNWICK_DECLARE)

namespace fernwick {

namespace {

struct TypeRow {
    std::string_view name;
    std::string_view text;
    FieldLayout layout;
};

template <class Type> constexpr FieldLayout kLayout = {sizeof(Type), alignof(Type)};

/// By `FieldType`.
constexpr TypeRow kTypes[] = {
    {"float", "a number", kLayout<float>},
    {"int32", "an integer", kLayout<int32_t>},
    {"bool", "true or false", kLayout<bool>},
    {"code", "a four-character code", kLayout<int32_t>},
    {"vector2", "two numbers", kLayout<TVector2>},
    {"vector3", "three numbers", kLayout<TVector3>},
    {"rgb", "three numbers from red to blue", kLayout<TMCColorRGB>},
    {"rgba", "four numbers from red to alpha", kLayout<TMCColorRGBA>},
    {"string", "a text of at most 255 bytes", kLayout<TMCString255>},
    {"shader", "the name of a shader", kLayout<SubShaderSlot>},
    {"file", "the name of a file", kLayout<std::filesystem::path>},
    {"colors", "a list of colours", kLayout<std::vector<TMCColorRGBA>>},
};

const TypeRow& TypeRowOf(FieldType type) { return kTypes[static_cast<size_t>(type)]; }

/// Puts the numbers, raised by 1, in the place of the first `#` signs.
std::string Numbered(std::string text, const std::vector<size_t>& numbers)
{
    size_t from = 0;
    for (const size_t number : numbers) {
        const size_t sign = text.find('#', from);
        if (sign == std::string::npos)
            break;
        const std::string digits = std::to_string(number + 1);
        text.replace(sign, 1, digits);
        from = sign + digits.size();
    }
    return text;
}

void AddFields(const Row& row, const Field& parent, std::vector<Field>& fields);

/// Adds the element of an array that the indices name, or the row itself with none.
void AddElement(const Row& row, const Field& parent, size_t number, const std::vector<size_t>& indices,
    std::vector<Field>& fields)
{
    Field field = row.fField;
    field.fName = parent.fName + row.fField.fName;
    for (const size_t index : indices)
        field.fName += fmt::format("[{}]", index);
    field.fOffset = parent.fOffset + row.fField.fOffset + number * row.fStride;
    const std::string& label = number < row.fLabels.size() ? row.fLabels[number] : row.fField.fLabel;
    field.fLabel = parent.fLabel + Numbered(label, indices);
    field.fHelp = Numbered(row.fField.fHelp, indices);
    if (number < row.fFirstOnlyWith)
        field.fCondition.reset();
    if (row.fRows.empty()) {
        fields.push_back(field);
        return;
    }
    field.fName += ".";
    field.fLabel += ": ";
    for (const Row& nested : row.fRows)
        AddFields(nested, field, fields);
}

void AddFields(const Row& row, const Field& parent, std::vector<Field>& fields)
{
    if (row.fCounts.empty()) {
        AddElement(row, parent, 0, {}, fields);
        return;
    }
    const size_t inner = row.fCounts.size() > 1 ? row.fCounts[1] : 1;
    for (size_t number = 0; number < row.fCounts[0] * inner; ++number) {
        std::vector<size_t> indices{number / inner};
        if (row.fCounts.size() > 1)
            indices.push_back(number % inner);
        AddElement(row, parent, number, indices, fields);
    }
}

bool IsCode(int32_t value) { return (static_cast<uint32_t>(value) >> 24) != 0; }

} // namespace

bool IsInRange(const Field& field, double number)
{
    return !(field.fMinimum && number < *field.fMinimum) && !(field.fMaximum && number > *field.fMaximum);
}

std::string RangeText(const Field& field)
{
    const std::string range = field.fMaximum ? fmt::format("{} to {}", *field.fMinimum, *field.fMaximum)
                                             : fmt::format("{} or more", *field.fMinimum);
    return field.fUnit.empty() ? range : range + ' ' + field.fUnit;
}

std::string_view TypeName(FieldType type) { return TypeRowOf(type).name; }

std::string_view TypeText(FieldType type) { return TypeRowOf(type).text; }

FieldLayout LayoutOf(FieldType type) { return TypeRowOf(type).layout; }

Choice::Choice(const char (&code)[5], std::string label) : fValue(Code(code)), fLabel(std::move(label)) { }

std::string CodeText(int32_t code)
{
    std::string text;
    for (const int shift : {24, 16, 8, 0})
        text += static_cast<char>(static_cast<uint32_t>(code) >> shift & 0xFF);
    return text;
}

std::string Condition::ValueText() const
{
    return IsCode(fValue) ? '"' + CodeText(fValue) + '"' : std::to_string(fValue);
}

Row& Row::Named(std::string name)
{
    fField.fName = std::move(name);
    return *this;
}

Row& Row::Unit(std::string unit)
{
    fField.fUnit = std::move(unit);
    return *this;
}

Row& Row::Range(double minimum, double maximum)
{
    fField.fMaximum = maximum;
    return AtLeast(minimum);
}

Row& Row::AtLeast(double minimum)
{
    fField.fMinimum = minimum;
    return *this;
}

Row& Row::Loose()
{
    fField.fIsLoose = true;
    return *this;
}

Row& Row::OnlyWith(std::string field, int32_t value, size_t first)
{
    fField.fCondition = {std::move(field), value};
    fFirstOnlyWith = first;
    return *this;
}

Row& Row::Choices(std::initializer_list<Choice> choices)
{
    fField.fChoices = choices;
    if (std::all_of(
            choices.begin(), choices.end(), [](const Choice& choice) { return IsCode(choice.fValue); }))
        fField.fType = FieldType::kCode;
    return *this;
}

Row& Row::Derived()
{
    fField.fDerived = true;
    return *this;
}

Row& Row::Labels(std::initializer_list<std::string> labels)
{
    fLabels = labels;
    return *this;
}

ParameterTable::ParameterTable(std::string name, std::initializer_list<GUID> classIDs, int32_t outputKinds,
    size_t recordSize, std::string purpose, std::vector<Row> rows)
    : fName(std::move(name)), fClassIDs(classIDs), fOutputKinds(outputKinds), fRecordSize(recordSize),
      fPurpose(std::move(purpose)), fRows(std::move(rows))
{
    for (const Row& row : fRows)
        AddFields(row, {}, fFields);
}

const Field* ParameterTable::Find(std::string_view name) const
{
    const auto found = std::find_if(
        fFields.begin(), fFields.end(), [name](const Field& field) { return field.fName == name; });
    return found != fFields.end() ? &*found : nullptr;
}

bool ParameterTable::HasFieldsUnder(std::string_view address, char separator) const
{
    const std::string start = std::string(address) + separator;
    return std::any_of(fFields.begin(), fFields.end(),
        [&start](const Field& field) { return field.fName.starts_with(start); });
}

size_t ParameterTable::CountElements(std::string_view address) const
{
    size_t count = 0;
    while (!AddressText(fmt::format("{}[{}]", address, count)).empty())
        ++count;
    return count;
}

std::string ParameterTable::AddressText(std::string_view address) const
{
    if (const Field* const field = Find(address); field != nullptr)
        return std::string(TypeText(field->fType));
    if (HasFieldsUnder(address, '.'))
        return "an object";
    if (!HasFieldsUnder(address, '['))
        return "";
    return fmt::format(
        "an array of {}, each {}", CountElements(address), AddressText(fmt::format("{}[0]", address)));
}

std::span<const ParameterTable> AllClasses()
{
#define FERNWICK_CALL(name) name##Table(),
    static const std::vector<ParameterTable> classes = {FERNWICK_CLASSES(FERNWICK_CALL)};
    return classes;
}

const ParameterTable* FindClass(std::string_view name)
{
    for (const ParameterTable& table : AllClasses())
        if (table.fName == name)
            return &table;
    return nullptr;
}

std::string GuidText(const GUID& id)
{
    const uint8_t(&bytes)[8] = id.Data4;
    return fmt::format("{:08X}-{:04X}-{:04X}-{:02X}{:02X}-{:02X}{:02X}{:02X}{:02X}{:02X}{:02X}", id.Data1,
        id.Data2, id.Data3, bytes[0], bytes[1], bytes[2], bytes[3], bytes[4], bytes[5], bytes[6], bytes[7]);
}

} // namespace fernwick
