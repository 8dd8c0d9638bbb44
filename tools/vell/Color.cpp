// VELL: data-driven hierarchical state machines.
// tools/vell/Color.cpp: the escape sequences, and when to use them.
#include "tools/vell/Color.h"

#include <cstdlib>
#include <cstring>

namespace vell::tool
{
namespace
{

/// Gives the parameters of the "select graphic rendition" sequence (ECMA-48).
const char* CodeOf(Color color)
{
    switch (color)
    {
    case Color::Plain:
        return "";
    case Color::Bold:
        return "1";
    case Color::Dim:
        return "2";
    case Color::Red:
        return "31";
    case Color::Green:
        return "32";
    case Color::Yellow:
        return "33";
    case Color::Blue:
        return "34";
    case Color::Magenta:
        return "35";
    case Color::Cyan:
        return "36";
    }
    return "";
}

} // namespace

std::string Painted(bool isOn, Color color, const std::string& text)
{
    return isOn && color != Color::Plain
               ? std::string("\x1b[") + CodeOf(color) + "m" + text + "\x1b[0m"
               : text;
}

bool WantsColor(const std::string& word, bool isTerminal)
{
    if (word == "always" || word == "never")
    {
        return word == "always";
    }
    const char* refusal = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    return isTerminal && (refusal == nullptr || *refusal == '\0') &&
           (terminal == nullptr || std::strcmp(terminal, "dumb") != 0);
}

} // namespace vell::tool
