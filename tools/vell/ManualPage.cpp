// VELL: data-driven hierarchical state machines.
// tools/vell/ManualPage.cpp: the manual page in the man macros of troff.
#include "tools/vell/ManualPage.h"

#include "tools/vell/CommandDescription.h"

namespace vell::tool
{
namespace
{

/// Escapes a text for troff: a backslash, a hyphen to be typed, an apostrophe, and a point or
/// apostrophe at the start of a line.
std::string Escaped(const std::string& text)
{
    std::string escaped;
    for (const char c : text)
    {
        const bool isLineStart = escaped.empty() || escaped.back() == '\n';
        escaped += isLineStart && (c == '.' || c == '\'') ? "\\&" : "";
        escaped += c == '\\' ? "\\e" : c == '-' ? "\\-" : c == '\'' ? "\\(aq" : std::string(1, c);
    }
    return escaped;
}

/// A text whose lines stay as they are, from the left edge, so that 80 columns fit a terminal.
std::string AsTyped(const std::string& text)
{
    const std::size_t begin = text.find_first_not_of('\n');
    const std::size_t end = text.find_last_not_of('\n');
    return begin == std::string::npos
               ? ""
               : ".PP\n.in 0\n.nf\n" + Escaped(text.substr(begin, end - begin + 1)) +
                     "\n.fi\n.in\n";
}

std::string Entry(const std::string& left, const std::string& description)
{
    return ".TP\n.B " + Escaped(left) + '\n' + Escaped(description) + ".\n";
}

std::string CommandSection(const CommandDescription& command)
{
    std::string text = ".SS " + Escaped(UsageOf(command)) + '\n';
    text += Escaped(command.description) + ".\n";
    for (const OptionDescription& argument : command.arguments)
    {
        text += Entry(argument.longName, argument.description);
    }
    for (const OptionDescription& option : command.options)
    {
        text += Entry(SignatureOf(option), option.description);
    }
    return text + AsTyped(command.footer);
}

} // namespace

std::string ManualPage(const CommandDescription& program, const std::string& version)
{
    std::string page = ".TH VELL 1 \"\" \"VELL " + version + "\" \"User Commands\"\n";
    page += ".SH NAME\nvell \\- inspects and runs machine documents\n.SH SYNOPSIS\n";
    std::string separator;
    for (const CommandDescription* command : Leaves(program))
    {
        page += separator + Escaped(UsageOf(*command)) + '\n';
        separator = ".br\n";
    }
    page += ".SH DESCRIPTION\n" + Escaped(program.description) + '\n';
    page += ".SH COMMANDS\n";
    for (const CommandDescription* command : Leaves(program))
    {
        page += CommandSection(*command);
    }
    page += ".SH OPTIONS\n";
    for (const OptionDescription& option : program.options)
    {
        page += Entry(SignatureOf(option), option.description);
    }
    return page + ".SH NOTES\n" + AsTyped(program.footer);
}

} // namespace vell::tool
