// VELL: data-driven hierarchical state machines.
// tools/vell/GraphLegend.h: the title and the legend of a picture, in Graphviz's markup.
#pragma once

#include "tools/vell/Graph.h"
#include "tools/vell/GraphText.h"
#include "tools/vell/GraphTheme.h"

#include <string>

namespace vell::tool
{

/// Marks a transition that leads back to its own state.
constexpr const char* kAgainSign = "&#8635;";

/// Gives a text in Graphviz's markup.
std::string Markup(const std::string& text);

/// Gives markup in a colour.
std::string Coloured(const std::string& markup, const Colour& colour);

std::string TitleMarkup(const Graph& graph);

/// Explains what is in the picture, and nothing else.
std::string LegendMarkup(const Graph& graph, const GraphIndex& index);

} // namespace vell::tool
