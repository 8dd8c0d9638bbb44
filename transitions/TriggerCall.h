// VELL: data-driven hierarchical state machines.
// transitions/TriggerCall.h: calling a host's trigger.
#pragma once

#include <vell/Callbacks.h>

namespace vell
{

/// Calls `trigger` with the machine's interface and no state. The class of the machine is above
/// this folder; machine/HSMServices.cpp knows it.
bool CallTrigger(Trigger trigger, HSM* machine);

} // namespace vell
