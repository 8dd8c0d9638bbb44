// VELL: data-driven hierarchical state machines.
// states/SubstateState.cpp: starting, resuming and leaving a substate.
#include <vell/SubstateState.h>

#include "definitions/EnterDef.h"
#include "definitions/ExitDef.h"
#include "definitions/SubstateDef.h"
#include "foundation/Checks.h"
#include "states/MachineServices.h"
#include "states/SMStateInternals.h"

namespace vell
{

SMState* SubstateState::Create(unsigned int stateId, HSMAlloc* alloc)
{
    ERROR_RETURN(alloc, nullptr);
    SubstateState* state = Internals::Place<SubstateState>(stateId, alloc);
    ERROR_RETURN(state, nullptr);
    return state;
}

SubstateState::~SubstateState()
{
    subDef = nullptr;
    previousChildID = 0;
}

int SubstateState::Init(BaseDef* newDef)
{
    ERROR_RETURN(newDef, 0);
    ERROR_RETURN(SMState::Init(newDef), 0);
    subDef = dynamic_cast<SubstateDef*>(newDef);
    ERROR_RETURN(subDef, 0);
    ERROR_RETURN(InitEnterExit(newDef), 0);
    return 1;
}

int SubstateState::InitEnterExit(BaseDef* newDef)
{
    ERROR_RETURN(newDef, 0);
    ERROR_RETURN(hsm, 0);
    exitDef = dynamic_cast<ExitDef*>(MachineServices::FindDef(*hsm, GetExitID()));
    ERROR_RETURN(exitDef, 0);
    enterDef = dynamic_cast<EnterDef*>(MachineServices::FindDef(*hsm, GetEnterID()));
    ERROR_RETURN(enterDef, 0);
    enterStateID = enterDef->targetId;
    ERROR_RETURN(enterStateID, 0);
    return 1;
}

unsigned int SubstateState::GetEnterID() const
{
    ERROR_RETURN(subDef, previousChildID);
    return previousChildID == 0 ? subDef->enterId : previousChildID;
}

unsigned int SubstateState::GetExitID() const
{
    ERROR_RETURN(subDef, 0);
    return subDef->exitId;
}

int SubstateState::Update(HSM* machine, float dt)
{
    ERROR_RETURN(machine, 0);
    // Required: a child that the host popped is not noticed. The substate does not push it again.
    if (currentChild != nullptr)
    {
        // Required: the result of this is dropped. The update succeeds whatever Execute says.
        SMState::Update(machine, dt);
        return 1;
    }
    // Required: the tick that pushes the child performs no action of the substate, and its
    // transitions are tested.
    SMState* child = previousChild == nullptr ? MachineServices::PushState(*machine, enterStateID)
                                              : MachineServices::PushState(*machine, previousChild);
    // Required: a child that cannot be pushed is tried again, with all its lines, in every tick.
    ERROR_RETURN(child, 0);
    // Required: the child has recorded itself on entering; after a first start the previous
    // child is therefore the child itself.
    previousChild = currentChild;
    currentChild = child;
    previousChildID = currentChildID;
    currentChildID = child->GetID();
    return 1;
}

int SubstateState::Enter()
{
    ERROR_RETURN(SMState::Enter(), 0);
    return 1;
}

int SubstateState::Exit()
{
    // Required: copied whether or not a child was active, so a substate that is left before its
    // first update forgets the child it would have resumed.
    previousChild = currentChild;
    // Required: the exit node is a child like any other. A substate left at its exit node resumes
    // there.
    // Required: the substate may be on the main stack too when a blip leaves it. Its next update
    // there pushes its child a second time.
    currentChild = nullptr;
    previousChildID = currentChildID;
    currentChildID = 0;

    ERROR_RETURN(SMState::Exit(), 0);
    return 1;
}

unsigned int SubstateState::ProcessTransitions(HSM* machine, UpdateResult* result)
{
    ERROR_RETURN(result, 0);
    return SMState::ProcessTransitions(machine, result);
}

} // namespace vell
