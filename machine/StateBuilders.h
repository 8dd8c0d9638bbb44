// VELL: data-driven hierarchical state machines.
// machine/StateBuilders.h: the registry of state factories.
#pragma once

#include <vell/IHSM.h>

namespace vell
{

// The registry is one for the whole process. Only its making is safe against racing threads.

/// Makes `factory` build the states of a builder number, in place of an earlier one.
void StoreStateBuilder(__DURM_BUILDERS__ builder, StateFactory factory);

/// Gives the factory of a builder number, or null.
StateFactory FindStateBuilder(__DURM_BUILDERS__ builder);

/// Forgets all factories.
void ClearStateBuilders();

} // namespace vell
