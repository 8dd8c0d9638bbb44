// VELL: data-driven hierarchical state machines.
// tools/vell/ManualPage.cpp: the manual page in the man macros of troff.
#include "tools/vell/ManualPage.h"

#include "tools/vell/CommandDescription.h"

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

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

std::vector<std::string> LinesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
    {
        lines.push_back(line);
    }
    return lines;
}

/// The lines of a help text: paragraphs are filled, and indented lines stay as they are.
std::string Body(const std::vector<std::string>& lines)
{
    constexpr std::size_t kIndent = 2;
    std::string text;
    bool isParagraph = false;
    bool isBlock = false;
    for (const std::string& line : lines)
    {
        const bool isIndented = !line.empty() && line[0] == ' ';
        if (isBlock && !isIndented)
        {
            text += ".fi\n";
        }
        if (isIndented && !isBlock)
        {
            text += ".PP\n.nf\n";
        }
        else if (!isIndented && !line.empty() && !isParagraph)
        {
            text += ".PP\n";
        }
        isBlock = isIndented;
        isParagraph = !isIndented && !line.empty();
        text += line.empty() ? "" : Escaped(line.substr(isIndented ? kIndent : 0)) + '\n';
    }
    return text + (isBlock ? ".fi\n" : "");
}

/// The program's help text in sections: that behind "Examples:" and that behind "Exit codes:" have
/// their own by custom.
std::string Sections(const std::string& footer)
{
    std::string text;
    std::vector<std::string> lines;
    std::string title = "NOTES";
    const auto end = [&text, &lines, &title]
    {
        const std::string body = Body(lines);
        text += body.empty() ? "" : ".SH " + title + "\n" + body;
        lines.clear();
    };
    for (const std::string& line : LinesOf(footer))
    {
        const bool isExamples = line == "Examples:";
        if (!isExamples && line != "Exit codes:")
        {
            lines.push_back(line);
            continue;
        }
        end();
        title = isExamples ? "EXAMPLES" : "EXIT STATUS";
    }
    end();
    return text;
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
    return text + Body(LinesOf(command.footer));
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
    return page + Sections(program.footer);
}

} // namespace vell::tool
