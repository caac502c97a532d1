#include "tools/FieldText.h"
#include <fmt/core.h>

std::string ChoiceText(const fernwick::Field& field, const fernwick::Choice& choice)
{
    return fmt::format("{} = {}", fernwick::ValueText(field, choice.fValue), choice.fLabel);
}

std::string HelpText(const fernwick::Field& field, size_t firstOnlyWith)
{
    std::string text = field.fLabel;
    if (!field.fHelp.empty())
        text += (text.empty() ? "" : ": ") + field.fHelp;
    if (field.fMinimum && field.fMaximum)
        text += fmt::format(" ({} to {})", *field.fMinimum, *field.fMaximum);
    else if (field.fMinimum)
        text += fmt::format(" (at least {})", *field.fMinimum);
    if (field.fCondition)
        text += fmt::format(" ({}only with {} {})",
            firstOnlyWith > 0 ? fmt::format("from [{}] on ", firstOnlyWith) : "", field.fCondition->fField,
            field.fCondition->ValueText());
    return text + (field.fDerived ? " (written by the shader)" : "");
}
