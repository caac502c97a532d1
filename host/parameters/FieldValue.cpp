#include "host/parameters/FieldValue.h"
#include "frame/TMCString.h"
#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace fernwick {

namespace {

template <class Type> const Type& At(const void* record, const Field& field)
{
    return *reinterpret_cast<const Type*>(static_cast<const char*>(record) + field.fOffset);
}

/// What a record holds in the place of a value that documents give as `Value`.
template <class Value> struct StoredAs {
    using Type = Value;
};
template <> struct StoredAs<std::string> {
    using Type = TMCString255;
};

std::string Quoted(const std::string& text)
{
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string Text(const TMCColorRGBA& color)
{
    return fmt::format("[{}, {}, {}, {}]", color.fRed, color.fGreen, color.fBlue, color.fAlpha);
}

struct ValueWriter {
    const Field& field;

    std::string operator()(float number) const { return fmt::format("{}", number); }
    std::string operator()(int32_t number) const
    {
        return field.fType == FieldType::kCode ? Quoted(CodeText(number)) : std::to_string(number);
    }
    std::string operator()(bool flag) const { return flag ? "true" : "false"; }
    std::string operator()(const TVector2& vector) const
    {
        return fmt::format("[{}, {}]", vector[0], vector[1]);
    }
    std::string operator()(const TVector3& vector) const
    {
        return fmt::format("[{}, {}, {}]", vector[0], vector[1], vector[2]);
    }
    std::string operator()(const TMCColorRGB& color) const
    {
        return fmt::format("[{}, {}, {}]", color.fRed, color.fGreen, color.fBlue);
    }
    std::string operator()(const TMCColorRGBA& color) const { return Text(color); }
    std::string operator()(const std::string& text) const { return Quoted(text); }
    std::string operator()(const PluggedShader& plugged) const
    {
        return plugged.fIndex ? fmt::format("{}", *plugged.fIndex) : "null";
    }
    std::string operator()(const std::filesystem::path& file) const { return Quoted(file.string()); }
    std::string operator()(const std::vector<TMCColorRGBA>& colors) const
    {
        std::string text;
        for (const TMCColorRGBA& color : colors)
            text += (text.empty() ? "" : ", ") + Text(color);
        return '[' + text + ']';
    }
};

} // namespace

FieldValue ReadField(const Field& field, const void* record)
{
    switch (field.fType) {
    case FieldType::kFloat:
        return At<float>(record, field);
    case FieldType::kInt32:
    case FieldType::kCode:
        return At<int32_t>(record, field);
    case FieldType::kBool:
        return At<uint8_t>(record, field) != 0; // a record is the object's, and a byte can hold anything
    case FieldType::kVector2:
        return At<TVector2>(record, field);
    case FieldType::kVector3:
        return At<TVector3>(record, field);
    case FieldType::kRGB:
        return At<TMCColorRGB>(record, field);
    case FieldType::kRGBA:
        return At<TMCColorRGBA>(record, field);
    case FieldType::kString:
        return std::string(
            At<TMCString255>(record, field).View()); // no more of a saved record's text is safe
    case FieldType::kShader:
        return PluggedShader{};
    case FieldType::kFile:
        return At<std::filesystem::path>(record, field);
    case FieldType::kColors:
        return At<std::vector<TMCColorRGBA>>(record, field);
    }
    return PluggedShader{};
}

void WriteField(const FieldSetting& setting, void* record)
{
    const auto store = [&](const auto& value) {
        using Value = std::decay_t<decltype(value)>;
        if constexpr (!std::is_same_v<Value, PluggedShader>) {
            char* const place = static_cast<char*>(record) + setting.fField->fOffset;
            *reinterpret_cast<typename StoredAs<Value>::Type*>(place) = value;
        }
    };
    std::visit(store, setting.fValue);
}

std::string ValueText(const Field& field, const FieldValue& value)
{
    return std::visit(ValueWriter{field}, value);
}

std::string ChoicesText(const Field& field)
{
    std::string choices;
    for (const Choice& choice : field.fChoices)
        choices += fmt::format(
            "{}{} ({})", choices.empty() ? "one of " : ", ", ValueText(field, choice.fValue), choice.fLabel);
    return choices;
}

} // namespace fernwick
