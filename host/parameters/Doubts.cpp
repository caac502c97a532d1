#include "host/parameters/Doubts.h"
#include <algorithm>
#include <fmt/format.h>

namespace fernwick {

namespace {

/// The numbers that a value is made of; none for any other value.
std::vector<double> NumbersOf(const FieldValue& value)
{
    if (const auto* const number = std::get_if<float>(&value))
        return {*number};
    if (const auto* const number = std::get_if<int32_t>(&value))
        return {static_cast<double>(*number)};
    if (const auto* const vector = std::get_if<TVector2>(&value))
        return {(*vector)[0], (*vector)[1]};
    if (const auto* const vector = std::get_if<TVector3>(&value))
        return {(*vector)[0], (*vector)[1], (*vector)[2]};
    return {};
}

/// The value of the last setting of a field; null when there is none.
const FieldValue* LastValue(std::span<const FieldSetting> settings, std::string_view name)
{
    const auto found = std::find_if(settings.rbegin(), settings.rend(),
        [name](const FieldSetting& setting) { return setting.fField->fName == name; });
    return found != settings.rend() ? &found->fValue : nullptr;
}

/// What is doubtful about the last setting of a field; empty for nothing.
std::string DoubtOf(const FieldSetting& setting, std::span<const FieldSetting> settings)
{
    constexpr const char* kOwnWay = "the shader takes it in its own way";
    const Field& field = *setting.fField;
    if (field.fType == FieldType::kCode) {
        const auto code = std::get<int32_t>(setting.fValue);
        if (std::none_of(field.fChoices.begin(), field.fChoices.end(),
                [code](const Choice& choice) { return choice.fValue == code; }))
            return fmt::format("expected {}, got {}; {}", ChoicesText(field), code, kOwnWay);
    }
    for (const double number : NumbersOf(setting.fValue))
        if (!IsInRange(field, number))
            return fmt::format(
                "expected {}, got {}; {}", RangeText(field), static_cast<float>(number), kOwnWay);
    if (field.fCondition) {
        const FieldValue* const value = LastValue(settings, field.fCondition->fField);
        if (value == nullptr || *std::get_if<int32_t>(value) != field.fCondition->fValue)
            return fmt::format("it counts only where {} is {}, which isn't set", field.fCondition->fField,
                field.fCondition->fValue);
    }
    return "";
}

} // namespace

std::vector<std::string> FindDoubts(std::span<const FieldSetting> settings)
{
    std::vector<std::string> doubts;
    for (const FieldSetting& setting : settings) {
        if (LastValue(settings, setting.fField->fName) != &setting.fValue)
            continue;
        if (const std::string doubt = DoubtOf(setting, settings); !doubt.empty())
            doubts.push_back(fmt::format("{}: {}", setting.fField->fName, doubt));
    }
    return doubts;
}

} // namespace fernwick
