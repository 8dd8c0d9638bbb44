// VELL: data-driven hierarchical state machines.
// include/vell/Callbacks.h: the functions that a host hands to a machine.
#pragma once

#include <vell/Json.h>

namespace vell
{

class Action;
class BaseDef;
class HSM;
class HSMAlloc;
class IHSM;
class SMState;

/// Creates the definition of a node in the arena, not yet initialised, from its JSON object.
/// Returns null on failure.
using NodeDefFactory = BaseDef* (*)(const GenericValue& node, HSMAlloc* alloc);
/// Creates the state of the node `id` in the arena. Returns null on failure.
using StateFactory = SMState* (*)(unsigned int id, HSMAlloc* alloc);
/// Called on every activation, with the machine, the state last left (or null), the state now
/// activated and not yet entered, and the switch argument of the transition that fired (or 0). Must
/// not call Update, PushState or PopState.
using StateSwitchCallback = void (*)(HSM* machine, SMState* previous, SMState* next,
                                     float argument);
/// Returns whether its transition holds. `state` is always null.
using Trigger = bool (*)(IHSM* machine, SMState* state);
/// Creates the default action for a definition; `scriptName` may be null.
using ActionFactory = Action* (*)(const char* scriptName);

} // namespace vell
