// VELL: data-driven hierarchical state machines.
// tests/introspection/RichDocument.h: a document with everything that a tree can show.
#pragma once

#include "tests/support/DocumentBuilder.h"

namespace vell::test
{

/// Every kind of node, every class of parameters and of attributes, a skeleton and a global node.
/// The machine starts in "Idle" (10), which has an attribute of each class; bool parameters fire:
/// "go" to "Walk" (11), "fight" to the level "Combat" (20), "hit" from anywhere to "Flinch" (12).
DocumentBuilder RichDocument();

} // namespace vell::test
