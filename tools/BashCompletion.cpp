#include "host/sources/Sources.h"
#include "tools/Completion.h"
#include "tools/HelpTree.h"
#include "tools/Names.h"
#include <fmt/format.h>

namespace {

constexpr const char* kBashHead = R"(# Completion of the fernwick command for bash.

)";

// Bash splits words at "=", which stands as a word of its own then.
constexpr const char* kFunction = R"(
_fernwick() {{
    local commands='{0}' classes='{1}' sources='{2}'
    local word=${{COMP_WORDS[COMP_CWORD]}} command='' class='' isAssigned='' past=() i
    for ((i = 1; i < COMP_CWORD; i++)); do
        [[ ${{COMP_WORDS[i]}} != = ]] && past+=("${{COMP_WORDS[i]}}")
    done
    [[ $word == = || ${{COMP_WORDS[COMP_CWORD - 1]}} == = ]] && isAssigned=1
    [[ $word == = ]] && word=''
    for i in "${{past[@]}}"; do
        if [[ -z $command ]]; then
            [[ " $commands " == *" $i "* ]] && command=$i
        elif [[ -z $class && " $classes " == *" $i "* ]]; then
            class=$i
        fi
    done

    local previous='' option='' words='' files='' end=''
    ((${{#past[@]}} > 0)) && previous=${{past[-1]}}
    ((${{#past[@]}} > 1)) && option=${{past[-2]}}
    if [[ -n $isAssigned && $option == --set ]]; then
        words=$(_fernwick_values "$class.$previous")
    elif [[ -n $isAssigned && $option == --plug ]]; then
        words=$sources
    else
        case "$command $previous" in
{3}        *)
            case "$command" in
{4}            esac
            ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    if [[ -n $end ]]; then
        COMPREPLY=("${{COMPREPLY[@]/%/=}}")
        compopt -o nospace
    fi
    if [[ -n $files ]]; then
        compopt -o filenames
        mapfile -t -O "${{#COMPREPLY[@]}}" COMPREPLY < <(compgen -f -- "$word")
    fi
}}
complete -F _fernwick fernwick
)";

/// The statement that sets what may stand for a value.
std::string Offer(const CompletedValue& value)
{
    if (value.isSetting)
        return "words=$(_fernwick_fields \"$class\") end=1";
    if (value.isPlug)
        return "words=$(_fernwick_slots \"$class\") end=1";
    return fmt::format("words='{}' files={}", WordList(value.words), value.isFile ? "1" : "''");
}

/// A case for every option with a value.
std::string OptionCases(const CLI::App& command)
{
    std::string cases;
    for (const CLI::Option* const option : OptionsOf(command)) {
        if (!TakesValue(*option))
            continue;
        std::string patterns;
        for (const std::string& name : NamesOf(*option))
            patterns += fmt::format("{}'{} {}'", patterns.empty() ? "" : " | ", command.get_name(), name);
        cases += fmt::format("        {}) {} ;;\n", patterns, Offer(CompletedValueOf(*option)));
    }
    return cases;
}

/// The case of a command, or of none: its options where a dash stands, else its positional.
std::string CommandCase(const std::string& name, const CLI::App& command, const CompletedValue& positional)
{
    std::vector<std::string> options;
    for (const CLI::Option* const option : OptionsOf(command))
        for (const std::string& optionName : NamesOf(*option))
            options.push_back(optionName);
    return fmt::format("            '{}') if [[ $word == -* ]]; then words='{}'; else {}; fi ;;\n", name,
        WordList(options), Offer(positional));
}

} // namespace

std::string BashCompletion(const CLI::App& app)
{
    std::vector<std::string> names;
    std::string optionCases;
    std::string commandCases;
    for (const CLI::App* const command : CommandsOf(app)) {
        names.push_back(command->get_name());
        optionCases += OptionCases(*command);
        const std::vector<const CLI::Option*> positionals = PositionalsOf(*command);
        commandCases += CommandCase(command->get_name(), *command,
            positionals.empty() ? CompletedValue{} : CompletedValueOf(*positionals.front()));
    }
    commandCases += CommandCase("", app, {.words = names});
    return kBashHead + FieldFunctions()
        + fmt::format(kFunction, WordList(names), WordList(ClassAndSourceNames()),
            WordList(fernwick::SourceNames()), optionCases, commandCases);
}
