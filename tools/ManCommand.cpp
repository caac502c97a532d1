#include "tools/Commands.h"
#include "tools/HelpTree.h"
#include "tools/Wrap.h"
#include <cctype>
#include <cstdlib>
#include <fmt/chrono.h>
#include <sstream>

namespace {

/// Text for roff. Its dashes are those of the command line.
std::string EscapedForRoff(const std::string& text)
{
    std::string escaped;
    for (const char character : text) {
        if (character == '\\')
            escaped += "\\e";
        else if (character == '-')
            escaped += "\\-";
        else
            escaped += character;
    }
    return escaped;
}

/// A line of text, which may begin as a request of roff does.
std::string Line(const std::string& text)
{
    const bool looksLikeRequest = text.starts_with('.') || text.starts_with('\'');
    return (looksLikeRequest ? "\\&" : "") + EscapedForRoff(text) + '\n';
}

/// Text that roff fills, in lines that aren't long.
std::string Filled(const std::string& text)
{
    constexpr size_t kLongestLine = 70; // escapes come on top
    std::string lines;
    for (const std::string& line : Wrapped(text, kLongestLine))
        lines += Line(line);
    return lines;
}

/// One line of a footer: how deep it stands, an entry of a list before a gap, and the text.
struct FooterLine {
    size_t depth;
    std::string entry;
    std::string text;
};

FooterLine ReadFooterLine(const std::string& line)
{
    const size_t depth = line.find_first_not_of(' ');
    if (depth == std::string::npos)
        return {0, "", ""};
    const size_t gap = line.find("  ", depth);
    if (gap == std::string::npos)
        return {depth, "", line.substr(depth)};
    return {depth, line.substr(depth, gap - depth), line.substr(line.find_first_not_of(' ', gap))};
}

/// A footer of the help: paragraphs; lists, whose lines stand two blanks deep and their other lines deeper; and
/// commands, two blanks deep too.
std::string Footer(const std::string& footer)
{
    constexpr size_t kListDepth = 2;
    std::string page;
    bool isAmongCommands = false;
    std::istringstream lines(footer);
    for (std::string text; std::getline(lines, text);) {
        const FooterLine line = ReadFooterLine(text);
        const bool isCommand = line.depth == kListDepth && line.entry.empty();
        if (isCommand != isAmongCommands)
            page += isCommand ? ".PP\n.RS 2\n.EX\n" : ".EE\n.RE\n";
        isAmongCommands = isCommand;
        if (isCommand)
            page += Line(line.text);
        else if (line.text.empty())
            page += ".PP\n";
        else if (line.depth != kListDepth)
            page += Filled(line.entry.empty() ? line.text : line.entry + "  " + line.text);
        else
            page += ".TP\n" + Line(line.entry) + Filled(line.text);
    }
    return page + (isAmongCommands ? ".EE\n.RE\n" : "");
}

std::string OptionEntry(const CLI::Option& option)
{
    std::string names;
    for (const std::string& name : NamesOf(option))
        names += (names.empty() ? "" : ", ") + name;
    std::string entry = ".TP\n\\fB" + EscapedForRoff(names) + "\\fR";
    if (TakesValue(option))
        entry += " \\fI" + EscapedForRoff(option.get_type_name()) + "\\fR";
    std::string text = option.get_description();
    if (option.get_required())
        text += "; required";
    if (!option.get_default_str().empty())
        text += "; else " + option.get_default_str();
    return entry + '\n' + Filled(text + '.');
}

std::string CommandSection(const CLI::App& command)
{
    std::string section
        = fmt::format(".SS \\fBfernwick {}\\fR [OPTIONS]", EscapedForRoff(command.get_name()));
    for (const CLI::Option* const positional : PositionalsOf(command))
        section += " \\fI" + EscapedForRoff(positional->get_name()) + "\\fR";
    section += '\n' + Filled(command.get_description());
    for (const CLI::Option* const positional : PositionalsOf(command))
        section += ".TP\n\\fI" + EscapedForRoff(positional->get_name()) + "\\fR\n"
            + Filled(positional->get_description() + '.');
    for (const CLI::Option* const option : OptionsOf(command))
        if (option != command.get_help_ptr())
            section += OptionEntry(*option);
    return section + ".PP\n" + Footer(command.get_footer());
}

/// A sentence as the line that a list of pages shows.
std::string Unsentenced(std::string sentence)
{
    sentence.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(sentence.front())));
    sentence.pop_back();
    return sentence;
}

/// Today, or the day that builds to be repeated tell by `SOURCE_DATE_EPOCH`.
std::string DateText()
{
    const char* const told = std::getenv("SOURCE_DATE_EPOCH");
    const std::time_t time = told != nullptr ? std::strtoll(told, nullptr, 10) : std::time(nullptr);
    return fmt::format("{:%Y-%m-%d}", fmt::gmtime(time));
}

void PrintPage(const CLI::App& app)
{
    std::string page
        = fmt::format(".TH FERNWICK 1 {} \"fernwick " FERNWICK_VERSION "\" \"User Commands\"\n", DateText());
    page += ".SH NAME\nfernwick \\- " + Filled(Unsentenced(app.get_description()));
    page += ".SH SYNOPSIS\n\\fBfernwick\\fR \\fICOMMAND\\fR [OPTIONS] ...\n";
    page += ".SH DESCRIPTION\n" + Filled(app.get_description()) + ".PP\n" + Footer(app.get_footer());
    page += ".SH OPTIONS\n";
    for (const CLI::Option* const option : OptionsOf(app))
        page += OptionEntry(*option);
    page += ".SH COMMANDS\n";
    for (const CLI::App* const command : CommandsOf(app))
        page += CommandSection(*command);
    fmt::print("{}", page);
}

} // namespace

void AddManCommand(CLI::App& app)
{
    CLI::App& command = *app.add_subcommand("man", "Prints the manual page of all commands.");
    command.footer("Examples:\n"
                   "  fernwick man | man -l -\n"
                   "  fernwick man >fernwick.1");
    command.callback([&app] { PrintPage(app); });
}
