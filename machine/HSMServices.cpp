// VELL: data-driven hierarchical state machines.
// machine/HSMServices.cpp: what the machine answers to the folders below it.
#include <vell/TransitionDef.h>
#include <vell/Types.h>

#include "definitions/BaseDefInternals.h"
#include "introspection/MachineTree.h"
#include "machine/HSMInternals.h"
#include "states/MachineServices.h"
#include "transitions/TriggerCall.h"

namespace vell
{

IBaseDef* MachineServices::FindDef(HSM& machine, unsigned int id)
{
    return machine.FindDef(id);
}

SMState* MachineServices::PushState(HSM& machine, unsigned int id)
{
    return machine.PushState(id);
}

SMState* MachineServices::PushState(HSM& machine, SMState* state)
{
    return machine.PushState(state);
}

bool MachineServices::IsBlipState(HSM& machine)
{
    return machine.IsBlipState();
}

void MachineServices::RevertToPreviousState(HSM& machine)
{
    machine.RevertToPreviousState();
}

bool MachineServices::HasEventListeners(const HSM& machine)
{
    return HSM::Internals::HasEventListeners(machine);
}

void MachineServices::SendAnimation(HSM& machine, const __PlayAnimEvent__& event)
{
    machine.FireEvent(HSMEventPlayAnimation, &event);
}

void MachineServices::ReportTransition(HSM& machine, TransitionDef& transition,
                                       const UpdateResult* result)
{
    if (!HSM::Internals::IsTickRecord(machine, result))
    {
        BaseDef::Internals::HandOut(transition);
    }
    // Required: the tree is the one that the machine's class shows.
    MachineTree(machine.GetKVTable(), HSM::Internals::GetContext(machine))
        .WriteTransition(transition.GetID());
}

bool CallTrigger(Trigger trigger, HSM* machine)
{
    // Required: a trigger receives no state.
    return trigger(machine, nullptr);
}

} // namespace vell
