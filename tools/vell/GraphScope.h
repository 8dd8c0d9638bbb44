// VELL: data-driven hierarchical state machines.
// tools/vell/GraphScope.h: the part of a machine that a picture shows.
#pragma once

#include "tools/vell/Graph.h"

#include <cstddef>
#include <optional>
#include <string>

namespace vell::tool
{

struct GraphScope
{
    std::string level;                ///< name or id of the one level to draw; empty for all
    std::optional<std::size_t> depth; ///< how many levels deep; the levels below are boxes
};

/// Reduces `graph` to `scope`. Returns an empty text, or an error message. The neighbours of a
/// level that is drawn alone become ports: nodes with the transitions that lead in.
std::string NarrowGraph(Graph* graph, const GraphScope& scope);

} // namespace vell::tool
