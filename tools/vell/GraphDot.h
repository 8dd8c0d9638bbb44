// VELL: data-driven hierarchical state machines.
// tools/vell/GraphDot.h: a graph in Graphviz's language.
#pragma once

#include "tools/vell/Graph.h"

#include <string>

namespace vell::tool
{

/// Gives the text of the graph for Graphviz, in light colours. `direction` is LR, TB, RL or BT.
/// Nothing is written beside an edge: each transition is a row in the box of its node, and its edge
/// starts there, so that no edge can run through its text.
std::string GraphToDot(const Graph& graph, const std::string& direction);

} // namespace vell::tool
