// VELL: data-driven hierarchical state machines.
// tools/vell/GraphTheme.h: the colours of pictures, light and dark.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vell::tool
{

/// A colour as it is drawn on a light and on a dark ground, such as "#0072b2". No two have the same
/// light one: a finished picture is made dark by replacing one with the other.
struct Colour
{
    const char* light;
    const char* dark;
};

constexpr Colour kGround{"#ffffff", "#0d1117"};
constexpr Colour kInk{"#1f2933", "#e6edf3"};
constexpr Colour kFaintInk{"#57606a", "#9aa7b4"};
constexpr Colour kBox{"#fefefe", "#10161d"};       ///< behind a state
constexpr Colour kGlobalBox{"#fff0b8", "#4a3d0e"}; ///< behind the global node
constexpr Colour kLevelBox{"#d9e2ee", "#2b3a4d"};  ///< behind a level that is one box
constexpr Colour kMarkBox{"#d7dbe0", "#3a424c"};   ///< behind an exit node that has transitions
constexpr Colour kFrame{"#8b96a5", "#6b7785"};
constexpr Colour kUnknown{"#c62828", "#ff7b72"};
constexpr Colour kActive{"#1158c7", "#1f6feb"};
constexpr Colour kWaiting{"#6e7781", "#68727d"};
constexpr Colour kLitInk{"#fffffe", "#fffffe"}; ///< on the colour of a lit node

/// Behind a level, by its depth; deeper ones have the last.
constexpr Colour kLevelGrounds[] = {
    {"#f6f8fa", "#161b22"}, {"#ebeff4", "#1b222b"}, {"#e1e7ee", "#212a35"}, {"#d6dee8", "#28323f"}};

/// The edges of one node have one colour. Next to each other in this order the colours differ in
/// lightness as well as in hue, for eyes that do not tell red from green.
constexpr Colour kEdgeColours[] = {
    {"#0072b2", "#56b4e9"}, {"#a84300", "#ff9d57"}, {"#00664b", "#3fd0a4"}, {"#a14fa6", "#e09be6"},
    {"#7a5600", "#e6c34a"}, {"#c2255c", "#ff85ae"}, {"#3b5bdb", "#91a7ff"}, {"#55632a", "#b5c96f"}};

const Colour& LevelGround(std::size_t depth);
const Colour& EdgeColour(std::size_t number);

/// Every colour that a picture can have.
std::vector<Colour> AllColours();

} // namespace vell::tool
