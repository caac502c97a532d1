#include "host/sources/Sources.h"
#include "tools/Completion.h"
#include "tools/HelpTree.h"
#include "tools/Names.h"
#include <fmt/format.h>

namespace {

constexpr const char* kZshHead = R"(#compdef fernwick
# Completion of the fernwick command for zsh.

)";

constexpr const char* kFunctions = R"(
# The first class among the words.
_fernwick_class() {{
    local classes=({0})
    print -- ${{${{words:*classes}}[1]}}
}}

# FIELD=VALUE
_fernwick_setting() {{
    local class=$(_fernwick_class) field=${{PREFIX%%=*}}
    if compset -P '*='; then
        compadd -- ${{=$(_fernwick_values $class.$field)}}
    else
        compadd -S = -- ${{=$(_fernwick_fields $class)}}
    fi
}}

# FIELD=SOURCE
_fernwick_plug() {{
    if compset -P '*='; then
        compadd -- {1}
    else
        compadd -S = -- ${{=$(_fernwick_slots $(_fernwick_class))}}
    fi
}}

# One of the words, or a file.
_fernwick_word_or_file() {{
    compadd -- "$@"
    _files
}}

_fernwick() {{
    local line state commands=(
{2}    )
    _arguments -C {3}'1:command:->command' '*::argument:->argument'
    case $state in
    command) _describe command commands ;;
    argument)
        case $line[1] in
{4}        esac
        ;;
    esac
}}

if [[ $funcstack[1] == _fernwick ]]; then
    _fernwick "$@"
else
    compdef _fernwick fernwick
fi
)";

/// Text inside of single quotes, with a backslash before what zsh reads by itself there.
std::string EscapedForZsh(const std::string& text)
{
    std::string escaped;
    for (const char character : text) {
        if (std::string_view("\\[]:").find(character) != std::string_view::npos)
            escaped += '\\';
        escaped += character == '\'' ? std::string("'\\''") : std::string(1, character);
    }
    return escaped;
}

/// The action that offers what may stand for a value.
std::string Action(const CompletedValue& value)
{
    if (value.isSetting)
        return "_fernwick_setting";
    if (value.isPlug)
        return "_fernwick_plug";
    if (value.words.empty())
        return value.isFile ? "_files" : " ";
    const std::string words = WordList(value.words);
    return value.isFile ? " _fernwick_word_or_file " + words : '(' + words + ')';
}

/// An option as zsh takes it, such as `'(-o --picture)'{-o,--picture}'[The picture]:FILE:_files' `.
std::string OptionArgument(const CLI::Option& option)
{
    const std::vector<std::string> names = NamesOf(option);
    std::string value;
    if (TakesValue(option))
        value
            = fmt::format(":{}:{}", EscapedForZsh(option.get_type_name()), Action(CompletedValueOf(option)));
    const std::string rest = fmt::format("'[{}]{}' ", EscapedForZsh(option.get_description()), value);
    if (option.get_items_expected_max() > 1)
        return "'*'" + names.front() + rest;
    if (names.size() == 1)
        return names.front() + rest;
    return fmt::format("'({})'{{{}}}{}", WordList(names), fmt::join(names, ","), rest);
}

std::string OptionArguments(const CLI::App& command)
{
    std::string text;
    for (const CLI::Option* const option : OptionsOf(command))
        text += OptionArgument(*option);
    return text;
}

std::string CommandCase(const CLI::App& command)
{
    std::string text = fmt::format("        {}) _arguments {}", command.get_name(), OptionArguments(command));
    for (const CLI::Option* const positional : PositionalsOf(command))
        text += fmt::format(
            "'1:{}:{}' ", EscapedForZsh(positional->get_name()), Action(CompletedValueOf(*positional)));
    return text + ";;\n";
}

} // namespace

std::string ZshCompletion(const CLI::App& app)
{
    std::string descriptions;
    std::string cases;
    for (const CLI::App* const command : CommandsOf(app)) {
        descriptions += fmt::format(
            "        '{}:{}'\n", command->get_name(), EscapedForZsh(command->get_description()));
        cases += CommandCase(*command);
    }
    return kZshHead + FieldFunctions()
        + fmt::format(kFunctions, WordList(ClassAndSourceNames()), WordList(fernwick::SourceNames()),
            descriptions, OptionArguments(app), cases);
}
