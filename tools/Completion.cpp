#include "tools/Completion.h"
#include "host/shading/Plots.h"
#include "host/sources/Sources.h"
#include "host/validation/Validation.h"
#include "tools/BakeOptions.h"
#include "tools/Names.h"
#include "tools/ShadeOptions.h"
#include <fmt/format.h>

namespace {

/// The names of things that have one, such as plots.
template <class Things, class NameOf> std::vector<std::string> Names(const Things& things, NameOf nameOf)
{
    std::vector<std::string> names;
    for (const auto& thing : things)
        names.emplace_back(nameOf(thing));
    return names;
}

/// A function that prints a list of words by its argument.
std::string Function(const std::string& name, const std::string& cases)
{
    return fmt::format("{}() {{\n    case \"$1\" in\n{}    esac\n}}\n", name, cases);
}

std::string Case(const std::string& pattern, const std::vector<std::string>& words)
{
    return words.empty() ? "" : fmt::format("    '{}') echo '{}' ;;\n", pattern, WordList(words));
}

/// The choices of a field that are one word: codes, or labels where there are none.
std::vector<std::string> ChoiceWords(const fernwick::Field& field)
{
    std::vector<std::string> words;
    for (const fernwick::Choice& choice : field.fChoices)
        words.push_back(
            field.fType == fernwick::FieldType::kCode ? fernwick::CodeText(choice.fValue) : choice.fLabel);
    if (field.fType == fernwick::FieldType::kBool)
        words = {"true", "false"};
    return words;
}

} // namespace

CompletedValue CompletedValueOf(const CLI::Option& option)
{
    const std::string type = option.get_type_name();
    if (type == "FILE" || type == "PATH" || type == "FOLDER" || type == "LIBRARY")
        return {.isFile = true};
    if (type == "CLASS")
        return {.words = ClassAndSourceNames()};
    if (type == "CHANNEL")
        return {.words = ChannelNames()};
    if (type == "SOURCE")
        return {.words = fernwick::SourceNames(), .isFile = true};
    if (type == "SHAPE")
        return {.words = ShadeShapes(), .isFile = true};
    if (type == "PLOT")
        return {.words = Names(fernwick::AllPlots(), [](const auto& plot) { return plot.fName; })};
    if (type == "REGEX") // of the names of checks
        return {
            .words = Names(fernwick::validation::AllChecks(), [](const auto& check) { return check.name; })};
    if (type == "SHELL")
        return {.words = {"bash", "zsh"}};
    return {.isSetting = type == "FIELD=VALUE", .isPlug = type == "FIELD=SOURCE"};
}

std::string FieldFunctions()
{
    std::string fields;
    std::string slots;
    std::string values;
    for (const std::string& name : ClassAndSourceNames()) {
        std::vector<std::string> ownFields;
        std::vector<std::string> ownSlots;
        for (const fernwick::Field& field : FindTable(name)->fFields) {
            if (field.fDerived)
                continue;
            const bool isSlot = field.fType == fernwick::FieldType::kShader;
            (isSlot ? ownSlots : ownFields).push_back(field.fName);
            values += Case(name + '.' + field.fName, ChoiceWords(field));
        }
        fields += Case(name, ownFields);
        slots += Case(name, ownSlots);
    }
    return Function("_fernwick_fields", fields) + '\n' + Function("_fernwick_slots", slots) + '\n'
        + Function("_fernwick_values", values);
}

std::string WordList(const std::vector<std::string>& words)
{
    return fmt::format("{}", fmt::join(words, " "));
}
