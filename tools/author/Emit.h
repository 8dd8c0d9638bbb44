// VELL: data-driven hierarchical state machines.
// tools/author/Emit.h: the document of a machine whose names are resolved.
#pragma once

#include "tools/author/Machine.h"
#include "tools/author/Made.h"

namespace vell::author
{

/// Gives the document. What is wrong with conditions, attributes and defaults is reported.
Made MakeDocument(const Machine& machine);

/// Sets the head's memory where the source leaves it open: what the document needs with each state
/// entered once, a quarter more, and up to a full ten.
void GiveMemory(const Machine& machine, Made* document);

} // namespace vell::author
