// VELL: data-driven hierarchical state machines.
// tools/vell/GraphMermaid.h: a graph in Mermaid's language.
#pragma once

#include "tools/vell/Graph.h"

#include <string>

namespace vell::tool
{

/// Gives the text of the graph for Mermaid. `direction` is LR, TB, RL or BT.
std::string GraphToMermaid(const Graph& graph, const std::string& direction);

} // namespace vell::tool
