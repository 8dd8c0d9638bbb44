// VELL: data-driven hierarchical state machines.
// tools/vell/Color.h: colours on a terminal.
#pragma once

#include <string>

namespace vell::tool
{

enum class Color
{
    Plain,
    Bold,
    Dim,
    Red,
    Green,
    Yellow,
    Blue,
    Magenta,
    Cyan
};

/// Gives `text` in a colour, or as it is when `isOn` is false.
std::string Painted(bool isOn, Color color, const std::string& text);

/// Tells whether to use colours, by the word of --color, which is auto, always or never. `auto` is
/// a terminal that is not "dumb", unless the environment variable NO_COLOR is set and not empty.
bool WantsColor(const std::string& word, bool isTerminal);

} // namespace vell::tool
