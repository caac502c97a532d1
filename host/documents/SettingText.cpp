#include "host/documents/SettingText.h"
#include "host/documents/HexColor.h"
#include "host/sources/Sources.h"
#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <optional>

namespace fernwick {

namespace {

/// `#ff8800`, `#f80` or `1,0.5,0` as the numbers of a colour, else the text as it is. Throws `SettingError` for any
/// other text that begins as a colour of the web, and for an alpha that isn't wanted.
/// @param channels  3, or 4 with alpha
Json ColorOf(const std::string& text, size_t channels, const std::string& place)
{
    const bool isHex = text.starts_with('#');
    const auto color = ReadHexColor(text);
    if (isHex && !color)
        throw SettingError(
            fmt::format("{}: \"{}\" is no colour; a colour is like #ff8800, #f80 or 1,0.5,0", place, text));
    const bool hasAlpha
        = isHex && (text.size() == std::size("#rgba") - 1 || text.size() == std::size("#rrggbbaa") - 1);
    if (hasAlpha && channels < 4)
        throw SettingError(fmt::format("{}: this colour has no alpha; leave it out of \"{}\"", place, text));
    if (color) {
        Json numbers = {color->fRed, color->fGreen, color->fBlue};
        if (channels > 3)
            numbers.push_back(color->fAlpha);
        return numbers;
    }
    const std::string list = '[' + text + ']';
    return Json::accept(list) ? Json::parse(list) : Json(text);
}

/// The setting of a kind of source that is given behind a colon.
struct Argument {
    std::string_view source;
    const char* field;
};

constexpr Argument kArguments[] = {
    {"color", "color"},
    {"value", "value"},
    {"picture", "file"},
    {"ramp", "along"},
    {"gradient", "along"},
};

/// Takes a choice such as `:linear` off the end of a picture's name, unless there is a file of the whole name.
std::optional<std::string> TakeEncoding(const Field& encoding, std::string& name)
{
    std::error_code ignored;
    for (const Choice& choice : encoding.fChoices)
        if (name.ends_with(':' + choice.fLabel) && !std::filesystem::exists(name, ignored)) {
            name.resize(name.size() - choice.fLabel.size() - 1);
            return choice.fLabel;
        }
    return std::nullopt;
}

bool IsSlot(const Field& field) { return field.fType == FieldType::kShader; }

} // namespace

Assignment Split(const std::string& text, const char* option, const char* example)
{
    const size_t sign = text.find('=');
    if (sign == std::string::npos || sign == 0)
        throw SettingError(
            fmt::format("{}: \"{}\" has no field and value; it is like {}", option, text, example));
    return {text.substr(0, sign), text.substr(sign + 1)};
}

Json ValueOf(const ParameterTable& table, const Assignment& set, const std::string& shader)
{
    const Field* const field = table.Find(set.field);
    const FieldType type = field != nullptr ? field->fType : FieldType::kFloat;
    if ((type == FieldType::kRGB || type == FieldType::kRGBA) && !Json::accept(set.value))
        return ColorOf(set.value, type == FieldType::kRGB ? 3 : 4, shader + '.' + set.field);
    const bool isLabel = field != nullptr
        && std::any_of(field->fChoices.begin(), field->fChoices.end(),
            [&set](const Choice& choice) { return choice.fLabel == set.value; });
    if (isLabel || !Json::accept(set.value))
        return set.value;
    Json value = ParseJson(set.value);
    const bool holdsText = type == FieldType::kString || type == FieldType::kFile;
    return holdsText && !value.is_string() ? Json(set.value) : value;
}

void Put(Json& object, const std::string& key, Json value)
{
    object.erase(key);
    object[key] = std::move(value);
}

Json SourceOf(const std::string& text, const char* option, const std::string& shader)
{
    const size_t colon = text.find(':');
    const std::string name = text.substr(0, colon);
    Json source = {{"source", name}};
    const SourceKind* const kind = FindSource(name);
    if (colon == std::string::npos || kind == nullptr)
        return source;
    const auto argument = std::find_if(std::begin(kArguments), std::end(kArguments),
        [&name](const Argument& candidate) { return candidate.source == name; });
    if (argument == std::end(kArguments))
        throw SettingError(fmt::format("{}: {} takes nothing behind a colon", option, name));
    std::string value = text.substr(colon + 1);
    if (const Field* const encoding = kind->fTable.Find("encoding"))
        if (const auto label = TakeEncoding(*encoding, value))
            source["encoding"] = *label;
    source[argument->field] = ValueOf(kind->fTable, {argument->field, value}, shader);
    return source;
}

void Repetitions::Add(const char* option, const std::string& field)
{
    if (++fCounts[field] == 2)
        fTell(fmt::format("{}: {} is given more than once; the last one counts", option, field));
}

size_t CountSlots(const ParameterTable& table, const std::string& name)
{
    return static_cast<size_t>(std::count_if(table.fFields.begin(), table.fFields.end(),
        [&name](const Field& field) { return IsSlot(field) && field.fName.starts_with(name + '['); }));
}

void RequireOption(
    const ParameterTable& table, const std::string& name, bool isPlug, const std::string& shader)
{
    const Field* const field = table.Find(name);
    const std::string taken = table.AddressText(name);
    if (isPlug && !taken.empty() && (field == nullptr || !IsSlot(*field)) && CountSlots(table, name) == 0)
        throw SettingError(fmt::format("--plug: {}.{} takes {}; give it with --set", shader, name, taken));
    if (!isPlug && ((field != nullptr && IsSlot(*field)) || CountSlots(table, name) > 0))
        throw SettingError(fmt::format("--set: {}.{} takes a shader; give it with --plug", shader, name));
}

} // namespace fernwick
