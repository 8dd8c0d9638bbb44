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

/// Makes the definition of a node from its JSON object, not yet initialised, in the arena; null
/// when it cannot.
using NodeDefFactory = BaseDef* (*)(const GenericValue& node, HSMAlloc* alloc);
/// Makes the run-time state of the node `id` in the arena; null when it cannot.
using StateFactory = SMState* (*)(unsigned int id, HSMAlloc* alloc);
/// Hears of every activation: the machine, the state last left (or null), the state now activated
/// and not yet entered, and the float of the transition that fired (else 0). Must not call Update,
/// PushState or PopState.
using StateSwitchCallback = void (*)(HSM* machine, SMState* previous, SMState* next,
                                     float argument);
/// Decides whether a transition holds. `state` is always null.
using Trigger = bool (*)(IHSM* machine, SMState* state);
/// Makes the default action for a definition; `scriptName` may be null.
using ActionFactory = Action* (*)(const char* scriptName);

} // namespace vell
