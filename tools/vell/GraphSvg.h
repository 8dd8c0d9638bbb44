// VELL: data-driven hierarchical state machines.
// tools/vell/GraphSvg.h: a picture drawn by Graphviz.
#pragma once

#include <string>

namespace vell::tool
{

/// Draws `dot` with Graphviz's program of that name. Returns an empty text, with an error message
/// in `fault`, on failure.
std::string DotToSvg(const std::string& dot, std::string* fault);

/// Gives a picture of Graphviz in other colours. `theme` is light; dark; or auto: light or dark, as
/// the viewer prefers. The tool tips become titles, which every viewer shows.
std::string ThemedSvg(const std::string& svg, const std::string& theme);

} // namespace vell::tool
