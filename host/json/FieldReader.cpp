#include "host/json/FieldReader.h"
#include "host/json/Nearest.h"
#include <algorithm>
#include <fmt/format.h>
#include <set>

namespace fernwick {

namespace {

void CheckRange(const Field& field, double number, const JsonNode& node)
{
    if (field.fIsLoose || IsInRange(field, number))
        return;
    const std::string_view type = TypeText(field.fType);
    if (!field.fMaximum)
        node.Refuse(fmt::format("{}, {} or more", type, *field.fMinimum));
    node.Refuse(fmt::format("{} from {} to {}", type, *field.fMinimum, *field.fMaximum));
}

/// Reads so many numbers.
std::vector<float> ReadNumbers(const Field& field, const JsonNode& node, size_t least, size_t most)
{
    if (!node.IsArray() || node.Count() < least || node.Count() > most)
        node.Refuse(TypeText(field.fType));
    std::vector<float> numbers;
    for (size_t i = 0; i < node.Count(); ++i) {
        numbers.push_back(node.Element(i).Float());
        CheckRange(field, numbers.back(), node.Element(i));
    }
    return numbers;
}

TMCColorRGBA ReadColor(const Field& field, const JsonNode& node)
{
    const std::vector<float> channels = ReadNumbers(field, node, 3, 4);
    return {channels[0], channels[1], channels[2], channels.size() > 3 ? channels[3] : 1};
}

std::vector<TMCColorRGBA> ReadColors(const Field& field, const JsonNode& node)
{
    if (!node.IsArray())
        node.Refuse(TypeText(field.fType));
    std::vector<TMCColorRGBA> colors;
    for (size_t i = 0; i < node.Count(); ++i)
        colors.push_back(ReadColor(field, node.Element(i)));
    return colors;
}

/// A code's four characters, a number, or the label of a choice. Any integer is taken for a code: the shaders
/// know no wrong ones (`FindDoubts` tells of them).
int32_t ReadChoice(const Field& field, const JsonNode& node)
{
    const bool isCode = field.fType == FieldType::kCode;
    if (isCode && node.IsInteger())
        return node.Int32();
    const std::string text = node.IsText() ? node.Text() : "";
    std::vector<std::string> known;
    for (const Choice& choice : field.fChoices) {
        const bool named
            = node.IsText() && (text == choice.fLabel || (isCode && text == CodeText(choice.fValue)));
        if (named || (node.IsInteger() && node.Int32() == choice.fValue))
            return choice.fValue;
        known.push_back(choice.fLabel);
        if (isCode)
            known.push_back(CodeText(choice.fValue));
    }
    node.Refuse(ChoicesText(field), node.IsText() ? NearestHint(text, known) : "");
}

int32_t ReadInteger(const Field& field, const JsonNode& node)
{
    const int32_t number = node.Int32();
    CheckRange(field, number, node);
    return number;
}

float ReadNumber(const Field& field, const JsonNode& node)
{
    const float number = node.Float();
    CheckRange(field, number, node);
    return number;
}

} // namespace

size_t FindShader(const JsonNode& node, const ShaderNames& names)
{
    const std::string name = node.Text("the name of a shader");
    const auto found = names.find(name);
    if (found != names.end())
        return found->second;
    std::vector<std::string> known;
    for (const auto& [other, place] : names)
        known.push_back(other);
    node.Fail(fmt::format("there is no shader \"{}\"{}", name, NearestHint(name, known)));
}

void FieldReader::Read(
    const std::string& address, const JsonNode& node, std::vector<FieldSetting>& settings) const
{
    if (const Field* const field = fTable.Find(address); field != nullptr) {
        if (field->fDerived)
            node.Fail("the shader derives this field; it can't be set");
        settings.push_back({field, ReadValue(*field, node)});
    } else if (fTable.HasFieldsUnder(address, '[')) {
        ReadArray(address, node, settings);
    } else if (fTable.HasFieldsUnder(address, '.')) {
        ReadRecord(address, node, settings);
    } else {
        FailUnknown(address, node);
    }
}

void FieldReader::ReadArray(
    const std::string& address, const JsonNode& node, std::vector<FieldSetting>& settings) const
{
    const size_t count = fTable.CountElements(address);
    if (!node.IsArray() || node.Count() != count)
        node.Refuse(fTable.AddressText(address));
    for (size_t index = 0; index < count; ++index)
        Read(fmt::format("{}[{}]", address, index), node.Element(index), settings);
}

void FieldReader::ReadRecord(
    const std::string& address, const JsonNode& node, std::vector<FieldSetting>& settings) const
{
    for (const auto& [key, member] : node.Members())
        Read(address + "." + key, member, settings);
}

void FieldReader::FailUnknown(const std::string& address, const JsonNode& node) const
{
    std::set<std::string> known; // fields and the groups around them
    std::vector<std::string> outermost;
    for (const Field& field : fTable.fFields)
        for (size_t end = field.fName.size(); end != std::string::npos;
             end = field.fName.find_last_of("[.", end - 1)) {
            const bool isNew = known.insert(field.fName.substr(0, end)).second;
            if (isNew && field.fName.find_last_of("[.", end - 1) == std::string::npos)
                outermost.push_back(field.fName.substr(0, end));
        }
    const std::string hint = NearestHint(address, std::vector<std::string>(known.begin(), known.end()));
    node.Fail(fmt::format("{} has no such field{}", fTable.fName,
        hint.empty() ? fmt::format("; it has {}", fmt::join(outermost, ", ")) : hint));
}

FieldValue FieldReader::ReadValue(const Field& field, const JsonNode& node) const
{
    switch (field.fType) {
    case FieldType::kFloat:
        return ReadNumber(field, node);
    case FieldType::kInt32:
        return field.fChoices.empty() ? ReadInteger(field, node) : ReadChoice(field, node);
    case FieldType::kCode:
        return ReadChoice(field, node);
    case FieldType::kBool:
        return node.Bool();
    case FieldType::kVector2: {
        const std::vector<float> numbers = ReadNumbers(field, node, 2, 2);
        return TVector2(numbers[0], numbers[1]);
    }
    case FieldType::kVector3: {
        const std::vector<float> numbers = ReadNumbers(field, node, 3, 3);
        return TVector3(numbers[0], numbers[1], numbers[2]);
    }
    case FieldType::kRGB: {
        const std::vector<float> numbers = ReadNumbers(field, node, 3, 3);
        return TMCColorRGB{numbers[0], numbers[1], numbers[2]};
    }
    case FieldType::kRGBA:
        return ReadColor(field, node);
    case FieldType::kString:
        return node.Text();
    case FieldType::kShader:
        return ReadSlot(node);
    case FieldType::kFile:
        return ReadFile(node);
    case FieldType::kColors:
        return ReadColors(field, node);
    }
    node.Fail("this field can't be set");
}

PluggedShader FieldReader::ReadSlot(const JsonNode& node) const
{
    if (node.IsNull() || (node.IsText() && node.Text().empty()))
        return {};
    return {FindShader(node, fNames)};
}

std::filesystem::path FieldReader::ReadFile(const JsonNode& node) const
{
    return (fFolder / node.Text("the name of a file")).lexically_normal();
}

} // namespace fernwick
