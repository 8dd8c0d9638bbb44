// VELL: data-driven hierarchical state machines.
// tools/vell/GraphSvg.cpp: a picture drawn by Graphviz.
#include "tools/vell/GraphSvg.h"

#include "tools/vell/GraphTheme.h"
#include "tools/vell/System.h"

#include <sstream>
#include <string_view>

namespace vell::tool
{
namespace
{

void ReplaceAll(std::string* text, const std::string& from, const std::string& to)
{
    for (std::size_t at = 0; (at = text->find(from, at)) != std::string::npos; at += to.size())
    {
        text->replace(at, from.size(), to);
    }
}

std::string Darkened(std::string svg)
{
    for (const Colour& colour : AllColours())
    {
        for (const std::string member : {"fill=\"", "stroke=\""})
        {
            ReplaceAll(&svg, member + colour.light + '"', member + colour.dark + '"');
        }
    }
    return svg;
}

/// The rules that turn each light colour into the dark one where the viewer prefers that.
std::string DarkRules()
{
    std::string rules = "<style>\n@media (prefers-color-scheme: dark) {\n";
    for (const Colour& colour : AllColours())
    {
        const std::string light = colour.light;
        const std::string dark = colour.dark;
        rules += "[fill=\"" + light + "\"]{fill:" + dark + "} [stroke=\"" + light +
                 "\"]{stroke:" + dark + "}\n";
    }
    return rules + "}\n</style>\n";
}

/// Gives the text behind `start` in `line` up to the next quote; empty without `start`.
std::string Between(const std::string& line, const std::string& start)
{
    const std::size_t at = line.find(start);
    if (at == std::string::npos)
    {
        return "";
    }
    const std::size_t begin = at + start.size();
    return line.substr(begin, line.find('"', begin) - begin);
}

/// Graphviz gives each element a title, which viewers show when the pointer rests there, and puts
/// the tool tip on a link inside, which some of them ignore. The tool tip becomes the title.
std::string WithTitles(const std::string& svg)
{
    std::istringstream lines(svg);
    std::string text;
    std::string held; ///< a title whose tool tip may follow
    for (std::string line; std::getline(lines, line);)
    {
        const std::string tip = Between(line, "<a xlink:title=\"");
        if (!held.empty())
        {
            text += (tip.empty() ? held : "<title>" + tip + "</title>") + "\n";
            held.clear();
        }
        if (line.rfind("<title>", 0) == 0)
        {
            held = line;
            continue;
        }
        text += line + "\n";
    }
    return text + held + (held.empty() ? "" : "\n");
}

} // namespace

std::string DotToSvg(const std::string& dot, std::string* fault)
{
    const TemporaryFile file(dot);
    std::string svg;
    const ProgramEnd end = file.Path().empty() ? ProgramEnd::NotStarted
                                               : ReadFromProgram("dot", "-Tsvg", file.Path(), &svg);
    switch (end)
    {
    case ProgramEnd::Well:
        return svg;
    case ProgramEnd::NotStarted:
        *fault = "cannot draw the picture: failed to create a temporary file or a process";
        break;
    case ProgramEnd::NotFound:
        *fault = "svg needs Graphviz's program dot, which is not installed; install the package "
                 "graphviz, or use --format dot or mermaid";
        break;
    case ProgramEnd::Failed:
        *fault = "Graphviz could not draw the picture; use --log FILE to see its messages";
        break;
    }
    return "";
}

std::string ThemedSvg(const std::string& svg, const std::string& theme)
{
    std::string themed = WithTitles(svg);
    if (theme == "dark")
    {
        return Darkened(themed);
    }
    const std::size_t start = themed.find("<svg");
    const std::size_t end = start == std::string::npos ? start : themed.find(">\n", start);
    if (theme == "auto" && end != std::string::npos)
    {
        themed.insert(end + 2, DarkRules());
    }
    return themed;
}

} // namespace vell::tool
