// VELL: data-driven hierarchical state machines.
// machine/HSMServices.cpp: what the machine answers to its states.
#include "definitions/BaseDefInternals.h"
#include "foundation/TreeKeys.h"
#include "machine/HSMInternals.h"
#include "states/MachineServices.h"

#include <vell/TransitionDef.h>
#include <vell/Types.h>

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
    Tessel::KVTable root = machine.GetKVTable();
    if (Tessel::KVTable context = root ? root->GetTable(kContextKey) : Tessel::KVTable())
    {
        context->SetUInt(kTransitionKey, transition.GetID(), 1);
    }
}

} // namespace vell
