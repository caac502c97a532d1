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

/// The last setting of a field; null when there is none.
const FieldSetting* LastSetting(std::span<const FieldSetting> settings, std::string_view name)
{
    const auto found = std::find_if(settings.rbegin(), settings.rend(),
        [name](const FieldSetting& setting) { return setting.fField->fName == name; });
    return found != settings.rend() ? &*found : nullptr;
}

/// The name of the array that a field is an element of; of any other field its name.
std::string_view ArrayOf(std::string_view name)
{
    return name.ends_with(']') ? name.substr(0, name.find('[')) : name;
}

/// Whether two settings say the same, of fields of the same type.
bool SaySame(const FieldSetting& left, const FieldSetting& right)
{
    if (const auto* const plugged = std::get_if<PluggedShader>(&left.fValue))
        return plugged->fIndex == std::get<PluggedShader>(right.fValue).fIndex;
    return ValueText(*left.fField, left.fValue) == ValueText(*right.fField, right.fValue);
}

/// Whether a code is none of the settled ones, so that only the shader knows what it means.
bool IsUnknownCode(const FieldSetting& setting)
{
    const std::vector<Choice>& choices = setting.fField->fChoices;
    return setting.fField->fType == FieldType::kCode
        && std::none_of(
            choices.begin(), choices.end(), [code = std::get<int32_t>(setting.fValue)](const Choice& choice) {
                return choice.fValue == code;
            });
}

/// Whether a setting leaves a slot empty, or a field as it is in a new object.
bool SaysNothing(const FieldSetting& setting, const void* standard)
{
    if (const auto* const plugged = std::get_if<PluggedShader>(&setting.fValue))
        return !plugged->fIndex;
    return standard != nullptr && SaySame(setting, {setting.fField, ReadField(*setting.fField, standard)});
}

/// Whether a field was set to something that counts only with another field, which isn't so. What repeats the first
/// element of its array is no such thing.
bool IsIdle(const FieldSetting& setting, std::span<const FieldSetting> settings, const void* standard)
{
    const Field& field = *setting.fField;
    if (!field.fCondition || SaysNothing(setting, standard))
        return false;
    const FieldSetting* const other = LastSetting(settings, field.fCondition->fField);
    if (other != nullptr
        && (std::get<int32_t>(other->fValue) == field.fCondition->fValue || IsUnknownCode(*other)))
        return false;
    const FieldSetting* const first = LastSetting(settings, fmt::format("{}[0]", ArrayOf(field.fName)));
    return first == nullptr || first->fField->fCondition || !SaySame(setting, *first);
}

/// What is doubtful about the value of a setting by itself; empty for nothing.
std::string DoubtOf(const FieldSetting& setting)
{
    constexpr const char* kOwnWay = "the shader takes it in its own way";
    const Field& field = *setting.fField;
    if (IsUnknownCode(setting))
        return fmt::format(
            "expected {}, got {}; {}", ChoicesText(field), std::get<int32_t>(setting.fValue), kOwnWay);
    for (const double number : NumbersOf(setting.fValue))
        if (!IsInRange(field, number))
            return fmt::format(
                "expected {}, got {}; {}", RangeText(field), static_cast<float>(number), kOwnWay);
    return "";
}

/// Idle settings of one array, told at the first.
struct IdleSettings {
    const Field* fFirst;
    size_t fCount;

    /// "fWidth[1]: it and 3 behind it count only where fMode is 15, which it isn't"
    std::string Text() const
    {
        const std::string which
            = fCount > 1 ? fmt::format("it and {} behind it count", fCount - 1) : "it counts";
        return fmt::format("{}: {} only where {} is {}, which it isn't", fFirst->fName, which,
            fFirst->fCondition->fField, fFirst->fCondition->ValueText());
    }
};

} // namespace

std::vector<std::string> FindDoubts(std::span<const FieldSetting> settings, const void* standard)
{
    std::vector<std::string> doubts;
    std::vector<IdleSettings> idle;
    for (const FieldSetting& setting : settings) {
        if (LastSetting(settings, setting.fField->fName) != &setting)
            continue;
        if (const std::string doubt = DoubtOf(setting); !doubt.empty())
            doubts.push_back(fmt::format("{}: {}", setting.fField->fName, doubt));
        if (!IsIdle(setting, settings, standard))
            continue;
        if (!idle.empty() && ArrayOf(idle.back().fFirst->fName) == ArrayOf(setting.fField->fName))
            ++idle.back().fCount;
        else
            idle.push_back({setting.fField, 1});
    }
    for (const IdleSettings& settingsOfArray : idle)
        doubts.push_back(settingsOfArray.Text());
    return doubts;
}

} // namespace fernwick
