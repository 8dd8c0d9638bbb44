// VELL: data-driven hierarchical state machines.
// tools/vell/Losses.h: the nodes of a document that a loaded machine does not have.
#pragma once

#include <vell/Json.h>

#include <string>

namespace vell
{
class NodeDefTable;
} // namespace vell

namespace vell::tool
{

/// Compares the nodes of `document` with those that the machine has. A load that succeeds can lose
/// nodes: those of all layers when one node cannot be built, or those after a duplicate id. Returns
/// an empty text, or a sentence that names the first one, such as
/// `all 18 nodes are lost, from IdleToJump (100) on`.
std::string LossText(const GenericDocument& document, const NodeDefTable& table);

} // namespace vell::tool
